// Picture files through the registry: what every reader does with a pipe, a folder, a file another
// reader holds open or one cut short while it is read.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/JpegMarkerMap.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/platform/LastError.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class ImageFiles : public ::testing::Test {
protected:
    void SetUp() override { orvantaIUInit(); }
    ImageCodec* codecFor(const std::string& name) {
        return static_cast<ImageCodec*>(CodecManager::getCodec(CString::fromUtf8(name)));
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
