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

TEST(SearchWork, WeighsAStepByWhatItMayLookAt) {
    const std::u16string letters(Length, u'a'), marks(Length, u'\u0301');
    for (const char* nearSighted : {"(a+)+b", "(?i)[a-c]*@", "(?:a*)+(b){1,2}", "(?:a|b){1,2}c", "a*+b{1,2}+", "\\w"})
        EXPECT_EQ(weight(nearSighted, letters), 1) << nearSighted;
    for (const char* farSighted :
         {"(?=a)b", "(?!a)b", "(?<=a)b", "(?<!a)b", "(?>a*)b", "(?x)( ?=a)b", "(?w)\\bb", "(a*)\\1b", "(?<n>a)\\k<n>b",
          "\\Xb", "(?:a*)*+b", "(?:a*)?+b", "(?:a*)++b", "(?:a*){1,2}+b"})
        EXPECT_EQ(weight(farSighted, letters), 101) << farSighted;
    for (const char* boundary : {"\\bb", "\\Bb"}) {  // is looked for behind marks
        EXPECT_EQ(weight(boundary, letters), 1) << boundary;
        EXPECT_EQ(weight(boundary, letters + marks + u"ab" + marks + u"a"), 101) << boundary;
        EXPECT_EQ(weight(boundary, u"a\U000E0100" + marks.substr(2)), 101) << boundary << " and a mark of two units";
    }
    EXPECT_EQ(weight("(?i)" + std::string(60'000, 'a') + "b", letters), 1876) << "a literal that may be compared";
}

// Nothing but the places where it is tried is counted for the first; the others may take too many steps before any is.
TEST(SearchWork, EndsWhatTakesFewButCostlySteps) {
    EXPECT_THROW(workOf(std::string(60'000, 'a') + "b", std::string(250'000, 'a')), QeURegexError);
    EXPECT_THROW(workOf("^(?!b)a", std::string(202'000, 'a')), QeURegexError);
    EXPECT_NO_THROW(workOf("^(?!b)a", std::string(200'000, 'a')));
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
