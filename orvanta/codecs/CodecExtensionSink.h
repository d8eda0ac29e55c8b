#pragma once
// CodecExtensionSink: receives the registered extensions one by one; false stops the enumeration.

namespace Orvanta {

class CodecExtensionSink {
public:
    virtual bool onExtension(const char16_t* extension, void* context) = 0;
    virtual ~CodecExtensionSink() = default;
};

}  // namespace Orvanta
