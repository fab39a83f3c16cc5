#include <climits>
#include <clocale>
#include <gtest/gtest.h>
#include <locale>
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

struct FacetCase {
    FacetCheck check;
    const char* value;
    const char* facet;
    const char* error;  // empty: passes
};

constexpr FacetCheck MinLength = &QeXmlValidator::checkMinLength;
constexpr FacetCheck MaxLength = &QeXmlValidator::checkMaxLength;
constexpr FacetCheck WhiteSpace = &QeXmlValidator::checkWhiteSpace;

constexpr FacetCase Facets[] = {
    {MinLength, "ab", "3", "MinLength error in: zip value = ab facet value = 3"},
    {MinLength, "abc", "3", ""},
    {MinLength, "a\xC3\xA9", "3", ""},  // bytes, not characters
    {MinLength, "", "0", ""},
    {MinLength, "", " \t\n\v\f\r+1x", "MinLength error in: zip value =  facet value =  \t\n\v\f\r+1x"},
    {MinLength, "", "x1", ""},  // no number is 0
    {MinLength, "", "--1", ""},
    {MinLength, "abc", "-1", "MinLength error in: zip value = abc facet value = -1"},  // negative is very large
    {MinLength, "a", "4294967297", "MinLength error in: zip value = a facet value = 4294967297"},
    {MinLength, "a", "99999999999999999999999",
     "MinLength error in: zip value = a facet value = 99999999999999999999999"},
    {MaxLength, "abcd", "3", "MaxLength error in: zip value = abcd facet value = 3"},
    {MaxLength, "abc", "3", ""},
    {MaxLength, "", "x", ""},
    {MaxLength, "a", "x", "MaxLength error in: zip value = a facet value = x"},
    {MaxLength, "abc", "-1", ""},
    {MaxLength, "abc", "4294967296", ""},
    {WhiteSpace, "a\tb", "replace", "Whitespace error in: zip value = a\tb facet value = replace"},
    {WhiteSpace, "a\nb", "replace", "Whitespace error in: zip value = a\nb facet value = replace"},
    {WhiteSpace, "a\rb", "replace", "Whitespace error in: zip value = a\rb facet value = replace"},
    {WhiteSpace, " a  b ", "replace", ""},
    {WhiteSpace, "a  b", "collapse", "Whitespace error in: zip value = a  b facet value = collapse"},
    {WhiteSpace, " a\tb\r\n", "collapse", ""},
    {WhiteSpace, "\t\n\r  ", "preserve", ""},
    {WhiteSpace, "\t\n\r  ", "Replace", ""},
    {WhiteSpace, "\t\n\r  ", "", ""},
};

// The states that checks of which one has to succeed can be in.
enum Gathered { None, Matched, Unmatched };

constexpr struct {
    Gathered own, other;
    bool valid;
} Merges[] = {
    {None, None, true},       {None, Matched, true},       {None, Unmatched, false},
    {Matched, None, true},    {Matched, Matched, true},    {Matched, Unmatched, false},
    {Unmatched, None, false}, {Unmatched, Matched, false}, {Unmatched, Unmatched, false},
};

QeXmlValidator gathered(const char* name, Gathered state, FacetCheck check) {
    QeXmlValidator validator(name);
    if (state != None) (validator.*check)("a", "b");
    if (state == Matched) (validator.*check)("a", "a");
    return validator;
}

}  // namespace

TEST(XmlValidator, ChecksFacetsAndRecordsFailures) {
    for (const FacetCase& row : Facets) {
        SCOPED_TRACE(std::string(row.value) + " against " + row.facet);
        const bool passes = *row.error == '\0';
        QeXmlValidator validator("zip");
        EXPECT_EQ((validator.*row.check)(row.value, row.facet), passes);
        EXPECT_EQ(validator.isValid(), passes);
        EXPECT_EQ(errorsOf(validator), passes ? Texts{} : Texts{row.error});
        (validator.*row.check)("", "0");
        EXPECT_TRUE(validator.isValid()) << "the last check counts";
        EXPECT_EQ(validator.getErrors().size(), passes ? 0u : 1u) << "but what was recorded stays";
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
        {2, 0, -1, ""},
        {0, 0, 0, ""},
        {-1, -2, 0, ""},
        {-1, 1, 0, "Bounds error in: itemssize = -1 minOccurs = 1 maxOccurs = 0"},
        {INT_MIN, 1, INT_MAX, "Bounds error in: itemssize = -2147483648 minOccurs = 1 maxOccurs = 2147483647"},
        {2, 3, 1, "Bounds error in: itemssize = 2 minOccurs = 3 maxOccurs = 1"},
    };
    for (const auto& row : Cases) {
        SCOPED_TRACE(row.size);
        const bool passes = *row.error == '\0';
        QeXmlValidator validator("items");
        EXPECT_EQ(validator.checkVectorBounds(row.size, row.min, row.max), passes);
        EXPECT_EQ(errorsOf(validator), passes ? Texts{} : Texts{row.error});
        EXPECT_TRUE(validator.checkVectorBounds(1, 1, 1));
        EXPECT_EQ(validator.isValid(), passes) << "a failure counts until clear";
    }
}

TEST(XmlValidator, AsksForOneOfThePatternsAndOneOfTheEnumerationValues) {
    QeXmlValidator validator("colour");
    EXPECT_TRUE(validator.checkPatterns());
    EXPECT_TRUE(validator.checkEnumerations());
    EXPECT_FALSE(validator.checkPattern("Red", "^[a-z]+$"));
    EXPECT_FALSE(validator.checkEnumeration("Red", "red"));
    EXPECT_EQ(errorsOf(validator), Texts{}) << "single misses are no errors";
    EXPECT_FALSE(validator.isValid());
    EXPECT_FALSE(validator.checkEnumerations());
    EXPECT_FALSE(validator.checkPatterns());
    EXPECT_FALSE(validator.checkPatterns());
    EXPECT_EQ(errorsOf(validator),
              (Texts{"Enumeration error in: colour", "Pattern error in: colour", "Pattern error in: colour"}));

    EXPECT_TRUE(validator.checkPattern("Red", "^[A-Z]"));
    EXPECT_FALSE(validator.checkPattern("Red", "^[0-9]"));
    EXPECT_TRUE(validator.checkPatterns());
    EXPECT_FALSE(validator.isValid());
    EXPECT_TRUE(validator.checkEnumeration("Red", "Red"));
    EXPECT_FALSE(validator.checkEnumeration("Red", "Red "));
    EXPECT_TRUE(validator.checkEnumerations());
    EXPECT_TRUE(validator.isValid());
    EXPECT_EQ(validator.getErrors().size(), 3u);
}

TEST(XmlValidator, StartsAnewAfterClear) {
    QeXmlValidator validator("v");
    const auto failEverything = [&] {
        validator.checkMinLength("a", "2");
        validator.checkMaxLength("a", "0");
        validator.checkWhiteSpace("  ", "collapse");
        validator.checkVectorBounds(2, 0, 1);
        validator.checkPattern("a", "b");
        validator.checkEnumeration("a", "b");
        validator.addError(QeXmlSchemaError("own"));
    };
    failEverything();
    EXPECT_EQ(validator.getErrors().size(), 5u);
    validator.clearErrors();
    EXPECT_TRUE(validator.getErrors().empty());
    EXPECT_FALSE(validator.isValid());
    failEverything();
    validator.clear();
    EXPECT_TRUE(validator.getErrors().empty());
    EXPECT_TRUE(validator.isValid());
    EXPECT_TRUE(validator.checkPatterns());
    EXPECT_TRUE(validator.checkEnumerations());
    validator.addError(QeXmlSchemaError("own"));
    EXPECT_TRUE(validator.isValid()) << "an error of the application's has no say";
}

TEST(XmlValidator, MergesWhatGathers) {
    for (const FacetCheck check : {&QeXmlValidator::checkPattern, &QeXmlValidator::checkEnumeration})
        for (const auto& row : Merges) {
            SCOPED_TRACE(std::to_string(row.own) + " with " + std::to_string(row.other));
            QeXmlValidator whole = gathered("whole", row.own, check);
            QeXmlValidator part = gathered("part", row.other, check);
            EXPECT_EQ(whole.isValid(part), row.valid);
            EXPECT_EQ(whole.isValid(), row.valid);
            EXPECT_EQ(part.isValid(), row.other != Unmatched) << "the part stays as it is";
            EXPECT_EQ(whole.checkPatterns() && whole.checkEnumerations(), row.valid);
        }
}

TEST(XmlValidator, MergesResultsAndErrorsOfParts) {
    const auto fail = {+[](QeXmlValidator& v) { v.checkMinLength("", "1"); },
                       +[](QeXmlValidator& v) { v.checkMaxLength("a", "0"); },
                       +[](QeXmlValidator& v) { v.checkWhiteSpace("\t", "replace"); },
                       +[](QeXmlValidator& v) { v.checkVectorBounds(2, 0, 1); }};
    for (const auto failOnce : fail) {
        QeXmlValidator good("good"), bad("bad"), whole("whole");
        failOnce(bad);
        EXPECT_TRUE(whole.isValid(good));
        EXPECT_FALSE(whole.isValid(bad));
        EXPECT_FALSE(whole.isValid(good)) << "a good part mends nothing";
        EXPECT_EQ(errorsOf(whole), errorsOf(bad));
    }
    QeXmlValidator whole("whole"), part("part");
    whole.checkEnumeration("a", "a");
    whole.addError(QeXmlSchemaError("first"));
    part.checkEnumeration("a", "b");
    part.checkEnumerations();
    part.addError(QeXmlSchemaError("last"));
    EXPECT_FALSE(whole.isValid(part));
    EXPECT_EQ(errorsOf(whole), (Texts{"first", "Enumeration error in: part", "last"}));
    EXPECT_FALSE(whole.isValid(whole)) << "with itself, each error once more";
    EXPECT_EQ(whole.getErrors().size(), 6u);
}

TEST(XmlValidator, CopiesShareNothing) {
    QeXmlValidator original("v");
    original.checkPattern("a", "a");
    QeXmlValidator copy(original);
    EXPECT_FALSE(copy.checkMinLength("", "1"));
    EXPECT_TRUE(copy.checkPattern("a", "a"));
    EXPECT_TRUE(original.isValid());
    original = copy;
    EXPECT_FALSE(original.isValid());
    copy.clear();
    EXPECT_EQ(errorsOf(original), Texts{"MinLength error in: v value =  facet value = 1"});
    EXPECT_TRUE(original.checkPattern("a", "a"));
}

// Grouped digits, a decimal comma, other blanks: as programs set them for their users.
TEST(XmlValidator, DoesNotDependOnTheLocale) {
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
    QeXmlValidator validator("v");
    validator.checkVectorBounds(1234567, 0, 1000);
    EXPECT_EQ(errorsOf(validator), Texts{"Bounds error in: vsize = 1234567 minOccurs = 0 maxOccurs = 1000"});
    EXPECT_TRUE(validator.checkPattern("TITLE", "(?i)^title$"));
    EXPECT_TRUE(validator.checkPattern("1.234", "^\\d\\.\\d{3}$"));
    std::locale::global(before);
}
