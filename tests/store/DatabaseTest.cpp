// The database and ordering files: their bytes, allocation, growth, the info record, orderings,
// iterators and damaged files; the id index rebuilt at open; and the journal: what survives the death of the
// writing process, what a journal left behind may and may not touch, and what a full disk or a full ordering
// does.

#include "orvanta/store/Database.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <tuple>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/DatabaseOrdering.h"
#include "orvanta/store/IdIndex.h"
#include "tests/store/StoreFixtures.h"
#include "tests/support/FaultyFileSystem.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

const std::u16string kOpens = u"(nothing thrown)", kCannot = u"Cannot open database";

// The number n of idFor(n), for small n.
int number(const UniqueID& id) {
    return id.asUUID().Data4[7];
}

// The records an iterator gives for steps of 'n' (next) and 'p' (prev), −1 for none; by default
// next to the end.
std::vector<int> steps(Database::Iterator* it, const std::string& moves = "") {
    std::vector<int> seen;
    for (std::size_t i = 0; moves.empty() || i < moves.size(); ++i) {
        Database::Record* record = moves.empty() || moves[i] == 'n' ? it->next() : it->prev();
        if (!record && moves.empty()) break;
        seen.push_back(record ? number(record->getID()) : -1);
    }
    return seen;
}

std::vector<int> walk(Database* db) {
    return steps(OwnedPtr<Database::Iterator>(db->createIterator()));
}

std::vector<int> order(DatabaseOrdering* ordering) {
    std::vector<int> numbers;
    for (int i = 0; i < ordering->getCount(); ++i) numbers.push_back(number(ordering->getID(i)));
    return numbers;
}

class DatabaseTest : public ::testing::Test {
protected:
    OwnedPtr<Database> make(int blockSize, int growBlocks, const std::string& name = "db") {
        path = dir.wide(name);
        EXPECT_TRUE(Database::createFile(path, blockSize, 2, 77));
        return Database::create(path, growBlocks);
    }
    OwnedPtr<DatabaseOrdering> makeOrdering() {
        EXPECT_TRUE(DatabaseOrdering::createFile(dir.wide("idx")));
        return DatabaseOrdering::create(dir.wide("idx"));
    }
    // What opening the file at name throws, as a database or as an ordering.
    std::u16string opens(const std::string& name, bool ordering = false) {
        return messageOf([&] {
            if (ordering) OwnedPtr<DatabaseOrdering>(DatabaseOrdering::create(dir.wide(name)));
            if (!ordering) OwnedPtr<Database>(Database::create(dir.wide(name), 30));
        });
    }

    TempDir dir;
    CString path;
};

TEST_F(DatabaseTest, FileMatchesTheLayoutBuiltByHand) {
    const UniqueID first(CString(u"00112233-4455-6677-8899-aabbccddeeff"));
    const std::string forty = pattern(40, 1);
    {
        OwnedPtr<Database> db = make(64, 4);
        ASSERT_TRUE(db->addRecord(first, "hello", 5) && db->addRecord(idFor(7), forty.data(), 40));
        ASSERT_TRUE(db->addRecord(Database::kInfoRecordID, "abc", 3));
        db->setFormatVersion(9);
    }
    // The header (the reserved argument is not stored), then one growth of 4 blocks of 64 bytes.
    std::string expected = std::string("###OrvantaDB###\0", 16) + std::string(28 + 4 * 64, '\0');
    putInt(expected, 16, 64);
    putInt(expected, 20, 4);
    putInt(expected, 24, 9);
    const auto head = [&](std::size_t block, const UniqueID& id, const std::string& payload) {
        putInt(expected, 44 + block * 64, 1);
        id.writeBytes(reinterpret_cast<unsigned char*>(expected.data() + 44 + block * 64 + 12));
        putInt(expected, 44 + block * 64 + 28, static_cast<int>(payload.size()));
        expected.replace(44 + block * 64 + 40, payload.size(), payload);
    };
    head(0, first, "hello");
    head(1, idFor(7), forty);  // 40 bytes exceed a first block's 24: the payload runs on into block 2
    head(3, Database::kInfoRecordID, "abc");  // (an id's byte order is PropertyValueTest's)
    EXPECT_EQ(readFileBytes(dir.file("db")), expected);
    EXPECT_FALSE(fs::exists(dir.file("db-journal"))) << "a clean close leaves the file alone";
    // Deleting writes the type word of each block (here payload bytes) and nothing else.
    OwnedPtr<Database>(Database::create(path, 4))->removeRecord(idFor(7));
    putInt(expected, 44 + 64, 0);
    putInt(expected, 44 + 128, 0);
    EXPECT_EQ(readFileBytes(dir.file("db")), expected);
    EXPECT_FALSE(Database::createFile(path, 64, 2, 0)) << "an existing file is never overwritten";
}

TEST_F(DatabaseTest, BlockRuleGrowthAndFirstFit) {
    OwnedPtr<Database> db = make(1024, 100);
    // 2008 bytes (984 + 1024) would fit 2 blocks; the rule gives 3.
    EXPECT_EQ(std::vector<int>({db->blocksForSize(984), db->blocksForSize(985), db->blocksForSize(2008)}),
              (std::vector<int>{1, 2, 3}));
    ASSERT_NE(db->newRecord(idFor(1), 10), nullptr);
    EXPECT_EQ(fs::file_size(dir.file("db")), 44u + 100 * 1024);
    // growBlocks 1: for 100 bytes in blocks of 64 the growth is 100 / 64 + 1 = 2 blocks, one short;
    // the next growth completes the run.
    db = make(64, 1, "small");
    EXPECT_EQ(db->newRecord(idFor(1), 100), nullptr);
    EXPECT_TRUE(db->addRecord(idFor(1), pattern(100, 1).data(), 100));
    EXPECT_EQ(db->getBlockCount(), 4);
    // Past eight steps the file grows by an eighth of its blocks: 2, 4, ... 16, then 18, 20, 22, 24,
    // 27, 30, 33, 37, 41.
    db = make(64, 2, "eighth");
    for (int i = 0; i < 40; ++i) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    EXPECT_EQ(db->getBlockCount(), 41);
    // From 2 MiB on, the file ends on a 2 MiB boundary with as many blocks as fit; the zeros after
    // the last block do not keep it from opening.
    db = make(1000, 2100, "large");
    ASSERT_TRUE(db->addRecord(idFor(1), "x", 1));
    EXPECT_EQ(fs::file_size(dir.file("large")), 4u << 20);
    EXPECT_EQ(db->getBlockCount(), ((4 << 20) - 44) / 1000);
    db = nullptr;
    db = Database::create(dir.wide("large"), 1);
    EXPECT_TRUE(db->hasRecord(idFor(1)));
    // First fit, within a word of 64 blocks and across words: with free runs of blocks 1-2, 4-8, 62-121
    // and 130-199, each allocation takes the lowest run long enough; a replaced record's blocks are
    // free for the very allocation that replaces it.
    db = make(64, 200, "fit");
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    for (int i = 0; i < 200; ++i)
        if (i == 1 || i == 2 || (i >= 4 && i <= 8) || (i >= 62 && i <= 121) || i >= 130)
            db->removeRecord(idFor(i));
    const std::tuple<int, int, int> allocations[] = {
        {300, 89, 4}, {301, 1, 1}, {300, 89, 4}, {302, 24 + 64 * 59 + 1, 130}, {303, 24 + 64 * 58 + 1, 62}};
    for (const auto& [id, size, block] : allocations) {
        ASSERT_NE(db->newRecord(idFor(id), size), nullptr);
        EXPECT_EQ(db->blockToOffset(db->findRecord(idFor(id))), block * 64) << id;
    }
}

TEST_F(DatabaseTest, InfoRecordIsStoredButNeitherCountedNorOrdered) {
    OwnedPtr<Database> db = make(128, 10);
    for (int i : {1, 0, 2, 3}) ASSERT_TRUE(db->addRecord(i ? idFor(i) : Database::kInfoRecordID, "abc", i));
    EXPECT_EQ(db->getRecordCount(), 3);
    EXPECT_EQ(walk(db), (std::vector<int>{1, 2, 3}));
    // By position the count leaves the info record out while the positions hold it: past its place
    // the record behind it comes twice and the last is out of reach.
    std::vector<int> at;
    for (int i = -1; i <= 3; ++i) at.push_back(db->getRecord(i) ? number(db->getRecord(i)->getID()) : -1);
    EXPECT_EQ(at, (std::vector<int>{-1, 1, 2, 2, -1}));
    OwnedPtr<DatabaseOrdering> ordering = makeOrdering();
    db->setOrdering(ordering, true);
    EXPECT_EQ(order(ordering), (std::vector<int>{1, 2, 3}));
    // Clearing frees every block, keeps the file's size and leaves the ordering alone.
    const auto size = fs::file_size(dir.file("db"));
    db->clear();
    EXPECT_EQ(db->getFreeBlockCount(), db->getBlockCount());
    EXPECT_EQ(ordering->getCount(), 3);
    db->close();
    EXPECT_EQ(readFileBytes(dir.file("db")).substr(44), std::string(size - 44, '\0'));
}

TEST_F(DatabaseTest, OrderingIsRepairedFollowsChangesAndIsWalkedBothWays) {
    OwnedPtr<Database> db = make(128, 10);
    for (int i : {4, 1, 7, 2, 5}) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    OwnedPtr<DatabaseOrdering> ordering = makeOrdering();
    for (int i : {7, 99, 4, 98}) ordering->append(idFor(i));
    // Repair: known ids in their known order, the others behind in ascending id order.
    db->setOrdering(ordering, true);
    EXPECT_EQ(order(ordering), (std::vector<int>{7, 4, 1, 2, 5}));
    EXPECT_EQ(number(db->getRecord(0)->getID()), 7);
    // A replaced record leaves and re-enters the ordering: it goes to the end.
    ASSERT_TRUE(db->addRecord(idFor(4), "y", 1));
    db->removeRecord(idFor(1));
    EXPECT_EQ(walk(db), (std::vector<int>{7, 2, 5, 4}));
    // Out of step (ids 7, 5 and 9 without a record): both ways step over them, the walk ends where the
    // ordering does, and off either end it is done.
    db->setOrdering(nullptr, false);
    for (int i : {7, 5}) db->removeRecord(idFor(i));
    ASSERT_TRUE(db->addRecord(idFor(3), "z", 1));
    for (int i : {9, 3}) ordering->append(idFor(i));
    db->setOrdering(ordering, false);
    OwnedPtr<Database::Iterator> it = db->createIterator();
    EXPECT_EQ(number(it->current()->getID()), 2);
    EXPECT_EQ(steps(it, "nnpppn"), (std::vector<int>{2, 4, 4, 2, -1, -1}));
    EXPECT_EQ(walk(db), (std::vector<int>{2, 4, 3}));
}

TEST_F(DatabaseTest, IdWalkGoesOnFromWhereItStoodAcrossChanges) {
    OwnedPtr<Database> db = make(128, 10);
    for (int i : {30, 10, 20, 40}) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    OwnedPtr<Database::Iterator> it = db->createIterator();
    EXPECT_EQ(steps(it, "nn"), (std::vector<int>{10, 20}));
    db->removeRecord(idFor(30));  // the current record
    ASSERT_TRUE(db->addRecord(idFor(35), "x", 1));
    EXPECT_EQ(steps(it, "nppnnnn"), (std::vector<int>{35, 40, 35, 20, 35, 40, -1}));
    EXPECT_EQ(steps(OwnedPtr<Database::Iterator>(db->createIterator()), "pp"), (std::vector<int>{10, -1}));
    // Read again from the file, random ids come in ascending order: the order of the ids' bytes.
    std::vector<UniqueID> ids = {idFor(10), idFor(20), idFor(35), idFor(40)};
    for (int i = 0; i < 200; ++i) ASSERT_TRUE(db->addRecord(ids.emplace_back(UniqueID::create()), "r", 1));
    std::sort(ids.begin(), ids.end());
    db->close();
    db = Database::create(path, 10);
    it = db->createIterator();
    for (const UniqueID& id : ids) ASSERT_EQ(it->next()->getID(), id);
}

TEST_F(DatabaseTest, DamagedOrBusyFilesDoNotOpen) {
    {
        OwnedPtr<Database> db = make(64, 8, "good");
        for (int i : {1, 2, 3})
            ASSERT_TRUE(db->addRecord(idFor(i), pattern(100, 2).data(), i == 2 ? 100 : 1));
        EXPECT_EQ(opens("good"), kCannot);
        EXPECT_EQ(Database::explainOpenFailure(path), CString(u"it is open in another program"));
    }
    const std::string good = readFileBytes(dir.file("good"));
    std::string index = std::string("##OrvantaDBI###", 16) + std::string(1616, '\0');
    putInt(index, 16, 3);
    const auto with = [](std::string bytes, std::size_t at, std::int32_t value) {
        putInt(bytes, at, value);
        return bytes;
    };
    std::vector<std::string> files = {"###OrvantaDB###", "X" + good.substr(1)};
    std::vector<std::string> indexes = {"X" + index.substr(1), index.substr(0, 20), ""};
    for (int v : {9, 0x7fffffff, -1}) files.push_back(with(good, 20, v));    // blocks past the end
    for (int v : {0, -64, 39, 1 << 30}) files.push_back(with(good, 16, v));  // block size
    for (int v : {512, 0x7fffffff, -1}) files.push_back(with(good, 72, v));  // a record past the end
    for (std::size_t size = 0; size < good.size(); size += 7) files.push_back(good.substr(0, size));
    for (int v : {101, -1}) indexes.push_back(with(index, 16, v));  // more ids than the file holds
    for (const auto& [bytes, ordering] : {std::pair{&files, false}, std::pair{&indexes, true}})
        for (const auto& file : *bytes) {
            writeFileBytes(dir.file("bad"), file);
            EXPECT_EQ(opens("bad", ordering), ordering ? kCannot + u" index" : kCannot) << file.size();
        }
    writeFileBytes(dir.file("bad"), with(index.substr(0, 32), 16, 0));
    EXPECT_EQ(opens("bad", true), kOpens) << "room for no id";
    // Bytes beyond the counted blocks are ignored, and the next growth writes over them.
    writeFileBytes(dir.file("bad"), good + std::string(17, '\xee'));
    EXPECT_TRUE(OwnedPtr<Database>(Database::create(dir.wide("bad"), 1))
                    ->addRecord(idFor(4), pattern(200, 1).data(), 200));
    EXPECT_EQ(OwnedPtr<Database>(Database::create(dir.wide("bad"), 1))->getRecordCount(), 4);
}

// A file of several megabytes, whose length is no multiple of the 2 MiB pages it is mapped on and
// which has bytes past its last block, opens with every record as written; a record head damaged far
// into it, its run reaching past the last block, keeps the file closed.
TEST_F(DatabaseTest, ALargeFileOfAnyLengthOpensWholeAndDamageFarInKeepsItClosed) {
    std::map<int, std::string> written;
    {
        OwnedPtr<Database> db = make(1024, 100, "large");
        std::mt19937 random(5);
        for (int n = 1; n <= 2500; ++n) {
            written[n] = pattern(1 + static_cast<int>(random() % 3000), n);
            ASSERT_TRUE(db->addRecord(idFor(n), written[n].data(), static_cast<int>(written[n].size())));
        }
        for (int n = 3; n <= 2500; n += 7) {
            db->removeRecord(idFor(n));
            written.erase(n);
        }
    }
    std::string bytes = readFileBytes(dir.file("large")) + std::string(4097, '\x11');
    ASSERT_GT(bytes.size(), 4u << 20);
    ASSERT_NE(0u, bytes.size() % (2u << 20));
    writeFileBytes(dir.file("large"), bytes);
    {
        OwnedPtr<Database> db = Database::create(dir.wide("large"), 100);
        ASSERT_EQ(static_cast<int>(written.size()), db->getRecordCount());
        for (const auto& [n, payload] : written) ASSERT_EQ(payload, payloadOf(db->getRecord(idFor(n)))) << n;
    }
    // The last record's head, found by its id: its size now runs past the last block.
    unsigned char id[16];
    idFor(2500).writeBytes(id);
    const std::size_t head = bytes.rfind(std::string(reinterpret_cast<char*>(id), 16)) - 12;
    ASSERT_GT(head, 4u << 20);
    putInt(bytes, head + 28, 1 << 24);
    writeFileBytes(dir.file("large"), bytes);
    EXPECT_EQ(kCannot, opens("large"));
}

TEST_F(DatabaseTest, OrderingFileLayoutGrowthAndMoves) {
    {
        OwnedPtr<DatabaseOrdering> ordering = makeOrdering();
        EXPECT_EQ(readFileBytes(dir.file("idx")),
                  std::string("##OrvantaDBI###", 16) + std::string(1616, '\0'));
        EXPECT_FALSE(DatabaseOrdering::createFile(dir.wide("idx")));
        EXPECT_EQ(opens("idx", true), kCannot + u" index") << "a second opener";
        for (int i = 0; i < 101; ++i) ordering->append(idFor(i));  // the 101st doubles the capacity
        ordering->append(UniqueID());                              // the null id never enters
        ordering->remove(idFor(1));
    }
    std::string expected = std::string("##OrvantaDBI###", 16) + std::string(16 + 16 * 200, '\0');
    putInt(expected, 16, 100);
    for (int i = 0; i < 101; ++i)  // the old last id stays behind the live ones
        idFor(i < 100 ? i + (i > 0) : 100)
            .writeBytes(reinterpret_cast<unsigned char*>(expected.data()) + 32 + 16 * i);
    EXPECT_EQ(readFileBytes(dir.file("idx")), expected);
    // Moves read the target in the numbering before the removal; an unknown id is inserted.
    OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("idx"));
    ordering->clear();
    for (int i = 0; i < 7; ++i) ordering->insert(i, idFor(i));
    // clang-format off
    const std::tuple<int, int, int, std::vector<int>> moves[] = {
        {1, 4, 3, {0, 2, 3, 1, 4, 5, 6}}, {5, 2, 2, {0, 2, 5, 3, 1, 4, 6}}, {9, 1, 1, {0, 9, 2, 5, 3, 1, 4, 6}},
        {8, 50, 8, {0, 9, 2, 5, 3, 1, 4, 6, 8}}};
    // clang-format on
    for (const auto& [id, target, result, after] : moves) {
        EXPECT_EQ(ordering->move(idFor(id), target, false), result) << id;
        EXPECT_EQ(order(ordering), after) << id;
    }
    EXPECT_EQ(ordering->move(UniqueID(), 2, false), -1);
}

// --- The id index, against a plain ordered map, with keys that tie on their high halves so that its
// chunks split and fold ----------------------------------------------------------------------------

using Model = std::map<std::pair<std::uint64_t, std::uint64_t>, int>;

// The index walked forwards holds what the model holds, and walked back from the end too.
void expectSame(const IdIndex& index, const Model& model) {
    ASSERT_EQ(index.size(), model.size());
    std::vector<std::int32_t> offsets;
    for (const auto& entry : model) offsets.push_back(entry.second);
    auto position = index.begin();
    std::size_t i = 0;
    for (const auto& [key, offset] : model) {
        ASSERT_FALSE(index.atEnd(position));
        EXPECT_TRUE(index.at(position).key == (IdIndex::Key{key.first, key.second}));
        EXPECT_EQ(index.at(position).offset, offset);
        // A jump of any length, within a chunk, to its end, across several, or past the last key.
        for (const std::size_t jump : {std::size_t(1), std::size_t(IdIndex::kChunkSize), std::size_t(300)}) {
            const auto ahead = index.advance(position, jump);
            if (i + jump < offsets.size())
                EXPECT_EQ(index.at(ahead).offset, offsets[i + jump]) << i << "+" << jump;
            else
                EXPECT_TRUE(index.atEnd(ahead)) << i << "+" << jump;
        }
        position = index.next(position);
        ++i;
    }
    EXPECT_TRUE(index.atEnd(position));
    for (auto it = model.rbegin(); it != model.rend(); ++it) {
        ASSERT_TRUE(index.previous(position));
        EXPECT_EQ(index.at(position).offset, it->second);
    }
    EXPECT_FALSE(index.previous(position));
}

TEST(IdIndexTest, AgreesWithAnOrderedMap) {
    std::mt19937_64 random(7);
    IdIndex index;
    Model model;
    std::vector<IdIndex::Entry> entries;
    for (int step = 0; step < 20000; ++step) {
        const int action = static_cast<int>(random() % 10);
        // Few distinct high halves, so that keys tie on them and chunks split and fold.
        const IdIndex::Key key = action < 6 || entries.empty() ? IdIndex::Key{random() % 64, random()}
                                                               : entries[random() % entries.size()].key;
        const auto found = model.find({key.hi, key.lo});
        if (action < 6) {
            entries.push_back(IdIndex::Entry{key, step});
            index.assign(key, step);
            model[{key.hi, key.lo}] = step;
        } else if (action < 8) {
            EXPECT_EQ(index.erase(key), model.erase({key.hi, key.lo}) > 0);
        } else {
            EXPECT_EQ(index.find(key), found == model.end() ? -1 : found->second);
        }
    }
    expectSame(index, model);
    // A rebuild from every entry ever assigned, some keys many times: the highest offset wins.
    for (const IdIndex::Entry& entry : entries) model[{entry.key.hi, entry.key.lo}] = entry.offset;
    index.build(entries);
    expectSame(index, model);
    for (const IdIndex::Entry& entry : entries) index.erase(entry.key);
    expectSame(index, Model());
}

// --- The journal ---------------------------------------------------------------------------------

constexpr int kIds = 120;

// Version v of record i: its number and version, then bytes of a size (empty to several blocks) and
// content that depend on both.
std::string payloadFor(int i, int version) {
    std::string bytes = pattern(8 + (i * 7919 + version * 104729) % 1400, i * 1000 + version);
    putInt(bytes, 0, i);
    putInt(bytes, 4, version);
    return bytes;
}

bool store(Database* db, int i, int version) {
    const std::string bytes = payloadFor(i, version);
    return db->addRecord(idFor(i), bytes.data(), static_cast<int>(bytes.size()));
}

// The version record i holds, 0 when absent, −1 when its bytes are not those of any version.
int versionIn(Database* db, int i) {
    Database::Record* record = db->findRecord(idFor(i));
    const std::string bytes = record ? payloadOf(record) : std::string(8, '\0');
    int version = -1;
    if (bytes.size() >= 8) std::memcpy(&version, bytes.data() + 4, 4);
    return !record ? 0 : version > 0 && version < 1000000 && bytes == payloadFor(i, version) ? version : -1;
}

// The contents of the files in dir whose name starts with name.
std::vector<std::string> filesNamed(const TempDir& dir, const std::string& name) {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator(dir.path()))
        if (entry.path().filename().string().rfind(name, 0) == 0)
            found.push_back(readFileBytes(entry.path()));
    return found;
}

// The writer: adds, replaces and now and then removes records, and reports on the pipe each change
// whose call has returned. Never returns.
[[noreturn]] void runWriter(const CString& path, int pipe, unsigned seed) {
    std::mt19937 random(seed);
    OwnedPtr<Database> db = Database::create(path, 20);
    for (;;) {
        int change[2] = {static_cast<int>(random() % kIds), 0};  // record, new version (0: removed)
        if (random() % 8 != 0) change[1] = std::max(versionIn(db, change[0]), 0) + 1;
        if (change[1] == 0) db->removeRecord(idFor(change[0]));
        if (change[1] != 0 && !store(db, change[0], change[1])) _exit(3);
        if (write(pipe, change, sizeof change) != sizeof change) _exit(4);
    }
}

TEST_F(DatabaseTest, KilledWriterLosesNothingAcknowledged) {
    make(256, 20);
    std::map<int, int> acked;  // record -> version, 0 for removed
    std::mt19937 random(20261121);
    int reports = 0, fds[2], change[2], status = 0;
    for (int round = 0; round < 40; ++round) {
        ASSERT_EQ(pipe(fds), 0);
        const pid_t child = fork();
        if (child == 0) runWriter(path, fds[1], static_cast<unsigned>(round));
        close(fds[1]);
        // Most rounds kill the writer in the middle of its changes, a few while it may still be
        // opening the file (and replaying the journal the last round left).
        if (round % 5 != 0 && read(fds[0], change, sizeof change) == sizeof change)
            acked[change[0]] = change[1];
        usleep(static_cast<useconds_t>(random() % (round % 5 ? 8000 : 3000)));
        kill(child, SIGKILL);
        ASSERT_TRUE(waitpid(child, &status, 0) == child && WIFSIGNALED(status)) << "it stopped itself";
        for (; read(fds[0], change, sizeof change) == sizeof change; ++reports) acked[change[0]] = change[1];
        close(fds[0]);
        OwnedPtr<Database> db = Database::create(path, 20);
        ASSERT_TRUE(filesNamed(dir, "db-journal.").empty()) << "a journal of this file unrecognized";
        // Every acked change is there, whole; the one change in flight is whole or not at all.
        for (int i = 0, inFlight = 0; i < kIds; ++i) {
            const int found = versionIn(db, i), known = acked[i];
            ASSERT_NE(found, -1) << "record " << i << " damaged after round " << round;
            if (found == known) continue;
            EXPECT_TRUE((found == 0 || found == known + 1) && ++inFlight == 1) << i << ", " << round;
            acked[i] = found;
        }
    }
    EXPECT_GT(reports, 200) << "the writer did too little work to tell";
}

// Runs body in a child that then dies without closing anything, as a killed process would.
void dieAfter(const std::function<void()>& body) {
    const pid_t child = fork();
    if (child == 0) body(), _exit(0);
    int status = 0;
    ASSERT_TRUE(waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

class DatabaseJournalTest : public DatabaseTest {
protected:
    void SetUp() override {
        OwnedPtr<Database> db = make(128, 30);
        for (int i = 0; i < 10; ++i) ASSERT_TRUE(store(db, i, 1));
        fs::create_directory(dir.file("elsewhere"));
        fs::create_symlink(dir.file("db"), dir.file("alias"));
        fs::create_hard_link(dir.file("db"), dir.file("link"));
    }

    // Leaves the journal of a change begun and never finished: "replace" rewrites record 3 in place
    // and dies halfway through its payload, having opened the file by name ("relative": as "db" in
    // its folder, and then gone to work in another). A clear or a freeing of record 4 cannot be
    // stopped from outside: their journal, finished, is armed again and the file is put back as it
    // was before the change (then, for a clear, zeroed up to block clearedTo): the state a process
    // killed at that point leaves.
    void interrupt(const std::string& change, int clearedTo = 0, const std::string& name = "db") {
        std::string file = readFileBytes(dir.file("db"));
        dieAfter([&] {
            const bool relative = name == "relative" && chdir(dir.path().c_str()) == 0;
            Database* db = Database::create(relative ? CString(u"db") : dir.wide(name), 30);  // never closed
            if (relative && chdir(dir.file("elsewhere").c_str()) != 0) _exit(6);
            if (change == "clear") return db->clear();
            if (change == "free") return db->removeRecord(idFor(4));
            const int offset = db->blockToOffset(db->findRecord(idFor(3))),
                      size = int(payloadFor(3, 1).size());
            Database::Record* record = db->newRecord(idFor(3), size);
            if (!record || db->blockToOffset(record) != offset) _exit(5);
            std::memset(record->getDataBytes(), 0xab, size / 2);
        });
        if (change == "replace") return;
        std::string journal = readFileBytes(dir.file("db-journal"));
        putInt(journal, 16, change == "clear" ? 3 : 2);
        writeFileBytes(dir.file("db-journal"), journal);
        std::fill(file.begin() + 44, file.begin() + 44 + clearedTo * 128, '\0');
        writeFileBytes(dir.file("db"), file);
    }
};

// The journal is found whichever name the file was opened by: a symbolic link, a hard link in the
// same folder, a relative path followed by a change of working folder.
TEST_F(DatabaseJournalTest, ChangeInFlightIsUndoneOrFinished) {
    std::vector<int> intact(10, 1), freed = intact, cleared(10, 0);  // records 0 to 9 after the next open
    freed[4] = 0;
    // clang-format off
    const std::tuple<const char*, int, std::vector<int>, const char*> cases[] = {
        {"replace", 0, intact, "db"},   {"replace", 0, intact, "alias"}, {"replace", 0, intact, "link"},
        {"replace", 0, intact, "relative"}, {"free", 0, freed, "db"},   {"clear", 0, cleared, "db"},
        {"clear", 5, cleared, "db"},    {"clear", 40, cleared, "db"}};
    // clang-format on
    for (const auto& [change, clearedTo, expected, name] : cases) {
        SCOPED_TRACE(std::string(change) + " " + std::to_string(clearedTo) + " " + name);
        interrupt(change, clearedTo, name);
        OwnedPtr<Database> db = Database::create(path, 30);
        for (int i = 0; i < 10; ++i) EXPECT_EQ(versionIn(db, i), expected[static_cast<std::size_t>(i)]) << i;
        EXPECT_TRUE(filesNamed(dir, "db-journal").empty()) << "the journal goes once replayed";
        for (int i = 0; i < 10; ++i) ASSERT_TRUE(store(db, i, 1));
    }
}

TEST_F(DatabaseJournalTest, StaleJournalIsSetAsideAndTheFileOpensAsItStands) {
    const std::string backup = readFileBytes(dir.file("db"));
    for (int i = 20; i < 25; ++i) ASSERT_TRUE(store(OwnedPtr<Database>(Database::create(path, 30)), i, 1));
    const std::string current = readFileBytes(dir.file("db"));
    const auto put = [&](const std::string& name, const std::string& bytes) {
        writeFileBytes(dir.file(name), bytes);
    };
    const std::function<void()> ways[] = {
        [&] { put("db", backup); },  // restored from a backup
        [&] { put("copy", current), fs::rename(dir.file("copy"), dir.file("db")); },  // replaced by a copy
        [&] {
            put("db-journal", readFileBytes(dir.file("db-journal")).replace(44, 4, 4, '\0'));
        }};  // an older version's
    for (int i = 0; i < 7; ++i) {
        const char* change = i < 6 ? std::array{"replace", "free", "clear"}[i / 2] : "replace";
        SCOPED_TRACE(std::string(change) + " " + std::to_string(i));
        put("db", current);
        interrupt(change);
        ways[i < 6 ? i % 2 : 2]();
        const std::string journal = readFileBytes(dir.file("db-journal")),
                          standing = readFileBytes(dir.file("db"));
        EXPECT_EQ(opens("db"), kOpens);
        EXPECT_EQ(readFileBytes(dir.file("db")), standing) << "a stale journal was replayed";
        const auto aside = filesNamed(dir, "db-journal.");
        EXPECT_EQ(aside.size(), static_cast<std::size_t>(i + 1));
        EXPECT_NE(std::find(aside.begin(), aside.end(), journal), aside.end()) << "set aside whole";
    }
}

// A process killed while making its journal leaves an empty file or one page of a header begun:
// never armed, so the next open takes it as its own and the file opens whole. A page that holds
// anything else is still refused.
TEST_F(DatabaseJournalTest, JournalLeftUnfinishedByItsMakerIsTakenOver) {
    const std::string current = readFileBytes(dir.file("db"));
    const std::string magic = "##OrvantaDBJ###";
    const std::pair<std::string, bool> cases[] = {
        {"", true},
        {std::string(4096, '\0'), true},
        {magic.substr(0, 5) + std::string(4091, '\0'), true},
        {magic + '\0' + std::string(28, '\0') + "\x01" + std::string(4051, '\0'), true},
        {"##OrvantaDBJ##X" + std::string(4081, '\0'), false},
        {std::string(4095, '\0') + "x", false}};
    for (const auto& [bytes, taken] : cases) {
        SCOPED_TRACE(bytes.size());
        writeFileBytes(dir.file("db-journal"), bytes);
        EXPECT_EQ(opens("db"), taken ? kOpens : kCannot);
        EXPECT_EQ(filesNamed(dir, "db-journal").empty(), taken);
        EXPECT_EQ(readFileBytes(dir.file("db")), current);
        fs::remove(dir.file("db-journal"));
    }
}

// Something that is not a journal in its place keeps the file closed (the explanations, for it and
// for a journal another program holds, are DbCommandTest's), and it is neither removed nor truncated,
// neither at open nor when it appears while the database is open (changes then go unjournaled).
TEST_F(DatabaseJournalTest, JournalThatCannotBeHandledKeepsTheFileClosed) {
    const std::string foreign(5000, '\x7f');
    writeFileBytes(dir.file("db-journal"), foreign);
    EXPECT_EQ(opens("db"), kCannot);
    EXPECT_EQ(readFileBytes(dir.file("db-journal")), foreign);
    fs::remove(dir.file("db-journal"));
    OwnedPtr<Database> db = Database::create(path, 30);
    writeFileBytes(dir.file("db-journal"), foreign);
    EXPECT_TRUE(store(db, 5, 2));
    db->close();
    EXPECT_EQ(readFileBytes(dir.file("db-journal")), foreign);
}

TEST_F(DatabaseJournalTest, FullDiskOrFullOrderingRefuseNewRecordsAndKeepTheRest) {
    OwnedPtr<Database> db = Database::create(path, 30);
    ASSERT_TRUE(db->grow(0));  // free blocks at the end for what follows
    const auto size = fs::file_size(dir.file("db"));
    const std::string big = pattern(40000, 1);
    {
        FaultyFileSystem disk;
        disk.failWritesAfter(1000);  // the disk fills up in the middle of the growth
        EXPECT_FALSE(db->addRecord(idFor(70), big.data(), 40000));
        EXPECT_EQ(fs::file_size(dir.file("db")), size);
        EXPECT_TRUE(db->addRecord(idFor(71), "small", 5)) << "what fits the free blocks still goes in";
    }
    EXPECT_TRUE(db->addRecord(idFor(70), big.data(), 40000));
    // An ordering that cannot grow throws before anything of the new record is written.
    OwnedPtr<DatabaseOrdering> ordering = makeOrdering();
    db->setOrdering(ordering, true);
    for (int i = 100; i < 188; ++i) ASSERT_TRUE(db->addRecord(idFor(i), "x", 1));
    ASSERT_EQ(ordering->getCount(), ordering->getCapacity());
    {
        FaultyFileSystem disk;
        disk.failWritesAfter(0);
        EXPECT_EQ(messageOf([&] { db->newRecord(idFor(500), 10); }),
                  u"Cannot add more records to database index");
    }
    EXPECT_TRUE(db->addRecord(idFor(501), "y", 1));  // the next change commits nothing of the failed one
    db->close();
    db = Database::create(path, 30);
    for (int i = 0; i < 10; ++i) EXPECT_EQ(versionIn(db, i), 1) << i;
    EXPECT_FALSE(db->hasRecord(idFor(500)));
    EXPECT_EQ(db->getRecordCount(), 101);
    EXPECT_EQ(ordering->getCount(), 101);
}

}  // namespace
