// DateTime and DateTimeDiff: conversions through FILETIME and local time, ordering, arithmetic, and
// the short date text in more than one locale.

#include "orvanta/foundation/DateTime.h"

#include <gtest/gtest.h>
#include <langinfo.h>

#include <ctime>
#include <random>
#include <string>

#include "tests/foundation/TestEnvironment.h"

using Orvanta::DateTime;
using Orvanta::DateTimeDiff;
using Orvanta::FILETIME;

namespace {

constexpr long long kDay = DateTimeDiff::kTicksPerDay;

unsigned long long ticksOf(const DateTime& d) {
    FILETIME t{0xdeadbeef, 0xdeadbeef};
    d.asFileTime(&t);
    return (static_cast<unsigned long long>(t.dwHighDateTime) << 32) | t.dwLowDateTime;
}

// A real date of 1601..9999 with a random time of day.
DateTime randomDate(std::mt19937& random) {
    std::uniform_int_distribution<int> year(1601, 9999), month(1, 12), day(1, 28), hour(0, 23), minute(0, 59),
        millisecond(0, 999);
    return DateTime(year(random), month(random), day(random), hour(random), minute(random), minute(random),
                    millisecond(random));
}

// Days from 1601-01-01 by the Gregorian rule, counted independently of the library.
long long daysSince1601(int year, int month, int day) {
    static const int kBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    const auto leap = [](int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; };
    long long days = 0;
    for (int y = 1601; y < year; ++y) days += leap(y) ? 366 : 365;
    return days + kBefore[month - 1] + (month > 2 && leap(year)) + day - 1;
}

}  // namespace

TEST(DateTimeFileTime, TicksFollowTheCalendarAndRoundTrip) {
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        const DateTime d = randomDate(random);
        const long long expected = daysSince1601(d.getYear(), d.getMonth(), d.getMDay()) * kDay +
                                   ((d.getHour() * 60LL + d.getMinute()) * 60 + d.getSecond()) * 10000000LL +
                                   d.getMillisecond() * 10000LL;
        ASSERT_EQ(ticksOf(d), static_cast<unsigned long long>(expected));
        FILETIME t{};
        d.asFileTime(&t);
        EXPECT_EQ(DateTime(t, false), d);
    }
    EXPECT_TRUE(DateTime(FILETIME{0, 0x80000000}, false).isNull()) << "beyond the range";
}

TEST(DateTimeFileTime, FieldsThatAreNoDateLeaveTheOutputAlone) {
    for (const DateTime& bad :
         {DateTime(2004, 13, 1, 0, 0, 0, 0), DateTime(2003, 2, 29, 0, 0, 0, 0),
          DateTime(2004, 4, 31, 0, 0, 0, 0), DateTime(2004, 1, 1, 24, 0, 0, 0),
          DateTime(2004, 1, 1, 0, 0, 0, 1000), DateTime(1600, 12, 31, 0, 0, 0, 0), DateTime()})
        EXPECT_EQ(ticksOf(bad), 0xdeadbeefdeadbeefULL);
}

TEST(DateTimeArithmetic, DifferencesAreSignedAndAddBackToTheDate) {
    EXPECT_EQ(DateTime(2004, 2, 29, 0, 0, 0, 0) + DateTimeDiff(864000000000LL),
              DateTime(2004, 3, 1, 0, 0, 0, 0));
    EXPECT_EQ(DateTimeDiff(kDay) + DateTime(1900, 2, 28, 12, 0, 0, 0), DateTime(1900, 3, 1, 12, 0, 0, 0));
    EXPECT_EQ((DateTime(2010, 6, 15, 10, 0, 0, 250) - DateTime(2010, 6, 15, 10, 0, 1, 0)).getTicks(),
              -7500000);
    std::mt19937 random(11);
    for (int i = 0; i < 1000; ++i) {
        const DateTime x = randomDate(random), y = randomDate(random);
        EXPECT_EQ(static_cast<unsigned long long>((x - y).getTicks()), ticksOf(x) - ticksOf(y));
        DateTime z = y;
        z += x - y;
        EXPECT_EQ(z, x);
    }
}

TEST(DateTimeOrder, AgreesWithTheInstantsAndOrdersDatesThatDoNotExist) {
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        const DateTime a = randomDate(random);
        // Neighbours that differ in the last field only as often as in all of them.
        const DateTime b =
            i % 2 ? randomDate(random) : a + DateTimeDiff(static_cast<long long>(random() % 5) - 2);
        EXPECT_EQ(a < b, ticksOf(a) < ticksOf(b));
        EXPECT_EQ(a > b, ticksOf(a) > ticksOf(b));
        EXPECT_EQ(a <= b, ticksOf(a) <= ticksOf(b));
        EXPECT_EQ(a == b, ticksOf(a) == ticksOf(b));
    }
    EXPECT_TRUE(DateTime(2004, 12, 31, 0, 0, 0, 0) < DateTime(2004, 13, 1, 0, 0, 0, 0));
    EXPECT_TRUE(DateTime(2004, 13, 1, 0, 0, 0, 0) < DateTime(2005, 1, 1, 0, 0, 0, 0));
}

TEST(DateTimeLocal, LocalTimeFollowsDaylightSavingBothWays) {
    const OrvantaTest::ScopedTimeZone zone(OrvantaTest::kCentralEurope);
    EXPECT_EQ(DateTime(0L), DateTime(1970, 1, 1, 1, 0, 0, 0));
    EXPECT_EQ(DateTime(1088683200L), DateTime(2004, 7, 1, 14, 0, 0, 0)) << "2004-07-01 12:00 UTC, summer";
    EXPECT_EQ(DateTime(2004, 1, 15, 12, 30, 0, 500).localToUTC(), DateTime(2004, 1, 15, 11, 30, 0, 500));
    EXPECT_EQ(DateTime(2005, 1, 1, 0, 15, 0, 0).localToUTC(), DateTime(2004, 12, 31, 23, 15, 0, 0));
    std::mt19937 random(3);
    for (int i = 0; i < 500; ++i) {
        // Away from the changeover hours, where a local reading is ambiguous or missing.
        DateTime local = randomDate(random);
        if (local.getHour() < 4) local += DateTimeDiff(4 * 3600 * DateTimeDiff::kTicksPerSecond);
        FILETIME utc{};
        local.localToUTC().asFileTime(&utc);
        EXPECT_EQ(DateTime(utc, true), local);
    }
    const DateTime before(static_cast<long>(std::time(nullptr)));
    const DateTime now = DateTime::now();
    EXPECT_TRUE(before <= now && now < DateTime(static_cast<long>(std::time(nullptr)) + 1));
}

TEST(DateTimeLocal, NoDateInGivesNoDateOut) {
    const OrvantaTest::ScopedTimeZone zone(OrvantaTest::kCentralEurope);
    for (const DateTime& noDate :
         {DateTime(), DateTime(2004, 13, 1, 0, 0, 0, 0), DateTime(2003, 2, 29, 12, 0, 0, 0)})
        EXPECT_TRUE(noDate.localToUTC().isNull()) << noDate.getYear() << "-" << noDate.getMonth();
}

// Short dates: the text of the user's locale, with the order of day and month the locale's own.
class DateTimeShortText : public testing::TestWithParam<const char*> {};

TEST_P(DateTimeShortText, ShowsTheDateAloneInTheLocalesOrder) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    ASSERT_TRUE(locale.ok());
    // Day 23 and month 11 cannot be mistaken for each other or for a part of the year.
    const std::string text = DateTime(2004, 11, 23, 0, 0, 0, 0).asString().toUtf8();
    const std::size_t day = text.find("23"), month = text.find("11");
    ASSERT_TRUE(text.find("2004") != std::string::npos && day != std::string::npos &&
                month != std::string::npos)
        << text;
    // The C library's date format of the same locale says whether the day comes first.
    const std::string cFormat = nl_langinfo(D_FMT);
    EXPECT_EQ(day < month, cFormat.find("%d") < cFormat.find("%m")) << text << " against " << cFormat;
    EXPECT_EQ(DateTime(2004, 11, 23, 23, 59, 59, 999).asString().toUtf8(), text) << "no time of day";
    for (const DateTime& noDate :
         {DateTime(2004, 13, 1, 0, 0, 0, 0), DateTime(2003, 2, 29, 0, 0, 0, 0), DateTime()})
        EXPECT_TRUE(noDate.asString().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Locales, DateTimeShortText, testing::Values("en_US.UTF-8", "de_DE.UTF-8"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             const std::string name = info.param;
                             return name.substr(0, name.find('.'));
                         });
