#include "orvanta/platform/CString.h"

#include <unicode/ustring.h>

namespace Orvanta {

static_assert(sizeof(UChar) == sizeof(char16_t), "ICU must use 16-bit code units");

// UTF-8 is converted here rather than by ICU, so that the many conversions at the borders of the
// library (every path) do not load ICU: only non-ASCII lower-casing needs it.

namespace {

// The bytes a character's lead byte says follow it, and the range its first continuation byte must
// be in: the well-formed sequences of the Unicode standard (no overlong forms, no surrogates,
// nothing past U+10FFFF). Zero for a byte that begins no character.
struct LeadByte {
    int following;
    unsigned char low, high;
};

LeadByte leadByte(unsigned char b) {
    if (b >= 0xC2 && b <= 0xDF) return {1, 0x80, 0xBF};
    if (b == 0xE0) return {2, 0xA0, 0xBF};
    if (b == 0xED) return {2, 0x80, 0x9F};
    if (b >= 0xE1 && b <= 0xEF) return {2, 0x80, 0xBF};
    if (b == 0xF0) return {3, 0x90, 0xBF};
    if (b >= 0xF1 && b <= 0xF3) return {3, 0x80, 0xBF};
    if (b == 0xF4) return {3, 0x80, 0x8F};
    return {0, 0, 0};
}

void appendCodePoint(std::u16string& out, char32_t c) {
    if (c < 0x10000) {
        out.push_back(static_cast<char16_t>(c));
    } else {
        out.push_back(static_cast<char16_t>(0xD7C0 + (c >> 10)));
        out.push_back(static_cast<char16_t>(0xDC00 | (c & 0x3FF)));
    }
}

void appendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

constexpr char32_t kReplacement = 0xFFFD;

}  // namespace

CString CString::fromUtf8(std::string_view utf8) {
    std::u16string out;
    out.reserve(utf8.size());
    const auto* bytes = reinterpret_cast<const unsigned char*>(utf8.data());
    const std::size_t size = utf8.size();
    for (std::size_t at = 0; at < size;) {
        const unsigned char b = bytes[at++];
        if (b < 0x80) {
            out.push_back(b);
            continue;
        }
        const LeadByte lead = leadByte(b);
        if (lead.following == 0) {
            out.push_back(kReplacement);
            continue;
        }
        // A sequence broken off ends at the byte that breaks it, which then starts afresh.
        char32_t c = b & (0x3F >> lead.following);
        int taken = 0;
        for (; taken < lead.following && at < size; ++taken, ++at) {
            const unsigned char next = bytes[at];
            const bool fits =
                taken == 0 ? next >= lead.low && next <= lead.high : next >= 0x80 && next <= 0xBF;
            if (!fits) break;
            c = (c << 6) | (next & 0x3F);
        }
        appendCodePoint(out, taken == lead.following ? c : kReplacement);
    }
    return CString(std::move(out));
}

std::string CString::toUtf8() const {
    std::string out;
    out.reserve(mText.size());
    for (std::size_t at = 0; at < mText.size(); ++at) {
        const char16_t unit = mText[at];
        if (unit < 0xD800 || unit > 0xDFFF) {
            appendUtf8(out, unit);
        } else if (unit <= 0xDBFF && at + 1 < mText.size() && mText[at + 1] >= 0xDC00 &&
                   mText[at + 1] <= 0xDFFF) {
            appendUtf8(out,
                       0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) + (mText[at + 1] - 0xDC00));
            ++at;
        } else {
            appendUtf8(out, kReplacement);
        }
    }
    return out;
}

CString CString::mid(std::size_t from, std::size_t count) const {
    if (from >= mText.size()) return CString();
    return CString(mText.substr(from, count));
}

CString CString::right(std::size_t count) const {
    if (count >= mText.size()) return *this;
    return CString(mText.substr(mText.size() - count));
}

CString& CString::makeLower() {
    // ASCII is the common case (extensions, property names) and needs no trip through ICU.
    bool ascii = true;
    for (char16_t& c : mText) {
        if (c >= u'A' && c <= u'Z')
            c = static_cast<char16_t>(c + 32);
        else if (c >= 0x80)
            ascii = false;
    }
    if (ascii) return *this;
    UErrorCode status = U_ZERO_ERROR;
    const auto* src = reinterpret_cast<const UChar*>(mText.data());
    const auto srcLength = static_cast<int32_t>(mText.size());
    int32_t needed = u_strToLower(nullptr, 0, src, srcLength, "", &status);
    std::u16string out(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    u_strToLower(reinterpret_cast<UChar*>(out.data()), needed, src, srcLength, "", &status);
    if (U_SUCCESS(status)) mText = std::move(out);
    return *this;
}

CString CString::lowered() const {
    CString copy(*this);
    return copy.makeLower();
}

}  // namespace Orvanta
