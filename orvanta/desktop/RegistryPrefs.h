#pragma once
// RegistryPrefs: the store of the host's preference key: the key path is a string resource of the
// host, and the values live in that key of the user's settings (Platform::SettingsKey: a key file
// under the user's configuration folder).
//
// Contract: as AbstractPrefs. The key path comes from the current resource module's string of the
// id given (the host's resources name the key; the library has none of its own); an id without a
// string gives a key with no file, which holds nothing and keeps nothing. Every read sees the file as
// it is now, other processes' writes included; every write replaces the file whole, so a crash, a
// kill or a full disk leaves the previous file, and two processes writing at once each add to what
// the other left. A damaged file reads as empty and is kept aside (see SettingsKey). A string is
// read up to a zero inside it. Safe to use from several threads.

#include <cstdint>

#include "orvanta/desktop/AbstractPrefs.h"
#include "orvanta/platform/SettingsKey.h"

namespace Orvanta {

using UINT = std::uint32_t;

class RegistryPrefs : public AbstractPrefs {
public:
    explicit RegistryPrefs(UINT resourceID);
    ~RegistryPrefs() override;

    bool isPref(const char16_t* name) override;
    CString getString(const char16_t* name) override;
    void setString(const char16_t* name, const CString& value) override;
    unsigned long getInt(const char16_t* name) override;
    void setInt(const char16_t* name, unsigned long value) override;
    void setBinary(const char16_t* name, const unsigned char* data, unsigned long size) override;
    bool getBinary(const char16_t* name, unsigned char* buffer, unsigned long& size) override;

private:
    Platform::SettingsKey mKey;
};

}  // namespace Orvanta
