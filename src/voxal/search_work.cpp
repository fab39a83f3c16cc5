#include <algorithm>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <voxal/search_work.h>

namespace voxal {

namespace {

bool isIn(std::string_view set, char byte) {
    return set.find(byte) != std::string_view::npos;
}

// Groups that look around or are not backtracked into. With the flag x, blanks
// inside let such a group be written in other ways, with w words are looked up.
bool opensFarSightedGroup(std::string_view at) {
    if (!at.starts_with("(?")) return false;
    at.remove_prefix(2);
    return (!at.empty() && isIn("=!><", at[0])) || at.substr(0, at.find_first_of(":)")).find_first_of("xw") != at.npos;
}

// Back references, and characters with all their marks.
bool isFarSightedEscape(std::string_view at) {
    return at.size() > 1 && at[0] == '\\' && isIn("123456789kX", at[1]);
}

// `)*+`, `)?+`, `)++` or `){1,2}+`: what the group has matched is not backtracked into.
bool endsFarSightedGroup(std::string_view at) {
    if (!at.starts_with(')') || at.size() < 3) return false;
    const std::size_t quantifier = at[1] == '{' ? at.find('}') : isIn("*+?", at[1]) ? 1 : at.npos;
    return quantifier < at.size() - 1 && at[quantifier + 1] == '+';
}

// Whether one step may run over the whole text. Does not tell quoted text apart,
// which costs such a pattern no more than a smaller budget.
bool looksFar(std::string_view pattern) {
    for (; !pattern.empty(); pattern.remove_prefix(1))
        if (isFarSightedEscape(pattern) || opensFarSightedGroup(pattern) || endsFarSightedGroup(pattern)) return true;
    return false;
}

bool looksForWordBoundaries(std::string_view pattern) {
    return pattern.find("\\b") != pattern.npos || pattern.find("\\B") != pattern.npos;
}

bool isMark(UChar32 character) {
    return u_hasBinaryProperty(character, UCHAR_GRAPHEME_EXTEND) || u_charType(character) == U_FORMAT_CHAR;
}

// The longest run of characters that belong to the one in front of them, in units:
// a word boundary is looked for behind it. The text has no unpaired surrogates.
std::ptrdiff_t longestRunOfMarks(std::u16string_view text) {
    std::ptrdiff_t longest = 0, run = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::ptrdiff_t length = (text[at] & 0xF800) == 0xD800 ? 2 : 1;
        const UChar32 character = length == 1 ? text[at] : U16_GET_SUPPLEMENTARY(text[at], text[at + 1]);
        run = isMark(character) ? run + length : 0;
        longest = std::max(longest, run);
        at += length == 2;
    }
    return longest;
}

}  // namespace

PatternSight::PatternSight(std::string_view pattern)
    : length(std::ssize(pattern)), isFar(looksFar(pattern)), findsWords(looksForWordBoundaries(pattern)) {}

std::int64_t PatternSight::reach(std::u16string_view text) const {
    if (isFar) return length + std::ssize(text);
    return findsWords ? length + longestRunOfMarks(text) : length;
}

SearchWork::SearchWork(const PatternSight& sight, std::u16string_view text) {
    constexpr std::int64_t Steps = 50'000'000, StepsPerUnit = 64, CharactersPerStep = 32;
    weight = 1 + sight.reach(text) / CharactersPerStep;
    allowed = Steps + StepsPerUnit * std::ssize(text);
}

}  // namespace voxal
