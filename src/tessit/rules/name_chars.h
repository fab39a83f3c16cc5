#pragma once

#include <cstdint>

/// What names are made of by the fifth edition of XML 1.0: letters of every script, those
/// that Unicode has not given out yet included.
namespace tessit {

constexpr bool startsStrictName(std::uint32_t character) noexcept {
    struct Range {
        std::uint32_t first, last;
    };
    constexpr Range Starts[] = {{':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
                                {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
                                {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
                                {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
    for (const auto& [first, last] : Starts)
        if (character >= first && character <= last) return true;
    return false;
}

constexpr bool isInStrictName(std::uint32_t character) noexcept {
    return character == '-' || character == '.' || (character >= '0' && character <= '9') || character == 0xB7 ||
           (character >= 0x300 && character <= 0x36F) || (character >= 0x203F && character <= 0x2040) ||
           startsStrictName(character);
}

/// Whether XML allows the character at all.
constexpr bool isXmlCharacter(std::uint32_t character) noexcept {
    return character >= 0x20 ? character < 0xD800 || (character > 0xDFFF && character < 0xFFFE) ||
                                   (character > 0xFFFF && character < 0x110000)
                             : character == '\t' || character == '\n' || character == '\r';
}

}  // namespace tessit
