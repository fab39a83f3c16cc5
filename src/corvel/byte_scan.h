#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <corvel/byte_copy.h>

#if !defined(TESSIT_SCALAR) && defined(__GNUC__) && defined(__SSE2__)
#define TESSIT_SCAN_BLOCKS
#include <emmintrin.h>
#elif !defined(TESSIT_SCALAR) && defined(__GNUC__) && defined(__aarch64__) && !defined(__AARCH64EB__)
#define TESSIT_SCAN_BLOCKS
#include <arm_neon.h>
#endif

/// Scans for the next byte that needs thought. Sixteen bytes at a time where the
/// machine's baseline has the instructions; no byte at or past `end` is read.
namespace corvel {

#if defined(TESSIT_SCAN_BLOCKS)

// Sixteen bytes that are looked at together. Comparing gives all ones where it is true.
using Block [[gnu::vector_size(16)]] = unsigned char;

inline Block blockAt(const char* at) {
    Block block;
    std::memcpy(&block, at, sizeof block);
    return block;
}

#if defined(__SSE2__)

// One bit per byte of a comparison that is true, the lowest for the first byte.
using Matches = unsigned;
constexpr std::size_t BitsOfMatch = 1;

template <typename Comparison>
inline Matches matchesOf(Comparison comparison) {
    return static_cast<unsigned>(_mm_movemask_epi8(reinterpret_cast<__m128i>(comparison)));
}

// Each byte less `amount`, and 0 where it is not more.
inline Block lessened(Block block, unsigned char amount) {
    return reinterpret_cast<Block>(
        _mm_subs_epu8(reinterpret_cast<__m128i>(block), _mm_set1_epi8(static_cast<char>(amount))));
}

// The larger byte of each two.
inline Block larger(Block left, Block right) {
    return reinterpret_cast<Block>(_mm_max_epu8(reinterpret_cast<__m128i>(left), reinterpret_cast<__m128i>(right)));
}

#else

// Four bits per byte of a comparison that is true, the lowest for the first byte.
using Matches = std::uint64_t;
constexpr std::size_t BitsOfMatch = 4;

template <typename Comparison>
inline Matches matchesOf(Comparison comparison) {
    const auto bits = reinterpret_cast<uint16x8_t>(comparison);
    return vget_lane_u64(vreinterpret_u64_u8(vshrn_n_u16(bits, 4)), 0);
}

// Each byte less `amount`, and 0 where it is not more.
inline Block lessened(Block block, unsigned char amount) {
    return reinterpret_cast<Block>(vqsubq_u8(reinterpret_cast<uint8x16_t>(block), vdupq_n_u8(amount)));
}

// The larger byte of each two.
inline Block larger(Block left, Block right) {
    return reinterpret_cast<Block>(vmaxq_u8(reinterpret_cast<uint8x16_t>(left), reinterpret_cast<uint8x16_t>(right)));
}

#endif

// Which of the sixteen bytes are one of `bytes`.
template <typename... Byte>
inline Matches matchBlock(const char* at, Byte... bytes) {
    const Block block = blockAt(at);
    return matchesOf(((block == static_cast<unsigned char>(bytes)) | ...));
}

// Which of 64 bytes are so by a comparison of sixteen at a place: one bit each, the lowest for the first.
template <typename Compare>
inline std::uint64_t matchesOf64(const char* at, const Compare& compare) {
#if defined(__SSE2__)
    const auto part = [&](std::size_t place) { return std::uint64_t{matchesOf(compare(at + place))} << place; };
    return (part(0) | part(16)) | (part(32) | part(48));
#else
    const uint8x16_t weights = vreinterpretq_u8_u64(vdupq_n_u64(0x8040201008040201));
    const auto part = [&](std::size_t place) {
        return vandq_u8(reinterpret_cast<uint8x16_t>(compare(at + place)), weights);
    };
    const uint8x16_t sums = vpaddq_u8(vpaddq_u8(part(0), part(16)), vpaddq_u8(part(32), part(48)));
    return vgetq_lane_u64(vreinterpretq_u64_u8(vpaddq_u8(sums, sums)), 0);
#endif
}

inline std::size_t firstMatch(Matches matches) {
    return static_cast<std::size_t>(std::countr_zero(matches)) / BitsOfMatch;
}

// Where the first of two blocks' matches is; 32 when there is none.
inline std::size_t firstOfTwo(Matches low, Matches high) {
    if constexpr (BitsOfMatch == 1) {  // without a branch
        return static_cast<std::size_t>(std::countr_zero(low | std::uint64_t{high} << 16 | std::uint64_t{1} << 32));
    } else {
        return low != 0 ? firstMatch(low) : high != 0 ? 16 + firstMatch(high) : 32;
    }
}

/// The place of the first of 32 bytes that is one of `bytes`; 32 when none is.
template <typename... Byte>
inline std::size_t findIn32(const char* at, Byte... bytes) {
    return firstOfTwo(matchBlock(at, bytes...), matchBlock(at + 16, bytes...));
}

/// The place of the first of 32 bytes that is one of `bytes` or below ' '; 32 when none is.
template <typename... Byte>
inline std::size_t findIn32OrControl(const char* at, Byte... bytes) {
    const auto matches = [=](const char* from) {
        const Block block = blockAt(from);
        return matchesOf((block < static_cast<unsigned char>(' ')) |
                         ((block == static_cast<unsigned char>(bytes)) | ...));
    };
    return firstOfTwo(matches(at), matches(at + 16));
}

/// Whether none of the first `length` bytes is one of `bytes`. Reads 24 bytes, whatever the length.
template <typename... Byte>
inline bool areNone(const char* at, std::size_t length, Byte... bytes) {
    const Matches head = matchBlock(at, bytes...), tail = matchBlock(at + 8, bytes...);
    if constexpr (BitsOfMatch == 1) {  // without a branch
        return ((head | tail << 8) & ((1u << length) - 1)) == 0;
    } else {
        return (head == 0 || firstMatch(head) >= length) && (tail == 0 || 8 + firstMatch(tail) >= length);
    }
}

#else

template <typename... Byte>
inline std::size_t findIn32(const char* at, Byte... bytes) {
    std::size_t place = 0;
    while (place != 32 && (... && (at[place] != bytes)))
        ++place;
    return place;
}

template <typename... Byte>
inline std::size_t findIn32OrControl(const char* at, Byte... bytes) {
    std::size_t place = 0;
    while (place != 32 && static_cast<unsigned char>(at[place]) >= ' ' && (... && (at[place] != bytes)))
        ++place;
    return place;
}

template <typename... Byte>
inline bool areNone(const char* at, std::size_t length, Byte... bytes) {
    return std::none_of(at, at + length, [=](char byte) { return (... || (byte == bytes)); });
}

#endif

#if defined(TESSIT_SCAN_BLOCKS)

// `findAny` for at least one and at most two words: the first and the last one,
// which may overlap, fill a block.
template <typename Word, typename... Byte>
inline const char* findInEnds(const char* at, const char* end, Byte... bytes) {
    Word head, tail;
    std::memcpy(&head, at, sizeof head);
    std::memcpy(&tail, end - sizeof tail, sizeof tail);
    Word ends[16 / sizeof(Word)];
    for (std::size_t i = 0; i < 16 / sizeof(Word); i += 2) {
        ends[i] = head;
        ends[i + 1] = tail;
    }
    const auto matches = matchBlock(reinterpret_cast<const char*>(ends), bytes...);
    const std::size_t first = matches == 0 ? 2 * sizeof(Word) : firstMatch(matches);
    return first < sizeof(Word) ? at + first : end - 2 * sizeof(Word) + first;
}

#endif

/// The first byte from `at` on that is one of `bytes`, or `end`.
template <typename... Byte>
inline const char* findAny(const char* at, const char* end, Byte... bytes) {
#if defined(TESSIT_SCAN_BLOCKS)
    for (; end - at >= 16; at += 16)
        if (const auto matches = matchBlock(at, bytes...)) return at + firstMatch(matches);
    if (end - at >= 8) return findInEnds<std::uint64_t>(at, end, bytes...);
    if (end - at >= 4) return findInEnds<std::uint32_t>(at, end, bytes...);
#endif
    while (at != end && (... && (*at != bytes)))
        ++at;
    return at;
}

/// The same for what is mostly farther than a block.
template <typename... Byte>
inline const char* findAnyFar(const char* at, const char* end, Byte... bytes) {
#if defined(TESSIT_SCAN_BLOCKS)
    const auto compare = [=](const char* from) {
        const Block block = blockAt(from);
        return ((block == static_cast<unsigned char>(bytes)) | ...);
    };
    for (; end - at >= 32; at += 32) {
        const auto low = compare(at), high = compare(at + 16);
        if (matchesOf(low | high) != 0) return at + firstOfTwo(matchesOf(low), matchesOf(high));
    }
#endif
    return findAny(at, end, bytes...);
}

/// Copies what stands before the first byte that is one of `bytes`, or before
/// `end`, and moves `from` and `to` past it. `to` needs room for all bytes up to
/// `end`: more of them may be written than count.
template <typename... Byte>
inline void copyUntilAny(const char*& from, const char* end, char*& to, Byte... bytes) {
#if defined(TESSIT_SCAN_BLOCKS)
    for (; end - from >= 16; from += 16, to += 16) {
        const auto matches = matchBlock(from, bytes...);
        std::memcpy(to, from, 16);
        if (matches == 0) continue;
        from += firstMatch(matches);
        to += firstMatch(matches);
        return;
    }
#endif
    const char* const stop = findAny(from, end, bytes...);
    copyBytes(to, from, static_cast<std::size_t>(stop - from));
    to += stop - from;
    from = stop;
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

/// Compilers know this for the one instruction that it is.
constexpr std::uint64_t byteSwapped(std::uint64_t word) {
    word = (word & 0x00FF00FF00FF00FF) << 8 | (word >> 8 & 0x00FF00FF00FF00FF);
    word = (word & 0x0000FFFF0000FFFF) << 16 | (word >> 16 & 0x0000FFFF0000FFFF);
    return word << 32 | word >> 32;
}

/// The first eight bytes of a text as a number, in the order of the texts; zeros
/// stand for what a shorter one lacks. Bytes up to `readableEnd` can be read: where
/// there are eight, no branch depends on the length.
inline std::uint64_t firstBytes(std::string_view text, const char* readableEnd) {
    constexpr std::size_t Size = sizeof(std::uint64_t);
    const std::size_t count = text.size() < Size ? text.size() : Size;
    if (count == 0) return 0;
    const std::size_t unused = 8 * (Size - count);
    std::uint64_t bytes = 0;
    if (static_cast<std::size_t>(readableEnd - text.data()) < Size) {
        for (std::size_t i = 0; i != count; ++i)
            bytes = bytes << 8 | static_cast<unsigned char>(text[i]);
        return bytes << unused;
    }
    std::memcpy(&bytes, text.data(), Size);
    if constexpr (std::endian::native == std::endian::little) bytes = byteSwapped(bytes);
    return bytes >> unused << unused;
}

/// The first place from `at` on where a text of one to three bytes stands, or `end`.
inline const char* findText(const char* at, const char* end, std::string_view text) {
    const std::size_t last = text.size() - 1, second = std::min<std::size_t>(1, last);
#if defined(TESSIT_SCAN_BLOCKS)
    const auto byteAt = [=](std::size_t place) { return static_cast<unsigned char>(text[place]); };
    const unsigned char bytes[] = {byteAt(0), byteAt(second), byteAt(last)};
    for (; static_cast<std::size_t>(end - at) >= 16 + last; at += 16)
        if (const auto matches = matchesOf((blockAt(at) == bytes[0]) & (blockAt(at + second) == bytes[1]) &
                                           (blockAt(at + last) == bytes[2])))
            return at + firstMatch(matches);
#endif
    for (; static_cast<std::size_t>(end - at) > last; ++at)
        if (at[0] == text[0] && at[second] == text[second] && at[last] == text[last]) return at;
    return end;
}

/// The first `byte` from `at` on, or `end`.
inline const char* findByte(const char* at, const char* end, char byte) {
    const void* found = at == end ? nullptr : std::memchr(at, byte, static_cast<std::size_t>(end - at));
    return found == nullptr ? end : static_cast<const char*>(found);
}

}  // namespace corvel
