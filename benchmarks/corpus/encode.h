#pragma once

#include <string>
#include <string_view>

/// Conversions for what is prepared and checked; nothing that is measured uses them.
namespace tessit::benchmarks {

/// Well-formed UTF-8 as UTF-16.
inline std::u16string toUtf16(std::string_view text) {
    std::u16string units;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        char32_t code = length == 1 ? lead : lead & (0x7Fu >> length);
        for (std::size_t k = 1; k < length; ++k)
            code = code << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3Fu);
        if (code >= 0x10000) units += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
        units += static_cast<char16_t>(code >= 0x10000 ? 0xDC00 + (code & 0x3FF) : code);
        i += length;
    }
    return units;
}

/// The bytes of a UTF-16LE document with its byte-order mark.
inline std::string toUtf16LittleEndian(std::string_view text) {
    std::string bytes = "\xFF\xFE";
    for (const char16_t unit : toUtf16(text)) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

/// Text of letters that ISO-8859-1 has, in that encoding.
inline std::string toLatin1(std::string_view text) {
    std::string bytes;
    for (const char16_t unit : toUtf16(text))
        bytes += static_cast<char>(unit);
    return bytes;
}

}  // namespace tessit::benchmarks
