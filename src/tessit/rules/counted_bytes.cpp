// Counts many bytes at once: those that a window is about to lose, and that nobody asked about.

#include <algorithm>
#include <cstddef>

#include <corvel/byte_scan.h>
#include <tessit/rules/characters_wide.h>
#include <tessit/rules/counted_bytes.h>

namespace tessit {

#if defined(TESSIT_SCAN_BLOCKS)

namespace {

using corvel::Block;

Block onesWhere(auto comparison) noexcept {
    return reinterpret_cast<Block>(comparison);
}

std::uint64_t sumOf(Block counts) noexcept {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i != sizeof counts; ++i)
        sum += counts[i];
    return sum;
}

// Has `add` look at the blocks in front of `end`, `Together` of them in each call, and has them summed up before there
// are more than a byte can count. One byte more can be read than the blocks have.
template <std::size_t Together, typename Add, typename Sum>
void addBlocks(const char*& at, const char* end, const Add& add, const Sum& sum) noexcept {
    constexpr std::size_t Most = 255 / Together, Size = Together * sizeof(Block);
    while (const std::size_t steps = static_cast<std::size_t>(end - at - (end != at)) / Size) {
        for (std::size_t left = std::min(steps, Most); left != 0; --left, at += Size)
            add(at);
        sum();
    }
}

}  // namespace

#endif

std::uint64_t countLineEnds(const char* at, const char* end, LineEnds ends,
                            [[maybe_unused]] bool mayUseWideBlocks) noexcept {
    const bool hasReturns = ends == LineEnds::All;
    std::uint64_t lines = 0;
#if defined(TESSIT_WIDE_CHARACTERS)
    if (mayUseWideBlocks && hasWideBlocks()) at = passLineEnds64(at, end, hasReturns, lines);
#endif
#if defined(TESSIT_SCAN_BLOCKS)
    Block feeds{}, returns{};
    const auto sum = [&] {
        lines += sumOf(feeds) + sumOf(returns);
        feeds = returns = Block{};
    };
    const auto areFeeds = [](const char* block) { return onesWhere(corvel::blockAt(block) == '\n'); };
    const auto addFour = [&](const char* block) {
        feeds -= (areFeeds(block) + areFeeds(block + 16)) + (areFeeds(block + 32) + areFeeds(block + 48));
    };
    const auto addBoth = [&](const char* block) {
        feeds -= areFeeds(block);
        returns -= onesWhere((corvel::blockAt(block) == '\r') & (corvel::blockAt(block + 1) != '\n'));
    };
    hasReturns ? addBlocks<1>(at, end, addBoth, sum) : addBlocks<4>(at, end, addFour, sum);
#endif
    for (; at != end; ++at)
        lines += *at == '\n' || (hasReturns && *at == '\r' && (at + 1 == end || at[1] != '\n'));
    return lines;
}

ByteCounts countBytes(const char* at, const char* end) noexcept {
    ByteCounts counts;
#if defined(TESSIT_SCAN_BLOCKS)
    Block continuations{}, pastPlane{};
    const auto add = [&](const char* block) {
        const Block bytes = corvel::blockAt(block);
        continuations -= onesWhere((bytes & 0xC0) == 0x80);
        pastPlane -= onesWhere((bytes & 0xF0) == 0xF0);
    };
    addBlocks<1>(at, end, add, [&] {
        counts.continuations += sumOf(continuations);
        counts.pastPlane += sumOf(pastPlane);
        continuations = pastPlane = Block{};
    });
#endif
    for (; at != end; ++at) {
        const auto byte = static_cast<unsigned char>(*at);
        counts.continuations += (byte & 0xC0) == 0x80;
        counts.pastPlane += byte >= 0xF0;
    }
    return counts;
}

const char* findLineBegin(const char* first, const char* place, LineEnds ends) noexcept {
    const char other = ends == LineEnds::All ? '\r' : '\n';
#if defined(TESSIT_SCAN_BLOCKS)
    while (place - first >= static_cast<std::ptrdiff_t>(sizeof(Block)) &&
           corvel::matchBlock(place - sizeof(Block), '\n', other) == 0)
        place -= sizeof(Block);
#endif
    while (place != first && place[-1] != '\n' && place[-1] != other)
        --place;
    return place;
}

}  // namespace tessit
