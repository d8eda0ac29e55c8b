// Editing speed on the decoded 6000 x 4000 benchmark photograph, single thread: megapixels of the
// source per second for each operation, its undo through EditableDib, and a plain memcpy of the
// same bytes for scale.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "bench/BenchData.h"
#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/editing/BWOp.h"
#include "orvanta/editing/CropOp.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/editing/SepiaOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"

using namespace Orvanta;

namespace {

// photo24.jpg decoded: through the library's JPEG codec when one is registered, else through
// ImageMagick into a BMP beside the benchmark data, read by the BMP codec.
Dib* photo() {
    static OwnedPtr<Dib> decoded = [] {
        orvantaIUInit();
        const std::string dir = OrvantaBench::benchDataDir();
        if (dir.empty()) return OwnedPtr<Dib>();
        const std::string jpeg = dir + "/photo24.jpg";
        CSize size;
        Codec* codec = CodecManager::getCodec(u"jpg");
        if (codec && codec->getCodecType() == CodecTypeImage)
            return OwnedPtr<Dib>(static_cast<ImageCodec*>(codec)->read(CString::fromUtf8(jpeg), &size, 0, 0));
        const std::string bmp = dir + "/photo24-decoded.bmp";
        std::error_code error;
        if (!std::filesystem::exists(bmp) ||
            std::filesystem::last_write_time(bmp, error) < std::filesystem::last_write_time(jpeg, error)) {
            const std::string command =
                "/usr/bin/convert '" + jpeg + "' -depth 8 -type TrueColor 'BMP3:" + bmp + "'";
            if (std::system(command.c_str()) != 0) return OwnedPtr<Dib>();
        }
        OwnedPtr<BmpCodec> reader(BmpCodec::create());
        return OwnedPtr<Dib>(reader->read(CString::fromUtf8(bmp), &size, 0, 0));
    }();
    return decoded;
}

bool ready(benchmark::State& state) {
    if (photo()) return true;
    state.SkipWithError("the benchmark photograph could not be made or decoded");
    return false;
}

void countPixels(benchmark::State& state) {
    const CSize size = photo()->getSize();
    state.counters["MP/s"] = benchmark::Counter(static_cast<double>(size.cx) * size.cy * 1e-6,
                                                benchmark::Counter::kIsIterationInvariantRate);
}

EditingOp* makeOp(int which) {
    const CSize size = photo()->getSize();
    switch (which) {
        case 0:
            return RotateOp::create(90);
        case 1:
            return RotateOp::create(180);
        case 2:
            return MirrorOp::create(false);
        case 3:
            return MirrorOp::create(true);
        case 4:
            return CropOp::create(DibMask(0, 0, size, DibRect(0.1, 0.1, 0.9, 0.9), 0));
        case 5:
            return SepiaOp::create(0.65, 0.5, 0.35);
        default:
            return BWOp::create(0.5, 0.5, 0.5);
    }
}

const char* opName(int which) {
    static const char* names[] = {"rotate90", "rotate180",  "mirror_h", "mirror_v",
                                  "crop",     "tone_sepia", "tone_bw"};
    return names[which];
}

void BM_Memcpy(benchmark::State& state) {
    if (!ready(state)) return;
    OwnedPtr<Dib> target(DibSection::create(photo()->getSize().cx, photo()->getSize().cy, 3));
    for (auto _ : state) {
        std::memcpy(target->getBits(), photo()->getBits(), static_cast<std::size_t>(photo()->getBitsSize()));
        benchmark::ClobberMemory();
    }
    countPixels(state);
}

void BM_Op(benchmark::State& state) {
    if (!ready(state)) return;
    state.SetLabel(opName(static_cast<int>(state.range(0))));
    OwnedPtr<EditingOp> op(makeOp(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        OwnedPtr<Dib> result(op->doOp(photo(), nullptr));
        benchmark::DoNotOptimize(result->getBits());
    }
    countPixels(state);
}

// The pixel work alone: the copy through a turned or mirrored view into a picture already made.
void BM_WalkerCopy(benchmark::State& state) {
    if (!ready(state)) return;
    const int which = static_cast<int>(state.range(0));
    state.SetLabel(which == 0 ? "rotate90" : which == 1 ? "mirror_h" : "mirror_v");
    DibWalker view(photo());
    if (which == 0) view.rotate(90);
    if (which == 1) view.mirror(false);
    if (which == 2) view.mirror(true);
    OwnedPtr<Dib> target(DibSection::create(view.width(), view.height(), 3));
    DibWalker to(target.get());
    for (auto _ : state) {
        to.copyFrom(&view, false);
        benchmark::ClobberMemory();
    }
    countPixels(state);
}

void BM_ToneInPlace(benchmark::State& state) {
    if (!ready(state)) return;
    OwnedPtr<Dib> copy(DibSection::create(photo()->getSize().cx, photo()->getSize().cy, 3));
    std::memcpy(copy->getBits(), photo()->getBits(), static_cast<std::size_t>(photo()->getBitsSize()));
    OwnedPtr<EditingOp> op(SepiaOp::create(0.65, 0.5, 0.35));
    for (auto _ : state) {
        op->doOpInPlace(copy, nullptr);
        benchmark::ClobberMemory();
    }
    countPixels(state);
}

void BM_Downsize(benchmark::State& state) {
    if (!ready(state)) return;
    const auto method = static_cast<DownsizeOp::DownsizeMethod>(state.range(0));
    state.SetLabel(method == 0 ? "method 0 (resampler)" : "method 2 (platform stretch)");
    OwnedPtr<EditingOp> op(DownsizeOp::create(method, CSize(1024, 1024), false, false));
    for (auto _ : state) {
        OwnedPtr<Dib> result(op->doOp(photo(), nullptr));
        benchmark::DoNotOptimize(result->getBits());
    }
    countPixels(state);
}

// EditableDib::undo of one edit; the edit is redone outside the timing before each undo.
void BM_Undo(benchmark::State& state) {
    if (!ready(state)) return;
    state.SetLabel(opName(static_cast<int>(state.range(0))));
    OwnedPtr<EditableDib> picture(new EditableDib(photo()));
    picture->doOp(OwnedPtr<EditingOp>(makeOp(static_cast<int>(state.range(0)))));
    for (auto _ : state) {
        picture->undo(true);
        state.PauseTiming();
        picture->redo();
        state.ResumeTiming();
    }
    countPixels(state);
}

}  // namespace

BENCHMARK(BM_Memcpy)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Op)->DenseRange(0, 6)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WalkerCopy)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ToneInPlace)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Downsize)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Undo)->DenseRange(0, 5)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
