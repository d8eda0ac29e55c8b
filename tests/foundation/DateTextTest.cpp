// dateToText: pictures from string resources, formatted in the user's locale. Names of months and
// weekdays are checked against the C library's own data for the process's locale.

#include "orvanta/foundation/DateText.h"

#include <gtest/gtest.h>
#include <langinfo.h>

#include <string>

#include "tests/foundation/TestEnvironment.h"

using Orvanta::SYSTEMTIME;
using Orvanta::WORD;

namespace {

// The day with its weekday (Sunday 0) by Sakamoto's rule, independently of the library.
SYSTEMTIME date(int year, int month, int day) {
    static const int kShift[] = {0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4};
    const int y = year - (month < 3), weekday = (y + y / 4 - y / 100 + y / 400 + kShift[month - 1] + day) % 7;
    const auto w = [](int value) { return static_cast<WORD>(value); };
    return {w(year), w(month), w(weekday), w(day), 0, 0, 0, 0};
}

}  // namespace

TEST(DateText, NamesAreTheLocalesAndEverythingElseFollowsThePicture) {
    Orvanta::Platform::ResourceModule module;
    const OrvantaTest::ScopedResourceModule current(&module);
    auto text = [&](const SYSTEMTIME& day, const std::u16string& picture) {
        module.addString(500, picture.c_str());
        return Orvanta::dateToText(day, 500).toUtf8();
    };
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
}
