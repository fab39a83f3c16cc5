#include <chrono>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include <tessit/schema/xml_duration.h>
#include <tessit/utils/xml_utils.h>

namespace {

QeDateTime read(const char* text) {
    return QeXmlUtils::convertISODateStringToDateTime(text);
}

QeCString write(const QeDateTime& when) {
    return QeXmlUtils::convertDateTimeToISOString(when, QeXmlUtils::ISO8601Format);
}

QeXmlDuration seconds(double count) {
    return QeXmlDuration(0, 0, 0, 0, 0, count);
}

TEST(DurationAddition, FindsTheInstant) {
    const struct {
        const char *start, *duration, *result;
    } cases[] = {
        {"2000-01-12T12:13:14Z", "P1Y3M5DT7H10M3.3S", "2001-04-17T19:23:17.3Z"},
        {"2003-05-20T01:00:00+02:00", "P1M", "2003-06-19T23:00:00Z"},  // on UTC's calendar
        // months into years, and the ends of months
        {"2000-12-31", "P1M", "2001-01-31T00:00:00Z"},
        {"2000-01-31", "-P30M", "1997-07-31T00:00:00Z"},
        {"2000-03-31", "-P1M", "2000-02-29T00:00:00Z"},
        {"2000-02-29", "-P100Y", "1900-02-28T00:00:00Z"},
        {"2000-01-31", "P1M1D", "2000-03-01T00:00:00Z"},  // cut short first, then a day later
        {"0001-01-01", "-P1D", "0000-12-31T00:00:00Z"},
        // decimals that have no exact double
        {"2000-01-01T00:00:14Z", "-PT3.3S", "2000-01-01T00:00:10.7Z"},
        {"2000-01-01T00:00:00Z", "PT9007199254740.9S", "287426-10-13T08:59:00.9Z"},
        // digits past the milliseconds are dropped from the sum of the seconds, towards 0
        {"2000-01-01T00:00:00Z", "PT1.0009S", "2000-01-01T00:00:01Z"},
        {"2000-01-01T00:00:14Z", "-PT3.3005S", "2000-01-01T00:00:10.699Z"},
        {"2000-01-01T00:00:00Z", "-PT3.3005S", "1999-12-31T23:59:56.7Z"},
        {"2000-01-01T00:00:00Z", "-PT0.0009S", "2000-01-01T00:00:00Z"},
        // an invalid duration adds what it holds
        {"2000-01-01T00:00:00Z", "P1.5Y", "2001-01-01T00:00:00Z"},
        // counts as large as they come
        {"2000-01-31T00:00:00Z", "-P4294967295Y", "-4294965295-01-31T00:00:00Z"},
        {"2000-01-31T00:00:00Z", "P4294967295M", "357915941-04-30T00:00:00Z"},
        {"1970-01-01T00:00:07Z", "PT3155688980304961e4S", "999998031027-02-08T00:27:51Z"},
        {"1970-01-01T00:00:07Z", "-PT3e19S", "-950662153235-08-28T18:40:07Z"},
    };
    for (const auto& [start, duration, result] : cases)
        EXPECT_EQ(write(QeXmlDuration(duration) + read(start)), result) << start << " + " << duration;
}

QeDateTime instant(std::int64_t millisecondsSince1970) {
    using namespace std::chrono;
    const milliseconds whole(millisecondsSince1970);
    const auto day = floor<days>(whole);
    const hh_mm_ss time(whole - day);
    return QeDateTime(QeDate::fromDayNumber(day.count()), static_cast<int>(time.hours().count()),
                      static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
                      static_cast<int>(time.subseconds().count()), QeZone::utc());
}

TEST(DurationAddition, OfDaysAndTimesIsExactBothWays) {
    std::mt19937_64 random(20030520);
    const auto below = [&](std::uint64_t limit) { return static_cast<std::int64_t>(random() % limit); };
    for (int round = 0; round < 20'000; ++round) {
        const std::uint64_t limit = std::uint64_t{2} << below(32);  // small and large counts alike
        const std::int64_t days = below(limit), hours = below(limit), minutes = below(limit);
        const std::int64_t milliseconds = below(1'000'000'000),
                           start = below(400'000'000'000'000) - 200'000'000'000'000;
        const std::int64_t end = start + ((days * 24 + hours) * 60 + minutes) * 60'000 + milliseconds;
        QeXmlDuration duration(0, 0, static_cast<unsigned long>(days), static_cast<unsigned long>(hours),
                               static_cast<unsigned long>(minutes), static_cast<double>(milliseconds) / 1000);
        ASSERT_EQ(duration + instant(start), instant(end)) << duration.asString() << " after " << start;
        ASSERT_EQ(-duration + instant(end), instant(start)) << duration.asString() << " before " << end;
    }
}

TEST(DurationAddition, StaysOnTheCalendarWhateverTheSeconds) {
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    const QeDateTime start = read("2000-01-01T00:00:00Z");
    EXPECT_EQ(seconds(std::numeric_limits<double>::quiet_NaN()) + start, start);
    EXPECT_EQ(seconds(-1.5) + start, read("1999-12-31T23:59:58.500"));

    const QeDateTime last(QeDate(31, 12, QeDate::MaxYear), 23, 59, 59, 999, QeZone::utc());
    const QeDateTime first(QeDate(1, 1, -QeDate::MaxYear), 0, 0, 0, 0, QeZone::utc());
    EXPECT_EQ(seconds(Infinity) + first, last);
    EXPECT_EQ(seconds(-Infinity) + last, first);
    EXPECT_EQ(QeXmlDuration(UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX) + last, last);
    EXPECT_EQ(seconds(0.001) + last, last);
    EXPECT_EQ(seconds(-0.001) + first, first);
}

}  // namespace
