#include <algorithm>
#include <unicode/uregex.h>
#include <voxal/plain_pattern.h>
#include <voxal/u_string.h>

namespace voxal {

namespace {

bool isOneOf(std::u16string_view characters, char16_t unit) {
    return characters.find(unit) != std::u16string_view::npos;
}

bool isLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

bool isDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}

// Some characters are equal to two or three others when case is ignored, such as
// the sharp s to "ss": that is no matter of single characters.
bool foldsToSeveral(std::u16string_view pattern) {
    char16_t last = 0;
    for (const char16_t unit : pattern) {
        const auto lower = static_cast<char16_t>(unit | 0x20);
        if (unit >= 0x80 || (last == u's' && isOneOf(u"st", lower)) || (last == u'f' && isOneOf(u"fil", lower)))
            return true;
        last = lower;
    }
    return false;
}

// Reads a pattern from front to back. ICU has seen it before: groups are not nested
// too deeply for a call each, and what makes no sense need not be told from what is
// not supported.
class Reader {
public:
    explicit Reader(std::u16string_view pattern) : rest(pattern) {}

    std::optional<PlainPattern> read() {
        if (rest.find(u"\\Q") != rest.npos) giveUp();  // quoting
        readFlags();
        result.instructions = readAlternatives();
        if (!rest.empty()) giveUp();
        result.instructions.push_back({Instruction::Match});
        if (!plain) return std::nullopt;
        return std::move(result);
    }

private:
    // Instructions that go on behind their last one.
    using Block = std::vector<Instruction>;

    struct Repetition {
        std::size_t least, most;
    };
    static constexpr std::size_t Endless = SIZE_MAX;

    void readFlags() {
        const std::size_t end = rest.find_first_not_of(u"is", 2);
        if (!rest.starts_with(u"(?") || end == 2 || end >= rest.size() || rest[end] != u')') return;
        if (isOneOf(rest.substr(2, end - 2), u'i')) flags |= UREGEX_CASE_INSENSITIVE;
        if (isOneOf(rest.substr(2, end - 2), u's')) flags |= UREGEX_DOTALL;
        skip(end + 1);
        if (ignoresCase() && foldsToSeveral(rest)) giveUp();
    }

    Block readAlternatives() {
        Block block = readSequence();
        while (take(u'|'))
            block = either(block, readSequence());
        return block;
    }

    Block either(const Block& left, const Block& right) {
        Block block{{Instruction::Split, 1, distance(left.size() + 2)}};
        append(block, left);
        block.push_back({Instruction::Jump, distance(right.size() + 1)});
        append(block, right);
        return block;
    }

    Block readSequence() {
        Block block;
        while (!rest.empty() && !isOneOf(u"|)", rest[0]))
            append(block, readPiece());
        return block;
    }

    Block readPiece() {
        Block once = readAtom();
        const std::optional<Repetition> times = takeRepetition();
        if (!times) return once;
        if (!take(u'?') && take(u'+')) giveUp();  // whether few or many are tried first does not matter
        return repeat(once, *times);
    }

    std::optional<Repetition> takeRepetition() {
        if (take(u'*')) return Repetition{0, Endless};
        if (take(u'+')) return Repetition{1, Endless};
        if (take(u'?')) return Repetition{0, 1};
        if (!take(u'{')) return std::nullopt;
        const std::size_t least = readNumber();
        const std::size_t most = !take(u',') ? least : rest.starts_with(u'}') ? Endless : readNumber();
        if (!take(u'}')) giveUp();
        return Repetition{least, most};
    }

    std::size_t readNumber() {
        if (rest.empty() || !isDigit(rest[0])) giveUp();
        std::size_t number = 0;
        for (; !rest.empty() && isDigit(rest[0]); skip(1))
            number = std::min(number * 10 + (rest[0] - u'0'), PlainPattern::MostInstructions + 1);
        return number;
    }

    Block repeat(const Block& once, Repetition times) {
        Block block;
        const std::size_t choices = times.most == Endless ? 1 : times.most - times.least;
        if (times.least * once.size() + choices * (once.size() + 2) > PlainPattern::MostInstructions) {
            giveUp();
            return block;
        }
        for (std::size_t i = 0; i < times.least; ++i)
            append(block, once);
        for (std::size_t i = times.least; times.most != Endless && i < times.most; ++i)
            append(block, skippable(once, 1));
        if (times.most == Endless) {
            append(block, skippable(once, 2));
            block.push_back({Instruction::Jump, -distance(once.size() + 1)});
        }
        return block;
    }

    // Goes on behind itself in any case, or leaves out so many instructions more than the block.
    static Block skippable(const Block& once, std::size_t more) {
        Block block{{Instruction::Split, 1, distance(once.size() + more)}};
        block.insert(block.end(), once.begin(), once.end());
        return block;
    }

    Block readAtom() {
        switch (rest[0]) {
            case u'(':
                return readGroup();
            case u'[':
                return readSet(bracketsLength());
            case u'.':
                return readSet(1);
            case u'^':
                return readPlace(Instruction::TextBegin, 1);
            case u'$':
                return readPlace(Instruction::LastLineEnd, 1);
            case u'\\':
                return readEscape();
            default:
                return readCharacter();
        }
    }

    Block readGroup() {
        skip(1);
        if (take(u'?') && !take(u':') && !takeName()) giveUp();
        Block block = readAlternatives();
        if (!take(u')')) giveUp();
        return block;
    }

    bool takeName() {
        const std::size_t end = rest.find(u'>');
        if (rest.size() < 2 || rest[0] != u'<' || !isLetter(rest[1]) || end == rest.npos) return false;
        skip(end + 1);
        return true;
    }

    // The length of a set in brackets, with those inside it.
    std::size_t bracketsLength() {
        std::size_t depth = 0;
        for (std::size_t at = 0; at < rest.size(); ++at) {
            if (rest[at] == u'\\') {
                ++at;
            } else if (rest[at] == u'[') {
                ++depth;
                const std::u16string_view inside = rest.substr(at + 1);
                if (inside.starts_with(u']') || inside.starts_with(u"^]")) break;  // this one closes nothing
            } else if (rest[at] == u']' && --depth == 0) {
                return at + 1;
            }
        }
        giveUp();
        return 0;
    }

    Block readEscape() {
        const char16_t letter = rest.size() > 1 ? rest[1] : u'\0';
        if (letter == u'A') return readPlace(Instruction::TextBegin, 2);
        if (letter == u'z') return readPlace(Instruction::TextEnd, 2);
        if (letter == u'Z') return readPlace(Instruction::LastLineEnd, 2);
        if (isOneOf(u"dDhHsSvVwWfnrt", letter)) return readSet(2);
        const bool named = isOneOf(u"pP", letter) || (letter == u'x' && !ignoresCase());
        if (named && rest.substr(2).starts_with(u'{')) return readSet(rest.find(u'}') + 1);
        if (letter == u'u' && !ignoresCase()) return readSet(6);
        if (letter >= 0x80 || isLetter(letter) || isDigit(letter) || letter == u'\0') giveUp();
        skip(2);
        return {{Instruction::Character, letter}};  // a sign, which has no case
    }

    Block readPlace(Instruction::Operation place, std::size_t length) {
        skip(length);
        return {{place}};
    }

    Block readCharacter() {
        if (rest.empty()) return {};
        const char32_t character = firstCharacter(rest);
        if (ignoresCase()) return readSet(unitCount(character));
        skip(unitCount(character));
        return {{Instruction::Character, static_cast<std::int32_t>(character)}};
    }

    Block readSet(std::size_t length) {
        const std::u16string_view source = rest.substr(0, length);
        skip(length);
        const auto known = std::ranges::find(result.sets, source, &CharacterSet::getSource);
        const std::int32_t index = distance(static_cast<std::size_t>(known - result.sets.begin()));
        if (known == result.sets.end()) {
            result.sets.emplace_back(source, flags);
            if (!result.sets.back().isUsable()) giveUp();
        }
        return {{Instruction::Set, index}};
    }

    void append(Block& block, const Block& more) {
        block.insert(block.end(), more.begin(), more.end());
        if (block.size() > PlainPattern::MostInstructions) giveUp();
    }

    static std::int32_t distance(std::size_t instructions) { return static_cast<std::int32_t>(instructions); }

    bool ignoresCase() const { return (flags & UREGEX_CASE_INSENSITIVE) != 0; }

    bool take(char16_t unit) {
        if (!rest.starts_with(unit)) return false;
        skip(1);
        return true;
    }

    void skip(std::size_t units) { rest.remove_prefix(std::min(units, rest.size())); }

    // Nothing is left to read then.
    void giveUp() {
        plain = false;
        rest = {};
    }

    std::u16string_view rest;
    std::uint32_t flags = 0;
    bool plain = true;
    PlainPattern result;
};

}  // namespace

std::optional<PlainPattern> readPlainPattern(std::u16string_view pattern) {
    return Reader(pattern).read();
}

}  // namespace voxal
