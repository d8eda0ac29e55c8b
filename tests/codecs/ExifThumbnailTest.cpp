// Reading and replacing the small picture stored in a photograph's EXIF block.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/ExifThumbnail.h"
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

class EmbeddedThumbnail : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        codec = IntelJpegCodec::create();
    }
    std::string copyOf(const std::string& name) {
        const std::string path = dir.file(std::filesystem::path(name).filename().string());
        writeFileBytes(path, readFileBytes(testDataPath(name)));
        const struct timespec times[2] = {{1000000000, 0}, {1200000000, 0}};
        utimensat(AT_FDCWD, path.c_str(), times, 0);
        return path;
    }
    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(dir.path()), {}));
    }
    TempDir dir;
    OwnedPtr<IntelJpegCodec> codec;
};

}  // namespace

TEST_F(EmbeddedThumbnail, CameraFilesGiveTheirThumbnailAsExiftoolExtractsIt) {
    for (const char* name : {"jpeg/canon-ixus-640x480.jpg", "jpeg/nikon-d70-app13-after-dht.jpg",
                             "jpeg/apple-iphone5-orient3.jpg", "jpeg/iptc-app13-before-exif.jpg",
                             "jpeg-awkward/ycck-adobe2-100x100.jpg"}) {
        SCOPED_TRACE(name);
        OwnedPtr<Dib> thumbnail = codec->readEmbeddedThumbnail(CString::fromUtf8(testDataPath(name)));
        ASSERT_TRUE(thumbnail);
        if (!haveTool("exiftool")) continue;
        const std::string extracted = dir.file("thumb.jpg");
        const std::string command =
            "exiftool -b -ThumbnailImage '" + testDataPath(name) + "' > '" + extracted + "'";
        ASSERT_EQ(0, std::system(command.c_str()));
        OwnedPtr<Dib> reference = codec->read(CString::fromUtf8(extracted), nullptr, 0, 0);
        ASSERT_TRUE(reference);
        EXPECT_TRUE(*thumbnail == *reference);
    }
}

TEST_F(EmbeddedThumbnail, FilesWithoutOneGiveNull) {
    for (const char* name :
         {"jpeg/orientation-1-landscape.jpg", "jpeg-awkward/size-33x33.jpg", "jpeg/kodak-dc210-com.jpg",
          "jpeg-awkward/missing-sos.jpg", "tiff/rgba-8bit-le-162x20.tif"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(codec->readEmbeddedThumbnail(CString::fromUtf8(testDataPath(name))));
    }
    EXPECT_FALSE(codec->readEmbeddedThumbnail(dir.wide("missing.jpg")));
}

TEST_F(EmbeddedThumbnail, ANewThumbnailReplacesTheOldAndNothingElseMoves) {
    const std::string path = copyOf("jpeg/nikon-d70-app13-after-dht.jpg");
    const std::string before = readFileBytes(path);
    struct stat old;
    ASSERT_EQ(0, stat(path.c_str(), &old));
    OwnedPtr<Dib> picture = makePatternDib(160, 107, 3, 7);
    codec->writeEmbeddedThumbnail(CString::fromUtf8(path), picture);

    const std::string after = readFileBytes(path);
    OwnedPtr<Dib> thumbnail = codec->readEmbeddedThumbnail(CString::fromUtf8(path));
    ASSERT_TRUE(thumbnail);
    EXPECT_EQ(CSize(160, 107), thumbnail->getSize());
    // Every segment but the EXIF one, and the picture itself, are untouched.
    for (int marker : {0xDB, 0xC0, 0xC4, 0xED})
        EXPECT_EQ(jpegSegments(before, marker), jpegSegments(after, marker));
    ASSERT_NE(std::string::npos, jpegScanOffset(after));
    EXPECT_EQ(before.substr(jpegScanOffset(before)), after.substr(jpegScanOffset(after)));
    struct stat now;
    ASSERT_EQ(0, stat(path.c_str(), &now));
    EXPECT_EQ(old.st_mtim.tv_sec, now.st_mtim.tv_sec);
    if (haveTool("exiftool")) {
        const std::string command = "exiftool -q -q -Make -Model -DateTimeOriginal -ExposureTime -s3 '";
        EXPECT_EQ(std::system((command + testDataPath("jpeg/nikon-d70-app13-after-dht.jpg") + "' > '" +
                               dir.file("a") + "'")
                                  .c_str()),
                  0);
        EXPECT_EQ(std::system((command + path + "' > '" + dir.file("b") + "'").c_str()), 0);
        EXPECT_EQ(readFileBytes(dir.file("a")), readFileBytes(dir.file("b")));
    }
}

TEST_F(EmbeddedThumbnail, ANullPictureRemovesTheThumbnail) {
    const std::string path = copyOf("jpeg/canon-ixus-640x480.jpg");
    codec->writeEmbeddedThumbnail(CString::fromUtf8(path), nullptr);
    EXPECT_FALSE(codec->readEmbeddedThumbnail(CString::fromUtf8(path)));
    OwnedPtr<Dib> picture = codec->read(CString::fromUtf8(path), nullptr, 0, 0);
    EXPECT_TRUE(picture) << "the photograph itself still reads";
}

TEST_F(EmbeddedThumbnail, AFileWithoutExifIsLeftAlone) {
    const std::string path = copyOf("jpeg-awkward/size-227x149-ijg-testorig.jpg");
    const std::string before = readFileBytes(path);
    OwnedPtr<Dib> picture = makePatternDib(16, 16, 3);
    codec->writeEmbeddedThumbnail(CString::fromUtf8(path), picture);
    EXPECT_EQ(before, readFileBytes(path));
    EXPECT_EQ(1u, filesInFolder());
}

TEST_F(EmbeddedThumbnail, AFailedRewriteLeavesTheFileByteForByte) {
    const std::string path = copyOf("jpeg/canon-ixus-640x480.jpg");
    const std::string before = readFileBytes(path);
    OwnedPtr<Dib> picture = makePatternDib(160, 120, 3);
    for (int fault = 0; fault < 3; ++fault) {
        SCOPED_TRACE(fault);
        FaultyFileSystem disk;
        if (fault == 0) disk.failWritesAfter(20000);
        if (fault == 1) disk.failRenames(EIO);
        if (fault == 2) disk.failSync(true);
        codec->writeEmbeddedThumbnail(CString::fromUtf8(path), picture);
        EXPECT_EQ(before, readFileBytes(path));
        EXPECT_EQ(1u, filesInFolder());
    }
}

TEST(ExifThumbnail, BytesThatAreNotExifLoadAsNothing) {
    const unsigned char junk[] = "this is not an EXIF block at all, only text";
    EXPECT_EQ(nullptr, ExifThumbnail::load(junk, sizeof junk));
    EXPECT_EQ(nullptr, ExifThumbnail::load(nullptr, 0));
}

TEST(EmbeddedThumbnailSwitch, TheJpegCodecUsesThumbnailsWhileFastThumbnailingIsOn) {
    OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    EXPECT_TRUE(codec->hasEmbeddedThumbnail());
    CodecManager::disableFastThumbnailing();
    EXPECT_FALSE(codec->useEmbeddedThumbnail());
    CodecManager::enableFastThumbnailing(true);
    EXPECT_TRUE(codec->useEmbeddedThumbnail());
}
