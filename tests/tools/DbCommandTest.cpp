// orvanta db stats, dump and add, run as a user runs them.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/DatabaseOrdering.h"
#include "orvanta/store/PropertyDatabase.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class DbCommand : public ::testing::Test {
protected:
    void SetUp() override {
        if (!toolAvailable()) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ASSERT_TRUE(PropertyDatabase::createFile(dir.wide("catalog.db"), 1024, 2, 0));
        ASSERT_TRUE(DatabaseOrdering::createFile(dir.wide("catalog.db.idx")));
        OwnedPtr<PropertyDatabase> db = PropertyDatabase::create(dir.wide("catalog.db"), 100);
        db->setOrdering(OwnedPtr<DatabaseOrdering>(DatabaseOrdering::create(dir.wide("catalog.db.idx"))),
                        true);
        OwnedPtr<PropertyList> list = PropertyList::create(), info = PropertyList::create();
        list->set(PropertyList::kPropID,
                  PropertyValue(UniqueID(CString(u"0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9"))), false);
        list->set(u"filename", PropertyValue(u"IMG_0042.JPG"), false);
        list->set(u"rating", PropertyValue(4), false);
        list->set(u"timestamp", PropertyValue(DateTime(2004, 2, 29, 8, 15, 0, 0)), false);
        info->set(u"sort", PropertyValue(u"timestamp"), false);
        ASSERT_TRUE(db->putList(list) && db->putList(info));
    }
    TempDir dir;
    const std::string catalogue = dir.file("catalog.db");
};

}  // namespace

TEST_F(DbCommand, StatsAndDumpShowTheHeaderTheOrderingAndEveryProperty) {
    const ToolRun stats = runTool("db stats " + catalogue), dump = runTool("db dump " + catalogue);
    EXPECT_EQ(0, stats.status + dump.status) << stats.errors << dump.errors;
    for (const char* line :
         {"block size\t1024\n", "block count\t100\n", "format version\t2\n", "records\t1\n",
          "info record\tyes\n", "free blocks\t98\n", "property lists\t2 of 2\n",
          "catalog.db.idx: 1 ids (1 with a record), capacity 100", "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9\t",
          "\tfilename\tstring\tIMG_0042.JPG\n", "\trating\tint\t4\n",
          "\ttimestamp\tdatetime\t2004-02-29 08:15:00.000\n", "info record\n\tsort\tstring\ttimestamp\n"})
        EXPECT_NE((stats.output + dump.output).find(line), std::string::npos) << line << "\n"
                                                                              << stats.output << dump.output;
}

TEST_F(DbCommand, ADamagedFileOrAJournalThatCannotBeHandledIsNamedInTheError) {
    writeFileBytes(dir.file("junk.db"), "###OrvantaDB###");
    const ToolRun junk = runTool("db stats " + dir.file("junk.db"));
    EXPECT_EQ(1, junk.status);
    EXPECT_NE(junk.errors.find("Cannot open database: it is not a record store"), std::string::npos)
        << junk.errors;
    EXPECT_EQ(4, runTool("db").status + runTool("db frobnicate " + catalogue).status) << "both usage errors";
    // A file in the journal's place that is no journal, then one that another program holds.
    writeFileBytes(catalogue + "-journal", std::string(100, 'x'));
    for (const auto& [why, locked] : {std::pair{"catalog.db-journal is not a file this program wrote", false},
                                      std::pair{"catalog.db-journal cannot be opened for writing", true}}) {
        const int held = open((catalogue + "-journal").c_str(), O_RDWR);
        ASSERT_TRUE(!locked || flock(held, LOCK_EX) == 0);
        const ToolRun run = runTool("db stats " + catalogue);
        close(held);
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.errors.find("Cannot open database: the journal " + dir.path() + "/" + why),
                  std::string::npos)
            << run.errors;
        writeFileBytes(catalogue + "-journal", std::string("##OrvantaDBJ###\0", 16) + std::string(88, '\0'));
    }
    EXPECT_EQ(runTool("db stats " + catalogue).status, 0) << "an idle journal of its own";
}

// What db add catalogues (folder, size, identifier, a fresh catalogue's layout) is checked by the
// catalogue commands' tests, which run on a catalogue it makes: here, what it refuses.
TEST_F(DbCommand, AddReportsWhatIsNoPictureAndNeverOpensAVideo) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string notes = dir.file("notes.txt"), videos = dir.file("videos");
    writeFileBytes(notes, "not a picture");
    ASSERT_EQ(0, mkdir(videos.c_str(), 0700));
    writeFileBytes(videos + "/clip.AVI", "");  // empty: opened, it would be refused
    const ToolRun run =
        runTool("db add '" + dir.file("new.db") + "' '" + testDataPath("jpeg/canon-ixus-640x480.jpg") +
                "' '" + notes + "' '" + videos + "'");
    EXPECT_EQ(run.status, 1);  // one file was not a picture
    EXPECT_NE(run.output.find(notes + "\tunreadable\n"), std::string::npos) << run.output;
    for (const char* name : {"canon-ixus-640x480.jpg\t", "clip.AVI\t"})
        EXPECT_NE(run.output.find(name), std::string::npos) << run.output;
}
