// Lexical forms of values, whatever the process's locale and the machine's time zone are.

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <random>
#include <stdexcept>

#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>

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
    const QeDateTime when(QeDate(20, 5, 2003), 9, 1, 8, 250, QeZone::utc());
    const std::pair<QeCString, const char*> cases[] = {
        {QeXmlSchemaUtils::ConvertTypeToString("text", "date"), "text"},
        {convert(static_cast<const char*>(nullptr)), ""},
        {convert(true) + convert(false), "10"},
        {convert(std::numeric_limits<int>::min()), "-2147483648"},
        {convert(4294967295U), "4294967295"},
        {convert(-2147483648L), "-2147483648"},
        {convert(4294967295UL), "4294967295"},
        {convert(std::numeric_limits<long long>::min()), "-9223372036854775808"},
        {convert(std::numeric_limits<unsigned long long>::max()), "18446744073709551615"},
        {convert(0.1F), "1.000000e-01"},
        {convert(QeDecimalPortable("-12345678901234567890.10")), "-12345678901234567890.10"},
        {convert(QeXmlDuration(1, 0, 2), "time"), "P1Y0M2D"},
        {convert(when, "xsd:time"), "09:01:08"},
        {convert(when, "datetime"), "09:01:08"},
        {convert(when, "xsd:date"), "2003-05-20"},
        {convert(when, "dateTime"), "2003-05-20T09:01:08.25Z"},
        {convert(when, "Date"), "2003-05-20T09:01:08.25Z"}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(text, expected);
    EXPECT_EQ(convert(QeCString("a\0b", 3)), QeCString("a\0b", 3));
}

// printf, in the C locale, as the judge.
TEST(XmlSchemaUtils, ConvertsFloatingPointAsPrintfDoes) {
    const auto expectAsPrinted = [](double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%e", value);
        ASSERT_EQ(convert(value), text);
    };
    using Limits = std::numeric_limits<double>;
    for (double value : {-0.0, 1.5, 9.9999995, 9.99999949, Limits::max(), Limits::denorm_min(), Limits::infinity(),
                         -Limits::infinity(), Limits::quiet_NaN()})
        expectAsPrinted(value);
    std::mt19937_64 random(7);
    for (int round = 0; round < 10'000; ++round)
        expectAsPrinted(std::ldexp(static_cast<double>(random()), static_cast<int>(random() % 2000) - 1000));
}

std::string results() {
    const QeDateTime when = QeXmlUtils::convertISODateStringToDateTime("2003-07-20T09:01:08.25");
    QeXmlValidator validator("v");
    validator.checkVectorBounds(1'234'567, 0, 1000);
    std::string all = validator.getErrors().front().why() + std::string("\n");
    for (const QeCString& text :
         {convert(1234567.5), convert(1'234'567), convert(when, "dateTime"), convert(QeDecimalPortable(1234567.5)),
          convert(QeXmlDuration("P1234567YT6.5S")), QeXmlUtils::convertDateTimeToISOString(when, "%c %x %X %A %B %p")})
        all += std::string(text) + '\n';
    return all;
}

constexpr char Expected[] =
    "Bounds error in: vsize = 1234567 minOccurs = 0 maxOccurs = 1000\n1.234568e+06\n1234567\n2003-07-20T09:01:08.25Z\n"
    "1234567.5\nP1234567Y0M0DT0H0M6.5S\nSun Jul 20 09:01:08 2003 07/20/03 09:01:08 Sunday July AM\n";

class InLocale : public testing::TestWithParam<const char*> {
    void TearDown() override { std::locale::global(std::locale::classic()); }
};

TEST_P(InLocale, ResultsAreTheSame) {
    try {
        std::locale::global(std::locale(GetParam()));  // that of C too
    } catch (const std::runtime_error&) {
        GTEST_SKIP() << "this machine has no locale " << GetParam();
    }
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(results(), Expected);
}

INSTANTIATE_TEST_SUITE_P(Surroundings, InLocale, testing::Values("de_DE.UTF-8", "tr_TR.UTF-8"));

TEST(Surroundings, ZoneOfTheMachineDoesNotMatter) {
    setenv("TZ", "EST5EDT,M3.2.0,M11.1.0", 1);  // for the tests that follow, too
    tzset();
    ASSERT_EQ(timezone, 5 * 3600);
    EXPECT_EQ(results(), Expected);
}

}  // namespace
