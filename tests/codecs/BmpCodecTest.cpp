#include "orvanta/codecs/BmpCodec.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class BmpCodecTest : public ::testing::Test {
protected:
    OwnedPtr<BmpCodec> codec = BmpCodec::create();

    OwnedPtr<Dib> readTestFile(const std::string& name, CSize* size = nullptr) {
        return codec->read(CString::fromUtf8(testDataPath("bmp/" + name)), size, 0, 0);
    }
};

}  // namespace

TEST_F(BmpCodecTest, ReadsEveryTrueColourFileAsTheReferenceDecoderDoes) {
    ORVANTA_REQUIRE_TESTDATA();
    const char* files[] = {"rgb24-bottomup-127x64-pad3.bmp", "rgb24-topdown-6x6.bmp",
                           "rgb24-bottomup-6x6.bmp", "rgb24-photo-119x96-pad3.bmp", "rgb32-127x64.bmp"};
    for (const char* name : files) {
        SCOPED_TRACE(name);
        CSize size;
        OwnedPtr<Dib> dib = readTestFile(name, &size);
        ASSERT_NE(dib, nullptr);
        EXPECT_EQ(size, dib->getSize());
        EXPECT_EQ(dib->getBitmapInfoHeader()->biHeight, -size.cy);
        // The fourth byte of these 32-bit files is unused; compare colour channels only.
        auto reference = referenceDecode(testDataPath(std::string("bmp/") + name), 3);
        if (!reference) GTEST_SKIP() << "ImageMagick (/usr/bin/convert) is not installed";
        std::string colours = packedPixels(*dib);
        if (dib->getBytesPerPixel() == 4) {
            std::string bgr;
            for (std::size_t i = 0; i < colours.size(); i += 4) bgr.append(colours, i, 3);
            colours = bgr;
        }
        EXPECT_EQ(colours, *reference);
    }
}

TEST_F(BmpCodecTest, TopDownAndBottomUpTwinsGiveTheSamePicture) {
    ORVANTA_REQUIRE_TESTDATA();
    OwnedPtr<Dib> topDown = readTestFile("rgb24-topdown-6x6.bmp");
    OwnedPtr<Dib> bottomUp = readTestFile("rgb24-bottomup-6x6.bmp");
    ASSERT_NE(topDown, nullptr);
    ASSERT_NE(bottomUp, nullptr);
    EXPECT_EQ(packedPixels(*topDown), packedPixels(*bottomUp));
}

TEST_F(BmpCodecTest, ThirtyTwoBitFilesWithColourMasksReadThroughTheirMasks) {
    ORVANTA_REQUIRE_TESTDATA();
    // rgb32-bitfields keeps red in the top byte and green in twelve bits; the V5 file has an alpha mask.
    for (const char* name : {"rgb32-bitfields.bmp", "rgba32-v5-alpha.bmp"}) {
        SCOPED_TRACE(name);
        OwnedPtr<Dib> dib = readTestFile(name);
        ASSERT_NE(dib, nullptr);
        EXPECT_EQ(dib->getBytesPerPixel(), 4);
        EXPECT_EQ(dib->getSize(), CSize(127, 64));
        auto reference = referenceDecode(testDataPath(std::string("bmp/") + name), 3);
        if (!reference) GTEST_SKIP() << "ImageMagick (/usr/bin/convert) is not installed";
        const std::string colours = packedPixels(*dib);
        std::string bgr;
        for (std::size_t i = 0; i < colours.size(); i += 4) bgr.append(colours, i, 3);
        EXPECT_EQ(bgr, *reference);
    }
}

TEST_F(BmpCodecTest, PalettedSixteenBitAndCompressedFilesReadAsNull) {
    ORVANTA_REQUIRE_TESTDATA();
    for (const char* name : {"pal8-127x64.bmp", "pal8-topdown.bmp", "pal4.bmp", "pal1.bmp", "rgb16-565.bmp",
                             "rgb16-555.bmp", "rle8.bmp", "rle4.bmp", "embedded-jpeg-bi-jpeg.bmp",
                             "embedded-png-bi-png.bmp", "pal8-os2-v1-header.bmp"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(readTestFile(name), nullptr);
    }
}

TEST_F(BmpCodecTest, MalformedFilesGiveNullOrTheDibSectionExceptionNeverACrash) {
    ORVANTA_REQUIRE_TESTDATA();
    for (const auto& path : testDataFiles("bmp", {".bmp"})) {
        SCOPED_TRACE(path);
        try {
            OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(path), nullptr, 0, 0);
            if (dib) EXPECT_GT(dib->getSize().cx, 0);
        } catch (const Exception& e) {
            EXPECT_EQ(std::u16string(e.getMessage()), u"DibSection only supports 3 or 4 channels.");
        }
    }
    EXPECT_EQ(readTestFile("bad-reallybig-3000000x2000000.bmp"), nullptr);  // must not try to allocate
    EXPECT_THROW(readTestFile("bad-bitcount.bmp"), Exception);              // 30000 bits per pixel
}

TEST_F(BmpCodecTest, TruncatedPixelsGiveNull) {
    ORVANTA_REQUIRE_TESTDATA();
    TempDir dir;
    const std::string whole = readFileBytes(testDataPath("bmp/rgb24-photo-119x96-pad3.bmp"));
    for (std::size_t cut :
         {std::size_t(0), std::size_t(10), std::size_t(53), whole.size() / 2, whole.size() - 1}) {
        writeFileBytes(dir.file("cut.bmp"), whole.substr(0, cut));
        EXPECT_EQ(codec->read(dir.wide("cut.bmp"), nullptr, 0, 0), nullptr) << "cut at " << cut;
    }
}

TEST_F(BmpCodecTest, InfoTrustsTheHeaderWithoutTheSignature) {
    TempDir dir;
    std::string text(60, 'x');
    writeFileBytes(dir.file("x.bmp"), text);
    CSize size;
    ImageQuality quality = ImageQualityNormal;
    EXPECT_TRUE(codec->getInfo(dir.wide("x.bmp"), &size, &quality));
    EXPECT_EQ(quality, ImageQualityHigh);
    EXPECT_EQ(size.cx, 0x78787878);
    EXPECT_EQ(codec->read(dir.wide("x.bmp"), nullptr, 0, 0), nullptr);

    writeFileBytes(dir.file("empty.bmp"), "");
    EXPECT_FALSE(codec->getInfo(dir.wide("empty.bmp"), &size, nullptr));
    EXPECT_FALSE(codec->getInfo(dir.wide("x.bmp"), nullptr, &quality));
    EXPECT_FALSE(codec->getInfo(dir.wide("missing.bmp"), &size, nullptr));
}

TEST_F(BmpCodecTest, InfoOfRealFilesMatchesTheirSize) {
    ORVANTA_REQUIRE_TESTDATA();
    CSize size;
    ASSERT_TRUE(codec->getInfo(CString::fromUtf8(testDataPath("bmp/rgb24-topdown-6x6.bmp")), &size, nullptr));
    EXPECT_EQ(size, CSize(6, 6));
    ASSERT_TRUE(codec->getInfo(CString::fromUtf8(testDataPath("bmp/pal8-w125-pad3.bmp")), &size, nullptr));
    EXPECT_EQ(size, CSize(125, 62));
}

TEST_F(BmpCodecTest, WriteThenReadGivesTheSamePixels) {
    TempDir dir;
    for (int channels : {3, 4}) {
        for (int width : {1, 3, 127, 128}) {
            SCOPED_TRACE(testing::Message() << width << "x" << channels);
            OwnedPtr<Dib> original = makePatternDib(width, 37, channels);
            ASSERT_GT(codec->write(original, dir.wide("round.bmp"), ImageQualityNormal), 0);
            OwnedPtr<Dib> back = codec->read(dir.wide("round.bmp"), nullptr, 0, 0);
            ASSERT_NE(back, nullptr);
            EXPECT_EQ(packedPixels(*back), packedPixels(*original));
        }
    }
}

TEST_F(BmpCodecTest, WrittenFileIsBottomUpWithTheClassicHeader) {
    TempDir dir;
    OwnedPtr<Dib> dib = makePatternDib(3, 2, 3);
    ASSERT_EQ(codec->write(dib, dir.wide("small.bmp"), ImageQualityDraft), 1);
    const std::string bytes = readFileBytes(dir.file("small.bmp"));
    ASSERT_EQ(bytes.size(), 54u + 2 * 12);  // rows of 12 bytes, the same as the stride
    BITMAPFILEHEADER fileHeader;
    BITMAPINFOHEADER header;
    std::memcpy(&fileHeader, bytes.data(), 14);
    std::memcpy(&header, bytes.data() + 14, 40);
    const unsigned type = fileHeader.bfType, fileSize = fileHeader.bfSize, offset = fileHeader.bfOffBits;
    EXPECT_EQ(type, 19778u);
    EXPECT_EQ(fileSize, 78u);
    EXPECT_EQ(offset, 54u);
    EXPECT_EQ(header.biHeight, 2);
    EXPECT_EQ(bytes.substr(54, 12), std::string(reinterpret_cast<char*>(dib->getBits()) + 12, 12));
    if (auto reference = referenceDecode(dir.file("small.bmp"), 3)) EXPECT_EQ(*reference, packedPixels(*dib));
}

TEST_F(BmpCodecTest, FailedWriteLeavesTheExistingFileWhole) {
    TempDir dir;
    writeFileBytes(dir.file("keep.bmp"), "the user's old picture");
    OwnedPtr<Dib> dib = makePatternDib(200, 200, 3);
    {
        FaultyFileSystem disk;
        disk.failWritesAfter(1000);
        EXPECT_EQ(codec->write(dib, dir.wide("keep.bmp"), ImageQualityNormal), 0);
    }
    EXPECT_EQ(readFileBytes(dir.file("keep.bmp")), "the user's old picture");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 1);  // no leftovers
    {
        FaultyFileSystem disk;
        disk.failSync(true);
        EXPECT_EQ(codec->write(dib, dir.wide("keep.bmp"), ImageQualityNormal), 0);
    }
    EXPECT_EQ(readFileBytes(dir.file("keep.bmp")), "the user's old picture");
}

TEST_F(BmpCodecTest, WriteRefusesPicturesItCannotStore) {
    TempDir dir;
    EXPECT_EQ(codec->write(nullptr, dir.wide("x.bmp"), ImageQualityNormal), 0);
    OwnedPtr<Dib> dib = makePatternDib(4, 4, 3);
    EXPECT_EQ(codec->write(dib, u"/nonexistent-folder/x.bmp", ImageQualityNormal), 0);
}

TEST_F(BmpCodecTest, DescribesItselfAsALosslessImageCodecWithoutExtras) {
    EXPECT_EQ(codec->getImageType(), ImageTypeBmp);
    EXPECT_TRUE(codec->isCodecType(CodecTypeImage));
    EXPECT_EQ(codec->getExtensions(), std::vector<CString>{u"bmp"});
    EXPECT_TRUE(codec->isLosslessFormat());
    EXPECT_FALSE(codec->hasEmbeddedThumbnail());
    EXPECT_FALSE(codec->useEmbeddedThumbnail());
    EXPECT_EQ(codec->readFromMemory("BM", 2, nullptr, 0, 0), nullptr);
    EXPECT_EQ(codec->writeToMemory(nullptr, nullptr, 0, ImageQualityNormal), -1);
    EXPECT_FALSE(codec->applyToFile(u"x.bmp", nullptr));
}
