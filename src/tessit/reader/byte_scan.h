#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

#if !defined(TESSIT_SCALAR) && defined(__SSE2__)
#define TESSIT_SCAN_SSE2
#include <emmintrin.h>
#elif !defined(TESSIT_SCALAR) && defined(__aarch64__)
#define TESSIT_SCAN_NEON
#include <arm_neon.h>
#endif

/// Scans for the next byte that needs thought. Sixteen bytes at a time where the
/// machine's baseline has the instructions; no byte at or past `end` is read.
namespace tessit {

#if defined(TESSIT_SCAN_SSE2)

// One bit per byte that matched, the lowest for the first byte.
inline unsigned matchBlock(const char* at, char a, char b, char c) {
    __m128i block;
    std::memcpy(&block, at, sizeof block);
    const __m128i matches =
        _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8(a)), _mm_cmpeq_epi8(block, _mm_set1_epi8(b))),
                     _mm_cmpeq_epi8(block, _mm_set1_epi8(c)));
    return static_cast<unsigned>(_mm_movemask_epi8(matches));
}

inline std::size_t firstMatch(unsigned matches) {
    return static_cast<std::size_t>(std::countr_zero(matches));
}

#elif defined(TESSIT_SCAN_NEON)

// Four bits per byte that matched, the lowest for the first byte.
inline std::uint64_t matchBlock(const char* at, char a, char b, char c) {
    const uint8x16_t block = vld1q_u8(reinterpret_cast<const std::uint8_t*>(at));
    const uint8x16_t matches = vorrq_u8(vorrq_u8(vceqq_u8(block, vdupq_n_u8(static_cast<std::uint8_t>(a))),
                                                 vceqq_u8(block, vdupq_n_u8(static_cast<std::uint8_t>(b)))),
                                        vceqq_u8(block, vdupq_n_u8(static_cast<std::uint8_t>(c))));
    return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(vreinterpretq_u16_u8(matches), 4)), 0);
}

inline std::size_t firstMatch(std::uint64_t matches) {
    return static_cast<std::size_t>(std::countr_zero(matches)) / 4;
}

#endif

/// The first byte from `at` on that is `a`, `b` or `c`, or `end`.
inline const char* findAny(const char* at, const char* end, char a, char b, char c) {
#if defined(TESSIT_SCAN_SSE2) || defined(TESSIT_SCAN_NEON)
    for (; end - at >= 16; at += 16)
        if (const auto matches = matchBlock(at, a, b, c)) return at + firstMatch(matches);
#endif
    while (at != end && *at != a && *at != b && *at != c)
        ++at;
    return at;
}

/// Copies bytes from `at` to `out` up to the first that is `a`, `b` or `c`, or to
/// `end`, and moves both behind them. Whole blocks are written, so `out` needs room
/// for 16 bytes more than `room` says; at most `room` bytes are passed.
inline void copyPlain(const char*& at, const char* end, char*& out, std::size_t room, char a, char b, char c) {
    const char* const last = static_cast<std::size_t>(end - at) > room ? at + room : end;
#if defined(TESSIT_SCAN_SSE2) || defined(TESSIT_SCAN_NEON)
    for (; last - at >= 16; at += 16, out += 16) {
        std::memcpy(out, at, 16);
        if (const auto matches = matchBlock(at, a, b, c)) {
            at += firstMatch(matches);
            out += firstMatch(matches);
            return;
        }
    }
#endif
    while (at != last && *at != a && *at != b && *at != c)
        *out++ = *at++;
}

/// Whether `length` bytes are the same at both places. Names are short: two loads
/// that overlap settle most, without a call.
inline bool sameBytes(const char* left, const char* right, std::size_t length) {
    const auto sameEnds = [=]<typename Word>(Word) {
        Word leftHead, rightHead, leftTail, rightTail;
        std::memcpy(&leftHead, left, sizeof(Word));
        std::memcpy(&rightHead, right, sizeof(Word));
        std::memcpy(&leftTail, left + length - sizeof(Word), sizeof(Word));
        std::memcpy(&rightTail, right + length - sizeof(Word), sizeof(Word));
        return ((leftHead ^ rightHead) | (leftTail ^ rightTail)) == 0;
    };
    if (length > 16) return std::memcmp(left, right, length) == 0;
    if (length >= 8) return sameEnds(std::uint64_t{});
    if (length >= 4) return sameEnds(std::uint32_t{});
    for (std::size_t i = 0; i < length; ++i)
        if (left[i] != right[i]) return false;
    return true;
}

inline bool sameBytes(std::string_view left, std::string_view right) {
    return left.size() == right.size() && sameBytes(left.data(), right.data(), left.size());
}

/// The first `byte` from `at` on, or `end`.
inline const char* findByte(const char* at, const char* end, char byte) {
    const void* found = at == end ? nullptr : std::memchr(at, byte, static_cast<std::size_t>(end - at));
    return found == nullptr ? end : static_cast<const char*>(found);
}

}  // namespace tessit
