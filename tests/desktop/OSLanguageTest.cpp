// OSLanguage: the language id from the messages locale, against the platform's table of language
// ids, with the predicates it answers; and the system's version against the kernel's own report.

#include "orvanta/desktop/OSLanguage.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

void setOrClear(const char* variable, const char* value) {
    if (value)
        setenv(variable, value, 1);
    else
        unsetenv(variable);
}

// The predicates that hold, by name.
std::string predicates(const OSLanguage& language) {
    std::string names;
    for (const auto& [name, holds] : {std::pair{"arabic", language.isArabic()},
                                      {"hebrew", language.isHebrew()},
                                      {"thai", language.isThai()},
                                      {"japanese", language.isJapanese()},
                                      {"chinese", language.isChinese()},
                                      {"english-us", language.isEnglishUS()}})
        if (holds) names += name;
    return names;
}

}  // namespace

TEST(OSLanguageTest, TheLanguageIsTheMessagesLocalesIdAndItsPrimaryLanguageAnswersThePredicates) {
    struct Row {
        const char *all, *messages, *lang;
        unsigned long id;
        const char* predicates;
    };
    for (const Row& row : std::initializer_list<Row>{
             {nullptr, nullptr, "th_TH.UTF-8", 0x041E, "thai"},
             {nullptr, nullptr, "en_GB.UTF-8", 0x0809, ""},  // English, but sublanguage 2
             {nullptr, nullptr, "en_US", 0x0409, "english-us"},
             {"C", "ja_JP.UTF-8", "th_TH.UTF-8", 0, ""},  // LC_ALL first, even C
             {"", "POSIX", "ja_JP.UTF-8", 0, ""},         // an empty one is not set
             {nullptr, "ar_EG.UTF-8", "en_US", 0x0C01, "arabic"},
             {nullptr, nullptr, "he_IL", 0x040D, "hebrew"},
             {nullptr, nullptr, "ja_JP.eucJP", 0x0411, "japanese"},
             {nullptr, nullptr, "zh_TW.Big5", 0x0404, "chinese"},
             {nullptr, nullptr, "zh_CN.GB18030", 0x0804, "chinese"},
             {nullptr, nullptr, "sr_RS@latin", 0x241A, ""},
             {nullptr, nullptr, "sr_RS@cyrillic", 0x281A, ""},
             {nullptr, nullptr, "ca_ES.UTF-8@valencia", 0x0803, ""},
             {nullptr, nullptr, "de_DE@euro", 0x0407, ""},
             {nullptr, nullptr, "xx_YY", 0, ""},
             {nullptr, nullptr, nullptr, 0, ""},
         }) {
        SCOPED_TRACE(::testing::Message()
                     << (row.all ? row.all : "-") << " " << (row.messages ? row.messages : "-") << " "
                     << (row.lang ? row.lang : "-"));
        setOrClear("LC_ALL", row.all);
        setOrClear("LC_MESSAGES", row.messages);
        setOrClear("LANG", row.lang);
        const OSLanguage language;
        EXPECT_EQ(row.id, language.currentLanguage());
        EXPECT_EQ(row.predicates, predicates(language));
        EXPECT_TRUE(language.isInstalled(row.id));
        EXPECT_FALSE(language.isInstalled(row.id + 1));
        EXPECT_FALSE(language.isEnabled(row.id));
    }
}

TEST(OSLanguageTest, TheVersionIsTheKernelsRelease) {
    FILE* release = std::fopen("/proc/sys/kernel/osrelease", "r");
    ASSERT_NE(nullptr, release);
    int kernelMajor = -1, kernelMinor = -1;
    ASSERT_EQ(2, std::fscanf(release, "%d.%d", &kernelMajor, &kernelMinor));
    std::fclose(release);
    OSLanguage language;
    int major = 0, minor = 0;
    language.getOSVersion(major, minor);
    EXPECT_EQ(std::pair(kernelMajor, kernelMinor), std::pair(major, minor));
}
