#include "orvanta/platform/Gphoto2Library.h"

#include <dlfcn.h>

#include <mutex>

namespace Orvanta::Platform {

namespace {

Gphoto2Api gApi;
bool gLoaded = false;

bool load() {
    // Never closed: the camera drivers libgphoto2 loads stay with it.
    void* library = dlopen("libgphoto2.so.6", RTLD_NOW | RTLD_LOCAL);
    if (!library) return false;
    bool complete = true;
#define ORVANTA_GPHOTO2_RESOLVE(name)                                         \
    gApi.name = reinterpret_cast<decltype(gApi.name)>(dlsym(library, #name)); \
    complete = complete && gApi.name;
    ORVANTA_GPHOTO2_FUNCTIONS(ORVANTA_GPHOTO2_RESOLVE)
#undef ORVANTA_GPHOTO2_RESOLVE
    return complete;
}

}  // namespace

bool loadGphoto2() {
    static std::once_flag once;
    std::call_once(once, [] { gLoaded = load(); });
    return gLoaded;
}

const Gphoto2Api& gphoto2() {
    return gApi;
}

}  // namespace Orvanta::Platform
