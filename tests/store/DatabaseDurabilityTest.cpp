// What survives the death of the writing process, and what a full disk does to the database.

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <random>

#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/store/Database.h"
#include "tests/store/StoreFixtures.h"
#include "tests/support/FaultyFileSystem.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

constexpr int kIds = 120;

// The payload of version v of record i: its id number and version, then bytes of a size and content
// that both depend on them, from empty to several blocks.
std::vector<unsigned char> payloadFor(int i, int version) {
    const int size = 8 + (i * 7919 + version * 104729) % 1400;
    std::vector<unsigned char> bytes = pattern(size, i * 1000 + version);
    std::memcpy(bytes.data(), &i, 4);
    std::memcpy(bytes.data() + 4, &version, 4);
    return bytes;
}

// The version a record holds, 0 when absent, −1 when its bytes are not those of any version.
int versionIn(Database* db, int i) {
    Database::Record* record = db->findRecord(idFor(static_cast<std::uint32_t>(i)));
    if (!record) return 0;
    if (record->getDataSize() < 8) return -1;
    int version;
    std::memcpy(&version, record->getDataBytes() + 4, 4);
    if (version < 1 || version > 1000000) return -1;
    const auto expected = payloadFor(i, version);
    if (record->getDataSize() != static_cast<int>(expected.size()) ||
        !std::equal(expected.begin(), expected.end(), record->getDataBytes()))
        return -1;
    return version;
}

// A writer's report: the change it is about to make to record id (its new version, 0 for a removal),
// and then the same report with done set once the call that made it has returned.
struct Report {
    int id;
    int version;
    int done;
};

// The writer: adds, replaces and now and then removes records, reporting each change on the pipe
// before and after. Never returns.
[[noreturn]] void runWriter(const CString& path, int pipe, unsigned seed) {
    std::mt19937 random(seed);
    OwnedPtr<Database> db = Database::create(path, 20);
    int versions[kIds];
    for (int i = 0; i < kIds; ++i) versions[i] = versionIn(db, i);
    for (;;) {
        const int i = static_cast<int>(random() % kIds);
        Report report{i, random() % 8 == 0 ? 0 : std::max(versions[i], 0) + 1, 0};
        if (write(pipe, &report, sizeof report) != sizeof report) _exit(4);
        if (report.version == 0) {
            db->removeRecord(idFor(static_cast<std::uint32_t>(i)));
        } else {
            const auto bytes = payloadFor(i, report.version);
            if (!db->addRecord(idFor(static_cast<std::uint32_t>(i)), bytes.data(),
                               static_cast<int>(bytes.size())))
                _exit(3);
        }
        versions[i] = report.version;
        report.done = 1;
        if (write(pipe, &report, sizeof report) != sizeof report) _exit(4);
    }
}

TEST(DatabaseDurabilityTest, KilledWriterLosesNothingAcknowledged) {
    TempDir dir;
    const CString path = dir.wide("db");
    ASSERT_TRUE(Database::createFile(path, 256, 2, 0));
    std::map<int, int> acknowledged;  // id number -> version, 0 for removed
    std::mt19937 random(20261121);
    int totalReports = 0;
    for (int round = 0; round < 40; ++round) {
        int fds[2];
        ASSERT_EQ(pipe(fds), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(fds[0]);
            runWriter(path, fds[1], static_cast<unsigned>(round));
        }
        close(fds[1]);
        Report pending{-1, 0, 0};  // the change begun and not yet reported done
        int reports = 0;
        const auto take = [&](const Report& report) {
            if (report.done) {
                acknowledged[report.id] = report.version;
                pending.id = -1;
                ++reports;
            } else {
                pending = report;
            }
        };
        Report report;
        // Most rounds kill the writer in the middle of its changes, a few while it may still be
        // opening the file (and replaying the journal the last round left).
        if (round % 5 != 0) {
            while (reports == 0 && read(fds[0], &report, sizeof report) == sizeof report) take(report);
            usleep(static_cast<useconds_t>(random() % 8000));
        } else {
            usleep(static_cast<useconds_t>(random() % 3000));
        }
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer stopped by itself: status " << status;
        while (read(fds[0], &report, sizeof report) == sizeof report) take(report);
        close(fds[0]);
        totalReports += reports;

        OwnedPtr<Database> db = Database::create(path, 20);
        // Every acknowledged change is there, whole; the change in flight is either whole or not at all.
        for (int i = 0; i < kIds; ++i) {
            const int found = versionIn(db, i);
            ASSERT_NE(found, -1) << "record " << i << " damaged after round " << round;
            const auto known = acknowledged.find(i);
            const int expected = known == acknowledged.end() ? 0 : known->second;
            if (i == pending.id && found == pending.version) {
                acknowledged[i] = found;
                continue;
            }
            ASSERT_EQ(found, expected) << "record " << i << " after round " << round;
        }
    }
    EXPECT_GT(totalReports, 200) << "the writer did too little work to tell";
}

// Runs body in a child that then dies without closing anything, as a killed process would. The body
// opens its database with a plain pointer, so that nothing closes it on the way out.
template <typename Body>
void dieAfter(Body body) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        body();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

class InterruptedChangeTest : public ::testing::Test {
protected:
    void SetUp() override {
        path = dir.wide("db");
        ASSERT_TRUE(Database::createFile(path, 128, 2, 0));
        OwnedPtr<Database> db = Database::create(path, 30);
        for (int i = 0; i < 10; ++i) {
            const auto bytes = payloadFor(i, 1);
            ASSERT_TRUE(db->addRecord(idFor(static_cast<std::uint32_t>(i)), bytes.data(),
                                      static_cast<int>(bytes.size())));
        }
    }

    void expectAllIntact(Database* db) {
        for (int i = 0; i < 10; ++i) EXPECT_EQ(versionIn(db, i), 1) << i;
    }

    TempDir dir;
    CString path;
};

TEST_F(InterruptedChangeTest, ReplacementInPlaceIsUndone) {
    dieAfter([&] {
        Database* db = Database::create(path, 30);
        const int size = static_cast<int>(payloadFor(3, 1).size());
        const int before = db->blockToOffset(db->findRecord(idFor(3)));
        Database::Record* record = db->newRecord(idFor(3), size);
        if (!record || db->blockToOffset(record) != before) _exit(5);
        std::memset(record->getDataBytes(), 0xab, static_cast<std::size_t>(size) / 2);
    });
    EXPECT_TRUE(std::filesystem::exists(dir.file("db-journal")));
    OwnedPtr<Database> db = Database::create(path, 30);
    expectAllIntact(db);
    EXPECT_EQ(db->getRecordCount(), 10);
    EXPECT_FALSE(std::filesystem::exists(dir.file("db-journal"))) << "the journal goes once replayed";
}

TEST_F(InterruptedChangeTest, ReplacementElsewhereIsUndone) {
    dieAfter([&] {
        Database* db = Database::create(path, 30);
        Database::Record* record = db->newRecord(idFor(4), 2000);  // larger: a new run at the end
        if (!record) _exit(5);
        std::memset(record->getDataBytes(), 0xcd, 2000);
    });
    OwnedPtr<Database> db = Database::create(path, 30);
    expectAllIntact(db);
    EXPECT_EQ(db->getRecordCount(), 10);
}

TEST_F(InterruptedChangeTest, NewRecordNotCommittedIsGone) {
    dieAfter([&] {
        Database* db = Database::create(path, 30);
        Database::Record* record = db->newRecord(idFor(50), 700);
        if (!record) _exit(5);
        std::memset(record->getDataBytes(), 0xef, 300);
    });
    OwnedPtr<Database> db = Database::create(path, 30);
    expectAllIntact(db);
    EXPECT_FALSE(db->hasRecord(idFor(50)));
    EXPECT_EQ(db->getRecordCount(), 10);
}

TEST_F(InterruptedChangeTest, CommittedRecordSurvives) {
    dieAfter([&] {
        Database* db = Database::create(path, 30);
        const auto bytes = payloadFor(60, 1);
        Database::Record* record = db->newRecord(idFor(60), static_cast<int>(bytes.size()));
        if (!record) _exit(5);
        std::memcpy(record->getDataBytes(), bytes.data(), bytes.size());
        db->commit();
    });
    OwnedPtr<Database> db = Database::create(path, 30);
    expectAllIntact(db);
    EXPECT_EQ(versionIn(db, 60), 1);
}

TEST_F(InterruptedChangeTest, DamagedJournalIsIgnored) {
    writeFileBytes(dir.file("db-journal"), std::string(5000, '\x7f'));
    OwnedPtr<Database> db = Database::create(path, 30);
    expectAllIntact(db);
}

TEST_F(InterruptedChangeTest, JournalOfAnotherShapeIsIgnored) {
    dieAfter([&] {
        Database* db = Database::create(path, 30);
        db->newRecord(idFor(2), 10);
    });
    // Point the armed journal's runs outside the file: nothing may be written there.
    auto journal = fileBytes(dir.file("db-journal"));
    putInt(journal, 28, 1 << 20);
    putInt(journal, 24, 1 << 20);
    putBytes(dir.file("db-journal"), journal);
    OwnedPtr<Database> db = Database::create(path, 30);
    EXPECT_EQ(db->getRecordCount(), 10);
}

TEST_F(InterruptedChangeTest, FullDiskRefusesNewRecordsAndKeepsTheRest) {
    OwnedPtr<Database> db = Database::create(path, 30);
    ASSERT_TRUE(db->grow(0));  // free blocks at the end for what follows
    const int blocks = db->getBlockCount();
    FaultyFileSystem disk;
    disk.failWritesAfter(1000);  // the disk fills up in the middle of the growth
    const auto big = pattern(40000, 1);
    EXPECT_FALSE(db->addRecord(idFor(70), big.data(), 40000));
    EXPECT_EQ(db->getBlockCount(), blocks);
    EXPECT_EQ(std::filesystem::file_size(dir.file("db")), 44u + static_cast<std::uintmax_t>(blocks) * 128u);
    // Records that fit the free blocks still go in, unjournaled if need be.
    EXPECT_TRUE(db->addRecord(idFor(71), "small", 5));
    expectAllIntact(db);
    disk.failWritesAfter(-1);
    EXPECT_TRUE(db->addRecord(idFor(70), big.data(), 40000));
    db->close();
    db = Database::create(path, 30);
    expectAllIntact(db);
    EXPECT_EQ(db->getRecordCount(), 12);
}

}  // namespace
