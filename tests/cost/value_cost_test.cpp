// Texts of values, and checks of values: four times the text takes about four times the time.

#include <corvel/value_error.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>

#include "cost/growth.h"

using namespace tessit::test;

namespace {

void readDuration(const QeCString& text) {
    const QeXmlDuration duration(text);
    duration.asString();
}

void readNumber(const QeCString& text) {
    try {
        QeDecimalPortable number(text);
    } catch (const QeValueError&) {
    }
}

void readDate(const QeCString& text) {
    try {
        QeXmlUtils::convertISODateStringToDateTime(text);
    } catch (const QeValueError&) {
    }
}

void writeDate(const QeCString& format) {
    QeXmlUtils::convertDateTimeToISOString(QeDateTime(), format);
}

void strip(const QeCString& text) {
    QeXmlUtils::stripWhiteSpaceAndNewlines(text, QeCString::stripBoth);
}

void splitName(const QeCString& name) {
    QeCString prefix, local;
    QeXmlUtils::getPrefixAndLocalName(name, prefix, local);
}

// The facets of a value that fail with long messages, over and over.
void checkFacets(const QeCString& value) {
    QeXmlValidator validator("value");
    validator.checkMinLength(value, value);
    validator.checkMaxLength(value, "0");
    validator.checkWhiteSpace(value, "collapse");
    validator.checkWhiteSpace(value, "replace");
    validator.checkEnumeration(value, value);
}

void checkPattern(const QeCString& value) {
    QeXmlValidator("value").checkPattern(value, "^(?:[a-z]|[0-9 ])*\\z");
}

// Results of one part after the other, a byte each.
void gatherResults(const QeCString& value) {
    QeXmlValidator whole("whole");
    for (std::size_t i = 0; i < value.length() / 16; ++i) {
        QeXmlValidator part("part");
        part.checkMinLength("", "1");
        whole.isValid(part);
    }
    ASSERT_EQ(whole.getErrors().size(), value.length() / 16);
}

struct CostCase {
    const char* name;
    const char* before;
    const char* part;
    const char* behind;
    void (*use)(const QeCString& text);
};

constexpr CostCase Cases[] = {
    {"DurationOfManyFields", "P", "1Y", "", readDuration},
    {"DurationOfLongFields", "P", "000000000000000001D", "", readDuration},
    {"DurationOfDigits", "P", "1", "Y", readDuration},
    {"DurationOfFractions", "PT1.", "1", "S", readDuration},
    {"Decimal", "-", "1", ".5", readNumber},
    {"DecimalOfZeros", "0", "0", ".0", readNumber},
    {"DateOfDigits", "", "1", "-01-01", readDate},
    {"DateWithALongFraction", "2003-05-20T09:01:08.", "1", "Z", readDate},
    {"FormatOfDirectives", "", "%c", "", writeDate},
    {"FormatOfPercentSigns", "", "%", "", writeDate},
    {"BlanksToStrip", "", " ", "", strip},
    {"BlanksBetween", "x", " ", "x", strip},
    {"NameOfColons", "", ":", "", splitName},
    {"FacetsOfLongValues", "", "1 ", "", checkFacets},
    {"PatternOnLongValues", "", "1a", "", checkPattern},
    {"PatternThatDoesNotMatch", "", "1a", "-", checkPattern},
    {"ResultsOfManyParts", "", "x", "", gatherResults},
};

}  // namespace

TEST(Cost, OfValuesGrowsWithTheirText) {
    for (const CostCase& row : Cases) {
        const auto make = [&](std::size_t count) {
            return QeCString(std::string_view(row.before + repeat(row.part, count) + row.behind));
        };
        expectLinearGrowth(row.name, 20'000, make, row.use, [](const QeCString& text) { return text.length(); });
    }
}
