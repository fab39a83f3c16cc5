// Patterns: what they match, what is refused, and what becomes of those that would take forever.

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <support/documents.h>
#include <support/messages.h>

#include <tessit/schema/xml_validator.h>

using tessit::test::repeat;

namespace {

constexpr std::size_t MiB = 1024 * 1024;

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
        {"", "^$", true},
        {"a", "", true},
        {"\xF0\x9F\x98\x80", "^.$", true},  // one character, two units
        {"\xC3\x89", "(?i)\xC3\xA9", true},
        {"TITLE", "(?i)^title$", true},  // in Turkey, too
        {{"a\0b", 3}, {"a\0b", 3}, true},

        // Malformed text stands for the replacement character, never for what was hidden in it.
        {"\xC3", "^\\uFFFD$", true},
        {"\xC0\xAF", "/", false},
        {"\xED\xA0\x80", "^\\uFFFD+$", true},
        {"a\xC3", "^a\xEF\xBF\xBD$", true},  // which a pattern may well name
    };
    for (const auto& row : Cases)
        EXPECT_EQ(matches(row.value, row.pattern), row.matched) << row.value << " against " << row.pattern;
}

TEST(Patterns, NameWhatIsWrongWithThemAndWhere) {
    constexpr struct {
        const char *pattern, *place;
    } Cases[] = {
        {"(abc", "line 1, character 4: a parenthesis has no counterpart"},
        {"a\n[b", "line 2, character 2: a set has no closing bracket"},
        {"\xC3\xA9*+*", "line 1, character 4: this cannot stand here"},
        {"a\n\xF0\x9F\x98\x80\\p{IsBasicLatin}(", "line 2, character 17: unknown character property"},
        {"a\\ib", "line 1, character 3: unknown escape sequence"},
        {"a\\N{NOPE}b", "line 1, character 9: unknown character name"},
        {"\xC3\xA9\xEF\xBF\xBD\xF0\x9F\x98\x80\xE9", "byte 9: malformed UTF-8"},
    };
    for (const auto& [pattern, place] : Cases)
        EXPECT_EQ(errorOf("a", pattern), std::string("Invalid pattern '") + pattern + "' at " + place);
    EXPECT_EQ(errorOf("a", repeat("\xC3\xA9,", 21846)), "Invalid pattern '" + repeat("\xC3\xA9,", 21) +
                                                            "...' at byte 65536: its 65538 bytes are more than 65536");
    EXPECT_EQ(errorOf("a", std::string(65536, 'a')), "");
    for (const char* opener : {"(", "[", "(?=", "(a|"})
        EXPECT_NE(errorOf("a", repeat(opener, 10'000)), "") << opener;
}

TEST(Patterns, LeaveTheValidatorAsItWasWhenTheyCannotBeUsed) {
    const std::string letters(50, 'a');
    QeXmlValidator validator("v");
    EXPECT_NE(errorOf(validator, "a", "("), "");
    EXPECT_EQ(errorOf(validator, letters, "(a+)+b"),
              "Pattern '(a+)+b' takes too many steps on a text of 50 UTF-16 units");
    EXPECT_TRUE(validator.checkPatterns() && validator.isValid());
    EXPECT_TRUE(validator.checkPattern("aab", "(a+)+b")) << "the pattern itself stays usable";
}

TEST(Patterns, TakeLongTexts) {
    const std::string letters(MiB, 'a'), words = repeat("some words, ", MiB / 12);
    EXPECT_FALSE(matches(letters, "^(?:b|c|d|e|f|g|h|i|j|k|l|m|n|o|p|a)*@")) << "many steps a letter";
    EXPECT_TRUE(matches(words, "^(\\w+,?\\s*)+$"));
    EXPECT_FALSE(matches(words.substr(0, MiB / 32), "^(?=.*!)[a-z, ]*$")) << "looks over all of it";
    EXPECT_EQ(errorOf(letters, "^((((((((a|b)|c)|d)|e)|f)|g)|h)|i)*$"),
              "Pattern '^((((((((a|b)|c)|d)|e)|f)|g)|h)|i)*$' takes too much memory on a text of 1048576 UTF-16 units");
}

// Compiling each of these takes a tenth of a second, so doing it anew in each check would take minutes.
TEST(Patterns, StayCompiled) {
    QeXmlValidator validator("v");
    const QeCString pattern(repeat("\\p{Ll}", 10'000)), other(repeat("\\p{Lu}", 10'000));
    for (int i = 0; i < 2'000; ++i)
        EXPECT_FALSE(validator.checkPattern("", pattern) || validator.checkPattern("", other));
}

// Far more patterns than are kept, each of them right every time.
TEST(Patterns, AreNotConfusedWithOneAnother) {
    QeXmlValidator validator("v");
    for (int i = 0; i < 300; ++i) {
        const QeCString number(std::string_view(std::to_string(i % 100)));
        EXPECT_TRUE(validator.checkPattern(number, "^" + number + "$"));
        EXPECT_FALSE(validator.checkPattern("x", "^" + number + "$"));
    }
}
