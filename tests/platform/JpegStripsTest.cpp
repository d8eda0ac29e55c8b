// A large picture written in strips on several cores: libjpeg-turbo decodes it to exactly the pixels of
// the same picture encoded in one pass, whatever the sampling, the channels, the width against the
// MCU or the height against the strip; and a disk that fills up in the middle leaves nothing.

#include <gtest/gtest.h>

#include <algorithm>
#include <csetjmp>
#include <cstdlib>
#include <string>
#include <vector>

#include "orvanta/platform/JpegRowWriter.h"
#include "orvanta/platform/JpegStrips.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using namespace Orvanta::Platform;
using namespace OrvantaTest;

namespace {

// Rows with detail everywhere (a gradient under noise), so every strip has real entropy to code.
std::vector<unsigned char> makePixels(const JpegRowWriter::Settings& settings) {
    std::vector<unsigned char> pixels(static_cast<std::size_t>(settings.width) * settings.height *
                                      settings.channels);
    unsigned seed = 12345;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        seed = seed * 1103515245u + 12345u;
        const std::size_t pixel = i / settings.channels;
        pixels[i] = static_cast<unsigned char>((pixel % settings.width) / 8 + (pixel / settings.width) / 5 +
                                               (seed >> 27) + 40 * (i % settings.channels));
    }
    return pixels;
}

std::vector<unsigned char> encodeInOnePass(const JpegRowWriter::Settings& settings,
                                           const std::vector<unsigned char>& pixels) {
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long length = 0;
    jpeg_mem_dest(&info, &bytes, &length);
    JpegRowWriter::configure(&info, settings);
    jpeg_start_compress(&info, TRUE);
    const std::size_t rowBytes = static_cast<std::size_t>(settings.width) * settings.channels;
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = const_cast<unsigned char*>(pixels.data()) + rowBytes * info.next_scanline;
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::vector<unsigned char> stream(bytes, bytes + length);
    std::free(bytes);
    return stream;
}

// The decoded RGB rows, or nothing when libjpeg-turbo finds the stream broken.
std::vector<unsigned char> decode(const std::string& stream) {
    struct Errors {
        jpeg_error_mgr manager;
        std::jmp_buf jump;
    } errors;
    jpeg_decompress_struct info;
    info.err = jpeg_std_error(&errors.manager);
    errors.manager.error_exit = [](j_common_ptr common) {
        std::longjmp(reinterpret_cast<Errors*>(common->err)->jump, 1);
    };
    std::vector<unsigned char> pixels;
    if (setjmp(errors.jump)) {
        jpeg_destroy_decompress(&info);
        return {};
    }
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(stream.data()), stream.size());
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_RGB;
    jpeg_start_decompress(&info);
    pixels.resize(static_cast<std::size_t>(info.output_width) * info.output_height * 3);
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = pixels.data() + static_cast<std::size_t>(info.output_width) * 3 * info.output_scanline;
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return pixels;
}

// Writes the picture through a JpegRowWriter in batches of uneven size; whether it finished.
bool writeInBatches(JpegRowWriter* writer, const JpegRowWriter::Settings& settings,
                    const std::vector<unsigned char>& pixels) {
    if (!writer->start(settings)) return false;
    const std::size_t rowBytes = static_cast<std::size_t>(settings.width) * settings.channels;
    std::vector<const unsigned char*> rows;
    for (int first = 0, batch = 1; first < settings.height; first += batch, batch = batch * 7 % 45 + 1) {
        batch = std::min(batch, settings.height - first);
        rows.clear();
        for (int i = 0; i < batch; ++i) rows.push_back(pixels.data() + rowBytes * (first + i));
        if (!writer->write(rows.data(), batch)) return false;
    }
    return writer->finish();
}

}  // namespace

TEST(JpegStrips, APictureInStripsDecodesToThePixelsOfOnePassEncoding) {
    struct Case {
        int width, height, channels, horizontal, vertical, quality;
    };
    for (const Case& c : {Case{1500, 700, 3, 2, 1, 85},    // 4:2:2, the scanner's
                          Case{1201, 1000, 4, 2, 2, 75},   // 4:2:0, a width and a height off the grid
                          Case{1024, 1024, 3, 1, 1, 95}})  // 4:4:4, a height of whole strips
    {
        JpegRowWriter::Settings settings;
        settings.width = c.width;
        settings.height = c.height;
        settings.channels = c.channels;
        settings.horizontalSampling = c.horizontal;
        settings.verticalSampling = c.vertical;
        settings.quality = c.quality;
        ASSERT_TRUE(JpegStrips::suits(settings)) << c.width;
        const std::vector<unsigned char> pixels = makePixels(settings);
        const TempDir dir;
        JpegRowWriter writer(dir.file("strips.jpg"), ReplacementFile::Kind::kOwned);
        ASSERT_TRUE(writeInBatches(&writer, settings, pixels)) << c.width;
        const std::string written = readFileBytes(dir.file("strips.jpg"));
        EXPECT_EQ(static_cast<long long>(written.size()), writer.written());
        EXPECT_NE(written.find("\xFF\xDD"), std::string::npos) << "a restart interval: strips were written";
        const std::vector<unsigned char> onePass = encodeInOnePass(settings, pixels);
        const std::vector<unsigned char> expected = decode(std::string(onePass.begin(), onePass.end()));
        ASSERT_FALSE(expected.empty());
        EXPECT_TRUE(decode(written) == expected) << c.width << "x" << c.height;
    }
}

TEST(JpegStrips, ADiskThatFillsUpMidwayLeavesNoFile) {
    JpegRowWriter::Settings settings;
    settings.width = 1600;
    settings.height = 1200;
    const std::vector<unsigned char> pixels = makePixels(settings);
    const TempDir dir;
    for (long long budget : {0LL, 700LL, 150000LL}) {  // in the header, the first strip, later ones
        FaultyFileSystem disk;
        disk.failWritesAfter(budget);
        JpegRowWriter writer(dir.file("full.jpg"), ReplacementFile::Kind::kOwned);
        EXPECT_FALSE(writeInBatches(&writer, settings, pixels)) << budget;
        EXPECT_TRUE(writer.fileFailed()) << budget;
        EXPECT_FALSE(writer.write(nullptr, 0)) << "every later call fails";
    }
    EXPECT_EQ(0u, dir.count());
}
