// The ordering file: its bytes, growth, moves and damaged files.

#include "orvanta/store/DatabaseOrdering.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "tests/store/StoreFixtures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class DatabaseOrderingTest : public ::testing::Test {
protected:
    OwnedPtr<DatabaseOrdering> make(int ids) {
        EXPECT_TRUE(DatabaseOrdering::createFile(dir.wide("idx")));
        OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("idx"));
        for (int i = 0; i < ids; ++i) ordering->append(idFor(static_cast<std::uint32_t>(i)));
        return ordering;
    }

    std::vector<int> order(DatabaseOrdering* ordering) {
        std::vector<int> numbers;
        for (int i = 0; i < ordering->getCount(); ++i) {
            unsigned char bytes[16];
            ordering->getID(i).writeBytes(bytes);
            numbers.push_back(bytes[15]);
        }
        return numbers;
    }

    std::uintmax_t size() { return std::filesystem::file_size(dir.file("idx")); }

    TempDir dir;
};

TEST_F(DatabaseOrderingTest, NewFileHasRoomForAHundred) {
    ASSERT_TRUE(DatabaseOrdering::createFile(dir.wide("idx")));
    const auto bytes = fileBytes(dir.file("idx"));
    ASSERT_EQ(bytes.size(), 1632u);
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 16), std::string("##OrvantaDBI###\0", 16));
    EXPECT_TRUE(std::all_of(bytes.begin() + 16, bytes.end(), [](unsigned char b) { return b == 0; }));
    EXPECT_FALSE(DatabaseOrdering::createFile(dir.wide("idx")));
    OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("idx"));
    EXPECT_EQ(ordering->getCount(), 0);
    EXPECT_EQ(ordering->getCapacity(), 100);
}

TEST_F(DatabaseOrderingTest, IdsAreStoredInOrderBehindTheHeader) {
    { OwnedPtr<DatabaseOrdering> ordering = make(3); }
    const auto bytes = fileBytes(dir.file("idx"));
    EXPECT_EQ(getInt(bytes, 16), 3);
    for (int i = 0; i < 3; ++i) {
        unsigned char id[16];
        idFor(static_cast<std::uint32_t>(i)).writeBytes(id);
        EXPECT_TRUE(std::equal(id, id + 16, bytes.begin() + 32 + 16 * i)) << i;
    }
}

TEST_F(DatabaseOrderingTest, FullIndexDoublesItsCapacity) {
    OwnedPtr<DatabaseOrdering> ordering = make(100);
    EXPECT_EQ(size(), 1632u);
    ordering->append(idFor(100));
    EXPECT_EQ(size(), 32u * 101u);
    EXPECT_EQ(ordering->getCapacity(), 200);
    EXPECT_EQ(ordering->getCount(), 101);
    EXPECT_EQ(ordering->getID(100), idFor(100));
    EXPECT_EQ(ordering->getID(0), idFor(0));
}

TEST_F(DatabaseOrderingTest, MoveReadsTheTargetBeforeTheRemoval) {
    OwnedPtr<DatabaseOrdering> ordering = make(7);
    EXPECT_EQ(ordering->move(idFor(1), 4, false), 3);
    EXPECT_EQ(order(ordering), (std::vector<int>{0, 2, 3, 1, 4, 5, 6}));
    EXPECT_EQ(ordering->move(idFor(5), 2, false), 2);
    EXPECT_EQ(order(ordering), (std::vector<int>{0, 2, 5, 3, 1, 4, 6}));
    EXPECT_EQ(ordering->move(UniqueID(), 2, false), -1);
}

TEST_F(DatabaseOrderingTest, MovingAnUnknownIdInsertsIt) {
    OwnedPtr<DatabaseOrdering> ordering = make(3);
    EXPECT_EQ(ordering->move(idFor(9), 1, false), 1);
    EXPECT_EQ(order(ordering), (std::vector<int>{0, 9, 1, 2}));
    EXPECT_EQ(ordering->move(idFor(8), 50, false), 4);
    EXPECT_EQ(order(ordering), (std::vector<int>{0, 9, 1, 2, 8}));
}

TEST_F(DatabaseOrderingTest, MoveNotifiesWhenAsked) {
    struct Counter : NotifierListener {
        void onNotification(void*, const Notification& n) override { codes.push_back(n.getCode()); }
        std::vector<int> codes;
    } counter;
    OwnedPtr<DatabaseOrdering> ordering = make(3);
    ordering->addListener(&counter);
    ordering->move(idFor(0), 2, false);
    EXPECT_TRUE(counter.codes.empty());
    ordering->move(idFor(0), 0, true);
    EXPECT_EQ(counter.codes, std::vector<int>{0});
    ordering->removeListener(&counter);
}

TEST_F(DatabaseOrderingTest, RemovalLeavesStaleIdsBehind) {
    {
        OwnedPtr<DatabaseOrdering> ordering = make(4);
        ordering->remove(idFor(1));
        EXPECT_EQ(order(ordering), (std::vector<int>{0, 2, 3}));
        EXPECT_EQ(ordering->indexOf(idFor(1)), -1);
        ordering->remove(idFor(77));
        ordering->removeAt(-1);
        ordering->removeAt(3);
        EXPECT_EQ(ordering->getCount(), 3);
    }
    const auto bytes = fileBytes(dir.file("idx"));
    unsigned char last[16];
    idFor(3).writeBytes(last);
    EXPECT_TRUE(std::equal(last, last + 16, bytes.begin() + 32 + 16 * 3))
        << "the old last id stays in the file";
}

TEST_F(DatabaseOrderingTest, NullIdNeverEnters) {
    OwnedPtr<DatabaseOrdering> ordering = make(2);
    ordering->append(UniqueID());
    ordering->insert(0, UniqueID());
    EXPECT_EQ(ordering->getCount(), 2);
    EXPECT_EQ(ordering->indexOf(UniqueID()), -1);
    EXPECT_TRUE(ordering->getID(2).isNull());
    EXPECT_TRUE(ordering->getID(-1).isNull());
}

TEST_F(DatabaseOrderingTest, ClearKeepsTheFile) {
    OwnedPtr<DatabaseOrdering> ordering = make(5);
    ordering->clear();
    EXPECT_EQ(ordering->getCount(), 0);
    EXPECT_EQ(size(), 1632u);
    ordering->insert(3, idFor(9));
    EXPECT_EQ(order(ordering), std::vector<int>{9});
}

TEST_F(DatabaseOrderingTest, DamagedFilesDoNotOpen) {
    const auto open = [&](const std::vector<unsigned char>& bytes) {
        putBytes(dir.file("bad"), bytes);
        return thrownMessage(
            [&] { OwnedPtr<DatabaseOrdering> o = DatabaseOrdering::create(dir.wide("bad")); });
    };
    EXPECT_EQ(thrownMessage([&] { DatabaseOrdering::create(dir.wide("missing")); }),
              u"Cannot open database index");
    { OwnedPtr<DatabaseOrdering> ordering = make(3); }
    auto good = fileBytes(dir.file("idx"));
    EXPECT_EQ(open(good), u"");
    auto bytes = good;
    bytes[2] = 'X';
    EXPECT_EQ(open(bytes), u"Cannot open database index");
    bytes = good;
    putInt(bytes, 16, 101);  // more ids than the file holds
    EXPECT_EQ(open(bytes), u"Cannot open database index");
    putInt(bytes, 16, -1);
    EXPECT_EQ(open(bytes), u"Cannot open database index");
    EXPECT_EQ(open(std::vector<unsigned char>(good.begin(), good.begin() + 20)),
              u"Cannot open database index");
    // A file holding only its header has room for nothing, and still takes ids.
    bytes = std::vector<unsigned char>(good.begin(), good.begin() + 32);
    putInt(bytes, 16, 0);
    putBytes(dir.file("small"), bytes);
    OwnedPtr<DatabaseOrdering> small = DatabaseOrdering::create(dir.wide("small"));
    EXPECT_EQ(small->getCapacity(), 0);
    small->append(idFor(1));
    EXPECT_EQ(small->getID(0), idFor(1));
}

TEST_F(DatabaseOrderingTest, SecondOpenerIsRefused) {
    OwnedPtr<DatabaseOrdering> ordering = make(1);
    EXPECT_EQ(thrownMessage([&] { DatabaseOrdering::create(dir.wide("idx")); }),
              u"Cannot open database index");
}

}  // namespace
