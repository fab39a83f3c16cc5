#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <corvel/c_string.h>

/// The conversions to UTF-8 that need no tables. Each counts its result first, so
/// that it allocates once at most, and gives up before that where the result would
/// have more bytes than it may: then false.
namespace voxal {

/// Appends the UTF-8 form of ISO-8859-1 text, unless that has more than `mostBytes`.
bool appendLatin1(QeCString& utf8, std::string_view bytes, std::uint64_t mostBytes);

/// Appends the UTF-8 form of UTF-16 text in the given byte order, unless that has more
/// than `mostBytes`. A last odd byte is ignored; an unpaired surrogate is encoded like any
/// other unit, in three bytes.
template <std::endian Order>
bool appendUtf16(QeCString& utf8, std::string_view bytes, std::uint64_t mostBytes);

/// Where UTF-16 text ends to be well-formed: at an unpaired surrogate or a last odd byte, or at its end.
template <std::endian Order>
std::size_t findMalformedUtf16(std::string_view bytes) noexcept;

/// Writes the UTF-8 form of a code point, 1 to 4 bytes, and returns where it ends.
/// Nothing is rejected; of a value past U+1FFFFF only the low 21 bits remain.
inline char* putUtf8(char* out, std::uint32_t codePoint) noexcept {
    const auto continuation = [codePoint](unsigned shift) {
        return static_cast<char>(0x80 | ((codePoint >> shift) & 0x3F));
    };
    if (codePoint < 0x80) {
        *out++ = static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        *out++ = static_cast<char>(0xC0 | (codePoint >> 6));
        *out++ = continuation(0);
    } else if (codePoint < 0x10000) {
        *out++ = static_cast<char>(0xE0 | (codePoint >> 12));
        *out++ = continuation(6);
        *out++ = continuation(0);
    } else {
        *out++ = static_cast<char>(0xF0 | ((codePoint >> 18) & 0x07));
        *out++ = continuation(12);
        *out++ = continuation(6);
        *out++ = continuation(0);
    }
    return out;
}

}  // namespace voxal
