// What names, values and texts hold that needs thought: characters past ASCII,
// references, line ends, and what stands at the end of the input.

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <voxal/transcode.h>

#include <tessit/reader/scanner.h>
#include <tessit/reader/text_builder.h>

using corvel::findAny;
using corvel::findByte;

namespace tessit {

std::string_view Scanner::take(std::size_t count) {
    if (static_cast<std::size_t>(end - cursor) < count) raise("Premature EOF");
    cursor += count;
    return {cursor - count, count};
}

// A name byte by byte: one of more than a block, or at the end of the document, or with characters past ASCII.
TESSIT_NOINLINE RawName Scanner::readLongName() {
    if (cursor == end) raiseEnd();
    const char* const start = cursor;
    if (nameByte(*start) != StartsName) return readNameSlowly(start, 0);
    const char* at = start + 1;
    while (at != end && nameByte(*at) - 1u < StartsName)
        ++at;
    std::size_t localStart = 0;
    if (at != end && nameByte(*at) == SplitsName) {
        localStart = static_cast<std::size_t>(at + 1 - start);
        do
            ++at;
        while (at != end && nameByte(*at) - 1u < SplitsName);
    }
    if (at == end) raiseEnd();
    if (nameByte(*at) == MultiByteName) return readNameSlowly(at, localStart);
    cursor = at;
    return {start, static_cast<std::size_t>(at - start), localStart};
}

// Goes on with a name at `from`, where a character stands that needs thought; the
// cursor is still on the name's first.
RawName Scanner::readNameSlowly(const char* from, std::size_t localStart) {
    const char* const start = cursor;
    const char* at = from;
    if (at == start) {
        std::uint32_t first = 0;
        cursor = passCharacter(at, first);
        if (charClass(first) != NameStart) {
            const auto length = static_cast<std::size_t>(cursor - at);
            raiseWith("Illegal starting character for name: ", {at, first == 0 ? 0 : length});
        }
        at = cursor;
        if (first == ':') localStart = 1;
    }
    for (;;) {
        if (at == end) raiseEnd();
        const NameByte kind = nameByte(*at);
        if (kind == EndsName) break;
        if (kind == MultiByteName) {
            std::uint32_t character;
            at = passCharacter(at, character);
            continue;
        }
        ++at;
        if (kind == SplitsName && localStart == 0) localStart = static_cast<std::size_t>(at - start);
    }
    cursor = at;
    return {start, static_cast<std::size_t>(at - start), localStart};
}

namespace {

// Decodes a character of that length, a surrogate too; a value past Unicode where the bytes are not UTF-8.
std::uint32_t decodeCharacter(const char* at, std::ptrdiff_t length) {
    constexpr std::uint32_t Malformed = 0x110000;
    constexpr std::uint32_t Least[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(*at);
    if (length == 1) return lead;
    if (lead < 0xC2 || lead > 0xF4) return Malformed;
    std::uint32_t value = lead & (0x7Fu >> length);
    for (std::ptrdiff_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(at[i]);
        if ((byte & 0xC0) != 0x80) return Malformed;
        value = value << 6 | (byte & 0x3F);
    }
    return value < Least[length] ? Malformed : value;
}

}  // namespace

// Decodes the character at `at` and returns where it ends. Errors are raised with the cursor on its first byte.
const char* Scanner::passCharacter(const char* at, std::uint32_t& codePoint) {
    const std::ptrdiff_t length = characterLength(static_cast<unsigned char>(*at));
    if (end - at < length) {
        input.needMore();
        cursor = at;
        raise("Premature EOF inside character");
    }
    codePoint = decodeCharacter(at, length);
    if (codePoint > 0x10FFFF) {
        cursor = at;
        raise("Malformed UTF-8 in name");
    }
    return at + length;
}

char Scanner::readEqualsAndQuote() {
    skipSpace();
    if (take() != '=') raise("Invalid character in attribute definition");
    skipSpace();
    const char quote = take();
    if (quote != '"' && quote != '\'') raise("invalid character in attribute definition");
    return quote;
}

// Entered in front of the quote.
TESSIT_NOINLINE bool Scanner::readLongValueInto(QeCString& value, bool expands) {
    const char quote = *cursor++;
    const char* const start = cursor;
    const char* const stop = findAny(start, end, quote, '<', expands ? '&' : quote);
    if (stop == end || *stop == '<') return false;
    cursor = stop + 1;
    if (*stop == quote) {
        hold(static_cast<std::size_t>(stop - start), input.limits().value, Limit::Value, start);
        value.assign(start, static_cast<std::size_t>(stop - start));
    } else {
        value.clear();
        expandValue(value, start, quote);
    }
    return true;
}

std::string_view Scanner::readValue(char quote, bool expands, QeCString& scratch) {
    const char* const start = cursor;
    const char* const stop = findAny(start, end, quote, '<', expands ? '&' : quote);
    cursor = stop;
    const char byte = take();
    if (byte == '<') raise("Syntax error: unterminated attribute value");
    if (byte == quote) {
        hold(static_cast<std::size_t>(stop - start), input.limits().value, Limit::Value, start);
        return {start, static_cast<std::size_t>(stop - start)};
    }
    expandValue(scratch, start, quote);
    return {};
}

// Entered behind the first '&' of the value that begins at `start`; appends the value to `target`.
TESSIT_NOINLINE void Scanner::expandValue(QeCString& target, const char* start, char quote) {
    const std::uint64_t most = std::min(input.limits().value, QeXmlLimits::None - target.length());
    TextBuilder value(target, target.length() + most, Limit::Value, start);
    value.put({start, static_cast<std::size_t>(cursor - 1 - start)});
    for (;;) {
        char encoded[4];
        value.put(readReference(encoded));
        value.putRun(cursor, end, quote, '<', '&');
        const char stop = take();
        if (stop == quote) return;
        if (stop == '<') raise("Syntax error: unterminated attribute value");
    }
}

void Scanner::appendText(QeCString& target) {
    TextBuilder text(target, input.limits().text);
    for (;;) {
        text.putRun(cursor, end, '<', '&', '\r');
        if (cursor == end || *cursor == '<') return;
        if (*cursor++ == '&') {
            char encoded[4];
            text.put(readReference(encoded));
        } else if (cursor == end || *cursor != '\n') {
            text.put('\n');  // a lone carriage return; before a line feed it is dropped
        }
    }
}

// Near the end of a document, which is most of a small one, stand line ends and blanks: blocks would not pay.
template <typename... Byte>
bool Scanner::readTextRun(QeCString& text, Byte... others) {
    constexpr std::ptrdiff_t Near = 32;
    const char* stop = cursor;
    while (end - stop <= Near && stop != end && isSpace(*stop) && *stop != '\r')
        ++stop;
    stop = corvel::findAnyFar(stop, end, '<', '&', '\r', others...);
    hold(static_cast<std::size_t>(stop - cursor), input.limits().text, Limit::Text);
    text.assign(cursor, static_cast<std::size_t>(stop - cursor));
    cursor = stop;
    return end - stop >= 2 && stop[0] == '<' && stop[1] != '!' && stop[1] != '?';
}

template bool Scanner::readTextRun(QeCString& text);
template bool Scanner::readTextRun(QeCString& text, char other);

void Scanner::skipInstruction() {
    constexpr std::string_view End = "?>";
    const char* const found = corvel::findText(cursor, end, End);
    if (found == end) raiseEnd();
    cursor = found + End.size();
}

void Scanner::skipDocumentType() {
    for (std::ptrdiff_t brackets = 0;;) {
        const char byte = take();
        if (byte == '[') ++brackets;
        if (byte == ']') --brackets;
        if (byte == '>' && brackets == 0) return;
    }
}

void Scanner::skipComment() {
    if (take() != '-') raise("Syntax error on comment");
    for (;;) {
        cursor = findByte(cursor, end, '-');
        take();
        if (take() != '-') continue;
        if (take() != '>') raise("Invalid -- inside comment");
        return;
    }
}

void Scanner::readCDATA(QeCString& text) {
    constexpr std::string_view End = "]]>";
    if (readName().whole() != "CDATA") raise("'<![' wasn't followed by 'CDATA'");
    if (take() != '[') raise("'<![CDATA' wasn't followed by '['");
    const char* const found = corvel::findText(cursor, end, End);
    if (found == end) raiseEnd();
    const auto length = static_cast<std::size_t>(found - cursor);
    hold(text.length() + length, input.limits().text, Limit::Text);
    text.append(cursor, length);
    cursor = found + End.size();
}

std::string_view Scanner::readPseudoValue() {
    skipSpace();
    take();
    skipSpace();
    take();
    const char* const start = cursor;
    for (;;) {
        const char byte = take();
        if (byte == '"' || byte == '\'') return {start, static_cast<std::size_t>(cursor - 1 - start)};
    }
}

namespace {

// A predefined entity by its name with the semicolon, and as a word in which the bytes behind it count for nothing.
struct Entity {
    static constexpr std::size_t WordSize = sizeof(std::uint64_t);

    consteval Entity(std::string_view withSemicolon, char standsFor)
        : name(withSemicolon), character(standsFor), word(0), mask(0) {
        std::array<char, WordSize> bytes{}, ones{};
        for (std::size_t i = 0; i < name.size(); ++i) {
            bytes[i] = name[i];
            ones[i] = static_cast<char>(0xFF);
        }
        word = std::bit_cast<std::uint64_t>(bytes);
        mask = std::bit_cast<std::uint64_t>(ones);
    }

    std::string_view name;
    char character;
    std::uint64_t word;
    std::uint64_t mask;
};

constexpr Entity Entities[] = {{"lt;", '<'}, {"gt;", '>'}, {"amp;", '&'}, {"apos;", '\''}, {"quot;", '"'}};

// What is found of the entities: the character, and how many bytes its name and semicolon take; or 0.
struct FoundEntity {
    char character;
    std::size_t length;
};

// The entity whose name begins at `at`, where a word can be read. Which one comes
// next is hard to predict: all are tried, without a branch.
FoundEntity findEntity(const char* at) {
    std::uint64_t word;
    std::memcpy(&word, at, sizeof word);
    unsigned character = 0;
    std::size_t length = 0;
    for (const Entity& entity : Entities) {
        const std::size_t all = -static_cast<std::size_t>((word & entity.mask) == entity.word);
        character |= static_cast<unsigned char>(entity.character) & static_cast<unsigned>(all);
        length |= entity.name.size() & all;
    }
    return {static_cast<char>(character), length};
}

// Passes the entity whose name begins at `at`, if there is one.
inline bool passEntity(const char*& at, const char* end, char& character) noexcept {
    if (end - at >= std::ptrdiff_t{Entity::WordSize}) {
        const FoundEntity entity = findEntity(at);
        at += entity.length;
        character = entity.character;
        return entity.length != 0;
    }
    for (const Entity& entity : Entities) {
        if (!std::string_view(at, static_cast<std::size_t>(end - at)).starts_with(entity.name)) continue;
        at += entity.name.size();
        character = entity.character;
        return true;
    }
    return false;
}

}  // namespace

bool Scanner::passPredefined(char& character) noexcept {
    return passEntity(cursor, end, character);
}

// Entered just after the '&'; returns what the reference stands for. An unknown
// entity is no error: it stands for its reference as written. `encoded` is room
// for the character.
std::string_view Scanner::readReference(char (&encoded)[4]) {
    if (passEntity(cursor, end, encoded[0])) return {encoded, 1};
    const char* const semicolon = findByte(cursor, end, ';');
    if (semicolon == end) raiseEnd();
    const std::string_view body(cursor, static_cast<std::size_t>(semicolon - cursor));
    cursor = semicolon + 1;
    if (body.empty()) raise("Empty reference");
    if (body[0] == '#') return readNumericReference(body.substr(1), encoded);
    return {body.data() - 1, body.size() + 2};
}

namespace {

// The value of a digit in the given base, or -1.
int digitValue(char digit, unsigned base) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (base == 16 && digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    if (base == 16 && digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    return -1;
}

}  // namespace

// `body` is what stands between "&#" and ";". The value is not checked: it wraps
// at 32 bits, and no digits after the 'x' make 0.
std::string_view Scanner::readNumericReference(std::string_view body, char (&encoded)[4]) {
    if (body.empty()) raise("Empty character reference");
    const bool hexadecimal = body[0] == 'x';
    const unsigned base = hexadecimal ? 16 : 10;
    std::uint32_t value = 0;
    for (const char digit : body.substr(hexadecimal ? 1 : 0)) {
        const int digitIn = digitValue(digit, base);
        if (digitIn < 0 && hexadecimal) raise("invalid character in hexadecimal character reference.");
        if (digitIn < 0) raise("invalid character in decimal character reference.");
        value = value * base + static_cast<unsigned>(digitIn);
    }
    return {encoded, static_cast<std::size_t>(voxal::putUtf8(encoded, value) - encoded)};
}

}  // namespace tessit
