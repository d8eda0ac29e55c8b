#include "orvanta/codecs/CodecManager.h"

#include <map>

#include "orvanta/foundation/OwnedPtr.h"

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
    CString s(name);
    if (s.find(u'.') == CString::npos) return s;
    const std::size_t slash = s.reverseFind(u'/');
    const std::size_t elementStart = slash == CString::npos ? 0 : slash + 1;
    const std::size_t dot = s.reverseFind(u'.');
    if (dot == CString::npos || dot < elementStart) return CString();
    return s.mid(dot + 1);
}

Codec* CodecManager::getCodec(const char16_t* name) {
    if (!name || !*name) return nullptr;
    const CString extension = extensionOf(name).lowered();
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

void CodecManager::enableFastThumbnailing(bool enable) { registry().fastThumbnailing = enable; }
bool CodecManager::isFastThumbnailingEnabled() { return registry().fastThumbnailing; }

}  // namespace Orvanta
