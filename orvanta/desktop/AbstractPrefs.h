#pragma once
// AbstractPrefs: the interface of a store of named user settings, with the typed answers every store
// gives alike.
//
// Contract: a store keeps strings, 32-bit numbers and bytes under names. A missing value, or one of
// another kind, reads as the empty string, as 0xFFFFFFFF for a number (so getBool is false and
// getDate 0), and as false with size 0 from getBinary. Numbers are 32 bits wide, as the platform's
// DWORD: setInt keeps the low 32 bits. getBinary's size protocol: with a null buffer it answers
// true and the size the value needs; with a buffer the given size cannot hold it answers false and
// leaves size as it was; otherwise it copies the bytes, sets size and answers true. Writes report
// nothing. The booleans and dates here are numbers underneath, for every store alike.

#include "orvanta/platform/CString.h"

namespace Orvanta {

class AbstractPrefs {
public:
    virtual ~AbstractPrefs() = default;

    virtual bool isPref(const char16_t* name) = 0;
    virtual CString getString(const char16_t* name) = 0;
    virtual void setString(const char16_t* name, const CString& value) = 0;
    virtual unsigned long getInt(const char16_t* name) = 0;
    virtual void setInt(const char16_t* name, unsigned long value) = 0;
    virtual void setBinary(const char16_t* name, const unsigned char* data, unsigned long size) = 0;
    virtual bool getBinary(const char16_t* name, unsigned char* buffer, unsigned long& size) = 0;

    // True when the number is neither 0 nor 0xFFFFFFFF (missing).
    virtual bool getBool(const char16_t* name);
    virtual void setBool(const char16_t* name, bool value);
    // The number read as a signed 32-bit value; −1, which is also what a missing value reads as, is 0.
    virtual long getDate(const char16_t* name);
    virtual void setDate(const char16_t* name, long value);
};

}  // namespace Orvanta
