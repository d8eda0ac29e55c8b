// Converting and shrinking files through the codec registry and the flat interface.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ImageCodec.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

constexpr int kCopied = ImageCodec::kConvertCopied;
constexpr int kFormat = ImageCodec::kConvertFormatChanged;
constexpr int kSmaller = ImageCodec::kConvertMadeSmaller;
constexpr int kQuality = ImageCodec::kConvertQualityChanged;

class Conversion : public ::testing::Test {
protected:
    void SetUp() override {
        orvantaIUInit();
        ORVANTA_REQUIRE_TESTDATA();
    }
    int convert(const std::string& source, const std::string& destination, int maxWidth, int maxHeight,
                ImageQuality quality) {
        return ImageCodec::downsizeAndConvertFile(CString::fromUtf8(source), dir.wide(destination), maxWidth,
                                                  maxHeight, quality);
    }
    Dib* readBack(const std::string& name) {
        auto* codec = static_cast<ImageCodec*>(CodecManager::getCodec(dir.wide(name)));
        return codec->read(dir.wide(name), nullptr, 0, 0);
    }
    TempDir dir;
};

}  // namespace

TEST_F(Conversion, TheFlatInitialisationRegistersJpegTiffAndBmp) {
    EXPECT_EQ(ImageTypeJpeg, CodecManager::getCodec(u"PHOTO.JPG")->getImageType());
    EXPECT_EQ(ImageTypeJpeg, CodecManager::getCodec(u"jpeg")->getImageType());
    EXPECT_EQ(ImageTypeTiff, CodecManager::getCodec(u"scan.tif")->getImageType());
    EXPECT_EQ(ImageTypeTiff, CodecManager::getCodec(u".tiff")->getImageType());
    EXPECT_EQ(ImageTypeBmp, CodecManager::getCodec(u"x.bmp")->getImageType());
    EXPECT_EQ(ImageTypeJpeg, CodecManager::getDefaultCodec(CodecTypeImage)->getImageType())
        << "the first codec registered is the default image codec";
}

TEST_F(Conversion, SameTypeWithoutShrinkingCopiesByteForByteWhateverTheQuality) {
    const std::string source = testDataPath("jpeg/canon-ixus-640x480.jpg");
    EXPECT_EQ(kCopied, convert(source, "copy.jpg", -1, -1, ImageQualityDraft));
    EXPECT_EQ(readFileBytes(source), readFileBytes(dir.file("copy.jpg")));
    EXPECT_EQ(kCopied, convert(source, "copy2.jpeg", 640, 480, ImageQualityNormal))
        << "a box the picture fits";
}

TEST_F(Conversion, AnotherFormatAtFullSizeSetsTheFormatFlagAndTheQualityFlag) {
    const std::string source = testDataPath("jpeg/canon-ixus-640x480.jpg");
    EXPECT_EQ(kFormat, convert(source, "out.bmp", 1000, 1000, ImageQualityHigh));
    EXPECT_EQ(kFormat | kQuality, convert(source, "out.tif", -1, -1, ImageQualityDraft));
    OwnedPtr<Dib> bmp = readBack("out.bmp");
    OwnedPtr<Dib> tiff = readBack("out.tif");
    ASSERT_TRUE(bmp && tiff);
    EXPECT_EQ(CSize(640, 480), bmp->getSize());
    EXPECT_TRUE(pictureOf(*bmp).bgr == pictureOf(*tiff).bgr) << "both lossless outputs hold the same decode";
}

TEST_F(Conversion, AJpegShrunkIntoABoxKeepsItsMetadataAndAspect) {
    const std::string source = testDataPath("jpeg/canon-eos7d-photoshop-allsegs.jpg");
    EXPECT_EQ(kSmaller | kQuality, convert(source, "small.jpg", 160, 160, ImageQualityNormal));
    OwnedPtr<Dib> small = readBack("small.jpg");
    ASSERT_TRUE(small);
    EXPECT_EQ(CSize(106, 160), small->getSize());
    const std::string before = readFileBytes(source);
    const std::string after = readFileBytes(dir.file("small.jpg"));
    for (int marker : {0xE1, 0xED, 0xFE})
        EXPECT_EQ(jpegSegments(before, marker), jpegSegments(after, marker));
    EXPECT_EQ((std::vector<std::string>{"2x2", "1x1", "1x1"}), jpegSampling(after)) << "normal quality";
}

TEST_F(Conversion, AShrunkPictureLooksLikeTheReferenceThumbnail) {
    const std::string source = testDataPath("jpeg/casio-ex-z3-2048x1536.jpg");
    ASSERT_EQ(kSmaller | kFormat, convert(source, "small.bmp", 256, 192, ImageQualityHigh));
    OwnedPtr<Dib> small = readBack("small.bmp");
    ASSERT_TRUE(small);
    EXPECT_EQ(CSize(256, 192), small->getSize());
    if (access("/usr/bin/convert", X_OK) != 0) return;
    const std::string command =
        "/usr/bin/convert '" + source + "' -filter box -resize 256x192! '" + dir.file("reference.ppm") + "'";
    ASSERT_EQ(0, std::system(command.c_str()));
    const std::optional<Picture> reference = magickDecode(dir.file("reference.ppm"));
    ASSERT_TRUE(reference);
    EXPECT_GE(psnr(pictureOf(*small), *reference), 30.0);
}

TEST_F(Conversion, TiffToJpegWritesAnOrdinaryColourJpeg) {
    const std::string source = testDataPath("tiff/rgba-8bit-le-162x20.tif");
    EXPECT_EQ(kFormat, convert(source, "out.jpg", -1, -1, ImageQualityHigh));
    const std::string bytes = readFileBytes(dir.file("out.jpg"));
    EXPECT_EQ(3u, jpegSampling(bytes).size()) << "three components, not four";
    OwnedPtr<Dib> back = readBack("out.jpg");
    ASSERT_TRUE(back);
    EXPECT_EQ(CSize(162, 20), back->getSize());
}

TEST_F(Conversion, UnknownTypesAndUnreadableSourcesGiveZero) {
    EXPECT_EQ(0, convert(testDataPath("jpeg/canon-ixus-640x480.jpg"), "out.png", -1, -1, ImageQualityHigh));
    EXPECT_EQ(0, convert(dir.file("missing.jpg"), "out.bmp", -1, -1, ImageQualityHigh));
    EXPECT_EQ(0, convert(testDataPath("jpeg-awkward/missing-sos.jpg"), "out.bmp", -1, -1, ImageQualityHigh));
    EXPECT_FALSE(std::filesystem::exists(dir.file("out.bmp")));
}

TEST_F(Conversion, TheFlatFunctionForwardsAndNeverThrows) {
    const std::string source = testDataPath("jpeg/canon-ixus-640x480.jpg");
    EXPECT_EQ(kSmaller,
              orvantaIUDownsizeAndConvertFileU8(source.c_str(), dir.file("a.jpg").c_str(), 320, 320, 2));
    EXPECT_EQ(kSmaller | kFormat | kQuality,
              orvantaIUDownsizeAndConvertFile(CString::fromUtf8(source), dir.wide("b.bmp"), 320, 320, 0));
    // A truncated file reads (the decoder delivers what there is); a garbled one throws inside.
    writeFileBytes(dir.file("garbled.jpg"), readFileBytes(source).substr(0, 700) + std::string(5000, '\xFF'));
    EXPECT_EQ(0, orvantaIUDownsizeAndConvertFileU8(dir.file("garbled.jpg").c_str(), dir.file("c.bmp").c_str(),
                                                   -1, -1, 2));
}

TEST_F(Conversion, AFailedWriteLeavesAnExistingDestination) {
    const std::string source = testDataPath("jpeg/canon-ixus-640x480.jpg");
    writeFileBytes(dir.file("out.jpg"), "precious");
    {
        FaultyFileSystem disk;
        disk.failWritesAfter(2000);
        try {
            convert(source, "out.jpg", 320, 320, ImageQualityHigh);
        } catch (const Exception&) {
        }
        convert(source, "out.jpg", -1, -1, ImageQualityHigh);
    }
    EXPECT_EQ("precious", readFileBytes(dir.file("out.jpg")));
}

TEST_F(Conversion, WriteAsJpegKeepsMetadataOnlyFromAJpegSource) {
    OwnedPtr<Dib> picture = makePatternDib(64, 48, 3);
    const std::string source = testDataPath("jpeg/kodak-dc210-com.jpg");
    EXPECT_TRUE(
        ImageCodec::writeAsJpeg(picture, dir.wide("kept.jpg"), ImageQualityDraft, CString::fromUtf8(source)));
    const std::string kept = readFileBytes(dir.file("kept.jpg"));
    EXPECT_EQ(jpegSegments(readFileBytes(source), 0xFE), jpegSegments(kept, 0xFE));
    EXPECT_EQ((std::vector<std::string>{"2x1", "1x1", "1x1"}), jpegSampling(kept)) << "always high quality";
    EXPECT_TRUE(ImageCodec::writeAsJpeg(picture, dir.wide("plain.jpg"), ImageQualityHigh,
                                        CString::fromUtf8(testDataPath("bmp/rgb24-photo-119x96-pad3.bmp"))));
    EXPECT_TRUE(jpegSegments(readFileBytes(dir.file("plain.jpg")), 0xFE).empty());
    EXPECT_TRUE(ImageCodec::writeAsJpeg(picture, dir.wide("none.jpg"), ImageQualityHigh, nullptr));
}

TEST_F(Conversion, RotationsAreAppliedToJpegFilesOnly) {
    const std::string path = dir.file("photo.jpg");
    writeFileBytes(path, readFileBytes(testDataPath("jpeg/canon-ixus-640x480.jpg")));
    auto* jpeg = static_cast<ImageCodec*>(CodecManager::getCodec(u"jpg"));
    auto* tiff = static_cast<ImageCodec*>(CodecManager::getCodec(u"tif"));
    OwnedPtr<EditingOp> rotate = RotateOp::create(90);
    OwnedPtr<EditingOp> mirror = MirrorOp::create(false);
    EXPECT_TRUE(jpeg->canApplyToFile(rotate));
    EXPECT_FALSE(jpeg->canApplyToFile(mirror));
    EXPECT_FALSE(tiff->canApplyToFile(rotate));
    EXPECT_FALSE(jpeg->applyToFile(dir.wide("photo.jpg"), mirror));
    EXPECT_TRUE(jpeg->applyToFile(dir.wide("photo.jpg"), rotate));
    CSize size;
    jpeg->getInfo(dir.wide("photo.jpg"), &size, nullptr);
    EXPECT_EQ(CSize(480, 640), size);
}

TEST_F(Conversion, ARotationIsLosslessOnlyWhenBothSidesAreMultiplesOfEight) {
    auto* jpeg = static_cast<ImageCodec*>(CodecManager::getCodec(u"jpg"));
    OwnedPtr<EditingOp> rotate = RotateOp::create(90);
    OwnedPtr<EditingOp> mirror = MirrorOp::create(true);
    OwnedPtr<Dib> aligned = makePatternDib(1000, 752, 3);
    OwnedPtr<Dib> ragged = makePatternDib(1000, 750, 3);
    EXPECT_TRUE(jpeg->isLosslessOnFile(rotate, aligned));
    EXPECT_FALSE(jpeg->isLosslessOnFile(rotate, ragged));
    EXPECT_TRUE(jpeg->canApplyToFile(rotate)) << "it can still be applied, dropping the edge";
    EXPECT_FALSE(jpeg->isLosslessOnFile(mirror, aligned));
}
