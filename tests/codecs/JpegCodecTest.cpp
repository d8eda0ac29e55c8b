// The JPEG codec: reading a file whose header runs past the part read first, and writes that fail
// part-way leaving the old file whole.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <stdexcept>

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
    // A copy of a test file, with times in the past.
    std::string copyOf(const std::string& name) {
        const std::string path = dir.file(name.substr(name.rfind('/') + 1));
        writeFileBytes(path, readFileBytes(testDataPath(name)));
        const struct timespec times[2] = {{1000000000, 0}, {1200000000, 0}};
        utimensat(AT_FDCWD, path.c_str(), times, 0);
        return path;
    }
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

TEST_F(JpegCodec, AFailedWriteOrRewriteLeavesTheOldFileWholeAndSaysWhy) {
    ORVANTA_REQUIRE_TESTDATA();
    OwnedPtr<Dib> picture = makePatternDib(300, 200, 3);
    const std::string old = writeFile(OwnedPtr<Dib>(makeGradient(100, 100, 3)), ImageQualityNormal);
    const std::string path = copyOf("jpeg/canon-ixus-640x480.jpg"), photo = readFileBytes(path);
    // A photo re-encoded into its own file: its metadata is read under the lock the write takes.
    const std::string own = copyOf("jpeg/kodak-dc210-com.jpg"), original = readFileBytes(own);
    const CString ownPath = CString::fromUtf8(own);
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
        EXPECT_EQ(0, codec->writeKeepingMetadata(picture, ownPath, ownPath, ImageQualityHigh));
    }
    EXPECT_EQ(old, readFileBytes(dir.file("out.jpg")));
    EXPECT_EQ(photo, readFileBytes(path));
    EXPECT_EQ(original, readFileBytes(own));
    EXPECT_EQ(3u, dir.count()) << "no temporary file is left";
    ASSERT_GT(codec->writeKeepingMetadata(picture, ownPath, ownPath, ImageQualityHigh), 0);
    EXPECT_EQ(jpegSegments(original, kComment), jpegSegments(readFileBytes(own), kComment));
}
