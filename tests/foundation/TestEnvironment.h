#pragma once
// Process settings for tests, each set for the lifetime of an object: environment variables such as
// TZ or XDG_DATA_HOME, and the current resource module.

#include <cstdlib>
#include <string>

#include "orvanta/platform/ResourceModule.h"

namespace OrvantaTest {

// Sets an environment variable for the lifetime of the object. The library calls tzset before each
// conversion, so this also serves for TZ.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : mName(name) {
        const char* current = std::getenv(name);
        mHadValue = current != nullptr;
        if (current) mSaved = current;
        setenv(name, value, 1);
    }
    ~ScopedVariable() {
        if (mHadValue)
            setenv(mName.c_str(), mSaved.c_str(), 1);
        else
            unsetenv(mName.c_str());
    }

private:
    std::string mName, mSaved;
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
