#pragma once
// Prefs: named user settings, as a value any code may make: every Prefs forwards to the one store of
// the process, chosen once at start-up by setRegistryKey.
//
// Contract: setRegistryKey makes the store of the host's preference key (RegistryPrefs) the
// process's store; it runs on the main thread before other threads use preferences. A store it
// replaces stays alive, since code may still be working through it. Before any store is chosen
// every read gives the missing-value answer and writes keep nothing. getBool, setBool, getDate and
// setDate are AbstractPrefs' own, through getInt and setInt. A host with a store of its own derives
// it from AbstractPrefs and uses it directly.

#include <cstdint>

#include "orvanta/desktop/AbstractPrefs.h"

namespace Orvanta {

using UINT = std::uint32_t;

class Prefs : public AbstractPrefs {
public:
    static void setRegistryKey(UINT resourceID);

    bool isPref(const char16_t* name) override;
    CString getString(const char16_t* name) override;
    void setString(const char16_t* name, const CString& value) override;
    unsigned long getInt(const char16_t* name) override;
    void setInt(const char16_t* name, unsigned long value) override;
    void setBinary(const char16_t* name, const unsigned char* data, unsigned long size) override;
    bool getBinary(const char16_t* name, unsigned char* buffer, unsigned long& size) override;

private:
    static AbstractPrefs* mProxy;
};

}  // namespace Orvanta
