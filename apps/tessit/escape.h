#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

/// Escapes that keep every line of output one line in its own order, every field one
/// field, and the whole valid UTF-8, whatever bytes a document holds.
///
/// Backslash, line feed, carriage return, tab and double quote become `\\`, `\n`,
/// `\r`, `\t` and `\"`; the other bytes that cannot stand become `\xNN`, one each.

/// Where the text will stand, which decides what would break the form there.
enum class Within {
    Line,    ///< on its own: control characters (of direction, too), line separators, bytes that are not UTF-8,
             ///< backslashes
    Quotes,  ///< also double quotes
    Braces   ///< also closing braces and spaces
};

struct Character {
    std::uint32_t code;
    std::size_t length;  ///< in bytes; 0 where the bytes are not UTF-8
};

/// The character in front of a text that is not empty.
inline Character characterIn(std::string_view text) {
    constexpr std::uint32_t Least[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || text.size() < length) return {0, 0};
    std::uint32_t code = lead & (0x7Fu >> length);
    for (const char byte : text.substr(1, length - 1)) {
        if ((byte & 0xC0) != 0x80) return {0, 0};
        code = code << 6 | static_cast<std::uint32_t>(byte & 0x3F);
    }
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code < Least[length] || code > 0x10FFFF || isSurrogate ? Character{0, 0} : Character{code, length};
}

namespace escapes {

template <Within Place>
consteval std::array<bool, 256> asciiThatStays() {
    std::array<bool, 256> stays{};
    for (std::size_t byte = 0x20; byte < 0x7F; ++byte)
        stays[byte] = byte != '\\' && !(Place == Within::Quotes && byte == '"') &&
                      !(Place == Within::Braces && (byte == '}' || byte == ' '));
    return stays;
}

/// Whether the character makes another line of what stands behind it, or changes the order in which a terminal shows
/// the line: text could then look like something else than it is.
constexpr bool steersTheLine(std::uint32_t code) {
    constexpr struct {
        std::uint32_t first, last;
    } Ranges[] = {{0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};
    return std::any_of(std::begin(Ranges), std::end(Ranges),
                       [code](const auto& range) { return code >= range.first && code <= range.last; });
}

/// Whether a character that is not ASCII can stand. Below U+00A0, there are more controls.
constexpr bool stays(std::uint32_t code) {
    return code >= 0xA0 && !steersTheLine(code);
}

template <Within Place>
std::size_t runThatStays(std::string_view text) {
    static constexpr std::array<bool, 256> Stays = asciiThatStays<Place>();
    std::size_t at = 0;
    while (at < text.size()) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte < 0x80) {
            if (!Stays[byte]) break;
            ++at;
            continue;
        }
        const Character character = characterIn(text.substr(at));
        if (character.length == 0 || !stays(character.code)) break;
        at += character.length;
    }
    return at;
}

/// The letter that names the byte behind a backslash, or 0 for none.
constexpr char letterFor(char byte) {
    switch (byte) {
        case '\n':
            return 'n';
        case '\r':
            return 'r';
        case '\t':
            return 't';
        case '\\':
        case '"':
            return byte;
        default:
            return '\0';
    }
}

template <typename Text>
void appendEscape(Text& out, char byte) {
    constexpr char Digits[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    const char named[] = {'\\', letterFor(byte)};
    const char numbered[] = {'\\', 'x', Digits[value >> 4], Digits[value & 0xF]};
    if (named[1] != '\0') {
        out.append(named, sizeof named);
    } else {
        out.append(numbered, sizeof numbered);
    }
}

}  // namespace escapes

/// Appends the text with its escapes to `out`, a string or anything else with
/// `append(bytes, length)`. O(bytes); runs are appended whole.
template <Within Place, typename Text>
void appendEscaped(Text& out, std::string_view text) {
    for (;;) {
        const std::size_t run = escapes::runThatStays<Place>(text);
        out.append(text.data(), run);
        if (run == text.size()) return;
        escapes::appendEscape(out, text[run]);
        text.remove_prefix(run + 1);
    }
}

/// The text on its own, for a message.
inline std::string escaped(std::string_view text) {
    std::string result;
    appendEscaped<Within::Line>(result, text);
    return result;
}
