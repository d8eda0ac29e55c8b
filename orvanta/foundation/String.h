#pragma once
// String: a wide (UTF-16) text in a shared Buffer.
//
// Contract: the Buffer holds the code units with their terminating zero, so its length is
// 2 × characters + 2 bytes. A null source gives the empty text; the text pointer is never null.
// Comparisons are by code unit, with no locale and no case folding. Copies share the Buffer.

#include "orvanta/foundation/Buffer.h"

namespace Orvanta {

class String : public Buffer {
public:
    String(const char16_t* text = nullptr);
    String(const String& other) = default;

    void assign(const char16_t* text);
    String& operator=(const char16_t* text);
    String& operator=(const String& other) = default;

    // Equal lengths, then equal code units. A null text compares as the empty one.
    bool operator==(const char16_t* text) const;
    bool operator!=(const char16_t* text) const { return !(*this == text); }
    bool operator==(const String& other) const { return Buffer::operator==(other); }
    bool operator!=(const String& other) const { return !(*this == other); }
    bool operator<(const String& other) const;

    operator const char16_t*() const { return text(); }
    const Buffer& getBuffer() const { return *this; }
    // Characters, not counting the terminator.
    int getLength() const { return (Buffer::getLength() - 1) / 2; }
    bool isEmpty() const { return Buffer::getLength() - 1 < 2; }
    void clear() { assign(nullptr); }

    static String fromInt(int value);

private:
    const char16_t* text() const { return reinterpret_cast<const char16_t*>(getContents()); }
};

}  // namespace Orvanta
