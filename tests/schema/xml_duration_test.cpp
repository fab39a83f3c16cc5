#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

#include <tessit/schema/xml_schema_utils.h>

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
        const char *text, *fields;
    } cases[] = {
        {"P1Y2M3DT4H5M6.5S", "1 2 3 4 5 6.5"},
        {"--P1D", "-0 0 1 0 0 0"},
        {"P-1D", "!0 0 0 0 0 0"},  // the sign stands in front
        {"", "0 0 0 0 0 0"},
        {"PT", "!0 0 0 0 0 0"},  // no field behind the T
        {"P1YT1D", "!1 0 1 0 0 0"},
        {"PT0S", "!0 0 0 0 0 0"},
        {"PT2147483648H2147483648M", "0 0 0 2147483648 2147483648 0"},  // their sum is not 0
        {"1Y", "!0 0 0 0 0 0"},                                         // before the P
        {"T1H", "!0 0 0 0 0 0"},
        {"P1H", "!0 0 0 0 0 0"},       // without a T
        {"P1D1YT1H", "!0 0 1 1 0 0"},  // out of order, and read on behind the fault
        {"P1Y2Y", "2 0 0 0 0 0"},
        {"P1YYT1S", "!0 0 0 0 0 1"},
        {"P1.5Y", "!1 0 0 0 0 0"},  // only seconds have a fraction
        {"PT.5S", "0 0 0 0 0 0.5"},
        {"PTinfS", "!0 0 0 0 0 0"},
        {"PT.S", "!0 0 0 0 0 0"},
        {"P \t\n\v\f\r+1Y", "1 0 0 0 0 0"},
        {"P++1Y", "!0 0 0 0 0 0"},
        {"P+Y", "!0 0 0 0 0 0"},
        {"P1Y2", "1 0 0 0 0 0"},    // no designator behind the 2
        {"P1T2H", "0 0 0 12 0 0"},  // the T does not part the digits
        {"1P2Y", "12 0 0 0 0 0"},   // nor does the P
        {"P4294967296Y", "4294967295 0 0 0 0 0"},
        {"P0000000000000000001D", "0 0 1 0 0 0"},    // 19 characters
        {"P00000000000000000001D", "!0 0 0 0 0 0"},  // 20
        {"P00000000000000000001", "0 0 0 0 0 0"},    // passed over, whatever its length
        {"PT1e400S", "0 0 0 0 0 inf"},
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
    EXPECT_EQ(QeXmlDuration().asString(), "P0Y0M0D");
    EXPECT_EQ(QeXmlDuration("-P1D").asString(), "-P0Y0M1D");
    EXPECT_EQ(QeXmlDuration(0, 0, 0, 1).asString(), "P0Y0M0DT1H0M0S");
    EXPECT_EQ(QeXmlDuration(1, 2, 3, 4, 5, 6.5).asString(), "P1Y2M3DT4H5M6.5S");
    EXPECT_EQ(QeXmlDuration(std::numeric_limits<unsigned long>::max()).asString(), "P4294967295Y0M0D");
    EXPECT_EQ(QeXmlDuration("PT0.00001S").asString(), "P0Y0M0DT0H0M1e-05S");
    EXPECT_EQ(QeXmlDuration("PT1234567S").asString(), "P0Y0M0DT0H0M1.23457e+06S");
    EXPECT_EQ(QeXmlDuration("PT1e400S").asString(), "P0Y0M0DT0H0MinfS");
}

TEST(XmlDuration, ComparesApproximateLengths) {
    const struct {
        const char *left, *right;
        int order;
    } cases[] = {
        {"P1M", "P30D", 0},    {"P1M", "P31D", -1},      {"P12M", "P1Y", 0},
        {"P1Y", "P365D", 0},   {"-P1D", "P1D", 0},       {"PT24H", "P1D", 0},
        {"PT1441M", "P1D", 1}, {"PT0.5S", "PT0.6S", -1}, {"P4294967295D", "P4294967294D", 1},
        {"P1YD", "P1Y", 0},  // validity does not count
    };
    for (const auto& [left, right, order] : cases) {
        QeXmlDuration a(left), b(right);
        const QeXmlDuration fixed(left);
        EXPECT_EQ(a.compareTo(b), order) << left << " and " << right;
        EXPECT_EQ(b.compareTo(a), -order) << left << " and " << right;
        EXPECT_EQ(fixed.isEqual(b), order == 0) << left << " and " << right;
    }
}

TEST(XmlDuration, OrdersAsXmlSchemaDoes) {
    enum Order { Less, Neither };
    const struct {
        const char *left, *right;
        Order order;
    } cases[] = {
        {"P1M", "P32D", Less},
        {"P1M", "P31D", Neither},
        {"P28D", "P1M", Neither},
        {"P7M", "P215D", Neither},
        {"P8M", "P245D", Neither},
        {"P365D", "P1Y", Neither},
        {"-P1D", "P1D", Less},
        {"-P1M", "-P28D", Neither},
        {"PT0.001S", "PT0.002S", Less},
        {"P4294967294Y", "P4294967295Y", Less},     // far years are not cut short
        {"PT31e18S", "PT31000000000001e6S", Less},  // nor are seconds, up to the calendar's end
        {"PT1e20S", "PT1e400S", Neither},
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
    EXPECT_EQ(QeXmlSchemaUtils::ConvertTypeToString(duration, "duration"), "longest");
}

TEST(XmlDuration, DividesRoundingDown) {
    const LongestOfAll calculator;
    constexpr long Least = std::numeric_limits<long>::min();
    constexpr long Most = std::numeric_limits<long>::max();
    EXPECT_EQ(calculator.quotient(-12, 12), -1);
    EXPECT_EQ(calculator.quotient(-13, 12), -2);
    EXPECT_EQ(calculator.quotient(13, 1, 13), 1);
    EXPECT_EQ(calculator.modulo(61.5, 60), 1.5);
    EXPECT_EQ(calculator.modulo(0, 1, 13), 12);
    // Where there is no answer, one that is documented or at least defined.
    EXPECT_EQ(calculator.quotient(7, 0), 0);
    EXPECT_EQ(calculator.quotient(Least, -1), Most);
    EXPECT_EQ(calculator.quotient(Least, 1, 2), Least);
    EXPECT_TRUE(std::isnan(calculator.modulo(std::nan(""), 60)));
    EXPECT_EQ(calculator.modulo(std::numeric_limits<double>::infinity(), 60), std::numeric_limits<double>::infinity());
}

TEST(XmlDuration, KnowsTheDaysOfMonths) {
    const LongestOfAll calculator;
    EXPECT_EQ(calculator.maxDaysInMonth(1900, 2), 28u);
    EXPECT_EQ(calculator.maxDaysInMonth(-4, 2), 29u);
    EXPECT_EQ(calculator.maxDaysInMonth(2001, 0), 31u);
    EXPECT_EQ(calculator.maxDaysInMonth(2003, 14), 29u);
    EXPECT_EQ(calculator.maxDaysInMonth(2005, -10), 29u);
    EXPECT_EQ(calculator.maxDaysInMonth(std::numeric_limits<long>::max(), 13), 31u);
    EXPECT_EQ(calculator.maxDaysInMonth(std::numeric_limits<long>::min(), std::numeric_limits<long>::min()), 30u);
}

}  // namespace
