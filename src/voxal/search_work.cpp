#include <algorithm>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <vector>
#include <voxal/search_work.h>

namespace voxal {

namespace {

bool isIn(std::string_view set, char byte) {
    return set.find(byte) != std::string_view::npos;
}

template <typename Predicate>
bool hasAnywhere(std::string_view pattern, Predicate isHere) {
    for (; !pattern.empty(); pattern.remove_prefix(1))
        if (isHere(pattern)) return true;
    return false;
}

// As in `(?i)` and `(?m-sx:`.
bool setsFlag(std::string_view at, std::string_view flags) {
    constexpr std::string_view All = "idmsuvwx-";
    if (!at.starts_with("(?")) return false;
    at.remove_prefix(2);
    return at.substr(0, at.find_first_not_of(All)).find_first_of(flags) != at.npos;
}

bool opensFarSightedGroup(std::string_view at) {
    constexpr std::string_view Openers[] = {"(?=", "(?!", "(?<=", "(?<!", "(?>"};
    return std::ranges::any_of(Openers, [at](std::string_view opener) { return at.starts_with(opener); });
}

// `)*+`, `)?+`, `)++` or `){1,2}+`: what the group has matched is not backtracked into.
bool endsFarSightedGroup(std::string_view at) {
    if (!at.starts_with(')') || at.size() < 3) return false;
    const std::size_t quantifier = at[1] == '{' ? at.find('}') : isIn("*+?", at[1]) ? 1 : at.npos;
    return quantifier < at.size() - 1 && at[quantifier + 1] == '+';
}

// Whether one step may run over the whole text: through groups that look around or are not backtracked into, which
// blanks can hide under the flag x; by characters with all their marks; by words, with the flag w. Quoted text is not
// told apart, which costs such a pattern no more than a smaller budget.
bool looksFarAt(std::string_view at) {
    return opensFarSightedGroup(at) || endsFarSightedGroup(at) || setsFlag(at, "xw") || at.starts_with("\\X");
}

bool refersBackAt(std::string_view at) {
    return at.size() > 1 && at[0] == '\\' && isIn("123456789k", at[1]);
}

// What an escape takes besides its bytes: as long as it takes to compare so many.
Stretch escapeAt(std::string_view at) {
    constexpr Stretch Boundary{6, 1}, WithMarks{24, 0};
    if (at.starts_with("\\b") || at.starts_with("\\B")) return Boundary;
    return at.starts_with("\\X") ? WithMarks : Stretch();
}

Stretch& operator+=(Stretch& front, const Stretch& behind) {
    front.length += behind.length;
    front.boundaries += behind.boundaries;
    return front;
}

Stretch longer(const Stretch& a, const Stretch& b) {
    return {std::max(a.length, b.length), std::max(a.boundaries, b.boundaries)};
}

// What repeats in braces may stand there one by one, up to so many.
constexpr std::int64_t WrittenOut = 10;

// Finds the longest stretch that a pattern can have: no part of it is run through twice without a choice, and of
// alternatives it is one.
class StretchFinder {
public:
    Stretch find(std::string_view text) {
        pattern = text;
        while (!pattern.empty())
            passConstruct();
        while (open.size() > 1)
            closeGroup();
        return endGroup();
    }

private:
    struct Group {
        Stretch alternative;  // the one that is being read
        Stretch longest;      // of those in front of it
    };

    void passConstruct() {
        switch (pattern[0]) {
            case '(':
                open.emplace_back();
                break;
            case '|':
                endAlternative();
                break;
            case ')':
                if (open.size() > 1) closeGroup();
                break;
            case '{':
                add({WrittenOut, 0});
                break;
            case '\\':
                add(escapeAt(pattern));
                break;
            case '[':
                return passSet();
        }
        take(unitLength());
    }

    // A bracket that stands first is a member.
    void passSet() {
        std::size_t depth = 0;
        do {
            const char byte = pattern[0];
            take(unitLength());
            if (byte == ']') --depth;
            if (byte != '[') continue;
            ++depth;
            if (pattern.starts_with('^')) take(1);
            if (pattern.starts_with(']')) take(1);
        } while (depth > 0 && !pattern.empty());
    }

    // Of a byte, or an escape.
    std::size_t unitLength() const {
        if (pattern[0] != '\\' || pattern.size() == 1) return 1;
        if (isIn("pPxN", pattern[1]) && pattern.substr(2).starts_with('{')) return pattern.find('}');
        return pattern[1] == 'c' ? 3 : 2;
    }

    void take(std::size_t length) {
        const std::string_view taken = pattern.substr(0, length);
        pattern.remove_prefix(taken.size());
        add({std::ssize(taken), 0});
    }

    void add(const Stretch& stretch) { open.back().alternative += stretch; }

    void endAlternative() {
        Group& group = open.back();
        group.longest = longer(group.longest, group.alternative);
        group.alternative = {};
    }

    Stretch endGroup() {
        endAlternative();
        return open.back().longest;
    }

    void closeGroup() {
        const Stretch longest = endGroup();
        open.pop_back();
        add(longest);
    }

    std::string_view pattern;  // what is left of it
    std::vector<Group> open{1};
};

// Quoted text and comments can look like anything.
bool isPlain(std::string_view pattern) {
    return !hasAnywhere(pattern, [](std::string_view at) {
        return at.starts_with("\\Q") || at.starts_with("(?#") || setsFlag(at, "x");
    });
}

Stretch wholeOf(std::string_view pattern) {
    Stretch whole;
    for (; !pattern.empty(); pattern.remove_prefix(1)) {
        whole += {pattern[0] == '{' ? 1 + WrittenOut : 1, 0};
        whole += escapeAt(pattern);
    }
    return whole;
}

Stretch longestStretch(std::string_view pattern) {
    return isPlain(pattern) ? StretchFinder().find(pattern) : wholeOf(pattern);
}

bool isMark(UChar32 character) {
    return u_hasBinaryProperty(character, UCHAR_GRAPHEME_EXTEND) || u_charType(character) == U_FORMAT_CHAR;
}

bool isSurrogate(char16_t unit) {
    return (unit & 0xF800) == 0xD800;
}

// The longest run of characters that belong to the one in front of them, in units:
// a word boundary is looked for behind it. The text has no unpaired surrogates.
std::int64_t longestRunOfMarks(std::u16string_view text) {
    std::int64_t longest = 0, run = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::int64_t length = isSurrogate(text[at]) ? 2 : 1;
        const UChar32 character = length == 1 ? text[at] : U16_GET_SUPPLEMENTARY(text[at], text[at + 1]);
        run = isMark(character) ? run + length : 0;
        longest = std::max(longest, run);
        at += length == 2;
    }
    return longest;
}

}  // namespace

PatternSight::PatternSight(std::string_view pattern)
    : stretch(longestStretch(pattern)),
      saved(std::ranges::count_if(pattern, [](char byte) { return isIn("({+", byte); })),
      looksFar(hasAnywhere(pattern, looksFarAt)),
      refersBack(hasAnywhere(pattern, refersBackAt)),
      ignoresCase(hasAnywhere(pattern, [](std::string_view at) { return setsFlag(at, "i"); })) {}

std::int64_t PatternSight::reach(std::u16string_view text) const {
    constexpr std::int64_t MostFolded = 3;    // characters that another is without case
    constexpr std::int64_t FoldingBoth = 3;   // takes so much longer
    constexpr std::int64_t SearchingSet = 8;  // for what is not in its tables, in proportion to being run over
    const std::int64_t size = std::ssize(text), repeated = refersBack ? size : 0;
    std::int64_t sum = saved + stretch.length + repeated;
    if (ignoresCase) sum += FoldingBoth * (std::min(stretch.length, MostFolded * size) + repeated);
    if (stretch.boundaries > 0) sum += stretch.boundaries * longestRunOfMarks(text);
    if (looksFar) sum += size / 2 * (std::ranges::any_of(text, isSurrogate) ? SearchingSet : 1);
    return sum;
}

SearchWork::SearchWork(const PatternSight& sight, std::u16string_view text) {
    constexpr std::int64_t CharactersPerStep = 8;
    weight = 1 + sight.reach(text) / CharactersPerStep;
}

}  // namespace voxal
