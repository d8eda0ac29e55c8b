// DateTime and DateTimeDiff: ticks against an independent day count, ordering and arithmetic, and
// local time.

#include "orvanta/foundation/DateTime.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "tests/foundation/TestEnvironment.h"

using Orvanta::DateTime;
using Orvanta::DateTimeDiff;
using Orvanta::FILETIME;

namespace {

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

// Fields that are no date: the first four have no calendar day, the others no time of day or lie before 1601.
const DateTime kNoDates[] = {DateTime(2004, 13, 1, 0, 0, 0, 0), DateTime(2003, 2, 29, 0, 0, 0, 0),
                             DateTime(2004, 4, 31, 0, 0, 0, 0), DateTime(),
                             DateTime(2004, 1, 1, 24, 0, 0, 0), DateTime(2004, 1, 1, 0, 0, 0, 1000),
                             DateTime(1600, 12, 31, 0, 0, 0, 0)};

}  // namespace

TEST(DateTimeTicks, FollowTheCalendarAndGiveOrderAndDifferences) {
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        const DateTime d = randomDate(random);
        const long long expected =
            daysSince1601(d.getYear(), d.getMonth(), d.getMDay()) * DateTimeDiff::kTicksPerDay +
            ((d.getHour() * 60LL + d.getMinute()) * 60 + d.getSecond()) * 10000000LL +
            d.getMillisecond() * 10000LL;
        ASSERT_EQ(ticksOf(d), static_cast<unsigned long long>(expected));
        FILETIME t{};
        d.asFileTime(&t);
        EXPECT_EQ(DateTime(t, false), d);
        // Neighbours that differ in the last field only as often as in all of them.
        const DateTime e = i % 2 ? randomDate(random) : d + DateTimeDiff(static_cast<long long>(i % 5) - 2);
        EXPECT_TRUE((d < e) == (ticksOf(d) < ticksOf(e)) && (d == e) == (ticksOf(d) == ticksOf(e)));
        EXPECT_EQ(static_cast<unsigned long long>((d - e).getTicks()), ticksOf(d) - ticksOf(e));
        DateTime back = e;
        back += d - e;
        EXPECT_EQ(back, d);
    }
    EXPECT_TRUE(DateTime(FILETIME{0, 0x80000000}, false).isNull()) << "beyond the range";
}

TEST(DateTimeLocal, LocalTimeFollowsDaylightSavingAndNoDateGivesNoDate) {
    const OrvantaTest::ScopedVariable zone("TZ", OrvantaTest::kCentralEurope);
    EXPECT_EQ(DateTime(1088683200L), DateTime(2004, 7, 1, 14, 0, 0, 0)) << "2004-07-01 12:00 UTC, summer";
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
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(ticksOf(kNoDates[i]), 0xdeadbeefdeadbeefULL) << "the output is left alone";
        EXPECT_TRUE(kNoDates[i].localToUTC().isNull());
        EXPECT_TRUE(i >= 4 || kNoDates[i].asString().isEmpty()) << "the short text is of the day alone";
    }
}
