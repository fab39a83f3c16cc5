// What is asked of 32 bytes at once, for processors that have AVX2: whether there is a fault among them, or what is
// rare, and how many end lines. What the fault is, is told in characters.cpp.
//
// Two bytes that may not follow each other show by three nibbles of them. For each nibble a table has a bit for each
// row of what is wrong: a bit that all three have is a fault. Nothing depends on where tags and lines are, which no
// processor foresees: that made it 1.5 times as fast, and the tables as much again.

#include <tessit/rules/characters_wide.h>

#if defined(TESSIT_WIDE_CHARACTERS)

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <immintrin.h>

#define TESSIT_WIDE [[gnu::target("avx2")]] inline

namespace tessit {

namespace {

using Nibbles = std::uint16_t;  // a bit for each

constexpr Nibbles nibbles(unsigned first, unsigned last) {
    return static_cast<Nibbles>((2u << last) - (1u << first));
}
constexpr Nibbles nibbles(unsigned only) {
    return nibbles(only, only);
}

constexpr Nibbles Any = nibbles(0x0, 0xF), GoesOn = nibbles(0x8, 0xB), DoesNotGoOn = Any - GoesOn;

// Two bytes, by nibbles: the high one and the low one of the first, the high one of the second.
struct Pair {
    Nibbles high, low, second;
};

constexpr Pair Suspicious[] = {
    {nibbles(0x0, 0x7), Any, GoesOn},
    {nibbles(0xC, 0xF), Any, DoesNotGoOn},
    {nibbles(0xC), nibbles(0x0, 0x1), Any},           // begin nothing
    {nibbles(0xE), nibbles(0x0), nibbles(0x8, 0x9)},  // too long, as F0 may be
    {nibbles(0xF), nibbles(0x0), nibbles(0x8)},
    {nibbles(0xE), nibbles(0xD), nibbles(0xA, 0xB)},  // surrogates
    {nibbles(0xF), nibbles(0x4, 0xF), Any},           // past U+FFFFF, or nothing
    {GoesOn, Any, GoesOn},                            // unless one or two bytes in front of them ask for it
};
constexpr unsigned ThirdByte = 0x80;  // the last one's bit

using Table = std::array<unsigned char, 16>;

consteval Table tableOf(Nibbles Pair::*part) {
    Table table{};
    unsigned bit = 1;
    for (const Pair& pair : Suspicious) {
        for (unsigned nibble = 0; nibble != table.size(); ++nibble)
            if ((pair.*part & nibbles(nibble)) != 0) table[nibble] = static_cast<unsigned char>(table[nibble] | bit);
        bit <<= 1;
    }
    return table;
}
constexpr Table High = tableOf(&Pair::high), Low = tableOf(&Pair::low), Second = tableOf(&Pair::second);

// Each control that is allowed at its own place; elsewhere, what no control is equal to.
constexpr Table AllowedControls = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                   0xFF, '\t', '\n', 0xFF, 0xFF, '\r', 0xFF, 0xFF};

TESSIT_WIDE __m256i bytesAt(const char* at) noexcept {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
}

TESSIT_WIDE __m256i all(unsigned byte) noexcept {
    return _mm256_set1_epi8(static_cast<char>(byte));
}

TESSIT_WIDE __m256i equals(__m256i bytes, unsigned byte) noexcept {
    return _mm256_cmpeq_epi8(bytes, all(byte));
}

TESSIT_WIDE __m256i both(__m256i left, __m256i right) noexcept {
    return _mm256_and_si256(left, right);
}

TESSIT_WIDE __m256i either(__m256i left, __m256i right) noexcept {
    return _mm256_or_si256(left, right);
}

// Whether bytes are as large as one from 0x80 on: in the topmost bit of each.
TESSIT_WIDE __m256i isAtLeast(__m256i bytes, unsigned least) noexcept {
    return _mm256_subs_epu8(bytes, all(least - 0x80));
}

TESSIT_WIDE bool isAscii(__m256i bytes) noexcept {
    return _mm256_movemask_epi8(bytes) == 0;
}

// What a table has for numbers below 16; for bytes past ASCII 0, for others what it has for the low nibble.
TESSIT_WIDE __m256i lookUp(const Table& table, __m256i bytes) noexcept {
    const __m128i half = _mm_loadu_si128(reinterpret_cast<const __m128i*>(table.data()));
    return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(half), bytes);
}

TESSIT_WIDE __m256i lowNibble(__m256i bytes) noexcept {
    return both(bytes, all(0x0F));
}

TESSIT_WIDE __m256i highNibble(__m256i bytes) noexcept {
    return lowNibble(_mm256_srli_epi16(bytes, 4));
}

// Not zero in a byte that is a control, but for those that are allowed.
TESSIT_WIDE __m256i isForbidden(__m256i bytes) noexcept {
    const __m256i isControl = _mm256_cmpeq_epi8(_mm256_min_epu8(bytes, all(' ' - 1)), bytes);
    return _mm256_andnot_si256(_mm256_cmpeq_epi8(lookUp(AllowedControls, bytes), bytes), isControl);
}

// Not zero in a byte that does not follow those in front of it.
TESSIT_WIDE __m256i isSuspicious(const char* at) noexcept {
    const __m256i bytes = bytesAt(at), back1 = bytesAt(at - 1), back2 = bytesAt(at - 2), back3 = bytesAt(at - 3);
    const __m256i first = both(lookUp(High, highNibble(back1)), lookUp(Low, lowNibble(back1)));
    const __m256i pair = both(first, lookUp(Second, highNibble(bytes)));
    const __m256i asksForThird = both(either(isAtLeast(back2, 0xE0), isAtLeast(back3, 0xF0)), all(ThirdByte));
    const __m256i mayBeForbidden = both(equals(back1, 0xEF), equals(bytes, 0xBF));
    return either(_mm256_xor_si256(pair, asksForThird), mayBeForbidden);
}

// All ones in a byte that ends a line; that behind the bytes is read, too.
template <bool HasReturns>
TESSIT_WIDE __m256i endsLine(const char* at) noexcept {
    const __m256i bytes = bytesAt(at), isFeed = equals(bytes, '\n');
    if constexpr (!HasReturns) return isFeed;
    return either(isFeed, _mm256_andnot_si256(equals(bytesAt(at + 1), '\n'), equals(bytes, '\r')));
}

// Up to where blocks lie in one line of the cache each: loads that cross lines take half as long again.
template <bool HasReturns>
const char* passLineEndsToAligned(const char* at, std::uint64_t& lines) noexcept {
    for (; reinterpret_cast<std::uintptr_t>(at) % 64 != 0; ++at)
        lines += *at == '\n' || (HasReturns && *at == '\r' && at[1] != '\n');
    return at;
}

// Summed up before there are more than a byte can count.
template <bool HasReturns>
TESSIT_WIDE const char* passLineEnds(const char* at, const char* end, std::uint64_t& lines) noexcept {
    constexpr std::ptrdiff_t Much = 1024;
    constexpr std::size_t Most = 255 / 2;
    if (end - at >= Much) at = passLineEndsToAligned<HasReturns>(at, lines);
    const __m256i none = _mm256_setzero_si256();
    __m256i sums = none;
    while (const std::size_t steps = static_cast<std::size_t>(end - at - (end != at)) / 64) {
        __m256i counts = none;
        for (std::size_t left = std::min(steps, Most); left != 0; --left, at += 64)
            counts = _mm256_sub_epi8(
                counts, _mm256_add_epi8(endsLine<HasReturns>(at), endsLine<HasReturns>(at + sizeof counts)));
        sums = _mm256_add_epi64(sums, _mm256_sad_epu8(counts, none));
    }
    std::uint64_t parts[4];
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(parts), sums);
    lines += parts[0] + parts[1] + parts[2] + parts[3];
    return at;
}

}  // namespace

[[gnu::target("avx2")]] const char* passLineEnds64(const char* at, const char* end, bool hasReturns,
                                                   std::uint64_t& lines) noexcept {
    return hasReturns ? passLineEnds<true>(at, end, lines) : passLineEnds<false>(at, end, lines);
}

[[gnu::target("avx2")]] const char* passSound64(const char* at, const char* end) noexcept {
    for (; end - at >= 64; at += 64) {
        const __m256i low = bytesAt(at), high = bytesAt(at + 32);
        __m256i wrong = either(isForbidden(low), isForbidden(high));
        const bool isBehindAscii = ((at[-1] | at[-2] | at[-3]) & 0x80) == 0;
        if (!isBehindAscii || !isAscii(either(low, high)))
            wrong = either(wrong, either(isSuspicious(at), isSuspicious(at + 32)));
        if (_mm256_testz_si256(wrong, wrong) == 0) break;
    }
    return at;
}

}  // namespace tessit

#endif
