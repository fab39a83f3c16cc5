#pragma once

#include <cstdint>

namespace tessit {

/// What ends a line.
enum class LineEnds : bool { LineFeed, All };

/// How many lines end: at a line feed, and where all count, at a carriage return that no line feed follows in front of
/// `end`.
std::uint64_t countLineEnds(const char* at, const char* end, LineEnds ends, bool mayUseWideBlocks = true) noexcept;

/// Where the line of a place begins, if not in front of `first`, which is the answer then.
const char* findLineBegin(const char* first, const char* place, LineEnds ends) noexcept;

/// How many there are of the bytes that count for the input's bytes.
struct ByteCounts {
    std::uint64_t continuations = 0;  // bytes that begin no character
    std::uint64_t pastPlane = 0;      // characters of four bytes
};
ByteCounts countBytes(const char* at, const char* end) noexcept;

}  // namespace tessit
