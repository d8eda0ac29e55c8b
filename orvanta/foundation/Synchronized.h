#pragma once
// Synchronized: the library's mutex, recursive for the thread that holds it.

#include <mutex>

namespace Orvanta {

class Synchronized {
public:
    Synchronized() = default;
    Synchronized(const Synchronized&) = delete;
    Synchronized& operator=(const Synchronized&) = delete;
    virtual ~Synchronized() = default;

    void lock() const { mMutex.lock(); }
    void unlock() const { mMutex.unlock(); }
    std::recursive_mutex* getMutex() const { return &mMutex; }

private:
    mutable std::recursive_mutex mMutex;
};

}  // namespace Orvanta
