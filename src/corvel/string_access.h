#pragma once

#include <cstddef>
#include <cstring>
#include <span>

#include <corvel/c_string.h>

/// What the library itself may do with a string, beyond what any user may.
namespace corvel {

struct StringAccess {
    /// How many bytes `assignFromWindow` reads, whatever the length.
    static constexpr std::size_t Window = QeCString::Window;

    /// `assign` where `Window` bytes can be read from `bytes` on, none of them the
    /// string's own: texts that fit are moved as a whole, without a branch on their length.
    static void assignFromWindow(QeCString& text, const char* bytes, std::size_t length) {
        text.assignFromWindow(bytes, length);
    }

    /// Whether the text stands inside the object.
    static bool isInline(const QeCString& text) noexcept { return text.isInline(); }

    /// Copies all bytes of an object whose text is inline, more of them than count:
    /// `to` has room for `sizeof(QeCString)`.
    static void copyInline(char* to, const QeCString& text) noexcept { std::memcpy(to, text.raw, sizeof text.raw); }

    /// Where up to `size` more bytes can be written, which count once the length was set.
    static char* roomBehind(QeCString& text, std::size_t size) { return text.roomBehind(size); }

    /// What can be written behind the text without another block. The text has its block for itself.
    static std::span<char> spareRoom(QeCString& text) noexcept {
        if (text.isInline()) return {text.raw + text.length(), QeCString::InlineCapacity - text.length()};
        return {text.heapData() + text.heapLength(), text.heapCapacity() - text.heapLength()};
    }

    /// Sets the length, up to the capacity, and ends the text there.
    static void setLength(QeCString& text, std::size_t length) noexcept { text.setLength(length); }
};

}  // namespace corvel
