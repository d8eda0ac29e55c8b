#pragma once
// CString: the library's text value, UTF-16 in memory.
//
// Contract: a plain value with copy semantics. Every text the interfaces return is a CString;
// every text they take is a `const char16_t*` (which a CString converts to implicitly). UTF-8
// appears only at the borders with the kernel and with C libraries, through fromUtf8/toUtf8.
// Lower-casing follows the Unicode rules of ICU for the root locale.

#include <compare>
#include <cstddef>
#include <string>
#include <string_view>

namespace Orvanta {

class CString {
public:
    static constexpr std::size_t npos = std::u16string::npos;

    CString() = default;
    CString(const char16_t* text) : mText(text ? text : u"") {}
    CString(const char16_t* text, std::size_t length) : mText(text, length) {}
    CString(std::u16string text) : mText(std::move(text)) {}
    CString(std::u16string_view text) : mText(text) {}

    // Conversion at the borders. Invalid sequences become U+FFFD: in UTF-8, one for each maximal
    // part of a sequence that could have begun a character (as ICU converts); in UTF-16, one for
    // each unpaired surrogate.
    static CString fromUtf8(std::string_view utf8);
    std::string toUtf8() const;

    const char16_t* c_str() const { return mText.c_str(); }
    operator const char16_t*() const { return mText.c_str(); }
    const std::u16string& str() const { return mText; }
    std::u16string_view view() const { return mText; }

    std::size_t length() const { return mText.size(); }
    bool isEmpty() const { return mText.empty(); }
    char16_t operator[](std::size_t i) const { return mText[i]; }

    std::size_t find(char16_t c, std::size_t from = 0) const { return mText.find(c, from); }
    std::size_t find(std::u16string_view s, std::size_t from = 0) const { return mText.find(s, from); }
    std::size_t reverseFind(char16_t c) const { return mText.rfind(c); }
    CString left(std::size_t count) const { return CString(mText.substr(0, count)); }
    CString mid(std::size_t from, std::size_t count = npos) const;
    CString right(std::size_t count) const;

    // Lower-cases in place, as the platform's CharLower does.
    CString& makeLower();
    CString lowered() const;

    CString& operator+=(const CString& other) {
        mText += other.mText;
        return *this;
    }
    CString& operator+=(const char16_t* other) {
        mText += other;
        return *this;
    }
    CString& operator+=(char16_t c) {
        mText += c;
        return *this;
    }
    friend CString operator+(CString a, const CString& b) { return a += b; }
    friend CString operator+(CString a, const char16_t* b) { return a += b; }

    friend bool operator==(const CString& a, const CString& b) { return a.mText == b.mText; }
    friend bool operator==(const CString& a, const char16_t* b) { return a.mText == (b ? b : u""); }
    // Ordinal (code unit) order, for keys of ordered containers.
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) {
        return a.mText <=> b.mText;
    }

private:
    std::u16string mText;
};

}  // namespace Orvanta
