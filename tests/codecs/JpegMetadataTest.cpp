// Re-encoding a photograph while keeping its metadata segments byte for byte.

#include <gtest/gtest.h>

#include "orvanta/codecs/IntelJpegCodec.h"
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

constexpr int kApp0 = 0xE0, kApp1 = 0xE1, kApp13 = 0xED, kComment = 0xFE;

std::vector<std::string> allOf(const std::string& bytes, std::initializer_list<int> markers) {
    std::vector<std::string> out;
    for (int marker : markers)
        for (const std::string& s : jpegSegments(bytes, marker)) out.push_back(s);
    return out;
}

class JpegMetadata : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        codec = IntelJpegCodec::create();
    }
    // Decodes the source reduced, as a conversion does, and writes it keeping the metadata.
    std::string reencode(const std::string& source) {
        OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(source), nullptr, 300, 300);
        EXPECT_TRUE(dib);
        if (!dib) return std::string();
        EXPECT_GT(codec->writeKeepingMetadata(dib, dir.wide("out.jpg"), CString::fromUtf8(source),
                                              ImageQualityHigh),
                  0);
        return readFileBytes(dir.file("out.jpg"));
    }
    TempDir dir;
    OwnedPtr<IntelJpegCodec> codec;
};

}  // namespace

TEST_F(JpegMetadata, App1App13AndCommentSegmentsAreKeptByteForByte) {
    for (const char* name :
         {"jpeg/canon-eos7d-photoshop-allsegs.jpg", "jpeg/nikon-d70-app13-after-dht.jpg",
          "jpeg/iptc-app13-before-exif.jpg", "jpeg/kodak-dc210-com.jpg",
          "jpeg/android-depthmap-extended-xmp.jpg", "jpeg/nikon-coolpix-gps-xmp-after-sof.jpg",
          "jpeg-awkward/grey-photo-canon-exif-800x533.jpg", "jpeg-awkward/grey-hopper-com.jpg"}) {
        SCOPED_TRACE(name);
        const std::string source = readFileBytes(testDataPath(name));
        const std::string out = reencode(testDataPath(name));
        for (int marker : {kApp1, kApp13, kComment})
            EXPECT_EQ(jpegSegments(source, marker), jpegSegments(out, marker)) << std::hex << marker;
        OwnedPtr<Dib> back = codec->read(dir.wide("out.jpg"), nullptr, 0, 0);
        EXPECT_TRUE(back) << "the result is a readable JPEG";
    }
}

TEST_F(JpegMetadata, AFileWithExifBeginsWithItAndLosesItsJfifSegment) {
    const std::string out = reencode(testDataPath("jpeg/canon-eos7d-photoshop-allsegs.jpg"));
    ASSERT_GT(out.size(), 4u);
    EXPECT_EQ('\xE1', out[3]) << "the first segment is the EXIF APP1";
    EXPECT_TRUE(jpegSegments(out, kApp0).empty());
    // Grouped: every APP1 first, then APP13, then comments, then the new picture's own segments.
    const std::vector<std::string> kept = allOf(out, {kApp1, kApp13, kComment});
    const std::string prefix = out.substr(2, [&] {
        std::size_t n = 0;
        for (const auto& s : kept) n += s.size();
        return n;
    }());
    std::string expected;
    for (const auto& s : kept) expected += s;
    EXPECT_EQ(expected, prefix);
}

TEST_F(JpegMetadata, AFileWithoutExifKeepsTheNewJfifSegmentInFront) {
    const std::string out = reencode(testDataPath("jpeg-awkward/grey-hopper-com.jpg"));
    EXPECT_EQ('\xE0', out[3]);
    EXPECT_EQ(1u, jpegSegments(out, kApp0).size());
}

TEST_F(JpegMetadata, ASourceWithoutMetadataGivesAPlainWrite) {
    const std::string source = testDataPath("jpeg-awkward/size-227x149-ijg-testorig.jpg");
    OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(source), nullptr, 0, 0);
    ASSERT_GT(
        codec->writeKeepingMetadata(dib, dir.wide("kept.jpg"), CString::fromUtf8(source), ImageQualityNormal),
        0);
    ASSERT_GT(codec->write(dib, dir.wide("plain.jpg"), ImageQualityNormal), 0);
    EXPECT_EQ(readFileBytes(dir.file("plain.jpg")), readFileBytes(dir.file("kept.jpg")));
}

TEST_F(JpegMetadata, AnUnparsableOrMissingSourceGivesAPlainWrite) {
    OwnedPtr<Dib> dib = makePatternDib(40, 30, 3);
    writeFileBytes(dir.file("broken.jpg"),
                   std::string("\xFF\xD8\xFF\xE1\x7F\xFF", 6) + std::string(100, 'x'));
    ASSERT_GT(codec->write(dib, dir.wide("plain.jpg"), ImageQualityNormal), 0);
    for (const char* source : {"broken.jpg", "missing.jpg"}) {
        ASSERT_GT(
            codec->writeKeepingMetadata(dib, dir.wide("kept.jpg"), dir.wide(source), ImageQualityNormal), 0);
        EXPECT_EQ(readFileBytes(dir.file("plain.jpg")), readFileBytes(dir.file("kept.jpg")));
    }
}

TEST_F(JpegMetadata, ExiftoolReadsTheSameTagsFromTheOutput) {
    const std::string source = testDataPath("jpeg/nikon-coolpix-gps-xmp-after-sof.jpg");
    const auto before = exiftoolTags(source);
    if (!before) GTEST_SKIP() << "exiftool is not installed";
    reencode(source);
    const auto after = exiftoolTags(dir.file("out.jpg"));
    ASSERT_TRUE(after);
    EXPECT_EQ(*before, *after);
}

TEST_F(JpegMetadata, AFailedWriteLeavesTheDestinationAsItWas) {
    const std::string source = testDataPath("jpeg/kodak-dc210-com.jpg");
    writeFileBytes(dir.file("out.jpg"), "the old contents");
    OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(source), nullptr, 0, 0);
    {
        FaultyFileSystem disk;
        disk.failWritesAfter(5000);
        EXPECT_EQ(0, codec->writeKeepingMetadata(dib, dir.wide("out.jpg"), CString::fromUtf8(source),
                                                 ImageQualityHigh));
    }
    EXPECT_EQ("the old contents", readFileBytes(dir.file("out.jpg")));
}
