// The catalogue: its file byte for byte against the documented layout, the identity cache, the
// write-back of an edited asset, albums linked to a master, orderings, full disks and a second
// opener.

#include "orvanta/assets/AssetDb.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "orvanta/assets/CatalogueFormat.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/assets/SortedAssetList.h"
#include "orvanta/store/Database.h"
#include "tests/assets/ListFixtures.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

class AssetDbTest : public ::testing::Test {
protected:
    AssetDb* open(const std::string& name = "catalog.db") {
        AssetDb::createFile(dir.wide(name));  // refused when it exists
        return AssetDb::create(dir.wide(name));
    }
    TempDir dir;
};

// Little-endian bytes of an integer of `size` bytes.
std::string le(long long value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i));
    return bytes;
}

std::string utf16(const std::u16string& text) {
    std::string bytes;
    for (char16_t unit : text) bytes += le(unit, 2);
    return bytes + le(0, 2);
}

// One entry of a record body: the name and its zero unit, type, reserved, length, value.
std::string entry(const std::u16string& name, int type, const std::string& value) {
    return utf16(name) + le(type, 4) + le(0, 2) + le(static_cast<long long>(value.size()), 4) + value;
}

// A record's first block: type 1, reserved, the id's stored bytes, size, reserved, body; then
// continuation blocks, all padded with zeros.
std::string record(const UniqueID& id, const std::string& body, int blocks) {
    unsigned char idBytes[16];
    id.writeBytes(idBytes);
    std::string bytes = le(1, 4) + std::string(8, '\0') + std::string(reinterpret_cast<char*>(idBytes), 16) +
                        le(static_cast<long long>(body.size()), 4) + std::string(8, '\0') + body;
    return bytes + std::string(static_cast<std::size_t>(blocks) * 1024 - bytes.size(), '\0');
}

}  // namespace

TEST_F(AssetDbTest, TheFileIsTheDocumentedLayoutByteForByte) {
    const std::u16string caption(600, u'x');
    {
        OwnedPtr<AssetDb> db = open();
        db->addAsset(OwnedPtr<Asset>(assetFor(1, {{u"timestamp", DateTime(2004, 2, 29, 8, 15, 0, 0)},
                                                  {CatalogueFormat::kPropWidth, 640}})),
                     true);
        db->addAsset(OwnedPtr<Asset>(assetFor(2, {{u"caption", PropertyValue(CString(caption))}})), true);
        db->getProperties()->set(u"sort", PropertyValue(u"timestamp"), false);
    }
    const std::string folder = entry(u"folder", 2, utf16(u"/photos"));
    const std::string date = le(2004, 2) + le(2, 2) + le(29, 2) + le(8, 2) + le(15, 2) + le(0, 2) + le(0, 2);
    const std::string first = entry(u"filename", 2, utf16(u"1.none")) + folder +
                              entry(u"timestamp", 4, date) + entry(u"width", 3, le(640, 4));
    // 1310 bytes of body: two blocks.
    const std::string second =
        entry(u"caption", 2, utf16(caption)) + entry(u"filename", 2, utf16(u"2.none")) + folder;
    std::string expected = std::string("###OrvantaDB###\0", 16) + le(1024, 4) + le(100, 4) + le(2, 4) +
                           std::string(16, '\0') + record(idFor(1), first, 1) + record(idFor(2), second, 2) +
                           record(UniqueID(), entry(u"sort", 2, utf16(u"timestamp")), 1);
    expected += std::string(44 + 100 * 1024 - expected.size(), '\0');
    EXPECT_TRUE(readFileBytes(dir.file("catalog.db")) == expected) << "the file differs from the layout";
    EXPECT_FALSE(std::filesystem::exists(dir.file("catalog.db-journal")));
    // Read back, and a catalogue that was never asked for its properties writes no info record.
    {
        OwnedPtr<AssetDb> db = open();
        EXPECT_EQ(u"timestamp", db->getProperties()->getValue(u"sort").asString());
        EXPECT_EQ(640,
                  db->getAsset(idFor(1))->getProperties()->getValue(CatalogueFormat::kPropWidth).asInt());
    }
    OwnedPtr<AssetDb> empty = open("empty.db");
    empty->addAsset(OwnedPtr<Asset>(assetFor(3)), false);
    empty = nullptr;
    OwnedPtr<Database> raw = Database::create(dir.wide("empty.db"), 100);
    EXPECT_FALSE(raw->hasRecord(Database::kInfoRecordID));
}

TEST_F(AssetDbTest, AnAssetKeepsItsObjectWhileHeldAndItsEditsReachTheFileAtOnce) {
    OwnedPtr<AssetDb> db = open();
    for (std::uint32_t n = 1; n <= 3; ++n)
        db->addAsset(OwnedPtr<Asset>(assetFor(n, {{u"rating", 1}})), false);
    Heard heard;
    db->addListener(&heard);
    OwnedPtr<Asset> held = db->getAsset(idFor(1));
    EXPECT_EQ(held.get(), db->getAsset(idFor(1)));
    // An edit with notification is written at once and told as code 3; one without waits.
    held->getProperties()->set(u"rating", PropertyValue(5), true);
    EXPECT_FALSE(held->getProperties()->isDirty());
    held->getProperties()->set(u"caption", PropertyValue(u"quiet"), false);
    const auto stored = [&](std::uint32_t n, const char16_t* name) {
        return OwnedPtr<PropertyList>(db->getPropertyDatabase()->getList(idFor(n)))->getValue(name);
    };
    EXPECT_EQ(5, stored(1, u"rating").asInt());
    EXPECT_TRUE(stored(1, u"caption").isNull());
    // The cached object wins over its record, and an edit only in memory is lost once nobody holds it.
    OwnedPtr<Asset> other = db->getAsset(idFor(2));
    other->getProperties()->set(u"caption", PropertyValue(u"in memory"), false);
    const OwnedPtr<Asset> behind = assetFor(2, {{u"rating", 9}});
    ASSERT_TRUE(db->getPropertyDatabase()->putList(behind->getProperties()));
    EXPECT_EQ(1, db->getAsset(idFor(2))->getProperties()->getValue(u"rating").asInt());
    other = nullptr;
    db->getAsset(idFor(3));  // the insertion prunes what only the cache holds
    EXPECT_TRUE(db->getAsset(idFor(2))->getProperties()->getValue(u"caption").isNull());
    EXPECT_EQ(9, db->getAsset(idFor(2))->getProperties()->getValue(u"rating").asInt());
    // Positions stay when an asset is stored again; a new one or a removal invalidates them.
    const int place = db->getIndex(idFor(3));
    EXPECT_TRUE(db->addAsset(held, true));
    EXPECT_EQ(place, db->getIndex(idFor(3)));
    db->addAsset(OwnedPtr<Asset>(assetFor(0x10)), true);
    db->removeAsset(idFor(3), true);
    EXPECT_FALSE(db->removeAsset(idFor(3), true));
    EXPECT_EQ(2, db->getIndex(idFor(0x10)));
    db->removeAll();
    EXPECT_EQ("3:1 3:1 1:16 2:3 6:0", heard.take());
    EXPECT_EQ(0, db->getCount());
}

TEST_F(AssetDbTest, AnAlbumReadsAndWritesThroughItsMasterAndFollowsItsRemovals) {
    OwnedPtr<AssetDb> master = open(), album = open("album.db");
    album->setMaster(master);
    for (std::uint32_t n = 1; n <= 4; ++n) {
        master->addAsset(OwnedPtr<Asset>(assetFor(n, {{u"timestamp", DateTime(2001, 1, n, 0, 0, 0, 0)}})),
                         false);
        // An album's asset carries its master's file name, folder and date, or would write them away.
        OwnedPtr<PropertyList> own = master->getAsset(idFor(n))->getProperties()->clone();
        own->set(u"caption", PropertyValue(u"album"), false);
        album->addAsset(OwnedPtr<Asset>(Asset::create(own)), false);
    }
    // The album's record holds only its own property; the rest comes from the master.
    Database::Record* raw = album->getPropertyDatabase()->getDatabase()->getRecord(idFor(1));
    OwnedPtr<PropertyList> body = PropertyDatabase::decode(idFor(1), raw->getDataBytes(), raw->getDataSize());
    EXPECT_EQ(2, body->getCount()) << "id and caption";
    OwnedPtr<Asset> inAlbum = album->getAsset(idFor(1));
    EXPECT_EQ(u"1.none", inAlbum->getProperties()->getValue(Asset::kPropFilename).asString());
    OwnedPtr<SortedAssetList> byDate = album->createSorted(u"timestamp", false, nullptr);
    EXPECT_EQ(idFor(4), byDate->getAsset(0)->getID()) << "views sort an album by its master's dates";
    // An edit in the album is written through to the master.
    inAlbum->getProperties()->set(Asset::kPropFilename, PropertyValue(u"renamed.none"), true);
    EXPECT_EQ(u"renamed.none", OwnedPtr<PropertyList>(master->getPropertyDatabase()->getList(idFor(1)))
                                   ->getValue(Asset::kPropFilename)
                                   .asString());
    Heard heard;
    album->addListener(&heard);
    // A change in the master reaches the album's cached asset, and the album passes on the rest.
    master->getAsset(idFor(1))->getProperties()->set(u"timestamp",
                                                     PropertyValue(DateTime(1999, 1, 1, 0, 0, 0, 0)), true);
    EXPECT_EQ(1999, inAlbum->getProperties()->getValue(u"timestamp").asDateTime().getYear());
    master->getAsset(idFor(2))->getProperties()->set(u"rating", PropertyValue(3), true);
    // What the master loses, the album loses at once.
    master->removeAsset(idFor(3), true);
    OwnedPtr<MemAssetList> gone = MemAssetList::create();
    gone->addAsset(master->getAsset(idFor(2)), false), gone->addAsset(master->getAsset(idFor(4)), false);
    master->removeAssets(gone, true);
    EXPECT_EQ("3:1 3:2 2:3 2:2 2:4", heard.take());
    EXPECT_EQ(1, album->getCount());
    EXPECT_EQ(1, byDate->getCount());
}

TEST_F(AssetDbTest, AnOrderingLeadsTheIndexAndItsChangesReorderTheViews) {
    ASSERT_TRUE(DatabaseOrdering::createFile(dir.wide("catalog.db.idx")));
    OwnedPtr<AssetDb> db = open();
    db->setOrdering(OwnedPtr<DatabaseOrdering>(DatabaseOrdering::create(dir.wide("catalog.db.idx"))));
    for (std::uint32_t n : {3, 1, 2}) db->addAsset(OwnedPtr<Asset>(assetFor(n, {{u"rating", 1}})), false);
    OwnedPtr<SortedAssetList> view = db->createSorted(u"rating", true, nullptr);
    EXPECT_EQ(idFor(3), view->getAsset(0)->getID()) << "ties in the ordering's order";
    Heard heard;
    view->addListener(&heard), db->addListener(&heard);
    db->getPropertyDatabase()->getDatabase()->getOrdering()->move(idFor(2), 0, true);
    EXPECT_EQ("7:0", heard.take()) << "the catalogue tells, the view rebuilds silently";
    EXPECT_EQ(idFor(2), db->getAsset(0)->getID());
    EXPECT_EQ(idFor(2), view->getAsset(0)->getID());
}

TEST_F(AssetDbTest, AFullDiskRefusesTheAssetQuietlyAndASecondOpenerIsRefused) {
    OwnedPtr<AssetDb> db = open();
    for (std::uint32_t n = 1; n <= 100; ++n) ASSERT_TRUE(db->addAsset(OwnedPtr<Asset>(assetFor(n)), false));
    Heard heard;
    db->addListener(&heard);
    OwnedPtr<Asset> late = assetFor(101);
    {
        FaultyFileSystem disk;
        disk.failWritesAfter(0);
        EXPECT_FALSE(db->addAsset(late, true));
    }
    EXPECT_TRUE(heard.take().empty());
    EXPECT_EQ(late.get(), db->getAsset(idFor(101))) << "it stays in the cache";
    EXPECT_FALSE(db->contains(idFor(101)));
    EXPECT_TRUE(db->addAsset(late, true));
    // The file is locked while open: a second opener, here or in another process, is refused.
    EXPECT_EQ(u"Cannot open database", messageOf([&] { AssetDb::create(dir.wide("catalog.db")); }));
    EXPECT_EQ(u"it is open in another program", Database::explainOpenFailure(dir.wide("catalog.db")));
}
