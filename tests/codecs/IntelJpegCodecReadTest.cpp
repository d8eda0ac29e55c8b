// Decoding JPEG files: every real file against the reference decoders, reduced decodes, the choice
// of the reduction, and damaged files.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/pixels/DibSection.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

std::vector<std::string> realJpegs() {
    std::vector<std::string> files;
    for (const char* folder : {"jpeg", "jpeg-awkward", "large"}) {
        auto some = testDataFiles(folder, {".jpg", ".jpeg", ".mpo"});
        files.insert(files.end(), some.begin(), some.end());
    }
    return files;
}

// Decodes with the codec; null when the codec gives null or throws its Exception.
Dib* decodeOrNull(IntelJpegCodec& codec, const std::string& path, CSize* size, int maxHeight, int maxWidth) {
    try {
        return codec.read(CString::fromUtf8(path), size, maxHeight, maxWidth);
    } catch (const Exception&) {
        return nullptr;
    }
}

class JpegRead : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        codec = IntelJpegCodec::create();
    }
    OwnedPtr<IntelJpegCodec> codec;
};

}  // namespace

TEST_F(JpegRead, EveryRealFileDecodesAsTheReferenceDoesAtFullSize) {
    int compared = 0;
    double lowest = std::numeric_limits<double>::infinity();
    for (const std::string& path : realJpegs()) {
        SCOPED_TRACE(path);
        std::optional<Picture> reference = djpegDecode(path, 1);
        if (!reference) reference = magickDecode(path);
        CSize size;
        OwnedPtr<Dib> dib = decodeOrNull(*codec, path, &size, 0, 0);
        if (!reference) {
            // Neither reference reads it (12-bit, lossless, no height, no scan): ours must refuse too.
            EXPECT_FALSE(dib) << "decoded a file no reference decoder reads";
            continue;
        }
        ASSERT_TRUE(dib) << "the reference decodes this file";
        EXPECT_EQ(size, dib->getSize());
        const double db = psnr(pictureOf(*dib), *reference);
        EXPECT_GE(db, 40.0);
        lowest = std::min(lowest, db);
        ++compared;
    }
    if (compared == 0) GTEST_SKIP() << "no reference decoder (djpeg, ImageMagick) installed";
    RecordProperty("files", compared);
    RecordProperty("lowest_psnr_db", std::to_string(lowest));
}

TEST_F(JpegRead, ReducedDecodesEqualDjpegScaling) {
    if (!haveTool("djpeg")) GTEST_SKIP() << "djpeg is not installed";
    for (const std::string& path : realJpegs()) {
        CSize full;
        ImageQuality quality;
        try {
            codec->getInfo(CString::fromUtf8(path), &full, &quality);
        } catch (const Exception&) {
            continue;
        }
        for (int denominator : {2, 4, 8}) {
            SCOPED_TRACE(path + " at 1/" + std::to_string(denominator));
            // A box of the sides divided (rounded down) asks for this reduction once the picture is
            // more than twice the denominator across.
            if (full.cx <= 2 * denominator || full.cy <= 2 * denominator) continue;
            const std::optional<Picture> reference = djpegDecode(path, denominator);
            if (!reference) continue;  // four-channel files: djpeg writes no PPM of them
            CSize size;
            OwnedPtr<Dib> dib =
                decodeOrNull(*codec, path, &size, full.cy / denominator, full.cx / denominator);
            ASSERT_TRUE(dib);
            EXPECT_EQ(full, size) << "the original size is reported, not the decoded one";
            EXPECT_EQ(reference->width, dib->getSize().cx);
            EXPECT_EQ(reference->height, dib->getSize().cy);
            EXPECT_TRUE(pictureOf(*dib).bgr == reference->bgr)
                << "pixels differ from djpeg -scale 1/" << denominator;
        }
    }
}

TEST_F(JpegRead, GreyPicturesComeOutWithThreeEqualChannels) {
    const std::string path = testDataPath("jpeg-awkward/grey-hopper-com.jpg");
    OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(path), nullptr, 0, 0);
    ASSERT_TRUE(dib);
    EXPECT_EQ(3, dib->getBytesPerPixel());
    const Picture picture = pictureOf(*dib);
    int coloured = 0;
    for (std::size_t i = 0; i < picture.bgr.size(); i += 3)
        coloured += picture.bgr[i] != picture.bgr[i + 1] || picture.bgr[i] != picture.bgr[i + 2];
    EXPECT_EQ(0, coloured);
}

TEST_F(JpegRead, InkPicturesComeOutWithFourChannelsAndTrueColours) {
    for (const char* name : {"jpeg-awkward/cmyk-adobe0-256x256.jpg", "jpeg-awkward/ycck-adobe2-100x100.jpg",
                             "jpeg-awkward/cmyk-adobe0-9icc-388x218.jpg"}) {
        SCOPED_TRACE(name);
        const std::string path = testDataPath(name);
        OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(path), nullptr, 0, 0);
        ASSERT_TRUE(dib);
        EXPECT_EQ(4, dib->getBytesPerPixel());
        const std::optional<Picture> reference = magickDecode(path);
        if (reference) {
            EXPECT_GE(psnr(pictureOf(*dib), *reference), 40.0);
        }
    }
}

TEST_F(JpegRead, MemoryAndFileGiveTheSamePicture) {
    const std::string path = testDataPath("jpeg/canon-ixus-640x480.jpg");
    const std::string bytes = readFileBytes(path);
    CSize fileSize, memorySize;
    OwnedPtr<Dib> fromFile = codec->read(CString::fromUtf8(path), &fileSize, 200, 200);
    OwnedPtr<Dib> fromMemory =
        codec->readFromMemory(bytes.data(), static_cast<int>(bytes.size()), &memorySize, 200, 200);
    ASSERT_TRUE(fromFile && fromMemory);
    EXPECT_TRUE(*fromFile == *fromMemory);
    EXPECT_EQ(fileSize, memorySize);
}

TEST_F(JpegRead, HeaderReportsSizeAndHighQuality) {
    CSize size;
    ImageQuality quality = ImageQualityDraft;
    EXPECT_TRUE(
        codec->getInfo(CString::fromUtf8(testDataPath("jpeg/sony-dsc-hx5v-730x547.jpg")), &size, &quality));
    EXPECT_EQ(CSize(730, 547), size);
    EXPECT_EQ(ImageQualityHigh, quality);
}

// A 4000 x 3000 picture made by the codec itself, for the rules that choose the reduction.
class JpegReduction : public ::testing::Test {
protected:
    void SetUp() override {
        codec = IntelJpegCodec::create();
        OwnedPtr<Dib> pattern = makePatternDib(4000, 3000, 3);
        path = dir.wide("big.jpg");
        ASSERT_GT(codec->write(pattern, path, ImageQualityNormal), 0);
    }
    CSize decodedSize(int maxHeight, int maxWidth) {
        OwnedPtr<Dib> dib = codec->read(path, nullptr, maxHeight, maxWidth);
        return dib ? dib->getSize() : CSize(0, 0);
    }
    TempDir dir;
    CString path;
    OwnedPtr<IntelJpegCodec> codec;
};

TEST_F(JpegReduction, ABoxOfExactlyAnEighthDecodesAtAnEighth) {
    EXPECT_EQ(CSize(500, 375), decodedSize(500, 500));
}

TEST_F(JpegReduction, ABoxJustAboveAnEighthDecodesAtAQuarter) {
    EXPECT_EQ(CSize(1000, 750), decodedSize(500, 501));
}

TEST_F(JpegReduction, ANegativeSideGivesTheEighth) {
    EXPECT_EQ(CSize(500, 375), decodedSize(500, -1));
}

TEST_F(JpegReduction, NoLimitOrABoxAsLargeAsThePictureDecodesAtFullSize) {
    EXPECT_EQ(CSize(4000, 3000), decodedSize(0, 0));
    EXPECT_EQ(CSize(4000, 3000), decodedSize(3000, 4000));
    EXPECT_EQ(CSize(2000, 1500), decodedSize(1500, 2000));
}

TEST(JpegDamage, TruncatedAndGarbledInputNeverCrashes) {
    ORVANTA_REQUIRE_TESTDATA();
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    const std::string bytes = readFileBytes(testDataPath("jpeg/canon-ixus-640x480.jpg"));
    TempDir dir;
    // Cut at every few hundred bytes, and with bytes overwritten in the scan.
    for (std::size_t cut = 0; cut < bytes.size(); cut += bytes.size() / 23 + 1) {
        std::string damaged = bytes.substr(0, cut);
        writeFileBytes(dir.file("cut.jpg"), damaged);
        try {
            OwnedPtr<Dib> dib = codec->read(dir.wide("cut.jpg"), nullptr, 0, 0);
            if (dib) {
                EXPECT_EQ(CSize(640, 480), dib->getSize());
            }
        } catch (const Exception&) {
        }
        try {
            OwnedPtr<Dib> dib =
                codec->readFromMemory(damaged.data(), static_cast<int>(damaged.size()), nullptr, 100, 100);
        } catch (const Exception&) {
        }
        std::string garbled = bytes;
        for (std::size_t i = cut; i < garbled.size() && i < cut + 64; ++i)
            garbled[i] = static_cast<char>(i * 37);
        try {
            OwnedPtr<Dib> dib =
                codec->readFromMemory(garbled.data(), static_cast<int>(garbled.size()), nullptr, 0, 0);
        } catch (const Exception&) {
        }
    }
}

TEST(JpegDamage, FilesNoDecoderReadsRaiseTheHeaderOrDataException) {
    ORVANTA_REQUIRE_TESTDATA();
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    for (const char* name :
         {"jpeg-awkward/missing-sos.jpg", "jpeg-awkward/invalid-dimensions.jpg",
          "jpeg-awkward/dnl-height0-beach-200.jpg", "jpeg-awkward/precision12-sof1-149x227.jpg"}) {
        SCOPED_TRACE(name);
        const CString path = CString::fromUtf8(testDataPath(name));
        try {
            OwnedPtr<Dib> dib = codec->read(path, nullptr, 0, 0);
            ADD_FAILURE() << "no exception";
        } catch (const Exception& e) {
            const std::u16string message = e.getMessage();
            EXPECT_TRUE(message == u"Cannot read JPEG header" ||
                        message == u"Cannot read JPEG data from file\n");
        }
        CSize size;
        EXPECT_THROW(codec->getInfo(path, &size, nullptr), Exception);
    }
}

TEST(JpegDamage, AMissingFileAndAnEmptyBlockAreRefused) {
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    EXPECT_THROW(codec->read(u"/nonexistent/photo.jpg", nullptr, 0, 0), Exception);
    EXPECT_THROW(codec->readFromMemory("", 0, nullptr, 0, 0), Exception);
    CSize size;
    EXPECT_THROW(codec->getInfo(u"/nonexistent/photo.jpg", &size, nullptr), Exception);
}

TEST(JpegBlackCentre, AFileWhoseCentreDecodesBlackIsDecodedAgainAtFullSize) {
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    OwnedPtr<Dib> black = DibSection::create(64, 48, 3);  // zeroed: black
    TempDir dir;
    ASSERT_GT(codec->write(black, dir.wide("black.jpg"), ImageQualityNormal), 0);
    CSize size;
    OwnedPtr<Dib> fromFile = codec->read(dir.wide("black.jpg"), &size, 12, 16);
    ASSERT_TRUE(fromFile);
    EXPECT_EQ(CSize(64, 48), fromFile->getSize()) << "the second decoder ignores the box";
    EXPECT_EQ(3, fromFile->getBytesPerPixel());
    EXPECT_EQ(CSize(64, 48), size);
    // A memory block is not checked, so it keeps its reduced decode.
    const std::string bytes = readFileBytes(dir.file("black.jpg"));
    OwnedPtr<Dib> fromMemory =
        codec->readFromMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, 12, 16);
    ASSERT_TRUE(fromMemory);
    EXPECT_EQ(CSize(16, 12), fromMemory->getSize());
}

TEST(JpegBlackCentre, APictureWithABrightCentreKeepsItsReducedDecode) {
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    OwnedPtr<Dib> picture = DibSection::create(64, 48, 3);
    std::memset(picture->getBits() + picture->getStride() * 20, 200, picture->getStride() * 8);
    TempDir dir;
    ASSERT_GT(codec->write(picture, dir.wide("band.jpg"), ImageQualityNormal), 0);
    OwnedPtr<Dib> reduced = codec->read(dir.wide("band.jpg"), nullptr, 12, 16);
    ASSERT_TRUE(reduced);
    EXPECT_EQ(CSize(16, 12), reduced->getSize());
}
