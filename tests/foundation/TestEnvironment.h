#pragma once
// Process settings for tests: locales and time zones for dates in the user's locale, variables
// such as XDG_DATA_HOME, the current resource module; each set for the lifetime of an object.
//
// ensureLocale makes a locale such as "de_DE.UTF-8" available to setlocale: if the system lacks it,
// it is built with localedef into a private folder under the temporary folder (kept and shared by
// later test runs) that LOCPATH then points at. Tests skip when it cannot be had.

#include <string>

#include "orvanta/platform/ResourceModule.h"

namespace OrvantaTest {

bool ensureLocale(const std::string& name);

// Sets the process's locale (all categories) for the lifetime of the object.
class ScopedLocale {
public:
    explicit ScopedLocale(const std::string& name);
    ~ScopedLocale();
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;
    bool ok() const { return mOk; }

private:
    std::string mSaved;
    bool mOk = false;
};

// Sets an environment variable (unsets it for a null value) for the lifetime of the object.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value);
    ~ScopedVariable();
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

private:
    std::string mName;
    std::string mSaved;
    bool mHadValue = false;
};

// Sets TZ (a POSIX rule such as "CET-1CEST,M3.5.0,M10.5.0/3") for the lifetime of the object.
class ScopedTimeZone {
public:
    explicit ScopedTimeZone(const char* rule);
    ~ScopedTimeZone();

private:
    ScopedVariable mVariable;
};

// Makes a resource module the current one for the lifetime of the object.
class ScopedResourceModule {
public:
    explicit ScopedResourceModule(Orvanta::Platform::ResourceModule* module)
        : mSaved(Orvanta::Platform::ResourceModule::current()) {
        Orvanta::Platform::ResourceModule::setCurrent(module);
    }
    ~ScopedResourceModule() { Orvanta::Platform::ResourceModule::setCurrent(mSaved); }
    ScopedResourceModule(const ScopedResourceModule&) = delete;
    ScopedResourceModule& operator=(const ScopedResourceModule&) = delete;

private:
    Orvanta::Platform::ResourceModule* mSaved;
};

// Central European time with its daylight saving rule; needs no time zone database.
constexpr const char* kCentralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

}  // namespace OrvantaTest

#define ORVANTA_REQUIRE_LOCALE(name)                                                                     \
    do {                                                                                                 \
        if (!OrvantaTest::ensureLocale(name))                                                            \
            GTEST_SKIP() << "locale " << (name) << " is not installed and localedef could not build it"; \
    } while (0)
