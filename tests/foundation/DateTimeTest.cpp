// DateTime and DateTimeDiff: fields, conversions through FILETIME and local time, ordering,
// arithmetic, and the short date text in more than one locale.

#include <gtest/gtest.h>

#include <langinfo.h>
#include <locale.h>

#include <ctime>
#include <random>
#include <string>

#include "orvanta/foundation/DateTime.h"
#include "tests/foundation/TestEnvironment.h"

using Orvanta::CString;
using Orvanta::DateTime;
using Orvanta::DateTimeDiff;
using Orvanta::FILETIME;
using Orvanta::SYSTEMTIME;

namespace {

constexpr long long kDay = DateTimeDiff::kTicksPerDay;
// 1970-01-01 00:00 UTC in FILETIME ticks: 369 years of 1601..1969 with 89 leap days.
constexpr unsigned long long kUnixEpochTicks = 116444736000000000ULL;

unsigned long long ticksOf(const FILETIME& t) {
    return (static_cast<unsigned long long>(t.dwHighDateTime) << 32) | t.dwLowDateTime;
}
FILETIME fileTime(unsigned long long ticks) {
    return FILETIME{static_cast<Orvanta::DWORD>(ticks), static_cast<Orvanta::DWORD>(ticks >> 32)};
}

void expectFields(const DateTime& d, int y, int mo, int day, int h, int mi, int s, int ms) {
    EXPECT_EQ(d.getYear(), y);
    EXPECT_EQ(d.getMonth(), mo);
    EXPECT_EQ(d.getMDay(), day);
    EXPECT_EQ(d.getHour(), h);
    EXPECT_EQ(d.getMinute(), mi);
    EXPECT_EQ(d.getSecond(), s);
    EXPECT_EQ(d.getMillisecond(), ms);
}

// A real date of 1601..9999 with a random time of day.
DateTime randomDate(std::mt19937& random) {
    std::uniform_int_distribution<int> year(1601, 9999), month(1, 12), day(1, 28), hour(0, 23), minute(0, 59),
        millisecond(0, 999);
    return DateTime(year(random), month(random), day(random), hour(random), minute(random), minute(random),
                    millisecond(random));
}

}  // namespace

TEST(DateTimeFields, DefaultIsAllZeroAndValuesAreStoredUnchecked) {
    expectFields(DateTime(), 0, 0, 0, 0, 0, 0, 0);
    EXPECT_TRUE(DateTime().isNull());
    expectFields(DateTime(2004, 13, 32, 25, 61, 61, 1001), 2004, 13, 32, 25, 61, 61, 1001);
}

TEST(DateTimeFields, SystemTimeCopiesAllButTheWeekday) {
    SYSTEMTIME st{2021, 7, 3, 14, 9, 8, 7, 6};
    expectFields(DateTime(st), 2021, 7, 14, 9, 8, 7, 6);
    SYSTEMTIME out{};
    out.wDayOfWeek = 5;
    DateTime(2000, 1, 2, 3, 4, 5, 6).asSystemTime(&out);
    EXPECT_EQ(out.wDayOfWeek, 5);
    EXPECT_EQ(out.wYear, 2000);
    EXPECT_EQ(out.wDay, 2);
    EXPECT_EQ(out.wMilliseconds, 6);
}

TEST(DateTimeFileTime, UnixEpochAndRoundTrips) {
    expectFields(DateTime(fileTime(kUnixEpochTicks), false), 1970, 1, 1, 0, 0, 0, 0);
    FILETIME out{};
    DateTime(1601, 1, 1, 0, 0, 0, 0).asFileTime(&out);
    EXPECT_EQ(ticksOf(out), 0u);
    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        const DateTime d = randomDate(random);
        FILETIME t{};
        d.asFileTime(&t);
        EXPECT_EQ(DateTime(t, false), d);
    }
}

TEST(DateTimeFileTime, FieldsThatAreNoDateLeaveTheOutputAlone) {
    const FILETIME sentinel = fileTime(0x0123456789abcdefULL);
    for (const DateTime& bad :
         {DateTime(2004, 13, 1, 0, 0, 0, 0), DateTime(2003, 2, 29, 0, 0, 0, 0),
          DateTime(2004, 4, 31, 0, 0, 0, 0), DateTime(2004, 1, 1, 24, 0, 0, 0),
          DateTime(2004, 1, 1, 0, 0, 0, 1000), DateTime(1600, 12, 31, 0, 0, 0, 0), DateTime()}) {
        FILETIME t = sentinel;
        bad.asFileTime(&t);
        EXPECT_EQ(ticksOf(t), ticksOf(sentinel));
    }
}

TEST(DateTimeFileTime, TickCountsBeyondTheRangeGiveNoDate) {
    EXPECT_TRUE(DateTime(fileTime(0x8000000000000000ULL), false).isNull());
    EXPECT_FALSE(DateTime(fileTime(0x7fffffffffffffffULL), false).isNull());
}

TEST(DateTimeArithmetic, OneDayAfterTheLeapDayIsTheFirstOfMarch) {
    expectFields(DateTime(2004, 2, 29, 0, 0, 0, 0) + DateTimeDiff(864000000000LL), 2004, 3, 1, 0, 0, 0, 0);
    expectFields(DateTimeDiff(kDay) + DateTime(2000, 2, 28, 12, 0, 0, 0), 2000, 2, 29, 12, 0, 0, 0);
    // 1900 and 2100 are no leap years; 2000 is.
    expectFields(DateTime(1900, 2, 28, 0, 0, 0, 0) + DateTimeDiff(kDay), 1900, 3, 1, 0, 0, 0, 0);
    expectFields(DateTime(2100, 2, 28, 0, 0, 0, 0) + DateTimeDiff(kDay), 2100, 3, 1, 0, 0, 0, 0);
    EXPECT_EQ((DateTime(2004, 3, 1, 0, 0, 0, 0) - DateTime(2004, 2, 28, 0, 0, 0, 0)).getTicks(), 2 * kDay);
    EXPECT_EQ((DateTime(2003, 3, 1, 0, 0, 0, 0) - DateTime(2003, 2, 28, 0, 0, 0, 0)).getTicks(), kDay);
    EXPECT_EQ((DateTime(2005, 1, 1, 0, 0, 0, 0) - DateTime(2004, 1, 1, 0, 0, 0, 0)).getTicks(), 366 * kDay);
}

TEST(DateTimeArithmetic, DifferencesAreSignedAndAddBackToTheDate) {
    const DateTime a(2010, 6, 15, 10, 0, 0, 250);
    const DateTime b(2010, 6, 15, 10, 0, 1, 0);
    EXPECT_EQ((b - a).getTicks(), 750 * DateTimeDiff::kTicksPerMillisecond);
    EXPECT_EQ((a - b).getTicks(), -750 * DateTimeDiff::kTicksPerMillisecond);
    std::mt19937 random(11);
    for (int i = 0; i < 1000; ++i) {
        const DateTime x = randomDate(random), y = randomDate(random);
        EXPECT_EQ(y + (x - y), x);
        DateTime z = y;
        z += x - y;
        EXPECT_EQ(z, x);
    }
}

TEST(DateTimeArithmetic, DiffKeepsItsTicksAsAFileTime) {
    const DateTimeDiff diff(-5);
    const FILETIME asTime = diff.asFileTime();
    EXPECT_EQ(DateTimeDiff(asTime).getTicks(), -5);
    EXPECT_EQ(ticksOf(DateTimeDiff(3 * kDay).asFileTime()), static_cast<unsigned long long>(3 * kDay));
}

TEST(DateTimeOrder, MillisecondsCount) {
    const DateTime one(2000, 1, 1, 0, 0, 0, 1), two(2000, 1, 1, 0, 0, 0, 2);
    EXPECT_TRUE(one < two);
    EXPECT_FALSE(two < one);
    EXPECT_TRUE(two > one);
    EXPECT_TRUE(one <= two && one != two);
    EXPECT_TRUE(two >= one);
    EXPECT_TRUE(one <= one && one >= one && !(one > one) && !(one < one));
}

TEST(DateTimeOrder, AgreesWithTheOrderOfTheInstants) {
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i) {
        const DateTime a = randomDate(random);
        // Neighbours that differ in one field only as often as in all of them.
        const DateTime b =
            i % 2 ? randomDate(random) : a + DateTimeDiff(static_cast<long long>(random() % 5) - 2);
        FILETIME ta{}, tb{};
        a.asFileTime(&ta);
        b.asFileTime(&tb);
        EXPECT_EQ(a < b, ticksOf(ta) < ticksOf(tb));
        EXPECT_EQ(a > b, ticksOf(ta) > ticksOf(tb));
        EXPECT_EQ(a == b, ticksOf(ta) == ticksOf(tb));
    }
}

TEST(DateTimeOrder, DatesThatDoNotExistStillOrderByTheirFields) {
    EXPECT_TRUE(DateTime(2004, 12, 31, 0, 0, 0, 0) < DateTime(2004, 13, 1, 0, 0, 0, 0));
    EXPECT_TRUE(DateTime(2004, 13, 1, 0, 0, 0, 0) < DateTime(2005, 1, 1, 0, 0, 0, 0));
}

TEST(DateTimeLocal, SecondsSinceTheEpochAreLocalTime) {
    OrvantaTest::ScopedTimeZone zone(OrvantaTest::kCentralEurope);
    expectFields(DateTime(0L), 1970, 1, 1, 1, 0, 0, 0);
    // 2004-07-01 12:00:00 UTC, in summer time.
    expectFields(DateTime(1088683200L), 2004, 7, 1, 14, 0, 0, 0);
}

TEST(DateTimeLocal, LocalToUtcFollowsDaylightSaving) {
    OrvantaTest::ScopedTimeZone zone(OrvantaTest::kCentralEurope);
    expectFields(DateTime(2004, 1, 15, 12, 30, 0, 500).localToUTC(), 2004, 1, 15, 11, 30, 0, 500);
    expectFields(DateTime(2004, 7, 1, 12, 30, 0, 500).localToUTC(), 2004, 7, 1, 10, 30, 0, 500);
    // Across midnight and the year.
    expectFields(DateTime(2005, 1, 1, 0, 15, 0, 0).localToUTC(), 2004, 12, 31, 23, 15, 0, 0);
}

TEST(DateTimeLocal, FileTimeToLocalIsTheInverseOfLocalToUtc) {
    OrvantaTest::ScopedTimeZone zone(OrvantaTest::kCentralEurope);
    std::mt19937 random(3);
    for (int i = 0; i < 500; ++i) {
        // Away from the changeover hours, where a local reading is ambiguous or missing.
        DateTime local = randomDate(random);
        if (local.getHour() < 4) local = local + DateTimeDiff(4 * 3600 * DateTimeDiff::kTicksPerSecond);
        FILETIME utc{};
        local.localToUTC().asFileTime(&utc);
        EXPECT_EQ(DateTime(utc, true), local);
    }
}

TEST(DateTimeLocal, NowIsTheLocalClock) {
    OrvantaTest::ScopedTimeZone zone(OrvantaTest::kCentralEurope);
    const DateTime before(static_cast<long>(std::time(nullptr)));
    const DateTime now = DateTime::now();
    const DateTime after(static_cast<long>(std::time(nullptr)) + 1);
    EXPECT_TRUE(before <= now) << now.getHour() << ":" << now.getMinute() << ":" << now.getSecond();
    EXPECT_TRUE(now < after);
}

// Short dates: the text of the user's locale, with the order of day and month the locale's own.
class DateTimeShortText : public testing::TestWithParam<const char*> {};

TEST_P(DateTimeShortText, ShowsTheDateAloneInTheLocalesOrder) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    ASSERT_TRUE(locale.ok());
    // Day 23 and month 11 cannot be mistaken for each other or for a part of the year.
    const std::string text = DateTime(2004, 11, 23, 0, 0, 0, 0).asString().toUtf8();
    ASSERT_FALSE(text.empty());
    EXPECT_NE(text.find("2004"), std::string::npos) << text;
    const std::size_t day = text.find("23");
    const std::size_t month = text.find("11");
    ASSERT_NE(day, std::string::npos) << text;
    ASSERT_NE(month, std::string::npos) << text;
    // The C library's date format of the same locale says whether the day comes first.
    const std::string cFormat = nl_langinfo(D_FMT);
    const bool dayFirst = cFormat.find("%d") < cFormat.find("%m");
    EXPECT_EQ(day < month, dayFirst) << text << " against " << cFormat;
    EXPECT_EQ(text.find(':'), std::string::npos) << "no time of day: " << text;
}

TEST_P(DateTimeShortText, TimeOfDayDoesNotChangeTheText) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    ASSERT_TRUE(locale.ok());
    const DateTime midnight(2019, 11, 3, 0, 0, 0, 0);
    const DateTime evening(2019, 11, 3, 23, 59, 59, 999);
    EXPECT_EQ(evening.asString(), midnight.asString());
    EXPECT_NE(midnight.asString(), DateTime(2019, 11, 4, 0, 0, 0, 0).asString());
}

TEST_P(DateTimeShortText, FieldsThatAreNoDateGiveNoText) {
    ORVANTA_REQUIRE_LOCALE(GetParam());
    OrvantaTest::ScopedLocale locale(GetParam());
    EXPECT_TRUE(DateTime(2004, 13, 1, 0, 0, 0, 0).asString().isEmpty());
    EXPECT_TRUE(DateTime(2003, 2, 29, 0, 0, 0, 0).asString().isEmpty());
    EXPECT_TRUE(DateTime().asString().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Locales, DateTimeShortText, testing::Values("en_US.UTF-8", "de_DE.UTF-8"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             std::string name = info.param;
                             return name.substr(0, name.find('.'));
                         });

TEST(DateTimeShortTextLocales, DifferentLocalesGiveDifferentTexts) {
    ORVANTA_REQUIRE_LOCALE("en_US.UTF-8");
    ORVANTA_REQUIRE_LOCALE("de_DE.UTF-8");
    const DateTime date(2004, 2, 29, 0, 0, 0, 0);
    CString english, german;
    {
        OrvantaTest::ScopedLocale locale("en_US.UTF-8");
        english = date.asString();
    }
    {
        OrvantaTest::ScopedLocale locale("de_DE.UTF-8");
        german = date.asString();
    }
    EXPECT_NE(english, german);
}
