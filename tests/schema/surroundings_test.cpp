// What the process's locale and the machine's time zone are is nobody's business.

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <locale>
#include <stdexcept>

#include <tessit/schema/xml_schema_utils.h>
#include <tessit/utils/xml_utils.h>

namespace {

std::string results() {
    const QeDateTime when = QeXmlUtils::convertISODateStringToDateTime("2003-07-20T09:01:08.25");
    const QeCString type("dateTime");
    std::string all;
    for (const QeCString& text :
         {QeXmlSchemaUtils::ConvertTypeToString(1234567.5, type), QeXmlSchemaUtils::ConvertTypeToString(-0.1F, type),
          QeXmlSchemaUtils::ConvertTypeToString(1'234'567, type), QeXmlSchemaUtils::ConvertTypeToString(when, type),
          QeDecimalPortable(1234567.5).asString(), QeXmlDuration("P1234567YT6.5S").asString(),
          QeXmlUtils::convertDateToISOString(QeXmlUtils::convertISODateStringToDate("2003-07-20")),
          QeXmlUtils::convertDateTimeToISOString(QeXmlDuration("PT6.5S") + when, QeXmlUtils::ISO8601Format),
          QeXmlUtils::convertDateTimeToISOString(when, "%c %x %X %A %B %p %Z %EY %Od")})
        all += std::string(text) + '\n';
    return all;
}

constexpr char Expected[] =
    "1.234568e+06\n-1.000000e-01\n1234567\n2003-07-20T09:01:08.25Z\n1234567.5\nP1234567Y0M0DT0H0M6.5S\n"
    "2003-07-20\n2003-07-20T09:01:14.75Z\nSun Jul 20 09:01:08 2003 07/20/03 09:01:08 Sunday July AM Z 2003 20\n";

class InLocale : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        try {
            std::locale::global(std::locale(GetParam()));  // that of C too
        } catch (const std::runtime_error&) {
            GTEST_SKIP() << "this machine has no locale " << GetParam();
        }
    }
    void TearDown() override { std::locale::global(std::locale::classic()); }
};

TEST_P(InLocale, ResultsAreTheSame) {
    char text[20];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    ASSERT_STREQ(text, "1,5");  // the locale is in force
    EXPECT_EQ(results(), Expected);
}

INSTANTIATE_TEST_SUITE_P(Surroundings, InLocale, testing::Values("de_DE.UTF-8", "tr_TR.UTF-8"));

TEST(Surroundings, ZoneOfTheMachineDoesNotMatter) {
    const char* before = std::getenv("TZ");
    const std::string saved = before == nullptr ? "" : before;
    setenv("TZ", "America/New_York", 1);
    tzset();
    const bool inForce = timezone == 5 * 3600;
    const std::string found = results();
    before == nullptr ? unsetenv("TZ") : setenv("TZ", saved.c_str(), 1);
    tzset();
    if (!inForce) GTEST_SKIP() << "this machine has no zone America/New_York";
    EXPECT_EQ(found, Expected);
}

}  // namespace
