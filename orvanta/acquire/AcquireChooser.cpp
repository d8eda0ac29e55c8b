#include "orvanta/acquire/AcquireChooser.h"

#include "orvanta/acquire/AcquireChooserHelper.h"
#include "orvanta/acquire/TwainCameraUnloader.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/acquire/WiaCameraWalker.h"
#include "orvanta/foundation/OwnedPtr.h"

namespace Orvanta {

AcquireChooser::AcquireChooser() : mHelper(new AcquireChooserHelper(this)) {}

AcquireChooser::~AcquireChooser() {
    delete mHelper;
}

AcquireChooser::Result AcquireChooser::chooseDevice(int types) {
    return mHelper->chooseDevice(types);
}

CString AcquireChooser::getDeviceId() {
    return mHelper->getId(mHelper->getSelected());
}

int AcquireChooser::getDeviceType() {
    return mHelper->getSourceType(mHelper->getSelected());
}

void AcquireChooser::handleSelection() {
    setSelectedSource(0);
}

int AcquireChooser::getType() {
    return mHelper->getType();
}

int AcquireChooser::getTotalSources() {
    return mHelper->getCount();
}

CString AcquireChooser::getSourceName(int index) {
    return mHelper->getName(index);
}

CString AcquireChooser::getSourceId(int index) {
    return mHelper->getId(index);
}

int AcquireChooser::getSourceType(int index) {
    return mHelper->getSourceType(index);
}

void AcquireChooser::setSelectedSource(int index) {
    mHelper->setSelected(index);
}

CString AcquireChooser::getDeviceName() {
    return mHelper->getName(mHelper->getSelected());
}

bool AcquireChooser::supportsDeleteAfterCopy() {
    return supportsDeleteAfterCopy(getDeviceType(), getDeviceId());
}

bool AcquireChooser::isScannerDevice() {
    return isScannerDevice(getDeviceType(), getDeviceId());
}

bool AcquireChooser::isCameraDevice() {
    return isCameraDevice(getDeviceType(), getDeviceId());
}

bool AcquireChooser::supportsDeleteAfterCopy(int type, const CString& id) {
    if (type == kSourceRemovableDrive) return true;
    if (type != kSourceImagingDevice || TwainSupport::shouldUseTwain()) return false;
    OwnedPtr<WiaCameraWalker> camera = WiaCameraWalker::create(id);
    return camera->supportsDeleteAfterCopy();
}

bool AcquireChooser::isScannerDevice(int type, const CString& id) {
    if (type != kSourceImagingDevice || TwainSupport::getTwainMode() == TwainSupport::kTwainNever)
        return false;
    OwnedPtr<TwainCameraUnloader> source = TwainCameraUnloader::create(id, false);
    return source->isScanner();
}

bool AcquireChooser::isCameraDevice(int type, const CString& id) {
    if (type != kSourceImagingDevice || !TwainSupport::shouldUseTwain()) return true;
    OwnedPtr<TwainCameraUnloader> source = TwainCameraUnloader::create(id, false);
    return source->isCamera();
}

}  // namespace Orvanta
