// Durations: texts, both orders, and what they add up to.

#include <chrono>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>
#include <tuple>
#include <utility>

#include <tessit/schema/xml_duration.h>
#include <tessit/utils/xml_utils.h>

namespace {

using Doubles = std::numeric_limits<double>;

// The fields, behind "!" when the duration is not valid and "-" when it is negative.
std::string fieldsOf(const QeXmlDuration& duration) {
    std::ostringstream out;
    out << (duration.isValid() ? "" : "!") << (duration.isNegative() ? "-" : "") << duration.getYears() << ' '
        << duration.getMonths() << ' ' << duration.getDays() << ' ' << duration.getHours() << ' '
        << duration.getMinutes() << ' ' << duration.getSeconds();
    return out.str();
}

QeXmlDuration seconds(double count) {
    return QeXmlDuration(0, 0, 0, 0, 0, count);
}

TEST(XmlDuration, ReadsItsLexicalForm) {
    std::istringstream cases(R"(
        P1Y2M3DT4H5M6.5S>1 2 3 4 5 6.5;      --P1D>-0 0 1 0 0 0;       >0 0 0 0 0 0;
        P-1D>!0 0 0 0 0 0;                   1Y>!0 0 0 0 0 0;          T1H>!0 0 0 0 0 0;        P1H>!0 0 0 0 0 0;
        PT>!0 0 0 0 0 0;                     P1YT1D>!1 0 1 0 0 0;      PT0S>!0 0 0 0 0 0;
        PT2147483648H2147483648M>0 0 0 2147483648 2147483648 0;
        P1D1YT1H>!0 0 1 1 0 0;               P1Y2Y>2 0 0 0 0 0;        P1YYT1S>!0 0 0 0 0 1;
        P1.5Y>!1 0 0 0 0 0;                  PT.5S>0 0 0 0 0 0.5;      PTinfS>!0 0 0 0 0 0;     PT.S>!0 0 0 0 0 0;
        P++1Y>!0 0 0 0 0 0;                  P+Y>!0 0 0 0 0 0;         P+1Y>1 0 0 0 0 0;
        P1Y2>1 0 0 0 0 0;                    P1T2H>0 0 0 12 0 0;       1P2Y>12 0 0 0 0 0;
        P4294967296Y>4294967295 0 0 0 0 0;   PT1e400S>0 0 0 0 0 inf;
        P0000000000000000001D>0 0 1 0 0 0;   P00000000000000000001D>!0 0 0 0 0 0;
        P00000000000000000001>0 0 0 0 0 0;)");
    QeXmlDuration reused;
    for (std::string text, fields; std::getline(cases >> std::ws, text, '>') && std::getline(cases, fields, ';');) {
        reused.extract(QeCString(std::string_view(text)));
        EXPECT_EQ(fieldsOf(reused), fields) << text;
        reused.extract("-P1Y1M1DT1H1M1S");
    }
    EXPECT_EQ(fieldsOf(QeXmlDuration("P \t\n\v\f\r+1Y")), "1 0 0 0 0 0");
    EXPECT_EQ(fieldsOf(QeXmlDuration(QeCString("P1\0Y", 4))), "!1 0 0 0 0 0");
    QeXmlDuration broken("T");
    broken.setDays(3);
    EXPECT_EQ(fieldsOf(broken), "!0 0 3 0 0 0") << "a setter makes nothing valid";
}

TEST(XmlDuration, WritesItsLexicalForm) {
    const std::pair<QeXmlDuration, const char*> cases[] = {
        {QeXmlDuration(), "P0Y0M0D"},
        {QeXmlDuration("-P1D"), "-P0Y0M1D"},
        {QeXmlDuration(0, 0, 0, 1), "P0Y0M0DT1H0M0S"},
        {QeXmlDuration(1, 2, 3, 4, 5, 6.5), "P1Y2M3DT4H5M6.5S"},
        {QeXmlDuration(std::numeric_limits<unsigned long>::max()), "P4294967295Y0M0D"},
        {seconds(0.00001), "P0Y0M0DT0H0M1e-05S"},
        {seconds(1234567), "P0Y0M0DT0H0M1.23457e+06S"},
        {seconds(Doubles::infinity()), "P0Y0M0DT0H0MinfS"},
        {QeXmlDuration("T"), ""}};
    for (const auto& [duration, text] : cases)
        EXPECT_EQ(duration.asString(), text);
}

// Replaces what may be replaced, and shows what only derived classes may call.
class LongestOfAll : public QeXmlDuration {
public:
    using QeXmlDuration::maxDaysInMonth;
    using QeXmlDuration::modulo;
    using QeXmlDuration::quotient;

    int compareTo(const QeXmlDuration&) override { return 1; }
};

TEST(XmlDuration, ComparesApproximateLengths) {
    const std::tuple<const char*, const char*, int> cases[] = {
        {"P1M", "P30D", 0},    {"P1M", "P31D", -1},      {"P12M", "P1Y", 0},
        {"P1Y", "P365D", 0},   {"-P1D", "P1D", 0},       {"PT24H", "P1D", 0},
        {"PT1441M", "P1D", 1}, {"PT0.5S", "PT0.6S", -1}, {"P4294967295D", "P4294967294D", 1},
        {"P1YD", "P1Y", 0}};  // validity does not count
    for (const auto& [left, right, order] : cases) {
        QeXmlDuration a(left), b(right);
        EXPECT_EQ(a.compareTo(b), order) << left << " and " << right;
        EXPECT_EQ(b.compareTo(a), -order) << left << " and " << right;
        EXPECT_EQ(std::as_const(a).isEqual(b), order == 0) << left << " and " << right;
    }
    LongestOfAll longest;
    EXPECT_FALSE(longest.isEqual(QeXmlDuration())) << "a derived class is asked for its order";
}

TEST(XmlDuration, OrdersAsXmlSchemaDoes) {
    enum Order { Less, Neither };
    const std::tuple<const char*, const char*, Order> cases[] = {
        {"P1M", "P32D", Less},
        {"P1M", "P31D", Neither},
        {"P28D", "P1M", Neither},
        {"P7M", "P215D", Neither},
        {"P8M", "P245D", Neither},
        {"P365D", "P1Y", Neither},
        {"-P1D", "P1D", Less},
        {"-P1M", "-P28D", Neither},
        // neither far years nor seconds are cut short, up to the calendar's end
        {"PT0.001S", "PT0.002S", Less},
        {"P4294967294Y", "P4294967295Y", Less},
        {"PT31e18S", "PT31000000000001e6S", Less},
        {"PT1e20S", "PT1e400S", Neither}};
    for (const auto& [left, right, order] : cases) {
        EXPECT_EQ(QeXmlDuration(left) < QeXmlDuration(right), order == Less) << left << " < " << right;
        EXPECT_FALSE(order == Less && QeXmlDuration(right) < QeXmlDuration(left)) << right << " < " << left;
    }
}

TEST(XmlDuration, IsEqualFieldByField) {
    const QeXmlDuration base("P1Y2M3DT4H5M6S");
    EXPECT_TRUE(base == QeXmlDuration(1, 2, 3, 4, 5, 6));
    for (const char* other : {"-P1Y2M3DT4H5M6S", "P9Y2M3DT4H5M6S", "P1Y9M3DT4H5M6S", "P1Y2M9DT4H5M6S", "P1Y2M3DT9H5M6S",
                              "P1Y2M3DT4H9M6S", "P1Y2M3DT4H5M6.001S", "P1Y2M3DT4H5M6 S"})
        EXPECT_TRUE(base != QeXmlDuration(other)) << other;
}

TEST(XmlDuration, AnswersDerivedClassesWhereThereIsNoAnswer) {
    const LongestOfAll calculator;
    constexpr long Least = std::numeric_limits<long>::min(), Most = std::numeric_limits<long>::max();
    EXPECT_EQ(calculator.quotient(-13, 12), -2);
    EXPECT_EQ(calculator.quotient(-12, 0, 12), -1);
    EXPECT_EQ(calculator.quotient(7, 0), 0);
    EXPECT_EQ(calculator.quotient(Least, -1), Most);
    EXPECT_EQ(calculator.quotient(Least, 1, 2), Least);
    EXPECT_EQ(calculator.modulo(0, 1, 13), 12);
    EXPECT_EQ(calculator.modulo(Doubles::infinity(), 60), Doubles::infinity());
    EXPECT_TRUE(std::isnan(calculator.modulo(Doubles::quiet_NaN(), 60)));
    EXPECT_EQ(calculator.maxDaysInMonth(2003, 14), 29u);
    EXPECT_EQ(calculator.maxDaysInMonth(Least, Least), 30u);
}

QeDateTime read(const char* text) {
    return QeXmlUtils::convertISODateStringToDateTime(text);
}

TEST(DurationAddition, FindsTheInstant) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"2000-01-12T12:13:14Z", "P1Y3M5DT7H10M3.3S", "2001-04-17T19:23:17.3Z"},
        {"2003-05-20T01:00:00+02:00", "P1M", "2003-06-19T23:00:00Z"},  // on UTC's calendar
        // months into years, and the ends of months
        {"2000-12-31", "P1M", "2001-01-31T00:00:00Z"},
        {"2000-01-31", "-P30M", "1997-07-31T00:00:00Z"},
        {"2000-03-31", "-P1M", "2000-02-29T00:00:00Z"},
        {"2000-02-29", "-P100Y", "1900-02-28T00:00:00Z"},
        {"2000-01-31", "P1M1D", "2000-03-01T00:00:00Z"},  // cut short first, then a day later
        // decimals that have no exact double
        {"2000-01-01T00:00:14Z", "-PT3.3S", "2000-01-01T00:00:10.7Z"},
        {"2000-01-01T00:00:00Z", "PT9007199254740.9S", "287426-10-13T08:59:00.9Z"},
        // digits past the milliseconds are dropped from the sum of the seconds, towards 0
        {"2000-01-01T00:00:00Z", "PT1.0009S", "2000-01-01T00:00:01Z"},
        {"2000-01-01T00:00:14Z", "-PT3.3005S", "2000-01-01T00:00:10.699Z"},
        {"2000-01-01T00:00:00Z", "-PT3.3005S", "1999-12-31T23:59:56.7Z"},
        {"2000-01-01T00:00:00Z", "-PT0.0009S", "2000-01-01T00:00:00Z"},
        {"2000-01-01T00:00:00Z", "P1.5Y", "2001-01-01T00:00:00Z"},  // an invalid one adds what it holds
        // counts as large as they come
        {"2000-01-31T00:00:00Z", "-P4294967295Y", "-4294965295-01-31T00:00:00Z"},
        {"2000-01-31T00:00:00Z", "P4294967295M", "357915941-04-30T00:00:00Z"},
        {"1970-01-01T00:00:07Z", "PT3155688980304961e4S", "999998031027-02-08T00:27:51Z"},
        {"1970-01-01T00:00:07Z", "-PT3e19S", "-950662153235-08-28T18:40:07Z"},
    };
    for (const auto& [start, duration, result] : cases)
        EXPECT_EQ(
            QeXmlUtils::convertDateTimeToISOString(QeXmlDuration(duration) + read(start), QeXmlUtils::ISO8601Format),
            result)
            << start << " + " << duration;
}

QeDateTime instant(std::int64_t milliseconds) {
    const std::chrono::milliseconds whole(milliseconds);
    const auto day = std::chrono::floor<std::chrono::days>(whole);
    const auto rest = static_cast<int>((whole - day).count());
    return QeDateTime(QeDate::fromDayNumber(day.count()), rest / 3'600'000, rest / 60'000 % 60, rest / 1000 % 60,
                      rest % 1000, QeZone::utc());
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
    const QeDateTime start = read("2000-01-01T00:00:00Z");
    const QeDateTime last(QeDate(31, 12, QeDate::MaxYear), 23, 59, 59, 999, QeZone::utc());
    const QeDateTime first(QeDate(1, 1, -QeDate::MaxYear), 0, 0, 0, 0, QeZone::utc());
    EXPECT_EQ(seconds(Doubles::quiet_NaN()) + start, start);
    EXPECT_EQ(seconds(-1.5) + start, read("1999-12-31T23:59:58.500"));
    EXPECT_EQ(seconds(Doubles::infinity()) + first, last);
    EXPECT_EQ(seconds(-Doubles::infinity()) + last, first);
    EXPECT_EQ(QeXmlDuration(UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX, UINT32_MAX) + last, last);
    EXPECT_EQ(seconds(0.001) + last, last);
    EXPECT_EQ(seconds(-0.001) + first, first);
}

}  // namespace
