// Lossless rotation of JPEG files in place.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include <filesystem>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Error.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class JpegRotate : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        codec = IntelJpegCodec::create();
    }
    // A copy of a test file in the temporary folder, with a write time in the past.
    std::string copyOf(const std::string& name) {
        const std::string path = dir.file(std::filesystem::path(name).filename().string());
        writeFileBytes(path, readFileBytes(testDataPath(name)));
        const struct timespec times[2] = {{1000000000, 0}, {1200000000, 500}};
        utimensat(AT_FDCWD, path.c_str(), times, 0);
        return path;
    }
    bool rotate(const std::string& path, int angle) {
        OwnedPtr<RotateOp> op = RotateOp::create(angle);
        return codec->rotateFile(CString::fromUtf8(path), op);
    }
    Picture decoded(const std::string& path) {
        OwnedPtr<Dib> dib = codec->read(CString::fromUtf8(path), nullptr, 0, 0);
        return dib ? pictureOf(*dib) : Picture();
    }
    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(dir.path()), {}));
    }
    TempDir dir;
    OwnedPtr<IntelJpegCodec> codec;
};

}  // namespace

TEST_F(JpegRotate, PixelsEqualJpegtranWithTrimming) {
    if (!haveTool("jpegtran")) GTEST_SKIP() << "jpegtran is not installed";
    std::vector<std::string> files = testDataFiles("jpeg", {".jpg"});
    for (const std::string& awkward : testDataFiles("jpeg-awkward", {".jpg"})) files.push_back(awkward);
    const std::string root = testDataDir() + "/";
    for (const std::string& file : files) {
        const std::string name = file.substr(root.size());
        const bool cameraOriginal = name.rfind("jpeg/", 0) == 0;
        // Every file a quarter turn; the small ones all three ways (the big ones only cost time).
        const bool small = std::filesystem::file_size(file) < 400000;
        for (int angle : {90, 180, 270}) {
            if (angle != 90 && !small) continue;
            SCOPED_TRACE(name + " by " + std::to_string(angle));
            const std::string path = copyOf(name);
            const std::string before = readFileBytes(path);
            const bool reference = jpegtranRotate(path, angle, dir.file("reference.jpg"));
            bool rotated = false;
            try {
                rotated = rotate(path, angle);
            } catch (const Exception&) {
            }
            if (!rotated) {
                // Damaged files, and the rare sampling the transformer cannot classify, are refused.
                EXPECT_FALSE(cameraOriginal) << "a camera original must rotate";
                EXPECT_EQ(before, readFileBytes(path));
                continue;
            }
            ASSERT_TRUE(reference) << "jpegtran could not rotate a file the codec rotated";
            const Picture ours = decoded(path);
            const Picture expected = decoded(dir.file("reference.jpg"));
            EXPECT_EQ(expected.width, ours.width);
            EXPECT_EQ(expected.height, ours.height);
            EXPECT_TRUE(ours.bgr == expected.bgr);
            std::filesystem::remove(dir.file("reference.jpg"));
        }
        std::filesystem::remove(dir.file(std::filesystem::path(name).filename().string()));
    }
}

TEST_F(JpegRotate, EverySegmentIsCopiedAndTheTimesKept) {
    const std::string path = copyOf("jpeg/canon-eos7d-photoshop-allsegs.jpg");
    const std::string before = readFileBytes(path);
    struct stat old;
    ASSERT_EQ(0, stat(path.c_str(), &old));
    ASSERT_TRUE(rotate(path, 90));
    const std::string after = readFileBytes(path);
    for (int marker : {0xE1, 0xE2, 0xED, 0xFE})
        EXPECT_EQ(jpegSegments(before, marker), jpegSegments(after, marker));
    struct stat now;
    ASSERT_EQ(0, stat(path.c_str(), &now));
    EXPECT_EQ(old.st_mtim.tv_sec, now.st_mtim.tv_sec);
    EXPECT_EQ(old.st_mtim.tv_nsec, now.st_mtim.tv_nsec);
    EXPECT_EQ(old.st_mode, now.st_mode);
    CSize size;
    codec->getInfo(CString::fromUtf8(path), &size, nullptr);
    EXPECT_EQ(CSize(896, 600), size) << "the partial blocks of the old bottom edge are dropped";
    EXPECT_EQ(1u, filesInFolder());
}

TEST_F(JpegRotate, FourQuarterTurnsOfAnAlignedPictureGiveItBack) {
    const std::string path = copyOf("jpeg/canon-ixus-640x480.jpg");
    const Picture before = decoded(path);
    for (int turn = 0; turn < 4; ++turn) ASSERT_TRUE(rotate(path, 90));
    EXPECT_TRUE(decoded(path).bgr == before.bgr);
}

TEST_F(JpegRotate, AngleZeroDoesNothingAndOtherAnglesThrowError) {
    const std::string path = copyOf("jpeg/canon-ixus-640x480.jpg");
    const std::string before = readFileBytes(path);
    EXPECT_TRUE(rotate(path, 0));
    try {
        rotate(path, 45);
        FAIL() << "no error";
    } catch (const Error& e) {
        EXPECT_EQ(std::u16string(u"Angle not supported"), e.getMessage());
    }
    EXPECT_EQ(before, readFileBytes(path));
    EXPECT_EQ(1u, filesInFolder());
}

TEST_F(JpegRotate, AMissingSourceThrows) {
    try {
        rotate(dir.file("missing.jpg"), 90);
        FAIL() << "no exception";
    } catch (const Exception& e) {
        EXPECT_EQ(std::u16string(u"Cannot read src file"), e.getMessage());
    }
}

TEST_F(JpegRotate, ADamagedFileIsNotRewritten) {
    for (const char* name :
         {"jpeg-awkward/truncated-baseline-bluesquare.jpg", "jpeg-awkward/missing-sos.jpg"}) {
        SCOPED_TRACE(name);
        const std::string path = copyOf(name);
        const std::string before = readFileBytes(path);
        EXPECT_FALSE(rotate(path, 90));
        EXPECT_EQ(before, readFileBytes(path));
    }
}

TEST_F(JpegRotate, AFailureAtAnyStepLeavesTheOriginalByteForByte) {
    const std::string path = copyOf("jpeg/sony-cybershot-1024x768.jpg");
    const std::string before = readFileBytes(path);
    for (int fault = 0; fault < 4; ++fault) {
        SCOPED_TRACE(fault);
        FaultyFileSystem disk;
        if (fault == 0) disk.failWritesAfter(0);
        if (fault == 1) disk.failWritesAfter(100000);
        if (fault == 2) disk.failRenames(EXDEV);
        if (fault == 3) disk.failSync(true);
        EXPECT_FALSE(rotate(path, 90));
        EXPECT_EQ(before, readFileBytes(path));
        EXPECT_EQ(1u, filesInFolder()) << "no temporary file is left";
    }
}

// A folder where no new file can be made, as for a user without write permission there (the
// tests may run as root, to whom permissions do not apply).
class ReadOnlyFolders : public Platform::FileSystem {
public:
    ReadOnlyFolders() { install(this); }
    ~ReadOnlyFolders() override { install(nullptr); }
    int open(const char* path, int flags, mode_t mode) override {
        if (flags & O_CREAT) {
            errno = EACCES;
            return -1;
        }
        return FileSystem::open(path, flags, mode);
    }
};

TEST_F(JpegRotate, AnUnwritableFolderLeavesTheOriginal) {
    const std::string path = copyOf("jpeg/canon-ixus-640x480.jpg");
    const std::string before = readFileBytes(path);
    {
        ReadOnlyFolders folders;
        try {
            rotate(path, 90);
            ADD_FAILURE() << "no exception";
        } catch (const Exception& e) {
            EXPECT_EQ(std::u16string(u"Cannot open destination file"), e.getMessage());
        }
    }
    EXPECT_EQ(before, readFileBytes(path));
    EXPECT_EQ(1u, filesInFolder());
}

// A file system that ends the process the moment the rotated file is about to be renamed into
// place, or half-way through writing it: as if the machine lost power or the process was killed.
class DyingFileSystem : public Platform::FileSystem {
public:
    explicit DyingFileSystem(bool duringWrite) : mDuringWrite(duringWrite) { install(this); }
    ~DyingFileSystem() override { install(nullptr); }
    ssize_t write(int fd, const void* data, std::size_t size) override {
        if (mDuringWrite) _exit(9);
        return FileSystem::write(fd, data, size);
    }
    int rename(const char* from, const char* to) override { _exit(9); }

private:
    bool mDuringWrite;
};

TEST_F(JpegRotate, AProcessKilledMidwayLeavesTheOriginal) {
    const std::string path = copyOf("jpeg/sony-cybershot-1024x768.jpg");
    const std::string before = readFileBytes(path);
    for (bool duringWrite : {true, false}) {
        EXPECT_EXIT(
            {
                DyingFileSystem dying(duringWrite);
                rotate(path, 90);
            },
            ::testing::ExitedWithCode(9), "");
        EXPECT_EQ(before, readFileBytes(path));
    }
}
