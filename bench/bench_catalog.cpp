// The catalogue against SQLite, on the same synthetic assets: open a catalogue of 100,000 and of
// 1,000,000 assets and have the date-sorted view ready (AssetDb, then a SortedAssetList on
// "timestamp" with its index), beside SQLite opening a table of the same properties with an index on
// the date and reading every row in date order. The catalogue's side is also timed reading every
// asset's properties in the view's order, which is what SQLite's read does.
//
// Each measurement runs in a fresh process (this program, started again with --child), so that its
// peak memory is its own: the peak resident set (which counts the pages of a mapped file) and the
// heap in use once the view is ready (the catalogue's own structures), each per asset. The files are
// made once into $BENCH_STORE_DIR (default /tmp) and read warm, from the page cache. The closing
// summary gives the growth from 100k to 1M beside n log n (12.0).

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sqlite3.h>
#include <time.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetDb.h"
#include "orvanta/assets/CatalogueFormat.h"
#include "orvanta/assets/SortedAssetList.h"
#include "orvanta/store/PropertyDatabase.h"

using namespace Orvanta;

namespace {

using Clock = std::chrono::steady_clock;

double since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// The processor time this process has used, user and system (page faults, reads) together.
double cpuSeconds() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

std::string storeDir() {
    const char* configured = std::getenv("BENCH_STORE_DIR");
    const std::string dir =
        std::string(configured && *configured ? configured : "/tmp") + "/orvanta-bench-catalog";
    std::filesystem::create_directories(dir);
    return dir;
}

std::string cataloguePath(int count) {
    return storeDir() + "/catalog-" + std::to_string(count) + ".db";
}

std::string sqlitePath(int count) {
    return storeDir() + "/catalog-" + std::to_string(count) + ".sqlite";
}

// One synthetic asset, the same for both stores: a camera file name, one of 400 folders, a date
// between 2000 and 2024 to the second, the picture's size, the file's size and write time.
struct Synthetic {
    UniqueID id;
    std::string filename, folder;
    DateTime date;
    int width, height, fileSize;
};

Synthetic synthetic(int i, std::mt19937& random) {
    unsigned char bytes[16];
    for (auto& b : bytes) b = static_cast<unsigned char>(random());
    char text[96];
    Synthetic s;
    s.id = UniqueID::readBytes(bytes);
    std::snprintf(text, sizeof text, "IMG_%07d.JPG", i);
    s.filename = text;
    const int folder = static_cast<int>(random() % 400);
    std::snprintf(text, sizeof text, "/home/user/Pictures/%d/%d-%02d Trip %d", 2000 + folder % 25,
                  2000 + folder % 25, 1 + folder % 12, folder);
    s.folder = text;
    s.date = DateTime(2000 + static_cast<int>(random() % 25), 1 + static_cast<int>(random() % 12),
                      1 + static_cast<int>(random() % 28), static_cast<int>(random() % 24),
                      static_cast<int>(random() % 60), static_cast<int>(random() % 60), 0);
    const bool portrait = random() % 4 == 0;
    s.width = portrait ? 3000 : 4000;
    s.height = portrait ? 4000 : 3000;
    s.fileSize = 1000000 + static_cast<int>(random() % 7000000);
    return s;
}

long long dateNumber(const DateTime& d) {
    return ((((d.getYear() * 100LL + d.getMonth()) * 100 + d.getMDay()) * 100 + d.getHour()) * 100 +
            d.getMinute()) *
               100 +
           d.getSecond();
}

bool check(int status, sqlite3* db) {
    if (status == SQLITE_OK || status == SQLITE_DONE || status == SQLITE_ROW) return true;
    std::fprintf(stderr, "sqlite: %s\n", sqlite3_errmsg(db));
    return false;
}

// Makes both stores of count assets unless they are there from an earlier run.
bool makeStores(int count) {
    const std::string catalogue = cataloguePath(count), table = sqlitePath(count);
    if (std::filesystem::exists(catalogue) && std::filesystem::exists(table)) return true;
    std::filesystem::remove(catalogue);
    std::filesystem::remove(table);
    if (!AssetDb::createFile(CString::fromUtf8(catalogue))) return false;
    OwnedPtr<PropertyDatabase> lists =
        PropertyDatabase::create(CString::fromUtf8(catalogue), CatalogueFormat::kGrowBlocks);
    sqlite3* db = nullptr;
    sqlite3_stmt* insert = nullptr;
    bool ok =
        check(sqlite3_open(table.c_str(), &db), db) &&
        check(sqlite3_exec(db,
                           "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;"
                           "CREATE TABLE assets(id BLOB PRIMARY KEY, filename TEXT, folder TEXT, "
                           "timestamp INTEGER, width INTEGER, height INTEGER, filesize INTEGER, "
                           "writetime INTEGER);"
                           "BEGIN;",
                           nullptr, nullptr, nullptr),
              db) &&
        check(sqlite3_prepare_v2(db, "INSERT INTO assets VALUES(?,?,?,?,?,?,?,?)", -1, &insert, nullptr), db);
    std::mt19937 random(2024);
    for (int i = 0; ok && i < count; ++i) {
        const Synthetic s = synthetic(i, random);
        OwnedPtr<PropertyList> list = PropertyList::create();
        list->set(PropertyList::kPropID, PropertyValue(s.id), false);
        list->set(Asset::kPropFilename, PropertyValue(CString::fromUtf8(s.filename)), false);
        list->set(Asset::kPropFolder, PropertyValue(CString::fromUtf8(s.folder)), false);
        list->set(Asset::kPropTimestamp, PropertyValue(s.date), false);
        list->set(CatalogueFormat::kPropWidth, PropertyValue(s.width), false);
        list->set(CatalogueFormat::kPropHeight, PropertyValue(s.height), false);
        list->set(CatalogueFormat::kPropFileSize, PropertyValue(s.fileSize), false);
        list->set(CatalogueFormat::kPropWriteTime, PropertyValue(s.date), false);
        ok = lists->putList(list);
        unsigned char key[16];
        s.id.writeBytes(key);
        sqlite3_reset(insert);
        sqlite3_bind_blob(insert, 1, key, 16, SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 2, s.filename.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_text(insert, 3, s.folder.c_str(), -1, SQLITE_TRANSIENT);
        sqlite3_bind_int64(insert, 4, dateNumber(s.date));
        sqlite3_bind_int(insert, 5, s.width);
        sqlite3_bind_int(insert, 6, s.height);
        sqlite3_bind_int(insert, 7, s.fileSize);
        sqlite3_bind_int64(insert, 8, dateNumber(s.date));
        ok = ok && check(sqlite3_step(insert), db);
    }
    sqlite3_finalize(insert);
    ok = ok && check(sqlite3_exec(db,
                                  "COMMIT; CREATE INDEX assets_by_date ON assets(timestamp);"
                                  "PRAGMA wal_checkpoint(TRUNCATE);",
                                  nullptr, nullptr, nullptr),
                     db);
    sqlite3_close(db);
    return ok;
}

// --- The measurements, each in a process of its own ---------------------------------------------------

long long statusKilobytes(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(field, 0) == 0) return std::atoll(line.c_str() + std::strlen(field));
    return 0;
}

long long heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<long long>(info.uordblks + info.hblkhd);
}

// Prints: seconds to open, to have the view ready, to read every row; heap bytes and peak resident
// bytes the work added; processor seconds to have the view ready, and to read every row.
int runChild(const std::string& store, int count) {
    const long long rssBefore = statusKilobytes("VmRSS:"), heapBefore = heapInUse();
    const double cpuStart = cpuSeconds();
    double open = 0, ready = 0, read = 0, cpuReady = 0;
    long long heap = 0, sink = 0, rows = 0;
    if (store == "orvanta") {
        auto start = Clock::now();
        OwnedPtr<AssetDb> db = AssetDb::create(CString::fromUtf8(cataloguePath(count)));
        open = since(start);
        start = Clock::now();
        OwnedPtr<SortedAssetList> view = db->createSorted(Asset::kPropTimestamp, true, nullptr);
        view->buildIndex();
        ready = since(start);
        cpuReady = cpuSeconds() - cpuStart;
        heap = heapInUse() - heapBefore;
        start = Clock::now();
        for (int i = 0, n = view->getCount(); i < n; ++i) {
            OwnedPtr<PropertyList> properties = view->readProperties(view->getID(i));
            sink += properties->getValue(Asset::kPropTimestamp).asDateTime().getSecond() +
                    properties->getValue(Asset::kPropFilename).asString().length() +
                    properties->getValue(CatalogueFormat::kPropWidth).asInt();
            ++rows;
        }
        read = since(start);
    } else {
        auto start = Clock::now();
        sqlite3* db = nullptr;
        sqlite3_stmt* select = nullptr;
        sqlite3_open(sqlitePath(count).c_str(), &db);
        sqlite3_prepare_v2(
            db,
            "SELECT id, filename, folder, timestamp, width, height, filesize, writetime FROM assets "
            "ORDER BY timestamp",
            -1, &select, nullptr);
        open = since(start);
        start = Clock::now();
        int status = sqlite3_step(select);
        ready = since(start);
        cpuReady = cpuSeconds() - cpuStart;
        heap = heapInUse() - heapBefore;
        for (; status == SQLITE_ROW; status = sqlite3_step(select)) {
            sink += sqlite3_column_int64(select, 3) % 60 + sqlite3_column_bytes(select, 1) +
                    sqlite3_column_int(select, 4) + sqlite3_column_bytes(select, 0);
            ++rows;
        }
        read = since(start) + ready;
        ready = 0;
        sqlite3_finalize(select);
        sqlite3_close(db);
    }
    if (rows != count) std::fprintf(stderr, "%s: %lld rows of %d\n", store.c_str(), rows, count);
    const double cpuAll = cpuSeconds() - cpuStart;
    std::printf("%.6f %.6f %.6f %lld %lld %.6f %.6f %lld\n", open, ready, read, heap,
                (statusKilobytes("VmHWM:") - rssBefore) * 1024, cpuReady, cpuAll, sink % 2);
    return rows == count ? 0 : 1;
}

struct Figures {
    double open = 0, ready = 0, read = 0;
    long long heap = 0, peak = 0;
    double cpuReady = 0, cpuAll = 0;
};

bool measure(const std::string& store, int count, Figures* out) {
    const std::string command = std::filesystem::read_symlink("/proc/self/exe").string() + " --child " +
                                store + " " + std::to_string(count);
    FILE* child = popen(command.c_str(), "r");
    if (!child) return false;
    long long sink = 0;
    const int got = std::fscanf(child, "%lf %lf %lf %lld %lld %lf %lf %lld", &out->open, &out->ready,
                                &out->read, &out->heap, &out->peak, &out->cpuReady, &out->cpuAll, &sink);
    return pclose(child) == 0 && got == 8;
}

std::map<std::string, Figures> gBest;  // the fastest run of each benchmark, for the summary

// What is compared: the catalogue's view ready against SQLite's rows read in date order.
double timed(const std::string& store, const Figures& f, bool cpu) {
    if (store == "orvanta") return cpu ? f.cpuReady : f.open + f.ready;
    return cpu ? f.cpuAll : f.open + f.read;
}

void Catalogue(benchmark::State& state, const std::string& store) {
    const int count = static_cast<int>(state.range(0));
    if (!makeStores(count)) return state.SkipWithError("the stores could not be made");
    Figures figures;
    measure(store, count, &figures);  // a first run brings the files into the page cache
    Figures& best = gBest[store + std::to_string(count)];
    for (auto _ : state) {
        if (!measure(store, count, &figures)) return state.SkipWithError("the measuring process failed");
        state.SetIterationTime(timed(store, figures, false));
        if (best.cpuAll == 0 || timed(store, figures, false) < timed(store, best, false)) best = figures;
    }
    state.counters["open s"] = best.open;
    state.counters["view s"] = best.ready;
    state.counters["read all s"] = best.read;
    state.counters["heap B/asset"] = static_cast<double>(best.heap) / count;
    state.counters["peak RSS B/asset"] = static_cast<double>(best.peak) / count;
    state.counters["cpu view s"] = best.cpuReady;
    state.counters["cpu all s"] = best.cpuAll;
}

void summarise() {
    std::printf("\nsummary (the best of each; seconds; processor time in brackets)\n");
    for (int count : {100000, 1000000}) {
        const Figures& ours = gBest["orvanta" + std::to_string(count)];
        const Figures& theirs = gBest["sqlite" + std::to_string(count)];
        std::printf(
            "%8d assets: catalogue open %.3f + view %.3f = %.3f (%.3f), then reading every asset %.3f; "
            "SQLite open and read all in date order %.3f (%.3f); catalogue / SQLite %.2f (%.2f); "
            "catalogue heap %.0f B/asset, peak resident %.0f B/asset (the mapped file included)\n",
            count, ours.open, ours.ready, timed("orvanta", ours, false), timed("orvanta", ours, true),
            ours.read, timed("sqlite", theirs, false), timed("sqlite", theirs, true),
            timed("orvanta", ours, false) / timed("sqlite", theirs, false),
            timed("orvanta", ours, true) / timed("sqlite", theirs, true), double(ours.heap) / count,
            double(ours.peak) / count);
    }
    const double nlogn = 10.0 * std::log(1e6) / std::log(1e5);
    const auto growth = [&](const std::string& store, bool cpu) {
        return timed(store, gBest[store + "1000000"], cpu) / timed(store, gBest[store + "100000"], cpu);
    };
    std::printf("growth 100k -> 1M: catalogue %.1f (%.1f), SQLite %.1f (%.1f); n log n %.1f\n",
                growth("orvanta", false), growth("orvanta", true), growth("sqlite", false),
                growth("sqlite", true), nlogn);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 4 && std::strcmp(argv[1], "--child") == 0) return runChild(argv[2], std::atoi(argv[3]));
    for (const char* store : {"orvanta", "sqlite"})
        benchmark::RegisterBenchmark((std::string("Catalogue/") + store).c_str(), Catalogue,
                                     std::string(store))
            ->Arg(100000)
            ->Arg(1000000)
            ->Iterations(5)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (gBest.size() == 4) summarise();
    return 0;
}
