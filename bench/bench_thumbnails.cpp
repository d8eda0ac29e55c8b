// Random reads of 160-pixel thumbnails: from the thumbnail store (looked up by asset, checked
// against the file's time, decoded) beside the same pictures kept as one PNG file each in the
// freedesktop.org cache layout (thumbnails/normal/MD5-of-URI.png with Thumb::URI and Thumb::MTime,
// read and decoded with libpng, the time checked), in the same program, on one thread.
//
// The thumbnails are made once from the 100 benchmark photographs (decoded, not their embedded
// previews) and each is stored under ten assets, so that the store and the cache hold 1,000
// pictures each. Both sets are read once before timing, so both come from the page cache. Files go to
// $BENCH_STORE_DIR (default /tmp). Counter: thumbnails per second.

#include <benchmark/benchmark.h>
#include <glib.h>
#include <png.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "bench/BenchData.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/ThumbnailDb.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/FileTime.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

using namespace Orvanta;

namespace {

constexpr int kCopies = 10;

struct Thumbnails {
    std::vector<OwnedPtr<Asset>> assets;
    std::vector<std::string> pngs;
    std::vector<std::string> mtimes;  // Thumb::MTime of each, as the file's write time in seconds
    OwnedPtr<ThumbnailDb> store;
};

std::string mtimeOf(Asset* asset) {
    return std::to_string(FileTime(asset->getAssetFile()->getWriteTime()) / 10000000LL - 11644473600LL);
}

// Writes dib (3 bytes a pixel, blue first) as an 8-bit RGB PNG with the cache's two text chunks.
bool writePng(const std::string& path, Dib* dib, const std::string& uri, const std::string& mtime) {
    FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        std::fclose(out);
        return false;
    }
    png_init_io(png, out);
    const CSize size = dib->getSize();
    png_set_IHDR(png, info, size.cx, size.cy, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_text text[2] = {};
    text[0].compression = text[1].compression = PNG_TEXT_COMPRESSION_NONE;
    text[0].key = const_cast<char*>("Thumb::URI");
    text[0].text = const_cast<char*>(uri.c_str());
    text[1].key = const_cast<char*>("Thumb::MTime");
    text[1].text = const_cast<char*>(mtime.c_str());
    png_set_text(png, info, text, 2);
    png_set_bgr(png);
    png_write_info(png, info);
    for (int y = 0; y < size.cy; ++y)
        png_write_row(png, dib->getBits() + static_cast<std::ptrdiff_t>(y) * dib->getStride());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return std::fclose(out) == 0;
}

// Reads a cache PNG as a viewer does: its time checked against the file's, its pixels decoded.
bool readPng(const std::string& path, const std::string& mtime, std::vector<unsigned char>& pixels) {
    FILE* in = std::fopen(path.c_str(), "rb");
    if (!in) return false;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    bool ok = false;
    if (!setjmp(png_jmpbuf(png))) {
        png_init_io(png, in);
        png_read_info(png, info);
        png_textp text = nullptr;
        int count = 0;
        png_get_text(png, info, &text, &count);
        bool fresh = false;
        for (int i = 0; i < count; ++i)
            if (std::string(text[i].key) == "Thumb::MTime") fresh = mtime == text[i].text;
        const png_uint_32 width = png_get_image_width(png, info), height = png_get_image_height(png, info);
        const std::size_t stride = png_get_rowbytes(png, info);
        pixels.resize(stride * height);
        for (png_uint_32 y = 0; y < height; ++y) png_read_row(png, pixels.data() + y * stride, nullptr);
        png_read_end(png, nullptr);
        ok = fresh && width > 0;
    }
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(in);
    return ok;
}

Thumbnails& thumbnails() {
    static Thumbnails made = [] {
        Thumbnails t;
        const std::string data = OrvantaBench::benchDataDir();
        const char* configured = std::getenv("BENCH_STORE_DIR");
        const std::string dir =
            std::string(configured && *configured ? configured : "/tmp") + "/orvanta-bench-thumbs";
        std::filesystem::remove_all(dir);
        std::filesystem::create_directories(dir + "/thumbnails/normal");
        CodecManager::registerCodec(IntelJpegCodec::create());
        CodecManager::disableFastThumbnailing();
        ThumbnailDb::createFile(CString::fromUtf8(dir + "/thumbs.db"), 1024, 0);
        t.store = ThumbnailDb::create(CString::fromUtf8(dir + "/thumbs.db"), 160, 160, nullptr);
        for (int i = 0; !data.empty() && i < 100; ++i) {
            char name[32];
            std::snprintf(name, sizeof name, "/batch/b%03d.jpg", i);
            const std::string photo = data + name;
            OwnedPtr<Asset> source =
                Asset::create(UniqueID::create(), CString::fromUtf8(photo), nullptr, nullptr);
            OwnedPtr<Image> picture = t.store->makeThumbnail(source.get());
            if (!picture) continue;
            for (int copy = 0; copy < kCopies; ++copy) {
                OwnedPtr<Asset> asset = copy == 0 ? source : OwnedPtr<Asset>(source->clone());
                t.store->putThumbnail(asset->getID(), picture, asset->getAssetFile()->getWriteTime(), false);
                // One URI per asset, as if each were a photo of its own.
                const std::string uri = "file://" + photo + "?" + std::to_string(copy);
                gchar* md5 = g_compute_checksum_for_string(G_CHECKSUM_MD5, uri.c_str(), -1);
                t.pngs.push_back(dir + "/thumbnails/normal/" + md5 + ".png");
                g_free(md5);
                t.mtimes.push_back(mtimeOf(asset));
                writePng(t.pngs.back(), picture->getDib(), uri, t.mtimes.back());
                t.assets.push_back(asset);
            }
        }
        std::vector<unsigned char> pixels;
        for (std::size_t i = 0; i < t.assets.size(); ++i) {
            OwnedPtr<Image>(t.store->getThumbnail(t.assets[i], false));
            readPng(t.pngs[i], t.mtimes[i], pixels);
        }
        return t;
    }();
    return made;
}

void StoreRandomRead(benchmark::State& state) {
    Thumbnails& t = thumbnails();
    if (t.assets.empty()) return state.SkipWithError("no benchmark photographs");
    std::mt19937 random(7);
    for (auto _ : state) {
        OwnedPtr<Image> image = t.store->getThumbnail(t.assets[random() % t.assets.size()], false);
        if (!image) return state.SkipWithError("a thumbnail is missing");
        benchmark::DoNotOptimize(image->getDib()->getBits());
    }
    state.counters["thumbnails/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void PngCacheRandomRead(benchmark::State& state) {
    Thumbnails& t = thumbnails();
    if (t.pngs.empty()) return state.SkipWithError("no benchmark photographs");
    std::mt19937 random(7);
    std::vector<unsigned char> pixels;
    for (auto _ : state) {
        const std::size_t i = random() % t.pngs.size();
        if (!readPng(t.pngs[i], t.mtimes[i], pixels)) return state.SkipWithError("a PNG is missing");
        benchmark::DoNotOptimize(pixels.data());
    }
    state.counters["thumbnails/s"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

}  // namespace

BENCHMARK(StoreRandomRead)->MinTime(2.0);
BENCHMARK(PngCacheRandomRead)->MinTime(2.0);

BENCHMARK_MAIN();
