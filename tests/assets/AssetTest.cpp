// Assets and their files: the date rule, the two-way link of properties and path, clones, the
// clipboard forms, and files that are damaged or never opened.

#include "orvanta/assets/Asset.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/VideoFile.h"
#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/GenericVideoCodec.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/FileTime.h"
#include "orvanta/platform/Clipboard.h"
#include "orvanta/platform/FileTimes.h"
#include "orvanta/store/PropertyList.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

FILETIME at(int year, int month, int day, int hour = 0, int minute = 0) {
    FILETIME time{0, 0};
    DateTime(year, month, day, hour, minute, 0, 0).asFileTime(&time);
    return time;
}

// The codecs the catalogue knows, once for the whole program; the video codec's stock picture is
// set by the tests that need one.
GenericVideoCodec* video() {
    static GenericVideoCodec* codec = [] {
        CodecManager::registerCodec(IntelJpegCodec::create());
        CodecManager::registerCodec(BmpCodec::create());
        GenericVideoCodec* v = GenericVideoCodec::create(nullptr);
        CodecManager::registerCodec(v);
        return v;
    }();
    return codec;
}

class Codes : public NotifierListener {
public:
    void onNotification(void* sender, const Notification& notification) override {
        codes.push_back(notification);
    }
    std::vector<int> codes;
};

class RecordingClipboard : public Platform::Clipboard {
public:
    RecordingClipboard() { install(this); }
    ~RecordingClipboard() override { install(nullptr); }
    bool put(const std::vector<Platform::ClipboardForm>& given) override {
        forms = given;
        return true;
    }
    std::vector<Platform::ClipboardForm> forms;
};

}  // namespace

TEST(AssetFile, TheEarlierTimeDatesAFileButTimesBefore1980January2ndDoNotCount) {
    const struct {
        FILETIME creation, write;
        bool creationWins;
    } cases[] = {
        {at(2004, 1, 5), at(2003, 7, 1), false},         {at(1970, 1, 1), at(2003, 7, 1), false},
        {at(2003, 7, 1), at(1975, 3, 3), true},          {at(1980, 1, 2), at(1990, 1, 1), true},
        {at(1980, 1, 1, 23, 59), at(1990, 1, 1), false}, {at(2001, 2, 3), at(2001, 2, 3, 0, 1), true},
    };
    for (const auto& c : cases) {
        OwnedPtr<ImageFile> file = ImageFile::create(u"/nowhere/photo.jpg", nullptr, &c.write, &c.creation);
        EXPECT_EQ(DateTime(c.creationWins ? c.creation : c.write, true), file->getTimestamp());
    }
}

TEST(AssetFile, TimesAreReadFromTheDiskWithOrWithoutBirthTimes) {
    TempDir dir;
    writeFileBytes(dir.file("photo.jpg"), "0123456789");
    OwnedPtr<ImageFile> missing = ImageFile::create(dir.wide("missing.jpg"), nullptr, nullptr, nullptr);
    EXPECT_EQ(DateTime(FILETIME{0, 0}, true), missing->getTimestamp());
    for (bool hidden : {false, true}) {
        FaultyFileSystem disk;
        disk.hideBirthTimes(hidden);
        for (const FILETIME& written : {at(2003, 7, 1, 12), at(1975, 3, 3)}) {
            const struct timespec times[2] = {{0, UTIME_OMIT}, Platform::toTimespec(written)};
            ASSERT_EQ(0, utimensat(AT_FDCWD, dir.file("photo.jpg").c_str(), times, 0));
            struct stat info;
            ASSERT_EQ(0, stat(dir.file("photo.jpg").c_str(), &info));
            OwnedPtr<ImageFile> file = ImageFile::create(dir.wide("photo.jpg"), nullptr, nullptr, nullptr);
            EXPECT_EQ(10, file->getFileSize());
            if (hidden) EXPECT_EQ(Platform::toFileTime(info.st_ctim), file->getCreationTime());
            // Made just now, so a write time of 2003 is the earlier; one of 1975 does not count.
            const FILETIME expected = written < at(1980, 1, 2) ? file->getCreationTime() : written;
            EXPECT_EQ(DateTime(expected, true), file->getTimestamp());
        }
    }
}

TEST(Asset, PropertiesAndPathFollowEachOtherBothWays) {
    video();
    TempDir dir;
    writeFileBytes(dir.file("photo.jpg"), readFileBytes(testDataPath("jpeg/canon-ixus-640x480.jpg")));
    const UniqueID id = UniqueID::create();
    OwnedPtr<Asset> asset = Asset::create(id, dir.wide("photo.jpg"), nullptr, nullptr);
    PropertyList* list = asset->getProperties();
    EXPECT_EQ(id, asset->getID());
    EXPECT_EQ(CString::fromUtf8(dir.path()), list->getValue(Asset::kPropFolder).asString());
    ASSERT_TRUE(asset->getImageFile() && !asset->getVideoFile());
    Codes heard;
    asset->addListener(&heard);

    EXPECT_TRUE(asset->getAssetFile()->rename(u"photo")) << "a rename to itself";
    EXPECT_TRUE(asset->getAssetFile()->rename(u"holiday"));
    EXPECT_EQ(u"holiday.jpg", list->getValue(Asset::kPropFilename).asString());
    EXPECT_TRUE(readFileBytes(dir.file("holiday.jpg")).size() > 0);
    EXPECT_EQ((std::vector<int>{2, 1}), heard.codes);

    heard.codes.clear();
    list->set(Asset::kPropFolder, PropertyValue(u"/elsewhere"), true);
    EXPECT_EQ(u"/elsewhere/holiday.jpg", asset->getAssetFile()->getPath());
    EXPECT_EQ((std::vector<int>{2, 1, 2}), heard.codes);

    OwnedPtr<Asset> copy = asset->clone();
    copy->getProperties()->set(Asset::kPropFilename, PropertyValue(u"other.jpg"), true);
    EXPECT_EQ(u"/elsewhere/other.jpg", copy->getAssetFile()->getPath());
    EXPECT_EQ(u"/elsewhere/holiday.jpg", asset->getAssetFile()->getPath()) << "a clone shares nothing";
    asset->removeListener(&heard);

    // An extension no codec knows: an asset without a file, its list as given.
    list->set(Asset::kPropFilename, PropertyValue(u"notes.xyz"), false);
    OwnedPtr<Asset> unknown = Asset::create(list);
    EXPECT_FALSE(unknown->getAssetFile());
    EXPECT_EQ(u"notes.xyz", unknown->getProperties()->getValue(Asset::kPropFilename).asString());
    EXPECT_FALSE(unknown->copyToClipboard());
}

TEST(Asset, DamagedPicturesAndVideosAreAssetsWithoutThumbnails) {
    GenericVideoCodec* codec = video();
    for (const char* name :
         {"jpeg-awkward/missing-sos.jpg", "video/mjpeg-320x240-pcm.avi", "video/none.mov"}) {
        SCOPED_TRACE(name);
        OwnedPtr<Asset> asset =
            Asset::create(UniqueID::create(), CString::fromUtf8(testDataPath(name)), nullptr, nullptr);
        ASSERT_TRUE(asset->getAssetFile());
        EXPECT_FALSE(OwnedPtr<Image>(asset->getAssetFile()->createThumbnail(160, 160, true)));
    }
    OwnedPtr<Dib> stock = makePatternDib(64, 48, 3);
    codec->setThumbnailImage(OwnedPtr<Image>(Image::create(stock, false)));
    OwnedPtr<Asset> clip = Asset::create(UniqueID::create(), u"/videos/clip.AVI", nullptr, nullptr);
    ASSERT_TRUE(clip->getVideoFile());
    OwnedPtr<Image> first = clip->getVideoFile()->createThumbnail(32, 32, false);
    OwnedPtr<Image> second = clip->getVideoFile()->createThumbnail(32, 32, false);
    ASSERT_TRUE(first && second && first != second);
    EXPECT_EQ(CSize(32, 24), first->getSize());
    codec->setThumbnailImage(nullptr);
}

TEST(Asset, TheClipboardGetsTheFileAsACopiedFileAndThePictureAsABmpFile) {
    video();
    TempDir dir;
    // A 3 x 2 picture as a BMP file: rows bottom-up, each 9 bytes and 3 of padding.
    std::string bmp("BM\x4E\0\0\0\0\0\0\0\x36\0\0\0", 14);
    bmp += std::string("\x28\0\0\0\x03\0\0\0\x02\0\0\0\x01\0\x18\0", 16) + std::string(24, '\0');
    bmp += std::string("\x01\x02\x03\x04\x05\x06\x07\x08\x09\0\0\0\x0A\x0B\x0C\x0D\x0E\x0F\x10\x11\x12\0\0\0",
                       24);
    writeFileBytes(dir.file("a b#\xC3\xA9.bmp"), bmp);
    OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), dir.wide("a b#\xC3\xA9.bmp"), nullptr, nullptr);
    EXPECT_FALSE(asset->copyToClipboard()) << "no clipboard until the host installs one";
    RecordingClipboard clipboard;
    ASSERT_TRUE(asset->copyToClipboard());
    const std::string uri = "file://" + dir.path() + "/a%20b%23%C3%A9.bmp";
    ASSERT_EQ(3u, clipboard.forms.size());
    EXPECT_EQ("text/uri-list", clipboard.forms[0].type);
    EXPECT_EQ(uri + "\r\n", clipboard.forms[0].bytes);
    EXPECT_EQ("x-special/gnome-copied-files", clipboard.forms[1].type);
    EXPECT_EQ("copy\n" + uri, clipboard.forms[1].bytes);
    EXPECT_EQ("image/bmp", clipboard.forms[2].type);
    EXPECT_EQ(bmp, clipboard.forms[2].bytes);
}
