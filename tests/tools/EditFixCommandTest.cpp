// The picture fix and red-eye removal of `orvanta edit`, run as a user would.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibWalker.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

const char* kRedeyePhoto = "redeye/redeye-boldredeye-576x433.bmp";

Dib* readBmp(const std::string& path) {
    OwnedPtr<BmpCodec> codec = BmpCodec::create();
    return codec->read(CString::fromUtf8(path), nullptr, 0, 0);
}

int redness(Dib* dib, int x, int y) {
    DibWalker w(dib);
    w.goTo(x, y);
    unsigned char r, g, b;
    w.getPixel(r, g, b);
    return r - std::max(g, b);
}

}  // namespace

TEST(EditFixCommand, PicfixWritesWhatTheOperationGives) {
    ORVANTA_REQUIRE_TESTDATA();
    TempDir dir;
    const std::string source = testDataPath(kRedeyePhoto);
    const ToolRun run = runTool("edit '" + source + "' '" + dir.file("fixed.bmp") + "' picfix");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(run.output, dir.file("fixed.bmp") + "\t576\t433\tundo 1\tredo 0\tretired 0\n");

    OwnedPtr<Dib> photo = readBmp(source);
    OwnedPtr<PicFixOp> op = PicFixOp::create();
    OwnedPtr<Dib> expected = op->doOp(photo, nullptr);
    OwnedPtr<Dib> written = readBmp(dir.file("fixed.bmp"));
    ASSERT_NE(written.get(), nullptr);
    EXPECT_EQ(packedPixels(*written), packedPixels(*expected));
}

TEST(EditFixCommand, PicfixThenUndoGivesTheSourceBack) {
    ORVANTA_REQUIRE_TESTDATA();
    TempDir dir;
    const std::string source = testDataPath(kRedeyePhoto);
    const ToolRun run = runTool("edit '" + source + "' '" + dir.file("same.bmp") + "' picfix undo");
    ASSERT_EQ(run.status, 0) << run.errors;
    OwnedPtr<Dib> photo = readBmp(source);
    OwnedPtr<Dib> written = readBmp(dir.file("same.bmp"));
    EXPECT_EQ(packedPixels(*written), packedPixels(*photo));
}

TEST(EditFixCommand, RedeyeRemovesTheRedOfBothPupilsAndNothingElse) {
    ORVANTA_REQUIRE_TESTDATA();
    TempDir dir;
    const std::string source = testDataPath(kRedeyePhoto);
    // Pupils at (160, 193) and (432, 193); the default radius is 433 / 12 = 36.
    const ToolRun run = runTool("edit '" + source + "' '" + dir.file("eyes.bmp") +
                                "' redeye=0.2786,0.4469 redeye=0.7509,0.4469");
    ASSERT_EQ(run.status, 0) << run.errors;
    EXPECT_NE(run.output.find("undo 2"), std::string::npos);
    OwnedPtr<Dib> photo = readBmp(source);
    OwnedPtr<Dib> written = readBmp(dir.file("eyes.bmp"));
    ASSERT_NE(written.get(), nullptr);
    int redBefore = 0, redAfter = 0;
    for (int y = 0; y < 433; ++y)
        for (int x = 0; x < 576; ++x) {
            const bool nearEye = y >= 193 - 36 && y <= 193 + 36 &&
                                 ((x >= 160 - 36 && x <= 160 + 36) || (x >= 432 - 36 && x <= 432 + 36));
            if (!nearEye) {
                ASSERT_EQ(redness(written, x, y), redness(photo, x, y)) << x << "," << y;
                continue;
            }
            redBefore += redness(photo, x, y) > 80;
            redAfter += redness(written, x, y) > 80;
        }
    EXPECT_GT(redBefore, 1000);
    EXPECT_LT(redAfter, 10);
}

TEST(EditFixCommand, RedeyeOnSkinChangesNothing) {
    ORVANTA_REQUIRE_TESTDATA();
    TempDir dir;
    const ToolRun run =
        runTool("edit '" + testDataPath(kRedeyePhoto) + "' '" + dir.file("skin.bmp") + "' redeye=0.5,0.2,20");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.errors.find("redeye=0.5,0.2,20 changed nothing"), std::string::npos) << run.errors;
    EXPECT_NE(run.output.find("undo 0"), std::string::npos) << run.output;
}

TEST(EditFixCommand, RedeyeRefusesBadArguments) {
    ORVANTA_REQUIRE_TESTDATA();
    TempDir dir;
    for (const char* op : {"redeye", "redeye=0.5", "redeye=1.5,0.5", "redeye=0.5,-0.1", "redeye=0.5,0.5,-3",
                           "redeye=0.5,0.5,2.5", "redeye=a,b", "redeye=0.5,0.5,10,4", "picfix=1"}) {
        const ToolRun run =
            runTool("edit '" + testDataPath(kRedeyePhoto) + "' '" + dir.file("out.bmp") + "' " + op);
        EXPECT_EQ(run.status, 2) << op << ": " << run.errors;
        EXPECT_NE(run.errors.find("bad operation"), std::string::npos) << op;
    }
}

TEST(EditFixCommand, HelpNamesTheFixes) {
    const ToolRun run = runTool("edit --help");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.output.find("picfix"), std::string::npos);
    EXPECT_NE(run.output.find("redeye=X,Y[,R]"), std::string::npos);
}
