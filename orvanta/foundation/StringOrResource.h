#pragma once
// StringOrResource: a text given either as a string or as a string resource.
//
// Contract: a non-zero id means the text is the string resource of that id (of the module, or of
// the current resource module when the module is null), read at each getString. With id 0 the text
// is the object's own copy of the string it was given; a null pointer or an empty CString leave no
// text, which reads as the empty string.

#include "orvanta/foundation/Resource.h"
#include "orvanta/platform/CString.h"

class StringOrResource {
public:
    StringOrResource() = default;
    StringOrResource(int id, Orvanta::HINSTANCE module) : mId(id), mModule(module) {}
    StringOrResource(const Resource& resource) : mId(resource.mId), mModule(resource.mModule) {}
    StringOrResource(const char16_t* text) : mText(duplicate(text)) {}
    StringOrResource(const Orvanta::CString& text)
        : mText(text.isEmpty() ? nullptr : duplicate(text.c_str())) {}
    StringOrResource(const StringOrResource& other);
    StringOrResource& operator=(const StringOrResource& other);
    ~StringOrResource();

    Orvanta::CString getString() const;

private:
    static char16_t* duplicate(const char16_t* text);

    int mId = 0;
    Orvanta::HINSTANCE mModule = nullptr;
    char16_t* mText = nullptr;
};
