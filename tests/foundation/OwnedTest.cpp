#include <gtest/gtest.h>

#include <set>

#include "orvanta/foundation/Owned.h"
#include "orvanta/foundation/OwnedPtr.h"

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

TEST(Owned, NewObjectIsUnownedUntilTheFirstPointer) {
    int deaths = 0;
    auto* object = new Tracked(&deaths);
    EXPECT_EQ(object->getOwnerCount(), 0);
    {
        OwnedPtr<Tracked> owner(object);
        EXPECT_EQ(object->getOwnerCount(), 1);
        OwnedPtr<Tracked> second(owner);
        EXPECT_EQ(object->getOwnerCount(), 2);
    }
    EXPECT_EQ(deaths, 1);
}

TEST(Owned, ReleaseAtZeroDeletesButDerefNeverDoes) {
    int deaths = 0;
    auto* object = new Tracked(&deaths);
    object->ref();
    object->deref();
    EXPECT_EQ(object->getOwnerCount(), 0);
    EXPECT_EQ(deaths, 0);
    object->release();  // 0 -> −1: below one, so it goes
    EXPECT_EQ(deaths, 1);
}

TEST(Owned, CopyCarriesTheCountAlong) {
    int deaths = 0;
    Tracked original(&deaths);
    original.acquire();
    original.acquire();
    Tracked copy(original);
    EXPECT_EQ(copy.getOwnerCount(), 2);
}

TEST(OwnedPtr, AssigningTheHeldPointerChangesNothingEvenAtOne) {
    int deaths = 0;
    auto* object = new Tracked(&deaths);
    OwnedPtr<Tracked> owner(object);
    owner = object;
    owner = owner;
    EXPECT_EQ(object->getOwnerCount(), 1);
    EXPECT_EQ(deaths, 0);
}

TEST(OwnedPtr, ReassignmentReleasesTheOldBeforeOwningTheNew) {
    int deaths = 0;
    auto* first = new Tracked(&deaths);
    auto* second = new Tracked(&deaths);
    OwnedPtr<Tracked> owner(first);
    EXPECT_EQ(owner = second, second);
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(second->getOwnerCount(), 1);
    owner = nullptr;
    EXPECT_EQ(deaths, 2);
    EXPECT_TRUE(!owner);
}

TEST(OwnedPtr, DetachHandsBackAnUnownedLiveObject) {
    int deaths = 0;
    OwnedPtr<Tracked> owner(new Tracked(&deaths));
    Tracked* object = owner.detach();
    EXPECT_TRUE(!owner);
    EXPECT_EQ(object->getOwnerCount(), 0);
    EXPECT_EQ(deaths, 0);
    OwnedPtr<Tracked> adopt(object);
    adopt = nullptr;
    EXPECT_EQ(deaths, 1);
}

TEST(OwnedPtr, ComparesAndOrdersByAddress) {
    int deaths = 0;
    OwnedPtr<Tracked> a(new Tracked(&deaths));
    OwnedPtr<Tracked> b(new Tracked(&deaths));
    OwnedPtr<Tracked> a2(a);
    EXPECT_TRUE(a == a2);
    EXPECT_TRUE(a == a.get());
    EXPECT_FALSE(a == b);
    std::set<OwnedPtr<Tracked>> keys{a, b, a2};
    EXPECT_EQ(keys.size(), 2u);
    EXPECT_NE(a < b, b < a);
}
