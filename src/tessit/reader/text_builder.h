#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <corvel/byte_copy.h>
#include <corvel/byte_scan.h>
#include <corvel/c_string.h>

namespace tessit {

/// Appends to a string through a pointer into its spare room, so that short
/// pieces cost a few moves each. The string has its right length again once the
/// builder is gone, also when an exception ends it.
class TextBuilder {
public:
    explicit TextBuilder(QeCString& target) : text(target), out(nullptr), limit(nullptr) {
        openRoom(text.length(), text.capacity());
    }
    ~TextBuilder() { text.truncate(written()); }
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;

    void put(char byte) {
        need(1);
        *out++ = byte;
    }

    void put(std::string_view piece) {
        need(piece.size());
        corvel::copyBytes(out, piece.data(), piece.size());
        out += piece.size();
    }

    /// Takes over bytes from `at` up to the first that is `a`, `b` or `c`, or to `end`.
    void putRun(const char*& at, const char* end, char a, char b, char c) {
        do {
            need(1);
            const std::ptrdiff_t count = std::min(limit - out, end - at);
            corvel::copyUntilAny(at, at + count, out, a, b, c);
        } while (at != end && *at != a && *at != b && *at != c);
    }

private:
    std::size_t written() const { return static_cast<std::size_t>(out - text.begin()); }

    void need(std::size_t count) {
        if (static_cast<std::size_t>(limit - out) < count)
            openRoom(written(), written() + std::max<std::size_t>(count, 64));
    }

    void openRoom(std::size_t length, std::size_t capacity) {
        char* const start = text.resizeForOverwrite(capacity);
        text.resizeForOverwrite(text.capacity());  // growing can give more than was asked for
        out = start + length;
        limit = start + text.capacity();
    }

    QeCString& text;
    char* out;
    char* limit;
};

}  // namespace tessit
