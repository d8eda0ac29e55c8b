#pragma once
// OSLanguage: the language of the running system, as the platform's language id, and questions
// about it (the font cache chooses a character set by them).
//
// Contract: a plain object, copyable. The constructor finds the language at once: the user's
// messages locale (LC_ALL, LC_MESSAGES, LANG: the first set) mapped to a language id
// (Platform::userLanguageId): the primary language in the low 10 bits, the sublanguage in the high
// 6, 0 when unknown, as for the C and POSIX locales. Then every predicate is false and
// isInstalled(0) true. isEnabled is false for any id. getOSVersion gives the kernel's release, read
// on the first call (0.0 when unreadable).

#include <cstdint>

class OSLanguage {
public:
    OSLanguage();
    virtual ~OSLanguage() = default;
    OSLanguage(const OSLanguage&) = default;
    OSLanguage& operator=(const OSLanguage&) = default;

    unsigned long currentLanguage() const { return mLanguage; }
    bool isInstalled(unsigned long id) const { return id == mLanguage; }
    bool isEnabled(unsigned long id) const { return false; }
    void getOSVersion(int& major, int& minor);

    bool isArabic() const { return primary() == 0x01; }
    bool isHebrew() const { return primary() == 0x0D; }
    bool isThai() const { return primary() == 0x1E; }
    bool isJapanese() const { return primary() == 0x11; }
    bool isChinese() const { return primary() == 0x04; }
    bool isEnglishUS() const { return primary() == 0x09 && (mLanguage & 0xFC00) == 0x0400; }

private:
    unsigned primary() const { return mLanguage & 0x3FF; }

    std::uint16_t mLanguage = 0;
    bool mVersionRead = false;
    int mMajor = 0;
    int mMinor = 0;
};
