#pragma once
// Synchronizer: holds a Synchronized locked for the lifetime of the scope.

#include "orvanta/foundation/Synchronized.h"

namespace Orvanta {

class Synchronizer {
public:
    explicit Synchronizer(const Synchronized* mutex) : mMutex(mutex) { mMutex->lock(); }
    ~Synchronizer() { mMutex->unlock(); }
    Synchronizer(const Synchronizer&) = delete;
    Synchronizer& operator=(const Synchronizer&) = delete;

private:
    const Synchronized* mMutex;
};

}  // namespace Orvanta
