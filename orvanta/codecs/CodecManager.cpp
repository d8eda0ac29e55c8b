#include "orvanta/codecs/CodecManager.h"

#include <cstdint>
#include <map>

#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/foundation/Resource.h"

namespace Orvanta {

namespace {

struct Registry {
    std::map<CString, OwnedPtr<Codec>> byExtension;
    std::map<int, OwnedPtr<Codec>> defaults;
    bool fastThumbnailing = true;
};

// Created on first use and never destroyed, so codecs outlive every static that may still ask.
Registry& registry() {
    static Registry* instance = new Registry();
    return *instance;
}

}  // namespace

void CodecManager::registerCodec(Codec* codec) {
    if (codec) registerCodec(codec, codec->getExtensions());
}

void CodecManager::registerCodec(Codec* codec, const std::vector<CString>& extensions) {
    if (!codec) return;
    Registry& r = registry();
    for (const CString& extension : extensions) r.byExtension[extension.lowered()] = codec;
    OwnedPtr<Codec>& fallback = r.defaults[codec->getCodecType()];
    if (!fallback) fallback = codec;
}

CString CodecManager::extensionOf(const char16_t* name) {
    const CString s(name);
    if (s.find(u'.') == CString::npos) return s;
    return FilePath::getExtension(s);
}

Codec* CodecManager::getCodec(const char16_t* name) {
    if (!name) return nullptr;
    // Pointer values below 0x10000 are no text but the id of a string resource that holds it.
    const auto value = reinterpret_cast<std::uintptr_t>(name);
    const CString text = value < 0x10000 ? Resource(static_cast<int>(value)).getString() : CString(name);
    if (text.isEmpty()) return nullptr;
    const CString extension = extensionOf(text).lowered();
    if (extension.isEmpty()) return nullptr;
    const Registry& r = registry();
    auto it = r.byExtension.find(extension);
    return it == r.byExtension.end() ? nullptr : it->second.get();
}

void CodecManager::setDefaultCodec(Codec* codec) {
    if (codec) setDefaultCodec(codec, codec->getCodecType());
}

void CodecManager::setDefaultCodec(Codec* codec, CodecType type) {
    if (type == CodecTypeAll) return;
    registry().defaults[type] = codec;
}

Codec* CodecManager::getDefaultCodec(CodecType type) {
    if (type == CodecTypeAll) return nullptr;
    const Registry& r = registry();
    auto it = r.defaults.find(type);
    return it == r.defaults.end() ? nullptr : it->second.get();
}

void CodecManager::enumerateExtensions(CodecExtensionSink* sink, void* context, CodecType type) {
    if (!sink) return;
    for (const auto& [extension, codec] : registry().byExtension) {
        if (type != CodecTypeAll && codec->getCodecType() != type) continue;
        if (!sink->onExtension(extension.c_str(), context)) return;
    }
}

void CodecManager::enableFastThumbnailing(bool enable) {
    registry().fastThumbnailing = enable;
}
bool CodecManager::isFastThumbnailingEnabled() {
    return registry().fastThumbnailing;
}

}  // namespace Orvanta
