#pragma once
// CodecManager: the process-wide registry from file extension to codec, with a default codec per type
// and the switch for thumbnails taken from the files' embedded previews.
//
// Contract: registration happens at start-up on the main thread; afterwards the maps are only read,
// from any thread. The last registration of an extension wins; the first codec of a type becomes its
// default. getCodec does not add an owner. Registrations live until the process ends.

#include <vector>

#include "orvanta/codecs/Codec.h"
#include "orvanta/codecs/CodecExtensionSink.h"

namespace Orvanta {

class CodecManager {
public:
    static void registerCodec(Codec* codec);
    static void registerCodec(Codec* codec, const std::vector<CString>& extensions);
    // name: a bare extension ("jpg"), one with its dot (".jpg"), or a path; or, as a pointer value
    // below 0x10000, the id of a string resource of the current resource module that holds one.
    static Codec* getCodec(const char16_t* name);
    static void setDefaultCodec(Codec* codec);
    static void setDefaultCodec(Codec* codec, CodecType type);
    static Codec* getDefaultCodec(CodecType type);
    static void enumerateExtensions(CodecExtensionSink* sink, void* context, CodecType type);

    static void enableFastThumbnailing(bool enable);
    static void disableFastThumbnailing() { enableFastThumbnailing(false); }
    static bool isFastThumbnailingEnabled();

    // The extension getCodec looks up for a name: the whole name when it has no dot, otherwise
    // FilePath::getExtension of it (empty when the last path element has no dot).
    static CString extensionOf(const char16_t* name);
};

}  // namespace Orvanta
