// What searches are charged with: the weight of a step, and how the steps grow with the text.

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <support/documents.h>
#include <voxal/regular_expression.h>
#include <voxal/search_work.h>

using tessit::test::repeat;

namespace {

constexpr std::size_t Length = 3'200;  // of the texts; a step that may look at all of it counts a hundred more

std::int64_t weight(std::string_view pattern, const std::u16string& text) {
    return voxal::SearchWork(voxal::PatternSight(pattern), text).stepWeight();
}

std::int64_t workOf(const std::string& pattern, const std::string& text) {
    return QeURegularExpression(QeCString(pattern)).search(text).getWork();
}

}  // namespace

// One, and one more for each 8 characters: of the longest way through the pattern without a choice, with all groups and
// counters, and of the text where it is run over.
TEST(SearchWork, WeighsAStepByWhatItMayLookAt) {
    const std::u16string letters(Length, u'a'), marks(Length, u'\u0301');
    const std::string literal(800, 'a');
    const struct {
        std::string pattern;
        std::int64_t weight;
        std::u16string text;
    } Cases[] = {
        {"(a+)+b", 2, letters},
        {"^[0-9]{1,9}", 3, letters},  // up to ten of a kind may stand there one by one
        {literal, 101, letters},
        {"(?i)" + literal, 403, letters},  // folding takes longer
        {"(?i)" + literal, 102, u"a"},     // where there is something to fold
        {repeat("()", 400), 151, letters},

        // Of alternatives one is passed through, and each of what follows another.
        {"(?:" + literal + "|b|" + literal + ")", 101, letters},
        {"(?:(?:" + literal + "|b)" + literal + "|b)" + literal + "b", 302, letters},
        {literal + "\\|" + literal, 201, letters},
        {literal + "[]|]" + literal, 201, letters},
        {literal + "[^]a[]|]\\]|]" + literal, 202, letters},
        {literal + "[\\c]|]" + literal, 201, letters},
        {literal + "\\Q|\\E" + literal, 201, letters},
        {literal + "(?#|)" + literal, 201, letters},
        {"(?x)" + literal + "#|\n" + literal, 402, letters},

        // What looks over half the text, and through sets that are searched for pairs of surrogates.
        {"(?=a)b", 201, letters},
        {"(?!a)b", 201, letters},
        {"(?<=a)b", 202, letters},
        {"(?<!a)b", 202, letters},
        {"(?>a*)b", 202, letters},
        {"(?x)( ?=a)b", 202, letters},
        {"(?:a*)*+b", 202, letters},
        {"(?:a*)?+b", 202, letters},
        {"(?:a*)++b", 202, letters},
        {"(?:a*){1,2}+b", 204, letters},
        {"(?=a)b", 1601, letters.substr(2) + u"\U000E0100"},
        {"\\Xb", 204, letters},

        // What is compared with the text.
        {"(a*)\\1b", 402, letters},
        {"(?<n>a)\\k<n>", 402, letters},
        {"(?i)(a*)\\1", 1606, letters},

        // Word boundaries are looked for behind marks, each anew.
        {"\\b", 2, letters},
        {"\\B\\B", 803, letters + marks + u"ab" + marks + u"a"},
        {"\\b|\\b", 402, u"a\U000E0100" + marks.substr(2)},
        {"[\\c[]\\b\\b", 803, marks},
        {"\\Q[\\E\\b\\b", 803, marks},
        {"(?w)\\bb", 202, letters},
    };
    for (const auto& [pattern, expected, text] : Cases)
        EXPECT_EQ(weight(pattern, text), expected) << pattern.substr(0, 20) << " on " << text.size();
}

// Nothing but the places where it is tried is counted for the first; the others may take too many steps before any is.
TEST(SearchWork, EndsWhatTakesFewButCostlySteps) {
    EXPECT_THROW(workOf(std::string(60'000, 'a') + "b", std::string(250'000, 'a')), QeURegexError);
    EXPECT_THROW(workOf("(?i)" + std::string(60'000, 'a') + "b", std::string(250'000, 'a')), QeURegexError);
    EXPECT_THROW(workOf("^(?!b)a", std::string(161'000, 'a')), QeURegexError);
    EXPECT_NO_THROW(workOf("^(?!b)a", std::string(159'000, 'a')));
}

// By which power of the text's length the steps grow: where it is 1, values may come from strangers.
TEST(SearchWork, GrowsWithTheText) {
    const struct {
        const char *pattern, *part, *behind;
        std::size_t parts;
        int power;
    } Cases[] = {
        {"^[0-9]{1,20}\\z", "1", "", 200'000, 0},
        {"^[a-z]*\\z", "a", "!", 200'000, 1},
        {"^[^=]*=.*\\z", "a", "", 200'000, 1},
        {"^[a-z]+(?:,[a-z]+)*\\z", "a,", "!", 200'000, 1},
        {"^(?:red|green|blue|,)*\\z", "red,", "!", 200'000, 1},
        {"^(?:[a-z]++,? ?)*\\z", "ab, ", "!", 200'000, 1},
        {"^[a-z]+[a-z0-9]*\\z", "a", "!", 2'000, 2},  // neighbours that match the same
        {"[a-z]+@", "a", "", 2'000, 2},               // tried at each place
        {"^.*.*.*=.*$", "a", "", 200, 3},
        {"^.*a.*a.*=", "a", "", 200, 3},
    };
    for (const auto& [pattern, part, behind, parts, power] : Cases) {
        const auto steps = [&](std::size_t count) {
            return static_cast<double>(10'000 + workOf(pattern, repeat(part, count) + behind));
        };
        EXPECT_EQ(std::lround(std::log2(steps(2 * parts) / steps(parts))), power) << pattern << " on " << part;
    }
    EXPECT_THROW(workOf("^([a-z]+,? ?)*$", std::string(40, 'a') + "!"), QeURegexError)
        << "a repetition in another: doubles each time";
}
