// The automatic picture fix and the red-eye removal on real photographs.
//
// PicFix: megapixels per second on the decoded photo24.jpg (6000 x 4000), both forms.
// Red-eye: time per click on a red pupil of the red-eye test photograph at radii 20, 50 and 100,
// for the whole operation (which copies the picture) and for the detector alone on the box.
// The JPEG is decoded once by ImageMagick into a temporary BMP, so that the figures do not depend on
// which JPEG decoder this build has.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

#include "bench/BenchData.h"
#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/RedeyeDetector.h"
#include "orvanta/editing/RedeyeOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "orvanta/platform/PixelBlocks.h"

using namespace Orvanta;

namespace {

Dib* readBmp(const std::string& path) {
    OwnedPtr<BmpCodec> codec = BmpCodec::create();
    return codec->read(CString::fromUtf8(path), nullptr, 0, 0);
}

// photo24.jpg decoded, kept for the whole run.
Dib* photo24() {
    static OwnedPtr<Dib> photo = [] {
        const std::string dir = OrvantaBench::benchDataDir();
        if (dir.empty()) return static_cast<Dib*>(nullptr);
        const std::string bmp = std::filesystem::temp_directory_path() /
                                ("orvanta-bench-photo24-" + std::to_string(getpid()) + ".bmp");
        const std::string command =
            "/usr/bin/convert '" + dir + "/photo24.jpg' -type TrueColor 'BMP3:" + bmp + "'";
        Dib* dib = std::system(command.c_str()) == 0 ? readBmp(bmp) : nullptr;
        std::filesystem::remove(bmp);
        return dib;
    }();
    return photo;
}

Dib* redeyePhoto() {
    static OwnedPtr<Dib> photo =
        readBmp(std::string(ORVANTA_SOURCE_DIR) + "/../shared/testdata/redeye/redeye-boldredeye-576x433.bmp");
    return photo;
}

// The left pupil of the red-eye photograph.
constexpr int kEyeX = 160, kEyeY = 193;

// Fixes the 24 MP photograph into a new picture each round; with freshPages, a block of another
// size is made and released between rounds (untimed) in place of the kept one, so that the new
// picture's pages come fresh from the kernel as in the first fix in a process.
void runPicFix(benchmark::State& state, bool freshPages) {
    Dib* photo = photo24();
    if (!photo) return state.SkipWithError("photo24.jpg is not available");
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    for (auto _ : state) {
        {
            OwnedPtr<Dib> out = op->doOp(photo, nullptr);
            benchmark::DoNotOptimize(out->getBits());
            if (!freshPages) continue;
            state.PauseTiming();
        }
        Platform::PixelBlocks::release(
            Platform::PixelBlocks::allocatePicture(std::size_t(8) << 20, Platform::PixelBlocks::kUndefined));
        state.ResumeTiming();
    }
    const double pixels = static_cast<double>(photo->getSize().cx) * photo->getSize().cy;
    state.counters["MP/s"] = benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

// In a loop whose new picture takes the block the previous round released.
void BM_PicFix(benchmark::State& state) {
    runPicFix(state, false);
}
BENCHMARK(BM_PicFix)->Unit(benchmark::kMillisecond)->UseRealTime();

// The first fix in a process: no block of the picture's size is kept.
void BM_PicFixFreshPicture(benchmark::State& state) {
    runPicFix(state, true);
}
BENCHMARK(BM_PicFixFreshPicture)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_PicFixInPlace(benchmark::State& state) {
    Dib* photo = photo24();
    if (!photo) return state.SkipWithError("photo24.jpg is not available");
    OwnedPtr<Dib> work = DibSection::create(*photo->getBitmapInfo());
    DibWalker from(photo);
    DibWalker to(work.get());
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    for (auto _ : state) {
        state.PauseTiming();
        to.copyFrom(&from, false);
        state.ResumeTiming();
        op->doOpInPlace(work, nullptr);
    }
    const double pixels = static_cast<double>(photo->getSize().cx) * photo->getSize().cy;
    state.counters["MP/s"] = benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_PicFixInPlace)->Unit(benchmark::kMillisecond)->UseRealTime();

// The whole operation, a click on the pupil: copy of the picture, detection, correction, undo patch.
void BM_RedeyeClick(benchmark::State& state) {
    Dib* photo = redeyePhoto();
    if (!photo) return state.SkipWithError("the red-eye photograph is not available");
    const CSize size = photo->getSize();
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint((kEyeX + 0.5) / size.cx, (kEyeY + 0.5) / size.cy),
                                             static_cast<int>(state.range(0)));
    for (auto _ : state) {
        UndoOp* undo = nullptr;
        OwnedPtr<Dib> out = op->doOp(photo, &undo);
        OwnedPtr<UndoOp> record = undo;
        if (!out) return state.SkipWithError("the click found no pupil");
    }
}
BENCHMARK(BM_RedeyeClick)->Arg(20)->Arg(50)->Arg(100)->Unit(benchmark::kMicrosecond);

// The detector alone on the box of the click, without the copy of the picture.
void BM_RedeyeDetector(benchmark::State& state) {
    Dib* photo = redeyePhoto();
    if (!photo) return state.SkipWithError("the red-eye photograph is not available");
    const int radius = static_cast<int>(state.range(0)), side = 2 * radius + 1;
    DibWalker source(photo, kEyeX - radius, kEyeY - radius, side, side);
    OwnedPtr<Dib> dest = DibSection::create(side, side, 3);
    OwnedPtr<Dib> mask1 = ByteDib::create(side, side), mask2 = ByteDib::create(side, side);
    DibWalker destView(dest.get()), m1(mask1.get()), m2(mask2.get());
    for (auto _ : state) {
        const CRect found = RedeyeDetector::detect(source.getGrNav(), destView.getGrNav(), radius, radius,
                                                   m1.getGrNav(), m2.getGrNav(), true, false);
        benchmark::DoNotOptimize(found);
    }
}
BENCHMARK(BM_RedeyeDetector)->Arg(20)->Arg(50)->Arg(100)->Unit(benchmark::kMicrosecond);

// A click on photo24 (no red there): the cost of the copy of a 24-megapixel picture dominates.
void BM_RedeyeClickOn24MP(benchmark::State& state) {
    Dib* photo = photo24();
    if (!photo) return state.SkipWithError("photo24.jpg is not available");
    OwnedPtr<RedeyeOp> op = RedeyeOp::create(DibPoint(0.5, 0.5), static_cast<int>(state.range(0)));
    for (auto _ : state) {
        OwnedPtr<Dib> out = op->doOp(photo, nullptr);
        benchmark::DoNotOptimize(out.get());
    }
}
BENCHMARK(BM_RedeyeClickOn24MP)->Arg(50)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
