// orvanta edit and rotate on a file in place, and videos as catalogue items, run as a user runs them.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/store/PropertyDatabase.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class InPlace : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::getenv("ORVANTA_TOOL")) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ORVANTA_REQUIRE_TESTDATA();
    }
    std::string copyOf(const std::string& name, const std::string& as) {
        writeFileBytes(dir.file(as), readFileBytes(testDataPath(name)));
        return dir.file(as);
    }
    CSize thumbnailSize(const std::string& path) {
        OwnedPtr<Dib> thumbnail = jpeg->readEmbeddedThumbnail(CString::fromUtf8(path));
        return thumbnail ? thumbnail->getSize() : CSize(0, 0);
    }
    TempDir dir;
    OwnedPtr<IntelJpegCodec> jpeg = IntelJpegCodec::create();
};

}  // namespace

TEST_F(InPlace, TurnsAloneAreDoneInTheFileAndTwoQuarterTurnsGiveTheHalfTurnsFile) {
    const std::string twice = copyOf("jpeg/canon-ixus-640x480.jpg", "twice.jpg");
    const std::string half = copyOf("jpeg/canon-ixus-640x480.jpg", "half.jpg");
    ToolRun run = runTool("edit '" + twice + "' '" + twice + "' rotate=90 mirror=h undo rotate=90");
    ASSERT_EQ(0, run.status) << run.errors;
    EXPECT_EQ(twice + "\t640\t480\tundo 2\tredo 0\tretired 0\n", run.output);
    ASSERT_EQ(0, runTool("rotate '" + half + "' 180").status);
    EXPECT_EQ(readFileBytes(half), readFileBytes(twice));
    ASSERT_EQ(0, runTool("rotate '" + half + "' 90").status);
    EXPECT_EQ(CSize(120, 160), thumbnailSize(half)) << "the new thumbnail is turned with the picture";
}

TEST_F(InPlace, OtherEditsEncodeAnewKeepingTheMetadataAndANewThumbnail) {
    const std::string photo = copyOf("jpeg/canon-eos7d-photoshop-allsegs.jpg", "photo.jpg");
    const std::string before = readFileBytes(photo);
    ToolRun run = runTool("edit '" + photo + "' '" + photo + "' downsize=300x300 rotate=90");
    ASSERT_EQ(0, run.status) << run.errors;
    EXPECT_EQ(photo + "\t300\t200\tundo 1\tredo 0\tretired 0\n", run.output);
    const std::string after = readFileBytes(photo);
    EXPECT_EQ('\xE1', after[3]) << "the EXIF segment comes first";
    for (const char* kept : {"Photoshop 3.0", "http://ns.adobe.com/xap/1.0/"})
        EXPECT_NE(std::string::npos, after.find(kept));
    EXPECT_EQ(CSize(160, 106), thumbnailSize(photo)) << "300 x 200 fitted into 160 x 160, truncated";
}

TEST_F(InPlace, VideosAreCataloguedWithTheStockPictureAsTheirThumbnail) {
    copyOf("video/mjpeg-320x240-pcm.avi", "clip.AVI");
    copyOf("jpeg/canon-ixus-640x480.jpg", "photo.jpg");
    writeFileBytes(dir.file("notes.txt"), "neither");
    const std::string catalogue = dir.file("catalogue.db");
    ToolRun run = runTool("db add '" + catalogue + "' '" + dir.path() + "'");
    ASSERT_EQ(0, run.status) << run.output;
    OwnedPtr<PropertyDatabase> db = PropertyDatabase::create(CString::fromUtf8(catalogue), 10);
    ASSERT_EQ(2, db->getCount()) << run.output;
    OwnedPtr<PropertyDatabase::Iterator> lists = db->createIterator();
    int videos = 0;
    while (OwnedPtr<PropertyList> list = lists->next())
        videos += list->getValue(u"filename").asString() == u"clip.AVI" && !list->contains(u"width");
    EXPECT_EQ(1, videos);
    run = runTool("thumb '" + dir.file("clip.AVI") + "' '" + dir.file("clip.jpg") + "' --box 80x80");
    EXPECT_EQ(dir.file("clip.jpg") + "\t80\t60\tstock\n", run.output);
}
