#include "orvanta/desktop/OSLanguage.h"

#include "orvanta/platform/SystemInfo.h"

OSLanguage::OSLanguage() : mLanguage(Orvanta::Platform::userLanguageId()) {}

void OSLanguage::getOSVersion(int& major, int& minor) {
    if (!mVersionRead) {
        Orvanta::Platform::systemVersion(&mMajor, &mMinor);
        mVersionRead = true;
    }
    major = mMajor;
    minor = mMinor;
}
