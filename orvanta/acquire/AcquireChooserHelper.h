#pragma once
// AcquireChooserHelper: the list behind AcquireChooser, filled by the device and drive
// enumerations it listens to.
//
// Contract: at most AcquireChooser::kMaxSources sources; each callback answers whether there is
// still room, so an enumeration stops at the limit. A drive's name is its label, with " (Media card
// or USB drive)" or " (CD)" behind it only when both kinds of drive were asked for: a list of one
// kind needs no telling apart.

#include "orvanta/acquire/AcquireChooser.h"
#include "orvanta/acquire/DriveEnumeratorListener.h"
#include "orvanta/acquire/ImagingDeviceListener.h"

namespace Orvanta {

class AcquireChooserHelper : public DriveEnumeratorListener, public ImagingDeviceListener {
public:
    explicit AcquireChooserHelper(AcquireChooser* owner) : mOwner(owner) {}

    AcquireChooser::Result chooseDevice(int types);
    bool onDrive(int driveClass, const CString& label, const CString& path) override;
    bool onDevice(int kind, const CString& name, const CString& port, const CString& id) override;

    int getType() const { return mTypes; }
    int getCount() const { return mCount; }
    int getSelected() const { return mSelected; }
    void setSelected(int index) { mSelected = index >= 0 && index < mCount ? index : -1; }
    CString getName(int index) const { return valid(index) ? mNames[index] : CString(); }
    CString getId(int index) const { return valid(index) ? mIds[index] : CString(); }
    int getSourceType(int index) const { return valid(index) ? mSourceTypes[index] : 0; }

private:
    bool valid(int index) const { return index >= 0 && index < mCount; }
    void add(const CString& name, const CString& id, int type);

    AcquireChooser* mOwner;
    int mTypes = 0;
    int mCount = 0;
    int mSelected = -1;
    CString mNames[AcquireChooser::kMaxSources];
    CString mIds[AcquireChooser::kMaxSources];
    int mSourceTypes[AcquireChooser::kMaxSources] = {};
};

}  // namespace Orvanta
