#include "orvanta/platform/LazyLibrary.h"

#include <cstdio>
#include <cstdlib>

namespace Orvanta::Platform {

LazyLibrary::LazyLibrary(const char* soname)
    : mSoname(soname), mHandle(dlopen(soname, RTLD_NOW | RTLD_LOCAL)) {
    if (!mHandle) fail(nullptr);
}

void* LazyLibrary::find(const char* name) const {
    void* function = dlsym(mHandle, name);
    if (!function) fail(name);
    return function;
}

void LazyLibrary::fail(const char* name) const {
    const char* reason = dlerror();
    std::fprintf(stderr, "orvanta: cannot load %s%s%s: %s\n", name ? name : "", name ? " from " : "", mSoname,
                 reason ? reason : "not found");
    std::abort();
}

}  // namespace Orvanta::Platform
