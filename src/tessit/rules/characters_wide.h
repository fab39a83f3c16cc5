#pragma once

#include <cstdint>

#if !defined(TESSIT_SCALAR) && defined(__GNUC__) && defined(__x86_64__)
#define TESSIT_WIDE_CHARACTERS
#endif

namespace tessit {

#if defined(TESSIT_WIDE_CHARACTERS)

/// Passes 64 bytes at a time that have no fault among them, up to the first that may, or to the end less what does not
/// fill them. Three bytes stand in front of `at`, and what is in front is sound. For processors with AVX2 alone.
const char* passSound64(const char* at, const char* end) noexcept;

/// Passes 64 bytes at a time and adds how many end lines: line feeds, and where those count, carriage returns that no
/// line feed follows. Up to the end less what does not fill them, and at least the last byte. For processors with AVX2
/// alone.
const char* passLineEnds64(const char* at, const char* end, bool hasReturns, std::uint64_t& lines) noexcept;

inline bool hasWideBlocks() noexcept {
    return __builtin_cpu_supports("avx2") != 0;
}

#endif

}  // namespace tessit
