#pragma once

#include <bitset>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

struct URegularExpression;

namespace voxal {

/// The characters that a pattern for a single one matches: `[a-z]`, `\w`, `.`, or a
/// character itself.
///
/// ICU is asked about each block of 256 characters once, when one of them is first
/// looked up, so that it alone says what such a pattern means.
class CharacterSet {
public:
    /// `flags` are those of `uregex_open`.
    CharacterSet(std::u16string_view pattern, std::uint32_t flags);

    /// Whether the pattern is one that ICU takes.
    bool isUsable() const noexcept { return expression != nullptr; }

    const std::u16string& getSource() const noexcept { return source; }

    bool contains(char32_t character);

private:
    static constexpr char32_t BlockSize = 256;
    using Block = std::bitset<BlockSize>;

    struct Close {
        void operator()(URegularExpression* closed) const noexcept;
    };

    Block askForBlock(char32_t first);

    std::u16string source;
    std::unique_ptr<URegularExpression, Close> expression;
    Block lowest;                                 // of the characters that most texts are of
    std::unordered_map<char32_t, Block> further;  // by the first character
};

}  // namespace voxal
