#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

#include <tessit/schema/xml_duration.h>

namespace {

// The fields, behind "!" when the duration is not valid and "-" when it is negative.
std::string fieldsOf(const QeXmlDuration& duration) {
    std::ostringstream out;
    out << (duration.isValid() ? "" : "!") << (duration.isNegative() ? "-" : "") << duration.getYears() << ' '
        << duration.getMonths() << ' ' << duration.getDays() << ' ' << duration.getHours() << ' '
        << duration.getMinutes() << ' ' << duration.getSeconds();
    return out.str();
}

TEST(XmlDuration, ReadsItsLexicalForm) {
    const struct {
        const char* text;
        const char* fields;
    } cases[] = {
        {"P1Y2M3DT4H5M6.5S", "1 2 3 4 5 6.5"},
        {"-P1D", "-0 0 1 0 0 0"},
        {"--P1D", "-0 0 1 0 0 0"},
        {"P-1D", "!0 0 0 0 0 0"},  // the sign stands in front
        {"P1D-", "!0 0 1 0 0 0"},
        {"", "0 0 0 0 0 0"},
        {"P", "0 0 0 0 0 0"},
        {"abc", "0 0 0 0 0 0"},  // nothing in it is looked at
        {"p1y", "0 0 0 0 0 0"},
        {"PT", "!0 0 0 0 0 0"},  // no field behind the T
        {"P1DT", "!0 0 1 0 0 0"},
        {"PT0S", "!0 0 0 0 0 0"},
        {"PT0H0M0.0S", "!0 0 0 0 0 0"},
        {"PT1S", "0 0 0 0 0 1"},
        {"PT2147483648H2147483648M", "0 0 0 2147483648 2147483648 0"},  // their sum is not 0
        {"1Y", "!0 0 0 0 0 0"},                                         // before the P
        {"T1H", "!0 0 0 0 0 0"},
        {"P1H", "!0 0 0 0 0 0"},  // without a T
        {"P1S", "!0 0 0 0 0 0"},
        {"P1D1Y", "!0 0 1 0 0 0"},  // out of order
        {"PT1M1H", "!0 0 0 0 1 0"},
        {"P1D1YT1H", "!0 0 1 1 0 0"},  // read on behind a fault
        {"P1Y2Y", "2 0 0 0 0 0"},
        {"P1YYT1S", "!0 0 0 0 0 1"},
        {"P1M", "0 1 0 0 0 0"},
        {"PT1M", "0 0 0 0 1 0"},
        {"P1.5Y", "!1 0 0 0 0 0"},  // only seconds have a fraction
        {"PT.5S", "0 0 0 0 0 0.5"},
        {"PT5.S", "0 0 0 0 0 5"},
        {"PT1e2S", "0 0 0 0 0 100"},
        {"PT1eS", "!0 0 0 0 0 1"},
        {"PT1,5S", "!0 0 0 0 0 1"},
        {"PTinfS", "!0 0 0 0 0 0"},
        {"PTnanS", "!0 0 0 0 0 0"},
        {"PT0x1pS", "!0 0 0 0 0 0"},
        {"PT.S", "!0 0 0 0 0 0"},
        {"P+1Y", "1 0 0 0 0 0"},
        {"P 1Y", "1 0 0 0 0 0"},
        {"P \t\n\v\f\r+1Y", "1 0 0 0 0 0"},
        {"P++1Y", "!0 0 0 0 0 0"},
        {"P+ 1Y", "!0 0 0 0 0 0"},
        {"P1 Y", "!1 0 0 0 0 0"},
        {"PY", "!0 0 0 0 0 0"},
        {"P+Y", "!0 0 0 0 0 0"},
        {"P1Y2", "1 0 0 0 0 0"},     // no designator behind the 2
        {"P1T2H", "0 0 0 12 0 0"},   // the T does not part the digits
        {"1P2Y", "12 0 0 0 0 0"},    // nor does the P
        {"P1YT1D", "!1 0 1 0 0 0"},  // no time behind the T
        {"P4294967295Y", "4294967295 0 0 0 0 0"},
        {"P4294967296Y", "4294967295 0 0 0 0 0"},
        {"P9999999999999999999D", "0 0 4294967295 0 0 0"},
        {"P0000000000000000001D", "0 0 1 0 0 0"},    // 19 characters
        {"P00000000000000000001D", "!0 0 0 0 0 0"},  // 20
        {"P00000000000000000001", "0 0 0 0 0 0"},    // passed over, whatever its length
        {"PT1e308S", "0 0 0 0 0 1e+308"},
        {"PT1e400S", "0 0 0 0 0 inf"},
        {"P\xC3\xA9"
         "1Y",
         "!0 0 0 0 0 0"},
    };
    for (const auto& [text, fields] : cases)
        EXPECT_EQ(fieldsOf(QeXmlDuration(text)), fields) << text;
    EXPECT_EQ(fieldsOf(QeXmlDuration(QeCString("P1\0Y", 4))), "!1 0 0 0 0 0");
}

TEST(XmlDuration, ReadsIntoAnObjectWhateverItHeld) {
    QeXmlDuration duration("-P1Y1M1DT1H1M1S");
    duration.extract("PT2M");
    EXPECT_EQ(fieldsOf(duration), "0 0 0 0 2 0");
    duration.extract("broken: T");
    duration.setDays(3);
    EXPECT_EQ(fieldsOf(duration), "!0 0 3 0 0 0");  // a setter makes nothing valid
    EXPECT_EQ(duration.asString(), "");
}

TEST(XmlDuration, WritesItsLexicalForm) {
    const struct {
        QeXmlDuration duration;
        const char* text;
    } cases[] = {
        {QeXmlDuration(), "P0Y0M0D"},
        {QeXmlDuration(1, 0, 2), "P1Y0M2D"},
        {QeXmlDuration(0, 0, 0, 1), "P0Y0M0DT1H0M0S"},
        {QeXmlDuration("-P1D"), "-P0Y0M1D"},
        {QeXmlDuration(1, 2, 3, 4, 5, 6.5), "P1Y2M3DT4H5M6.5S"},
        {QeXmlDuration(0, 0, 0, 0, 90), "P0Y0M0DT0H90M0S"},
        {QeXmlDuration(0, 0, 0, 0, 0, 30), "P0Y0M0DT0H0M30S"},
        {QeXmlDuration(0, 0, 0, 0, 0, 0.001), "P0Y0M0DT0H0M0.001S"},
        {QeXmlDuration(0, 0, 0, 0, 0, 0.00001), "P0Y0M0DT0H0M1e-05S"},
        {QeXmlDuration(0, 0, 0, 0, 0, 123456), "P0Y0M0DT0H0M123456S"},
        {QeXmlDuration(0, 0, 0, 0, 0, 1234567), "P0Y0M0DT0H0M1.23457e+06S"},
        {QeXmlDuration(0, 0, 0, 2'147'483'648, 2'147'483'648), "P0Y0M0DT2147483648H2147483648M0S"},
        {QeXmlDuration(std::numeric_limits<unsigned long>::max()), "P4294967295Y0M0D"},
        {QeXmlDuration("PT1e400S"), "P0Y0M0DT0H0MinfS"},
    };
    for (const auto& [duration, text] : cases)
        EXPECT_EQ(duration.asString(), text);
}

TEST(XmlDuration, ComparesApproximateLengths) {
    const struct {
        const char* left;
        const char* right;
        int order;
    } cases[] = {
        {"P1M", "P30D", 0},
        {"P1M", "P31D", -1},
        {"P2M", "P60D", 0},
        {"P12M", "P1Y", 0},
        {"P1Y", "P365D", 0},
        {"-P1D", "P1D", 0},
        {"PT24H", "P1D", 0},
        {"PT1441M", "P1D", 1},
        {"PT0.5S", "PT0.6S", -1},
        {"P200Y", "P100Y", 1},
        {"P4294967295D", "P4294967294D", 1},
        {"P1YD", "P1Y", 0},  // validity does not count
    };
    for (const auto& [left, right, order] : cases) {
        const QeXmlDuration fixed(left);
        QeXmlDuration a(left);
        QeXmlDuration b(right);
        EXPECT_EQ(a.compareTo(b), order) << left << " and " << right;
        EXPECT_EQ(b.compareTo(a), -order) << left << " and " << right;
        EXPECT_EQ(fixed.compareTo(b), order);
        EXPECT_EQ(a.isEqual(b), order == 0);
        EXPECT_EQ(fixed.isEqual(b), order == 0);
    }
}

TEST(XmlDuration, OrdersAsXmlSchemaDoes) {
    enum Order { Less, Neither };
    const struct {
        const char* left;
        const char* right;
        Order order;
    } cases[] = {
        {"P1M", "P32D", Less},
        {"P1M", "P31D", Neither},
        {"P31D", "P1M", Neither},
        {"P27D", "P1M", Less},
        {"P28D", "P1M", Neither},
        {"P1Y", "P367D", Less},
        {"P1Y", "P366D", Neither},
        {"P364D", "P1Y", Less},
        {"P365D", "P1Y", Neither},
        {"P5M", "P154D", Less},
        {"P5M", "P153D", Neither},
        {"P149D", "P5M", Less},
        {"P150D", "P5M", Neither},
        {"-P1D", "P1D", Less},
        {"-P1M", "-P28D", Neither},
        {"-P32D", "-P1M", Less},
        {"PT24H", "P1D", Neither},
        {"PT0.001S", "PT0.002S", Less},
        {"P4294967294Y", "P4294967295Y", Less},  // far years are not cut short
        {"P4294967294M", "P4294967295M", Less},
        {"PT4294967294H", "PT4294967295H", Less},
        {"PT31e18S", "PT31000000000001e6S", Less},  // nor are seconds, up to the calendar's end
        {"PT1e20S", "PT1e400S", Neither},
        {"-PT31000000000001e6S", "-PT31e18S", Less},
    };
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
    EXPECT_FALSE(QeXmlDuration("P1D") == QeXmlDuration("PT24H"));
}

TEST(XmlDuration, TurnsRoundInPlace) {
    QeXmlDuration duration(0, 0, 1);
    EXPECT_EQ(&-duration, &duration);
    EXPECT_TRUE(duration.isNegative());
    EXPECT_FALSE((-duration).isNegative());
}

// Replaces what may be replaced, and shows what only derived classes may call.
class LongestOfAll : public QeXmlDuration {
public:
    using QeXmlDuration::maxDaysInMonth;
    using QeXmlDuration::modulo;
    using QeXmlDuration::quotient;

    LongestOfAll() : QeXmlDuration("PT1S") {}
    int compareTo(const QeXmlDuration&) override { return 1; }
    QeCString asString() const override { return "longest"; }
};

TEST(XmlDuration, AsksADerivedClassForItsOrder) {
    LongestOfAll longest;
    QeXmlDuration& duration = longest;
    EXPECT_FALSE(duration.isEqual(QeXmlDuration("PT1S")));
    EXPECT_EQ(duration.asString(), "longest");
}

TEST(XmlDuration, DividesRoundingDown) {
    const LongestOfAll calculator;
    constexpr long Least = std::numeric_limits<long>::min();
    constexpr long Most = std::numeric_limits<long>::max();
    EXPECT_EQ(calculator.quotient(-1, 12), -1);
    EXPECT_EQ(calculator.quotient(12, 12), 1);
    EXPECT_EQ(calculator.quotient(-12, 12), -1);
    EXPECT_EQ(calculator.quotient(-13, 12), -2);
    EXPECT_EQ(calculator.quotient(13, -12), -2);
    EXPECT_EQ(calculator.quotient(0, 1, 13), -1);
    EXPECT_EQ(calculator.quotient(13, 1, 13), 1);
    EXPECT_EQ(calculator.modulo(-1, 60), 59);
    EXPECT_EQ(calculator.modulo(61.5, 60), 1.5);
    EXPECT_EQ(calculator.modulo(0, 1, 13), 12);
    EXPECT_EQ(calculator.modulo(13, 1, 13), 1);
    // Where there is no answer, one that is documented or at least defined.
    EXPECT_EQ(calculator.quotient(7, 0), 0);
    EXPECT_EQ(calculator.quotient(Least, -1), Most);
    EXPECT_EQ(calculator.quotient(Least, 1, 2), Least);
    EXPECT_EQ(calculator.quotient(Most, -1, 0), Most);
    EXPECT_EQ(calculator.modulo(7, 0.5), 7);
    EXPECT_TRUE(std::isnan(calculator.modulo(std::nan(""), 60)));
    EXPECT_EQ(calculator.modulo(std::numeric_limits<double>::infinity(), 60), std::numeric_limits<double>::infinity());
}

TEST(XmlDuration, KnowsTheDaysOfMonths) {
    const LongestOfAll calculator;
    const struct {
        long year;
        long month;
        unsigned long days;
    } cases[] = {
        {2000, 2, 29},
        {1900, 2, 28},
        {2004, 2, 29},
        {2001, 2, 28},
        {2001, 0, 31},
        {2001, 13, 31},
        {2001, 4, 30},
        {2001, 9, 30},
        {2001, 8, 31},
        {2003, 14, 29},
        {2005, -10, 29},
        {-4, 2, 29},
        {std::numeric_limits<long>::max(), 13, 31},
        {std::numeric_limits<long>::min(), std::numeric_limits<long>::min(), 30},
    };
    for (const auto& [year, month, days] : cases)
        EXPECT_EQ(calculator.maxDaysInMonth(year, month), days) << year << '-' << month;
}

}  // namespace
