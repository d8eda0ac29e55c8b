// Typed values (byte forms, conversions, the lopsided comparisons), property lists (order, the change
// flag, notifications, walks) and their records (the body, joins, damage).

#include "orvanta/store/PropertyDatabase.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "orvanta/foundation/NotifierListener.h"
#include "tests/store/StoreFixtures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// The codes of the notifications a sender sends.
struct Recorder : NotifierListener {
    void onNotification(void*, const Notification& n) override { codes.push_back(n.getCode()); }
    std::vector<int> codes;
};

using Values = std::vector<std::pair<const char16_t*, PropertyValue>>;
using Names = std::vector<std::u16string>;

std::string bytesOf(const PropertyValue& value) {
    const auto* p = static_cast<const char*>(value.asBytes().getBytes());
    return p ? std::string(p, static_cast<std::size_t>(value.asBytes().getLength())) : "null";
}

// A value of the given type made of bytes, copied into bytes of its own.
PropertyValue raw(const std::string& bytes, PropertyValue::Type type = PropertyValue::kBytes) {
    const PropertyValue wrapped(const_cast<char*>(bytes.data()), static_cast<int>(bytes.size()), type);
    PropertyValue copy(wrapped);
    return copy;
}

TEST(PropertyValueTest, ByteFormsAndConversions) {
    const UniqueID id(CString(u"00112233-4455-6677-8899-aabbccddeeff"));
    // clang-format off
    const std::pair<PropertyValue, std::string> forms[] = {
        {0x01020304, "\x04\x03\x02\x01"}, {-2, "\xfe\xff\xff\xff"}, {u"Ab", std::string("A\0b\0\0\0", 6)},
        {u"", std::string(2, '\0')}, {PropertyValue(), "null"}, {Bytes(), "null"},
        {DateTime(2004, 2, 29, 13, 5, 59, 999), std::string("\xd4\7\2\0\x1d\0\r\0\5\0\x3b\0\xe7\3", 14)},
        {id, std::string("\x33\x22\x11\0\x55\x44\x77\x66\x88\x99\xaa\xbb\xcc\xdd\xee\xff", 16)}};
    const std::pair<PropertyValue, CString> texts[] = {
        {-45, u"-45"}, {Bytes(), u""}, {raw(std::string("h\0i\0", 4), PropertyValue::kString), u"hi"},
        {raw(std::string("h\0i", 3), PropertyValue::kString), u"h"}};  // no terminator, an odd byte
    const std::pair<PropertyValue, int> numbers[] = {
        {u"  -12abc", -12}, {u"abc", 0}, {u"99999999999", 2147483647}, {DateTime(2004, 2, 29, 0, 0, 0, 0), 0},
        {raw("\1\1", PropertyValue::kInt), 0}};
    // clang-format on
    for (const auto& [value, bytes] : forms) EXPECT_EQ(bytesOf(value), bytes);
    for (const auto& [value, text] : texts) EXPECT_EQ(value.asString(), text) << text.toUtf8();
    for (const auto& [value, number] : numbers) EXPECT_EQ(value.asInt(), number);
    EXPECT_EQ(PropertyValue(Bytes()).getType(), PropertyValue::kBytes) << "null bytes keep their type";
    EXPECT_TRUE(PropertyValue(5).asDateTime() == DateTime() &&
                raw("\1\1", PropertyValue::kDateTime).asDateTime() == DateTime());
    EXPECT_TRUE(PropertyValue(5).asUniqueID().isNull() &&
                raw("\1\1", PropertyValue::kUniqueID).asUniqueID().isNull());
    // A type the store does not know is kept, and equals nothing, not even itself.
    const PropertyValue unknown = raw("\1", static_cast<PropertyValue::Type>(42));
    EXPECT_TRUE(static_cast<int>(unknown.getType()) == 42 && !(unknown == unknown));
    // A value wrapping bytes it does not own (a mapping) is copied into bytes of its own.
    auto* mapped = static_cast<char*>(std::malloc(4));
    std::memcpy(mapped, "\x4d\0\0\0", 4);
    PropertyValue wrapped(mapped, 4, PropertyValue::kInt), copy = wrapped, assigned;
    assigned = wrapped;
    std::free(mapped);
    EXPECT_EQ(copy.asInt() + assigned.asInt(), 2 * 77);
}

TEST(PropertyValueTest, ComparisonsFollowTheLeftOperandsType) {
    unsigned char low[16] = {0x01}, high[16] = {0x02};
    low[15] = 0xff;
    const PropertyValue null, b123 = raw("\1\2\3"), b124 = raw("\1\2\4");
    const DateTime year2000(2000, 1, 1, 0, 0, 0, 0);
    struct Case {
        PropertyValue a, b;
        int less, equal;  // −1: no rule
    };
    // clang-format off
    const Case cases[] = {
        {12, u"12", 0, 1},              {u"12", 12, 0, 1},               {12, u"13", 1, 0},
        {0, null, 0, 1},                {null, 0, 0, 0},                 {null, 1, 1, -1},
        {null, -1, 0, -1},              {null, DateTime(), 1, -1},       {null, UniqueID::create(), 1, -1},
        {null, UniqueID(), 0, -1},      {null, null, 0, -1},             {null, Bytes(), 0, -1},
        {null, u"abc", 0, 0},           {u"abc", null, 0, 0},            {u"apple", u"Banana", 1, 0},
        {u"apple", u"Apple", -1, 0},    {u"a", u"b", 1, 0},              {u"10", 9, 1, -1},  // text order
        {10, u"9", 0, -1},              {b123, b124, 0, 0},              {b124, b123, 0, 0},
        {b123, raw("\1\2\3"), -1, 1},    {raw(std::string("\7\0\0\0", 4)), 7, -1, 1},
        {year2000, 5, 0, -1},  // 5 is no date: all zero
        {DateTime(2000, 1, 1, 0, 0, 0, 1), DateTime(2000, 1, 1, 0, 0, 0, 2), 1, 0},
        {DateTime(1999, 12, 31, 23, 59, 59, 999), year2000, 1, 0},
        {UniqueID::readBytes(low), UniqueID::readBytes(high), 1, 0},
        {UniqueID::readBytes(high), UniqueID::readBytes(low), 0, 0}};
    // clang-format on
    for (const Case& c : cases) {
        EXPECT_TRUE(c.less < 0 || (c.a < c.b) == (c.less == 1)) << "case " << &c - cases;
        EXPECT_TRUE(c.equal < 0 || (c.a == c.b) == (c.equal == 1)) << "case " << &c - cases;
    }
    // Neither less nor equal: each is greater than the other.
    EXPECT_TRUE(PropertyValue(u"abc") > null && null > PropertyValue(u"abc") && b123 > b124);
}

Names names(PropertyList* list) {
    OwnedPtr<PropertyList::Iterator> walk = list->createIterator();
    Names out;
    for (Property p = walk->next(); !p.isNull(); p = walk->next()) out.push_back(p.getName());
    return out;
}

OwnedPtr<PropertyList> listOf(const UniqueID& id, const Values& values) {
    OwnedPtr<PropertyList> list = PropertyList::create();
    if (!id.isNull()) list->set(PropertyList::kPropID, PropertyValue(id), false);
    for (const auto& [name, value] : values) list->set(name, value, false);
    return list;
}

std::string body(PropertyDatabase* db, const UniqueID& id) {
    return payloadOf(db->getDatabase()->findRecord(id));
}

TEST(PropertyListTest, OrderFlagNotificationsAndWalks) {
    OwnedPtr<PropertyList> list = PropertyList::create(), target = PropertyList::create();
    Recorder recorder;
    list->addListener(&recorder);
    // A lookup creates nothing.
    EXPECT_TRUE(list->getValue(u"missing").isNull() && !list->isDirty() && !list->contains(u"missing"));
    for (const char16_t* name : {u"timestamp", u"Folder", u"folder", u"filename", u"ID", u"id"})
        list->set(name, PropertyValue(name), name[0] == u'I');  // notifies for "ID" only
    EXPECT_EQ(names(list), (Names{u"filename", u"folder", u"Folder", u"id", u"ID", u"timestamp"}));
    list->clearDirty();
    list->remove(u"Folder", true);
    EXPECT_FALSE(list->isDirty()) << "removing does not mark the list changed";
    EXPECT_EQ(recorder.codes, (std::vector<int>{0, 0}));
    list->removeListener(&recorder);
    // Merging notifies once, and stops at a null value, as every walk does.
    target->addListener(&recorder);
    target->merge(listOf(UniqueID(), {{u"a", 1}, {u"b", PropertyValue()}, {u"c", 3}}), true);
    EXPECT_EQ(recorder.codes, (std::vector<int>{0, 0, 0}));
    EXPECT_EQ(names(target), Names{u"a"});
    target->removeListener(&recorder);
}

class PropertyDatabaseTest : public ::testing::Test {
protected:
    OwnedPtr<PropertyDatabase> make(const std::string& name, int blockSize = 1024) {
        EXPECT_TRUE(PropertyDatabase::createFile(dir.wide(name), blockSize, 2, 0));
        return PropertyDatabase::create(dir.wide(name), 100);
    }
    TempDir dir;
};

TEST_F(PropertyDatabaseTest, ListsComeBackAsStoredFromTheirRecordBodies) {
    const UniqueID id = UniqueID::create();
    unsigned char bytes[5] = {9, 8, 7, 6, 5};
    // clang-format off
    const Values values = {
        {u"filename", u"IMG_0001.JPG"}, {u"timestamp", DateTime(2003, 7, 14, 10, 30, 0, 250)}, {u"rating", -4},
        {u"thumb", Bytes(bytes, 5, false)}, {u"album", idFor(3)},
        {u"caption", CString(std::u16string(500, u'w'))}};  // several blocks of 64
    // clang-format on  // several blocks of 64
    {
        OwnedPtr<PropertyDatabase> db = make("p", 64);
        ASSERT_TRUE(db->putList(listOf(id, values)) && db->putList(listOf(idFor(2), {})));
        ASSERT_TRUE(db->putList(listOf(UniqueID(), {{u"sort", u"timestamp"}})));  // the info list
        // "ID" (an ordinary property), then "rating"; "id" itself is the record's own id.
        ASSERT_TRUE(db->putList(listOf(idFor(1), {{u"rating", 3}, {u"ID", u"x"}})));
        // clang-format off
        EXPECT_EQ(body(db, idFor(1)), std::string("I\0D\0\0\0" "\2\0\0\0" "\0\0" "\4\0\0\0" "x\0\0\0"
                                                  "r\0a\0t\0i\0n\0g\0\0\0" "\3\0\0\0" "\0\0" "\4\0\0\0" "\3\0\0\0", 48));
        // clang-format on
        EXPECT_EQ(body(db, idFor(2)), "") << "a list with only its id is an empty record";
    }
    OwnedPtr<PropertyDatabase> db = PropertyDatabase::create(dir.wide("p"), 100);
    OwnedPtr<PropertyList> list = db->getList(id);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->getValue(u"id").asUniqueID(), id);
    for (const auto& [name, value] : values)
        EXPECT_TRUE(list->getValue(name) == value) << CString(name).toUtf8();
    EXPECT_EQ(db->getCount(), 3);
    EXPECT_EQ(OwnedPtr<PropertyList>(db->getList(UniqueID()))->getValue(u"sort").asString(),
              CString(u"timestamp"));
    db->removeList(id);
    EXPECT_EQ(db->getList(id), nullptr);
}

TEST_F(PropertyDatabaseTest, LinkedPropertiesLiveInTheRelatedRecord) {
    OwnedPtr<PropertyDatabase> master = make("master"), album = make("album");
    album->setLookup(master, u"key");
    album->setLinkedProperty(u"key", u"name");
    ASSERT_TRUE(master->putList(listOf(idFor(10), {{u"name", u"beach.jpg"}})));
    ASSERT_TRUE(
        album->putList(listOf(idFor(20), {{u"key", idFor(10)}, {u"name", u"beach.jpg"}, {u"note", u"x"}})));
    // The body holds "key" and "note" only; reading by id joins the name in, the iterator does not.
    const std::string stored = body(album, idFor(20));
    EXPECT_EQ(
        names(OwnedPtr<PropertyList>(PropertyDatabase::decode(idFor(20), stored.data(), int(stored.size())))),
        (Names{u"id", u"key", u"note"}));
    OwnedPtr<PropertyList> joined = album->getList(idFor(20));
    EXPECT_EQ(joined->getValue(u"name").asString(), CString(u"beach.jpg"));
    OwnedPtr<PropertyDatabase::Iterator> walk = album->createIterator();
    EXPECT_FALSE(OwnedPtr<PropertyList>(walk->next())->contains(u"name"));
    // Writing the album entry writes a changed linked property through to the master.
    joined->set(u"name", PropertyValue(u"sunset.jpg"), false);
    ASSERT_TRUE(album->putList(joined));
    OwnedPtr<PropertyList> updated = master->getList(idFor(10));
    EXPECT_EQ(updated->getValue(u"name").asString(), CString(u"sunset.jpg"));
    EXPECT_EQ(updated->getValue(u"id").asUniqueID(), idFor(10));
}

TEST_F(PropertyDatabaseTest, DamagedBodiesAreNotLoaded) {
    OwnedPtr<PropertyDatabase> db = make("p");
    ASSERT_TRUE(db->putList(listOf(idFor(1), {{u"caption", u"text"}, {u"n", 1}})));
    ASSERT_TRUE(db->putList(listOf(idFor(2), {})));
    // Only a cut at an entry boundary (2n + 12 + length bytes each) decodes, to the entries before it.
    const std::string whole = body(db, idFor(1));
    for (std::size_t size = 1; size <= whole.size(); ++size) {
        OwnedPtr<PropertyList> cut = PropertyDatabase::decode(idFor(1), whole.data(), static_cast<int>(size));
        EXPECT_EQ(cut ? cut->getCount() : 0, size == whole.size()      ? 3
                                             : size == 2 * 7 + 12 + 10 ? 2
                                                                       : 0)
            << size;
    }
    // A value length reaching past the body: the record is stepped over.
    std::memcpy(db->getDatabase()->findRecord(idFor(1))->getDataBytes() + 16 + 6, "\xe8\x03\0\0", 4);
    EXPECT_EQ(db->getList(idFor(1)), nullptr);
    OwnedPtr<PropertyDatabase::Iterator> walk = db->createIterator();
    EXPECT_EQ(OwnedPtr<PropertyList>(walk->next())->getValue(u"id").asUniqueID(), idFor(2));
    EXPECT_EQ(walk->next(), nullptr);
}

}  // namespace
