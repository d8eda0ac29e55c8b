// orvanta catalog list, check and stats, run as a user runs them, on a catalogue that `orvanta db
// add` makes of copies of real photographs and a video with known dates.

#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "orvanta/assets/AssetDb.h"
#include "orvanta/platform/FileTimes.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class CatalogCommand : public ::testing::Test {
protected:
    void SetUp() override {
        if (!toolAvailable()) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ORVANTA_REQUIRE_TESTDATA();
        std::filesystem::create_directories(dir.file("photos/Summer"));
        // Copies dated 2001-02-03 plus the day count given, at noon UTC; the folder's listing order
        // (by name) differs from the dates' and the sizes' orders.
        const struct {
            const char* from;
            const char* to;
            int day;
        } files[] = {
            {"jpeg/canon-ixus-640x480.jpg", "photos/b.jpg", 3},
            {"bmp/rgb24-photo-119x96-pad3.bmp", "photos/Summer/c.bmp", 1},
            {"video/mjpeg-320x240-pcm.avi", "photos/a.avi", 2},
        };
        for (const auto& f : files) {
            std::filesystem::copy_file(testDataPath(f.from), dir.file(f.to));
            FILETIME written{0, 0};
            DateTime(2001, 2, 3 + f.day, 12, 0, 0, 0).asFileTime(&written);
            const struct timespec times[2] = {{0, UTIME_OMIT}, Platform::toTimespec(written)};
            ASSERT_EQ(0, utimensat(AT_FDCWD, dir.file(f.to).c_str(), times, 0));
        }
        const ToolRun added =
            runTool("db add " + catalogue + " " + dir.file("photos") + " " + dir.file("photos/Summer"));
        ASSERT_EQ(0, added.status) << added.output << added.errors;
        for (const std::string name : {"b.jpg", "c.bmp", "a.avi"}) {
            const std::size_t at = added.output.find(name + "\t");
            ASSERT_NE(at, std::string::npos) << added.output;
            ids[name] = added.output.substr(at + name.size() + 1, 36);
        }
    }
    // A line of the listing, with the dates in UTC.
    std::string line(const std::string& name, int day, const std::string& folder = "photos/") {
        return ids[name] + "\t2001-02-0" + std::to_string(3 + day) + "T12:00:00\t" + dir.file(folder + name) +
               "\n";
    }
    ToolRun catalog(const std::string& arguments) {
        return runShell("TZ=UTC timeout 120 {tool} catalog " + arguments + " --catalog " + catalogue);
    }

    TempDir dir;
    const std::string catalogue = dir.file("catalog.db");
    std::map<std::string, std::string> ids;
};

}  // namespace

TEST_F(CatalogCommand, ListSortsFiltersAndWritesJson) {
    const std::string a = line("a.avi", 2), b = line("b.jpg", 3), c = line("c.bmp", 1, "photos/Summer/");
    const struct {
        const char* arguments;
        std::string expected;
    } cases[] = {
        {"list", c + a + b},
        {"list --sort filename", a + b + c},
        {"list --sort folder", a + b + c},
        {"list --sort size", c + b + a},  // 34,614, 128,037 and 932,454 bytes
        {"list --filter SUMMER", c},
        {"list --filter .JPG --sort timestamp", b},
        {"list --filter nothing-like-it", ""},
    };
    for (const auto& c : cases) {
        const ToolRun run = catalog(c.arguments);
        EXPECT_EQ(0, run.status) << c.arguments << run.errors;
        EXPECT_EQ(c.expected, run.output) << c.arguments;
    }
    const ToolRun json = catalog("list --json --sort filename");
    EXPECT_EQ("[\n  {\"id\": \"" + ids["a.avi"] + "\", \"path\": \"" + dir.file("photos/a.avi") +
                  "\", \"timestamp\": \"2001-02-05T12:00:00\", \"type\": \"video\", \"width\": null, "
                  "\"height\": null},\n"
                  "  {\"id\": \"" +
                  ids["b.jpg"] + "\", \"path\": \"" + dir.file("photos/b.jpg") +
                  "\", \"timestamp\": \"2001-02-06T12:00:00\", \"type\": \"photo\", \"width\": 640, "
                  "\"height\": 480},\n"
                  "  {\"id\": \"" +
                  ids["c.bmp"] + "\", \"path\": \"" + dir.file("photos/Summer/c.bmp") +
                  "\", \"timestamp\": \"2001-02-04T12:00:00\", \"type\": \"photo\", \"width\": 119, "
                  "\"height\": 96}\n]\n",
              json.output);
    EXPECT_EQ("[]\n", catalog("list --json --filter nothing-like-it").output);
    for (const char* bad : {"list --sort colour", "list --filter", "frobnicate", "check --all", "stats x",
                            "import", "import --jobs 0 x", "thumb", "thumb x"})
        EXPECT_EQ(2, catalog(bad).status) << bad;
}

TEST_F(CatalogCommand, CheckFindsMovedFilesAndPrunesOnlyWhenAsked) {
    std::filesystem::rename(dir.file("photos/b.jpg"), dir.file("photos/moved.jpg"));
    std::filesystem::remove(dir.file("photos/Summer/c.bmp"));
    std::filesystem::create_directory(dir.file("photos/Summer/c.bmp"));  // a folder in its place
    const std::string missing = "missing\t" + ids["b.jpg"] + "\t" + dir.file("photos/b.jpg") + "\n";
    const std::string gone = "missing\t" + ids["c.bmp"] + "\t" + dir.file("photos/Summer/c.bmp") + "\n";
    const ToolRun dry = catalog("check");
    EXPECT_EQ(0, dry.status);
    // In the order of the records, which is that of the ids.
    const auto idOf = [&](const char* name) { return UniqueID(CString::fromUtf8(ids[name])); };
    EXPECT_EQ((idOf("b.jpg") < idOf("c.bmp") ? missing + gone : gone + missing) +
                  "2 of 3 assets missing (a dry run: --prune removes them from the catalogue)\n",
              dry.output);
    EXPECT_EQ(line("a.avi", 2), catalog("list --filter .avi").output);
    EXPECT_NE(catalog("list").output.find(ids["b.jpg"]), std::string::npos) << "a dry run changes nothing";
    EXPECT_NE(catalog("check --prune").output.find("2 of 3 assets missing, 2 removed\n"), std::string::npos);
    EXPECT_EQ(line("a.avi", 2), catalog("list").output);
    EXPECT_EQ("0 of 1 assets missing\n", catalog("check").output);
    EXPECT_TRUE(std::filesystem::exists(dir.file("photos/moved.jpg")));
}

TEST_F(CatalogCommand, StatsAndTheCatalogueInTheDataFolder) {
    const std::string stats = catalog("stats").output;
    for (const char* figure :
         {"assets\t3\n", "photos\t2\n", "videos\t1\n", "earliest\t2001-02-04T12:00:00\n",
          "latest\t2001-02-06T12:00:00\n", "format version\t2\n", "catalogue bytes\t102444\n"})
        EXPECT_NE(stats.find(figure), std::string::npos) << figure << stats;
    // Without --catalog, the catalogue in the XDG data folder.
    std::filesystem::create_directories(dir.file("data/orvanta"));
    std::filesystem::copy_file(catalogue, dir.file("data/orvanta/catalog.db"));
    EXPECT_EQ(line("c.bmp", 1, "photos/Summer/") + line("a.avi", 2) + line("b.jpg", 3),
              runShell("TZ=UTC XDG_DATA_HOME='" + dir.file("data") + "' {tool} catalog list").output);
    const ToolRun none = runShell("XDG_DATA_HOME='" + dir.file("nowhere") + "' {tool} catalog stats");
    EXPECT_EQ(1, none.status);
    EXPECT_NE(none.errors.find("there is no catalogue at " + dir.file("nowhere/orvanta/catalog.db")),
              std::string::npos)
        << none.errors;
}
