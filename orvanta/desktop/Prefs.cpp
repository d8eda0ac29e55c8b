#include "orvanta/desktop/Prefs.h"

#include <memory>
#include <vector>

#include "orvanta/desktop/RegistryPrefs.h"

namespace Orvanta {

AbstractPrefs* Prefs::mProxy = nullptr;

void Prefs::setRegistryKey(UINT resourceID) {
    // Every store made stays for the life of the process.
    static auto* stores = new std::vector<std::unique_ptr<AbstractPrefs>>();
    stores->push_back(std::make_unique<RegistryPrefs>(resourceID));
    mProxy = stores->back().get();
}

bool Prefs::isPref(const char16_t* name) {
    return mProxy && mProxy->isPref(name);
}

CString Prefs::getString(const char16_t* name) {
    return mProxy ? mProxy->getString(name) : CString();
}

void Prefs::setString(const char16_t* name, const CString& value) {
    if (mProxy) mProxy->setString(name, value);
}

unsigned long Prefs::getInt(const char16_t* name) {
    return mProxy ? mProxy->getInt(name) : 0xFFFFFFFFUL;
}

void Prefs::setInt(const char16_t* name, unsigned long value) {
    if (mProxy) mProxy->setInt(name, value);
}

void Prefs::setBinary(const char16_t* name, const unsigned char* data, unsigned long size) {
    if (mProxy) mProxy->setBinary(name, data, size);
}

bool Prefs::getBinary(const char16_t* name, unsigned char* buffer, unsigned long& size) {
    if (mProxy) return mProxy->getBinary(name, buffer, size);
    size = 0;
    return false;
}

}  // namespace Orvanta
