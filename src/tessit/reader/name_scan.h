#pragma once

#include <corvel/byte_scan.h>
#include <tessit/reader/char_class.h>

/// Scans of names by the block. Where a name ends differs from tag to tag: a loop
/// over its bytes ends in a branch that is mostly mispredicted, and costs more than
/// classifying sixteen bytes at once.
namespace tessit {

#if defined(TESSIT_SCAN_BLOCKS)

/// The name at the front of sixteen bytes. Says what `nameByte` would, byte by byte.
class NameBlock {
public:
    explicit NameBlock(const char* at) {
        const Block block = blockAt(at);
        const Block letters = (block | 0x20) - 'a', others = block - '-';  // below '-' wraps around
        const auto isName = (letters <= 'z' - 'a') | ((others <= ':' - '-') & (block != '/')) | (block == '_');
        const Matches ends = ~matchesOf(isName) & AllBytes;
        const Matches inFront = (ends & (0 - ends)) - 1;
        colons = matchesOf(block == ':') & inFront;
        size = firstMatch(ends);
        isPlain = ends != 0 && static_cast<signed char>(at[size]) >= 0 && nameByte(*at) == StartsName;
    }

    /// Whether the name ends in the block and has nothing in it that needs thought.
    bool isWhole() const { return isPlain; }
    std::size_t length() const { return size; }

    /// Where the local name starts: behind the first colon, or at 0.
    std::size_t localStart() const { return colons == 0 ? 0 : firstMatch(colons) + 1; }

private:
    static constexpr Matches AllBytes = BitsOfMatch == 1 ? Matches{0xFFFF} : ~Matches{0};

    Matches colons;
    std::size_t size;
    bool isPlain;
};

#endif

}  // namespace tessit
