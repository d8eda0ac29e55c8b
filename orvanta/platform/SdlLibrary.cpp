#include "orvanta/platform/SdlLibrary.h"

#include <dlfcn.h>

#include <mutex>

namespace Orvanta::Platform {

namespace {

SdlApi gApi;
void* gLibrary = nullptr;
bool gLoaded = false;

bool load() {
    // Never closed: SDL keeps threads and handlers of its own for the life of the process.
    void* library = gLibrary = dlopen("libSDL2-2.0.so.0", RTLD_NOW | RTLD_LOCAL);
    if (!library) return false;
    bool complete = true;
#define ORVANTA_SDL_RESOLVE(name)                                                    \
    gApi.name = reinterpret_cast<decltype(gApi.name)>(dlsym(library, "SDL_" #name)); \
    complete = complete && gApi.name;
    ORVANTA_SDL_FUNCTIONS(ORVANTA_SDL_RESOLVE)
#undef ORVANTA_SDL_RESOLVE
    return complete;
}

}  // namespace

bool loadSdl() {
    static std::once_flag once;
    std::call_once(once, [] { gLoaded = load(); });
    return gLoaded;
}

const SdlApi& sdl() {
    return gApi;
}

void* findSdlFunction(const char* name) {
    return gLoaded ? dlsym(gLibrary, name) : nullptr;
}

}  // namespace Orvanta::Platform
