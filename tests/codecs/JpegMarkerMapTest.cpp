// Parsing the segments of JPEG files and blocks.

#include <gtest/gtest.h>

#include <stdexcept>

#include "orvanta/codecs/JpegFormat.h"
#include "orvanta/codecs/JpegMarkerMap.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

std::string segment(int marker, const std::string& contents) {
    const std::size_t length = contents.size() + 2;
    return std::string{'\xFF', static_cast<char>(marker), static_cast<char>(length >> 8),
                       static_cast<char>(length & 0xFF)} +
           contents;
}

// SOI, the given segments, a scan header and some entropy-coded bytes.
std::string jpegOf(const std::string& segments, const std::string& scan = std::string(40, '\x55')) {
    return std::string("\xFF\xD8", 2) + segments + segment(0xDA, std::string(10, '\x01')) + scan;
}

std::string bytesOf(const JpegMarkerMap& map, const JpegMarkerMap::Segment& s, bool withHeader) {
    int length = 0;
    const unsigned char* bytes = map.getBytes(s, withHeader, &length);
    return std::string(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

}  // namespace

TEST(JpegMarkerMap, SegmentsComeInFileOrderWithTheRestAsOnePseudoSegment) {
    const std::string app1 = segment(0xE1, "some xmp text");
    const std::string com = segment(0xFE, "a comment");
    const std::string data = jpegOf(app1 + com + segment(0xE1, "second"));
    const JpegMarkerMap map(data.data(), static_cast<int>(data.size()));
    const auto& segments = map.getSegments();
    ASSERT_EQ(5u, segments.size());
    EXPECT_EQ(0xE1, segments[0].marker);
    EXPECT_EQ(0xFE, segments[1].marker);
    EXPECT_EQ(0xDA, segments[3].marker);
    EXPECT_EQ(JpegFormat::kEntropyData, segments[4].marker);
    EXPECT_EQ(40, segments[4].length);
    EXPECT_EQ(static_cast<int>(data.size()) - 40, segments[4].offset);

    EXPECT_EQ(2, map.getSegmentCount(0xE1));
    EXPECT_EQ(app1, bytesOf(map, *map.getSegment(0xE1, 0), true));
    EXPECT_EQ("some xmp text", bytesOf(map, *map.getSegment(0xE1, 0), false));
    EXPECT_EQ("second", bytesOf(map, *map.getSegment(0xE1, 1), false));
    EXPECT_EQ(nullptr, map.getSegment(0xE1, 2));
    EXPECT_EQ(bytesOf(map, segments[4], false), bytesOf(map, segments[4], true)) << "no header on the rest";
    EXPECT_EQ(nullptr, map.getExifBlock()) << "the first APP1 is not EXIF";
}

TEST(JpegMarkerMap, FillBytesBeforeAMarkerAreSkipped) {
    const std::string data = jpegOf(std::string("\xFF\xFF\xFF", 3) + segment(0xFE, "comment"));
    const JpegMarkerMap map(data.data(), static_cast<int>(data.size()));
    EXPECT_EQ(1, map.getSegmentCount(0xFE));
}

TEST(JpegMarkerMap, TheExifBlockIsCopiedFromItsTiffHeader) {
    const std::string tiff = std::string("MM\x00\x2A\x00\x00\x00\x08", 8) + " and the rest of the block";
    const std::string data = jpegOf(segment(0xE1, std::string("Exif\0\0", 6) + tiff));
    const JpegMarkerMap map(data.data(), static_cast<int>(data.size()));
    ASSERT_NE(nullptr, map.getExifBlock());
    EXPECT_EQ(tiff, std::string(reinterpret_cast<const char*>(map.getExifBlock()), map.getExifBlockSize()));
}

TEST(JpegMarkerMap, AnExifHeaderWithoutByteOrderIsNotAnExifBlock) {
    const std::string data = jpegOf(segment(0xE1, std::string("Exif\0\0XX\x00\x2A\x00\x00\x00\x08", 14)));
    const JpegMarkerMap map(data.data(), static_cast<int>(data.size()));
    EXPECT_EQ(nullptr, map.getExifBlock());
    EXPECT_EQ(0, map.getExifBlockSize());
}

TEST(JpegMarkerMap, ShortOrForeignInputGivesAnEmptyMap) {
    const std::string small = jpegOf("", "").substr(0, 30);
    EXPECT_TRUE(JpegMarkerMap(small.data(), static_cast<int>(small.size())).isEmpty());
    const std::string png = "\x89PNG" + std::string(100, 'x');
    EXPECT_TRUE(JpegMarkerMap(png.data(), static_cast<int>(png.size())).isEmpty());
    EXPECT_TRUE(JpegMarkerMap(u"/nonexistent/file.jpg").isEmpty());
    EXPECT_TRUE(JpegMarkerMap(nullptr, 0).isEmpty());
}

TEST(JpegMarkerMap, SegmentsRunningPastTheEndThrow) {
    std::string data = jpegOf(segment(0xFE, std::string(60, 'c')));
    data = data.substr(0, 40);
    data += std::string(20, '\0');  // long enough to parse, too short for the comment
    EXPECT_THROW(JpegMarkerMap(data.data(), static_cast<int>(data.size())), std::domain_error);
    // No scan at all: the segments run to the end.
    const std::string noScan = std::string("\xFF\xD8", 2) + segment(0xFE, std::string(60, 'c'));
    EXPECT_THROW(JpegMarkerMap(noScan.data(), static_cast<int>(noScan.size())), std::domain_error);
    // A length below 2.
    std::string bad = std::string("\xFF\xD8\xFF\xFE\x00\x01", 6) + std::string(60, 'x');
    try {
        JpegMarkerMap map(bad.data(), static_cast<int>(bad.size()));
        FAIL() << "no exception";
    } catch (const std::domain_error& e) {
        EXPECT_STREQ("Cannot load JPEG file", e.what());
    }
}

TEST(JpegMarkerMap, RealFilesParseAsAnIndependentReaderSeesThem) {
    ORVANTA_REQUIRE_TESTDATA();
    for (const std::string& path : testDataFiles("jpeg", {".jpg"})) {
        SCOPED_TRACE(path);
        const std::string bytes = readFileBytes(path);
        const JpegMarkerMap map(CString::fromUtf8(path));
        ASSERT_FALSE(map.isEmpty());
        for (int marker : {0xE0, 0xE1, 0xE2, 0xED, 0xFE, 0xDB, 0xC4}) {
            const std::vector<std::string> expected = jpegSegments(bytes, marker);
            ASSERT_EQ(static_cast<int>(expected.size()), map.getSegmentCount(marker)) << std::hex << marker;
            for (int i = 0; i < map.getSegmentCount(marker); ++i)
                EXPECT_EQ(expected[i], bytesOf(map, *map.getSegment(marker, i), true));
        }
        const auto& last = map.getSegments().back();
        EXPECT_EQ(static_cast<int>(bytes.size()), last.offset + last.length);
    }
}
