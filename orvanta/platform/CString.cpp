#include "orvanta/platform/CString.h"

#include <unicode/uchar.h>
#include <unicode/ustring.h>

namespace Orvanta {

static_assert(sizeof(UChar) == sizeof(char16_t), "ICU must use 16-bit code units");

CString CString::fromUtf8(std::string_view utf8) {
    if (utf8.empty()) return CString();
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    u_strFromUTF8WithSub(nullptr, 0, &needed, utf8.data(), static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr,
                         &status);
    std::u16string out(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(reinterpret_cast<UChar*>(out.data()), needed, nullptr, utf8.data(),
                         static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr, &status);
    return U_FAILURE(status) ? CString() : CString(std::move(out));
}

std::string CString::toUtf8() const {
    if (mText.empty()) return std::string();
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    const auto* src = reinterpret_cast<const UChar*>(mText.data());
    const auto srcLength = static_cast<int32_t>(mText.size());
    u_strToUTF8WithSub(nullptr, 0, &needed, src, srcLength, 0xFFFD, nullptr, &status);
    std::string out(static_cast<std::size_t>(needed), '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8WithSub(out.data(), needed, nullptr, src, srcLength, 0xFFFD, nullptr, &status);
    return U_FAILURE(status) ? std::string() : out;
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
