// The questions of characters.cpp asked of 32 bytes at once, for processors that have AVX2: whether there is a fault
// among them, or what is rare. What it is, is told there.

#include <tessit/rules/characters_wide.h>

#if defined(TESSIT_WIDE_CHARACTERS)

#include <immintrin.h>

#define TESSIT_WIDE [[gnu::target("avx2")]] inline

namespace tessit {

namespace {

TESSIT_WIDE __m256i bytesAt(const char* at) noexcept {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
}

TESSIT_WIDE __m256i all(unsigned byte) noexcept {
    return _mm256_set1_epi8(static_cast<char>(byte));
}

TESSIT_WIDE __m256i equals(__m256i bytes, unsigned byte) noexcept {
    return _mm256_cmpeq_epi8(bytes, all(byte));
}

// Whether bytes are as large as one from 0x80 on: in the topmost bit of each, as all that is true or false here.
TESSIT_WIDE __m256i isAtLeast(__m256i bytes, unsigned least) noexcept {
    return _mm256_subs_epu8(bytes, all(least - 0x80));
}

template <typename... More>
TESSIT_WIDE __m256i either(__m256i first, More... more) noexcept {
    ((first = _mm256_or_si256(first, more)), ...);
    return first;
}

TESSIT_WIDE bool isAnyTrue(__m256i bytes) noexcept {
    return _mm256_movemask_epi8(bytes) != 0;
}

TESSIT_WIDE __m256i isControl(__m256i bytes) noexcept {
    return _mm256_andnot_si256(bytes, _mm256_sub_epi8(bytes, all(' ')));
}

// Whether a byte is a control that is not allowed.
TESSIT_WIDE __m256i isForbidden(__m256i bytes) noexcept {
    return _mm256_andnot_si256(either(equals(bytes, '\n'), equals(either(bytes, all('\t' ^ '\r')), '\r')),
                               isControl(bytes));
}

TESSIT_WIDE __m256i isSuspicious(const char* at) noexcept {
    const __m256i bytes = bytesAt(at), back1 = bytesAt(at - 1), back2 = bytesAt(at - 2), back3 = bytesAt(at - 3);
    const __m256i mustGoOn = either(isAtLeast(back1, 0xC0), isAtLeast(back2, 0xE0), isAtLeast(back3, 0xF0));
    const __m256i goesOn = _mm256_cmpgt_epi8(all(0xC0), bytes);
    const __m256i least = _mm256_add_epi8(bytes, _mm256_and_si256(back1, all(0x10)));
    const __m256i isTooLong =
        _mm256_andnot_si256(isAtLeast(least, 0xA0), equals(_mm256_and_si256(back1, all(0xEF)), 0xE0));
    const __m256i isSurrogate = _mm256_and_si256(equals(back1, 0xED), isAtLeast(bytes, 0xA0));
    const __m256i beginsNothing = either(equals(_mm256_and_si256(bytes, all(0xFE)), 0xC0), isAtLeast(bytes, 0xF4));
    const __m256i mayBeForbidden = _mm256_and_si256(equals(back1, 0xEF), equals(bytes, 0xBF));
    return either(_mm256_xor_si256(mustGoOn, goesOn), isTooLong, isSurrogate, beginsNothing, mayBeForbidden);
}

}  // namespace

// What is past ASCII is asked for controls in two steps: few blocks have any.
[[gnu::target("avx2")]] const char* passSound64(const char* at, const char* end) noexcept {
    for (; end - at >= 64; at += 64) {
        const __m256i low = bytesAt(at), high = bytesAt(at + 32);
        const bool isBehindAscii = ((at[-1] | at[-2] | at[-3]) & 0x80) == 0;
        if (isBehindAscii && !isAnyTrue(either(low, high))) {
            if (isAnyTrue(either(isForbidden(low), isForbidden(high)))) break;
            continue;
        }
        if (isAnyTrue(either(isSuspicious(at), isSuspicious(at + 32)))) break;
        if (!isAnyTrue(either(isControl(low), isControl(high)))) continue;
        if (isAnyTrue(either(isForbidden(low), isForbidden(high)))) break;
    }
    return at;
}

}  // namespace tessit

#endif
