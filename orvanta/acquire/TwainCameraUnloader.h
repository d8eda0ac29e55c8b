#pragma once
// TwainCameraUnloader: fetches every picture of one scanner or camera of SANE into temporary JPEG
// files, through the driver helper process.
//
// Contract: openSource() looks for the source of the key among SANE's devices (isScanner and
// isCamera call it); a key no device has leaves the source closed, and both answers are false.
// isScanner() and isCamera() tell the source's kind from what SANE calls it. unload() needs no
// listing: the key ends in SANE's name of the device, which the helper opens directly, and a
// device SANE does not have fails there. unload() scans with the options set (NAME=VALUE, SANE's
// option names), turns each picture into a JPEG file named after "twainImage.jpg" in the temporary
// folder (never over another file; ScanWriter), and hands it to the listener, which takes charge of
// the file; a picture of 16 bits a sample is skipped. It answers true when the source ran out of
// pictures or the listener stopped it, false on a failure of the source (a jam, a cover open), when
// a picture could not be written (a full disk), and when the driver crashed or hung, which latches
// TwainSupport's crashed flag: from then on nothing reaches SANE until the process ends. showUi
// has no effect: SANE drivers have no user interface of their own.

#include <string>
#include <vector>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class TwainCameraUnloaderListener;

class TwainCameraUnloader : public IOwned {
public:
    static TwainCameraUnloader* create(const CString& sourceKey, bool showUi);

    virtual bool unload(TwainCameraUnloaderListener* listener);
    virtual bool isScanner();
    virtual bool isCamera();
    virtual bool openSource();
    virtual void closeSource();

    void setOptions(const std::vector<std::string>& options) { mOptions = options; }
    // SANE's status at the end of the last unload.
    int getLastStatus() const { return mLastStatus; }

private:
    TwainCameraUnloader(const CString& sourceKey, bool showUi);

    CString mSourceKey;
    std::string mDevice;  // SANE's name of the source; empty while closed
    std::string mType;
    bool mSourceOpen = false;
    bool mShowUi;
    std::vector<std::string> mOptions;
    int mLastStatus = 0;
};

}  // namespace Orvanta
