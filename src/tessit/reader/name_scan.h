#pragma once

#include <corvel/byte_scan.h>
#include <tessit/reader/char_class.h>

/// Scans of names by the block. Where a name ends differs from tag to tag: a loop
/// over its bytes ends in a branch that is mostly mispredicted, and costs more than
/// classifying sixteen bytes at once.
namespace tessit {

/// The name at the front of sixteen bytes. Says what `nameByte` would, byte by byte.
class NameBlock {
public:
    static constexpr std::ptrdiff_t Size = 16;

    explicit NameBlock(const char* at) {
        const Found found = find(at);
        name = found.length;
        local = found.localStart;
        isComplete = name != Size && nameByte(at[name]) == EndsName && nameByte(*at) == StartsName;
    }

    /// Whether the name ends in the block and has nothing in it that needs thought.
    bool isWhole() const { return isComplete; }
    std::size_t length() const { return name; }

    /// Where the local name starts: behind the first colon, or at 0.
    std::size_t localStart() const { return local; }

private:
    struct Found {
        std::size_t length;  // up to what is not ASCII of a name; `Size` where all is
        std::size_t localStart;
    };

#if defined(TESSIT_SCAN_BLOCKS)
    static Found find(const char* at) {
        const corvel::Block block = corvel::blockAt(at);
        const corvel::Block letters = (block | 0x20) - 'a', others = block - '-';  // below '-' wraps around
        const auto isName = (letters <= 'z' - 'a') | ((others <= ':' - '-') & (block != '/')) | (block == '_');
        const corvel::Matches ends = ~corvel::matchesOf(isName) & AllBytes;
        const corvel::Matches inFront = (ends & (0 - ends)) - 1;
        const corvel::Matches colons = corvel::matchesOf(block == ':') & inFront;
        return {ends == 0 ? Size : corvel::firstMatch(ends), colons == 0 ? 0 : corvel::firstMatch(colons) + 1};
    }

    static constexpr corvel::Matches AllBytes =
        corvel::BitsOfMatch == 1 ? corvel::Matches{0xFFFF} : ~corvel::Matches{0};
#else
    static Found find(const char* at) {
        Found found{0, 0};
        for (; found.length != Size; ++found.length) {
            const NameByte kind = nameByte(at[found.length]);
            if (kind == EndsName || kind == MultiByteName) break;
            if (kind == SplitsName && found.localStart == 0) found.localStart = found.length + 1;
        }
        return found;
    }
#endif

    std::size_t name;
    std::size_t local;
    bool isComplete;
};

}  // namespace tessit
