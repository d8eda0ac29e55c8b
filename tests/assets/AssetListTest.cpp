// Lists of assets: sorted views against an independent stable sort, the notifications each change
// sends through a list, its view and a selection, iterators that start over, filters, and the
// lists used from two threads at once.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>
#include <tuple>

#include "orvanta/assets/AssetDb.h"
#include "orvanta/assets/AssetIterator.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/assets/PropertyFilter.h"
#include "orvanta/assets/SortValue.h"
#include "orvanta/assets/SortedAssetList.h"
#include "orvanta/assets/StringFilter.h"
#include "orvanta/platform/TextCompare.h"
#include "tests/assets/ListFixtures.h"
#include "tests/support/TempDir.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// The ids of a list in its order.
std::vector<UniqueID> idsOf(AssetList* list) {
    std::vector<UniqueID> ids;
    for (int i = 0; i < list->getCount(); ++i) ids.push_back(list->getAsset(i)->getID());
    return ids;
}

// The documented order, restated without PropertyValue's comparisons: a missing date sorts before
// every date, texts by the platform's comparison.
int compareEntry(PropertyList* a, PropertyList* b, const CString& name, bool ascending) {
    const PropertyValue &x = a->getValue(name), &y = b->getValue(name);
    if (name != u"timestamp" && name != u"rating") return Platform::compareText(x.asString(), y.asString());
    // A missing number ties with 0 going up; going down it is greater than 0 (not equal) and less than 1.
    const auto number = [&](const PropertyValue& v) {
        return v.isNull() ? (ascending ? 0 : 1) : 2 * v.asInt();
    };
    const auto date = [](const PropertyValue& v) {
        const DateTime d = v.asDateTime();
        return std::make_tuple(!v.isNull(), d.getYear(), d.getMonth(), d.getMDay());
    };
    if (name == u"rating") return number(x) < number(y) ? -1 : number(y) < number(x);
    return date(x) < date(y) ? -1 : date(y) < date(x);
}

std::vector<UniqueID> stableSorted(std::vector<OwnedPtr<Asset>> inserted, const SortKeyList& keys) {
    std::stable_sort(inserted.begin(), inserted.end(), [&](Asset* a, Asset* b) {
        for (const auto& key : keys) {
            const int c = compareEntry(a->getProperties(), b->getProperties(), key.name, key.ascending);
            if (c != 0) return key.ascending ? c < 0 : c > 0;
        }
        return false;
    });
    std::vector<UniqueID> ids;
    for (Asset* asset : inserted) ids.push_back(asset->getID());
    return ids;
}

// An asset with a random date (missing one time in five), rating (missing one in four, some
// negative) and name, drawn from few values so that keys tie often.
Asset* randomAsset(std::uint32_t n, std::mt19937& random) {
    std::vector<std::pair<const char16_t*, PropertyValue>> properties;
    if (random() % 5)
        properties.emplace_back(u"timestamp", DateTime(2000 + random() % 4, 1 + random() % 3, 1, 0, 0, 0, 0));
    if (random() % 4) properties.emplace_back(u"rating", PropertyValue(static_cast<int>(random() % 6) - 2));
    static const char16_t* names[] = {u"a.none", u"B.none", u"b.none", u"\u00e9t\u00e9.none", u"z.none"};
    properties.emplace_back(Asset::kPropFilename, PropertyValue(names[random() % 5]));
    properties.emplace_back(Asset::kPropFolder, PropertyValue(random() % 2 ? u"/photos/2003" : u"/photos"));
    return assetFor(n, properties);
}

// The two kinds of source a view follows: a list in memory and a catalogue file.
std::vector<OwnedPtr<AssetList>> sources(const TempDir& dir) {
    EXPECT_TRUE(AssetDb::createFile(dir.wide("catalog.db")));
    return {OwnedPtr<AssetList>(MemAssetList::create()),
            OwnedPtr<AssetList>(AssetDb::create(dir.wide("catalog.db")))};
}

std::vector<SortKeyList> keyLists() {
    std::vector<SortKeyList> lists(5);
    lists[0].add(u"timestamp", true);
    lists[1].add(u"timestamp", false);
    lists[2].add(u"rating", false), lists[2].add(u"timestamp", true);
    lists[3].add(Asset::kPropFilename, true), lists[3].add(u"rating", true);
    lists[4].add(Asset::kPropFolder, true), lists[4].add(Asset::kPropFilename, false);
    return lists;
}

}  // namespace

TEST(SortedAssetList, EqualsAStableSortOfItsSourceAndThenOfEveryInsertionAsItFollows) {
    std::mt19937 random(7);
    for (const SortKeyList& keys : keyLists()) {
        TempDir dir;
        for (AssetList* source : sources(dir)) {
            for (std::uint32_t n = 1; n <= 300; ++n)
                source->addAsset(OwnedPtr<Asset>(randomAsset(n, random)), false);
            OwnedPtr<SortedAssetList> view = source->createSorted(keys, nullptr);
            // Built in the source's order: for a list in memory that of the objects' addresses, for a
            // catalogue that of the ids, read from the records without building assets.
            std::vector<OwnedPtr<Asset>> inserted;
            for (int i = 0; i < source->getCount(); ++i) inserted.emplace_back(source->getAsset(i));
            ASSERT_EQ(stableSorted(inserted, keys), idsOf(view)) << keys[0].name.toUtf8();
            // Then it follows: removals drop out, additions go behind the keys equal to theirs.
            for (std::uint32_t n = 301; n <= 400; ++n) {
                const std::size_t victim = random() % inserted.size();
                source->removeAsset(inserted[victim]->getID(), true);
                inserted.erase(inserted.begin() + static_cast<std::ptrdiff_t>(victim));
                inserted.emplace_back(randomAsset(n, random));
                source->addAsset(inserted.back(), true);
            }
            EXPECT_EQ(stableSorted(inserted, keys), idsOf(view)) << keys[0].name.toUtf8();
        }
    }
}

// Missing dates and numbers are covered by the stable sort above; a missing text compares lopsidedly.
TEST(SortedAssetList, AMissingTextIsLopsidedAndTiesKeepTheInsertionOrder) {
    const struct {
        const char16_t* key;
        bool ascending;
        PropertyValue first, second;  // inserted in this order; null: the asset lacks the property
        bool secondBefore;
    } cases[] = {
        {u"caption", true, PropertyValue(u"abc"), PropertyValue(), false},
        {u"caption", true, PropertyValue(), PropertyValue(u"abc"), false},
        // Going down, each goes before the other: the one inserted later comes first.
        {u"caption", false, PropertyValue(), PropertyValue(u"abc"), true},
        {u"caption", false, PropertyValue(u"abc"), PropertyValue(), true},
    };
    for (const auto& c : cases) {
        OwnedPtr<MemAssetList> source = MemAssetList::create();
        OwnedPtr<SortedAssetList> view = source->createSorted(c.key, c.ascending, nullptr);
        for (const auto& [n, value] : {std::pair{1u, c.first}, std::pair{2u, c.second}}) {
            OwnedPtr<Asset> asset = value.isNull() ? assetFor(n) : assetFor(n, {{c.key, value}});
            source->addAsset(asset, true);
        }
        EXPECT_EQ(c.secondBefore ? (std::vector{idFor(2), idFor(1)}) : (std::vector{idFor(1), idFor(2)}),
                  idsOf(view))
            << CString(c.key).toUtf8() << " " << c.first.asString().toUtf8() << " then "
            << c.second.asString().toUtf8();
    }
}

TEST(AssetList, EachChangeNotifiesTheListItsFilteredViewAndTheSelection) {
    OwnedPtr<MemAssetList> list = MemAssetList::create();
    for (std::uint32_t n = 1; n <= 3; ++n)
        list->addAsset(OwnedPtr<Asset>(assetFor(n, {{u"keep", 1}})), false);
    OwnedPtr<SortedAssetList> view = list->createSorted(
        u"rating", true, OwnedPtr<Filter>(PropertyFilter::create(u"keep", PropertyValue(1))));
    OwnedPtr<AssetSelection> selection = AssetSelection::create(view);
    Heard onList, onView, onSelection;
    list->addListener(&onList), view->addListener(&onView), selection->addListener(&onSelection);
    OwnedPtr<Asset> kept = assetFor(4, {{u"keep", 1}}), dropped = assetFor(5, {{u"keep", 0}});
    OwnedPtr<MemAssetList> others = MemAssetList::create(), gone = MemAssetList::create();
    others->addAsset(OwnedPtr<Asset>(assetFor(6)), false),
        others->addAsset(OwnedPtr<Asset>(assetFor(7)), false);
    gone->addAsset(list->getAsset(idFor(1)), false), gone->addAsset(list->getAsset(idFor(2)), false);
    // What the list, the view and the selection heard, as "code:n,n" per notification.
    const struct {
        const char* what;
        std::function<void()> run;
        const char *list, *view, *selection;
    } steps[] = {
        {"add one that passes", [&] { list->addAsset(kept, true); }, "1:4", "1:4", ""},
        {"add one that fails", [&] { list->addAsset(dropped, true); }, "1:5", "", ""},
        {"select twice",
         [&] {
             selection->select(idFor(4), true), selection->select(idFor(4), true);
             selection->select(idFor(1), true);
         },
         "", "", "1:4 1:1"},
        {"change a property", [&] { kept->getProperties()->set(u"rating", PropertyValue(5), true); }, "3:4",
         "3:4", ""},
        {"now passes, but only a rebuild adds it",
         [&] { dropped->getProperties()->set(u"keep", PropertyValue(1), true); }, "3:5", "", ""},
        {"the same object again", [&] { list->addAsset(kept, true); }, "3:4", "3:4", ""},
        {"remove", [&] { list->removeAsset(kept, true); }, "2:4", "2:4", "2:4"},
        {"the view refuses what fails",
         [&] { EXPECT_FALSE(view->addAsset(OwnedPtr<Asset>(assetFor(8)), true)); }, "", "", ""},
        {"add several: new objects lacking keep", [&] { EXPECT_TRUE(list->addAssets(others, true)); },
         "4:6,7", "4:", ""},
        {"remove several", [&] { list->removeAssets(gone, true); }, "5:1,2", "5:1,2", "2:1"},
        {"clear: the view empties silently", [&] { list->removeAll(); }, "6:0", "", ""},
    };
    for (const auto& step : steps) {
        step.run();
        EXPECT_EQ(step.list, onList.take()) << step.what;
        EXPECT_EQ(step.view, onView.take()) << step.what;
        EXPECT_EQ(step.selection, onSelection.take()) << step.what;
    }
    EXPECT_EQ(0, view->getCount());
    EXPECT_EQ(UniqueID(), selection->getLastSelected()) << "the last selected went with its asset";
}

TEST(AssetIterator, AWalkStartsOverAfterAChangeButNotAfterAChangedAsset) {
    OwnedPtr<MemAssetList> list = MemAssetList::create();
    for (std::uint32_t n = 1; n <= 4; ++n)
        list->addAsset(OwnedPtr<Asset>(assetFor(n, {{u"rating", int(n)}})), false);
    OwnedPtr<SortedAssetList> view = list->createSorted(u"rating", false, nullptr);
    OwnedPtr<AssetIterator> walk = view->createIterator();
    EXPECT_EQ(-1, walk->getCount());
    std::vector<UniqueID> seen;
    while (walk->step()) {
        seen.push_back(walk->current()->getID());
        if (seen.size() == 2) view->getAsset(0)->getProperties()->set(u"rating", PropertyValue(0), true);
        if (seen.size() == 3) list->addAsset(OwnedPtr<Asset>(assetFor(5, {{u"rating", 9}})), true);
    }
    // Four steps, a change of one asset that keeps its place, then the addition: a new walk of five.
    EXPECT_EQ((std::vector{idFor(4), idFor(3), idFor(2), idFor(5), idFor(4), idFor(3), idFor(2), idFor(1)}),
              seen);
    EXPECT_EQ(4, walk->getCount());
    EXPECT_TRUE(walk->prev() && walk->prev());
    EXPECT_EQ(idFor(3), walk->current()->getID());
    // A selection is walked in the view's order, whatever the order of selecting.
    OwnedPtr<AssetSelection> selection = AssetSelection::create(view);
    for (std::uint32_t n : {1, 5, 3}) selection->select(idFor(n), true);
    EXPECT_EQ(idFor(5), selection->getFirst()->getID());
    // findEqual: a whole key; a value alone only under one sort key, as a shorter key is before all.
    SortKeyList two(u"rating", false);
    two.add(Asset::kPropFolder, true);
    OwnedPtr<SortedAssetList> both = list->createSorted(two, nullptr);
    EXPECT_EQ(idFor(2), view->findEqual(PropertyValue(2))->getID());
    EXPECT_TRUE(!view->findEqual(PropertyValue(7)) && !both->findEqual(PropertyValue(2)));
    EXPECT_EQ(idFor(2), both->findEqual(list->getAsset(idFor(2))->getProperties())->getID());
    OwnedPtr<AssetIterator> chosen = selection->createIterator();
    std::vector<UniqueID> picked;
    while (chosen->step()) {
        picked.push_back(chosen->current()->getID());
        if (picked.size() == 1) selection->deselect(idFor(3), true);
    }
    EXPECT_EQ((std::vector{idFor(5), idFor(5), idFor(1)}), picked);
}

TEST(Filter, StringAndPropertyFiltersFollowTheirMatchRules) {
    using M = StringFilter;
    const struct {
        M::MatchType type;
        const char16_t* pattern;
        bool caseSensitive;
        const char16_t* text;  // null: the property is missing
        bool passes;
    } cases[] = {
        {M::kMatchPrefix, u"IMG", false, u"img_0001.jpg", true},
        {M::kMatchPrefix, u"0001", false, u"img_0001.jpg", false},
        {M::kMatchSubstring, u"0001", false, u"img_0001.jpg", true},
        {M::kMatchSubstring, u"", false, u"img_0001.jpg", false},
        {M::kMatchExact, u"", false, nullptr, true},
        {M::kMatchExact, u"IMG_0001.JPG", false, u"img_0001.jpg", true},
        {M::kMatchExact, u"IMG_0001.JPG", true, u"img_0001.jpg", false},
        {M::kMatchSubstring, u"\u00c9T\u00c9", false, u"l'\u00e9t\u00e9 1999", true},
        // A pattern that begins with the second half of a surrogate pair is not found inside the pair.
        {M::kMatchSubstring, u"\xdc00", true, u"a\xd800\xdc00", false},
        {M::kMatchSubstring, u"\xd800\xdc00", true, u"a\xd800\xdc00", true},
    };
    for (const auto& c : cases) {
        OwnedPtr<Asset> asset = c.text ? assetFor(1, {{u"caption", PropertyValue(c.text)}}) : assetFor(1);
        OwnedPtr<Filter> filter = M::create(u"caption", c.pattern, c.type, c.caseSensitive);
        EXPECT_EQ(c.passes, filter->matches(asset.get())) << c.type << " " << CString(c.pattern).toUtf8();
    }
    // A property filter compares with the asset's value on the left: an int equals a numeric string.
    OwnedPtr<Asset> rated = assetFor(1, {{u"rating", 12}});
    EXPECT_TRUE(
        OwnedPtr<Filter>(PropertyFilter::create(u"rating", PropertyValue(u"12")))->matches(rated.get()));
    EXPECT_FALSE(
        OwnedPtr<Filter>(PropertyFilter::create(u"caption", PropertyValue(u"")))->matches(rated.get()));
}

TEST(AssetList, AViewFollowsChangesFromAnotherThreadWhileItIsWalked) {
    TempDir dir;
    for (AssetList* list : sources(dir)) {
        OwnedPtr<SortedAssetList> view = list->createSorted(u"rating", true, nullptr);
        std::atomic<bool> finished{false};
        std::thread writer([&] {
            for (std::uint32_t n = 1; n <= 400; ++n) {
                OwnedPtr<Asset> asset = assetFor(n, {{u"rating", int(n % 7)}});
                // Once the list holds it, the walker may take references too: this one goes under the lock.
                AssetList::Lock lock(list);
                list->addAsset(asset, true);
                asset = nullptr;
                if (n % 3 == 0) list->removeAsset(idFor(n - 1), true);
            }
            finished = true;
        });
        OwnedPtr<AssetIterator> walk = view->createIterator();
        OwnedPtr<AssetSelection> selection = AssetSelection::create(view);
        int walked = 0;
        for (int round = 0; !finished || round < 1000; ++round) {
            AssetList::Lock lock(view);
            if (!walk->step()) continue;
            OwnedPtr<Asset> asset = walk->current();
            selection->select(asset->getID(), true);
            ++walked;
        }
        writer.join();
        EXPECT_GT(walked, 0);
        // In order, and each selected id is one the list still holds or one its removal deselected.
        std::vector<int> ratings;
        for (int i = 0; i < view->getCount(); ++i)
            ratings.push_back(view->getAsset(i)->getProperties()->getValue(u"rating").asInt());
        EXPECT_TRUE(std::is_sorted(ratings.begin(), ratings.end()));
        EXPECT_EQ(267, view->getCount());
        OwnedPtr<AssetIterator> chosen = selection->createIterator();
        while (chosen->step()) EXPECT_TRUE(view->contains(chosen->current()));
    }
}

TEST(SortValue, ComparesExactlyAsPropertyValueAndGivesTheValueBackByteForByte) {
    // Values of every type, among them the awkward ones: short and long byte forms, unknown tags,
    // numbers as text, negative dates, a null value that carries bytes.
    std::vector<PropertyValue> values = {PropertyValue(),
                                         PropertyValue(0),
                                         PropertyValue(-3),
                                         PropertyValue(7),
                                         PropertyValue(u""),
                                         PropertyValue(u"7"),
                                         PropertyValue(u"abc"),
                                         PropertyValue(u"ABC"),
                                         PropertyValue(idFor(1)),
                                         PropertyValue(UniqueID()),
                                         PropertyValue(DateTime(2004, 2, 29, 8, 15, 0, 0)),
                                         PropertyValue(DateTime(-1, 13, 0, 0, 0, 0, -5)),
                                         PropertyValue(DateTime())};
    unsigned char raw[16] = {1, 0, 0, 0, 0xd4, 7, 2, 0, 29, 0, 8, 0, 15, 0, 0, 0};
    for (const auto type : {PropertyValue::kNull, PropertyValue::kBytes, PropertyValue::kInt,
                            PropertyValue::kDateTime, PropertyValue::kUniqueID, PropertyValue::Type(9)})
        for (int size : {0, 3, 4, 14, 16}) values.push_back(PropertyValue(PropertyValue(raw, size, type)));
    for (const PropertyValue& a : values) {
        const SortValue x(a, true);
        const PropertyValue back = x.getValue();
        EXPECT_TRUE(back.getType() == a.getType() && back.asBytes() == a.asBytes());
        for (const PropertyValue& b : values) {
            const SortValue y(b, false);
            EXPECT_EQ(a < b, x.isLess(y))
                << a.getType() << " " << b.getType() << " " << a.asBytes().getLength();
            EXPECT_EQ(a == b, x.isEqual(y)) << a.getType() << " " << b.getType();
        }
    }
}
