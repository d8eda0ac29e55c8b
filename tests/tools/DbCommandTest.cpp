// orvanta db stats and orvanta db dump, run as a user runs them.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/DatabaseOrdering.h"
#include "orvanta/store/PropertyDatabase.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/ToolRunner.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class DbCommandTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!std::getenv("ORVANTA_TOOL")) GTEST_SKIP() << "ORVANTA_TOOL is not set (run through ctest)";
        ASSERT_TRUE(PropertyDatabase::createFile(dir.wide("catalog.db"), 1024, 2, 0));
        ASSERT_TRUE(DatabaseOrdering::createFile(dir.wide("catalog.db.idx")));
        OwnedPtr<PropertyDatabase> db = PropertyDatabase::create(dir.wide("catalog.db"), 100);
        OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("catalog.db.idx"));
        db->setOrdering(ordering, true);
        id = UniqueID(CString(u"0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9"));
        OwnedPtr<PropertyList> list = PropertyList::create();
        list->set(PropertyList::kPropID, PropertyValue(id), false);
        list->set(u"filename", PropertyValue(u"IMG_0042.JPG"), false);
        list->set(u"rating", PropertyValue(4), false);
        list->set(u"timestamp", PropertyValue(DateTime(2004, 2, 29, 8, 15, 0, 0)), false);
        ASSERT_TRUE(db->putList(list));
        OwnedPtr<PropertyList> info = PropertyList::create();
        info->set(u"sort", PropertyValue(u"timestamp"), false);
        ASSERT_TRUE(db->putList(info));
    }

    TempDir dir;
    UniqueID id;
};

TEST_F(DbCommandTest, StatsShowsTheHeaderRecordsAndOrdering) {
    const ToolRun run = runTool("db stats " + dir.file("catalog.db"));
    EXPECT_EQ(run.status, 0) << run.output;
    for (const char* line :
         {"block size\t1024\n", "block count\t100\n", "format version\t2\n", "records\t1\n",
          "info record\tyes\n", "free blocks\t98\n", "property lists\t2 of 2\n"})
        EXPECT_NE(run.output.find(line), std::string::npos) << line << "\n" << run.output;
    EXPECT_NE(run.output.find("catalog.db.idx: 1 ids (1 with a record), capacity 100"), std::string::npos)
        << run.output;
}

TEST_F(DbCommandTest, DumpDecodesEveryProperty) {
    const ToolRun run = runTool("db dump " + dir.file("catalog.db"));
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9\t"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("\tfilename\tstring\tIMG_0042.JPG\n"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("\trating\tint\t4\n"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("\ttimestamp\tdatetime\t2004-02-29 08:15:00.000\n"), std::string::npos)
        << run.output;
    EXPECT_NE(run.output.find("info record\n\tsort\tstring\ttimestamp\n"), std::string::npos) << run.output;
}

TEST_F(DbCommandTest, DamagedFileIsReportedNotCrashedOn) {
    writeFileBytes(dir.file("junk.db"), "###OrvantaDB###");
    const ToolRun run = runTool("db stats " + dir.file("junk.db"));
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.errors.find("Cannot open database"), std::string::npos) << run.errors;
    EXPECT_EQ(runTool("db").status, 2);
    EXPECT_EQ(runTool("db frobnicate " + dir.file("catalog.db")).status, 2);
}

TEST_F(DbCommandTest, JournalThatCannotBeHandledIsNamedInTheError) {
    // A file in the journal's place that is no journal, then one that another program holds.
    writeFileBytes(dir.file("catalog.db-journal"), std::string(100, 'x'));
    for (const auto& [why, locked] : {std::pair{"catalog.db-journal is not a file this program wrote", false},
                                      std::pair{"catalog.db-journal cannot be opened for writing", true}}) {
        const int held = open(dir.file("catalog.db-journal").c_str(), O_RDWR);
        if (locked) {
            ASSERT_EQ(flock(held, LOCK_EX), 0);
        }
        const ToolRun run = runTool("db stats " + dir.file("catalog.db"));
        close(held);
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(run.errors.find(std::string("Cannot open database: the journal ")), std::string::npos)
            << run.errors;
        EXPECT_NE(run.errors.find(why), std::string::npos) << run.errors;
        writeFileBytes(dir.file("catalog.db-journal"),
                       std::string("##OrvantaDBJ###\0", 16) + std::string(88, '\0'));
    }
    EXPECT_EQ(runTool("db stats " + dir.file("catalog.db")).status, 0) << "an idle journal of its own";
}

TEST_F(DbCommandTest, AddCataloguesReadablePicturesAndReportsTheRest) {
    ORVANTA_REQUIRE_TESTDATA();
    const std::string photo = testDataPath("jpeg/canon-ixus-640x480.jpg");
    const std::string bitmap = testDataPath("bmp/rgb24-photo-119x96-pad3.bmp");
    writeFileBytes(dir.file("notes.txt"), "not a picture");
    const std::string catalogue = dir.file("new.db");
    const ToolRun run = runTool("db add '" + catalogue + "' '" + photo + "' '" + bitmap + "' '" +
                                dir.file("notes.txt") + "'");
    EXPECT_EQ(run.status, 1);  // one file was not a picture
    EXPECT_NE(run.output.find(dir.file("notes.txt") + "\tunreadable\n"), std::string::npos) << run.output;

    OwnedPtr<PropertyDatabase> db = PropertyDatabase::create(CString::fromUtf8(catalogue), 10);
    ASSERT_EQ(db->getCount(), 2);
    OwnedPtr<PropertyDatabase::Iterator> lists = db->createIterator();
    int widths = 0;
    while (OwnedPtr<PropertyList> list = lists->next()) {
        const CString name = list->getValue(u"filename").asString();
        EXPECT_EQ(list->getValue(u"folder").asString(),
                  CString::fromUtf8(testDataDir() + (name == u"canon-ixus-640x480.jpg" ? "/jpeg" : "/bmp")));
        EXPECT_NE(run.output.find(list->getValue(PropertyList::kPropID).asUniqueID().asString().toUtf8()),
                  std::string::npos);
        EXPECT_FALSE(list->getValue(u"timestamp").asDateTime().isNull());
        widths += list->getValue(u"width").asInt();
    }
    EXPECT_EQ(widths, 640 + 119);
}

}  // namespace
