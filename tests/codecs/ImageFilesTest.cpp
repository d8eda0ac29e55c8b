// Picture files through the registry: what every reader does with a pipe, a folder, a file another
// reader holds open or one cut short while it is read; conversions that write nothing, and the flat
// interface.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/JpegMarkerMap.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/platform/LastError.h"
#include "orvanta/platform/ResourceModule.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

constexpr int kCopied = ImageCodec::kConvertCopied, kFormat = ImageCodec::kConvertFormatChanged;
constexpr int kSmaller = ImageCodec::kConvertMadeSmaller, kQuality = ImageCodec::kConvertQualityChanged;

class ImageFiles : public ::testing::Test {
protected:
    void SetUp() override { orvantaIUInit(); }
    ImageCodec* codecFor(const std::string& name) {
        return static_cast<ImageCodec*>(CodecManager::getCodec(CString::fromUtf8(name)));
    }
    Dib* read(const std::string& path) {
        return codecFor(path)->read(CString::fromUtf8(path), nullptr, 0, 0);
    }
    int convert(const std::string& source, const std::string& destination, int maxWidth,
                ImageQuality quality) {
        // Into a square box: a free side would make the decoder reduce by eight.
        return ImageCodec::downsizeAndConvertFile(CString::fromUtf8(source), dir.wide(destination), maxWidth,
                                                  maxWidth, quality);
    }
    TempDir dir;
};

// The ways a codec reads a file by name: 0 its header, 1 whole, 2 its EXIF thumbnail, 3 its segments.
// True when it gave something.
bool readAs(int way, const std::string& path) {
    auto* codec = static_cast<ImageCodec*>(CodecManager::getCodec(CString::fromUtf8(path)));
    const CString wide = CString::fromUtf8(path);
    CSize size;
    try {
        if (way == 0) return codec->getInfo(wide, &size, nullptr);
        if (way == 1) return OwnedPtr<Dib>(codec->read(wide, nullptr, 0, 0)) != nullptr;
        return way == 2 ? OwnedPtr<Dib>(codec->readEmbeddedThumbnail(wide)) != nullptr
                        : !JpegMarkerMap(wide).isEmpty();
    } catch (...) {
        return false;
    }
}
const std::pair<std::string, int> kReaders[] = {{"jpg", 0}, {"jpg", 1}, {"jpg", 2}, {"jpg", 3},
                                                {"tif", 0}, {"tif", 1}, {"bmp", 0}, {"bmp", 1}};

// Another program cuts the file to 100 bytes just after the codec has begun to read it, or mapped it.
class Truncator : public Platform::FileSystem {
public:
    explicit Truncator(std::string path) : mPath(std::move(path)) { install(this); }
    ~Truncator() override { install(nullptr); }
    ssize_t read(int fd, void* buffer, std::size_t size) override {
        const ssize_t n = FileSystem::read(fd, buffer, std::min<std::size_t>(size, 4096));
        return ::truncate(mPath.c_str(), 100) == 0 ? n : -1;
    }
    void* map(std::size_t size, int protection, int flags, int fd, off_t offset) override {
        void* view = FileSystem::map(size, protection, flags, fd, offset);
        return ::truncate(mPath.c_str(), 100) == 0 ? view : nullptr;
    }

private:
    std::string mPath;
};

}  // namespace

TEST_F(ImageFiles, APipeOrAFolderIsRefusedAtOnceByEveryReader) {
    alarm(60);  // a reader that waited for the pipe's writer would hang here for ever
    for (const auto& [extension, way] : kReaders) {
        const std::string pipe = dir.file("pipe." + extension), folder = dir.file("folder." + extension);
        mkfifo(pipe.c_str(), 0644);
        mkdir(folder.c_str(), 0755);
        for (const auto& [path, error] :
             {std::pair{pipe, Platform::kErrorNotAFile}, std::pair{folder, EISDIR}}) {
            Platform::setLastError(0);
            EXPECT_FALSE(readAs(way, path)) << path;
            EXPECT_EQ(error, Platform::getLastError()) << path;
        }
    }
    alarm(0);
}

TEST_F(ImageFiles, AFileHeldOpenByAnotherReaderStillReadsAndOneCutShortWhileReadFailsCleanly) {
    OwnedPtr<Dib> pattern = makePatternDib(480, 320, 3);
    for (const auto& [extension, way] : kReaders) {
        const std::string path = dir.file("picture." + extension);
        ASSERT_GT(codecFor(path)->write(pattern, CString::fromUtf8(path), ImageQualityHigh), 0);
        // The reader holds the file open without sharing; the codecs take no lock to read.
        const bool alone = readAs(way, path);
        OwnedPtr<File> other = File::create(CString::fromUtf8(path));
        ASSERT_TRUE(other->open(true));
        EXPECT_EQ(alone, readAs(way, path)) << path;
        Truncator truncator(path);
        readAs(way, path);  // whatever it gives, the process lives on
    }
}

TEST_F(ImageFiles, ANothingWrittenConversionGivesZeroWithTheReasonAndASourceMayBeItsDestination) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    EXPECT_EQ(0, convert(photo, "out.png", -1, ImageQualityHigh));
    EXPECT_EQ(0, convert(testDataPath("jpeg-awkward/missing-sos.jpg"), "out.bmp", -1, ImageQualityHigh));
    // Each writer (a copy, BMP, TIFF, a JPEG keeping metadata) into a missing folder, onto a full disk.
    for (const auto& [name, maxWidth] :
         {std::pair{"copy.jpg", -1}, {"x.bmp", -1}, {"x.tif", -1}, {"x.jpg", 320}}) {
        Platform::setLastError(0);
        EXPECT_EQ(0, convert(photo, std::string("no/such/") + name, maxWidth, ImageQualityHigh)) << name;
        EXPECT_EQ(ENOENT, Platform::getLastError()) << name;
        FaultyFileSystem disk;
        disk.failWritesAfter(2000);
        EXPECT_EQ(0, convert(photo, name, maxWidth, ImageQualityHigh)) << name;
        EXPECT_EQ(ENOSPC, Platform::getLastError()) << name;
    }
    EXPECT_EQ(0u, dir.count());
    writeFileBytes(dir.file("photo.jpg"), readFileBytes(photo));
    EXPECT_EQ(kSmaller, convert(dir.file("photo.jpg"), "photo.jpg", 320, ImageQualityHigh));
    EXPECT_EQ(CSize(320, 240), OwnedPtr<Dib>(read(dir.file("photo.jpg")))->getSize());
}

TEST_F(ImageFiles, TheFlatInterfaceForwardsNeverThrowsAndSaysWhy) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    char text[64];
    EXPECT_EQ(kSmaller | kFormat | kQuality,
              orvantaIUDownsizeAndConvertFileU8(photo.c_str(), dir.file("b.bmp").c_str(), 320, 320, 0));
    EXPECT_EQ(0, orvantaIUGetLastError(text, sizeof text));
    EXPECT_STREQ("", text);
    EXPECT_EQ(0, orvantaIUDownsizeAndConvertFileU8(photo.c_str(), dir.file("no/c.bmp").c_str(), -1, -1, 2));
    EXPECT_EQ(ENOENT, orvantaIUGetLastError(text, sizeof text));
    EXPECT_STREQ("the file or folder does not exist", text);
    EXPECT_EQ(ENOENT, orvantaIUGetLastError(text, 9));
    EXPECT_STREQ("the file", text) << "cut to the room given";
    // A garbled file throws inside: a failure for a reason of the data.
    writeFileBytes(dir.file("garbled.jpg"), readFileBytes(photo).substr(0, 700) + std::string(5000, '\xFF'));
    EXPECT_EQ(0, orvantaIUDownsizeAndConvertFileU8(dir.file("garbled.jpg").c_str(), dir.file("c.bmp").c_str(),
                                                   -1, -1, 2));
    EXPECT_EQ(Platform::kErrorDamagedData, orvantaIUGetLastError(nullptr, 0));
    int type = 0, width = 7, height = 7, quality = -1;
    EXPECT_FALSE(orvantaIUGetImageFileInformationU8("/tmp/notes.txt", &type, &width, &height, &quality));
    // A known type whose size cannot be read answers true with a zero size.
    EXPECT_TRUE(
        orvantaIUGetImageFileInformationU8("/nonexistent/picture.bmp", &type, &width, &height, nullptr));
    EXPECT_EQ(3, type);
    EXPECT_TRUE(orvantaIUGetImageFileInformation(CString::fromUtf8(photo), &type, &width, &height, &quality));
    EXPECT_EQ((std::vector<int>{1, 640, 480, 2}), (std::vector<int>{type, width, height, quality}));
}
