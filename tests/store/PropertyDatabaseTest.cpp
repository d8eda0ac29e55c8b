// Property lists and their records: the change flag, notifications, the record body and joins.

#include "orvanta/store/PropertyDatabase.h"

#include <gtest/gtest.h>

#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/store/DatabaseOrdering.h"
#include "tests/store/StoreFixtures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

struct Recorder : NotifierListener {
    void onNotification(void* sender, const Notification& n) override {
        senders.push_back(sender);
        codes.push_back(n.getCode());
    }
    std::vector<void*> senders;
    std::vector<int> codes;
};

std::vector<std::u16string> names(PropertyList* list) {
    std::vector<std::u16string> out;
    OwnedPtr<PropertyList::Iterator> walk = list->createIterator();
    for (Property p = walk->next(); !p.isNull(); p = walk->next()) out.push_back(p.getName());
    return out;
}

TEST(PropertyListTest, SetMarksDirtyRemoveDoesNot) {
    OwnedPtr<PropertyList> list = PropertyList::create();
    EXPECT_FALSE(list->isDirty());
    list->set(u"a", PropertyValue(1), false);
    EXPECT_TRUE(list->isDirty());
    list->clearDirty();
    list->remove(u"a", false);
    EXPECT_FALSE(list->isDirty());
    EXPECT_EQ(list->getCount(), 0);
}

TEST(PropertyListTest, AbsentNameGivesNullAndCreatesNothing) {
    OwnedPtr<PropertyList> list = PropertyList::create();
    EXPECT_TRUE(list->getValue(u"missing").isNull());
    EXPECT_FALSE(list->contains(u"missing"));
    EXPECT_EQ(list->getCount(), 0);
}

TEST(PropertyListTest, NamesAreOrderedByTheLocaleAndCaseSensitive) {
    OwnedPtr<PropertyList> list = PropertyList::create();
    for (const char16_t* name : {u"timestamp", u"Folder", u"folder", u"filename", u"ID", u"id"})
        list->set(name, PropertyValue(1), false);
    EXPECT_EQ(list->getCount(), 6);
    EXPECT_EQ(names(list),
              (std::vector<std::u16string>{u"filename", u"folder", u"Folder", u"id", u"ID", u"timestamp"}));
}

TEST(PropertyListTest, NotificationsComeFromTheList) {
    OwnedPtr<PropertyList> list = PropertyList::create();
    Recorder recorder;
    list->addListener(&recorder);
    list->set(u"a", PropertyValue(1), true);
    list->set(u"b", PropertyValue(1), false);
    list->remove(u"b", true);
    EXPECT_EQ(recorder.codes, (std::vector<int>{0, 0}));
    EXPECT_EQ(recorder.senders[0], static_cast<void*>(list.get()));
    list->removeListener(&recorder);
}

TEST(PropertyListTest, MergeNotifiesOnceAndStopsAtANullValue) {
    OwnedPtr<PropertyList> source = PropertyList::create();
    source->set(u"a", PropertyValue(1), false);
    source->set(u"b", PropertyValue(), false);  // a null value ends every walk
    source->set(u"c", PropertyValue(3), false);
    OwnedPtr<PropertyList> target = PropertyList::create();
    Recorder recorder;
    target->addListener(&recorder);
    target->merge(source, true);
    EXPECT_EQ(recorder.codes, std::vector<int>{0});
    EXPECT_EQ(names(target), std::vector<std::u16string>{u"a"});
    target->removeListener(&recorder);

    OwnedPtr<PropertyList> copy = source->clone();
    EXPECT_EQ(copy->getCount(), 1);
}

TEST(PropertyListTest, IteratorWalksBothWaysAcrossChanges) {
    OwnedPtr<PropertyList> list = PropertyList::create();
    for (const char16_t* name : {u"a", u"b", u"c"}) list->set(name, PropertyValue(name), false);
    OwnedPtr<PropertyList::Iterator> walk = list->createIterator();
    EXPECT_EQ(std::u16string(walk->next().getName()), u"a");
    list->remove(u"b", false);
    EXPECT_EQ(std::u16string(walk->next().getName()), u"c");
    EXPECT_TRUE(walk->next().isNull());
    EXPECT_EQ(std::u16string(walk->prev().getName()), u"c");
    EXPECT_EQ(std::u16string(walk->prev().getName()), u"a");
    EXPECT_TRUE(walk->prev().isNull());
    EXPECT_EQ(CString(walk->prev().getName()), CString());
}

class PropertyDatabaseTest : public ::testing::Test {
protected:
    OwnedPtr<PropertyDatabase> make(const std::string& name, int blockSize = 1024) {
        EXPECT_TRUE(PropertyDatabase::createFile(dir.wide(name), blockSize, 2, 0));
        return PropertyDatabase::create(dir.wide(name), 100);
    }

    OwnedPtr<PropertyList> listWithId(const UniqueID& id) {
        OwnedPtr<PropertyList> list = PropertyList::create();
        list->set(PropertyList::kPropID, PropertyValue(id), false);
        return list;
    }

    TempDir dir;
};

TEST_F(PropertyDatabaseTest, RecordBodyIsTheEntriesInNameOrder) {
    OwnedPtr<PropertyDatabase> db = make("p");
    OwnedPtr<PropertyList> list = listWithId(idFor(1));
    list->set(u"rating", PropertyValue(3), false);
    list->set(u"ID", PropertyValue(u"x"), false);
    ASSERT_TRUE(db->putList(list));
    Database::Record* record = db->getDatabase()->findRecord(idFor(1));
    ASSERT_NE(record, nullptr);
    // "ID" (an ordinary property), then "rating"; "id" itself is the record's own id.
    const std::vector<unsigned char> expected = {
        'I', 0, 'D', 0, 0,   0, 2,   0, 0, 0, 0, 0, 4, 0, 0, 0, 'x', 0, 0, 0, 'r', 0, 'a', 0,
        't', 0, 'i', 0, 'n', 0, 'g', 0, 0, 0, 3, 0, 0, 0, 0, 0, 4,   0, 0, 0, 3,   0, 0,   0};
    ASSERT_EQ(record->getDataSize(), static_cast<int>(expected.size()));
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), record->getDataBytes()));
}

TEST_F(PropertyDatabaseTest, ListsComeBackAsStored) {
    const UniqueID id = UniqueID::create();
    const DateTime date(2003, 7, 14, 10, 30, 0, 250);
    unsigned char raw[5] = {9, 8, 7, 6, 5};
    {
        OwnedPtr<PropertyDatabase> db = make("p");
        OwnedPtr<PropertyList> list = listWithId(id);
        list->set(u"filename", PropertyValue(u"IMG_0001.JPG"), false);
        list->set(u"timestamp", PropertyValue(date), false);
        list->set(u"rating", PropertyValue(-4), false);
        list->set(u"thumb", PropertyValue(Bytes(raw, 5, false)), false);
        list->set(u"album", PropertyValue(idFor(3)), false);
        ASSERT_TRUE(db->putList(list));
    }
    OwnedPtr<PropertyDatabase> db = PropertyDatabase::create(dir.wide("p"), 100);
    OwnedPtr<PropertyList> list = db->getList(id);
    ASSERT_NE(list, nullptr);
    EXPECT_TRUE(list->isDirty()) << "loading goes through set";
    EXPECT_EQ(list->getCount(), 6);
    EXPECT_EQ(list->getValue(u"id").asUniqueID(), id);
    EXPECT_EQ(list->getValue(u"filename").asString(), CString(u"IMG_0001.JPG"));
    EXPECT_EQ(list->getValue(u"timestamp").asDateTime(), date);
    EXPECT_EQ(list->getValue(u"rating").asInt(), -4);
    EXPECT_TRUE(list->getValue(u"thumb") == PropertyValue(Bytes(raw, 5, false)));
    EXPECT_EQ(list->getValue(u"album").asUniqueID(), idFor(3));
    EXPECT_EQ(db->getCount(), 1);
    EXPECT_TRUE(db->hasList(id));
    db->removeList(id);
    EXPECT_FALSE(db->hasList(id));
    EXPECT_EQ(db->getList(id), nullptr);
}

TEST_F(PropertyDatabaseTest, ListWithOnlyItsIdTakesOneEmptyBlock) {
    OwnedPtr<PropertyDatabase> db = make("p");
    ASSERT_TRUE(db->putList(listWithId(idFor(1))));
    Database::Record* record = db->getDatabase()->findRecord(idFor(1));
    EXPECT_EQ(record->getDataSize(), 0);
    EXPECT_EQ(db->getDatabase()->getRecordBlocks(record), 1);
    OwnedPtr<PropertyList> list = db->getList(idFor(1));
    EXPECT_EQ(list->getCount(), 1);
}

TEST_F(PropertyDatabaseTest, ListsLongerThanABlockSpanSeveral) {
    OwnedPtr<PropertyDatabase> db = make("p", 64);
    OwnedPtr<PropertyList> list = listWithId(idFor(1));
    const CString longText(std::u16string(500, u'w'));
    list->set(u"caption", PropertyValue(longText), false);
    ASSERT_TRUE(db->putList(list));
    OwnedPtr<PropertyList> back = db->getList(idFor(1));
    EXPECT_EQ(back->getValue(u"caption").asString(), longText);
}

TEST_F(PropertyDatabaseTest, ReplacedListMovesToTheEndOfTheOrdering) {
    OwnedPtr<PropertyDatabase> db = make("p");
    ASSERT_TRUE(DatabaseOrdering::createFile(dir.wide("p.idx")));
    OwnedPtr<DatabaseOrdering> ordering = DatabaseOrdering::create(dir.wide("p.idx"));
    db->setOrdering(ordering, true);
    for (int i = 1; i <= 3; ++i) ASSERT_TRUE(db->putList(listWithId(idFor(static_cast<std::uint32_t>(i)))));
    ASSERT_TRUE(db->putList(listWithId(idFor(1))));
    EXPECT_EQ(ordering->getID(2), idFor(1));
    OwnedPtr<PropertyList> first = db->getList(0);
    EXPECT_EQ(first->getValue(u"id").asUniqueID(), idFor(2));
    OwnedPtr<PropertyDatabase::Iterator> walk = db->createIterator();
    std::vector<UniqueID> seen;
    while (PropertyList* list = walk->next()) {
        OwnedPtr<PropertyList> held = list;
        seen.push_back(held->getValue(u"id").asUniqueID());
    }
    EXPECT_EQ(seen, (std::vector<UniqueID>{idFor(2), idFor(3), idFor(1)}));
}

TEST_F(PropertyDatabaseTest, InfoListIsStoredUnderTheNullId) {
    OwnedPtr<PropertyDatabase> db = make("p");
    OwnedPtr<PropertyList> info = PropertyList::create();
    info->set(u"sort", PropertyValue(u"timestamp"), false);
    ASSERT_TRUE(db->putList(info));
    EXPECT_EQ(db->getCount(), 0);
    OwnedPtr<PropertyList> back = db->getList(UniqueID());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->getValue(u"sort").asString(), CString(u"timestamp"));
}

TEST_F(PropertyDatabaseTest, LinkedPropertiesLiveInTheRelatedRecord) {
    OwnedPtr<PropertyDatabase> master = make("master");
    OwnedPtr<PropertyDatabase> album = make("album");
    album->setLookup(master, u"key");
    album->setLinkedProperty(u"key", u"name");

    OwnedPtr<PropertyList> main = listWithId(idFor(10));
    main->set(u"name", PropertyValue(u"beach.jpg"), false);
    ASSERT_TRUE(master->putList(main));

    OwnedPtr<PropertyList> entry = listWithId(idFor(20));
    entry->set(u"key", PropertyValue(idFor(10)), false);
    entry->set(u"name", PropertyValue(u"beach.jpg"), false);
    entry->set(u"note", PropertyValue(u"holiday"), false);
    ASSERT_TRUE(album->putList(entry));

    // The body holds "key" and "note" only.
    Database::Record* record = album->getDatabase()->findRecord(idFor(20));
    OwnedPtr<PropertyList> stored =
        PropertyDatabase::decode(idFor(20), record->getDataBytes(), record->getDataSize());
    EXPECT_EQ(names(stored), (std::vector<std::u16string>{u"id", u"key", u"note"}));

    OwnedPtr<PropertyList> joined = album->getList(idFor(20));
    EXPECT_EQ(joined->getValue(u"name").asString(), CString(u"beach.jpg"));
    OwnedPtr<PropertyDatabase::Iterator> walk = album->createIterator();
    OwnedPtr<PropertyList> plain = walk->next();
    EXPECT_FALSE(plain->contains(u"name")) << "the iterator does not join";

    // Writing the album entry writes a changed linked property through to the master, and tells
    // the master's list.
    joined->set(u"name", PropertyValue(u"sunset.jpg"), false);
    ASSERT_TRUE(album->putList(joined));
    OwnedPtr<PropertyList> updated = master->getList(idFor(10));
    EXPECT_EQ(updated->getValue(u"name").asString(), CString(u"sunset.jpg"));
    EXPECT_EQ(updated->getValue(u"id").asUniqueID(), idFor(10));
}

TEST_F(PropertyDatabaseTest, DamagedBodiesAreNotLoaded) {
    OwnedPtr<PropertyDatabase> db = make("p");
    ASSERT_TRUE(db->putList(listWithId(idFor(1))));
    OwnedPtr<PropertyList> good = listWithId(idFor(2));
    good->set(u"a", PropertyValue(5), false);
    ASSERT_TRUE(db->putList(good));
    ASSERT_TRUE(db->putList(listWithId(idFor(3))));
    // Record 2's value length now reaches past its body.
    Database::Record* record = db->getDatabase()->findRecord(idFor(2));
    putIntAt(record->getDataBytes() + 4 + 6, 1000);
    EXPECT_EQ(db->getList(idFor(2)), nullptr);
    OwnedPtr<PropertyDatabase::Iterator> walk = db->createIterator();
    int lists = 0;
    while (PropertyList* list = walk->next()) {
        OwnedPtr<PropertyList> held = list;
        ++lists;
    }
    EXPECT_EQ(lists, 2) << "the damaged record is stepped over";
}

TEST_F(PropertyDatabaseTest, DecodeRefusesEveryTruncation) {
    OwnedPtr<PropertyList> list = listWithId(idFor(1));
    list->set(u"caption", PropertyValue(u"text"), false);
    list->set(u"n", PropertyValue(1), false);
    OwnedPtr<PropertyDatabase> db = make("p");
    ASSERT_TRUE(db->putList(list));
    Database::Record* record = db->getDatabase()->findRecord(idFor(1));
    const std::vector<unsigned char> body(record->getDataBytes(),
                                          record->getDataBytes() + record->getDataSize());
    for (std::size_t size = 1; size < body.size(); ++size) {
        OwnedPtr<PropertyList> partial =
            PropertyDatabase::decode(idFor(1), body.data(), static_cast<int>(size));
        // Only a cut at an entry boundary decodes, to the entries before it.
        if (partial) {
            EXPECT_EQ(partial->getCount(), 2) << size;
        }
    }
    OwnedPtr<PropertyList> whole =
        PropertyDatabase::decode(idFor(1), body.data(), static_cast<int>(body.size()));
    ASSERT_NE(whole, nullptr);
    EXPECT_EQ(whole->getCount(), 3);
}

TEST_F(PropertyDatabaseTest, BadFileThrowsTheDatabaseMessage) {
    writeFileBytes(dir.file("bad"), "not a database at all, not at all");
    EXPECT_EQ(thrownMessage([&] { PropertyDatabase::create(dir.wide("bad"), 100); }),
              u"Cannot open database");
}

}  // namespace
