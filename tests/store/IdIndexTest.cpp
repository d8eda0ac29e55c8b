// The id index against a plain ordered map, through insertions, removals, rebuilds and walks.

#include "orvanta/store/IdIndex.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

using namespace Orvanta;

namespace {

IdIndex::Key keyFor(std::uint64_t hi, std::uint64_t lo) {
    return IdIndex::Key{hi, lo};
}

void expectSame(const IdIndex& index, const std::map<std::pair<std::uint64_t, std::uint64_t>, int>& model) {
    ASSERT_EQ(index.size(), model.size());
    auto position = index.begin();
    for (const auto& [key, offset] : model) {
        ASSERT_FALSE(index.atEnd(position));
        EXPECT_EQ(index.at(position).key, keyFor(key.first, key.second));
        EXPECT_EQ(index.at(position).offset, offset);
        position = index.next(position);
    }
    EXPECT_TRUE(index.atEnd(position));
}

TEST(IdIndexTest, KeysOrderByTheirBytes) {
    unsigned char a[16] = {0x01, 0xff}, b[16] = {0x02};
    EXPECT_TRUE(IdIndex::Key::fromBytes(a) < IdIndex::Key::fromBytes(b));
    unsigned char c[16] = {}, d[16] = {};
    c[15] = 1;
    d[8] = 1;
    EXPECT_TRUE(IdIndex::Key::fromBytes(c) < IdIndex::Key::fromBytes(d));
    unsigned char back[16];
    IdIndex::Key::fromBytes(a).toBytes(back);
    EXPECT_TRUE(std::equal(a, a + 16, back));
}

TEST(IdIndexTest, AgreesWithAnOrderedMap) {
    std::mt19937_64 random(7);
    IdIndex index;
    std::map<std::pair<std::uint64_t, std::uint64_t>, int> model;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> keys;
    for (int step = 0; step < 20000; ++step) {
        const int action = static_cast<int>(random() % 10);
        if (action < 6 || keys.empty()) {
            // Few distinct high halves, so that keys tie on them and chunks split and fold.
            const std::pair<std::uint64_t, std::uint64_t> key{random() % 64, random()};
            keys.push_back(key);
            index.assign(keyFor(key.first, key.second), step);
            model[key] = step;
        } else if (action < 8) {
            const auto key = keys[random() % keys.size()];
            EXPECT_EQ(index.erase(keyFor(key.first, key.second)), model.erase(key) > 0);
        } else {
            const auto key = keys[random() % keys.size()];
            const auto found = model.find(key);
            EXPECT_EQ(index.find(keyFor(key.first, key.second)), found == model.end() ? -1 : found->second);
        }
    }
    expectSame(index, model);
    for (const auto& key : keys) {
        index.erase(keyFor(key.first, key.second));
        model.erase(key);
    }
    expectSame(index, model);
    EXPECT_EQ(index.find(keyFor(1, 1)), -1);
}

TEST(IdIndexTest, BuildKeepsTheHighestOffsetOfAKey) {
    std::mt19937_64 random(11);
    std::vector<IdIndex::Entry> entries;
    std::map<std::pair<std::uint64_t, std::uint64_t>, int> model;
    for (int i = 0; i < 10000; ++i) {
        std::pair<std::uint64_t, std::uint64_t> key{random(), random()};
        if (i % 100 == 99)
            key = {entries[static_cast<std::size_t>(i / 2)].key.hi,
                   entries[static_cast<std::size_t>(i / 2)].key.lo};
        entries.push_back(IdIndex::Entry{keyFor(key.first, key.second), i});
        model[key] = i;  // ascending offsets: the last one wins
    }
    IdIndex index;
    index.build(entries);
    expectSame(index, model);
    IdIndex small;
    small.build(
        {IdIndex::Entry{keyFor(2, 0), 5}, IdIndex::Entry{keyFor(1, 0), 9}, IdIndex::Entry{keyFor(2, 0), 7}});
    EXPECT_EQ(small.size(), 2u);
    EXPECT_EQ(small.find(keyFor(2, 0)), 7);
}

TEST(IdIndexTest, LowerBoundAndWalkingBack) {
    IdIndex index;
    for (std::uint64_t i = 0; i < 1000; ++i) index.assign(keyFor(i * 2, 0), static_cast<int>(i));
    auto position = index.lowerBound(keyFor(501, 0));
    EXPECT_EQ(index.at(position).offset, 251);
    EXPECT_TRUE(index.previous(position));
    EXPECT_EQ(index.at(position).offset, 250);
    EXPECT_TRUE(index.atEnd(index.lowerBound(keyFor(5000, 0))));
    position = index.lowerBound(keyFor(0, 0));
    EXPECT_FALSE(index.previous(position));
    // From the end, back to the last entry.
    position = index.lowerBound(keyFor(5000, 0));
    EXPECT_TRUE(index.previous(position));
    EXPECT_EQ(index.at(position).offset, 999);
}

}  // namespace
