// Resource, StringOrResource and the resource module: strings of any length, the module override
// while a string is read, bitmaps from BMP files and packed DIBs (against a reference decoder),
// cursors, string table files, and the refusal of malformed input.

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "orvanta/foundation/Resource.h"
#include "orvanta/foundation/StringOrResource.h"
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
    Orvanta::BITMAPINFOHEADER h{};
    h.biSize = sizeof h;
    h.biWidth = width;
    h.biHeight = height;
    h.biPlanes = 1;
    h.biBitCount = static_cast<Orvanta::WORD>(bitCount);
    h.biClrUsed = static_cast<Orvanta::DWORD>(palette.size());
    std::string out(reinterpret_cast<const char*>(&h), sizeof h);
    out.append(reinterpret_cast<const char*>(palette.data()), palette.size() * sizeof(Orvanta::RGBQUAD));
    return out + rows;
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

TEST(ResourceString, ReadsFromTheCurrentModuleOrItsOwn) {
    ResourceModule host, other;
    host.addString(100, u"from the host");
    other.addString(100, u"from the other module");
    other.addString(5, u"five");
    OrvantaTest::ScopedResourceModule current(&host);
    EXPECT_EQ(Resource(100).getString(), CString(u"from the host"));
    EXPECT_EQ(Resource(100, &other).getString(), CString(u"from the other module"));
    EXPECT_EQ(Resource(101).getString(), CString());
    Resource resource(4, &other);
    resource = 5;
    EXPECT_EQ(resource.getString(), CString(u"five")) << "assigning an id keeps the module";
    ResourceModule::setCurrent(nullptr);
    EXPECT_EQ(Resource(100).getString(), CString()) << "null puts the process's own module back";
}

TEST(ResourceString, ReadingAnotherModuleLeavesTheCurrentOneToOtherThreads) {
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
}

TEST(ResourceString, TextsOfAnyLengthComeBackWhole) {
    ResourceModule module;
    // Around the steps of the reading buffer: 255 fits the first 256 with a character to spare.
    for (std::size_t length : {0u, 1u, 254u, 255u, 256u, 257u, 511u, 512u, 1000u}) {
        std::u16string text;
        for (std::size_t i = 0; i < length; ++i) text += static_cast<char16_t>(u'a' + i % 26);
        module.addString(1, CString(text));
        EXPECT_EQ(Resource(1, &module).getString().str(), text) << length;
    }
    char16_t buffer[4] = {u'x', u'x', u'x', u'x'};
    EXPECT_EQ(module.loadString(1, buffer, 4), 3);
    EXPECT_EQ(std::u16string(buffer), u"abc");
    EXPECT_EQ(module.loadString(2, buffer, 4), 0);
    EXPECT_EQ(buffer[0], u'\0');
}

TEST(StringOrResourceText, OwnsItsTextAndReadsResourcesAtEachUse) {
    for (const StringOrResource& empty :
         {StringOrResource(), StringOrResource(static_cast<const char16_t*>(nullptr)),
          StringOrResource(CString()), StringOrResource(u"")})
        EXPECT_EQ(empty.getString(), CString());
    char16_t source[] = u"title";
    StringOrResource text(source);
    source[0] = u'T';
    StringOrResource copy(text);
    text = StringOrResource(u"changed");
    EXPECT_EQ(copy.getString(), CString(u"title"));
    ResourceModule module;
    OrvantaTest::ScopedResourceModule current(&module);
    module.addString(30, u"first");
    const StringOrResource byId(30, nullptr);
    EXPECT_EQ(byId.getString(), CString(u"first"));
    module.addString(30, u"second");
    EXPECT_EQ(byId.getString(), CString(u"second"));
    ResourceModule other;
    other.addString(30, u"other");
    copy = StringOrResource(Resource(30, &other));
    EXPECT_EQ(copy.getString(), CString(u"other"));
}

TEST(ResourceBitmap, PackedDibsKeepTheirRowsAndPalettesBecomeTwentyFourBits) {
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
        EXPECT_EQ(Resource(12, &module).getCursor()->hotSpot, Orvanta::CPoint(1, 0));
        EXPECT_TRUE(Resource(41, &module).getBitmap(true) == nullptr &&
                    Resource(40, &module).getCursor() == nullptr)
            << "cursors and bitmaps are kept apart";
    }
}

TEST(ResourceBitmap, MalformedDataIsRefused) {
    ResourceModule module;
    const std::string good = packedDib(2, 2, 24, {}, std::string(16, '\x11'));
    EXPECT_FALSE(module.addBitmap(1, good.data(), good.size() - 1)) << "rows cut short";
    EXPECT_FALSE(module.addBitmap(1, good.data(), 20)) << "header cut short";
    EXPECT_FALSE(module.addBitmap(1, nullptr, 100));
    std::string bad = good;
    bad[14] = 16;  // biBitCount 16
    EXPECT_FALSE(module.addBitmap(1, bad.data(), bad.size()));
    bad = good;
    bad[16] = 1;  // biCompression BI_RLE8
    EXPECT_FALSE(module.addBitmap(1, bad.data(), bad.size()));
    EXPECT_FALSE(module.addBitmap(1, packedDib(0, 2, 24, {}, "").data(), 40));
    const std::string hugePalette =
        packedDib(1, 1, 8, std::vector<Orvanta::RGBQUAD>(300), std::string(4, '\0'));
    EXPECT_FALSE(module.addBitmap(1, hugePalette.data(), hugePalette.size()));
    // Sizes whose products overflow 64 bits must be refused, not wrapped into something small.
    const std::string huge = packedDib(0x7fffffff, 0x7fffffff, 32, {}, std::string(64, '\0'));
    EXPECT_FALSE(module.addBitmap(1, huge.data(), huge.size()));
    const std::string hugeDown = packedDib(0x40000000, -0x7fff0000, 24, {}, std::string(64, '\0'));
    EXPECT_FALSE(module.addBitmap(1, hugeDown.data(), hugeDown.size()));
    EXPECT_EQ(module.loadBitmap(1), nullptr) << "nothing was added";
}

TEST(ResourceBitmap, BmpFilesMatchTheReferenceDecoder) {
    ORVANTA_REQUIRE_TESTDATA();
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

TEST(ResourceBitmap, UnsupportedAndDamagedBmpFilesAreRefused) {
    ORVANTA_REQUIRE_TESTDATA();
    for (const char* name :
         {"bmp/rle8.bmp", "bmp/rle4.bmp", "bmp/rgb16-565.bmp", "bmp/rgb32-bitfields.bmp",
          "bmp/pal8-os2-v1-header.bmp", "bmp/embedded-jpeg-bi-jpeg.bmp", "bmp/bad-shortfile.bmp",
          "bmp/bad-reallybig-3000000x2000000.bmp", "bmp/bad-bitcount.bmp"}) {
        ResourceModule module;
        EXPECT_FALSE(module.loadBitmapFile(1, CString::fromUtf8(OrvantaTest::testDataPath(name)))) << name;
    }
    ResourceModule module;
    EXPECT_FALSE(module.loadBitmapFile(1, u"/nonexistent/picture.bmp"));
    // Indexes beyond the colour table: read, with black for them.
    EXPECT_TRUE(
        module.loadBitmapFile(2, CString::fromUtf8(OrvantaTest::testDataPath("bmp/bad-palette-index.bmp"))));
}

TEST(ResourceStringTable, LoadsIdsTextsAndEscapes) {
    OrvantaTest::TempDir dir;
    OrvantaTest::writeFileBytes(dir.file("strings.txt"),
                                "\xEF\xBB\xBF# the application's texts\r\n"
                                "100\tOpen\r\n"
                                "\n"
                                "101\tTwo\\nlines\\tand a tab, a backslash \\\\\n"
                                "102\t\xC3\x9C"
                                "bersicht\n"
                                "103\t\n"
                                "100\tOpen again");
    ResourceModule module;
    ASSERT_TRUE(module.loadStringTable(dir.wide("strings.txt")));
    EXPECT_EQ(Resource(100, &module).getString(), CString(u"Open again"));
    EXPECT_EQ(Resource(101, &module).getString(), CString(u"Two\nlines\tand a tab, a backslash \\"));
    EXPECT_EQ(Resource(102, &module).getString(), CString(u"\u00dcbersicht"));
    EXPECT_EQ(Resource(103, &module).getString(), CString());
}

TEST(ResourceStringTable, AMalformedLineAddsNothing) {
    OrvantaTest::TempDir dir;
    ResourceModule module;
    module.addString(100, u"kept");
    for (const char* body :
         {"200\tfine\nnot a line\n", "200\tfine\n0\tzero id\n", "x1\tletters\n", "200\tbad escape \\q\n",
          "200\ttrailing backslash \\\n", "99999999999\ttoo big\n", "-5\tnegative\n"}) {
        OrvantaTest::writeFileBytes(dir.file("bad.txt"), body);
        EXPECT_FALSE(module.loadStringTable(dir.wide("bad.txt"))) << body;
    }
    EXPECT_FALSE(module.loadStringTable(dir.wide("missing.txt")));
    EXPECT_EQ(Resource(100, &module).getString(), CString(u"kept"));
    EXPECT_EQ(Resource(200, &module).getString(), CString());
}
