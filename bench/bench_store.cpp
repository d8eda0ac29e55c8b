// The record store against SQLite and LMDB, on the same data in the same program: 100,000 property
// lists of about 300 bytes keyed by random ids are inserted, the store is closed, reopened and read
// through, and 100,000 random lookups follow.
//
// Every store keeps what a killed process wrote and none forces it to the disk: the record store has
// no flush, SQLite runs in WAL mode with synchronous=NORMAL in one transaction, LMDB with MDB_NOSYNC in
// one transaction. Files go to $BENCH_STORE_DIR (default /tmp). Counters: records per second, and
// the size of the store's files in megabytes.

#include <benchmark/benchmark.h>
#include <lmdb.h>
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/Database.h"
#include "orvanta/store/PropertyDatabase.h"

using namespace Orvanta;

namespace {

constexpr int kRecords = 100000;

struct Item {
    UniqueID id;
    unsigned char key[16];
    std::vector<unsigned char> body;  // the property-list record body
    OwnedPtr<PropertyList> list;
};

std::string storeDir() {
    const char* configured = std::getenv("BENCH_STORE_DIR");
    const std::string dir =
        std::string(configured && *configured ? configured : "/tmp") + "/orvanta-bench-store";
    std::filesystem::create_directories(dir);
    return dir;
}

// The catalogue entries, made once: a file name, a folder, a date, a rating and a caption, encoded by
// a scratch property database into the record body every store then keeps (about 300 bytes).
const std::vector<Item>& items() {
    static const std::vector<Item> made = [] {
        std::vector<Item> out(kRecords);
        const std::string scratch = storeDir() + "/scratch.db";
        std::filesystem::remove(scratch);
        PropertyDatabase::createFile(CString::fromUtf8(scratch), 1024, 2, 0);
        OwnedPtr<PropertyDatabase> encoder = PropertyDatabase::create(CString::fromUtf8(scratch), 100);
        std::mt19937 random(42);
        for (int i = 0; i < kRecords; ++i) {
            Item& item = out[static_cast<std::size_t>(i)];
            item.id = UniqueID::create();
            item.id.writeBytes(item.key);
            item.list = PropertyList::create();
            char text[160];
            item.list->set(PropertyList::kPropID, PropertyValue(item.id), false);
            std::snprintf(text, sizeof text, "IMG_%05d.JPG", i);
            item.list->set(u"filename", PropertyValue(CString::fromUtf8(text)), false);
            std::snprintf(text, sizeof text, "/home/user/Pictures/%d/Provence %02d", 1998 + i % 12, i % 40);
            item.list->set(u"folder", PropertyValue(CString::fromUtf8(text)), false);
            item.list->set(
                u"timestamp",
                PropertyValue(DateTime(1998 + i % 12, 1 + i % 12, 1 + i % 28, i % 24, i % 60, 0, 0)), false);
            item.list->set(u"rating", PropertyValue(static_cast<int>(random() % 6)), false);
            std::snprintf(text, sizeof text, "Harbour at dusk %05d", static_cast<int>(random() % 100000));
            item.list->set(u"caption", PropertyValue(CString::fromUtf8(text)), false);
            encoder->putList(item.list);
            Database::Record* record = encoder->getDatabase()->findRecord(item.id);
            item.body.assign(record->getDataBytes(), record->getDataBytes() + record->getDataSize());
        }
        encoder = nullptr;
        std::filesystem::remove(scratch);
        return out;
    }();
    return made;
}

// The ids in a shuffled order, for lookups.
const std::vector<int>& lookupOrder() {
    static const std::vector<int> order = [] {
        std::vector<int> out(kRecords);
        for (int i = 0; i < kRecords; ++i) out[static_cast<std::size_t>(i)] = i;
        std::shuffle(out.begin(), out.end(), std::mt19937(7));
        return out;
    }();
    return order;
}

double megabytes(const std::vector<std::string>& paths) {
    std::uintmax_t total = 0;
    for (const auto& path : paths)
        if (std::filesystem::exists(path)) total += std::filesystem::file_size(path);
    return static_cast<double>(total) / (1024.0 * 1024.0);
}

using Clock = std::chrono::steady_clock;
double since(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void report(benchmark::State& state, double seconds, int records) {
    state.SetIterationTime(seconds);
    state.counters["records/s"] = benchmark::Counter(records, benchmark::Counter::kIsIterationInvariantRate);
}

// --- The record store ------------------------------------------------------------------------------

std::string orvantaPath(int blockSize) {
    return storeDir() + "/orvanta-" + std::to_string(blockSize) + ".db";
}

// Inserts every body with Database::addRecord (the same blobs the other stores get), then closes.
void OrvantaInsert(benchmark::State& state) {
    const auto& data = items();
    const int blockSize = static_cast<int>(state.range(0));
    const std::string path = orvantaPath(blockSize);
    for (auto _ : state) {
        std::filesystem::remove(path);
        Database::createFile(CString::fromUtf8(path), blockSize, 2, 0);
        const auto start = Clock::now();
        OwnedPtr<Database> db = Database::create(CString::fromUtf8(path), 100);
        for (const Item& item : data)
            if (!db->addRecord(item.id, item.body.data(), static_cast<int>(item.body.size())))
                state.SkipWithError("add failed");
        db = nullptr;
        report(state, since(start), kRecords);
    }
    state.counters["file MB"] = megabytes({path});
}

// The whole catalogue path: PropertyDatabase::putList, serialising each list.
void OrvantaPutList(benchmark::State& state) {
    const auto& data = items();
    const std::string path = storeDir() + "/orvanta-lists.db";
    for (auto _ : state) {
        std::filesystem::remove(path);
        PropertyDatabase::createFile(CString::fromUtf8(path), 1024, 2, 0);
        const auto start = Clock::now();
        OwnedPtr<PropertyDatabase> db = PropertyDatabase::create(CString::fromUtf8(path), 100);
        for (const Item& item : data)
            if (!db->putList(item.list)) state.SkipWithError("put failed");
        db = nullptr;
        report(state, since(start), kRecords);
    }
    state.counters["file MB"] = megabytes({path});
}

// Reopens (the walk that rebuilds the indexes) and reads every record through the iterator, in id order.
void OrvantaReopenAndScan(benchmark::State& state) {
    const std::string path = orvantaPath(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const auto start = Clock::now();
        OwnedPtr<Database> db = Database::create(CString::fromUtf8(path), 100);
        std::uint64_t sink = 0;
        int seen = 0;
        OwnedPtr<Database::Iterator> walk = db->createIterator();
        while (Database::Record* record = walk->next()) {
            std::uint64_t first;
            std::memcpy(&first, record->getDataBytes(), sizeof first);
            sink += first + static_cast<std::uint64_t>(record->getDataSize());
            ++seen;
        }
        benchmark::DoNotOptimize(sink);
        db = nullptr;
        if (seen != kRecords) state.SkipWithError("records missing");
        report(state, since(start), kRecords);
    }
}

// Reopens and loads every record as a PropertyList (decoding each one).
void OrvantaReopenAndLoadLists(benchmark::State& state) {
    const std::string path = storeDir() + "/orvanta-lists.db";
    for (auto _ : state) {
        const auto start = Clock::now();
        OwnedPtr<PropertyDatabase> db = PropertyDatabase::create(CString::fromUtf8(path), 100);
        OwnedPtr<PropertyDatabase::Iterator> walk = db->createIterator();
        int seen = 0;
        while (PropertyList* list = walk->next()) {
            OwnedPtr<PropertyList> held = list;
            seen += held->getCount() > 1;
        }
        db = nullptr;
        if (seen != kRecords) state.SkipWithError("lists missing");
        report(state, since(start), kRecords);
    }
}

void OrvantaLookup(benchmark::State& state) {
    const auto& data = items();
    OwnedPtr<Database> db =
        Database::create(CString::fromUtf8(orvantaPath(static_cast<int>(state.range(0)))), 100);
    for (auto _ : state) {
        const auto start = Clock::now();
        std::uint64_t sink = 0;
        for (const int i : lookupOrder()) {
            Database::Record* record = db->findRecord(data[static_cast<std::size_t>(i)].id);
            if (!record) state.SkipWithError("record missing");
            sink += record->getDataBytes()[0] + static_cast<std::uint64_t>(record->getDataSize());
        }
        benchmark::DoNotOptimize(sink);
        report(state, since(start), kRecords);
    }
}

// --- SQLite ------------------------------------------------------------------------------------------

std::string sqlitePath() {
    return storeDir() + "/sqlite.db";
}

sqlite3* openSqlite() {
    sqlite3* db = nullptr;
    sqlite3_open(sqlitePath().c_str(), &db);
    sqlite3_exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr, nullptr, nullptr);
    return db;
}

void SqliteInsert(benchmark::State& state) {
    const auto& data = items();
    for (auto _ : state) {
        for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(sqlitePath() + suffix);
        const auto start = Clock::now();
        sqlite3* db = openSqlite();
        sqlite3_exec(db, "CREATE TABLE records(id BLOB PRIMARY KEY, body BLOB) WITHOUT ROWID", nullptr,
                     nullptr, nullptr);
        sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(db, "INSERT INTO records VALUES(?, ?)", -1, &insert, nullptr);
        for (const Item& item : data) {
            sqlite3_bind_blob(insert, 1, item.key, 16, SQLITE_STATIC);
            sqlite3_bind_blob(insert, 2, item.body.data(), static_cast<int>(item.body.size()), SQLITE_STATIC);
            if (sqlite3_step(insert) != SQLITE_DONE) state.SkipWithError("insert failed");
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
        sqlite3_close(db);
        report(state, since(start), kRecords);
    }
    state.counters["file MB"] = megabytes({sqlitePath(), sqlitePath() + "-wal"});
}

void SqliteReopenAndScan(benchmark::State& state) {
    for (auto _ : state) {
        const auto start = Clock::now();
        sqlite3* db = openSqlite();
        sqlite3_stmt* scan = nullptr;
        sqlite3_prepare_v2(db, "SELECT id, body FROM records", -1, &scan, nullptr);
        std::uint64_t sink = 0;
        int seen = 0;
        while (sqlite3_step(scan) == SQLITE_ROW) {
            const auto* body = static_cast<const unsigned char*>(sqlite3_column_blob(scan, 1));
            std::uint64_t first;
            std::memcpy(&first, body, sizeof first);
            sink += first + static_cast<std::uint64_t>(sqlite3_column_bytes(scan, 1));
            ++seen;
        }
        sqlite3_finalize(scan);
        sqlite3_close(db);
        benchmark::DoNotOptimize(sink);
        if (seen != kRecords) state.SkipWithError("records missing");
        report(state, since(start), kRecords);
    }
}

void SqliteLookup(benchmark::State& state) {
    const auto& data = items();
    sqlite3* db = openSqlite();
    sqlite3_stmt* find = nullptr;
    sqlite3_prepare_v2(db, "SELECT body FROM records WHERE id = ?", -1, &find, nullptr);
    for (auto _ : state) {
        const auto start = Clock::now();
        std::uint64_t sink = 0;
        for (const int i : lookupOrder()) {
            sqlite3_bind_blob(find, 1, data[static_cast<std::size_t>(i)].key, 16, SQLITE_STATIC);
            if (sqlite3_step(find) != SQLITE_ROW) state.SkipWithError("record missing");
            sink += static_cast<const unsigned char*>(sqlite3_column_blob(find, 0))[0] +
                    static_cast<std::uint64_t>(sqlite3_column_bytes(find, 0));
            sqlite3_reset(find);
        }
        benchmark::DoNotOptimize(sink);
        report(state, since(start), kRecords);
    }
    sqlite3_finalize(find);
    sqlite3_close(db);
}

// --- LMDB --------------------------------------------------------------------------------------------

std::string lmdbPath() {
    return storeDir() + "/lmdb";
}

MDB_env* openLmdb() {
    MDB_env* env = nullptr;
    mdb_env_create(&env);
    mdb_env_set_mapsize(env, std::size_t(1) << 30);
    mdb_env_open(env, lmdbPath().c_str(), MDB_NOSUBDIR | MDB_NOSYNC, 0644);
    return env;
}

void LmdbInsert(benchmark::State& state) {
    const auto& data = items();
    for (auto _ : state) {
        for (const char* suffix : {"", "-lock"}) std::filesystem::remove(lmdbPath() + suffix);
        const auto start = Clock::now();
        MDB_env* env = openLmdb();
        MDB_txn* txn = nullptr;
        MDB_dbi dbi;
        mdb_txn_begin(env, nullptr, 0, &txn);
        mdb_dbi_open(txn, nullptr, 0, &dbi);
        for (const Item& item : data) {
            MDB_val key{16, const_cast<unsigned char*>(item.key)};
            MDB_val value{item.body.size(), const_cast<unsigned char*>(item.body.data())};
            if (mdb_put(txn, dbi, &key, &value, 0) != 0) state.SkipWithError("put failed");
        }
        mdb_txn_commit(txn);
        mdb_env_close(env);
        report(state, since(start), kRecords);
    }
    state.counters["file MB"] = megabytes({lmdbPath()});
}

void LmdbReopenAndScan(benchmark::State& state) {
    for (auto _ : state) {
        const auto start = Clock::now();
        MDB_env* env = openLmdb();
        MDB_txn* txn = nullptr;
        MDB_dbi dbi;
        MDB_cursor* cursor = nullptr;
        mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn);
        mdb_dbi_open(txn, nullptr, 0, &dbi);
        mdb_cursor_open(txn, dbi, &cursor);
        MDB_val key, value;
        std::uint64_t sink = 0;
        int seen = 0;
        for (int rc = mdb_cursor_get(cursor, &key, &value, MDB_FIRST); rc == 0;
             rc = mdb_cursor_get(cursor, &key, &value, MDB_NEXT)) {
            std::uint64_t first;
            std::memcpy(&first, value.mv_data, sizeof first);
            sink += first + value.mv_size;
            ++seen;
        }
        mdb_cursor_close(cursor);
        mdb_txn_abort(txn);
        mdb_env_close(env);
        benchmark::DoNotOptimize(sink);
        if (seen != kRecords) state.SkipWithError("records missing");
        report(state, since(start), kRecords);
    }
}

void LmdbLookup(benchmark::State& state) {
    const auto& data = items();
    MDB_env* env = openLmdb();
    MDB_txn* txn = nullptr;
    MDB_dbi dbi;
    mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn);
    mdb_dbi_open(txn, nullptr, 0, &dbi);
    for (auto _ : state) {
        const auto start = Clock::now();
        std::uint64_t sink = 0;
        for (const int i : lookupOrder()) {
            MDB_val key{16, const_cast<unsigned char*>(data[static_cast<std::size_t>(i)].key)}, value;
            if (mdb_get(txn, dbi, &key, &value) != 0) state.SkipWithError("record missing");
            sink += static_cast<const unsigned char*>(value.mv_data)[0] + value.mv_size;
        }
        benchmark::DoNotOptimize(sink);
        report(state, since(start), kRecords);
    }
    mdb_txn_abort(txn);
    mdb_env_close(env);
}

}  // namespace

// Each store's insert runs before its reads, which use the file it left.
BENCHMARK(OrvantaInsert)->Arg(1024)->Arg(384)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(OrvantaReopenAndScan)
    ->Arg(1024)
    ->Arg(384)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(OrvantaLookup)->Arg(1024)->Arg(384)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(OrvantaPutList)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(OrvantaReopenAndLoadLists)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(SqliteInsert)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(SqliteReopenAndScan)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(SqliteLookup)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(LmdbInsert)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(LmdbReopenAndScan)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(LmdbLookup)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
