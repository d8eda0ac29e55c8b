#pragma once
// TwainCameraUnloaderListener: told of each picture a TwainCameraUnloader has fetched.

#include "orvanta/platform/CString.h"

namespace Orvanta {

// A fetched picture: a temporary JPEG file, which the receiver takes charge of.
class TwainImageItem {
public:
    explicit TwainImageItem(const CString& path) : mPath(path) {}
    const CString& getPath() const { return mPath; }

private:
    CString mPath;
};

class TwainCameraUnloaderListener {
public:
    virtual ~TwainCameraUnloaderListener() = default;
    // False: fetch no more pictures.
    virtual bool onImage(TwainImageItem* item) = 0;
};

}  // namespace Orvanta
