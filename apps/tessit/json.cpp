#include "json.h"

#include "escape.h"

namespace {

std::string unicodeEscape(std::uint32_t code) {
    constexpr char Digits[] = "0123456789ABCDEF";
    std::string escape = "\\u";
    for (const unsigned shift : {12u, 8u, 4u, 0u})
        escape += Digits[code >> shift & 0xF];
    return escape;
}

// How the character in front is written that cannot stand for itself; all of these are below U+10000.
std::string escapeFor(const Character& character) {
    if (character.length == 0) return "\xEF\xBF\xBD";
    const char letter = character.length == 1 ? escapes::letterFor(static_cast<char>(character.code)) : '\0';
    return letter != '\0' ? std::string{'\\', letter} : unicodeEscape(character.code);
}

}  // namespace

void appendJson(std::string& out, std::string_view text) {
    out += '"';
    for (;;) {
        const std::size_t run = escapes::runThatStays<Within::Quotes>(text);
        out += text.substr(0, run);
        text.remove_prefix(run);
        if (text.empty()) break;
        const Character character = characterIn(text);
        out += escapeFor(character);
        text.remove_prefix(character.length == 0 ? 1 : character.length);
    }
    out += '"';
}
