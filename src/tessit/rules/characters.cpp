// Characters are told byte by byte, and, where the machine has blocks, most of them by
// sixteen bytes at once, without asking which bytes there are:
//
// A byte goes on with a character exactly if one of the three before it begins one of so
// many bytes; which first bytes there are, and what the second may be behind some of them,
// is compared. So each block is held against itself one, two and three bytes back. What is
// rare (U+FFC0 to U+FFFF, characters past U+FFFFF, and what is wrong) is found, and is then
// told byte by byte.

#include <algorithm>

#include <corvel/byte_scan.h>
#include <corvel/compiler.h>
#include <tessit/rules/characters.h>
#include <tessit/rules/characters_wide.h>
#include <tessit/rules/name_chars.h>

namespace tessit {

namespace {

unsigned byteAt(std::string_view text, std::size_t place) noexcept {
    return static_cast<unsigned char>(text[place]);
}

bool isContinuation(unsigned byte) noexcept {
    return (byte & 0xC0) == 0x80;
}

// What the first byte says, right or wrong.
std::size_t announcedLength(unsigned first) noexcept {
    return first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF8 ? 4 : 1;
}

constexpr std::uint32_t NoCharacter = 0xFFFFFFFF;

// The character that takes so many bytes at a text's begin.
std::uint32_t decodeBytes(std::string_view text, std::size_t length) noexcept {
    constexpr std::uint32_t Least[] = {0, 0, 0x80, 0x800, 0x10000};
    const unsigned first = byteAt(text, 0);
    if (first < 0x80) return first;
    if (length == 1 || length != announcedLength(first)) return NoCharacter;
    std::uint32_t character = first & (0x7F >> length);
    for (std::size_t i = 1; i < length; ++i)
        character = character << 6 | (byteAt(text, i) & 0x3F);
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return character < Least[length] || isSurrogate || character > 0x10FFFF ? NoCharacter : character;
}

// From the begin of a character on, up to the first that begins at `end` or behind it, or is bad.
const char* checkEach(const char* at, const char* end, const char* textEnd) noexcept {
    while (at < end) {
        const std::string_view rest(at, static_cast<std::size_t>(textEnd - at));
        const std::size_t length = lengthOfSequence(rest);
        if (!isXmlCharacter(decodeBytes(rest, length))) break;
        at += length;
    }
    return at;
}

#if defined(TESSIT_SCAN_BLOCKS)

using corvel::Block;
using corvel::blockAt;
using SignedBlock [[gnu::vector_size(16)]] = signed char;

constexpr std::size_t LongestBack = 3;  // bytes of a character in front of its last one

// What is true or false of a byte is in its topmost bit.
TESSIT_ALWAYS_INLINE inline bool isAnyTrue(Block block) noexcept {
    return corvel::matchesOf(reinterpret_cast<SignedBlock>(block) < 0) != 0;
}

// Of a comparison.
template <typename Comparison>
TESSIT_ALWAYS_INLINE inline Block asBlock(Comparison comparison) noexcept {
    return reinterpret_cast<Block>(comparison);
}

// Whether bytes are as large as one from 0x80 on.
TESSIT_ALWAYS_INLINE inline Block isAtLeast(Block bytes, unsigned char least) noexcept {
    return corvel::lessened(bytes, static_cast<unsigned char>(least - 0x80));
}

// Whether a byte is of ASCII, and no control but those that are allowed.
TESSIT_ALWAYS_INLINE inline Block isPlain(Block bytes) noexcept {
    return asBlock(reinterpret_cast<SignedBlock>(bytes) > 0x1F) | asBlock(bytes == '\n') |
           asBlock((bytes | ('\t' ^ '\r')) == '\r');
}

TESSIT_ALWAYS_INLINE inline Block doesNotGoOn(Block bytes) noexcept {
    return asBlock(reinterpret_cast<SignedBlock>(bytes) > static_cast<signed char>(0xBF));
}

// Whether sixteen bytes are sound, where no character of more than two bytes begins in them or the three in front.
TESSIT_ALWAYS_INLINE inline Block isSoundUpToTwo(const char* at) noexcept {
    const Block bytes = blockAt(at);
    const Block mustGoOn = isAtLeast(blockAt(at - 1), 0xC0);
    const Block beginsNothing = asBlock((bytes & 0xFE) == 0xC0);
    return (mustGoOn ^ doesNotGoOn(bytes)) & (isPlain(bytes) | bytes) & ~beginsNothing;
}

// The same where no byte is 0xF4 or more.
TESSIT_ALWAYS_INLINE inline Block isSound(const char* at) noexcept {
    const Block bytes = blockAt(at), back1 = blockAt(at - 1), back2 = blockAt(at - 2), back3 = blockAt(at - 3);
    const Block mustGoOn = isAtLeast(back1, 0xC0) | isAtLeast(back2, 0xE0) | isAtLeast(back3, 0xF0);
    // Behind E0 comes A0 at least, and 90 behind F0: 0x10 more, so that they are the same.
    const Block isTooLong = asBlock((back1 & 0xEF) == 0xE0) & ~isAtLeast(bytes + (back1 & 0x10), 0xA0);
    const Block isSurrogate = asBlock(back1 == 0xED) & isAtLeast(bytes, 0xA0);
    const Block beginsNothing = asBlock((bytes & 0xFE) == 0xC0);
    const Block mayBeForbidden = asBlock(back1 == 0xEF) & asBlock(bytes == 0xBF);
    return (mustGoOn ^ doesNotGoOn(bytes)) & (isPlain(bytes) | bytes) &
           ~(isTooLong | isSurrogate | beginsNothing | mayBeForbidden);
}

// Whether all of so many blocks are.
template <std::size_t Count, typename Is>
TESSIT_ALWAYS_INLINE inline bool areAll(const char* at, Is is) noexcept {
    Block all = is(at);
    for (std::size_t i = 1; i < Count; ++i)
        all &= is(at + 16 * i);
    return !isAnyTrue(~all);
}

// The largest bytes of so many blocks and the three bytes in front of them.
template <std::size_t Count>
TESSIT_ALWAYS_INLINE inline Block largest(const char* at) noexcept {
    Block most = blockAt(at - 3);
    for (std::size_t i = 0; i < Count; ++i)
        most = corvel::larger(most, blockAt(at + 16 * i));
    return most;
}

// Whether a character past ASCII may reach into what follows.
TESSIT_ALWAYS_INLINE inline bool isAsciiInFront(const char* at) noexcept {
    std::uint32_t front;  // with the byte that follows
    std::memcpy(&front, at - 3, sizeof front);
    return (front & 0x80808080) == 0;
}

// Whether nothing is to be looked at in so many blocks. Three bytes stand in front of them. Says whether to
// begin with the guess that they are plain the next time.
template <std::size_t Count>
TESSIT_ALWAYS_INLINE inline bool areSound(const char* at, bool& guessPlain) noexcept {
    if (guessPlain && areAll<Count>(at, [](const char* block) { return isPlain(blockAt(block)); }))
        if (isAsciiInFront(at)) return true;
    const Block most = largest<Count>(at);
    guessPlain = !isAnyTrue(most);
    if (!isAnyTrue(isAtLeast(most, 0xE0))) return areAll<Count>(at, isSoundUpToTwo);
    return !isAnyTrue(isAtLeast(most, 0xF4)) && areAll<Count>(at, isSound);
}

// The begin of the character to which the byte belongs that `at` is at, or `at` where it begins one itself.
// All in front of it is sound.
const char* characterBegin(const char* at, const char* textBegin) noexcept {
    const char* first = at;
    while (first != textBegin && at - first < static_cast<std::ptrdiff_t>(LongestBack)) {
        --first;
        const auto byte = static_cast<unsigned char>(*first);
        if (!isContinuation(byte)) return first + announcedLength(byte) > at ? first : at;
    }
    return at;
}

#if defined(TESSIT_WIDE_CHARACTERS)

// The same as `passBlocks`, where the processor has larger ones. A first byte is judged there with the one behind it:
// one that a block ends with is looked at again.
const char* passWideBlocks(const char*& at, const char* textBegin, const char* textEnd) noexcept {
    constexpr std::ptrdiff_t Length = 64;
    for (;;) {
        at = passSound64(at, textEnd);
        if (static_cast<unsigned char>(at[-1]) >= 0xC0) --at;
        if (textEnd - at < Length) return nullptr;
        const char* const next = at + Length;
        if (const char* const stop = checkEach(characterBegin(at, textBegin), next, textEnd); stop < next) return stop;
        at = next;
    }
}

#endif

// Moves on by whole blocks, so many at once; the bad character where there is one, else null.
template <std::size_t Count>
const char* passBlocks(const char*& at, const char* textBegin, const char* textEnd) noexcept {
    constexpr std::size_t Length = Count * sizeof(Block);
    bool guessPlain = true;
    for (; static_cast<std::size_t>(textEnd - at) >= Length; at += Length) {
        if (areSound<Count>(at, guessPlain)) continue;
        const char* const next = at + Length;
        if (const char* const stop = checkEach(characterBegin(at, textBegin), next, textEnd); stop < next) return stop;
    }
    return nullptr;
}

#endif

}  // namespace

std::optional<std::uint32_t> decodeFirst(std::string_view text) noexcept {
    const std::uint32_t character = decodeBytes(text, lengthOfSequence(text));
    return character == NoCharacter ? std::nullopt : std::optional(character);
}

std::size_t lengthOfSequence(std::string_view text) noexcept {
    const std::size_t most = std::min(announcedLength(byteAt(text, 0)), text.size());
    std::size_t length = 1;
    while (length < most && isContinuation(byteAt(text, length)))
        ++length;
    return length;
}

const char* findBadCharacter(std::string_view text, [[maybe_unused]] bool mayUseWideBlocks) noexcept {
    const char *at = text.data(), *const end = at + text.size();
#if defined(TESSIT_SCAN_BLOCKS)
    const char* const begin = at;
    if (text.size() > sizeof(Block) + LongestBack) at = checkEach(at, begin + LongestBack, end);
    if (static_cast<std::size_t>(at - begin) < LongestBack) return checkEach(at, end, end);  // short, or bad
#if defined(TESSIT_WIDE_CHARACTERS)
    if (mayUseWideBlocks && hasWideBlocks())
        if (const char* const bad = passWideBlocks(at, begin, end)) return bad;
#endif
    if (const char* const bad = passBlocks<4>(at, begin, end)) return bad;
    if (const char* const bad = passBlocks<1>(at, begin, end)) return bad;
    at = characterBegin(at, begin);
#endif
    return checkEach(at, end, end);
}

}  // namespace tessit
