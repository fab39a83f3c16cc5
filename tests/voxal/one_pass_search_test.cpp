// The search in one pass, with ICU's own as the judge.

#include <gtest/gtest.h>
#include <random>
#include <string>
#include <unicode/uregex.h>
#include <vector>
#include <voxal/one_pass_search.h>

namespace {

constexpr int NoAnswer = -1;

// None when ICU does not take the pattern, or does not end.
int searchWithIcu(const std::u16string& pattern, const std::u16string& text) {
    UErrorCode status = U_ZERO_ERROR;
    const auto length = [](const std::u16string& units) { return static_cast<std::int32_t>(units.size()); };
    URegularExpression* expression =
        uregex_open(pattern.data(), length(pattern), UREGEX_ERROR_ON_UNKNOWN_ESCAPES, nullptr, &status);
    uregex_setTimeLimit(expression, 10, &status);
    uregex_setText(expression, text.data(), length(text), &status);
    const bool found = uregex_find(expression, 0, &status);
    uregex_close(expression);
    return U_FAILURE(status) ? NoAnswer : found;
}

int search(const std::u16string& pattern, const std::u16string& text) {
    auto plain = voxal::readPlainPattern(pattern);
    return plain ? voxal::searchInOnePass(*plain, text) : NoAnswer;
}

std::vector<std::u16string> split(const std::u16string& texts) {
    std::vector<std::u16string> parts(1);
    for (const char16_t unit : texts)
        if (unit == u' ')
            parts.emplace_back();
        else
            parts.back() += unit;
    return parts;
}

std::string shown(const std::u16string& text) {
    std::string result;
    for (const char16_t unit : text)
        result +=
            unit < 0x7F && unit > 0x20 ? std::string(1, static_cast<char>(unit)) : "<" + std::to_string(unit) + ">";
    return result;
}

bool givesNothingBack(const std::u16string& pattern) {
    std::size_t at = pattern.find(u'+');
    while (at != pattern.npos && (at == 0 || std::u16string_view(u"*+?}").find(pattern[at - 1]) == pattern.npos))
        at = pattern.find(u'+', at + 1);
    return at != pattern.npos;
}

TEST(OnePassSearch, ReadsPlainPatternsAsIcuDoes) {
    const auto texts = split(
        u"a b aa ab ba abc aab bca a\n a\r\n \na a\r a\u2028 a\u0085 a\n\n a\vb A k\u212A \u00E9 \u0663 a\u0301 "
        u"\U0001F600 a\U00020000b [ ] ^ - \\ {2} a.c a\u00A0b aaaabbbb abababab 1a _ \t \u017F \uFFFF ");
    const auto patterns = split(
        u"a| |b a|b|c (?:a|b)c (a)(b) (?<name>a)b () ^$ ^a$ a$ ^(?:a|b)\\z \\Aa\\Z $\\n a* ^a+$ ^a?b?$ ^a{2} ^a{2,}$ "
        u"^(?:ab){1,3}$ ^a{0}b ^a{0,1}c?$ ^(?:a{0,2}b)+$ a*?b a+?b a??b a{1,2}?b (a*)*b (?:a?)+$ (|a)*b ^(?:){2}a "
        u"(^a|b$) (?:^)*a $a|b . ^..$ ^.$ [a-b] [^a] [\\]a] [a^-] [[a-c]--[b]] [[a-z]&&[^b]] [\\d_] [[:L:]] "
        u"[\\p{Lu}\\u0663] [\\[] \\d \\D \\w ^\\W$ \\s \\S \\h \\H \\v \\V \\p{L} \\P{L} \\p{script=Han} \\t \\n \\r "
        u"\\f \\u00e9 \\. \\\\ \\[ \\{2\\} \\^ a\\-? \u00E9 \U0001F600 ^[\\U00020000a]+b ] \\x{1F600} (?i)a (?i)[k] "
        u"(?s)^.*$ (?is)A. (?i)[s] (?i)k (?i)\\.");
    for (const auto& pattern : patterns)
        for (const auto& text : texts)
            EXPECT_EQ(search(pattern, text), searchWithIcu(pattern, text)) << shown(pattern) << " in " << shown(text);
    EXPECT_EQ(search(u"", u""), true);
    EXPECT_EQ(search(u"^a\\u0000b$", std::u16string(u"a\0b", 3)), true);
}

TEST(OnePassSearch, LeavesOtherPatternsAlone) {
    const auto patterns = split(
        u"a(?=b) a(?!b) (?<=a)b (?<!a)b (?>a+)b a++b a*+b a?+b a{2}+b (a)\\1 (?<n>a)\\k<n> \\ba \\Ba \\Ga \\X \\R "
        u"\\Qa\\E [\\Qa\\E] (?x)a (?i:a) a(?i)b (?#a)b (?m)^a []a] [^]a] \\x41 \\0101 \\cA \\N{DIGIT\u2002ONE} (?i)ss "
        u"(?i)St (?i)fi (?i)\u00DF (?i)\\u00DF (?i)\\x{DF} (?:a{100}){11} a{1001} a{1000000000000}");
    for (const auto& pattern : patterns)
        EXPECT_EQ(search(pattern, u"a"), NoAnswer) << shown(pattern);
    EXPECT_EQ(search(std::u16string(1001, u'a'), u"a"), NoAnswer);
    EXPECT_EQ(search(std::u16string(1000, u'a'), u"a"), false);
    EXPECT_EQ(search(u"a{1000}", u"a"), false);
}

TEST(OnePassSearch, AgreesWithIcuOnPatternsByChance) {
    const auto pieces = split(u"a b c . [ab] [^a] ( (?: ) ) | * + ? {2} {0,2} {1,} ^ $ \\z *? \\w \\n a b");
    std::mt19937 random(20030520);
    int plain = 0;
    for (int round = 0; round < 30'000; ++round) {
        std::u16string pattern, text;
        for (auto left = random() % 10; left > 0; --left)
            pattern += pieces[random() % pieces.size()];
        for (auto left = random() % 7; left > 0; --left)
            text += u"aabbc\n\r"[random() % 7];
        const int expected = searchWithIcu(pattern, text);
        if (expected == NoAnswer || givesNothingBack(pattern)) continue;
        ++plain;
        ASSERT_EQ(search(pattern, text), expected) << shown(pattern) << " in " << shown(text);
    }
    EXPECT_GT(plain, 5'000);
}

}  // namespace
