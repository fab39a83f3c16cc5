// What the process's locale and the machine's time zone are is nobody's business.

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <locale>
#include <stdexcept>

#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>

namespace {

std::string results() {
    const QeDateTime when = QeXmlUtils::convertISODateStringToDateTime("2003-07-20T09:01:08.25");
    const QeCString type("dateTime");
    QeXmlValidator validator("v");
    validator.checkVectorBounds(1'234'567, 0, 1000);
    std::string all = validator.getErrors().front().why();
    all += validator.checkPattern("TITLE", "(?i)^title$") ? " like title\n" : " unlike title\n";
    for (const QeCString& text :
         {QeXmlSchemaUtils::ConvertTypeToString(1234567.5, type),
          QeXmlSchemaUtils::ConvertTypeToString(1'234'567, type), QeXmlSchemaUtils::ConvertTypeToString(when, type),
          QeDecimalPortable(1234567.5).asString(), QeXmlDuration("P1234567YT6.5S").asString(),
          QeXmlUtils::convertDateToISOString(QeXmlUtils::convertISODateStringToDate("2003-07-20")),
          QeXmlUtils::convertDateTimeToISOString(QeXmlDuration("PT6.5S") + when, QeXmlUtils::ISO8601Format),
          QeXmlUtils::convertDateTimeToISOString(when, "%c %x %X %A %B %p %Z %EY %Od")})
        all += std::string(text) + '\n';
    return all;
}

constexpr char Expected[] =
    "Bounds error in: vsize = 1234567 minOccurs = 0 maxOccurs = 1000 like title\n"
    "1.234568e+06\n1234567\n2003-07-20T09:01:08.25Z\n1234567.5\nP1234567Y0M0DT0H0M6.5S\n"
    "2003-07-20\n2003-07-20T09:01:14.75Z\nSun Jul 20 09:01:08 2003 07/20/03 09:01:08 Sunday July AM Z 2003 20\n";

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
