#include "orvanta/assets/StringFilter.h"

#include <new>

#include "orvanta/platform/TextCompare.h"
#include "orvanta/store/Property.h"
#include "orvanta/store/PropertyList.h"

namespace Orvanta {

StringFilter::StringFilter(const CString& name, const CString& pattern, MatchType type, bool caseSensitive)
    : mName(name),
      mPattern(caseSensitive ? pattern : pattern.lowered()),
      mType(type),
      mCaseSensitive(caseSensitive) {}

StringFilter* StringFilter::create(const CString& name, const CString& pattern, MatchType type,
                                   bool caseSensitive) {
    return new (std::nothrow) StringFilter(name, pattern, type, caseSensitive);
}

StringFilter* StringFilter::create(const Property& property, MatchType type, bool caseSensitive) {
    return create(property.getName(), property.getValue().asString(), type, caseSensitive);
}

std::size_t StringFilter::find(const CString& text) const {
    if (mPattern.isEmpty()) return CString::npos;
    const std::u16string_view haystack = text.view(), needle = mPattern.view();
    for (std::size_t at = 0; at + needle.size() <= haystack.size();) {
        if (haystack.compare(at, needle.size(), needle) == 0) return at;
        // The next character: a high surrogate and the low one after it are one.
        const bool pair = at + 1 < haystack.size() && (haystack[at] & 0xFC00) == 0xD800 &&
                          (haystack[at + 1] & 0xFC00) == 0xDC00;
        at += pair ? 2 : 1;
    }
    return CString::npos;
}

bool StringFilter::matches(PropertyList* properties) {
    if (!properties) return false;
    CString text = properties->getValue(mName).asString();
    if (!mCaseSensitive) text.makeLower();
    switch (mType) {
        case kMatchPrefix:
            return find(text) == 0;
        case kMatchSubstring:
            return find(text) != CString::npos;
        default:
            return Platform::compareText(text, mPattern) == 0;
    }
}

}  // namespace Orvanta
