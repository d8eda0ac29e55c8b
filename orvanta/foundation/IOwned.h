#pragma once
// IOwned: the intrusive owner count carried by every shared object of the library.
//
// Contract: a new object has count 0 (creating it does not own it); the first OwnedPtr takes it to 1.
// release() deletes the object once the count falls below 1; deref() only lowers the count. Copying
// an object copies its count with everything else. The count is a plain int: objects shared between
// threads rely on their owners' discipline, not on this class.

namespace Orvanta {

class IOwned {
public:
    IOwned() = default;
    IOwned(const IOwned&) = default;
    IOwned& operator=(const IOwned&) = default;
    virtual ~IOwned() = default;

    void ref() { ++mOwnerCount; }
    void acquire() { ++mOwnerCount; }
    void deref() { --mOwnerCount; }
    void release() {
        if (--mOwnerCount < 1) delete this;
    }
    int getOwnerCount() const { return mOwnerCount; }

private:
    int mOwnerCount = 0;
};

}  // namespace Orvanta
