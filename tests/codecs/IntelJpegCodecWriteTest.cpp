// Encoding JPEG files and blocks: what the qualities mean, the forms of Dib accepted, and a write
// that fails part-way leaving the old file whole.

#include <gtest/gtest.h>

#include <filesystem>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// A smooth picture (gradients), which JPEG keeps closely; a pattern of noise would not tell a
// good encode from a poor one.
Dib* makeGradient(int width, int height, int channels) {
    Dib* dib = DibSection::create(width, height, channels);
    for (int y = 0; y < height; ++y) {
        unsigned char* p = dib->getBits() + static_cast<std::ptrdiff_t>(y) * dib->getStride();
        for (int x = 0; x < width; ++x, p += channels) {
            p[0] = static_cast<unsigned char>(x * 255 / width);
            p[1] = static_cast<unsigned char>(y * 255 / height);
            p[2] = static_cast<unsigned char>((x + y) * 127 / (width + height) + 64);
            if (channels == 4) p[3] = 255;
        }
    }
    return dib;
}

class JpegWrite : public ::testing::Test {
protected:
    void SetUp() override { codec = IntelJpegCodec::create(); }
    std::string writeFile(Dib* dib, ImageQuality quality, const std::string& name = "out.jpg") {
        EXPECT_GT(codec->write(dib, dir.wide(name), quality), 0);
        return readFileBytes(dir.file(name));
    }
    TempDir dir;
    OwnedPtr<IntelJpegCodec> codec;
};

}  // namespace

TEST_F(JpegWrite, QualitiesChooseChromaSamplingAndSize) {
    OwnedPtr<Dib> picture = makeGradient(320, 240, 3);
    const std::string normal = writeFile(picture, ImageQualityNormal, "normal.jpg");
    const std::string draft = writeFile(picture, ImageQualityDraft, "draft.jpg");
    const std::string high = writeFile(picture, ImageQualityHigh, "high.jpg");
    EXPECT_EQ((std::vector<std::string>{"2x2", "1x1", "1x1"}), jpegSampling(normal));
    EXPECT_EQ((std::vector<std::string>{"2x2", "1x1", "1x1"}), jpegSampling(draft));
    EXPECT_EQ((std::vector<std::string>{"2x1", "1x1", "1x1"}), jpegSampling(high));
    EXPECT_LT(draft.size(), normal.size()) << "quality 65 makes a smaller file than 85";
    EXPECT_EQ(1u, jpegSegments(normal, 0xE0).size()) << "a JFIF header";
}

TEST_F(JpegWrite, AWrittenPictureReadsBackClosely) {
    for (int channels : {3, 4}) {
        SCOPED_TRACE(channels);
        OwnedPtr<Dib> picture = makeGradient(203, 97, channels);
        writeFile(picture, ImageQualityHigh);
        OwnedPtr<Dib> back = codec->read(dir.wide("out.jpg"), nullptr, 0, 0);
        ASSERT_TRUE(back);
        EXPECT_EQ(picture->getSize(), back->getSize());
        EXPECT_EQ(3, back->getBytesPerPixel()) << "the fourth byte is not stored";
        EXPECT_GE(psnr(pictureOf(*back), pictureOf(*picture)), 35.0);
        const std::optional<Picture> reference = djpegDecode(dir.file("out.jpg"), 1);
        if (reference) {
            EXPECT_EQ(pictureOf(*back).bgr, reference->bgr) << "the file is an ordinary JPEG";
        }
    }
}

TEST_F(JpegWrite, MemoryWriteGivesTheSameBytesAsTheFile) {
    OwnedPtr<Dib> picture = makeGradient(64, 48, 3);
    const std::string file = writeFile(picture, ImageQualityNormal);
    std::string block(64 * 48 * 3 + 4096, '\0');
    const int size =
        codec->writeToMemory(picture, block.data(), static_cast<int>(block.size()), ImageQualityNormal);
    ASSERT_GT(size, 0);
    EXPECT_EQ(file, block.substr(0, static_cast<std::size_t>(size)));
}

TEST_F(JpegWrite, ABlockTooSmallGivesZero) {
    OwnedPtr<Dib> picture = makePatternDib(64, 64, 3);
    char block[100];
    EXPECT_EQ(0, codec->writeToMemory(picture, block, sizeof block, ImageQualityNormal));
}

TEST_F(JpegWrite, AGreyDibIsRefusedWithTheBitcountException) {
    OwnedPtr<Dib> grey = ByteDib::create(8, 8);
    try {
        codec->write(grey, dir.wide("grey.jpg"), ImageQualityNormal);
        FAIL() << "no exception";
    } catch (const Exception& e) {
        EXPECT_EQ(std::u16string(u"Unsupported bitcount"), e.getMessage());
    }
}

TEST_F(JpegWrite, AFullDiskLeavesTheOldFileWholeAndNoTemporaryFile) {
    OwnedPtr<Dib> old = makeGradient(100, 100, 3);
    const std::string before = writeFile(old, ImageQualityNormal);
    OwnedPtr<Dib> picture = makePatternDib(300, 200, 3);
    {
        FaultyFileSystem disk;
        disk.failWritesAfter(1000);
        try {
            codec->write(picture, dir.wide("out.jpg"), ImageQualityNormal);
            ADD_FAILURE() << "the write reported success";
        } catch (const Exception& e) {
            EXPECT_EQ(std::u16string(u"Cannot write JPEG data to file\n"), e.getMessage());
        }
    }
    EXPECT_EQ(before, readFileBytes(dir.file("out.jpg")));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(dir.path()), {}));
}

TEST_F(JpegWrite, AFailedRenameOrFlushLeavesTheOldFile) {
    OwnedPtr<Dib> old = makeGradient(100, 100, 3);
    const std::string before = writeFile(old, ImageQualityNormal);
    OwnedPtr<Dib> picture = makePatternDib(300, 200, 3);
    for (int fault = 0; fault < 2; ++fault) {
        FaultyFileSystem disk;
        if (fault == 0)
            disk.failRenames(EIO);
        else
            disk.failSync(true);
        EXPECT_THROW(codec->write(picture, dir.wide("out.jpg"), ImageQualityNormal), Exception);
    }
    EXPECT_EQ(before, readFileBytes(dir.file("out.jpg")));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(dir.path()), {}));
}
