#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>
#include <voxal/character_set.h>

namespace voxal {

/// One step of the way through a pattern. Distances count from the instruction itself.
struct Instruction {
    enum Operation : std::uint8_t {
        Character,    ///< take the character `first`
        Set,          ///< take one of the characters of the set number `first`
        Split,        ///< go on at `first` or at `second`
        Jump,         ///< go on at `first`
        TextBegin,    ///< go on where the text begins
        TextEnd,      ///< where it ends
        LastLineEnd,  ///< there, and in front of a line end there
        Match
    };
    Operation operation;
    std::int32_t first = 0;
    std::int32_t second = 0;
};

/// A pattern whose matches depend on nothing but the character that comes next.
struct PlainPattern {
    /// So many characters and choices, with repetitions written out.
    static constexpr std::size_t MostInstructions = 1000;

    std::vector<Instruction> instructions;
    std::vector<CharacterSet> sets;
};

/// Reads a pattern that ICU has compiled. None when it is too large, or not plain: with
/// look-around, word boundaries, back references, atomic groups, repetitions that
/// give nothing back, and flags except "i" and "s" in front of everything; nor are
/// quoting and some ways to write a character by its number supported.
std::optional<PlainPattern> readPlainPattern(std::u16string_view pattern);

}  // namespace voxal
