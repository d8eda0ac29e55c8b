#pragma once
// Process settings for tests, each set for the lifetime of an object: the locale (for dates in the
// user's locale), environment variables such as TZ or XDG_DATA_HOME, the current resource module.

#include <gtest/gtest.h>

#include <string>

#include "orvanta/platform/ResourceModule.h"

namespace OrvantaTest {

// Sets the process's locale (all categories), such as "de_DE.UTF-8". If the system lacks it, it is
// built with localedef into a private folder under the temporary folder (kept and shared by later
// test runs) that LOCPATH then points at; ok() says whether the locale could be had.
class ScopedLocale {
public:
    explicit ScopedLocale(const std::string& name);
    ~ScopedLocale();
    bool ok() const { return mOk; }

private:
    std::string mSaved;
    bool mOk = false;
};

// Sets an environment variable (unsets it for a null value) for the lifetime of the object. The
// library calls tzset before each conversion, so this also serves for TZ.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value);
    ~ScopedVariable();

private:
    std::string mName;
    std::string mSaved;
    bool mHadValue = false;
};

// Makes a resource module the current one for the lifetime of the object.
class ScopedResourceModule {
public:
    explicit ScopedResourceModule(Orvanta::Platform::ResourceModule* module)
        : mSaved(Orvanta::Platform::ResourceModule::current()) {
        Orvanta::Platform::ResourceModule::setCurrent(module);
    }
    ~ScopedResourceModule() { Orvanta::Platform::ResourceModule::setCurrent(mSaved); }

private:
    Orvanta::Platform::ResourceModule* mSaved;
};

// Central European time with its daylight saving rule, as a TZ value; needs no time zone database.
constexpr const char* kCentralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

}  // namespace OrvantaTest

// Sets the locale for the rest of the test, which skips when the locale cannot be had.
#define ORVANTA_USE_LOCALE(name)                             \
    const OrvantaTest::ScopedLocale orvantaTestLocale(name); \
    if (!orvantaTestLocale.ok())                             \
    GTEST_SKIP() << "locale " << (name) << " is not installed and localedef could not build it"
