#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <support/messages.h>
#include <utility>

#include <corvel/date_time.h>
#include <corvel/value_error.h>

namespace {

QeCString format(const QeDateTime& when, const QeCString& directives, const QeZone& zone = QeZone::utc()) {
    return when.asString(directives, QeLocale::defaultLocale(), zone);
}

QeCString isoText(const QeDateTime& when, const QeZone& zone) {
    return when.asString(QeDateTime::Iso8601, QeLocale::defaultLocale(), zone);
}

TEST(QeDate, ReachesItsLastYearAndStopsThere) {
    const QeDate last(31, 12, QeDate::MaxYear);
    const QeDate first(1, 1, -QeDate::MaxYear);
    EXPECT_EQ(QeDate::fromDayNumber(last.dayNumber()), last);
    EXPECT_EQ(QeDate::fromDayNumber(last.dayNumber() + 1), last);
    EXPECT_EQ(QeDate::fromDayNumber(INT64_MAX), last);
    EXPECT_EQ(QeDate::fromDayNumber(INT64_MIN), first);
    EXPECT_LT(first, last);
    EXPECT_EQ(last.dayNumber() - first.dayNumber() + 1, 2 * 146'097LL * 2'500'000'000 - 366);
}

TEST(QeDateTime, GoesOnBeyondTheCalendarWhereAZoneDoes) {
    const QeDateTime late(QeDate(31, 12, QeDate::MaxYear), 23, 59, 59, 999, QeZone(-840));
    EXPECT_EQ(isoText(late, QeZone(-840)), "999999999999-12-31T23:59:59,999-14:00");
    EXPECT_EQ(isoText(late, QeZone::utc()), "1000000000000-01-01T13:59:59,999Z");
    EXPECT_EQ(isoText(late, QeZone(840)), "1000000000000-01-02T03:59:59,999+14:00");
    EXPECT_EQ(late.date(QeZone::utc()).dayNumber(), QeDate(31, 12, QeDate::MaxYear).dayNumber() + 1);

    const QeDateTime early(QeDate(1, 1, -QeDate::MaxYear), 0, 0, 0, 0, QeZone(840));
    EXPECT_EQ(isoText(early, QeZone(-840)), "-1000000000000-12-30T20:00:00-14:00");
    EXPECT_LT(early, late);
}

TEST(QeDateTime, ReadsBackInTheZoneItWasMadeIn) {
    for (int offset = -QeZone::MaxOffset; offset <= QeZone::MaxOffset; ++offset)
        for (int hour = 0; hour < 24; ++hour) {
            SCOPED_TRACE(testing::Message() << offset << " minutes, hour " << hour);
            const QeZone zone(offset);
            const QeDateTime when(QeDate(1, 3, 1900), hour, 59, 58, 997, zone);
            ASSERT_EQ(when.date(zone), QeDate(1, 3, 1900));
            ASSERT_EQ(when.hour(zone) * 60 + when.minute(zone), hour * 60 + 59);
            ASSERT_EQ(when.second() * 1000 + when.milliSecond(), 58'997);
            const std::int64_t minutes = when.date(QeZone::utc()).dayNumber() * 24 * 60 + when.hourGMT() * 60 +
                                         when.minuteGMT();  // since 1 January 1970
            ASSERT_EQ(minutes, (QeDate(1, 3, 1900).dayNumber() * 24 + hour) * 60 + 59 - offset);
        }
}

// The C library, in the C locale, as the judge of days and texts; it writes years of four digits as we do.
TEST(QeDateTime, CountsAndFormatsAsTheCLibraryDoes) {
    const char all[] =
        "%C|%d|%e|%G|%g|%H|%I|%j|%M|%m|%S|%U|%u|%V|%W|%w|%Y|%y|%A|%a|%B|%b|%c|%D|%F|%h|%n|%p|%R|%r|%T|%t|%X|%x|%%";
    for (std::int64_t day = -354'285; day < 2'932'897; day += 61) {  // the years 1000 to 9999
        const std::int64_t at = day * 86'400 + (day + 354'285) * 277 % 86'400;
        if (!std::in_range<std::time_t>(at)) continue;  // it has 32 bits on some machines
        const auto second = static_cast<std::time_t>(at);
        std::tm fields{};
        ASSERT_NE(gmtime_r(&second, &fields), nullptr);
        const QeDate date(fields.tm_mday, fields.tm_mon + 1, fields.tm_year + 1900);
        ASSERT_EQ(date.dayNumber(), day);
        char expected[400];
        ASSERT_GT(std::strftime(expected, sizeof expected, all, &fields), 0U);
        const QeDateTime when(date, fields.tm_hour, fields.tm_min, fields.tm_sec, 0, QeZone::utc());
        ASSERT_EQ(format(when, all), expected);
    }
}

TEST(QeDateTime, FormatsWhatTheCLibraryDoesNot) {
    const struct {
        std::int64_t year;
        const char* directives;
        const char* text;
    } cases[] = {
        {33, "%Y %C %y %G", "0033 00 33 0033"},
        {-1, "%Y %C %y %F", "-0001 -01 99 -0001-05-20"},
        {12'003, "%Y %C %y", "12003 120 03"},
        {4'294'967'296, "%Y-%m-%d", "4294967296-05-20"},
        {2003, "%Z %z", "-03:30 -0330"},
        {2003, "%EY %Od %E", "2003 20 %E"},  // modifiers change nothing, and are no directives
        {2003, "%Q %", "%Q %"},              // neither is this
        // flags and widths of years
        {270, "%Y %0Y %+Y %5Y %05Y %+4Y %+5Y %1Y", "0270 0270 0270 00270 00270 0270 +0270 270"},
        {12'003, "%Y %0Y %+Y %4Y %+4Y %010Y %+4EY", "12003 12003 +12003 12003 +12003 0000012003 +12003"},
        {-270, "%0Y %+Y %+5Y %6Y %1Y", "-0270 -0270 -0270 -00270 -270"},
        {12'003, "%+C %+2C %4C %+3G %006G", "+120 +120 0120 +12003 012003"},
        {2003, "%+F %010F %012F %+11F %3F %+C %+3C",
         "2003-05-20 2003-05-20 002003-05-20 +2003-05-20 2003-05-20 20 +20"},
        {12'003, "%F %+F", "12003-05-20 +12003-05-20"},
        {2003, "%999Q%05d %+X %1000Y %+", "%999Q%05d %+X %1000Y %+"},  // others have none, or there are too many
        {2003, "%%Y 100%", "%Y 100%"},
        {2003, "", ""},
    };
    for (const auto& [year, directives, text] : cases)
        EXPECT_EQ(format(QeDateTime(QeDate(20, 5, year), 9, 1, 8, 0, QeZone(-210)), directives, QeZone(-210)), text);
    EXPECT_EQ(format(QeDateTime(), QeCString("%Y\0%m", 5)), QeCString("1970\0"
                                                                      "01",
                                                                      7));
}

TEST(QeDateTime, RefusesFieldsThatDoNotExist) {
    const auto time = [](int hour, int minute, int second, int millisecond) {
        return [=] { QeDateTime(QeDate(), hour, minute, second, millisecond, QeZone::utc()); };
    };
    const auto date = [](int day, int month, std::int64_t year) { return [=] { QeDate(day, month, year); }; };
    const struct {
        std::function<void()> make;
        const char* msg;
    } cases[] = {
        {date(30, 2, 2004), "Expected a day of the month from 1 to 29, found 30"},
        {date(29, 2, 2100), "Expected a day of the month from 1 to 28, found 29"},
        {date(0, 1, 2003), "Expected a day of the month from 1 to 31, found 0"},
        {date(1, 13, 2003), "Expected a month from 1 to 12, found 13"},
        {date(1, 257, 2003), "Expected a month from 1 to 12, found 257"},
        {date(1, 1, INT64_MIN), "Expected a year from -999999999999 to 999999999999, found -9223372036854775808"},
        {time(24, 0, 0, 0), "Expected an hour from 0 to 23, found 24"},
        {time(0, -1, 0, 0), "Expected a minute from 0 to 59, found -1"},
        {time(0, 0, 60, 0), "Expected a second from 0 to 59, found 60"},
        {time(0, 0, 0, 1000), "Expected a millisecond from 0 to 999, found 1000"},
        {[] { QeZone(841); }, "Expected a zone at most 840 minutes from UTC, found 841"},
        {[] { QeZone(-841); }, "Expected a zone at most 840 minutes from UTC, found -841"},
    };
    for (const auto& [make, msg] : cases)
        EXPECT_EQ(messageOf<QeValueError>(make), msg);
}

}  // namespace
