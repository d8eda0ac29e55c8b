#include "orvanta/foundation/String.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>
#include <string>

namespace Orvanta {

namespace {

std::size_t lengthOf(const char16_t* text) {
    return text ? std::char_traits<char16_t>::length(text) : 0;
}

Buffer bufferOf(const char16_t* text) {
    const std::size_t characters = lengthOf(text);
    if (characters > (INT_MAX - 2) / 2) throw std::bad_alloc();
    Buffer buffer(static_cast<int>(characters * 2 + 2));
    // The block comes zeroed, so the terminator is already there.
    if (characters) std::memcpy(buffer.getContents(), text, characters * 2);
    return buffer;
}

}  // namespace

String::String(const char16_t* text) : Buffer(bufferOf(text)) {}

void String::assign(const char16_t* text) {
    // The new block is filled before the old one is dropped, so text may point into it.
    Buffer::assign(bufferOf(text));
}

String& String::operator=(const char16_t* text) {
    assign(text);
    return *this;
}

bool String::operator==(const char16_t* other) const {
    const std::size_t characters = lengthOf(other);
    if (static_cast<std::size_t>(getLength()) != characters) return false;
    return std::char_traits<char16_t>::compare(text(), other ? other : u"", characters) == 0;
}

bool String::operator<(const String& other) const {
    return std::char_traits<char16_t>::compare(
               text(), other.text(), static_cast<std::size_t>(std::min(getLength(), other.getLength())) + 1) <
           0;
}

String String::fromInt(int value) {
    const std::string digits = std::to_string(value);
    std::u16string wide(digits.begin(), digits.end());
    return String(wide.c_str());
}

}  // namespace Orvanta
