// Resource and the resource module: strings of any length from the right module,
// bitmaps from BMP files (against a reference decoder) and packed DIBs, cursors, string table files,
// and the refusal of malformed input.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "orvanta/foundation/Resource.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/ResourceModule.h"
#include "tests/foundation/TestEnvironment.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using Orvanta::CString;
using Orvanta::Platform::Bitmap;
using Orvanta::Platform::ResourceModule;

namespace {

// A packed DIB: header, colour table, rows padded to 4 bytes.
std::string packedDib(int width, int height, int bitCount, const std::vector<Orvanta::RGBQUAD>& palette,
                      const std::string& rows) {
    Orvanta::BITMAPINFOHEADER h = OrvantaTest::bitmapHeader(width, height, bitCount).bmiHeader;
    h.biClrUsed = static_cast<Orvanta::DWORD>(palette.size());
    return std::string(reinterpret_cast<const char*>(&h), sizeof h) +
           std::string(reinterpret_cast<const char*>(palette.data()),
                       palette.size() * sizeof(Orvanta::RGBQUAD)) +
           rows;
}

// The rows of a bitmap top-down, without padding, as blue-green-red.
std::string topDownBgr(Bitmap* bitmap) {
    const Orvanta::BITMAPINFOHEADER& h = bitmap->header();
    const int height = h.biHeight < 0 ? -h.biHeight : h.biHeight;
    const int bytes = h.biBitCount / 8;
    const int stride = (h.biWidth * h.biBitCount + 31) / 32 * 4;
    std::string out;
    for (int y = 0; y < height; ++y) {
        const unsigned char* row =
            bitmap->bits() + static_cast<std::ptrdiff_t>(h.biHeight < 0 ? y : height - 1 - y) * stride;
        for (int x = 0; x < h.biWidth; ++x) out.append(reinterpret_cast<const char*>(row + x * bytes), 3);
    }
    return out;
}

}  // namespace

TEST(ResourceString, ReadsItsOwnModuleWithoutChangingTheCurrentOneAndComesBackWhole) {
    ResourceModule host, other;
    host.addString(1, u"host");
    other.addString(1, u"other");
    OrvantaTest::ScopedResourceModule current(&host);
    std::atomic<bool> stop{false};
    std::thread reader([&] {
        while (!stop) Resource(1, &other).getString();
    });
    int wrong = 0;
    for (int i = 0; i < 20000; ++i) wrong += Resource(1).getString() != CString(u"host");
    stop = true;
    reader.join();
    EXPECT_EQ(0, wrong);
    EXPECT_EQ(ResourceModule::current(), &host);
    // Around the steps of the reading buffer: 255 fits the first 256 with a character to spare.
    for (std::size_t length : {0u, 1u, 255u, 256u, 257u, 511u, 512u, 1000u}) {
        std::u16string text;
        for (std::size_t i = 0; i < length; ++i) text += static_cast<char16_t>(u'a' + i % 26);
        other.addString(2, CString(text));
        EXPECT_EQ(Resource(2, &other).getString().str(), text) << length;
    }
    ResourceModule::setCurrent(nullptr);
    EXPECT_EQ(Resource(1).getString(), CString()) << "null puts the process's own module back";
}

TEST(ResourceBitmap, PackedDibsKeepTheirRowsPalettesBecomeTwentyFourBitsAndMalformedOnesAreRefused) {
    // 24 bits top-down, rows of 6 bytes padded to 8; 1 bit, pixels 1, 0, 1 in the high end of the
    // first byte; 8 bits with an index beyond the colour table, which stays black.
    const std::string rows = std::string("\x01\x02\x03\x04\x05\x06\0\0\x07\x08\x09\x0a\x0b\x0c\0\0", 16);
    const struct {
        std::string dib, pixels;
    } cases[] = {
        {packedDib(2, -2, 24, {}, rows), std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b\x0c", 12)},
        {packedDib(3, 1, 1, {{10, 20, 30, 0}, {40, 50, 60, 0}}, std::string("\xa0\0\0\0", 4)),
         std::string("\x28\x32\x3c\x0a\x14\x1e\x28\x32\x3c", 9)},
        {packedDib(2, 1, 8, {{1, 2, 3, 0}}, std::string("\x00\x05\0\0", 4)),
         std::string("\x01\x02\x03\0\0\0", 6)}};
    for (const auto& c : cases) {
        ResourceModule module;
        ASSERT_TRUE(module.addBitmap(40, c.dib.data(), c.dib.size()));
        ASSERT_TRUE(module.addCursor(12, c.dib.data(), c.dib.size(), Orvanta::CPoint(1, 0)));
        Bitmap* bitmap = Resource(40, &module).getBitmap(false);
        ASSERT_NE(bitmap, nullptr);
        EXPECT_TRUE(bitmap->isDibSection() && bitmap->header().biBitCount >= 24);
        EXPECT_EQ(topDownBgr(bitmap), c.pixels);
        Bitmap::deleteObject(bitmap);
        EXPECT_TRUE(Resource(12, &module).getCursor()->getHotSpot() == Orvanta::CPoint(1, 0) &&
                    !Resource(40, &module).getCursor());
    }
    ResourceModule module;
    const std::string good = packedDib(2, 2, 24, {}, std::string(16, '\x11'));
    std::string bitCount16 = good, runLength = good;
    bitCount16[14] = 16;
    runLength[16] = 1;  // BI_RLE8
    // Sizes whose products overflow 64 bits must be refused, not wrapped into something small.
    const std::string refused[] = {
        good.substr(0, good.size() - 1),
        good.substr(0, 20),
        bitCount16,
        runLength,
        packedDib(1, 1, 8, std::vector<Orvanta::RGBQUAD>(300), std::string(4, '\0')),
        packedDib(0x7fffffff, 0x7fffffff, 32, {}, std::string(64, '\0')),
        packedDib(0x40000000, -0x7fff0000, 24, {}, std::string(64, '\0'))};
    for (const std::string& data : refused) EXPECT_FALSE(module.addBitmap(1, data.data(), data.size()));
    EXPECT_FALSE(module.addBitmap(1, nullptr, 100));
    EXPECT_EQ(module.loadBitmap(1), nullptr) << "nothing was added";
}

TEST(ResourceBitmap, BmpFilesMatchTheReferenceDecoderOrAreRefused) {
    ORVANTA_REQUIRE_TESTDATA();
    for (const char* name :
         {"bmp/rle8.bmp", "bmp/rgb16-565.bmp", "bmp/rgb32-bitfields.bmp", "bmp/pal8-os2-v1-header.bmp",
          "bmp/bad-shortfile.bmp", "bmp/bad-reallybig-3000000x2000000.bmp", "bmp/bad-bitcount.bmp"}) {
        ResourceModule module;
        EXPECT_FALSE(module.loadBitmapFile(1, CString::fromUtf8(OrvantaTest::testDataPath(name)))) << name;
    }
    int compared = 0;
    for (const char* name : {"bmp/rgb24-bottomup-127x64-pad3.bmp", "bmp/rgb24-topdown-6x6.bmp",
                             "bmp/rgb32-127x64.bmp", "bmp/rgb24-photo-119x96-pad3.bmp", "bmp/pal8-127x64.bmp",
                             "bmp/pal8-topdown.bmp", "bmp/pal8-v5-header.bmp", "bmp/pal8-w125-pad3.bmp",
                             "bmp/pal4.bmp", "bmp/pal1.bmp", "bmp/pal1-colour-palette.bmp"}) {
        const std::string path = OrvantaTest::testDataPath(name);
        const std::optional<std::string> reference = OrvantaTest::referenceDecode(path, 3);
        if (!reference) continue;
        ResourceModule module;
        ASSERT_TRUE(module.loadBitmapFile(1, CString::fromUtf8(path))) << name;
        Bitmap* bitmap = module.loadBitmap(1);
        ASSERT_NE(bitmap, nullptr) << name;
        EXPECT_TRUE(topDownBgr(bitmap) == *reference) << name;
        Bitmap::deleteObject(bitmap);
        ++compared;
    }
    if (compared == 0) GTEST_SKIP() << "ImageMagick's convert is not installed";
}

TEST(ResourceStringTable, LoadsIdsTextsAndEscapesAndAMalformedLineAddsNothing) {
    OrvantaTest::TempDir dir;
    OrvantaTest::writeFileBytes(dir.file("strings.txt"),
                                "\xEF\xBB\xBF# the application's texts\r\n"
                                "100\tOpen\r\n"
                                "\n"
                                "101\tTwo\\nlines\\tand a backslash \\\\\n"
                                "102\t\xC3\x9C"
                                "bersicht\n"
                                "100\tOpen again");
    ResourceModule module;
    ASSERT_TRUE(module.loadStringTable(dir.wide("strings.txt")));
    EXPECT_EQ(Resource(100, &module).getString(), CString(u"Open again"));
    EXPECT_EQ(Resource(101, &module).getString(), CString(u"Two\nlines\tand a backslash \\"));
    EXPECT_EQ(Resource(102, &module).getString(), CString(u"\u00dcbersicht"));
    for (const char* bad : {"200\tfine\nnot a line\n", "200\tfine\n0\tzero id\n", "200\tbad escape \\q\n",
                            "99999999999\ttoo big\n"}) {
        OrvantaTest::writeFileBytes(dir.file("bad.txt"), bad);
        EXPECT_FALSE(module.loadStringTable(dir.wide("bad.txt"))) << bad;
    }
    EXPECT_FALSE(module.loadStringTable(dir.wide("missing.txt")));
    EXPECT_EQ(Resource(100, &module).getString(), CString(u"Open again"));
    EXPECT_EQ(Resource(200, &module).getString(), CString());
}
