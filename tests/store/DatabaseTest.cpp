// The database file: its bytes, allocation, growth, the info record, clear, cursors and iterators.

#include "orvanta/store/Database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/DatabaseOrdering.h"
#include "tests/store/StoreFixtures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class DatabaseTest : public ::testing::Test {
protected:
    // A new file of the given block size, opened.
    OwnedPtr<Database> make(int blockSize, int growBlocks, const std::string& name = "db") {
        path = dir.wide(name);
        EXPECT_TRUE(Database::createFile(path, blockSize, 2, 0));
        return Database::create(path, growBlocks);
    }

    long fileSize() const { return static_cast<long>(std::filesystem::file_size(path.toUtf8())); }

    TempDir dir;
    CString path;
};

// The stored bytes of an id written as text, by the GUID rule: Data1..Data3 little-endian, Data4 as is.
std::vector<unsigned char> guidBytes(const char16_t* text) {
    unsigned char bytes[16];
    UniqueID(CString(text)).writeBytes(bytes);
    return std::vector<unsigned char>(bytes, bytes + 16);
}

TEST_F(DatabaseTest, NewFileIsExactlyTheHeader) {
    ASSERT_TRUE(Database::createFile(dir.wide("new"), 1024, 2, 77));
    const auto bytes = fileBytes(dir.file("new"));
    ASSERT_EQ(bytes.size(), 44u);
    const unsigned char magic[16] = {'#', '#', '#', 'O', 'r', 'v', 'a', 'n',
                                     't', 'a', 'D', 'B', '#', '#', '#', 0};
    EXPECT_TRUE(std::equal(magic, magic + 16, bytes.begin()));
    EXPECT_EQ(getInt(bytes, 16), 1024);
    EXPECT_EQ(getInt(bytes, 20), 0);
    EXPECT_EQ(getInt(bytes, 24), 2);
    EXPECT_TRUE(std::all_of(bytes.begin() + 28, bytes.end(), [](unsigned char b) { return b == 0; }));
}

TEST_F(DatabaseTest, CreateFileNeverOverwrites) {
    ASSERT_TRUE(Database::createFile(dir.wide("x"), 1024, 2, 0));
    writeFileBytes(dir.file("x"), "precious");
    EXPECT_FALSE(Database::createFile(dir.wide("x"), 1024, 2, 0));
    EXPECT_EQ(readFileBytes(dir.file("x")), "precious");
    EXPECT_FALSE(Database::createFile(dir.wide("no/such/folder/x"), 1024, 2, 0));
}

TEST_F(DatabaseTest, FileMatchesTheLayoutBuiltByHand) {
    const char16_t* first = u"00112233-4455-6677-8899-aabbccddeeff";
    const char16_t* second = u"ffeeddcc-bbaa-9988-7766-554433221100";
    {
        OwnedPtr<Database> db = make(64, 4);
        const std::string hello = "hello";
        ASSERT_TRUE(db->addRecord(UniqueID(CString(first)), hello.data(), 5));
        const auto forty = pattern(40, 1);
        ASSERT_TRUE(db->addRecord(UniqueID(CString(second)), forty.data(), 40));
        ASSERT_TRUE(db->addRecord(Database::kInfoRecordID, "abc", 3));
    }
    // Expected: header, then 4 blocks of 64 bytes (one growth of growBlocks 4).
    std::vector<unsigned char> expected(44 + 4 * 64, 0);
    std::memcpy(expected.data(), "###OrvantaDB###", 16);
    putInt(expected, 16, 64);
    putInt(expected, 20, 4);
    putInt(expected, 24, 2);
    auto head = [&](int block, const std::vector<unsigned char>& id, int size) {
        const std::size_t at = 44 + static_cast<std::size_t>(block) * 64;
        putInt(expected, at, 1);
        std::copy(id.begin(), id.end(), expected.begin() + static_cast<long>(at) + 12);
        putInt(expected, at + 28, size);
        return at + 40;
    };
    std::memcpy(expected.data() + head(0, guidBytes(first), 5), "hello", 5);
    // 40 bytes exceed the 24 of a first block: (40 - 24) / 64 + 2 = 2 blocks, the payload running on.
    const auto forty = pattern(40, 1);
    std::copy(forty.begin(), forty.end(),
              expected.begin() + static_cast<long>(head(1, guidBytes(second), 40)));
    std::memcpy(expected.data() + head(3, std::vector<unsigned char>(16, 0), 3), "abc", 3);
    EXPECT_EQ(fileBytes(dir.file("db")), expected);
    EXPECT_FALSE(std::filesystem::exists(dir.file("db-journal"))) << "a clean close leaves the file alone";

    // Deleting changes the type word alone: the id and payload stay readable in the file.
    {
        OwnedPtr<Database> db = Database::create(path, 4);
        db->removeRecord(UniqueID(CString(second)));
    }
    putInt(expected, 44 + 64, 0);
    putInt(expected, 44 + 128, 0);
    EXPECT_EQ(fileBytes(dir.file("db")), expected);
}

TEST_F(DatabaseTest, ReopenRebuildsTheSameIndexes) {
    std::vector<UniqueID> ids;
    {
        OwnedPtr<Database> db = make(128, 10);
        for (int i = 0; i < 300; ++i) {
            ids.push_back(UniqueID::create());
            const auto data = pattern(i * 7 % 500, i);
            ASSERT_TRUE(db->addRecord(ids.back(), data.data(), static_cast<int>(data.size())));
        }
        for (int i = 0; i < 300; i += 3) db->removeRecord(ids[static_cast<std::size_t>(i)]);
    }
    const auto before = fileBytes(dir.file("db"));
    OwnedPtr<Database> db = Database::create(path, 10);
    EXPECT_EQ(db->getRecordCount(), 200);
    for (int i = 0; i < 300; ++i) {
        Database::Record* record = db->findRecord(ids[static_cast<std::size_t>(i)]);
        if (i % 3 == 0) {
            EXPECT_EQ(record, nullptr);
            continue;
        }
        ASSERT_NE(record, nullptr);
        const auto data = pattern(i * 7 % 500, i);
        ASSERT_EQ(record->getDataSize(), static_cast<int>(data.size()));
        EXPECT_TRUE(std::equal(data.begin(), data.end(), record->getDataBytes()));
    }
    db->close();
    EXPECT_EQ(fileBytes(dir.file("db")), before) << "opening and closing must not change a byte";
}

TEST_F(DatabaseTest, NewDatabaseIsEmptyAndGrowsByGrowBlocks) {
    OwnedPtr<Database> db = make(1024, 100);
    EXPECT_EQ(fileSize(), 44);
    EXPECT_EQ(db->getRecordCount(), 0);
    EXPECT_TRUE(db->isEmpty());
    EXPECT_EQ(db->firstBlock(), db->endBlock());
    EXPECT_EQ(db->findFreeRun(10), nullptr);
    ASSERT_NE(db->newRecord(idFor(1), 10), nullptr);
    EXPECT_EQ(db->getBlockCount(), 100);
    EXPECT_EQ(fileSize(), 44 + 100 * 1024);
    EXPECT_EQ(db->getFreeBlockCount(), 99);
}

TEST_F(DatabaseTest, BlockRuleKeepsItsExtraBlock) {
    OwnedPtr<Database> db = make(1024, 100);
    EXPECT_EQ(db->blocksForSize(0), 1);
    EXPECT_EQ(db->blocksForSize(984), 1);
    EXPECT_EQ(db->blocksForSize(985), 2);
    EXPECT_EQ(db->blocksForSize(2008), 3);  // 984 + 1024 would fit 2, the rule gives 3
    EXPECT_EQ(db->getCapacity(0), 0);
    EXPECT_EQ(db->getCapacity(1), 984);
    EXPECT_EQ(db->getCapacity(2), 2008);
    EXPECT_EQ(db->getFirstBlockCapacity(), 984);
}

TEST_F(DatabaseTest, ReplacingReusesTheSameBlocks) {
    OwnedPtr<Database> db = make(256, 10);
    const auto a = pattern(300, 1), b = pattern(300, 2);
    ASSERT_TRUE(db->addRecord(idFor(1), a.data(), 300));
    ASSERT_TRUE(db->addRecord(idFor(2), a.data(), 10));
    const int offset = db->blockToOffset(db->findRecord(idFor(1)));
    ASSERT_TRUE(db->addRecord(idFor(1), b.data(), 300));
    EXPECT_EQ(db->getRecordCount(), 2);
    Database::Record* record = db->findRecord(idFor(1));
    EXPECT_EQ(db->blockToOffset(record), offset);
    EXPECT_TRUE(std::equal(b.begin(), b.end(), record->getDataBytes()));
}

TEST_F(DatabaseTest, FirstFitTakesTheFirstRunLongEnough) {
    OwnedPtr<Database> db = make(64, 10);
    for (int i = 0; i < 10; ++i) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    ASSERT_EQ(db->getFreeBlockCount(), 0);
    // Free runs: blocks 1-2 and blocks 4-8.
    for (int i : {1, 2, 4, 5, 6, 7, 8}) db->removeRecord(idFor(i));
    const int threeBlocks = 24 + 64 + 1;
    ASSERT_EQ(db->blocksForSize(threeBlocks), 3);
    Database::Block* run = db->findFreeRun(threeBlocks);
    ASSERT_NE(run, nullptr);
    EXPECT_EQ(db->blockToOffset(run), 4 * 64);
    ASSERT_NE(db->newRecord(idFor(100), threeBlocks), nullptr);
    EXPECT_EQ(db->blockToOffset(db->findRecord(idFor(100))), 4 * 64);
    // A one-block record goes to the lowest free block.
    ASSERT_NE(db->newRecord(idFor(101), 1), nullptr);
    EXPECT_EQ(db->blockToOffset(db->findRecord(idFor(101))), 64);
}

TEST_F(DatabaseTest, InfoRecordIsStoredButNotCounted) {
    OwnedPtr<Database> db = make(128, 10);
    DatabaseOrdering::createFile(dir.wide("db.idx"));
    OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("db.idx"));
    db->setOrdering(ordering, true);
    ASSERT_TRUE(db->addRecord(idFor(1), "a", 1));
    ASSERT_TRUE(db->addRecord(Database::kInfoRecordID, "info", 4));
    ASSERT_TRUE(db->addRecord(idFor(2), "b", 1));
    EXPECT_EQ(db->getRecordCount(), 2);
    ASSERT_NE(db->findRecord(Database::kInfoRecordID), nullptr);
    EXPECT_EQ(
        std::string(reinterpret_cast<char*>(db->findRecord(Database::kInfoRecordID)->getDataBytes()), 4),
        "info");
    EXPECT_EQ(ordering->getCount(), 2);
    EXPECT_EQ(ordering->indexOf(Database::kInfoRecordID), -1);

    db->setOrdering(nullptr, false);
    OwnedPtr<Database::Iterator> walk = db->createIterator();
    std::vector<UniqueID> seen;
    while (Database::Record* record = walk->next()) seen.push_back(record->getID());
    EXPECT_EQ(seen, (std::vector<UniqueID>{idFor(1), idFor(2)}));
}

TEST_F(DatabaseTest, PositionsPastTheInfoRecordRepeatOneRecord) {
    OwnedPtr<Database> db = make(128, 10);
    ASSERT_TRUE(db->addRecord(idFor(1), "a", 1));
    ASSERT_TRUE(db->addRecord(Database::kInfoRecordID, "i", 1));
    ASSERT_TRUE(db->addRecord(idFor(2), "b", 1));
    ASSERT_TRUE(db->addRecord(idFor(3), "c", 1));
    ASSERT_EQ(db->getRecordCount(), 3);
    EXPECT_EQ(db->getRecord(0)->getID(), idFor(1));
    EXPECT_EQ(db->getRecord(1)->getID(), idFor(2));
    EXPECT_EQ(db->getRecord(2)->getID(), idFor(2));
    EXPECT_EQ(db->getRecord(3), nullptr);
    EXPECT_EQ(db->getRecord(-1), nullptr);
}

TEST_F(DatabaseTest, OrderingGivesPositionsAndFollowsChanges) {
    OwnedPtr<Database> db = make(128, 10);
    ASSERT_TRUE(DatabaseOrdering::createFile(dir.wide("db.idx")));
    OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("db.idx"));
    db->setOrdering(ordering, true);
    for (int i : {5, 3, 9}) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    ordering->move(idFor(9), 0, false);
    EXPECT_EQ(db->getRecord(0)->getID(), idFor(9));
    EXPECT_EQ(db->getRecord(1)->getID(), idFor(5));
    // A replaced record leaves and re-enters the ordering: it goes to the end.
    ASSERT_TRUE(db->addRecord(idFor(5), "y", 1));
    EXPECT_EQ(ordering->getID(2), idFor(5));
    db->removeRecord(idFor(3));
    EXPECT_EQ(ordering->getCount(), 2);

    OwnedPtr<Database::Iterator> walk = db->createIterator();
    std::vector<UniqueID> seen;
    while (Database::Record* record = walk->next()) seen.push_back(record->getID());
    EXPECT_EQ(seen, (std::vector<UniqueID>{idFor(9), idFor(5)}));
}

TEST_F(DatabaseTest, SetOrderingRepairsAnIndexOutOfStep) {
    OwnedPtr<Database> db = make(128, 10);
    for (int i : {4, 1, 7, 2}) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    ASSERT_TRUE(DatabaseOrdering::createFile(dir.wide("db.idx")));
    OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("db.idx"));
    for (int i : {7, 99, 4, 98}) ordering->append(idFor(i));
    db->setOrdering(ordering, true);
    // Known ids in their known order, the others behind in ascending id order.
    std::vector<UniqueID> order;
    for (int i = 0; i < ordering->getCount(); ++i) order.push_back(ordering->getID(i));
    EXPECT_EQ(order, (std::vector<UniqueID>{idFor(7), idFor(4), idFor(1), idFor(2)}));
}

TEST_F(DatabaseTest, IteratorWalksBothWaysAndSurvivesRemoval) {
    OwnedPtr<Database> db = make(128, 10);
    for (int i : {30, 10, 20, 40}) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    OwnedPtr<Database::Iterator> walk = db->createIterator();
    EXPECT_EQ(walk->current()->getID(), idFor(10));
    EXPECT_EQ(walk->next()->getID(), idFor(10));
    EXPECT_EQ(walk->next()->getID(), idFor(20));
    // Removing the current record and adding one ahead: the walk goes on from where it stood.
    db->removeRecord(idFor(30));
    ASSERT_TRUE(db->addRecord(idFor(35), "x", 1));
    EXPECT_EQ(walk->next()->getID(), idFor(35));
    EXPECT_EQ(walk->prev()->getID(), idFor(40));
    EXPECT_EQ(walk->prev()->getID(), idFor(35));
    EXPECT_EQ(walk->next()->getID(), idFor(20));
    EXPECT_EQ(walk->next()->getID(), idFor(35));
    EXPECT_EQ(walk->next()->getID(), idFor(40));
    EXPECT_EQ(walk->next(), nullptr);
    EXPECT_EQ(walk->next(), nullptr);
}

TEST_F(DatabaseTest, BlockCursorStepsOverRuns) {
    OwnedPtr<Database> db = make(64, 6);
    ASSERT_TRUE(db->addRecord(idFor(1), pattern(100, 1).data(), 100));  // 3 blocks
    ASSERT_TRUE(db->addRecord(idFor(2), "x", 1));                       // 1 block
    std::vector<int> steps;
    for (auto cursor = db->blocksBegin(), end = db->blocksEnd(); cursor != end; ++cursor)
        steps.push_back(db->blockToOffset(*cursor) / 64);
    EXPECT_EQ(steps, (std::vector<int>{0, 3, 4, 5}));
}

TEST_F(DatabaseTest, ClearFreesEveryBlockAndKeepsTheFileSize) {
    OwnedPtr<Database> db = make(64, 10);
    DatabaseOrdering::createFile(dir.wide("db.idx"));
    OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("db.idx"));
    db->setOrdering(ordering, true);
    for (int i = 0; i < 5; ++i) ASSERT_TRUE(db->addRecord(idFor(i), pattern(50, i).data(), 50));
    ASSERT_TRUE(db->addRecord(Database::kInfoRecordID, "i", 1));
    const long size = fileSize();
    db->clear();
    EXPECT_EQ(db->getRecordCount(), 0);
    EXPECT_EQ(db->getFreeBlockCount(), db->getBlockCount());
    EXPECT_EQ(fileSize(), size);
    EXPECT_EQ(ordering->getCount(), 5) << "clear leaves the ordering alone";
    db->close();
    const auto bytes = fileBytes(dir.file("db"));
    EXPECT_TRUE(std::all_of(bytes.begin() + 44, bytes.end(), [](unsigned char b) { return b == 0; }));
}

TEST_F(DatabaseTest, RecordWithinFortyBytesOfTheGrowthFailsCleanly) {
    // growBlocks 1: for 100 bytes the growth is 100 / 64 + 1 = 2 blocks, but the record needs 3.
    OwnedPtr<Database> db = make(64, 1);
    EXPECT_EQ(db->newRecord(idFor(1), 100), nullptr);
    EXPECT_EQ(db->getBlockCount(), 2);
    EXPECT_EQ(db->getRecordCount(), 0);
    // Now two free blocks stand before the end, and the next growth completes the run.
    EXPECT_TRUE(db->addRecord(idFor(1), pattern(100, 1).data(), 100));
    EXPECT_EQ(db->getBlockCount(), 4);
    EXPECT_EQ(db->blockToOffset(db->findRecord(idFor(1))), 0);
}

TEST_F(DatabaseTest, FormatVersionIsStoredInPlace) {
    OwnedPtr<Database> db = make(256, 10);
    EXPECT_EQ(db->getFormatVersion(), 2);
    db->setFormatVersion(7);
    db->close();
    EXPECT_EQ(getInt(fileBytes(dir.file("db")), 24), 7);
}

TEST_F(DatabaseTest, SecondOpenerIsRefused) {
    OwnedPtr<Database> db = make(256, 10);
    EXPECT_EQ(thrownMessage([&] { Database::create(path, 10); }), u"Cannot open database");
    db->close();
    EXPECT_NO_THROW(OwnedPtr<Database>(Database::create(path, 10)));
}

TEST_F(DatabaseTest, ClosedDatabaseAnswersNothing) {
    OwnedPtr<Database> db = make(256, 10);
    ASSERT_TRUE(db->addRecord(idFor(1), "x", 1));
    db->close();
    EXPECT_EQ(db->findRecord(idFor(1)), nullptr);
    EXPECT_EQ(db->newRecord(idFor(2), 1), nullptr);
    EXPECT_FALSE(db->addRecord(idFor(2), "x", 1));
    db->clear();
    db->removeRecord(idFor(1));
}

// --- Damaged files --------------------------------------------------------------------------------

class DamagedDatabaseTest : public DatabaseTest {
protected:
    // A valid file with three records, as bytes to damage.
    std::vector<unsigned char> goodFile() {
        if (!mGood.empty()) return mGood;
        {
            OwnedPtr<Database> db = make(64, 8, "good");
            EXPECT_TRUE(db->addRecord(idFor(1), "a", 1));
            EXPECT_TRUE(db->addRecord(idFor(2), pattern(100, 2).data(), 100));
            EXPECT_TRUE(db->addRecord(idFor(3), "c", 1));
        }
        mGood = fileBytes(dir.file("good"));
        return mGood;
    }

    std::u16string openMessage(const std::vector<unsigned char>& bytes) {
        putBytes(dir.file("bad"), bytes);
        return thrownMessage([&] { OwnedPtr<Database> db = Database::create(dir.wide("bad"), 10); });
    }

    std::vector<unsigned char> mGood;
};

TEST_F(DamagedDatabaseTest, GoodFileOpens) {
    EXPECT_EQ(openMessage(goodFile()), u"");
}

TEST_F(DamagedDatabaseTest, MissingOrForeignFilesDoNotOpen) {
    EXPECT_EQ(thrownMessage([&] { Database::create(dir.wide("missing"), 10); }), u"Cannot open database");
    auto bytes = goodFile();
    bytes[3] = 'X';
    EXPECT_EQ(openMessage(bytes), u"Cannot open database");
    EXPECT_EQ(openMessage({}), u"Cannot open database");
    const auto good = goodFile();
    EXPECT_EQ(openMessage(std::vector<unsigned char>(good.begin(), good.begin() + 10)),
              u"Cannot open database");
    EXPECT_EQ(openMessage(std::vector<unsigned char>(good.begin(), good.begin() + 30)),
              u"Cannot open database");
}

TEST_F(DamagedDatabaseTest, BlockCountPastTheEndDoesNotOpen) {
    auto bytes = goodFile();
    putInt(bytes, 20, getInt(bytes, 20) + 1);
    EXPECT_EQ(openMessage(bytes), u"Cannot open database");
    putInt(bytes, 20, 0x7fffffff);
    EXPECT_EQ(openMessage(bytes), u"Cannot open database");
    putInt(bytes, 20, -1);
    EXPECT_EQ(openMessage(bytes), u"Cannot open database");
}

TEST_F(DamagedDatabaseTest, TruncatedBlocksDoNotOpen) {
    auto bytes = goodFile();
    bytes.resize(bytes.size() - 1);
    EXPECT_EQ(openMessage(bytes), u"Cannot open database");
}

TEST_F(DamagedDatabaseTest, BadBlockSizeDoesNotOpen) {
    for (int blockSize : {0, -64, 39, 1 << 30}) {
        auto bytes = goodFile();
        putInt(bytes, 16, blockSize);
        EXPECT_EQ(openMessage(bytes), u"Cannot open database") << blockSize;
    }
}

TEST_F(DamagedDatabaseTest, DataSizePastTheEndDoesNotOpen) {
    for (int size : {64 * 8, 0x7fffffff, -1, -0x7fffffff}) {
        auto bytes = goodFile();
        putInt(bytes, 44 + 28, size);
        EXPECT_EQ(openMessage(bytes), u"Cannot open database") << size;
    }
}

TEST_F(DamagedDatabaseTest, TrailingBytesBeyondTheBlocksAreIgnored) {
    auto bytes = goodFile();
    bytes.resize(bytes.size() + 17, 0xee);
    putBytes(dir.file("bad"), bytes);
    OwnedPtr<Database> db = Database::create(dir.wide("bad"), 10);
    EXPECT_EQ(db->getRecordCount(), 3);
    // The next growth starts from the header's block count, over the stray bytes.
    for (int i = 10; i < 20; ++i) ASSERT_TRUE(db->addRecord(idFor(i), "z", 1));
    db->close();
    db = Database::create(dir.wide("bad"), 10);
    EXPECT_EQ(db->getRecordCount(), 13);
}

TEST_F(DamagedDatabaseTest, EveryTruncationFailsCleanly) {
    const auto bytes = goodFile();
    for (std::size_t size = 0; size < bytes.size(); size += 7)
        EXPECT_EQ(
            openMessage(std::vector<unsigned char>(bytes.begin(), bytes.begin() + static_cast<long>(size))),
            u"Cannot open database")
            << size;
}

}  // namespace
