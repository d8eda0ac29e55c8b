#include "orvanta/foundation/Resource.h"

#include <vector>

using Orvanta::CString;
using Orvanta::Platform::ResourceModule;

Orvanta::HINSTANCE Resource::getModule() const {
    return mModule ? mModule : ResourceModule::current();
}

Orvanta::HBITMAP Resource::getBitmap(bool /*asDibSection*/) const {
    return getModule()->loadBitmap(mId);
}

Orvanta::HCURSOR Resource::getCursor() const {
    return getModule()->loadCursor(mId);
}

CString Resource::getString() const {
    // The buffer grows in steps of 256 characters until the text leaves at least 2 of them free,
    // which tells that nothing was cut off. The module is read directly: making it the current one
    // for the call would show it to every other thread that looks up a resource meanwhile.
    constexpr int kStep = 256;
    const ResourceModule* module = getModule();
    std::vector<char16_t> buffer(kStep);
    int length = module->loadString(mId, buffer.data(), static_cast<int>(buffer.size()));
    while (static_cast<int>(buffer.size()) - length < 2) {
        buffer.resize(buffer.size() + kStep);
        length = module->loadString(mId, buffer.data(), static_cast<int>(buffer.size()));
    }
    return CString(buffer.data(), static_cast<std::size_t>(length));
}
