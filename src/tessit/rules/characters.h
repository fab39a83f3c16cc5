#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tessit {

/// The place of the first byte that is not UTF-8, or begins a character that XML does not
/// allow; the end where there is none. A character begins at the text's begin. O(bytes).
/// Uses the widest blocks that the processor has, unless it is to use those that all of its kind have.
const char* findBadCharacter(std::string_view text, bool mayUseWideBlocks = true) noexcept;

/// How many bytes the character at the text's begin takes, as its first byte says, or as many
/// of them as belong together where it is not whole: 1 at least.
std::size_t lengthOfSequence(std::string_view text) noexcept;

/// The character, allowed or not, that a text which is not empty begins with; none where that is not UTF-8.
std::optional<std::uint32_t> decodeFirst(std::string_view text) noexcept;

}  // namespace tessit
