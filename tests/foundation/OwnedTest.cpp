// The owner count, its pointer, and Size.

#include <gtest/gtest.h>

#include <set>

#include "orvanta/foundation/Owned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/Size.h"

using namespace Orvanta;

namespace {
// Counts its own destructions so tests can see exactly when release deletes.
class Tracked : public Owned<Tracked> {
public:
    explicit Tracked(int* deaths) : mDeaths(deaths) {}
    ~Tracked() override { ++*mDeaths; }

private:
    int* mDeaths;
};
}  // namespace

TEST(Owned, CountsStartAtZeroAndOnlyReleaseBelowOneDeletes) {
    int deaths = 0;
    auto* object = new Tracked(&deaths);
    object->ref();
    object->deref();
    EXPECT_EQ(deaths, 0) << "deref never deletes";
    {
        OwnedPtr<Tracked> owner(object), second(owner);
        EXPECT_EQ(object->getOwnerCount(), 2);
        owner = object;
        owner = owner;
        EXPECT_EQ(object->getOwnerCount(), 2) << "assigning the held pointer changes nothing";
        Tracked copy(*object);
        EXPECT_EQ(copy.getOwnerCount(), 2) << "a copy carries the count along";
        copy.deref();
        copy.deref();
    }
    EXPECT_EQ(deaths, 2);
    (new Tracked(&deaths))->release();  // 0 -> -1: below one, so it goes
    EXPECT_EQ(deaths, 3);
}

TEST(Owned, PointersReleaseTheOldBeforeOwningTheNewDetachAndOrderByAddress) {
    int deaths = 0;
    auto* first = new Tracked(&deaths);
    auto* second = new Tracked(&deaths);
    OwnedPtr<Tracked> owner(first);
    EXPECT_EQ(owner = second, second);
    EXPECT_EQ(deaths, 1);
    Tracked* detached = owner.detach();
    EXPECT_TRUE(!owner && detached->getOwnerCount() == 0 && deaths == 1);
    OwnedPtr<Tracked> a(detached), b(new Tracked(&deaths)), a2(a);
    EXPECT_TRUE(a == a2 && a == a.get() && !(a == b));
    EXPECT_EQ((std::set<OwnedPtr<Tracked>>{a, b, a2}).size(), 2u);
    a2 = nullptr;
    a = nullptr;
    EXPECT_EQ(deaths, 2);
}

TEST(Size, DimensionsScaleAndSides) {
    EXPECT_TRUE(Size(3, 2).hasSameDimensions(Size(2, 3)) && !(Size(3, 2) == Size(2, 3)));
    EXPECT_FALSE(Size(3, 2).hasSameDimensions(Size(3, 3)));
    Size s(3, 3), large(4000, 3000);
    s.scale(0.5);
    large.scale(1.0 / 3.0);
    EXPECT_TRUE(s == Size(1, 1) && large == Size(1333, 1000)) << "truncation, not rounding";
    EXPECT_TRUE(Size(CSize(640, 480)).getLongest() == 640 && Size(640, 480).getShortest() == 480);
}
