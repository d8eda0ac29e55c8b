#include "orvanta/acquire/AcquireChooserHelper.h"

#include "orvanta/acquire/DriveEnumerator.h"
#include "orvanta/acquire/TwainEnumerator.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/acquire/WiaEnumerator.h"
#include "orvanta/foundation/OwnedPtr.h"

namespace Orvanta {

AcquireChooser::Result AcquireChooserHelper::chooseDevice(int types) {
    mTypes = types;
    mCount = 0;
    mSelected = -1;
    if (types & kSourceImagingDevice) {
        if (TwainSupport::shouldUseTwain()) {
            OwnedPtr<TwainEnumerator> devices = TwainEnumerator::create();
            devices->enumerate(this, -1);
        } else {
            OwnedPtr<WiaEnumerator> devices = WiaEnumerator::create();
            devices->enumerate(this, -1);
        }
    }
    if ((types & kSourceRemovableDrive) && mCount < AcquireChooser::kMaxSources)
        DriveEnumerator::enumerate(this, DriveEnumerator::kRemovable);
    if ((types & kSourceOpticalDrive) && mCount < AcquireChooser::kMaxSources)
        DriveEnumerator::enumerate(this, DriveEnumerator::kOptical);
    if (mCount == 0) return AcquireChooser::kNoSource;
    if (mCount == 1) {
        mSelected = 0;
        return AcquireChooser::kSourceSelected;
    }
    mOwner->handleSelection();
    return mSelected == -1 ? AcquireChooser::kNothingChosen : AcquireChooser::kSourceSelected;
}

void AcquireChooserHelper::add(const CString& name, const CString& id, int type) {
    mNames[mCount] = name;
    mIds[mCount] = id;
    mSourceTypes[mCount] = type;
    ++mCount;
}

bool AcquireChooserHelper::onDevice(int kind, const CString& name, const CString& port, const CString& id) {
    if (mCount < AcquireChooser::kMaxSources) add(name, id, kSourceImagingDevice);
    return mCount < AcquireChooser::kMaxSources;
}

bool AcquireChooserHelper::onDrive(int driveClass, const CString& label, const CString& path) {
    if (mCount < AcquireChooser::kMaxSources) {
        const bool removable = driveClass == DriveEnumerator::kRemovable;
        CString name = label;
        if ((mTypes & (kSourceRemovableDrive | kSourceOpticalDrive)) ==
            (kSourceRemovableDrive | kSourceOpticalDrive))
            name += removable ? u" (Media card or USB drive)" : u" (CD)";
        add(name, path, removable ? kSourceRemovableDrive : kSourceOpticalDrive);
    }
    return mCount < AcquireChooser::kMaxSources;
}

}  // namespace Orvanta
