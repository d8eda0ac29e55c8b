#include "orvanta/platform/CString.h"

#include <gtest/gtest.h>
#include <unicode/ustring.h>

#include <random>
#include <string>

using Orvanta::CString;

namespace {

// ICU's conversions, which the library used before it converted by itself: the reference.
std::u16string icuFromUtf8(const std::string& utf8) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    u_strFromUTF8WithSub(nullptr, 0, &needed, utf8.data(), static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr,
                         &status);
    std::u16string out(static_cast<std::size_t>(needed), u'\0');
    status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(reinterpret_cast<UChar*>(out.data()), needed, nullptr, utf8.data(),
                         static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr, &status);
    return out;
}

std::u16string unitsOf(const CString& text) {
    return std::u16string(text.c_str(), text.length());
}

std::string icuToUtf8(const std::u16string& text) {
    UErrorCode status = U_ZERO_ERROR;
    int32_t needed = 0;
    const auto* units = reinterpret_cast<const UChar*>(text.data());
    u_strToUTF8WithSub(nullptr, 0, &needed, units, static_cast<int32_t>(text.size()), 0xFFFD, nullptr,
                       &status);
    std::string out(static_cast<std::size_t>(needed), '\0');
    status = U_ZERO_ERROR;
    u_strToUTF8WithSub(out.data(), needed, nullptr, units, static_cast<int32_t>(text.size()), 0xFFFD, nullptr,
                       &status);
    return out;
}

}  // namespace

// Every sequence of up to four bytes drawn from the values at which UTF-8's rules change (ASCII,
// each continuation range's edges, each kind of lead byte, the bytes that begin nothing), and a
// text around each: the same UTF-16 as ICU gives, replacement characters included.
TEST(CString, Utf8DecodesAsIcuDoesWhateverTheBytes) {
    const unsigned char edges[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF,
                                   0xC0, 0xC1, 0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE,
                                   0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xFF};
    const std::size_t count = sizeof edges;
    int mismatches = 0;
    for (std::size_t length = 1; length <= 4; ++length) {
        std::size_t total = 1;
        for (std::size_t i = 0; i < length; ++i) total *= count;
        for (std::size_t n = 0; n < total; ++n) {
            std::string bytes = "a";
            for (std::size_t i = 0, rest = n; i < length; ++i, rest /= count)
                bytes.push_back(static_cast<char>(edges[rest % count]));
            bytes.push_back('z');
            if (unitsOf(CString::fromUtf8(bytes)) != icuFromUtf8(bytes) && ++mismatches <= 5)
                ADD_FAILURE() << "bytes " << ::testing::PrintToString(bytes);
        }
    }
    EXPECT_EQ(0, mismatches);
}

// Random UTF-16 with surrogates in every arrangement (paired, lone, reversed, at either end): the
// same UTF-8 as ICU gives, and text without lone surrogates comes back unchanged.
TEST(CString, Utf8EncodesAsIcuDoesWhateverTheUnits) {
    const char16_t pool[] = {u'a',   0x7F,   0x80,   0x7FF,  0x800,  0xD7FF, 0xD800,
                             0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFD, 0xFFFF};
    std::mt19937 random(20261124);
    int mismatches = 0;
    for (int round = 0; round < 20000; ++round) {
        std::u16string text;
        const int length = static_cast<int>(random() % 6);
        for (int i = 0; i < length; ++i) text.push_back(pool[random() % (sizeof pool / sizeof pool[0])]);
        const std::string utf8 = CString(text).toUtf8();
        if (utf8 != icuToUtf8(text) && ++mismatches <= 5) ADD_FAILURE() << "units of round " << round;
        if (icuFromUtf8(utf8) == text) {
            EXPECT_EQ(unitsOf(CString::fromUtf8(utf8)), text);
        }
    }
    EXPECT_EQ(0, mismatches);
}
