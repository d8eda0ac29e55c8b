// Saving an edited picture back into its file: turned in place or encoded anew, behind the backup
// policy, and never leaving the user's file half-written.

#include "orvanta/codecs/ImageFile.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <set>
#include <sstream>

#include "orvanta/assets/AssetBackupPolicy.h"
#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/RotateOp.h"
#include "tests/codecs/ReferenceTools.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Lets every save land, and keeps what the user's file held when it was asked.
class KeepingPolicy : public AssetBackupPolicy {
public:
    std::string seen;

protected:
    bool handlePrepareForSave(AssetFile* file) override {
        seen = readFileBytes(file->getPath().toUtf8());
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
    std::string copyOf(const std::string& name) {
        const std::string path = dir.file(std::filesystem::path(name).filename().string());
        writeFileBytes(path, readFileBytes(testDataPath(name)));
        return path;
    }
    // Loads path for editing (reduced into box, 0 for full size), does the edits ("90", "180", "270",
    // "mirror", "fix") and saves.
    ImageFile::SaveResult edit(const std::string& path, const std::string& edits, int box = 0) {
        Codec* codec = path.ends_with(".bmp") ? static_cast<Codec*>(bmp) : jpeg;
        OwnedPtr<ImageFile> file = ImageFile::create(CString::fromUtf8(path), codec, nullptr, nullptr);
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
        EXPECT_FALSE(image->isEdited()) << "the history is folded after the file is written";
        return file->getLastSaveResult();
    }
    Picture decoded(const std::string& path) {
        OwnedPtr<Dib> dib = jpeg->read(CString::fromUtf8(path), nullptr, 0, 0);
        return dib ? pictureOf(*dib) : Picture();
    }
    bool hasThumbnail(const std::string& path) {
        return OwnedPtr<Dib>(jpeg->readEmbeddedThumbnail(CString::fromUtf8(path))).get() != nullptr;
    }
    // The EXIF thumbnail agrees with the picture in the file: the same shape, and close to it.
    void expectThumbnailMatches(const std::string& path) {
        OwnedPtr<Dib> stored = jpeg->readEmbeddedThumbnail(CString::fromUtf8(path));
        OwnedPtr<ImageFile> file = ImageFile::create(CString::fromUtf8(path), jpeg, nullptr, nullptr);
        OwnedPtr<Image> fresh = file->createThumbnail(160, 160, false);
        ASSERT_TRUE(stored && fresh);
        EXPECT_EQ(fresh->getSize(), stored->getSize());
        EXPECT_GT(psnr(pictureOf(*fresh->getDib()), pictureOf(*stored)), 28.0);
    }
    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(dir.path()), {}));
    }

    TempDir dir;
    KeepingPolicy policy;
    OwnedPtr<IntelJpegCodec> jpeg = IntelJpegCodec::create();
    OwnedPtr<BmpCodec> bmp = BmpCodec::create();
    Picture edited;
};

}  // namespace

TEST_F(ImageFileSave, RotationsAloneTurnTheFileAsJpegtranDoesKeepingTheMetadata) {
    if (!haveTool("jpegtran")) GTEST_SKIP() << "jpegtran is not installed";
    ImageFile::setFileBasedRotateMode(ImageFile::FileBasedRotateAlways);
    // Two quarter turns must give the file of one half turn.
    const struct {
        const char* edits;
        int angle;
    } turns[] = {{"90", 90}, {"180", 180}, {"270", 270}, {"90 90", 180}, {"90 90 90 90 270", 270}};
    int i = 0;
    for (const std::string& photo : testDataFiles("jpeg", {".jpg"})) {
        const auto& turn = turns[i++ % std::size(turns)];
        SCOPED_TRACE(photo + " by " + turn.edits);
        const std::string path = copyOf(photo.substr(testDataDir().size() + 1));
        const std::string before = readFileBytes(path);
        ASSERT_EQ(0, jpegtranRotate(path, turn.angle, dir.file("reference.jpg")).status);
        // The picture is decoded only for its history: reduced is enough.
        ASSERT_EQ(ImageFile::SaveRotatedInFile, edit(path, turn.edits, 1));
        EXPECT_TRUE(decoded(path).bgr == decoded(dir.file("reference.jpg")).bgr);
        const std::string after = readFileBytes(path);
        for (int marker : {0xE2, 0xED, 0xEE, 0xFE})
            EXPECT_EQ(jpegSegments(before, marker), jpegSegments(after, marker));
        const auto app1Before = jpegSegments(before, 0xE1), app1After = jpegSegments(after, 0xE1);
        ASSERT_EQ(app1Before.size(), app1After.size());
        if (app1Before.size() > 1)
            EXPECT_TRUE(std::equal(app1Before.begin() + 1, app1Before.end(), app1After.begin() + 1));
        if (hasThumbnail(photo)) expectThumbnailMatches(path);
        // exiftool is slow: the files with segments of every kind and with maker notes. It must read
        // in the turned file what it read in the photo.
        static const std::set<std::string> described = {
            "canon-eos7d-photoshop-allsegs.jpg", "canon-ixus-640x480.jpg", "kodak-dc210-com.jpg",
            "nikon-d70-app13-after-dht.jpg", "sony-dsc-hx5v-730x547.jpg"};
        if (described.count(std::filesystem::path(photo).filename()) && haveTool("exiftool"))
            EXPECT_EQ(lastingTags(photo), lastingTags(path));
        std::filesystem::remove(path);
    }
}

TEST_F(ImageFileSave, OtherEditsAndUnalignedOrForbiddenTurnsEncodeAnewBehindThePolicy) {
    const struct {
        const char* file;
        const char* edits;
        ImageFile::FileBasedRotateMode mode;
        CSize size;
    } cases[] = {
        {"jpeg/sony-dsc-hx5v-730x547.jpg", "90", ImageFile::FileBasedRotateLossless, {547, 730}},
        {"jpeg/canon-ixus-640x480.jpg", "90", ImageFile::FileBasedRotateNever, {480, 640}},
        {"jpeg/canon-eos7d-photoshop-allsegs.jpg", "90 mirror", ImageFile::FileBasedRotateAlways, {900, 600}},
        {"jpeg/kodak-dc210-com.jpg", "270 fix", ImageFile::FileBasedRotateAlways, {480, 640}},
        {"bmp/rgb24-photo-119x96-pad3.bmp", "90", ImageFile::FileBasedRotateAlways, {96, 119}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.file) + " " + c.edits);
        ImageFile::setFileBasedRotateMode(c.mode);
        const std::string path = copyOf(c.file);
        const std::string before = readFileBytes(path);
        ASSERT_EQ(ImageFile::SaveReencoded, edit(path, c.edits));
        EXPECT_EQ(before, policy.seen) << "the policy is asked while the old file is whole";
        ImageCodec* codec = std::string(c.file).ends_with(".bmp") ? static_cast<ImageCodec*>(bmp) : jpeg;
        OwnedPtr<Dib> written = codec->read(CString::fromUtf8(path), nullptr, 0, 0);
        ASSERT_TRUE(written);
        EXPECT_EQ(c.size, written->getSize());
        if (codec == bmp) continue;
        EXPECT_GT(psnr(pictureOf(*written), edited), 30.0);
        const std::string after = readFileBytes(path);
        EXPECT_EQ((std::vector<std::string>{"2x1", "1x1", "1x1"}), jpegSampling(after)) << "high quality";
        for (int marker : {0xED, 0xFE}) EXPECT_EQ(jpegSegments(before, marker), jpegSegments(after, marker));
        if (haveTool("exiftool")) EXPECT_EQ(lastingTags(testDataPath(c.file)), lastingTags(path));
        if (hasThumbnail(testDataPath(c.file))) expectThumbnailMatches(path);
    }
    EXPECT_EQ(5u, filesInFolder()) << "no temporary file is left";
}

TEST_F(ImageFileSave, TheDefaultPolicyStopsAReencodeAndAnyFailureLeavesTheOriginalByteForByte) {
    const std::string path = copyOf("jpeg/sony-cybershot-1024x768.jpg");
    const std::string original = readFileBytes(path);
    AssetBackupPolicy::clearCurrentPolicy();
    EXPECT_EQ(ImageFile::SaveRefused, edit(path, "fix"));
    EXPECT_EQ(original, readFileBytes(path));
    policy.makePolicyCurrent();
    // Each fault on both roads: the turn in place, and the new encoding its failure falls back to.
    for (const char* edits : {"90", "fix"}) {
        for (int fault = 0; fault < 4; ++fault) {
            SCOPED_TRACE(std::string(edits) + " fault " + std::to_string(fault));
            FaultyFileSystem disk;
            if (fault == 0) disk.failWritesAfter(0);
            if (fault == 1) disk.failWritesAfter(150000);
            if (fault == 2) disk.failRenames(EXDEV);
            if (fault == 3) disk.failSync(true);
            EXPECT_EQ(ImageFile::SaveFailed, edit(path, edits));
            EXPECT_EQ(original, readFileBytes(path));
        }
    }
    // A kill at any step leaves the old file or the complete new one: killed at the first and second
    // rename, and at a third and at two thirds of the bytes an uninterrupted save writes.
    for (const char* edits : {"90", "fix"}) {
        writeFileBytes(dir.file("whole.jpg"), original);
        long long total = 0;
        {
            FaultyFileSystem counting;
            edit(dir.file("whole.jpg"), edits);
            total = counting.bytesWritten();
        }
        const Picture whole = decoded(dir.file("whole.jpg"));
        for (const auto& [rename, written] :
             {std::pair{1, -1LL}, {2, -1LL}, {0, 0LL}, {0, total / 3}, {0, total * 2 / 3}}) {
            SCOPED_TRACE(std::string(edits) + " rename " + std::to_string(rename) + " after " +
                         std::to_string(written) + " of " + std::to_string(total) + " bytes");
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
            if (readFileBytes(path) != original) EXPECT_TRUE(decoded(path).bgr == whole.bgr);
            writeFileBytes(path, original);
        }
    }
}

TEST_F(ImageFileSave, OnlyTheLatestEditableLoadIsTiedToTheFileAndThumbnailsFallBackToTheFile) {
    const std::string path = copyOf("jpeg/canon-ixus-640x480.jpg");
    const std::string before = readFileBytes(path);
    OwnedPtr<ImageFile> file = ImageFile::create(CString::fromUtf8(path), jpeg, nullptr, nullptr);
    OwnedPtr<Image> first = file->loadImage(0, 0, true);
    OwnedPtr<Image> second = file->loadImage(0, 0, true);
    first->doOp(OwnedPtr<EditingOp>(RotateOp::create(90)));
    first->save();
    EXPECT_EQ(ImageFile::SaveNone, file->getLastSaveResult());
    EXPECT_EQ(before, readFileBytes(path));
    EXPECT_EQ(CSize(640, 480), file->getPictureSize());
    // No EXIF thumbnail, or no readable picture at all.
    for (const auto& [name, readable] :
         {std::pair{"jpeg/orientation-1-landscape.jpg", true}, {"jpeg-awkward/missing-sos.jpg", false}}) {
        OwnedPtr<ImageFile> other =
            ImageFile::create(CString::fromUtf8(testDataPath(name)), jpeg, nullptr, nullptr);
        OwnedPtr<Image> thumbnail = other->createThumbnail(100, 100, true);
        EXPECT_EQ(readable, thumbnail && thumbnail->getSize().cx == 100) << name;
        EXPECT_EQ(readable, other->getPictureSize() != CSize(0, 0)) << name;
    }
}

TEST(Image, SaveNotifiesWhileTheEditsCanStillBeToldApartAndSizesRoundUp) {
    OwnedPtr<Dib> dib = makePatternDib(100, 60, 3);
    OwnedPtr<Image> image = Image::create(dib, true);
    struct Saving : NotifierListener {
        Image* image;
        std::vector<int> undoCounts;
        void onNotification(void*, const Notification& n) override {
            if (n.getCode() == 1) undoCounts.push_back(image->getUndoCount());
        }
    } saving;
    saving.image = image;
    image->addListener(&saving);
    image->save();
    image->doOp(OwnedPtr<EditingOp>(RotateOp::create(90)));
    image->save();
    EXPECT_EQ((std::vector<int>{1}), saving.undoCounts) << "only an edited picture is saved";
    EXPECT_FALSE(image->isEdited());
    image->removeListener(&saving);
    EXPECT_EQ(CSize(1, 1), image->getScaledSize(0.001));
    EXPECT_EQ(CSize(20, 34), image->getScaledSize(1 / 3.0)) << "60 x 100 turned, each side rounded up";
    EXPECT_EQ(CSize(12, 20), image->getFitSize(CSize(50, 20), false, false));
    OwnedPtr<Image> empty = Image::create(nullptr, true);
    EXPECT_EQ(CSize(0, 0), empty->getSize());
    EXPECT_FALSE(OwnedPtr<Image>(
        empty->createDownsized(DownsizeOp::DownsizeMethodResample, CSize(8, 8), false, DibRect(0, 0, 1, 1))));
}
