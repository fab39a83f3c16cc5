#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <voxal/transcode.h>

#include <corvel/byte_copy.h>
#include <corvel/byte_scan.h>
#include <corvel/c_string.h>
#include <tessit/rules/limits.h>

namespace tessit {

/// Appends to a string through a pointer into its spare room, so that short
/// pieces cost a few moves each. The string has its right length again once the
/// builder is gone, also when an exception ends it. Throws `Exceeded` before the string would
/// have more than `most` bytes, for that limit and place.
class TextBuilder {
public:
    explicit TextBuilder(QeCString& target, std::uint64_t most = QeXmlLimits::None, Limit exceeded = Limit::Text,
                         const char* place = nullptr)
        : text(target), out(nullptr), limit(nullptr), mostBytes(most), whenExceeded{exceeded, place} {
        openRoom(text.length(), text.capacity());
    }
    ~TextBuilder() { text.truncate(written()); }
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;

    void put(char byte) {
        need(1);
        *out++ = byte;
    }

    void put(std::uint32_t character) {
        need(character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4);
        out = voxal::putUtf8(out, character);
    }

    void put(std::string_view piece) {
        need(piece.size());
        corvel::copyBytes(out, piece.data(), piece.size());
        out += piece.size();
    }

    /// Takes over bytes from `at` up to the first that is one of `bytes`, or to `end`.
    template <typename... Byte>
    void putRun(const char*& at, const char* end, Byte... bytes) {
        for (;;) {
            const std::ptrdiff_t count = std::min(limit - out, end - at);
            corvel::copyUntilAny(at, at + count, out, bytes...);
            if (at == end || (... || (*at == bytes))) return;
            need(1);
        }
    }

private:
    std::size_t written() const { return static_cast<std::size_t>(out - text.begin()); }

    void need(std::size_t count) {
        if (static_cast<std::size_t>(limit - out) >= count) return;
        hold(written() + count, mostBytes, whenExceeded.limit, whenExceeded.place);
        openRoom(written(), written() + std::max<std::size_t>(count, 64));
    }

    void openRoom(std::size_t length, std::size_t capacity) {
        char* const start = text.resizeForOverwrite(capacity);
        text.resizeForOverwrite(text.capacity());  // growing can give more than was asked for
        out = start + length;
        limit = start + std::min<std::uint64_t>(text.capacity(), mostBytes);
    }

    QeCString& text;
    char* out;
    char* limit;
    const std::uint64_t mostBytes;
    const Exceeded whenExceeded;
};

}  // namespace tessit
