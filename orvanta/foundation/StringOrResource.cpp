#include "orvanta/foundation/StringOrResource.h"

#include <cstring>
#include <string>

using Orvanta::CString;

char16_t* StringOrResource::duplicate(const char16_t* text) {
    if (!text) return nullptr;
    const std::size_t length = std::char_traits<char16_t>::length(text);
    auto* copy = new char16_t[length + 1];
    std::memcpy(copy, text, (length + 1) * sizeof(char16_t));
    return copy;
}

StringOrResource::StringOrResource(const StringOrResource& other)
    : mId(other.mId), mModule(other.mModule), mText(duplicate(other.mText)) {}

StringOrResource& StringOrResource::operator=(const StringOrResource& other) {
    // The copy is made before the old text goes, so assigning an object to itself keeps its text.
    char16_t* text = duplicate(other.mText);
    delete[] mText;
    mId = other.mId;
    mModule = other.mModule;
    mText = text;
    return *this;
}

StringOrResource::~StringOrResource() {
    delete[] mText;
}

CString StringOrResource::getString() const {
    if (mId != 0) return Resource(mId, mModule).getString();
    return CString(mText);
}
