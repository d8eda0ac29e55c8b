// orvanta edit, run as a user runs it: a real photograph in, the edited picture out.

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "orvanta/codecs/BmpCodec.h"
#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/TestPictures.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using OrvantaTest::runTool;
using OrvantaTest::ToolRun;

namespace {

Dib* readBmp(const std::string& path) {
    OwnedPtr<BmpCodec> codec(BmpCodec::create());
    CSize size;
    return codec->read(CString::fromUtf8(path), &size, 0, 0);
}

class EditCommand : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::getenv("ORVANTA_TOOL")) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ORVANTA_REQUIRE_TESTDATA();
    }
    const std::string photo = OrvantaTest::testDataPath("bmp/rgb24-photo-119x96-pad3.bmp");
    OrvantaTest::TempDir dir;
};

}  // namespace

TEST_F(EditCommand, EditsMatchTheLibraryAndReportTheHistory) {
    const std::string out = dir.file("out.bmp");
    const ToolRun run = runTool("edit '" + photo + "' '" + out + "' rotate=90 mirror=v undo");
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(run.output, out + "\t96\t119\tundo 1\tredo 1\tretired 0\n");
    OwnedPtr<Dib> original(readBmp(photo));
    OwnedPtr<EditableDib> expected(new EditableDib(original));
    expected->doOp(OwnedPtr<EditingOp>(RotateOp::create(90)));
    OwnedPtr<Dib> written(readBmp(out));
    ASSERT_TRUE(written);
    EXPECT_EQ(OrvantaTest::packedPixels(*written), OrvantaTest::packedPixels(*expected));
}

TEST_F(EditCommand, LimitRetiresAndDownsizeStartsANewHistory) {
    const std::string out = dir.file("out.bmp");
    ToolRun run =
        runTool("edit --undo-limit=1 '" + photo + "' '" + out + "' mirror=h sepia crop=0,0,0.5,0.5");
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(run.output, out + "\t59\t48\tundo 1\tredo 0\tretired 2\n");
    run = runTool("edit '" + photo + "' '" + out + "' bw downsize=30x30:1 colorize=0.6,0.5,0.4");
    ASSERT_EQ(run.status, 0);
    EXPECT_EQ(run.output, out + "\t30\t24\tundo 1\tredo 0\tretired 0\n");
}

TEST_F(EditCommand, BadArgumentsAndFilesFailCleanly) {
    const std::string out = dir.file("out.bmp");
    EXPECT_EQ(runTool("edit '" + photo + "' '" + out + "' rotate=45").status, 2);
    EXPECT_EQ(runTool("edit '" + photo + "' '" + out + "' crop=0.5,0,0.2,1").status, 2);
    EXPECT_EQ(runTool("edit '" + photo + "' '" + out + "' colorize=0,0.5,0.5").status, 2);
    EXPECT_EQ(runTool("edit '" + photo + "' '" + out + "' downsize=10").status, 2);
    EXPECT_EQ(runTool("edit '" + photo + "'").status, 2);
    EXPECT_EQ(runTool("edit '" + dir.file("missing.bmp") + "' '" + out + "' bw").status, 1);
    EXPECT_EQ(runTool("edit '" + photo + "' '" + dir.file("out.xyz") + "' bw").status, 1);
    EXPECT_EQ(runTool("edit '" + photo + "' '" + dir.file("no/such/folder/out.bmp") + "' bw").status, 1);
    EXPECT_EQ(OrvantaTest::readFileBytes(out), "");  // nothing was written by the failures
}
