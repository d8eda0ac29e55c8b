// orvanta import, run as a user runs it, on the directory camera and on a folder taken as a card:
// the summary line, copies identical with their sources and carrying their times, a second run that
// skips everything, the copies in the catalogue, and delete-after-copy emptying the source; and a
// page of SANE's test scanner.

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>
#include <sstream>

#include "tests/support/DirectoryCamera.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

std::string lastLine(const std::string& output) {
    std::string line, last;
    std::istringstream lines(output);
    while (std::getline(lines, line)) last = line;
    return last;
}

std::set<std::string> catalogued(const std::string& catalogue) {
    std::set<std::string> paths;
    std::istringstream lines(runTool("catalog list --catalog '" + catalogue + "'").output);
    for (std::string line; std::getline(lines, line);) paths.insert(line.substr(line.rfind('\t') + 1));
    return paths;
}

}  // namespace

class ImportCommand : public ::testing::Test {
protected:
    void SetUp() override {
        if (!toolAvailable()) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ORVANTA_REQUIRE_TESTDATA();
    }
};

TEST_F(ImportCommand, CameraCopiedOnceThenSkippedAndCataloguedThenEmptied) {
    DirectoryCamera camera(7);
    TempDir dir;
    const std::string common =
        " --to '" + dir.file("photos") + "' --catalog '" + dir.file("catalog.db") + "'";
    const ToolRun first = runTool("import '" + camera.id() + "'" + common);
    EXPECT_EQ(first.status, 0) << first.errors;
    EXPECT_EQ(lastLine(first.output), "copied 8, skipped 0, failed 0");
    std::set<std::string> copies;
    for (const std::string& f : camera.files()) {
        const std::string copy = dir.file("photos/" + fs::path(f).filename().string());
        EXPECT_EQ(readFileBytes(copy), readFileBytes(camera.localPath(f))) << f;
        // The camera tells whole seconds.
        const auto seconds = [](const std::string& p) {
            return std::chrono::floor<std::chrono::seconds>(fs::last_write_time(p));
        };
        EXPECT_EQ(seconds(copy), seconds(camera.localPath(f))) << "the camera's time, " << f;
        copies.insert(copy);
    }
    EXPECT_EQ(catalogued(dir.file("catalog.db")), copies);

    const ToolRun again = runTool("import '" + camera.id() + "' --delete-after-copy" + common);
    EXPECT_EQ(again.status, 0) << again.errors;
    EXPECT_EQ(lastLine(again.output), "copied 0, skipped 8, failed 0");
    for (const std::string& f : camera.files())
        EXPECT_TRUE(fs::exists(camera.localPath(f))) << "skipped, so kept";

    const ToolRun moved = runTool("import '" + camera.id() + "' --delete-after-copy --to '" +
                                  dir.file("second") + "' --catalog '" + dir.file("catalog.db") + "'");
    EXPECT_EQ(lastLine(moved.output), "copied 8, skipped 0, failed 0");
    for (const std::string& f : camera.files()) {
        EXPECT_FALSE(fs::exists(camera.localPath(f))) << f;
        EXPECT_EQ(readFileBytes(dir.file("second/" + fs::path(f).filename().string())),
                  readFileBytes(dir.file("photos/" + fs::path(f).filename().string())));
    }
    EXPECT_EQ(catalogued(dir.file("catalog.db")).size(), 16u);
}

TEST_F(ImportCommand, FolderIsACardAScannerGivesAPageAndBadArgumentsAndSourcesFail) {
    const DirectoryCamera drivers(0, false);  // libgphoto2 limited to the test camera's drivers
    TempDir dir;
    fs::create_directories(dir.file("card/DCIM/sub"));
    const std::vector<std::string> photos = testDataFiles("jpeg", {".jpg"});
    fs::copy_file(photos[0], dir.file("card/DCIM/a.jpg"));
    fs::copy_file(photos[1], dir.file("card/DCIM/sub/b.jpg"));
    const ToolRun run = runTool("import '" + dir.file("card") + "' --delete-after-copy --to '" +
                                dir.file("out") + "' --catalog '" + dir.file("c.db") + "'");
    EXPECT_EQ(run.status, 0) << run.errors;
    EXPECT_EQ(lastLine(run.output), "copied 2, skipped 0, failed 0");
    EXPECT_FALSE(fs::exists(dir.file("card/DCIM/a.jpg")));
    EXPECT_EQ(readFileBytes(dir.file("out/b.jpg")), readFileBytes(photos[1]));

    {
        // SANE's test scanner alone: its page lands in the folder, and the temporary file is gone.
        const PrivateTemp temp;
        writeFileBytes(dir.file("dll.conf"), "test\n");
        setenv("SANE_CONFIG_DIR", dir.path().c_str(), 1);
        const ToolRun scan = runTool("import 'Noname|frontend-tester|test:0' --scan-option resolution=50 --to '" +
                                     dir.file("scans") + "' --catalog '" + dir.file("c.db") + "'");
        unsetenv("SANE_CONFIG_DIR");
        EXPECT_EQ(scan.status, 0) << scan.errors;
        EXPECT_EQ(lastLine(scan.output), "copied 1, skipped 0, failed 0");
        EXPECT_EQ(readFileBytes(dir.file("scans/twainImage.jpg")).substr(0, 2), "\xff\xd8");
        EXPECT_EQ(temp.count(), 0u);
    }

    EXPECT_EQ(runTool("import").status, 2);
    EXPECT_EQ(runTool("import a b").status, 2);
    const ToolRun missing = runTool("import 'No Such Camera@disk:/nowhere' --to '" + dir.file("x") +
                                    "' --catalog '" + dir.file("c.db") + "'");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(lastLine(missing.output), "copied 0, skipped 0, failed 0");
    EXPECT_FALSE(fs::exists(dir.file("x")));
}
