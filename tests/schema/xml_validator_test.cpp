#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include <tessit/schema/xml_validator.h>

namespace {

using Texts = std::vector<std::string>;

Texts errorsOf(const QeXmlValidator& validator) {
    Texts texts;
    for (const QeXmlSchemaError& error : validator.getErrors())
        texts.emplace_back(error.why());
    return texts;
}

using FacetCheck = bool (QeXmlValidator::*)(const QeCString&, const QeCString&);

constexpr FacetCheck MinLength = &QeXmlValidator::checkMinLength;
constexpr FacetCheck MaxLength = &QeXmlValidator::checkMaxLength;
constexpr FacetCheck WhiteSpace = &QeXmlValidator::checkWhiteSpace;

constexpr struct {
    FacetCheck check;
    const char *value, *facet;
    const char* error;  // in front of the name, the value and the facet; empty: passes
} Facets[] = {
    {MinLength, "ab", "3", "MinLength error in: "},
    {MinLength, "a\xC3\xA9", "3", ""},  // bytes, not characters
    {MinLength, "", " \t\n\v\f\r+1x", "MinLength error in: "},
    {MinLength, "", "--1", ""},                        // no number is 0
    {MinLength, "abc", "-1", "MinLength error in: "},  // negative is very large
    {MinLength, "a", "4294967297", "MinLength error in: "},
    {MinLength, "a", "99999999999999999999999", "MinLength error in: "},
    {MaxLength, "abcd", "3", "MaxLength error in: "},
    {MaxLength, "abc", "3", ""},
    {MaxLength, "a", "x", "MaxLength error in: "},
    {MaxLength, "abc", "-1", ""},
    {WhiteSpace, "a\tb", "replace", "Whitespace error in: "},
    {WhiteSpace, "a\nb", "replace", "Whitespace error in: "},
    {WhiteSpace, "a\rb", "replace", "Whitespace error in: "},
    {WhiteSpace, " a  b ", "replace", ""},
    {WhiteSpace, "a  b", "collapse", "Whitespace error in: "},
    {WhiteSpace, " a\tb\r\n", "collapse", ""},
    {WhiteSpace, "\t\n\r  ", "Replace", ""},
};

// Checks of which one has to succeed, and what asks whether one did.
constexpr struct {
    FacetCheck check;
    bool (QeXmlValidator::*ask)();
    const char* error;
} Choices[] = {
    {&QeXmlValidator::checkPattern, &QeXmlValidator::checkPatterns, "Pattern error in: "},
    {&QeXmlValidator::checkEnumeration, &QeXmlValidator::checkEnumerations, "Enumeration error in: "},
};

enum Gathered { None, Matched, Unmatched };
constexpr Gathered States[] = {None, Matched, Unmatched};

QeXmlValidator gathered(const char* name, Gathered state, FacetCheck check) {
    QeXmlValidator validator(name);
    if (state == Unmatched) (validator.*check)("Red", "red");
    if (state == Matched)
        for (const char* choice : {"^", "Red", "red"})
            (validator.*check)("Red", choice);
    return validator;
}

}  // namespace

TEST(XmlValidator, ChecksFacetsAndRecordsFailures) {
    for (const auto& [check, value, facet, error] : Facets) {
        const std::string message = std::string(error) + "zip value = " + value + " facet value = " + facet;
        SCOPED_TRACE(message);
        const bool passes = *error == '\0';
        QeXmlValidator validator("zip");
        EXPECT_EQ((validator.*check)(value, facet), passes);
        EXPECT_EQ(validator.isValid(), passes);
        (validator.*check)("", "0");
        EXPECT_TRUE(validator.isValid()) << "the last check counts";
        EXPECT_EQ(errorsOf(validator), passes ? Texts{} : Texts{message}) << "but what was recorded stays";
    }
}

TEST(XmlValidator, ChecksOccurrenceBounds) {
    constexpr struct {
        int size, min, max;
        const char* error;
    } Cases[] = {
        {0, 1, 3, "Bounds error in: itemssize = 0 minOccurs = 1 maxOccurs = 3"},
        {1, 1, 3, ""},
        {3, 1, 3, ""},
        {4, 1, 3, "Bounds error in: itemssize = 4 minOccurs = 1 maxOccurs = 3"},
        {5, 1, 0, ""},
        {-1, 0, -1, ""},
        {INT_MIN, 1, INT_MAX, "Bounds error in: itemssize = -2147483648 minOccurs = 1 maxOccurs = 2147483647"},
    };
    for (const auto& [size, min, max, error] : Cases) {
        QeXmlValidator validator("items");
        EXPECT_EQ(validator.checkVectorBounds(size, min, max), *error == '\0') << size;
        EXPECT_TRUE(validator.checkVectorBounds(1, 1, 1));
        EXPECT_EQ(validator.isValid(), *error == '\0') << "a failure counts until clear";
        EXPECT_EQ(errorsOf(validator), *error == '\0' ? Texts{} : Texts{error});
    }
}

TEST(XmlValidator, AsksForOneOfThePatternsAndOneOfTheEnumerationValues) {
    for (const auto& [check, ask, error] : Choices)
        for (const Gathered own : States)
            for (const Gathered other : States) {
                SCOPED_TRACE(error + std::to_string(own) + " with " + std::to_string(other));
                QeXmlValidator whole = gathered("whole", own, check), part = gathered("part", other, check);
                EXPECT_EQ(part.isValid(), other != Unmatched);
                EXPECT_EQ(errorsOf(part), Texts{}) << "single misses are no errors";
                EXPECT_EQ((part.*ask)(), other != Unmatched);
                EXPECT_EQ(errorsOf(part), other != Unmatched ? Texts{} : Texts{error + std::string("part")});
                const bool valid = own != Unmatched && other != Unmatched;
                EXPECT_EQ(whole.isValid(part), valid);
                EXPECT_EQ(whole.checkPatterns() && whole.checkEnumerations(), valid);
            }
}

TEST(XmlValidator, StartsAnewAfterClear) {
    QeXmlValidator validator("v");
    validator.checkMinLength("a", "2");
    validator.checkMaxLength("a", "0");
    validator.checkWhiteSpace("  ", "collapse");
    validator.checkVectorBounds(2, 0, 1);
    validator.checkPattern("a", "b");
    validator.checkEnumeration("a", "b");
    validator.clearErrors();
    EXPECT_TRUE(validator.getErrors().empty() && !validator.isValid());
    validator.addError(QeXmlSchemaError("own"));
    validator.clear();
    EXPECT_TRUE(validator.getErrors().empty() && validator.isValid());
    EXPECT_TRUE(validator.checkPatterns() && validator.checkEnumerations());
    validator.addError(QeXmlSchemaError("own"));
    EXPECT_TRUE(validator.isValid()) << "an error of the application's has no say";
}

TEST(XmlValidator, MergesResultsAndErrorsOfParts) {
    const auto fail = {+[](QeXmlValidator& v) { v.checkMinLength("", "1"); },
                       +[](QeXmlValidator& v) { v.checkMaxLength("a", "0"); },
                       +[](QeXmlValidator& v) { v.checkWhiteSpace("\t", "replace"); },
                       +[](QeXmlValidator& v) { v.checkVectorBounds(2, 0, 1); }};
    for (const auto failOnce : fail) {
        QeXmlValidator good("good"), bad("bad"), whole("whole");
        failOnce(bad);
        whole.addError(QeXmlSchemaError("first"));
        EXPECT_TRUE(whole.isValid(good));
        EXPECT_FALSE(whole.isValid(bad));
        EXPECT_FALSE(whole.isValid(good)) << "a good part mends nothing";
        EXPECT_EQ(errorsOf(whole), (Texts{"first", errorsOf(bad).front()}));
        EXPECT_FALSE(whole.isValid(whole)) << "with itself, each error once more";
        EXPECT_EQ(whole.getErrors().size(), 4u);
    }
}

TEST(XmlValidator, CopiesShareNothing) {
    QeXmlValidator original("v");
    original.checkPattern("a", "a");
    QeXmlValidator copy(original);
    EXPECT_FALSE(copy.checkMinLength("", "1"));
    EXPECT_TRUE(copy.checkPattern("a", "a"));
    EXPECT_TRUE(original.isValid());
    original = copy;
    copy.clear();
    EXPECT_EQ(errorsOf(original), Texts{"MinLength error in: v value =  facet value = 1"});
    EXPECT_TRUE(!original.isValid() && original.checkPattern("a", "a"));
}
