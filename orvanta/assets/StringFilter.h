#pragma once
// StringFilter: passes the assets whose property, as text, holds a pattern.
//
// Contract: the text is the property's asString() (empty for a missing property). kMatchPrefix
// passes a text that begins with the pattern, kMatchSubstring one that holds it anywhere, and any
// other type one that compares equal under Platform::compareText (lstrcmpW). An empty pattern is
// never found, so it fails the prefix and substring tests. Without case sensitivity the pattern is
// lower-cased once, when the filter is made, and each text when it is tested; the search then steps
// through the text a character at a time (a surrogate pair is one character).

#include "orvanta/assets/Filter.h"
#include "orvanta/platform/CString.h"

namespace Orvanta {

class Property;

class StringFilter : public Filter {
public:
    enum MatchType : int { kMatchPrefix = 1, kMatchSubstring = 2, kMatchExact = 3 };

    static StringFilter* create(const CString& name, const CString& pattern, MatchType type,
                                bool caseSensitive);
    // The pattern is the property value's asString().
    static StringFilter* create(const Property& property, MatchType type, bool caseSensitive);

    using Filter::matches;
    bool matches(PropertyList* properties) override;

private:
    StringFilter(const CString& name, const CString& pattern, MatchType type, bool caseSensitive);
    // The first character position of text from which the pattern follows, or npos.
    std::size_t find(const CString& text) const;

    CString mName;
    CString mPattern;
    MatchType mType;
    bool mCaseSensitive;
};

}  // namespace Orvanta
