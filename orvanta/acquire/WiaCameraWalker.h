#pragma once
// WiaCameraWalker: opens a camera by its id ("MODEL@PORT") and walks its folders, handing every file
// to a listener.
//
// Contract: walk() goes depth first from the camera's root: the files of a folder in the camera's
// order, then its subfolders; folders themselves are never handed on. A listener's false stops the
// walk, which then still counts as a success. walk() answers false for a camera that did not open
// or stopped answering (a folder that cannot be listed), and when cancel() was called (from any
// thread), which also interrupts a transfer under way. supportsDeleteAfterCopy() is true for every
// camera. setProgress() passes on the fraction done of each transfer.
//
// The camera is connected on the first walk (or isOpen()), not before. A walker made by create()
// connects anew and, when it ends after walks that did not fail, leaves its connection to the one
// made next by resume() for the same id: libgphoto2 keeps a connected camera's folder listings and
// file details, so a copy walks the very files its scan found without asking the device again. One
// connection is kept at a time; a new connection to any camera closes it first.

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class WiaCameraWalkerListener;
namespace Platform {
class GphotoCamera;
}

class WiaCameraWalker : public IOwned {
public:
    static WiaCameraWalker* create(const CString& deviceId);
    static WiaCameraWalker* resume(const CString& deviceId);
    ~WiaCameraWalker() override;

    virtual bool supportsDeleteAfterCopy() { return true; }
    virtual bool walk(WiaCameraWalkerListener* listener);
    virtual bool isOpen() const { return camera() != nullptr; }
    void cancel() { mCancelled = true; }
    // A test polled between items and during transfers, for a walk stopped from its own thread.
    void setCancelTest(std::function<bool()> test) { mCancelTest = std::move(test); }
    bool isCancelled() const { return mCancelled || (mCancelTest && mCancelTest()); }
    void setProgress(std::function<void(double)> progress);

private:
    WiaCameraWalker(const CString& deviceId, bool resume);
    Platform::GphotoCamera* camera() const;
    // 0 walked, 1 stopped by the listener, -1 failed.
    int walkFolder(const std::string& folder, WiaCameraWalkerListener* listener);

    CString mDeviceId;
    bool mResume;
    bool mFailed = false;
    // Connected on first need, from a const isOpen() too.
    mutable bool mConnected = false;
    mutable std::unique_ptr<Platform::GphotoCamera> mCamera;
    std::atomic<bool> mCancelled{false};
    std::function<bool()> mCancelTest;
};

}  // namespace Orvanta
