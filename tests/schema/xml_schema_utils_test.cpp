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
    EXPECT_EQ(NameBeforeMain, "http://www.w3.org/2001/XMLSchema-instance::type");
    EXPECT_EQ(QeXmlSchemaUtils::XsiNilAttributeName.getQualifiedName(), "xsi:nil");
    EXPECT_EQ(QeXmlSchemaUtils::XsiSchemaLocationAttributeName.getQualifiedName(), "xsi:schemaLocation");
    EXPECT_EQ(QeXmlSchemaUtils::XsiNoNamespaceSchemaLocationAttributeName.getQualifiedName(),
              "xsi:noNamespaceSchemaLocation");
}

TEST(XmlSchemaUtils, ConvertsToLexicalForm) {
    EXPECT_EQ(convert(QeCString("a\0b", 3)), QeCString("a\0b", 3));
    EXPECT_EQ(QeXmlSchemaUtils::ConvertTypeToString("text", "date"), "text");
    EXPECT_EQ(convert(static_cast<const char*>(nullptr)), "");
    EXPECT_EQ(convert(true) + convert(false), "10");
    EXPECT_EQ(convert(std::numeric_limits<int>::min()), "-2147483648");
    EXPECT_EQ(convert(4294967295U), "4294967295");
    EXPECT_EQ(convert(-2147483648L), "-2147483648");
    EXPECT_EQ(convert(4294967295UL), "4294967295");
    EXPECT_EQ(convert(std::numeric_limits<long long>::min()), "-9223372036854775808");
    EXPECT_EQ(convert(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
    EXPECT_EQ(convert(0.1F), "1.000000e-01");
    EXPECT_EQ(convert(QeDecimalPortable("-12345678901234567890.10")), "-12345678901234567890.10");
    EXPECT_EQ(convert(QeXmlDuration(1, 0, 2), "time"), "P1Y0M2D");
}

// printf, in the C locale, as the judge.
TEST(XmlSchemaUtils, ConvertsFloatingPointAsPrintfDoes) {
    const auto printed = [](double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%e", value);
        return QeCString(text);
    };
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
    for (const char* typeName : {"time", "xsd:time", "datetime"})
        EXPECT_EQ(convert(when, typeName), "09:01:08") << typeName;
    for (const char* typeName : {"date", "xsd:date"})
        EXPECT_EQ(convert(when, typeName), "2003-05-20") << typeName;
    for (const char* typeName : {"dateTime", "", "Date", "dates"})
        EXPECT_EQ(convert(when, typeName), "2003-05-20T09:01:08.25Z") << typeName;
}

}  // namespace
