// Reading a photograph without a mapping. The 24-megapixel benchmark JPEG read whole by FileContents
// (plain reads into a block of memory) against the same bytes mapped and touched page by page, as
// the codecs read before a file cut short under a mapping could end the process with SIGBUS; the
// header, read from the file's first 128 KiB; and, for scale, the decode at an eighth that a
// thumbnail makes of those bytes. Warm cache, one thread.
//
// Writing it: the codec's save of the decoded photograph (high quality, into a file, its strips
// encoded on every core) against libjpeg-turbo encoding the same pixels the same way in one pass
// into memory, the single encoder the save replaces.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <jpeglib.h>

#include "bench/BenchData.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/FileContents.h"
#include "orvanta/platform/JpegRowWriter.h"

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

// The photograph decoded once.
Dib* decodedPhoto(benchmark::State& state) {
    static OwnedPtr<Dib> photo;
    if (!photo) {
        const std::string path = photoPath(state);
        if (!path.empty()) photo = IntelJpegCodec::create()->read(CString::fromUtf8(path), nullptr, 0, 0);
    }
    if (!photo) state.SkipWithError("cannot decode the photograph");
    return photo.get();
}

void BM_WriteSingleEncoder(benchmark::State& state) {
    Dib* photo = decodedPhoto(state);
    if (!photo) return;
    const CSize size = photo->getSize();
    Platform::JpegRowWriter::Settings settings;
    settings.width = size.cx;
    settings.height = size.cy;
    settings.channels = photo->getBytesPerPixel();
    settings.horizontalSampling = 2;  // the codec's high quality: 4:2:2
    for (auto _ : state) {
        jpeg_compress_struct info;
        jpeg_error_mgr errors;
        info.err = jpeg_std_error(&errors);
        jpeg_create_compress(&info);
        unsigned char* bytes = nullptr;
        unsigned long length = 0;
        jpeg_mem_dest(&info, &bytes, &length);
        Platform::JpegRowWriter::configure(&info, settings);
        jpeg_start_compress(&info, TRUE);
        while (info.next_scanline < info.image_height) {
            JSAMPROW row =
                photo->getBits() + static_cast<std::size_t>(photo->getStride()) * info.next_scanline;
            jpeg_write_scanlines(&info, &row, 1);
        }
        jpeg_finish_compress(&info);
        jpeg_destroy_compress(&info);
        benchmark::DoNotOptimize(length);
        std::free(bytes);
    }
}
BENCHMARK(BM_WriteSingleEncoder)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_WriteCodecSave(benchmark::State& state) {
    Dib* photo = decodedPhoto(state);
    if (!photo) return;
    char folder[] = "/tmp/orvanta-bench-XXXXXX";
    if (!mkdtemp(folder)) return state.SkipWithError("no temporary folder");
    const std::string path = std::string(folder) + "/saved.jpg";
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    for (auto _ : state)
        if (codec->write(photo, CString::fromUtf8(path), ImageQualityHigh) <= 0)
            return state.SkipWithError("the save failed");
    std::remove(path.c_str());
    ::rmdir(folder);
}
BENCHMARK(BM_WriteCodecSave)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
