// OSLanguage: the language id from the messages locale, against the platform's table of language
// ids, with the predicates it answers.

#include "orvanta/desktop/OSLanguage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <tuple>

TEST(OSLanguageTest, TheLanguageIsTheMessagesLocalesIdAndItsPrimaryLanguageAnswersThePredicates) {
    // LC_ALL, LC_MESSAGES, LANG (null: unset); the id; the predicates that hold, by their initials.
    using Row = std::tuple<const char*, const char*, const char*, unsigned long, const char*>;
    for (const auto& [all, messages, lang, id, predicates] : std::initializer_list<Row>{
             {nullptr, nullptr, "th_TH.UTF-8", 0x041EUL, "T"},
             {nullptr, nullptr, "en_GB.UTF-8", 0x0809UL, ""},  // English, but sublanguage 2
             {nullptr, nullptr, "en_US", 0x0409UL, "E"},
             {"C", "ja_JP.UTF-8", "th_TH.UTF-8", 0UL, ""},  // LC_ALL first, even C
             {"", "POSIX", "ja_JP.UTF-8", 0UL, ""},         // an empty one is not set
             {nullptr, "ar_EG.UTF-8", "en_US", 0x0C01UL, "A"},
             {nullptr, nullptr, "he_IL", 0x040DUL, "H"},
             {nullptr, nullptr, "ja_JP.eucJP", 0x0411UL, "J"},
             {nullptr, nullptr, "zh_TW.Big5", 0x0404UL, "C"},
             {nullptr, nullptr, "sr_RS@latin", 0x241AUL, ""},
             {nullptr, nullptr, "xx_YY", 0UL, ""},
             {nullptr, nullptr, nullptr, 0UL, ""},
         }) {
        for (const auto& [variable, value] :
             {std::pair{"LC_ALL", all}, {"LC_MESSAGES", messages}, {"LANG", lang}})
            value ? setenv(variable, value, 1) : unsetenv(variable);
        const OSLanguage language;
        std::string holds;
        for (const auto& [initial, yes] : {std::pair{'A', language.isArabic()},
                                           {'H', language.isHebrew()},
                                           {'T', language.isThai()},
                                           {'J', language.isJapanese()},
                                           {'C', language.isChinese()},
                                           {'E', language.isEnglishUS()}})
            if (yes) holds += initial;
        EXPECT_EQ(std::tuple(id, std::string(predicates), true, false, false),
                  std::tuple(language.currentLanguage(), holds, language.isInstalled(id),
                             language.isInstalled(id + 1), language.isEnabled(id)))
            << (lang ? lang : "-");
    }
}
