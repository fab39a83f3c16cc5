#include <corvel/value_error.h>
#include <corvel/value_message.h>

namespace corvel {

namespace {

constexpr std::size_t LongestQuote = 64;

bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

std::string_view front(std::string_view text) {
    if (text.size() <= LongestQuote) return text;
    std::size_t length = LongestQuote;
    while (length > LongestQuote - 3 && continuesCharacter(text[length]))
        --length;
    return text.substr(0, length);
}

QeCString quoted(std::string_view text) {
    const std::string_view shown = front(text);
    QeCString quote("\"");
    for (char byte : shown)
        quote += static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F ? '?' : byte;
    quote += shown.size() < text.size() ? "...\"" : "\"";
    return quote;
}

void raiseValueError(std::string_view expected, std::string_view found, std::string_view context) {
    QeCString msg("Expected ");
    msg += expected;
    msg += ", found ";
    msg += found;
    msg += context;
    throw QeValueError(msg);
}

}  // namespace corvel
