#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Copies of what is mostly short: names, values, markup.
namespace corvel {

/// Copies at least one and at most two words: the first and the last, which may overlap.
template <typename Word>
inline void copyEnds(char* to, const char* from, std::size_t length) {
    Word head, tail;
    std::memcpy(&head, from, sizeof head);
    std::memcpy(&tail, from + length - sizeof tail, sizeof tail);
    std::memcpy(to, &head, sizeof head);
    std::memcpy(to + length - sizeof tail, &tail, sizeof tail);
}

/// Copies `length` bytes between ranges that do not overlap; up to 64 of them without a call.
inline void copyBytes(char* to, const char* from, std::size_t length) {
    struct Block {
        char bytes[16];
    };
    if (length > 64) {
        std::memcpy(to, from, length);
    } else if (length > 32) {
        copyEnds<Block>(to, from, 32);
        copyEnds<Block>(to + length - 32, from + length - 32, 32);
    } else if (length >= 16) {
        copyEnds<Block>(to, from, length);
    } else if (length >= 8) {
        copyEnds<std::uint64_t>(to, from, length);
    } else if (length >= 4) {
        copyEnds<std::uint32_t>(to, from, length);
    } else if (length > 0) {
        to[0] = from[0];
        to[length / 2] = from[length / 2];
        to[length - 1] = from[length - 1];
    }
}

/// Copies `text` to `to` and returns the end of the copy.
inline char* put(char* to, std::string_view text) {
    copyBytes(to, text.data(), text.size());
    return to + text.size();
}

}  // namespace corvel
