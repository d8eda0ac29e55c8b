// Reading and writing TIFF files.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <limits>

#include "orvanta/codecs/TiffCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/Dib.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class Tiff : public ::testing::Test {
protected:
    void SetUp() override { codec = TiffCodec::create(); }
    TempDir dir;
    OwnedPtr<TiffCodec> codec;
};

}  // namespace

TEST_F(Tiff, EveryRealFileDecodesAsImageMagickDoes) {
    ORVANTA_REQUIRE_TESTDATA();
    int compared = 0;
    double lowest = std::numeric_limits<double>::infinity();
    for (const std::string& path : testDataFiles("tiff", {".tif", ".tiff"})) {
        SCOPED_TRACE(path);
        CSize size;
        OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(path), &size, 10, 10);
        const std::vector<Picture> references = referenceDecodes(path);
        if (references.empty()) {
            EXPECT_FALSE(dib);
            continue;
        }
        ASSERT_TRUE(dib);
        EXPECT_EQ(4, dib->getBytesPerPixel()) << "a TIFF always decodes to four channels";
        EXPECT_EQ(size, dib->getSize()) << "the limits are ignored";
        double db = 0;
        for (const Picture& reference : references) db = std::max(db, psnr(pictureOf(*dib), reference));
        EXPECT_GE(db, 40.0);
        lowest = std::min(lowest, db);
        ++compared;
    }
    if (compared == 0) GTEST_SKIP() << "ImageMagick is not installed";
    RecordProperty("lowest_psnr_db", std::to_string(lowest));
}

TEST_F(Tiff, InfoGivesTheFirstPageSizeAndHighQuality) {
    ORVANTA_REQUIRE_TESTDATA();
    CSize size;
    ImageQuality quality = ImageQualityDraft;
    EXPECT_TRUE(
        codec->getInfo(CString::fromUtf8(testDataPath("tiff/rgba-8bit-le-162x20.tif")), &size, &quality));
    EXPECT_EQ(CSize(162, 20), size);
    EXPECT_EQ(ImageQualityHigh, quality);
    EXPECT_FALSE(
        codec->getInfo(CString::fromUtf8(testDataPath("tiff/rgba-8bit-le-162x20.tif")), nullptr, &quality));
    EXPECT_FALSE(codec->getInfo(dir.wide("missing.tif"), &size, nullptr));
}

TEST_F(Tiff, AWrittenPictureIsA24BitPackBitsFileThatReadsBackExactly) {
    for (int channels : {3, 4}) {
        SCOPED_TRACE(channels);
        OwnedPtr<Dib> picture = makePatternDib(37, 23, channels);
        ASSERT_GT(codec->write(picture, dir.wide("out.tif"), ImageQualityDraft), 0);
        OwnedPtr<Dib> back = codec->read(dir.wide("out.tif"), nullptr, 0, 0);
        ASSERT_TRUE(back);
        EXPECT_EQ(picture->getSize(), back->getSize());
        const Picture written = pictureOf(*picture);
        EXPECT_TRUE(pictureOf(*back).bgr == written.bgr);
        if (haveTool("tiffinfo")) {
            const std::string command =
                "tiffinfo '" + dir.file("out.tif") +
                "' 2>/dev/null | grep -c 'PackBits\\|Samples/Pixel: 3\\|Bits/Sample: 8'";
            FILE* pipe = popen(command.c_str(), "r");
            char count[8] = {};
            std::fgets(count, sizeof count, pipe);
            pclose(pipe);
            EXPECT_STREQ("3\n", count);
        }
        const std::optional<Picture> reference = magickDecode(dir.file("out.tif"));
        if (reference) {
            EXPECT_TRUE(reference->bgr == written.bgr) << "another reader sees the same colours";
        }
    }
}

TEST_F(Tiff, AGreyDibIsWrittenWithItsGreySpreadToTheThreeColours) {
    OwnedPtr<Dib> grey = ByteDib::create(37, 23);
    for (int y = 0; y < 23; ++y)
        for (int x = 0; x < 37; ++x)
            grey->getBits()[y * grey->getStride() + x] = static_cast<unsigned char>(x * 7 - y);
    ASSERT_EQ(1, codec->write(grey, dir.wide("grey.tif"), ImageQualityHigh));
    OwnedPtr<Dib> back = codec->read(dir.wide("grey.tif"), nullptr, 0, 0);
    OwnedPtr<Dib> expected = makeDib(37, 23, [](int x, int y) {
        return Rgb{x * 7 - y, x * 7 - y, x * 7 - y};
    });
    EXPECT_TRUE(pictureOf(*back).bgr == pictureOf(*expected).bgr);
}

TEST_F(Tiff, DamagedAndForeignFilesGiveNull) {
    writeFileBytes(dir.file("text.tif"),
                   "II*\0 this is text pretending to be a TIFF file, long enough to parse");
    writeFileBytes(dir.file("empty.tif"), "");
    for (const char* name : {"text.tif", "empty.tif", "missing.tif"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(codec->read(dir.wide(name), nullptr, 0, 0));
    }
    if (testDataDir().empty()) return;
    const std::string bytes = readFileBytes(testDataPath("tiff/lzw-rgb-be-77strips-512x384.tif"));
    for (std::size_t cut = 8; cut < bytes.size(); cut += bytes.size() / 17) {
        writeFileBytes(dir.file("cut.tif"), bytes.substr(0, cut));
        OwnedPtr<Dib> dib = codec->read(dir.wide("cut.tif"), nullptr, 0, 0);
        if (dib) {
            EXPECT_EQ(CSize(512, 384), dib->getSize());
        }
    }
}

TEST_F(Tiff, AFailedWriteLeavesTheOldFile) {
    writeFileBytes(dir.file("out.tif"), "the old contents");
    OwnedPtr<Dib> picture = makePatternDib(200, 100, 3);
    for (int fault = 0; fault < 2; ++fault) {
        FaultyFileSystem disk;
        if (fault == 0)
            disk.failWritesAfter(1000);
        else
            disk.failRenames(EIO);
        EXPECT_EQ(0, codec->write(picture, dir.wide("out.tif"), ImageQualityHigh));
    }
    EXPECT_EQ("the old contents", readFileBytes(dir.file("out.tif")));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(dir.path()), {}));
}
