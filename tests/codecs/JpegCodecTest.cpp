// The JPEG codec: every real file decoded against the reference decoders at full and reduced size (or
// refused as they refuse it), the choice of the reduction, the second decoder, the segments and the EXIF
// thumbnail; the qualities of a written file, re-encoding with the metadata kept byte for byte, a
// new thumbnail, and writes that fail part-way leaving the old file whole.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <stdexcept>

#include "orvanta/codecs/ExifThumbnail.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/codecs/JpegFormat.h"
#include "orvanta/codecs/JpegMarkerMap.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/platform/LastError.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

std::string segment(int marker, const std::string& contents) {
    const std::size_t length = contents.size() + 2;
    return std::string{'\xFF', static_cast<char>(marker), static_cast<char>(length >> 8),
                       static_cast<char>(length)} +
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

constexpr int kApp0 = 0xE0, kApp1 = 0xE1, kApp13 = 0xED, kComment = 0xFE;

// A smooth picture, which JPEG keeps closely; noise would not tell a good encode from a poor one.
Dib* makeGradient(int width, int height, int channels) {
    return makeDib(
        width, height,
        [&](int x, int y) {
            return Rgb{(x + y) * 127 / (width + height) + 64, y * 255 / height, x * 255 / width};
        },
        channels);
}

class JpegCodec : public ::testing::Test {
protected:
    std::string writeFile(Dib* dib, ImageQuality quality, const std::string& name = "out.jpg") {
        EXPECT_GT(codec->write(dib, dir.wide(name), quality), 0);
        return readFileBytes(dir.file(name));
    }
    std::string copyOf(const std::string& name) { return copyTestFile(dir, name); }
    // Decodes the source reduced, as a conversion does, and writes it keeping the metadata.
    std::string reencode(const std::string& source) {
        OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(source), nullptr, 300, 300);
        EXPECT_GT(codec->writeKeepingMetadata(dib, dir.wide("out.jpg"), CString::fromUtf8(source),
                                              ImageQualityHigh),
                  0);
        return readFileBytes(dir.file("out.jpg"));
    }
    TempDir dir;
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
};

}  // namespace

TEST_F(JpegCodec, EveryRealFileDecodesAsTheReferenceDoesAtEverySize) {
    ORVANTA_REQUIRE_TESTDATA();
    for (const char* folder : {"jpeg", "jpeg-awkward", "large"}) {
        for (const std::string& path : testDataFiles(folder, {".jpg", ".jpeg", ".mpo"})) {
            std::optional<Picture> reference = djpegDecode(path, 1);
            if (!reference) reference = magickDecode(path);  // four channels
            CSize full;
            OwnedPtr<Dib> dib;
            const std::u16string message =
                messageOf([&] { dib = codec->read(CString::fromUtf8(path), &full, 0, 0); });
            // Neither reference reads it (12-bit, lossless, no height, no scan): ours must refuse too,
            // with the header's or the data's exception.
            ASSERT_EQ(reference.has_value(), dib != nullptr) << path;
            if (!dib) {
                EXPECT_TRUE(message == u"Cannot read JPEG header" ||
                            message == u"Cannot read JPEG data from file\n")
                    << path;
                EXPECT_EQ(u"Cannot read JPEG header",
                          messageOf([&] { codec->getInfo(CString::fromUtf8(path), nullptr, nullptr); }));
                continue;
            }
            EXPECT_EQ(full, dib->getSize()) << path;
            EXPECT_GE(psnr(pictureOf(*dib), *reference), 40.0) << path;
            // A box of the sides divided asks for that reduction once the picture is more than twice
            // the denominator across; djpeg scales in the same DCT domain, exactly.
            for (int denominator : {2, 4, 8}) {
                const std::optional<Picture> scaled = djpegDecode(path, denominator);
                if (full.cx <= 2 * denominator || full.cy <= 2 * denominator || !scaled) continue;
                CSize size;
                OwnedPtr<Dib> reduced =
                    codec->read(CString::fromUtf8(path), &size, full.cy / denominator, full.cx / denominator);
                EXPECT_EQ(full, size) << "the original size is reported, not the decoded one";
                EXPECT_TRUE(pictureOf(*reduced).bgr == scaled->bgr)
                    << path << " differs at 1/" << denominator;
            }
        }
    }
    EXPECT_EQ(u"Cannot read JPEG header",
              messageOf([&] { codec->getInfo(dir.wide("missing.jpg"), nullptr, nullptr); }));
}

TEST_F(JpegCodec, TheReductionIsTheLargestThatKeepsThePictureAsBigAsTheBox) {
    OwnedPtr<Dib> pattern = makePatternDib(4000, 3000, 3);
    ASSERT_GT(codec->write(pattern, dir.wide("big.jpg"), ImageQualityNormal), 0);
    const struct {
        int maxHeight, maxWidth;
        CSize decoded;
    } cases[] = {{500, 500, {500, 375}}, {500, 501, {1000, 750}},    {500, -1, {500, 375}},
                 {0, 0, {4000, 3000}},   {3000, 4000, {4000, 3000}}, {1500, 2000, {2000, 1500}}};
    for (const auto& c : cases) {
        OwnedPtr<Dib> dib = codec->read(dir.wide("big.jpg"), nullptr, c.maxHeight, c.maxWidth);
        EXPECT_EQ(c.decoded, dib->getSize()) << c.maxWidth << "x" << c.maxHeight;
    }
}

TEST_F(JpegCodec, AFileWhoseCentreDecodesBlackIsDecodedAgainAtFullSize) {
    OwnedPtr<Dib> black = DibSection::create(64, 48, 3);  // zeroed: black
    ASSERT_GT(codec->write(black, dir.wide("black.jpg"), ImageQualityNormal), 0);
    CSize size;
    OwnedPtr<Dib> fromFile = codec->read(dir.wide("black.jpg"), &size, 12, 16);
    EXPECT_EQ(CSize(64, 48), fromFile->getSize()) << "the second decoder ignores the box";
    EXPECT_EQ(CSize(64, 48), size);
    // A memory block is not checked: it keeps its reduced decode.
    const std::string bytes = readFileBytes(dir.file("black.jpg"));
    OwnedPtr<Dib> fromMemory =
        codec->readFromMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, 12, 16);
    EXPECT_EQ(CSize(16, 12), fromMemory->getSize());
}

TEST_F(JpegCodec, AHeaderLongerThanTheFirstReadIsReadOnToTheFrame) {
    OwnedPtr<Dib> picture = makePatternDib(72, 40, 3);
    ASSERT_GT(codec->write(picture, dir.wide("small.jpg"), ImageQualityNormal), 0);
    // Three segments as large as segments go, between the start marker and the frame.
    const std::string icc = segment(0xE2, std::string(65000, 'i')),
                      bytes = readFileBytes(dir.file("small.jpg"));
    writeFileBytes(dir.file("long.jpg"), bytes.substr(0, 2) + icc + icc + icc + bytes.substr(2));
    CSize size;
    ASSERT_TRUE(codec->getInfo(dir.wide("long.jpg"), &size, nullptr));
    EXPECT_EQ(CSize(72, 40), size);
}

TEST(JpegMarkerMap, SegmentsComeInFileOrderWithTheRestAsOnePseudoSegment) {
    const std::string app1 = segment(0xE1, "some xmp text");
    const std::string data =
        jpegOf(std::string("\xFF\xFF", 2) + app1 + segment(0xFE, "a comment") + segment(0xE1, "second"));
    const JpegMarkerMap map(data.data(), static_cast<int>(data.size()));
    const auto& segments = map.getSegments();
    ASSERT_EQ(5u, segments.size());
    EXPECT_EQ((std::vector<int>{0xE1, 0xFE, 0xE1, 0xDA, JpegFormat::kEntropyData}),
              (std::vector<int>{segments[0].marker, segments[1].marker, segments[2].marker,
                                segments[3].marker, segments[4].marker}))
        << "fill bytes before a marker are skipped";
    EXPECT_EQ(std::pair(static_cast<int>(data.size()) - 40, 40),
              std::pair(segments[4].offset, segments[4].length));
    EXPECT_EQ(app1, bytesOf(map, *map.getSegment(0xE1, 0), true));
    EXPECT_EQ("second", bytesOf(map, *map.getSegment(0xE1, 1), false));
    EXPECT_EQ(bytesOf(map, segments[4], false), bytesOf(map, segments[4], true)) << "no header on the rest";
    EXPECT_EQ(nullptr, map.getExifBlock()) << "the first APP1 is not EXIF";
    // The EXIF block is copied from its TIFF header on, and only with a byte order there.
    const std::string tiff = std::string("MM\x00\x2A\x00\x00\x00\x08", 8) + " and the rest of the block";
    const std::string exif = jpegOf(segment(0xE1, std::string("Exif\0\0", 6) + tiff));
    const JpegMarkerMap withExif(exif.data(), static_cast<int>(exif.size()));
    EXPECT_EQ(tiff, std::string(reinterpret_cast<const char*>(withExif.getExifBlock()),
                                withExif.getExifBlockSize()));
    const std::string noOrder = jpegOf(segment(0xE1, std::string("Exif\0\0XX\x00\x2A\x00\x00\x00\x08", 14)));
    EXPECT_EQ(nullptr, JpegMarkerMap(noOrder.data(), static_cast<int>(noOrder.size())).getExifBlock());
}

// A map of the segments alone reads the file's beginning, and on to the scan when the segments run
// past it: the same segments and EXIF block as the whole file's map, wherever the scan starts.
TEST(JpegMarkerMap, SegmentsAloneAreTheWholeFilesSegments) {
    TempDir dir;
    const std::string exif = segment(0xE1, std::string("Exif\0\0II\x2A\x00\x08\x00\x00\x00", 14) + "block");
    const std::string icc = segment(0xE2, std::string(65000, 'i'));
    const std::string scan(300000, '\x55');
    for (const std::string& head : {exif, exif + icc, icc + icc + exif, icc + icc + icc + exif + icc}) {
        writeFileBytes(dir.file("p.jpg"), jpegOf(head, scan));
        const JpegMarkerMap whole(dir.wide("p.jpg")), segments(dir.wide("p.jpg"), JpegMarkerMap::kSegments);
        ASSERT_EQ(whole.getSegments().size(), segments.getSegments().size());
        for (std::size_t i = 0; i + 1 < whole.getSegments().size(); ++i)
            EXPECT_EQ(bytesOf(whole, whole.getSegments()[i], true),
                      bytesOf(segments, segments.getSegments()[i], true));
        EXPECT_EQ(
            std::string(reinterpret_cast<const char*>(whole.getExifBlock()), whole.getExifBlockSize()),
            std::string(reinterpret_cast<const char*>(segments.getExifBlock()), segments.getExifBlockSize()));
        EXPECT_EQ(head.size() > 200000, segments.getSize() == whole.getSize())
            << "the scan is read only when the segments run on";
    }
    // Segments that run past the end of the file throw as the whole file's map does.
    writeFileBytes(dir.file("cut.jpg"), std::string("\xFF\xD8", 2) + icc + icc + icc);
    EXPECT_THROW(JpegMarkerMap(dir.wide("cut.jpg"), JpegMarkerMap::kSegments), std::domain_error);
}

TEST(JpegMarkerMap, ShortOrForeignInputIsEmptyAndSegmentsPastTheEndThrow) {
    const std::string small = jpegOf("", "").substr(0, 30), png = "\x89PNG" + std::string(100, 'x');
    EXPECT_TRUE(JpegMarkerMap(small.data(), static_cast<int>(small.size())).isEmpty());
    EXPECT_TRUE(JpegMarkerMap(png.data(), static_cast<int>(png.size())).isEmpty());
    // Cut inside a comment; no scan at all; a length below 2.
    for (const std::string& bad :
         {jpegOf(segment(0xFE, std::string(60, 'c'))).substr(0, 40) + std::string(20, '\0'),
          std::string("\xFF\xD8", 2) + segment(0xFE, std::string(60, 'c')),
          std::string("\xFF\xD8\xFF\xFE\x00\x01", 6) + std::string(60, 'x')})
        EXPECT_THROW(JpegMarkerMap(bad.data(), static_cast<int>(bad.size())), std::domain_error);
}

TEST(JpegMarkerMap, RealFilesParseAsAnIndependentReaderSeesThem) {
    ORVANTA_REQUIRE_TESTDATA();
    for (const std::string& path : testDataFiles("jpeg", {".jpg"})) {
        const std::string bytes = readFileBytes(path);
        const JpegMarkerMap map(CString::fromUtf8(path));
        for (int marker : {0xE0, 0xE1, 0xE2, 0xED, 0xFE, 0xDB, 0xC4}) {
            const std::vector<std::string> expected = jpegSegments(bytes, marker);
            ASSERT_EQ(static_cast<int>(expected.size()), map.getSegmentCount(marker))
                << path << std::hex << marker;
            for (int i = 0; i < map.getSegmentCount(marker); ++i)
                EXPECT_EQ(expected[i], bytesOf(map, *map.getSegment(marker, i), true)) << path;
        }
        EXPECT_EQ(static_cast<int>(bytes.size()),
                  map.getSegments().back().offset + map.getSegments().back().length);
    }
}

// The thumbnail is read from the segments before the scan alone: for every real JPEG file it is the
// stored preview byte for byte as exiftool extracts it (none where exiftool finds none), and it
// decodes to a picture.
TEST_F(JpegCodec, CameraFilesGiveTheirThumbnailAsExiftoolExtractsItOthersNull) {
    ORVANTA_REQUIRE_TESTDATA();
    if (!haveTool("exiftool")) GTEST_SKIP() << "exiftool is not installed";
    std::vector<std::string> files;
    for (const char* folder : {"jpeg", "jpeg-awkward", "large"})
        for (const std::string& file : testDataFiles(folder, {".jpg"})) files.push_back(file);
    std::string names;
    for (const std::string& file : files) names += " '" + file + "'";
    // One exiftool run writes each file's preview into the folder, named as the file.
    ASSERT_TRUE(
        capture("exiftool -q -q -b -ThumbnailImage -w '" + dir.file("%f.%e") + "'" + names + " 2>&1"));
    int withThumbnail = 0;
    for (const std::string& file : files) {
        const std::string name = file.substr(file.rfind('/') + 1);
        const std::string extracted =
            std::filesystem::exists(dir.file(name)) ? readFileBytes(dir.file(name)) : std::string();
        const std::vector<unsigned char> bytes = codec->readEmbeddedThumbnailBytes(CString::fromUtf8(file));
        EXPECT_TRUE(std::string(bytes.begin(), bytes.end()) == extracted) << name;
        OwnedPtr<Dib> thumbnail = codec->readEmbeddedThumbnail(CString::fromUtf8(file));
        EXPECT_EQ(!extracted.empty(), thumbnail != nullptr) << name;
        withThumbnail += !extracted.empty();
    }
    EXPECT_GE(withThumbnail, 20);
    for (const char* name : {"tiff/rgba-8bit-le-162x20.tif", "missing.jpg"})
        EXPECT_FALSE(codec->readEmbeddedThumbnail(CString::fromUtf8(testDataPath(name)))) << name;
}

// Read from the segments, files cut short anywhere or with bytes of their EXIF block scrambled give
// the thumbnail the whole file's EXIF segment gives, or none; copied out, it is written byte for
// byte, and where there is none nothing is written and the answer says so.
TEST_F(JpegCodec, AThumbnailFromTheSegmentsIsTheWholeFilesOnCutAndScrambledFiles) {
    ORVANTA_REQUIRE_TESTDATA();
    // The preview the whole file's first EXIF segment carries, read as the codec always read it.
    const auto wholeFiles = [](const std::string& bytes) {
        try {
            const JpegMarkerMap map(bytes.data(), static_cast<int>(bytes.size()));
            for (int i = 0; const JpegMarkerMap::Segment* s = map.getSegment(kApp1, i); ++i) {
                if (s->length < JpegFormat::kMinimumExifSegment ||
                    std::memcmp(map.getData() + s->offset, JpegFormat::kExifHeader,
                                JpegFormat::kExifHeaderSize))
                    continue;
                const auto exif = ExifThumbnail::load(map.getData() + s->offset, s->length);
                if (!exif || exif->getThumbnailSize() <= 0) return std::string();
                return std::string(reinterpret_cast<const char*>(exif->getThumbnail()),
                                   static_cast<std::size_t>(exif->getThumbnailSize()));
            }
        } catch (const std::domain_error&) {
        }
        return std::string();
    };
    std::mt19937 random(2027);
    std::vector<std::string> variants;
    for (const char* name : {"jpeg/canon-ixus-640x480.jpg", "jpeg/canon-eos7d-photoshop-allsegs.jpg",
                             "jpeg/iptc-app13-before-exif.jpg", "large/oppo-r7plus-13mp-portrait.jpg"}) {
        const std::string photo = readFileBytes(testDataPath(name));
        for (std::size_t cut = 0; cut < 140000; cut += 1 + random() % 6000)
            variants.push_back(photo.substr(0, cut));
        for (int round = 0; round < 25; ++round) {
            std::string scrambled = photo;
            for (int flips = 0; flips < 1 + round % 4; ++flips)
                scrambled[4 + random() % 20000] = static_cast<char>(random());
            variants.push_back(scrambled);
        }
    }
    int copies = 0;
    for (std::size_t i = 0; i < variants.size(); ++i) {
        writeFileBytes(dir.file("v.jpg"), variants[i]);
        const std::string expected = wholeFiles(variants[i]);
        const std::vector<unsigned char> bytes = codec->readEmbeddedThumbnailBytes(dir.wide("v.jpg"));
        ASSERT_TRUE(std::string(bytes.begin(), bytes.end()) == expected) << "variant " << i;
        std::remove(dir.file("t.jpg").c_str());
        CSize size(0, 0);
        const int copied =
            codec->copyEmbeddedThumbnail(dir.wide("v.jpg"), dir.wide("t.jpg"), 1000, 1000, &size);
        ASSERT_GE(copied, 0) << "variant " << i;
        EXPECT_EQ(copied > 0, std::filesystem::exists(dir.file("t.jpg"))) << "variant " << i;
        // Written, it is the preview itself; where there is none, nothing is.
        EXPECT_TRUE(copied == 0 || readFileBytes(dir.file("t.jpg")) == expected) << "variant " << i;
        EXPECT_TRUE(copied == 0 || !expected.empty()) << "variant " << i;
        copies += copied > 0;
    }
    EXPECT_GT(copies, 20);
    // A destination that cannot be written is an error of its own, with the reason.
    writeFileBytes(dir.file("v.jpg"), readFileBytes(testDataPath("jpeg/canon-ixus-640x480.jpg")));
    Platform::setLastError(0);
    EXPECT_LT(codec->copyEmbeddedThumbnail(dir.wide("v.jpg"), dir.wide("no/t.jpg"), 1000, 1000, nullptr), 0);
    EXPECT_EQ(ENOENT, Platform::getLastError());
}

TEST_F(JpegCodec, QualitiesChooseChromaSamplingAndAWrittenPictureIsWhatDjpegDecodes) {
    OwnedPtr<Dib> picture = makeGradient(203, 97, 4);
    const std::string normal = writeFile(picture, ImageQualityNormal, "normal.jpg");
    const std::string draft = writeFile(picture, ImageQualityDraft, "draft.jpg");
    const std::string high = writeFile(picture, ImageQualityHigh, "high.jpg");
    EXPECT_EQ((std::vector<std::string>{"2x2", "1x1", "1x1"}), jpegSampling(normal));
    EXPECT_EQ(jpegSampling(normal), jpegSampling(draft));
    EXPECT_EQ((std::vector<std::string>{"2x1", "1x1", "1x1"}), jpegSampling(high));
    EXPECT_LT(draft.size(), normal.size()) << "quality 65 makes a smaller file than 85";
    OwnedPtr<Dib> back = codec->read(dir.wide("high.jpg"), nullptr, 0, 0);
    EXPECT_EQ(3, back->getBytesPerPixel()) << "the fourth byte is not stored";
    EXPECT_GE(psnr(pictureOf(*back), pictureOf(*picture)), 35.0);
    const std::optional<Picture> reference = djpegDecode(dir.file("high.jpg"), 1);
    EXPECT_TRUE(!reference || pictureOf(*back).bgr == reference->bgr) << "the file is an ordinary JPEG";
    // Memory gives the file's bytes, or 0 when the block is too small.
    std::string block(high.size() + 4096, '\0');
    EXPECT_EQ(static_cast<int>(high.size()),
              codec->writeToMemory(picture, block.data(), static_cast<int>(block.size()), ImageQualityHigh));
    EXPECT_EQ(high, block.substr(0, high.size()));
    EXPECT_EQ(0, codec->writeToMemory(picture, block.data(), 100, ImageQualityNormal));
    // So does a picture large enough to be encoded in strips.
    OwnedPtr<Dib> large = makeGradient(1300, 900, 3);
    const std::string largeFile = writeFile(large, ImageQualityHigh, "large.jpg");
    std::string largeBlock(largeFile.size() + 4096, '\0');
    EXPECT_EQ(static_cast<int>(largeFile.size()),
              codec->writeToMemory(large, largeBlock.data(), static_cast<int>(largeBlock.size()),
                                   ImageQualityHigh));
    EXPECT_EQ(largeFile, largeBlock.substr(0, largeFile.size()));
    EXPECT_EQ(0, codec->writeToMemory(large, largeBlock.data(), 5000, ImageQualityHigh));
    OwnedPtr<Dib> grey = ByteDib::create(8, 8);
    EXPECT_EQ(u"Unsupported bitcount",
              messageOf([&] { codec->write(grey, dir.wide("grey.jpg"), ImageQualityNormal); }));
}

TEST_F(JpegCodec, MetadataIsKeptByteForByteWithExifFirstAndAPlainWriteWithoutIt) {
    ORVANTA_REQUIRE_TESTDATA();
    for (const char* name :
         {"jpeg/canon-eos7d-photoshop-allsegs.jpg", "jpeg/nikon-d70-app13-after-dht.jpg",
          "jpeg/iptc-app13-before-exif.jpg", "jpeg/kodak-dc210-com.jpg",
          "jpeg/android-depthmap-extended-xmp.jpg", "jpeg/nikon-coolpix-gps-xmp-after-sof.jpg",
          "jpeg-awkward/grey-photo-canon-exif-800x533.jpg", "jpeg-awkward/grey-hopper-com.jpg"}) {
        const std::string source = readFileBytes(testDataPath(name)), out = reencode(testDataPath(name));
        std::string kept;
        for (int marker : {kApp1, kApp13, kComment}) {
            EXPECT_EQ(jpegSegments(source, marker), jpegSegments(out, marker)) << name << std::hex << marker;
            for (const std::string& s : jpegSegments(out, marker)) kept += s;
        }
        // A file with EXIF begins with it and loses its JFIF segment; one without keeps the new
        // picture's JFIF segment in front. Then every APP1, APP13 and comment, in that order.
        const auto app1 = jpegSegments(source, kApp1);
        const bool exif = !app1.empty() && app1[0].substr(4, 4) == "Exif";
        EXPECT_EQ(exif ? 0u : 1u, jpegSegments(out, kApp0).size()) << name;
        EXPECT_EQ(kept, out.substr(exif ? 2 : 2 + jpegSegments(out, kApp0)[0].size(), kept.size())) << name;
        EXPECT_TRUE(OwnedPtr<Dib>(codec->read(dir.wide("out.jpg"), nullptr, 0, 0))) << name;
    }
    // A source without those segments, unparsable or missing gives a plain write.
    OwnedPtr<Dib> dib = makePatternDib(40, 30, 3);
    writeFileBytes(dir.file("broken.jpg"),
                   std::string("\xFF\xD8\xFF\xE1\x7F\xFF", 6) + std::string(100, 'x'));
    const std::string plain = writeFile(dib, ImageQualityNormal, "plain.jpg");
    for (const std::string& source : {testDataPath("jpeg-awkward/size-227x149-ijg-testorig.jpg"),
                                      dir.file("broken.jpg"), dir.file("missing.jpg")}) {
        codec->writeKeepingMetadata(dib, dir.wide("kept.jpg"), CString::fromUtf8(source), ImageQualityNormal);
        EXPECT_EQ(plain, readFileBytes(dir.file("kept.jpg"))) << source;
    }
    const std::string gps = testDataPath("jpeg/nikon-coolpix-gps-xmp-after-sof.jpg");
    if (const auto before = exiftoolTags(gps)) {
        reencode(gps);
        EXPECT_EQ(*before, exiftoolTags(dir.file("out.jpg")).value_or("")) << "exiftool reads the same tags";
    }
}

TEST_F(JpegCodec, ANewThumbnailReplacesTheOldAndNothingElseMoves) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string path = copyOf("jpeg/nikon-d70-app13-after-dht.jpg"), before = readFileBytes(path);
    OwnedPtr<Dib> picture = makePatternDib(160, 107, 3, 7);
    codec->writeEmbeddedThumbnail(CString::fromUtf8(path), picture);
    const std::string after = readFileBytes(path);
    OwnedPtr<Dib> thumbnail = codec->readEmbeddedThumbnail(CString::fromUtf8(path));
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(CSize(160, 107), thumbnail->getSize());
    // Every segment but the EXIF one, and the picture itself, are untouched; so are the times.
    for (int marker : {0xDB, 0xC0, 0xC4, 0xED})
        EXPECT_EQ(jpegSegments(before, marker), jpegSegments(after, marker));
    const std::string scan = jpegSegments(before, 0xDA).at(0);
    EXPECT_EQ(before.substr(before.rfind(scan)), after.substr(after.rfind(scan)));
    struct stat now;
    ASSERT_EQ(0, stat(path.c_str(), &now));
    EXPECT_EQ(1200000000, now.st_mtim.tv_sec);
    const std::string tags = "exiftool -q -q -Make -Model -DateTimeOriginal -ExposureTime -s3 '";
    EXPECT_EQ(capture(tags + testDataPath("jpeg/nikon-d70-app13-after-dht.jpg") + "'"),
              capture(tags + path + "'"));
    // No picture removes the thumbnail; a file without EXIF is left alone.
    codec->writeEmbeddedThumbnail(CString::fromUtf8(path), nullptr);
    EXPECT_FALSE(codec->readEmbeddedThumbnail(CString::fromUtf8(path)));
    EXPECT_TRUE(OwnedPtr<Dib>(codec->read(CString::fromUtf8(path), nullptr, 0, 0)))
        << "the photograph still reads";
    const std::string plain = copyOf("jpeg-awkward/size-227x149-ijg-testorig.jpg"),
                      unchanged = readFileBytes(plain);
    codec->writeEmbeddedThumbnail(CString::fromUtf8(plain), picture);
    EXPECT_EQ(unchanged, readFileBytes(plain));
    EXPECT_EQ(2u, dir.count());
}

TEST_F(JpegCodec, AFailedWriteOrRewriteLeavesTheOldFileWholeAndSaysWhy) {
    ORVANTA_REQUIRE_TESTDATA();
    OwnedPtr<Dib> picture = makePatternDib(300, 200, 3);
    const std::string old = writeFile(OwnedPtr<Dib>(makeGradient(100, 100, 3)), ImageQualityNormal);
    const std::string path = copyOf("jpeg/canon-ixus-640x480.jpg"), photo = readFileBytes(path);
    for (int error : {ENOSPC, EIO, EXDEV}) {
        FaultyFileSystem disk;
        disk.failWritesAfter(error == ENOSPC ? 1000 : -1);
        disk.failSync(error == EIO);
        disk.failRenames(error == EXDEV ? EXDEV : 0);
        Platform::setLastError(0);
        EXPECT_EQ(u"Cannot write JPEG data to file\n",
                  messageOf([&] { codec->write(picture, dir.wide("out.jpg"), ImageQualityNormal); }));
        EXPECT_EQ(error, Platform::getLastError());
        codec->writeEmbeddedThumbnail(CString::fromUtf8(path), picture);
        EXPECT_EQ(error, Platform::getLastError());
    }
    EXPECT_EQ(old, readFileBytes(dir.file("out.jpg")));
    EXPECT_EQ(photo, readFileBytes(path));
    EXPECT_EQ(2u, dir.count()) << "no temporary file is left";
}
