// Reading a photograph without a mapping. The 24-megapixel benchmark JPEG read whole by FileContents
// (plain reads into a block of memory) against the same bytes mapped and touched page by page, as
// the codecs read before a file cut short under a mapping could end the process with SIGBUS; the
// header, read from the file's first 128 KiB; and, for scale, the decode at an eighth that a
// thumbnail makes of those bytes. Warm cache, one thread.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "bench/BenchData.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/FileContents.h"

using namespace Orvanta;

namespace {

std::string photoPath(benchmark::State& state) {
    const std::string dir = OrvantaBench::benchDataDir();
    if (dir.empty()) state.SkipWithError("the benchmark photograph could not be made");
    return dir.empty() ? dir : dir + "/photo24.jpg";
}

void BM_ReadWhole(benchmark::State& state) {
    const std::string path = photoPath(state);
    long long bytes = 0;
    for (auto _ : state) {
        Platform::FileContents file;
        if (!file.open(path)) return state.SkipWithError("cannot read the photograph");
        benchmark::DoNotOptimize(file.data()[file.size() - 1]);
        bytes += file.size();
    }
    state.SetBytesProcessed(bytes);
}
BENCHMARK(BM_ReadWhole)->Unit(benchmark::kMillisecond);

void BM_MapAndTouch(benchmark::State& state) {
    const std::string path = photoPath(state);
    long long bytes = 0;
    for (auto _ : state) {
        const int fd = ::open(path.c_str(), O_RDONLY);
        struct stat info;
        if (fd < 0 || fstat(fd, &info) != 0) return state.SkipWithError("cannot open the photograph");
        const auto size = static_cast<std::size_t>(info.st_size);
        void* view = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
        const auto* bytesOf = static_cast<const unsigned char*>(view);
        unsigned sum = 0;
        for (std::size_t at = 0; at < size; at += 4096) sum += bytesOf[at];
        benchmark::DoNotOptimize(sum);
        munmap(view, size);
        ::close(fd);
        bytes += static_cast<long long>(size);
    }
    state.SetBytesProcessed(bytes);
}
BENCHMARK(BM_MapAndTouch)->Unit(benchmark::kMillisecond);

void BM_Header(benchmark::State& state) {
    const CString path = CString::fromUtf8(photoPath(state));
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    for (auto _ : state) {
        CSize size;
        codec->getInfo(path, &size, nullptr);
        benchmark::DoNotOptimize(size);
    }
}
BENCHMARK(BM_Header)->Unit(benchmark::kMicrosecond);

void BM_DecodeAnEighth(benchmark::State& state) {
    const CString path = CString::fromUtf8(photoPath(state));
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    for (auto _ : state) {
        OwnedPtr<Dib> dib = codec->read(path, nullptr, 500, 750);
        benchmark::DoNotOptimize(dib.get());
    }
}
BENCHMARK(BM_DecodeAnEighth)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
