#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
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

constexpr FacetCheck Min = &QeXmlValidator::checkMinLength, Max = &QeXmlValidator::checkMaxLength,
                     Blanks = &QeXmlValidator::checkWhiteSpace;
constexpr char TooShort[] = "MinLength error in: ", TooLong[] = "MaxLength error in: ", Bad[] = "Whitespace error in: ";

// A check, its value and facet, and the error in front of the name; empty where it passes.
constexpr std::tuple<FacetCheck, const char*, const char*, const char*> Facets[] = {
    // bytes, not characters; no number is 0, a negative one very large
    {Min, "ab", "3", TooShort},
    {Min, "a\xC3\xA9", "3", ""},
    {Min, "", " \t\n\v\f\r+1x", TooShort},
    {Min, "", "--1", ""},
    {Min, "abc", "-1", TooShort},
    {Min, "a", "4294967297", TooShort},
    {Min, "a", "99999999999999999999999", TooShort},
    {Max, "abcd", "3", TooLong},
    {Max, "abc", "3", ""},
    {Max, "a", "x", TooLong},
    {Max, "abc", "-1", ""},
    {Blanks, "a\tb", "replace", Bad},
    {Blanks, "a\nb", "replace", Bad},
    {Blanks, "a\rb", "replace", Bad},
    {Blanks, " a  b ", "replace", ""},
    {Blanks, "a  b", "collapse", Bad},
    {Blanks, " a\tb\r\n", "collapse", ""},
    {Blanks, "\t\n\r  ", "Replace", ""}};

// Checks of which one has to succeed, and what asks whether one did.
constexpr struct {
    FacetCheck check;
    bool (QeXmlValidator::*ask)();
    const char* error;
} Choices[] = {
#if !defined(TESSIT_WITHOUT_ICU)
    {&QeXmlValidator::checkPattern, &QeXmlValidator::checkPatterns, "Pattern error in: "},
#endif
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
    constexpr std::tuple<int, int, int, const char*> Cases[] = {
        {0, 1, 3, "Bounds error in: itemssize = 0 minOccurs = 1 maxOccurs = 3"},
        {1, 1, 3, ""},
        {3, 1, 3, ""},
        {5, 1, 0, ""},
        {-1, 0, -1, ""},
        {4, 1, 3, "Bounds error in: itemssize = 4 minOccurs = 1 maxOccurs = 3"},
        {INT_MIN, 1, INT_MAX, "Bounds error in: itemssize = -2147483648 minOccurs = 1 maxOccurs = 2147483647"}};
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
                EXPECT_EQ((whole.*ask)(), valid);
            }
}

// Each fails in one way: results of parts are taken in, errors behind those that are there, and clear forgets both.
TEST(XmlValidator, MergesAndForgetsResultsAndErrors) {
    const auto fail = {
        +[](QeXmlValidator& v) { v.checkMinLength("", "1"); },
        +[](QeXmlValidator& v) { v.checkMaxLength("a", "0"); },
        +[](QeXmlValidator& v) { v.checkWhiteSpace("\t", "replace"); },
        +[](QeXmlValidator& v) { v.checkVectorBounds(2, 0, 1); },
#if !defined(TESSIT_WITHOUT_ICU)
        +[](QeXmlValidator& v) { v.checkPattern("a", "b"), v.checkPatterns(); },
#endif
        +[](QeXmlValidator& v) { v.checkEnumeration("a", "b"), v.checkEnumerations(); }
    };
    for (const auto failOnce : fail) {
        QeXmlValidator good("good"), bad("bad"), whole("whole");
        failOnce(bad);
        whole.addError(QeXmlSchemaError("first"));
        EXPECT_TRUE(whole.isValid(good)) << "an error of the application's has no say";
        EXPECT_FALSE(whole.isValid(bad));
        EXPECT_FALSE(whole.isValid(good)) << "a good part mends nothing";
        EXPECT_EQ(errorsOf(whole), (Texts{"first", errorsOf(bad).front()}));
        EXPECT_FALSE(whole.isValid(whole)) << "with itself, each error once more";
        EXPECT_EQ(whole.getErrors().size(), 4u);
        const QeXmlValidator copy(whole);
        whole.clearErrors();
        EXPECT_TRUE(whole.getErrors().empty() && !whole.isValid());
        whole.addError(QeXmlSchemaError("own"));
        whole.clear();
        EXPECT_TRUE(whole.getErrors().empty() && whole.isValid() && whole.checkPatterns() && whole.checkEnumerations());
        EXPECT_TRUE(copy.getErrors().size() == 4 && !copy.isValid()) << "a copy shares nothing";
    }
}
