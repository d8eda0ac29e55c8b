// dateToText: pictures from string resources, formatted in the user's locale. Names of months and
// weekdays are checked against the C library's own data for the same locale.

#include "orvanta/foundation/DateText.h"

#include <gtest/gtest.h>
#include <langinfo.h>

#include <string>

#include "orvanta/platform/LocalTime.h"
#include "tests/foundation/TestEnvironment.h"

using Orvanta::CString;
using Orvanta::SYSTEMTIME;
using Orvanta::Platform::ResourceModule;

namespace {

SYSTEMTIME date(int year, int month, int day) {
    SYSTEMTIME st{};
    st.wYear = static_cast<Orvanta::WORD>(year);
    st.wMonth = static_cast<Orvanta::WORD>(month);
    st.wDay = static_cast<Orvanta::WORD>(day);
    // The weekday, Sunday 0, as the calendar conversion finds it.
    Orvanta::FILETIME t;
    SYSTEMTIME full = st;
    if (Orvanta::Platform::systemTimeToFileTime(st, &t)) Orvanta::Platform::fileTimeToSystemTime(t, &full);
    st.wDayOfWeek = full.wDayOfWeek;
    return st;
}

class DateText : public testing::TestWithParam<const char*> {
protected:
    std::string text(const SYSTEMTIME& day, const char16_t* picture) {
        mModule.addString(500, picture);
        return Orvanta::dateToText(day, 500).toUtf8();
    }
    ResourceModule mModule;
    OrvantaTest::ScopedResourceModule mCurrent{&mModule};
};

}  // namespace

TEST_P(DateText, NamesAreTheLocalesAndEverythingElseFollowsThePicture) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    ASSERT_TRUE(locale.ok());
    for (int month = 1; month <= 12; ++month) {
        const SYSTEMTIME d = date(2021, month, 10);
        EXPECT_EQ(text(d, u"MMMM"), nl_langinfo(static_cast<nl_item>(MON_1 + month - 1)));
        EXPECT_EQ(text(d, u"dddd"), nl_langinfo(static_cast<nl_item>(DAY_1 + d.wDayOfWeek)));
        // Short names are compared in English, where they are the C library's own.
        if (std::string(GetParam()).rfind("en", 0) == 0)
            EXPECT_EQ(text(d, u"ddd MMM"),
                      std::string(nl_langinfo(static_cast<nl_item>(ABDAY_1 + d.wDayOfWeek))) + " " +
                          nl_langinfo(static_cast<nl_item>(ABMON_1 + month - 1)));
    }
    const std::u16string fits = u"'" + std::u16string(125, u'x') + u"' d";  // 127 characters of text
    const std::pair<const char16_t*, const char*> pictures[] = {
        {u"dd.MM.yyyy", "07.03.2004"},
        {u"d/M/yy", "7/3/04"},
        {u"y|yy|yyyy", "4|04|2004"},
        {u"'Day' d", "Day 7"},
        {u"'It''s' d", "It's 7"},
        {u"d 'unclosed MMMM", "7 unclosed MMMM"},
        {u"d hh:mm (abc)", "7 hh:mm (abc)"},
        {u"(xyz)", "(x4z)"}};  // an unquoted y is a year
    for (const auto& [picture, expected] : pictures) EXPECT_EQ(text(date(2004, 3, 7), picture), expected);
    EXPECT_EQ(text(date(2004, 3, 7), fits.c_str()).size(), 127u);
    EXPECT_EQ(text(date(2004, 3, 7), (fits + u"x").c_str()), "") << "128 characters do not fit";
    EXPECT_EQ(text(date(2004, 13, 7), u"dd.MM.yyyy"), "");
    EXPECT_EQ(text(date(2003, 2, 29), u"dd.MM.yyyy"), "");
    EXPECT_EQ(Orvanta::dateToText(date(2004, 3, 7), 0), CString());
    EXPECT_EQ(Orvanta::dateToText(date(2004, 3, 7), 501), CString());
}

INSTANTIATE_TEST_SUITE_P(Locales, DateText, testing::Values("en_US.UTF-8", "de_DE.UTF-8"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             const std::string name = info.param;
                             return name.substr(0, name.find('.'));
                         });
