#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include <tessit/schema/xml_schema_utils.h>

namespace {

// Made before main, in a source that the constants' source knows nothing of.
const QeCString NameBeforeMain = QeXmlSchemaUtils::XsiTypeAttributeName.getUniqueName();

template <typename Value>
QeCString convert(const Value& value, const char* typeName = "type") {
    return QeXmlSchemaUtils::ConvertTypeToString(value, typeName);
}

TEST(XmlSchemaUtils, NamesTheInstanceAttributes) {
    const QeCString uri = "http://www.w3.org/2001/XMLSchema-instance";
    EXPECT_EQ(NameBeforeMain, uri + "::type");
    EXPECT_EQ(QeXmlSchemaUtils::XsiTypeAttributeName.getQualifiedName(), "xsi:type");
    EXPECT_EQ(QeXmlSchemaUtils::XsiNilAttributeName.getQualifiedName(), "xsi:nil");
    EXPECT_EQ(QeXmlSchemaUtils::XsiSchemaLocationAttributeName.getQualifiedName(), "xsi:schemaLocation");
    EXPECT_EQ(QeXmlSchemaUtils::XsiNoNamespaceSchemaLocationAttributeName.getUniqueName(),
              uri + "::noNamespaceSchemaLocation");
}

TEST(XmlSchemaUtils, ConvertsTextsBooleansAndWholeNumbers) {
    EXPECT_EQ(convert(QeCString("a\0b", 3)), QeCString("a\0b", 3));
    EXPECT_EQ(QeXmlSchemaUtils::ConvertTypeToString("text", "date"), "text");
    EXPECT_EQ(QeXmlSchemaUtils::ConvertTypeToString("", "string"), "");
    EXPECT_EQ(convert(static_cast<const char*>(nullptr)), "");
    EXPECT_EQ(convert(true), "1");
    EXPECT_EQ(convert(false), "0");
    EXPECT_EQ(convert(-5), "-5");
    EXPECT_EQ(convert(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(convert(4294967295U), "4294967295");
    EXPECT_EQ(convert(-2147483648L), "-2147483648");
    EXPECT_EQ(convert(4294967295UL), "4294967295");
    EXPECT_EQ(convert(std::numeric_limits<long long>::min()), "-9223372036854775808");
    EXPECT_EQ(convert(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
    EXPECT_EQ(convert(static_cast<short>(-1)), "-1");
}

// printf, in the C locale, as the judge.
TEST(XmlSchemaUtils, ConvertsFloatingPointAsPrintfDoes) {
    const auto printed = [](double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%e", value);
        return QeCString(text);
    };
    EXPECT_EQ(convert(0.0), "0.000000e+00");
    EXPECT_EQ(convert(-0.1), "-1.000000e-01");
    EXPECT_EQ(convert(0.5F), "5.000000e-01");
    EXPECT_EQ(convert(0.1F), "1.000000e-01");
    using Limits = std::numeric_limits<double>;
    for (double value : {-0.0, 1.5, 9.9999995, 9.99999949, Limits::max(), Limits::denorm_min(), Limits::infinity(),
                         -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_EQ(convert(value), printed(value));
    std::mt19937_64 random(7);
    for (int round = 0; round < 10'000; ++round) {
        const double value = std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 2000) - 1000);
        ASSERT_EQ(convert(value), printed(value));
    }
}

TEST(XmlSchemaUtils, ConvertsDateTimesByTheTypesName) {
    const QeDateTime when(QeDate(20, 5, 2003), 9, 1, 8, 250, QeZone::utc());
    const struct {
        const char* typeName;
        const char* text;
    } cases[] = {
        {"time", "09:01:08"},
        {"xsd:time", "09:01:08"},
        {"datetime", "09:01:08"},
        {"date", "2003-05-20"},
        {"xsd:date", "2003-05-20"},
        {"dateTime", "2003-05-20T09:01:08.25Z"},
        {"", "2003-05-20T09:01:08.25Z"},
        {"Date", "2003-05-20T09:01:08.25Z"},
        {"dates", "2003-05-20T09:01:08.25Z"},
    };
    for (const auto& [typeName, text] : cases)
        EXPECT_EQ(convert(when, typeName), text) << typeName;
}

class Shorthand : public QeXmlDuration {
public:
    QeCString asString() const override { return "P1D"; }
};

TEST(XmlSchemaUtils, ConvertsDurationsAndDecimalsByTheirOwnForm) {
    EXPECT_EQ(convert(QeXmlDuration(1, 0, 2), "time"), "P1Y0M2D");
    EXPECT_EQ(convert(static_cast<const QeXmlDuration&>(Shorthand())), "P1D");
    EXPECT_EQ(convert(QeDecimalPortable("-12345678901234567890.10")), "-12345678901234567890.10");
}

}  // namespace
