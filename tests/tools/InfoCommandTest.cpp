// Runs the orvanta host as a user would and checks what it prints.

#include <gtest/gtest.h>

#include <string>

#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace OrvantaTest;

TEST(InfoCommand, PrintsOneTabSeparatedLinePerFile) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string good = testDataPath("bmp/rgb24-photo-119x96-pad3.bmp");
    const ToolRun run = runTool("info '" + good + "'");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, good + "\tbmp\t119\t96\thigh\n");
}

TEST(InfoCommand, ReportsUnsupportedAndUnreadableFilesAndFails) {
    TempDir dir;
    writeFileBytes(dir.file("notes.txt"), "hello");
    const ToolRun run = runTool("info '" + dir.file("notes.txt") + "' '" + dir.file("missing.bmp") + "'");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output,
              dir.file("notes.txt") + "\tunsupported\n" + dir.file("missing.bmp") + "\tunreadable\n");
}

TEST(InfoCommand, HelpDocumentsTheOutput) {
    const ToolRun run = runTool("info --help");
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.output.find("PATH  TYPE  WIDTH  HEIGHT  QUALITY"), std::string::npos);
    const ToolRun unknown = runTool("no-such-command");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.errors.find("unknown command"), std::string::npos);
}

TEST(InfoCommand, VersionIsTheLibrarys) {
    const ToolRun run = runTool("--version");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output, "orvanta " ORVANTA_PROJECT_VERSION "\n");
}
