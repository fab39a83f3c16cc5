#include <cstddef>
#include <voxal/one_pass_search.h>
#include <voxal/u_string.h>

namespace voxal {

namespace {

bool isLineEnd(char16_t unit) {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}

// Whether '$' matches there: not between the two units of one line end.
bool isLastLineEnd(std::u16string_view text, std::size_t at) {
    const std::u16string_view left = text.substr(at);
    if (left.empty() || left == u"\r\n") return true;
    return left.size() == 1 && isLineEnd(left[0]) && !text.ends_with(u"\r\n");
}

class Search {
public:
    Search(PlainPattern& searched, std::u16string_view in)
        : pattern(searched), text(in), reachedAt(searched.instructions.size()) {}

    bool run() {
        std::vector<std::size_t> before;
        for (std::size_t at = 0;;) {
            reach(0, at);  // a match may begin anywhere
            if (matched || at == text.size()) return matched;
            const char32_t character = firstCharacter(text.substr(at));
            at += unitCount(character);
            before.swap(waiting);
            waiting.clear();
            ++place;
            for (const std::size_t index : before)
                if (takes(pattern.instructions[index], character)) reach(index + 1, at);
        }
    }

private:
    bool takes(const Instruction& instruction, char32_t character) {
        const auto operand = static_cast<std::uint32_t>(instruction.first);
        if (instruction.operation == Instruction::Character) return operand == character;
        return pattern.sets[operand].contains(character);
    }

    // Goes as far from the instruction as no character is needed.
    void reach(std::size_t index, std::size_t at) {
        pending.push_back(index);
        while (!pending.empty()) {
            const std::size_t next = pending.back();
            pending.pop_back();
            if (reachedAt[next] == place) continue;
            reachedAt[next] = place;
            follow(next, at);
        }
    }

    void follow(std::size_t index, std::size_t at) {
        const Instruction& instruction = pattern.instructions[index];
        switch (instruction.operation) {
            case Instruction::Character:
            case Instruction::Set:
                waiting.push_back(index);
                break;
            case Instruction::Split:
                pending.push_back(index + static_cast<std::size_t>(instruction.second));
                [[fallthrough]];
            case Instruction::Jump:
                pending.push_back(index + static_cast<std::size_t>(instruction.first));
                break;
            case Instruction::TextBegin:
                if (at == 0) pending.push_back(index + 1);
                break;
            case Instruction::TextEnd:
                if (at == text.size()) pending.push_back(index + 1);
                break;
            case Instruction::LastLineEnd:
                if (isLastLineEnd(text, at)) pending.push_back(index + 1);
                break;
            case Instruction::Match:
                matched = true;
                break;
        }
    }

    PlainPattern& pattern;
    std::u16string_view text;
    std::size_t place = 1;               // counts the characters, from 1
    std::vector<std::size_t> reachedAt;  // for each instruction, the place where it was last reached
    std::vector<std::size_t> waiting;    // instructions for the next character
    std::vector<std::size_t> pending;
    bool matched = false;
};

}  // namespace

bool searchInOnePass(PlainPattern& pattern, std::u16string_view text) {
    return Search(pattern, text).run();
}

}  // namespace voxal
