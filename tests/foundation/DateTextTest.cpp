// dateToText: pictures from string resources, formatted in the user's locale. Names of months and
// weekdays are checked against the C library's own data for the same locale.

#include "orvanta/foundation/DateText.h"

#include <gtest/gtest.h>
#include <langinfo.h>

#include <string>

#include "orvanta/platform/LocalTime.h"
#include "tests/foundation/TestEnvironment.h"

using Orvanta::SYSTEMTIME;
using Orvanta::WORD;

namespace {

SYSTEMTIME date(int year, int month, int day) {
    SYSTEMTIME st{static_cast<WORD>(year), static_cast<WORD>(month), 0, static_cast<WORD>(day)};
    // The weekday, Sunday 0, as the calendar conversion finds it.
    Orvanta::FILETIME t;
    SYSTEMTIME full = st;
    if (Orvanta::Platform::systemTimeToFileTime(st, &t)) Orvanta::Platform::fileTimeToSystemTime(t, &full);
    st.wDayOfWeek = full.wDayOfWeek;
    return st;
}

class DateText : public testing::TestWithParam<const char*> {
protected:
    std::string text(const SYSTEMTIME& day, const std::u16string& picture) {
        mModule.addString(500, picture.c_str());
        return Orvanta::dateToText(day, 500).toUtf8();
    }
    Orvanta::Platform::ResourceModule mModule;
    OrvantaTest::ScopedResourceModule mCurrent{&mModule};
};

}  // namespace

TEST_P(DateText, NamesAreTheLocalesAndEverythingElseFollowsThePicture) {
    ORVANTA_USE_LOCALE(GetParam());
    for (int month = 1; month <= 12; ++month) {
        const SYSTEMTIME d = date(2021, month, 10);
        EXPECT_EQ(text(d, u"MMMM dddd"), std::string(nl_langinfo(static_cast<nl_item>(MON_1 + month - 1))) +
                                             " " + nl_langinfo(static_cast<nl_item>(DAY_1 + d.wDayOfWeek)));
    }
    const std::u16string fits = u"'" + std::u16string(125, u'x') + u"' d";  // 127 characters of text
    const std::pair<std::u16string, std::string> pictures[] = {
        {u"dd.MM.yyyy", "07.03.2004"},
        {u"y|yy|yyyy", "4|04|2004"},
        {u"'It''s' d", "It's 7"},
        {u"d 'unclosed MMMM", "7 unclosed MMMM"},
        {u"(xyz)", "(x4z)"},  // an unquoted y is a year
        {fits, std::string(125, 'x') + " 7"},
        {fits + u"x", ""}};  // 128 characters do not fit
    for (const auto& [picture, expected] : pictures) EXPECT_EQ(text(date(2004, 3, 7), picture), expected);
    EXPECT_EQ(text(date(2003, 2, 29), u"dd.MM.yyyy"), "");
    EXPECT_TRUE(Orvanta::dateToText(date(2004, 3, 7), 501).isEmpty()) << "no such picture";
}

INSTANTIATE_TEST_SUITE_P(Locales, DateText, testing::Values("en_US.UTF-8", "de_DE.UTF-8"));
