// The browsing views under load, on SDL's offscreen display:
//  - a 1920 x 1080 ThumbnailControl of 160-pixel cells over a catalogue of 1,000,000 assets sorted by
//    date, scrolled a row at a time through 600 rows (7,200 assets, each with a stored thumbnail: the
//    store holds those the run passes over). A frame is the scroll through to the strip painted.
//    Budget: every frame within 16.7 ms; figures: median and 99th percentile, and the resident set
//    before and after the scroll (memory flat);
//  - start to first painted grid with a catalogue of 100,000 assets: the catalogue opened, the date
//    view made, the thumbnail store opened, the control shown and painted. Budget: 0.5 s;
//  - a 24-megapixel photograph from the click that opens it to its first display filling a
//    1920 x 1080 view, beside vipsthumbnail making a 1920-pixel picture of the same file (as a
//    process, the way a user would run it);
//  - a red-eye click on that photograph, loaded whole and editable, through to the repainted view.
//    Budget: 16 ms.
// The catalogues and the thumbnail store are made once under $TMPDIR (or /tmp).

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/BenchData.h"
#include "bench/BenchScreen.h"
#include "orvanta/assets/AssetDb.h"
#include "orvanta/assets/CatalogueFormat.h"
#include "orvanta/assets/SortedAssetList.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/Window.h"
#include "orvanta/store/PropertyDatabase.h"
#include "orvanta/toolkit/Container.h"
#include "orvanta/views/ImageControl.h"
#include "orvanta/views/RedeyePlugin.h"
#include "orvanta/views/ThumbnailControl.h"

using namespace Orvanta;
using OrvantaBench::runUntilIdle;
using Screen = OrvantaBench::BenchScreen;

namespace {

using Clock = std::chrono::steady_clock;

constexpr CSize kScreen(1920, 1080);
// 148 + 2 * 3 of annotation (the highlight) + 6 of spacing: 160-pixel cells.
constexpr int kThumb = 148;
constexpr int kScrollRows = 600;

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

long long residentKilobytes() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0) return std::atoll(line.c_str() + 6);
    return 0;
}

std::string workDir() {
    const char* base = std::getenv("TMPDIR");
    const std::string dir = std::string(base && *base ? base : "/tmp") + "/orvanta-bench-views";
    std::filesystem::create_directories(dir);
    return dir;
}

IntelJpegCodec* jpeg() {
    static OwnedPtr<IntelJpegCodec> codec = [] {
        OwnedPtr<IntelJpegCodec> c = IntelJpegCodec::create();
        CodecManager::registerCodec(c);
        return c;
    }();
    return codec;
}

// A catalogue of count assets whose files do not exist (so stored thumbnails are shown), a minute
// apart, written once.
std::string catalogue(int count) {
    const std::string path = workDir() + "/catalogue-" + std::to_string(count) + ".db";
    if (std::filesystem::exists(path)) return path;
    const std::string partial = path + ".part";
    std::filesystem::remove(partial);
    AssetDb::createFile(CString::fromUtf8(partial));
    {
        OwnedPtr<PropertyDatabase> lists =
            PropertyDatabase::create(CString::fromUtf8(partial), CatalogueFormat::kGrowBlocks);
        for (int i = 0; i < count; ++i) {
            OwnedPtr<PropertyList> list = PropertyList::create();
            list->set(PropertyList::kPropID, PropertyValue(UniqueID::create()), false);
            list->set(Asset::kPropFilename,
                      PropertyValue(CString::fromUtf8("IMG_" + std::to_string(i) + ".jpg")), false);
            list->set(Asset::kPropFolder, PropertyValue(CString(u"/nonexistent/photos")), false);
            DateTime taken(2010 + i / 500000, 1 + (i / 40000) % 12, 1 + (i / 1440) % 28, (i / 60) % 24,
                           i % 60, 0, 0);
            list->set(Asset::kPropTimestamp, PropertyValue(taken), false);
            lists->putList(list);
        }
    }
    std::filesystem::rename(partial, path);
    return path;
}

// The thumbnails of the first count assets of view, stored once.
ThumbnailDb* thumbnails(SortedAssetList* view, int count, const std::string& name) {
    const std::string path = workDir() + "/" + name;
    const bool fresh = !std::filesystem::exists(path);
    if (fresh) ThumbnailDb::createFile(CString::fromUtf8(path), 1024, 0);
    ThumbnailDb* store = ThumbnailDb::create(CString::fromUtf8(path), kThumb, kThumb, jpeg());
    if (fresh)
        for (int i = 0; i < count && i < view->getCount(); ++i) {
            OwnedPtr<Dib> dib = DibSection::create(kThumb, kThumb * 3 / 4, 3);
            unsigned char* bits = dib->getBits();
            for (int b = 0; b < dib->getBitsSize(); ++b)
                bits[b] = static_cast<unsigned char>((b / 3 * 7 + i * 13 + b % 3 * 50) % 256);
            OwnedPtr<Image> picture = Image::create(dib, false);
            store->putThumbnail(view->getID(i), picture, FILETIME{1, 0}, false);
        }
    return store;
}

ThumbnailControl* grid(Screen& screen, ThumbnailDb* store, AssetList* list) {
    ThumbnailControl* control = ThumbnailControl::create(ThumbnailControl::kGrow, ThumbnailControl::kFit,
                                                         kThumb, kThumb, store, true, nullptr, nullptr);
    control->setAutoSpacing(6);
    control->setRect(CRect(CPoint(0, 0), kScreen));
    screen.root->add(control, true);
    control->setList(list);
    return control;
}

void BM_GridScroll1000000Assets(benchmark::State& state) {
    OwnedPtr<AssetDb> db = AssetDb::create(CString::fromUtf8(catalogue(1000000)));
    OwnedPtr<SortedAssetList> view = db->createSorted(Asset::kPropTimestamp, true, nullptr);
    OwnedPtr<ThumbnailDb> store = thumbnails(view, (kScrollRows + 8) * 12, "thumbs-1000000.db");
    Screen screen(kScreen);
    ThumbnailControl* control = grid(screen, store, view);
    runUntilIdle(screen.root);
    std::vector<double> frames;
    long long before = 0, after = 0;
    for (auto _ : state) {
        control->setFirstRow(0);
        runUntilIdle(screen.root);
        before = residentKilobytes();
        for (int i = 0; i < kScrollRows; ++i) {
            const auto start = Clock::now();
            control->scrollBy(1, 0);
            runUntilIdle(screen.root);
            frames.push_back(msSince(start));
        }
        after = residentKilobytes();
    }
    std::sort(frames.begin(), frames.end());
    state.counters["assets"] = view->getCount();
    state.counters["columns"] = control->getNumCols();
    state.counters["median_frame_ms"] = frames[frames.size() / 2];
    state.counters["p99_frame_ms"] = frames[frames.size() * 99 / 100];
    state.counters["max_frame_ms"] = frames.back();
    state.counters["rss_before_MB"] = before / 1024.0;
    state.counters["rss_after_MB"] = after / 1024.0;
}
BENCHMARK(BM_GridScroll1000000Assets)->Unit(benchmark::kMillisecond)->Iterations(2);

void BM_StartToFirstGrid100000Assets(benchmark::State& state) {
    const std::string path = catalogue(100000);
    {
        OwnedPtr<AssetDb> db = AssetDb::create(CString::fromUtf8(path));
        OwnedPtr<SortedAssetList> view = db->createSorted(Asset::kPropTimestamp, true, nullptr);
        OwnedPtr<ThumbnailDb> store = thumbnails(view, 200, "thumbs-100000.db");
    }
    for (auto _ : state) {
        Screen screen(kScreen);
        const auto start = Clock::now();
        OwnedPtr<AssetDb> db = AssetDb::create(CString::fromUtf8(path));
        OwnedPtr<SortedAssetList> view = db->createSorted(Asset::kPropTimestamp, true, nullptr);
        OwnedPtr<ThumbnailDb> store =
            ThumbnailDb::create(CString::fromUtf8(workDir() + "/thumbs-100000.db"), kThumb, kThumb, jpeg());
        grid(screen, store, view);
        runUntilIdle(screen.root);
        state.SetIterationTime(msSince(start) / 1000.0);
        screen.root->removeAll();
    }
}
BENCHMARK(BM_StartToFirstGrid100000Assets)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);

std::string photo24() {
    const std::string dir = OrvantaBench::benchDataDir();
    return dir.empty() ? std::string() : dir + "/photo24.jpg";
}

void BM_Photo24OpenToFullScreen(benchmark::State& state) {
    const std::string path = photo24();
    if (path.empty()) {
        state.SkipWithError("no benchmark photographs");
        return;
    }
    jpeg();
    Screen screen(kScreen);
    ImageControl* control = ImageControl::create(true);
    control->setRect(CRect(CPoint(0, 0), kScreen));
    screen.root->add(control, true);
    runUntilIdle(screen.root);
    for (auto _ : state) {
        const auto start = Clock::now();
        OwnedPtr<ImageFile> file = ImageFile::create(CString::fromUtf8(path), jpeg(), nullptr, nullptr);
        OwnedPtr<Image> shown = file->loadImage(kScreen.cy, kScreen.cx, false);
        control->setImage(shown);
        runUntilIdle(screen.root);
        state.SetIterationTime(msSince(start) / 1000.0);
        control->setImage(nullptr);
        runUntilIdle(screen.root);
    }
}
BENCHMARK(BM_Photo24OpenToFullScreen)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);

void BM_Photo24Vipsthumbnail1920(benchmark::State& state) {
    const std::string path = photo24();
    if (path.empty() || std::system("command -v vipsthumbnail >/dev/null 2>&1") != 0) {
        state.SkipWithError("no benchmark photographs or no vipsthumbnail");
        return;
    }
    const std::string command = "vipsthumbnail -s 1920 '" + path + "' -o '" + workDir() + "/vips-1920.jpg'";
    for (auto _ : state)
        if (std::system(command.c_str()) != 0) state.SkipWithError("vipsthumbnail failed");
}
BENCHMARK(BM_Photo24Vipsthumbnail1920)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_Photo24RedeyeClick(benchmark::State& state) {
    const std::string path = photo24();
    if (path.empty()) {
        state.SkipWithError("no benchmark photographs");
        return;
    }
    Screen screen(kScreen);
    ImageControl* control = ImageControl::create(true);
    control->setRect(CRect(CPoint(0, 0), kScreen));
    screen.root->add(control, true);
    OwnedPtr<ImageFile> file = ImageFile::create(CString::fromUtf8(path), jpeg(), nullptr, nullptr);
    OwnedPtr<Image> picture = file->loadImage(0, 0, true);
    control->setImage(picture);
    control->setPlugin(RedeyePlugin::create(40, IDC_CROSS));
    runUntilIdle(screen.root);
    const CRect display = control->getDisplayRect();
    int i = 0;
    for (auto _ : state) {
        // A press where the picture shows, as the mouse gives it.
        const CPoint at(display.left + display.width() * (1 + i % 7) / 9, display.top + display.height() / 2);
        ++i;
        const auto start = Clock::now();
        control->handleMessage(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y), nullptr);
        control->handleMessage(WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y), nullptr);
        runUntilIdle(screen.root);
        state.SetIterationTime(msSince(start) / 1000.0);
    }
    state.counters["edits"] = picture->getUndoCount();
}
BENCHMARK(BM_Photo24RedeyeClick)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);

}  // namespace

int main(int argc, char** argv) {
    return OrvantaBench::runScreenBenchmarks(argc, argv);
}
