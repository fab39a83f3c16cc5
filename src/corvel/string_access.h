#pragma once

#include <cstddef>
#include <cstdint>
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

    /// The bytes, to be written over.
    static char* bytesOf(QeCString& text) noexcept { return text.mutableData(); }

    /// Sets the length, up to the capacity, and ends the text there.
    static void setLength(QeCString& text, std::size_t length) noexcept { text.setLength(length); }

    /// @name For what is shared
    /// @{

    /// Blocks have a whole number of units, the terminator's byte included.
    static constexpr std::size_t UnitSize = QeCString::UnitSize;
    static std::uint32_t unitsFor(std::size_t length) { return QeCString::unitsFor(length); }

    /// Whether the string has a block that others may have.
    static bool isShared(const QeCString& text) noexcept { return text.isShared(); }

    /// Puts a string into a block that is to be shared, in place of its old one.
    static void adoptShared(QeCString& text, char* data, std::size_t length, std::uint32_t units) noexcept {
        text.adoptBlock(data, length, units);
        text.raw[QeCString::TagIndex] = QeCString::SharedTag;
    }

    /// Gives a string the block that another one has, and goes on having.
    static void takeOver(QeCString& text, const QeCString& other) noexcept {
        text.releaseBlock();
        std::memcpy(text.raw, other.raw, sizeof text.raw);
    }

    /// @}
};

}  // namespace corvel
