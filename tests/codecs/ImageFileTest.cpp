// Saving an edited picture back into its file: turned in place or encoded anew, behind the backup
// policy, and never leaving the user's file half-written.

#include "orvanta/codecs/ImageFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <sstream>

#include "orvanta/assets/AssetBackupPolicy.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/platform/LastError.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Lets every save land, and keeps what the user's file held when it was asked, and whether the
// file's rewrite lock was held then.
struct KeepingPolicy : AssetBackupPolicy {
    std::string seen;
    bool locked = false;
    bool handlePrepareForSave(AssetFile* file) override {
        seen = readFileBytes(file->getPath().toUtf8());
        const int fd = open(file->getPath().toUtf8().c_str(), O_RDONLY);
        locked = flock(fd, LOCK_EX | LOCK_NB) != 0;
        close(fd);
        return true;
    }
};

// exiftool's tags without those a save is meant to change (the thumbnail and its directory, the
// orientation) or drop (ICC profile and Adobe segments, which a new encoding does not carry over).
std::string lastingTags(const std::string& path) {
    std::istringstream lines(exiftoolTags(path).value_or(""));
    std::string kept;
    for (std::string line; std::getline(lines, line);)
        if (line.find("[IFD1]") != 0 && line.find("[ICC") != 0 && line.find("[Adobe]") != 0 &&
            line.find("Thumbnail") == std::string::npos && line.find("Orientation") == std::string::npos)
            kept += line + "\n";
    return kept;
}

class ImageFileSave : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        policy.makePolicyCurrent();
    }
    void TearDown() override { ImageFile::setFileBasedRotateMode(ImageFile::FileBasedRotateLossless); }
    std::string copyOf(const std::string& name) { return copyTestFile(dir, name); }
    // Loads path for editing (reduced into box, 0 for full size), does the edits ("90", "180", "270",
    // "mirror", "fix") and saves.
    ImageFile::SaveResult edit(const std::string& path, const std::string& edits, int box = 0) {
        OwnedPtr<ImageFile> file = ImageFile::create(CString::fromUtf8(path), jpeg, nullptr, nullptr);
        OwnedPtr<Image> image = file->loadImage(box, box, true);
        if (!image) return ImageFile::SaveNone;
        std::istringstream words(edits);
        for (std::string word; words >> word;) {
            OwnedPtr<EditingOp> op = word == "mirror" ? static_cast<EditingOp*>(MirrorOp::create(false))
                                     : word == "fix"  ? static_cast<EditingOp*>(PicFixOp::create())
                                                      : RotateOp::create(std::stoi(word));
            image->doOp(op);
        }
        edited = pictureOf(*image->getDib());
        image->save();
        return file->getLastSaveResult();
    }
    Picture decoded(const std::string& path) {
        OwnedPtr<Dib> dib = jpeg->read(CString::fromUtf8(path), nullptr, 0, 0);
        return dib ? pictureOf(*dib) : Picture();
    }
    // Where the photo has an EXIF thumbnail, the saved file's agrees with its picture: the same
    // shape, and close to it.
    void expectThumbnailMatches(const std::string& photo, const std::string& path) {
        if (!OwnedPtr<Dib>(jpeg->readEmbeddedThumbnail(CString::fromUtf8(photo)))) return;
        OwnedPtr<Dib> stored = jpeg->readEmbeddedThumbnail(CString::fromUtf8(path));
        OwnedPtr<ImageFile> file = ImageFile::create(CString::fromUtf8(path), jpeg, nullptr, nullptr);
        OwnedPtr<Image> fresh = file->createThumbnail(160, 160, false);
        ASSERT_TRUE(stored && fresh);
        EXPECT_EQ(fresh->getSize(), stored->getSize());
        EXPECT_GT(psnr(pictureOf(*fresh->getDib()), pictureOf(*stored)), 28.0);
    }

    TempDir dir;
    KeepingPolicy policy;
    OwnedPtr<IntelJpegCodec> jpeg = IntelJpegCodec::create();
    Picture edited;
};

}  // namespace

// Turns alone, where the mode allows, turn the file in place as jpegtran turns it, every segment
// kept but the EXIF thumbnail (the codec's turn is compared with jpegtran on every test file; here
// the road and what the save adds). Anything else is encoded anew at high quality, the policy asked
// while the old file is whole and locked. Either way exiftool reads the same tags and the EXIF
// thumbnail shows the new picture.
TEST_F(ImageFileSave, EachSaveTakesTheRoadItsEditsAndTheModeAllowKeepingTheMetadata) {
    constexpr auto kAlways = ImageFile::FileBasedRotateAlways;
    const struct {
        const char* file;
        const char* edits;
        ImageFile::FileBasedRotateMode mode;
        int angle;  // the turn made in the file; 0: encoded anew
        CSize size;
    } cases[] = {
        {"jpeg/canon-eos7d-photoshop-allsegs.jpg", "90", kAlways, 90, {}},
        {"jpeg/kodak-dc210-com.jpg", "180", kAlways, 180, {}},
        {"jpeg/nikon-d70-app13-after-dht.jpg", "270", kAlways, 270, {}},
        {"jpeg/canon-ixus-640x480.jpg", "90 90", kAlways, 180, {}},  // two quarter turns are one half
        {"jpeg/sony-dsc-hx5v-730x547.jpg", "90", ImageFile::FileBasedRotateLossless, 0, {547, 730}},
        {"jpeg/canon-ixus-640x480.jpg", "90", ImageFile::FileBasedRotateNever, 0, {480, 640}},
        {"jpeg/canon-eos7d-photoshop-allsegs.jpg", "90 mirror", kAlways, 0, {900, 600}},
        {"jpeg/kodak-dc210-com.jpg", "270 fix", kAlways, 0, {480, 640}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " by " + c.edits);
        ImageFile::setFileBasedRotateMode(c.mode);
        const std::string path = copyOf(c.file), before = readFileBytes(path);
        if (c.angle) {
            // The picture is decoded only for its history: reduced is enough.
            ASSERT_EQ(ImageFile::SaveRotatedInFile, edit(path, c.edits, 1));
            if (haveTool("jpegtran")) {
                ASSERT_EQ(0, jpegtranRotate(testDataPath(c.file), c.angle, dir.file("reference.jpg")).status);
                EXPECT_TRUE(decoded(path).bgr == decoded(dir.file("reference.jpg")).bgr);
                std::remove(dir.file("reference.jpg").c_str());
            }
            const std::string after = readFileBytes(path);
            for (int marker : {0xE1, 0xE2, 0xED, 0xEE, 0xFE}) {
                std::vector<std::string> was = jpegSegments(before, marker), is = jpegSegments(after, marker);
                if (marker == 0xE1 && !was.empty() && !is.empty())
                    was.erase(was.begin()), is.erase(is.begin());
                EXPECT_EQ(was, is);
            }
        } else {
            ASSERT_EQ(ImageFile::SaveReencoded, edit(path, c.edits));
            EXPECT_EQ(before, policy.seen) << "the policy is asked while the old file is whole";
            EXPECT_TRUE(policy.locked) << "and while no other writer can start on it";
            OwnedPtr<Dib> written = jpeg->read(CString::fromUtf8(path), nullptr, 0, 0);
            ASSERT_TRUE(written);
            EXPECT_EQ(c.size, written->getSize());
            EXPECT_GT(psnr(pictureOf(*written), edited), 30.0);
            EXPECT_EQ((std::vector<std::string>{"2x1", "1x1", "1x1"}), jpegSampling(readFileBytes(path)))
                << "high quality";
        }
        EXPECT_EQ(lastingTags(testDataPath(c.file)), lastingTags(path));  // both empty without exiftool
        expectThumbnailMatches(testDataPath(c.file), path);
    }
    EXPECT_EQ(5u, dir.count()) << "the five photographs, and no temporary file";
}

TEST_F(ImageFileSave, TheDefaultPolicyStopsAReencodeAndAnyFailureLeavesTheOriginalByteForByte) {
    const std::string path = copyOf("jpeg/sony-cybershot-1024x768.jpg"), original = readFileBytes(path);
    AssetBackupPolicy::clearCurrentPolicy();
    EXPECT_EQ(ImageFile::SaveRefused, edit(path, "fix"));
    EXPECT_EQ(original, readFileBytes(path));
    policy.makePolicyCurrent();
    // Each fault on both roads: the turn in place, and the new encoding its failure falls back to;
    // and a file with a second name, which is not replaced at all.
    for (const char* edits : {"90", "fix"}) {
        for (int fault = 0; fault < 5; ++fault) {
            SCOPED_TRACE(std::string(edits) + " fault " + std::to_string(fault));
            ASSERT_TRUE(fault != 4 || link(path.c_str(), dir.file("twin.jpg").c_str()) == 0);
            FaultyFileSystem disk;
            disk.failWritesAfter(fault == 0 ? 0 : fault == 1 ? 150000 : -1);
            disk.failRenames(fault == 2 ? EXDEV : 0);
            disk.failSync(fault == 3);
            EXPECT_EQ(ImageFile::SaveFailed, edit(path, edits));
            EXPECT_EQ(original, readFileBytes(path));
            EXPECT_EQ(fault == 4, Platform::getLastError() == Platform::kErrorHardLinked);
            std::filesystem::remove(dir.file("twin.jpg"));
        }
    }
    // A kill at any step leaves the old file or the complete new one: killed at the first and second
    // rename, and at a third and at two thirds of the photo's size in bytes written.
    const long long size = static_cast<long long>(original.size());
    for (const char* edits : {"90", "fix"}) {
        writeFileBytes(dir.file("whole.jpg"), original);
        edit(dir.file("whole.jpg"), edits);
        const Picture whole = decoded(dir.file("whole.jpg"));
        for (const auto& [rename, written] :
             {std::pair{1, -1LL}, {2, -1LL}, {0, 0LL}, {0, size / 3}, {0, size * 2 / 3}}) {
            SCOPED_TRACE(::testing::Message() << edits << " rename " << rename << " after " << written);
            EXPECT_EXIT(
                {
                    // What the dying save leaves behind stays in the test's folder.
                    setenv("TMPDIR", dir.path().c_str(), 1);
                    FaultyFileSystem dying;
                    dying.dieAtRename(rename);
                    dying.dieAfterWriting(written);
                    edit(path, edits);
                    _exit(0);
                },
                ::testing::ExitedWithCode(9), "");
            EXPECT_TRUE(readFileBytes(path) == original || decoded(path).bgr == whole.bgr);
            writeFileBytes(path, original);
        }
    }
}
