// Assets and their files: the date rule, the two-way link of properties and path, clones, and files
// that are damaged or never opened. An asset on the clipboard is tested with the clipboard.

#include "orvanta/assets/Asset.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/GenericVideoCodec.h"
#include "orvanta/codecs/ImageFile.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/FileTime.h"
#include "orvanta/platform/FileTimes.h"
#include "orvanta/store/PropertyList.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

FILETIME at(int year, int month, int day, int hour = 0, int minute = 0) {
    FILETIME time{0, 0};
    DateTime(year, month, day, hour, minute, 0, 0).asFileTime(&time);
    return time;
}

// The codecs of the catalogue, registered once for the whole program.
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

struct Codes : NotifierListener {
    void onNotification(void*, const Notification& notification) override { codes.push_back(notification); }
    std::vector<int> codes;
};

}  // namespace

TEST(AssetFile, TheEarlierTimeDatesAFileButTimesBefore1980January2ndDoNotCountGivenOrOnDisk) {
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
    // Times read from the disk, from a file system with birth times and from one without them.
    TempDir dir;
    writeFileBytes(dir.file("photo.jpg"), "0123456789");
    for (bool hidden : {false, true}) {
        FaultyFileSystem disk;
        disk.hideBirthTimes(hidden);
        for (const FILETIME& written : {at(2003, 7, 1, 12), at(1975, 3, 3)}) {
            const struct timespec times[2] = {{0, UTIME_OMIT}, Platform::toTimespec(written)};
            ASSERT_EQ(0, utimensat(AT_FDCWD, dir.file("photo.jpg").c_str(), times, 0));
            struct stat info;
            ASSERT_EQ(0, stat(dir.file("photo.jpg").c_str(), &info));
            OwnedPtr<ImageFile> file = ImageFile::create(dir.wide("photo.jpg"), nullptr, nullptr, nullptr);
            EXPECT_TRUE(!hidden || Platform::toFileTime(info.st_ctim) == file->getCreationTime())
                << "without birth times, the status change time stands for the creation time";
            // Made just now, so a write time of 2003 is the earlier; one of 1975 does not count.
            const FILETIME expected = written < at(1980, 1, 2) ? file->getCreationTime() : written;
            EXPECT_EQ(DateTime(expected, true), file->getTimestamp());
        }
    }
}

TEST(Asset, PropertiesAndPathFollowEachOtherBothWaysAndClonesShareNothing) {
    video();
    TempDir dir;
    writeFileBytes(dir.file("photo.jpg"), "not read");
    OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), dir.wide("photo.jpg"), nullptr, nullptr);
    PropertyList* list = asset->getProperties();
    EXPECT_EQ(CString::fromUtf8(dir.path()), list->getValue(Asset::kPropFolder).asString());
    ASSERT_TRUE(asset->getImageFile() && !asset->getVideoFile());
    Codes heard;
    asset->addListener(&heard);
    EXPECT_TRUE(asset->getAssetFile()->rename(u"holiday"));
    EXPECT_EQ(u"holiday.jpg", list->getValue(Asset::kPropFilename).asString());
    EXPECT_EQ("not read", readFileBytes(dir.file("holiday.jpg")));
    list->set(Asset::kPropFolder, PropertyValue(u"/elsewhere"), true);
    EXPECT_EQ(u"/elsewhere/holiday.jpg", asset->getAssetFile()->getPath());
    // The rename: the list, then the path; the folder: the same for the path it moved, then the list.
    EXPECT_EQ((std::vector<int>{2, 1, 2, 1, 2}), heard.codes);
    asset->removeListener(&heard);
    OwnedPtr<Asset> copy = asset->clone();
    copy->getProperties()->set(Asset::kPropFilename, PropertyValue(u"other.jpg"), true);
    EXPECT_EQ(u"/elsewhere/other.jpg", copy->getAssetFile()->getPath());
    EXPECT_EQ(u"/elsewhere/holiday.jpg", asset->getAssetFile()->getPath());
}

TEST(Asset, DamagedPicturesAndVideosAreAssetsWithoutThumbnails) {
    ORVANTA_REQUIRE_TESTDATA();
    video();
    for (const char* name :
         {"jpeg-awkward/missing-sos.jpg", "video/mjpeg-320x240-pcm.avi", "video/none.mov"}) {
        OwnedPtr<Asset> asset =
            Asset::create(UniqueID::create(), CString::fromUtf8(testDataPath(name)), nullptr, nullptr);
        ASSERT_TRUE(asset->getAssetFile()) << name;
        EXPECT_FALSE(OwnedPtr<Image>(asset->getAssetFile()->createThumbnail(160, 160, true))) << name;
    }
}
