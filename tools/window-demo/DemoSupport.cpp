#include "tools/window-demo/DemoSupport.h"

#include <cairo.h>

#include <string>

#include "orvanta/foundation/File.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/BackingStore.h"
#include "orvanta/platform/MessageQueue.h"

using namespace Orvanta;

namespace OrvantaDemo {

namespace {

cairo_status_t appendBytes(void* closure, const unsigned char* data, unsigned int length) {
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

}  // namespace

void runUntilIdle(Container* root) {
    MSG msg;
    while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE))
        if (!processMessage(&msg, root)) Platform::dispatchMessage(&msg);
}

bool writePng(HWND topLevel, const char* path) {
    Platform::BackingStore* store = topLevel ? topLevel->getBackingStore() : nullptr;
    std::string png;
    if (!store ||
        cairo_surface_write_to_png_stream(store->getSurface(), &appendBytes, &png) != CAIRO_STATUS_SUCCESS)
        return false;
    const CString name = CString::fromUtf8(path);
    File::remove(name);
    OwnedPtr<File> file = File::create(name);
    return file->create(false) && file->write(png.data(), static_cast<int>(png.size()));
}

}  // namespace OrvantaDemo
