#pragma once
// OwnedPtr<T>: the owning smart pointer over IOwned.
//
// Contract: holding a pointer counts as one owner. Assigning the pointer already held changes
// nothing; assigning another releases the old one first (which may delete it) and then owns the new.
// Pointers order by their unsigned value so an OwnedPtr can key an ordered container.

#include <cstdint>
#include <functional>

namespace Orvanta {

template <typename T>
class OwnedPtr {
public:
    OwnedPtr() = default;
    OwnedPtr(T* object) : mObject(object) {
        if (mObject) mObject->ref();
    }
    OwnedPtr(const OwnedPtr& other) : OwnedPtr(other.mObject) {}
    virtual ~OwnedPtr() {
        if (mObject) mObject->release();
    }

    T* operator=(const OwnedPtr& other) { return assign(other.mObject); }
    T* operator=(T* object) { return assign(object); }

    operator T*() const { return mObject; }
    T* operator->() const { return mObject; }
    T& operator*() const { return *mObject; }
    T* get() const { return mObject; }
    bool operator!() const { return mObject == nullptr; }

    // Gives the object up without deleting it: the count goes down by one and the pointer is
    // returned, so a create function can hand back what it built at owner count 0.
    T* detach() {
        T* object = mObject;
        mObject = nullptr;
        if (object) object->deref();
        return object;
    }

    bool operator==(const OwnedPtr& other) const { return mObject == other.mObject; }
    bool operator==(const T* object) const { return mObject == object; }
    bool operator<(const OwnedPtr& other) const {
        return reinterpret_cast<std::uintptr_t>(mObject) < reinterpret_cast<std::uintptr_t>(other.mObject);
    }

private:
    T* assign(T* object) {
        if (object == mObject) return mObject;
        if (mObject) mObject->release();
        mObject = object;
        if (mObject) mObject->ref();
        return mObject;
    }

    T* mObject = nullptr;
};

}  // namespace Orvanta
