#pragma once
// AcquireChooser: gathers the sources photos can come from (cameras and scanners, removable drives,
// optical drives), takes the only one or has the application choose, and answers questions about
// the chosen source.
//
// Contract: chooseDevice() lists devices first, then removable drives, then optical drives, at
// most kMaxSources in all; the enumerations stop when the list is full. With one source it is
// selected without asking; with several, handleSelection() is called, whose default takes the
// first, and an application overrides it to show the list (getTotalSources, getSourceName) and call
// setSelectedSource. A source is a type and an id, all that the copy and scan tasks need: a
// camera's "MODEL@PORT", a scanner's key, a drive's root path. Nothing throws; a missing device
// library gives no devices of its kind.

#include "orvanta/acquire/SourceType.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class AcquireChooserHelper;

class AcquireChooser {
public:
    enum Result : int { kNoSource = 0, kNothingChosen = 1, kSourceSelected = 2 };
    static constexpr int kMaxSources = 50;

    AcquireChooser();
    virtual ~AcquireChooser();
    AcquireChooser(const AcquireChooser&) = delete;
    AcquireChooser& operator=(const AcquireChooser&) = delete;

    virtual Result chooseDevice(int types);
    virtual CString getDeviceId();
    virtual int getDeviceType();
    virtual void handleSelection();
    virtual int getType();
    virtual int getTotalSources();
    virtual CString getSourceName(int index);
    virtual void setSelectedSource(int index);
    virtual CString getDeviceName();
    virtual bool supportsDeleteAfterCopy();
    virtual bool isScannerDevice();
    virtual bool isCameraDevice();

    // The id and type of any source, not only the selected one.
    CString getSourceId(int index);
    int getSourceType(int index);

    static bool supportsDeleteAfterCopy(int type, const CString& id);
    static bool isScannerDevice(int type, const CString& id);
    static bool isCameraDevice(int type, const CString& id);

private:
    AcquireChooserHelper* mHelper;
};

}  // namespace Orvanta
