// dateToText: pictures from string resources, formatted in the user's locale. Names of months and
// weekdays are checked against the C library's own data for the same locale.

#include <gtest/gtest.h>

#include <langinfo.h>

#include <string>

#include "orvanta/foundation/DateText.h"
#include "orvanta/platform/LocalTime.h"
#include "tests/foundation/TestEnvironment.h"

using Orvanta::CString;
using Orvanta::SYSTEMTIME;
using Orvanta::Platform::ResourceModule;

namespace {

constexpr int kPicture = 500;

SYSTEMTIME date(int year, int month, int day) {
    SYSTEMTIME st{};
    st.wYear = static_cast<Orvanta::WORD>(year);
    st.wMonth = static_cast<Orvanta::WORD>(month);
    st.wDay = static_cast<Orvanta::WORD>(day);
    return st;
}

// The weekday of a date, Sunday 0, as the calendar conversion finds it.
int weekdayOf(const SYSTEMTIME& day) {
    Orvanta::FILETIME t;
    SYSTEMTIME full;
    Orvanta::Platform::systemTimeToFileTime(day, &t);
    Orvanta::Platform::fileTimeToSystemTime(t, &full);
    return full.wDayOfWeek;
}

class DateText : public testing::TestWithParam<const char*> {
protected:
    std::string text(const SYSTEMTIME& day, const char16_t* picture) {
        mModule.addString(kPicture, picture);
        return Orvanta::dateToText(day, kPicture).toUtf8();
    }

    ResourceModule mModule;
    OrvantaTest::ScopedResourceModule mCurrent{&mModule};
};

}  // namespace

TEST_P(DateText, MonthAndWeekdayNamesAreTheLocales) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    ASSERT_TRUE(locale.ok());
    for (int month = 1; month <= 12; ++month)
        EXPECT_EQ(text(date(2004, month, 15), u"MMMM"), nl_langinfo(static_cast<nl_item>(MON_1 + month - 1)));
    for (int day = 1; day <= 7; ++day) {
        const SYSTEMTIME d = date(2004, 3, day);
        EXPECT_EQ(text(d, u"dddd"), nl_langinfo(static_cast<nl_item>(DAY_1 + weekdayOf(d))));
    }
}

TEST_P(DateText, NumbersFollowThePictureWhateverTheLocale) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    ASSERT_TRUE(locale.ok());
    EXPECT_EQ(text(date(2004, 3, 7), u"dd.MM.yyyy"), "07.03.2004");
    EXPECT_EQ(text(date(2004, 3, 7), u"d/M/yy"), "7/3/04");
    EXPECT_EQ(text(date(2004, 3, 7), u"y"), "4");
    EXPECT_EQ(text(date(2010, 12, 25), u"y|yy|yyyy"), "10|10|2010");
    EXPECT_EQ(text(date(1999, 11, 30), u"yyyy-MM-dd"), "1999-11-30");
}

TEST_P(DateText, QuotedTextAndOtherLettersStandForThemselves) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    ASSERT_TRUE(locale.ok());
    EXPECT_EQ(text(date(2004, 3, 7), u"'Day' d"), "Day 7");
    EXPECT_EQ(text(date(2004, 3, 7), u"'It''s' d"), "It's 7");
    EXPECT_EQ(text(date(2004, 3, 7), u"d 'unclosed MMMM"), "7 unclosed MMMM");
    EXPECT_EQ(text(date(2004, 3, 7), u"d hh:mm (abc)"), "7 hh:mm (abc)");
    EXPECT_EQ(text(date(2004, 3, 7), u"(xyz)"), "(x4z)") << "an unquoted y is a year";
}

TEST_P(DateText, NoPictureOrNoDateGivesNoText) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    EXPECT_EQ(Orvanta::dateToText(date(2004, 3, 7), 0), CString());
    EXPECT_EQ(Orvanta::dateToText(date(2004, 3, 7), kPicture + 1), CString());
    EXPECT_EQ(text(date(2004, 13, 7), u"dd.MM.yyyy"), "");
    EXPECT_EQ(text(date(2003, 2, 29), u"dd.MM.yyyy"), "");
}

TEST_P(DateText, TextsOf128CharactersOrMoreDoNotFit) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    const std::u16string fits = u"'" + std::u16string(125, u'x') + u"' d";  // 127 characters of text
    const std::u16string tooLong = u"'" + std::u16string(126, u'x') + u"' d";
    EXPECT_EQ(text(date(2004, 3, 7), fits.c_str()).size(), 127u);
    EXPECT_EQ(text(date(2004, 3, 7), tooLong.c_str()), "");
}

INSTANTIATE_TEST_SUITE_P(Locales, DateText, testing::Values("en_US.UTF-8", "de_DE.UTF-8"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             const std::string name = info.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(DateTextAbbreviations, EnglishShortNamesAreTheLocales) {
    ORVANTA_REQUIRE_LOCALE("en_US.UTF-8");
    OrvantaTest::ScopedLocale locale("en_US.UTF-8");
    ResourceModule module;
    OrvantaTest::ScopedResourceModule current(&module);
    module.addString(1, u"ddd MMM");
    for (int month = 1; month <= 12; ++month) {
        const SYSTEMTIME d = date(2021, month, 10);
        const std::string expected = std::string(nl_langinfo(static_cast<nl_item>(ABDAY_1 + weekdayOf(d)))) +
                                     " " + nl_langinfo(static_cast<nl_item>(ABMON_1 + month - 1));
        EXPECT_EQ(Orvanta::dateToText(d, 1).toUtf8(), expected);
    }
}
