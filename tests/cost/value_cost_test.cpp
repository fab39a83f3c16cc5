// Texts of values, and checks of values: four times the text takes about four times the time.

#include <corvel/value_error.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>

#include "cost/growth.h"

using namespace tessit::test;

namespace {

template <typename Operation>
void allowRefusal(const Operation& operation) {
    try {
        operation();
    } catch (const QeValueError&) {
    }
}

// Whatever the text is meant to be, it is taken for anything.
void useAsValue(const QeCString& text) {
    text.find(QeCString(text.substring(text.length() / 2)) + "!");
    QeCString upper(text);
    upper.toUpper();
    upper.findFirstOf("!?");
    QeXmlDuration(text).asString();
    allowRefusal([&] { QeDecimalPortable number(text); });
    allowRefusal([&] { QeXmlUtils::convertISODateStringToDateTime(text); });
    QeXmlUtils::convertDateTimeToISOString(QeDateTime(), text);
    QeXmlUtils::stripWhiteSpaceAndNewlines(text, QeCString::stripBoth);
    QeCString prefix, local;
    QeXmlUtils::getPrefixAndLocalName(text, prefix, local);
}

// The facets of a value, of which most fail with long messages, and results of one part after the other.
void validate(const QeCString& text) {
    QeXmlValidator whole("whole");
    whole.checkMinLength(text, text);
    whole.checkMaxLength(text, "0");
    whole.checkWhiteSpace(text, "collapse");
    whole.checkWhiteSpace(text, "replace");
    whole.checkEnumeration(text, text);
    whole.checkPattern(text, "^(?:[a-z]|[0-9 ])*\\z");
    whole.checkEnumerations();
    whole.checkPatterns();
    for (std::size_t i = 0; i < text.length() / 16; ++i) {
        QeXmlValidator part("part");
        part.checkMinLength("", "1");
        whole.isValid(part);
    }
}

constexpr struct {
    const char *name, *before, *part, *behind;
} Texts[] = {
    {"DurationOfManyFields", "P", "1Y", ""},
    {"DurationOfLongFields", "P", "000000000000000001D", ""},
    {"DurationOfDigits", "P", "1", "Y"},
    {"DurationOfFractions", "PT1.", "1", "S"},
    {"Decimal", "-", "1", ".5"},
    {"DecimalOfZeros", "0", "0", ".0"},
    {"DateOfDigits", "", "1", "-01-01"},
    {"DateWithALongFraction", "2003-05-20T09:01:08.", "1", "Z"},
    {"FormatOfDirectives", "", "%c", ""},
    {"FormatOfPercentSigns", "", "%", ""},
    {"BlanksToStrip", "", " ", ""},
    {"BlanksBetween", "x", " ", "x"},
    {"NameOfColons", "", ":", ""},
    {"WordsThatMatch", "", "1a ", ""},
    {"WordsThatDoNot", "", "1a ", "-"},
};

}  // namespace

TEST(Cost, OfValuesGrowsWithTheirText) {
    for (const auto& [name, before, part, behind] : Texts) {
        const auto make = [before = before, part = part, behind = behind](std::size_t count) {
            return QeCString(std::string_view(before + repeat(part, count) + behind));
        };
        expectLinearGrowth(name, 20'000, make, useAsValue);
        expectLinearGrowth(std::string(name) + " validated", 20'000, make, validate);
    }
}
