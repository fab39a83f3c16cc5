// Patterns: what they match, what is refused, and what becomes of those that would take forever.

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <support/messages.h>

#include <tessit/schema/xml_validator.h>

namespace {

constexpr std::size_t MiB = 1024 * 1024;

std::string repeat(std::string_view part, std::size_t length) {
    std::string text;
    while (text.size() < length)
        text += part;
    return text;
}

bool matches(std::string_view value, std::string_view pattern) {
    return QeXmlValidator("v").checkPattern(QeCString(value), QeCString(pattern));
}

std::string errorOf(QeXmlValidator& validator, std::string_view value, std::string_view pattern) {
    return messageOf<Qexmsg>([&] { validator.checkPattern(QeCString(value), QeCString(pattern)); });
}

std::string errorOf(std::string_view value, std::string_view pattern) {
    QeXmlValidator validator("v");
    return errorOf(validator, value, pattern);
}

}  // namespace

TEST(Patterns, MatchAnywhereInUtf8Text) {
    constexpr struct {
        std::string_view value, pattern;
        bool matched;
    } Cases[] = {
        {"abc123def", "[0-9]{3}", true},
        {"abc12def", "[0-9]{3}", false},
        {"abc", "", true},
        {"", "", true},
        {"", "^$", true},
        {"\xC3\xA9", "^.$", true},
        {"\xF0\x9F\x98\x80", "^.$", true},  // one character, two units
        {"\xC3\xA9t\xC3\xA9", "^\\p{L}+$", true},
        {"\xC3\xA9", "\xC3\xA9", true},
        {"\xC3\x89", "(?i)\xC3\xA9", true},
        {"title", "(?i)TITLE", true},
        {{"a\0b", 3}, "^a\\x00b$", true},
        {{"a\0b", 3}, {"a\0b", 3}, true},

        // Malformed text stands for the replacement character, never for what was hidden in it.
        {"a\xFF", "^a\\uFFFD$", true},
        {"\xC3", "^\\uFFFD$", true},
        {"\xC0\xAF", "/", false},
        {"\xED\xA0\x80", "^\\uFFFD+$", true},
        {"\xF4\x90\x80\x80", "[^\\uFFFD]", false},
        {"a\xC3", "^a\xEF\xBF\xBD$", true},  // which a pattern may well name
    };
    for (const auto& row : Cases)
        EXPECT_EQ(matches(row.value, row.pattern), row.matched) << row.value << " against " << row.pattern;
}

TEST(Patterns, NameWhatIsWrongWithThemAndWhere) {
    constexpr struct {
        const char* pattern;
        const char* error;
    } Cases[] = {
        {"(abc", "Invalid pattern '(abc' at line 1, character 4: a parenthesis has no counterpart"},
        {"abc)d", "Invalid pattern 'abc)d' at line 1, character 4: a parenthesis has no counterpart"},
        {"a\n[b", "Invalid pattern 'a\n[b' at line 2, character 2: a set has no closing bracket"},
        {"[z-a]", "Invalid pattern '[z-a]' at line 1, character 4: the range has no end, or one before its beginning"},
        {"*a", "Invalid pattern '*a' at line 1, character 1: this cannot stand here"},
        {"\xC3\xA9*+*", "Invalid pattern '\xC3\xA9*+*' at line 1, character 4: this cannot stand here"},
        {"\\p{Nope}", "Invalid pattern '\\p{Nope}' at line 1, character 8: unknown character property"},
        {"a\n\xF0\x9F\x98\x80\\p{IsBasicLatin}(",
         "Invalid pattern 'a\n\xF0\x9F\x98\x80\\p{IsBasicLatin}(' at line 2, character 17: unknown character property"},
        {"a\\ib", "Invalid pattern 'a\\ib' at line 1, character 3: unknown escape sequence"},
        {"[\\i]", "Invalid pattern '[\\i]' at line 1, character 3: unknown escape sequence"},
        {"a\\N{NOPE}b", "Invalid pattern 'a\\N{NOPE}b' at line 1, character 9: unknown character name"},
        {"\\", "Invalid pattern '\\' at line 1, character 1: unknown escape sequence"},
        {"\xC3\xA9\xEF\xBF\xBD\xF0\x9F\x98\x80\xE9",
         "Invalid pattern '\xC3\xA9\xEF\xBF\xBD\xF0\x9F\x98\x80\xE9' at byte 9: malformed UTF-8"},
    };
    for (const auto& row : Cases)
        EXPECT_EQ(errorOf("a", row.pattern), row.error);
    EXPECT_EQ(errorOf("a", repeat("\xC3\xA9,", 65537)), "Invalid pattern '" + repeat("\xC3\xA9,", 63) +
                                                            "...' at byte 65536: its 65538 bytes are more than 65536");
    EXPECT_EQ(errorOf("a", std::string(65536, 'a')), "");
    for (const char* opener : {"(", "[", "(?:", "(?=", "(?<=", "(a|"})
        EXPECT_NE(errorOf("a", repeat(opener, 60'000)), "") << opener;
}

TEST(Patterns, LeaveTheValidatorAsItWasWhenTheyCannotBeUsed) {
    QeXmlValidator validator("v");
    EXPECT_NE(errorOf(validator, "a", "("), "");
    EXPECT_TRUE(validator.checkPatterns());
    EXPECT_TRUE(validator.isValid());
    EXPECT_TRUE(validator.checkPattern("a", "a"));
    EXPECT_NE(errorOf(validator, "a", "("), "");
    EXPECT_NE(errorOf(validator, std::string(50, 'a'), "(a+)+(?=b)"), "");
    EXPECT_TRUE(validator.isValid());
    EXPECT_TRUE(validator.getErrors().empty());
    EXPECT_TRUE(validator.checkPattern("aab", "(a+)+(?=b)")) << "the pattern itself stays usable";
}

// Each would run for years, or for hours, if it were let.
TEST(Patterns, EndInAnErrorInsteadOfTakingForever) {
    const std::string manyGroups = "(?:" + repeat("(x)", 6'000) + "|(a+)+b)";
    const struct {
        std::string value, pattern;
    } Cases[] = {
        {std::string(50, 'a'), "(a+)+\\bb"},
        {std::string(100, 'a'), "(?:(?:a?){40}){40}a{1600}"},
        {std::string(MiB / 8, 'a'), "(a+)+\\bb"},
        {std::string(MiB / 8, 'a'), "(?:(?=[a-c]*)a)*b"},  // looks over everything in each step
        {std::string(MiB / 8, 'a'), "(?x) (?:( ?=[a-c]*)a)*b"},
        {std::string(MiB / 8, 'a'), "(?>[a-c]+)d"},
        {std::string(MiB / 8, 'a'), "(a*)\\1b"},
        {std::string(MiB / 8, 'a'), "(?<n>a*)\\k<n>b"},
        {std::string(20, 'a'), manyGroups},  // few steps, each of which saves two thousand groups
    };
    for (const auto& [value, pattern] : Cases)
        EXPECT_NE(errorOf(value, pattern).find("takes too many steps on a text of"), std::string::npos)
            << pattern.substr(0, 30);
    EXPECT_EQ(errorOf(std::string(50, 'a'), "(a+)+\\bb"),
              "Pattern '(a+)+\\bb' takes too many steps on a text of 50 UTF-16 units");
}

// Trying one way after the other would take quadratic time, or exponential.
TEST(Patterns, FinishInLinearTimeWhereTheyArePlain) {
    const std::string letters(MiB, 'a'), spread = repeat("word;", 50'000);
    const struct {
        std::string value;
        const char* pattern;
        bool matched;
    } Cases[] = {
        {letters.substr(0, 5'000), "[a-z]+@[a-z]+", false},
        {letters, "[a-z]+@[a-z]+", false},
        {letters.substr(0, 50'000) + "@b", "[a-z]+@[a-z]+", true},
        {letters.substr(0, 50'000), "(?i)[A-Z]+\\s*=", false},
        {std::string(50'000, ' ') + ".", "\\s+$", false},
        {std::string(50'000, '<'), "<[^>]*/>", false},
        {spread, "(?:\\w+;)+=", false},
        {std::string(50, 'a'), "(a+)+b", false},
        {std::string(50, 'a') + "b", "(?:(a+)+c|b)", true},
        {std::string(100, 'a') + "b", "^(a|aa)+$", false},
        {letters.substr(0, 50'000), "[a-c]*[a-c]*d", false},
        {repeat("\xD0\xB6", 50'000), "(\\p{Cyrillic}+)+!", false},
    };
    for (const auto& row : Cases)
        EXPECT_EQ(matches(row.value, row.pattern), row.matched) << row.pattern;
}

TEST(Patterns, TakeTextsOfAMebibyte) {
    const std::string letters(MiB, 'a');
    const std::string words = repeat("some words, ", MiB), someWords = words.substr(0, MiB / 32);
    const struct {
        const std::string& value;
        const char* pattern;
        bool matched;
    } Cases[] = {
        {letters, "^(a|b)*$", true},
        {letters, "^(a|b)*c$", false},
        {letters, "^(?:b|c|d|e|f|g|h|i|j|k|l|m|n|o|p|a)*$", true},  // many steps a letter
        {letters, "^([a-z]{4})*$", true},
        {letters, "^((((((((a|b)|c)|d)|e)|f)|g)|h)|i)*$", true},  // more groups than the stack has room for
        {letters, "^(?:.|\\n)*$", true},
        {letters, "b", false},
        {letters, "a$", true},
        {words, "^(\\w+,?\\s*)+$", true},
        {words, "^([a-z]+,? )*$", true},
        {words, "^([a-z]+, ?)*$", false},
        {someWords, "^(?!.*!)[a-z, ]*$", true},
        {someWords, "^(?=.*!)[a-z, ]*$", false},
    };
    for (const auto& row : Cases)
        EXPECT_EQ(matches(row.value, row.pattern), row.matched) << row.pattern;
    EXPECT_EQ(
        errorOf(letters, "^((((((((a|b)|c)|d)|e)|f)|g)|h)|i)*\\b$"),
        "Pattern '^((((((((a|b)|c)|d)|e)|f)|g)|h)|i)*\\b$' takes too much memory on a text of 1048576 UTF-16 units");
}

// The budget is each check's own.
TEST(Patterns, MayUseTheirBudgetAgainAndAgain) {
    QeXmlValidator validator("v");
    std::string value(10, 'a');
    while (errorOf(validator, value, "(a+)+(?=b)").empty())
        value += 'a';
    value.pop_back();  // the steps double with each letter: this takes at least a third of what is allowed
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(errorOf(validator, value, "(a+)+(?=b)"), "");
}

// Compiling each of these takes a tenth of a second, so doing it anew in each check would take minutes.
TEST(Patterns, StayCompiled) {
    QeXmlValidator validator("v");
    const QeCString pattern(repeat("\\p{Ll}", 16 * 1024)), other(repeat("\\p{Lu}", 16 * 1024));
    for (int i = 0; i < 2'000; ++i) {
        EXPECT_FALSE(validator.checkPattern("", pattern));
        EXPECT_FALSE(validator.checkPattern("", other));
        EXPECT_TRUE(validator.checkPattern("b", "^[ab]$"));
        validator.clear();
    }
}

// Far more patterns than are kept, each of them right every time.
TEST(Patterns, AreNotConfusedWithOneAnother) {
    QeXmlValidator validator("v");
    for (int round = 0; round < 3; ++round)
        for (int i = 0; i < 100; ++i) {
            const QeCString number(std::string_view(std::to_string(i)));
            EXPECT_TRUE(validator.checkPattern(number, "^" + number + "$"));
            EXPECT_FALSE(validator.checkPattern("x", "^" + number + "$"));
        }
}
