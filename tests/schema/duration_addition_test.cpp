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
        const char* start;
        const char* duration;
        const char* result;
    } cases[] = {
        {"2000-01-12T12:13:14Z", "P1Y3M5DT7H10M3.3S", "2001-04-17T19:23:17.3Z"},
        {"2000-01-12T12:13:14Z", "P", "2000-01-12T12:13:14Z"},
        {"2003-05-20T01:00:00+02:00", "P1M", "2003-06-19T23:00:00Z"},  // on UTC's calendar
        // the ends of months
        {"2000-01-31", "P1M", "2000-02-29T00:00:00Z"},
        {"2001-01-31", "P1M", "2001-02-28T00:00:00Z"},
        {"2000-03-31", "-P1M", "2000-02-29T00:00:00Z"},
        {"2000-02-29", "P1Y", "2001-02-28T00:00:00Z"},
        {"2000-02-29", "P4Y", "2004-02-29T00:00:00Z"},
        {"2000-02-29", "-P100Y", "1900-02-28T00:00:00Z"},
        {"2000-01-31", "P1M1D", "2000-03-01T00:00:00Z"},  // cut short first, then a day later
        {"2000-03-31", "-P1M29D", "2000-01-31T00:00:00Z"},
        // months into years
        {"2000-12-31", "P1M", "2001-01-31T00:00:00Z"},
        {"2000-01-31", "-P1M", "1999-12-31T00:00:00Z"},
        {"2000-06-15", "P30M", "2002-12-15T00:00:00Z"},
        {"2000-06-15", "-P30M", "1997-12-15T00:00:00Z"},
        // days over months and leap years
        {"2000-02-28", "P2D", "2000-03-01T00:00:00Z"},
        {"1900-02-28", "P1D", "1900-03-01T00:00:00Z"},
        {"2000-03-01", "-P1D", "2000-02-29T00:00:00Z"},
        {"2000-01-01", "P366D", "2001-01-01T00:00:00Z"},
        {"2000-01-01", "-P1D", "1999-12-31T00:00:00Z"},
        {"0001-01-01", "-P1D", "0000-12-31T00:00:00Z"},
        // the carries of the time
        {"1999-12-31T23:59:59Z", "PT1S", "2000-01-01T00:00:00Z"},
        {"2000-01-01T00:00:00Z", "-PT1S", "1999-12-31T23:59:59Z"},
        {"2000-02-28T23:00:00Z", "PT90M", "2000-02-29T00:30:00Z"},
        {"2000-01-01T00:30:00Z", "-PT24H31M", "1999-12-30T23:59:00Z"},
        {"2000-01-01T12:00:00Z", "PT100000S", "2000-01-02T15:46:40Z"},
        // the carries of the milliseconds
        {"2000-01-01T00:00:00.800Z", "PT0.3S", "2000-01-01T00:00:01.1Z"},
        {"1999-12-31T23:59:59.999Z", "PT0.001S", "2000-01-01T00:00:00Z"},
        {"2000-01-01T00:00:00.100Z", "-PT0.3S", "1999-12-31T23:59:59.8Z"},
        {"2000-01-01T00:00:05.250Z", "-PT7.5S", "1999-12-31T23:59:57.75Z"},
        // decimals that have no exact double
        {"2000-01-01T00:00:00Z", "PT3.3S", "2000-01-01T00:00:03.3Z"},
        {"2000-01-01T00:00:14Z", "-PT3.3S", "2000-01-01T00:00:10.7Z"},
        {"2000-01-01T00:00:00Z", "PT1.001S", "2000-01-01T00:00:01.001Z"},
        {"2000-01-01T00:00:00Z", "PT123456789.123S", "2003-11-29T21:33:09.123Z"},
        {"2000-01-01T00:00:00Z", "PT9007199254740.9S", "287426-10-13T08:59:00.9Z"},
        {"2000-01-01T00:00:00Z", "PT9007199254740991S", "285428781-11-11T07:36:31Z"},
        // digits past the milliseconds are dropped from the sum of the seconds, towards 0
        {"2000-01-01T00:00:00Z", "PT1.0009S", "2000-01-01T00:00:01Z"},
        {"2000-01-01T00:00:14Z", "-PT3.3005S", "2000-01-01T00:00:10.699Z"},
        {"2000-01-01T00:00:00Z", "-PT3.3005S", "1999-12-31T23:59:56.7Z"},
        {"2000-01-01T00:00:00Z", "-PT0.0009S", "2000-01-01T00:00:00Z"},
        // an invalid duration adds what it holds
        {"2000-01-01T00:00:00Z", "P1.5Y", "2001-01-01T00:00:00Z"},
        // counts as large as they come
        {"2000-01-31T23:59:59.999Z", "P4294967295Y", "4294969295-01-31T23:59:59.999Z"},
        {"2000-01-31T00:00:00Z", "-P4294967295Y", "-4294965295-01-31T00:00:00Z"},
        {"2000-01-31T00:00:00Z", "P4294967295M", "357915941-04-30T00:00:00Z"},
        {"1970-01-01T00:00:00Z", "P4294967295D", "11761191-01-20T00:00:00Z"},
        {"1970-01-01T00:00:00Z", "-P4294967295D", "-11757252-12-13T00:00:00Z"},
        {"1970-01-01T00:00:00Z", "PT31536e15S", "999336059520-10-22T00:00:00Z"},
        {"1970-01-01T00:00:07Z", "PT3155688980304961e4S", "999998031027-02-08T00:27:51Z"},
        {"1970-01-01T00:00:07Z", "-PT3e19S", "-950662153235-08-28T18:40:07Z"},
        {"1970-01-01T00:00:59Z", "PT9223372036854775807S", "292277026596-12-04T15:31:07Z"},
    };
    for (const auto& [start, duration, result] : cases)
        EXPECT_EQ(write(QeXmlDuration(duration) + read(start)), result) << start << " + " << duration;
}

TEST(DurationAddition, OfDaysAndTimesIsExactBothWays) {
    std::mt19937_64 random(20030520);
    for (int round = 0; round < 20'000; ++round) {
        const auto below = [&](std::uint64_t limit) { return static_cast<unsigned long>(random() % limit); };
        const std::uint64_t limit = std::uint64_t{2} << below(32);  // small and large counts alike
        const double milliseconds = static_cast<double>(below(1'000'000'000));
        QeXmlDuration duration(0, 0, below(limit), below(limit), below(limit), milliseconds / 1000);
        const QeDateTime start(QeDate::fromDayNumber(static_cast<std::int64_t>(below(4'000'000)) - 2'000'000),
                               static_cast<int>(below(24)), static_cast<int>(below(60)), static_cast<int>(below(60)),
                               static_cast<int>(below(1000)), QeZone::utc());
        const QeDateTime later = duration + start;
        ASSERT_EQ(-duration + later, start) << duration.asString() << " before " << write(later);
        ASSERT_GE(later, start);

        const std::int64_t span = (later.date(QeZone::utc()).dayNumber() - start.date(QeZone::utc()).dayNumber()) * 24 +
                                  later.hourGMT() - start.hourGMT();
        const double hours = static_cast<double>(duration.getDays()) * 24 + static_cast<double>(duration.getHours()) +
                             static_cast<double>(duration.getMinutes()) / 60 + duration.getSeconds() / 3600;
        ASSERT_NEAR(static_cast<double>(span), hours, 1) << duration.asString() << " after " << write(start);
    }
}

TEST(DurationAddition, StaysOnTheCalendarWhateverTheSeconds) {
    constexpr double Infinity = std::numeric_limits<double>::infinity();
    const QeDateTime start = read("2000-01-01T00:00:00Z");
    EXPECT_EQ(seconds(std::numeric_limits<double>::quiet_NaN()) + start, start);
    EXPECT_EQ(seconds(-1.5) + start, read("1999-12-31T23:59:58.500"));
    EXPECT_EQ(seconds(-Infinity) + start, -QeXmlDuration("PT1e300S") + start);
    EXPECT_EQ((seconds(1e17) + start).yearGMT(), 3'168'875'850);

    const QeDateTime last(QeDate(31, 12, QeDate::MaxYear), 23, 59, 59, 999, QeZone::utc());
    const QeDateTime first(QeDate(1, 1, -QeDate::MaxYear), 0, 0, 0, 0, QeZone::utc());
    EXPECT_EQ(seconds(Infinity) + start, last);
    EXPECT_EQ(seconds(Infinity) + first, last);
    EXPECT_EQ(seconds(-Infinity) + last, first);
    EXPECT_EQ(QeXmlDuration(UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX) + last, last);
    EXPECT_EQ(seconds(0.001) + last, last);
    EXPECT_EQ(seconds(-0.001) + first, first);
}

}  // namespace
