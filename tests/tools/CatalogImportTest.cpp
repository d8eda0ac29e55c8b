// orvanta catalog import and thumb, run as a user runs them: a walk over the whole test data, an
// import run again after files changed, and imports killed (SIGKILL, by pid) while they add assets
// and while they make thumbnails, after which the catalogue keeps every asset reported, every stored
// thumbnail decodes, and the next import completes the rest.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include "orvanta/assets/AssetDb.h"
#include "orvanta/assets/ThumbnailRecord.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/store/Database.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

// The lines of an import's output by their first field: added, updated, skipped, no thumbnail.
std::map<std::string, std::vector<std::vector<std::string>>> records(const std::string& output) {
    std::map<std::string, std::vector<std::vector<std::string>>> found;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) {
        std::vector<std::string> fields;
        std::istringstream split(line);
        for (std::string field; std::getline(split, field, '\t');) fields.push_back(field);
        found[fields[0]].push_back(fields);
    }
    return found;
}

// Every record of the thumbnail store, decoded as stored; the count, or −1 at the first that fails.
int decodeEveryThumbnail(const std::string& path) {
    static OwnedPtr<IntelJpegCodec> codec = IntelJpegCodec::create();
    OwnedPtr<Database> store = Database::create(CString::fromUtf8(path), 100);
    OwnedPtr<Database::Iterator> records = store->createIterator();
    int count = 0;
    for (Database::Record* record; (record = records->next()); ++count) {
        ThumbnailRecord thumbnail;
        if (!ThumbnailRecord::parse(record->getDataBytes(), record->getDataSize(), &thumbnail) ||
            !OwnedPtr<Dib>(thumbnail.decode(codec)) || thumbnail.width > 160 || thumbnail.height > 160)
            return -1;
    }
    return count;
}

class CatalogImport : public ::testing::Test {
protected:
    void SetUp() override {
        if (!toolAvailable()) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ORVANTA_REQUIRE_TESTDATA();
    }
    ToolRun import(const std::string& arguments) {
        return runTool("catalog import --catalog " + catalogue + " " + arguments);
    }
    // Copies of the test data's camera photographs, a video and a text file, in two folders.
    int copyPhotos() {
        int copied = 0;
        for (const std::string& photo : testDataFiles("jpeg", {".jpg"})) {
            const std::string folder = dir.file(copied % 2 ? "photos/b/" : "photos/");
            fs::create_directories(folder);
            fs::copy_file(photo, folder + fs::path(photo).filename().string());
            ++copied;
        }
        fs::copy_file(testDataPath("video/mjpeg-320x240-pcm.avi"), dir.file("photos/clip.avi"));
        writeFileBytes(dir.file("photos/notes.txt"), "not a picture");
        return copied + 1;
    }

    TempDir dir;
    const std::string catalogue = dir.file("catalog.db");
};

}  // namespace

TEST_F(CatalogImport, CataloguesEveryReadablePictureAndVideoOfTheTestDataAndSaysWhyOfTheRest) {
    const ToolRun run = import("--verbose " + testDataDir());
    ASSERT_EQ(0, run.status) << run.errors;
    auto found = records(run.output);
    std::map<std::string, std::string> fate;  // path -> added | skipped
    for (const auto& line : found["added"]) EXPECT_TRUE(fate.emplace(line[2], "added").second) << line[2];
    for (const auto& line : found["skipped"]) {
        EXPECT_TRUE(fate.emplace(line[1], line[2]).second) << line[1];
        EXPECT_FALSE(line[2].empty());
    }
    for (const auto& entry : fs::recursive_directory_iterator(testDataDir())) {
        if (!entry.is_regular_file()) continue;
        const std::string path = entry.path().string(), extension = entry.path().extension().string();
        ASSERT_TRUE(fate.count(path)) << path << " is neither catalogued nor skipped";
        if (path.find("/video/") != std::string::npos) {
            EXPECT_EQ("added", fate[path]) << path;
        }
        if (extension == ".txt" || extension == ".tsv" || extension == ".md" || extension == ".mpo") {
            EXPECT_EQ("not a picture or video", fate[path]);
        }
        // A picture is left out exactly when the flat interface cannot read it either.
        if (fate[path] != "added" && fate[path] != "not a picture or video") {
            EXPECT_EQ("not a readable picture", fate[path]) << path;
        }
        if (fate[path] == "not a readable picture") {
            EXPECT_NE(runTool("info '" + path + "'").output.find("unreadable"), std::string::npos) << path;
        }
    }
    // Each added file has a thumbnail that decodes, or a line saying why it has none.
    EXPECT_EQ(static_cast<int>(found["added"].size() - found["no thumbnail"].size()),
              decodeEveryThumbnail(catalogue + "-thumbnails"));
    for (const auto& line : found["no thumbnail"]) EXPECT_EQ("added", fate[line[2]]) << line[2];
}

TEST_F(CatalogImport, AgainSkipsWhatIsUnchangedAndBringsChangedFilesAndTheirThumbnailsUpToDate) {
    const int files = copyPhotos();
    ASSERT_EQ(files, static_cast<int>(records(import(dir.file("photos")).output)["added"].size()));
    const std::string photo = dir.file("photos/canon-ixus-640x480.jpg");
    const auto thumb = [&](const std::string& which) {
        return runTool("catalog thumb --catalog " + catalogue + " " + which + " " + dir.file("t.bmp")).output;
    };
    EXPECT_EQ(dir.file("t.bmp") + "\t160\t120\tstored\n", thumb(photo));
    // Again, nothing to do; then a photograph replaced by one of another shape, an hour later.
    EXPECT_NE(import(dir.file("photos"))
                  .output.find(" 0 added, 0 updated, " + std::to_string(files) +
                               " unchanged, 1 skipped; thumbnails: 0 made"),
              std::string::npos);
    fs::copy_file(testDataPath("jpeg/canon-powershot-a85-orient8.jpg"), photo,
                  fs::copy_options::overwrite_existing);
    fs::last_write_time(photo, fs::last_write_time(photo) + std::chrono::hours(1));
    const ToolRun again = import(dir.file("photos"));
    auto changed = records(again.output);
    ASSERT_EQ(1u, changed["updated"].size()) << again.output;
    EXPECT_EQ(photo, changed["updated"][0][2]);
    EXPECT_NE(again.output.find("thumbnails: 1 made"), std::string::npos) << again.output;
    EXPECT_EQ(dir.file("t.bmp") + "\t120\t160\tstored\n", thumb(changed["updated"][0][1]));
    EXPECT_EQ(1,
              runTool("catalog thumb --catalog " + catalogue + " " + dir.file("none.jpg") + " x.jpg").status);
}

TEST_F(CatalogImport, KilledWhileAddingOrMakingThumbnailsKeepsWhatItReportedAndTheNextImportCompletes) {
    const int files = copyPhotos();
    // Kills after the 1st and the 9th asset reported, then while thumbnails are being made: at once
    // when the store first grows, and a little later.
    const struct {
        int afterAdded;
        int msAfterGrowth;
    } kills[] = {{1, 0}, {9, 0}, {files, 0}, {files, 40}};
    for (const auto& kill : kills) {
        fs::remove(catalogue);
        fs::remove(catalogue + "-thumbnails");
        std::set<std::string> reported;
        {
            ToolProcess run({"catalog", "import", "--catalog", catalogue, "--jobs", "2", "--no-embedded",
                             dir.file("photos")});
            ASSERT_TRUE(run.started());
            for (std::string line;
                 static_cast<int>(reported.size()) < kill.afterAdded && run.readLine(&line);)
                if (line.rfind("added\t", 0) == 0) reported.insert(line.substr(6, 36));
            if (kill.afterAdded == files) {
                struct stat info {};
                while (stat((catalogue + "-thumbnails").c_str(), &info) != 0 || info.st_size <= 44)
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                std::this_thread::sleep_for(std::chrono::milliseconds(kill.msAfterGrowth));
            }
            EXPECT_TRUE(run.kill()) << "the import ended before it was killed";
        }
        {
            OwnedPtr<AssetDb> db = AssetDb::create(CString::fromUtf8(catalogue));
            for (const std::string& id : reported)
                EXPECT_TRUE(db->contains(UniqueID(CString::fromUtf8(id)))) << id;
        }
        EXPECT_GE(decodeEveryThumbnail(catalogue + "-thumbnails"), 0) << "after " << kill.afterAdded;
        const ToolRun rest = import(dir.file("photos"));
        EXPECT_EQ(0, rest.status) << rest.errors;
        EXPECT_EQ(files, decodeEveryThumbnail(catalogue + "-thumbnails"));
        OwnedPtr<AssetDb> db = AssetDb::create(CString::fromUtf8(catalogue));
        EXPECT_EQ(files, db->getCount());
    }
}
