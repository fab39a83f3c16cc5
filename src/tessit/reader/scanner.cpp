// The markup scanner: one function per construct, each entered and left as its
// comment says. Hot loops run over plain bytes to the first that needs thought.

#include <array>
#include <bit>
#include <cstring>

#include <corvel/byte_scan.h>
#include <tessit/reader/char_class.h>
#include <tessit/reader/name_scan.h>
#include <tessit/reader/text_builder.h>
#include <tessit/reader/transcode.h>
#include <tessit/reader/xml_reader.h>

using corvel::findAny;
using corvel::findByte;
using tessit::nameByte;

// Everything that is called here and stands in this file is made one function: with
// the cursor in a register from one construct to the next, records read 12 % faster.
[[gnu::flatten]] void QeXmlReader::readNextNode() {
    if (nodePending) {
        nodePending = false;
        return;
    }
    for (;;) {
        if (rd() != '<') {
            --cursor;
            return scanContent();
        }
        const char kind = rd();
        if (kind == '/') return readEndTag();
        if (kind == '?') {
            readPIOrXmlDecl();
        } else if (kind != '!') {
            --cursor;
            return readStartTag();
        } else {
            if (cursor == bufferEnd) raiseEnd();
            if (*cursor == '[') {
                cursor -= 2;
                return scanContent();  // a CDATA section is text
            }
            if (*cursor != '-') raiseWith("Invalid character sequence <!", {cursor, 1});
            ++cursor;
            readComment();
        }
    }
}

// Entered just after "</". The name is resolved while the element's scope is still open.
void QeXmlReader::readEndTag() {
    --depth;
    lastNodeType = ElementEnd;
    // Most end tags close the element whose start tag was the last one: then the name is there already.
    if (!takeLastNameAgain()) writeElementName(readName());
    readS();
    closeScope();
    if (const char byte = rd(); byte != '>') raiseWith("Unexpected character ", {&byte, 1});
}

// Passes the name of the last tag, if it stands here again, ended by a '>', and resolves to the same.
bool QeXmlReader::takeLastNameAgain() noexcept {
    const std::string_view raw = lastNameWritten.raw;
    if (static_cast<std::size_t>(bufferEnd - cursor) <= raw.size() || cursor[raw.size()] != '>') return false;
    if (lastNameWritten.state != namespaceStack.state()) return false;
    if (raw.empty() || !corvel::sameBytes(cursor, raw.data(), raw.size())) return false;
    cursor += raw.size();
    return true;
}

// Entered just after the '<'. The scope is opened before the attributes are read,
// so that the tag's declarations go into it; names are resolved once all were seen.
void QeXmlReader::readStartTag() {
    const RawName name = readName();
    namespaceStack.pushScope();
    closedScope.clear();
    if (*cursor == '>') {
        lastAttributes.clear();
    } else {
        expectShapeOf(name);
        if (!expectsShape() || !readIntoSlots()) readAttributes();
    }
    closeStartTag(name);
}

// Entered in front of the '>' or '/', of which there is one.
void QeXmlReader::closeStartTag(const RawName& name) {
    if (*cursor++ == '>') {
        ++depth;
        lastNodeType = ElementStart;
        return writeElementName(name);
    }
    lastNodeType = EmptyElement;
    if (rd() != '>') raise("Invalid '/' found in tag");
    writeElementName(name);
    closeScope();
}

// Reads the attributes of a tag that is just like the last one of its name: the
// names are in their slots already, and the values go there at once. Otherwise goes
// back to where it began, and returns false.
bool QeXmlReader::readIntoSlots() {
    if (!shape->isInSlots || shape->state != namespaceStack.state()) return false;
    const char* const start = cursor;
    openSlots(shape->attributes.size());
    for (const TagShape::Attribute& expected : shape->attributes) {
        if (passExpectedName(expected.name) && readValueInto(lastAttributes.attributes[expected.slot].value)) continue;
        return missShapeAt(start);
    }
    readS();
    const bool isWhole = cursor != bufferEnd && (*cursor == '>' || *cursor == '/');
    if (!isWhole) return missShapeAt(start);
    lastAttributes.lookAtLocalNames();
    shape->lastPause = 0;
    return true;
}

// Goes back to `start`. Returns false.
bool QeXmlReader::missShapeAt(const char* start) noexcept {
    noteMiss();
    cursor = start;
    return false;
}

// Passes whitespace and the name with its '='. If something else stands there, stops anywhere and returns false.
bool QeXmlReader::passExpectedName(const RawName& expected) noexcept {
    readS();
    if (static_cast<std::size_t>(bufferEnd - cursor) <= expected.length || cursor[expected.length] != '=') return false;
    const char* const start = cursor;
    cursor += expected.length + 1;
    return corvel::sameBytes(start, expected.data, expected.length);
}

// Reads a value with its quotes. If there is none, or a wrong one, stops anywhere and returns false.
bool QeXmlReader::readValueInto(QeCString& value) {
    if (cursor == bufferEnd) return false;
    const char quote = *cursor++;
    if (quote != '"' && quote != '\'') return false;
    const char* const start = cursor;
    const char reference = expandAttributeReference ? '&' : quote;
    if (bufferEnd - start >= 32) {
        const std::size_t length = corvel::findIn32(start, quote, '<', reference);
        if (length != 32 && start[length] == quote) {
            value.assignFromWindow(start, length);
            cursor = start + length + 1;
            return true;
        }
    }
    const char* const stop = findAny(start, bufferEnd, quote, '<', reference);
    if (stop == bufferEnd || *stop == '<') return false;
    cursor = stop + 1;
    if (*stop == quote) {
        value.assign(start, static_cast<std::size_t>(stop - start));
    } else {
        value.clear();
        expandValue(value, start, quote);
    }
    return true;
}

// Reads what stands before the '>' or '/' of a start tag.
[[gnu::noinline]] void QeXmlReader::readAttributes() {
    rawAttributes.clear();
    valueScratch.clear();
    for (;;) {
        readS();
        if (cursor == bufferEnd) raiseEnd();
        if (*cursor == '>' || *cursor == '/') return fixupAttributes();
        readAttribute();
    }
}

void QeXmlReader::readAttribute() {
    RawAttribute attribute{readName(), {}, {}};
    readS();
    if (rd() != '=') raise("Invalid character in attribute definition");
    readS();
    const char quote = rd();
    if (quote != '"' && quote != '\'') raise("invalid character in attribute definition");
    readValue(quote, attribute);
    addAttribute(attribute);
}

// Passes the value and its closing quote. A value without references is a view of the document.
void QeXmlReader::readValue(char quote, RawAttribute& attribute) {
    const char* const start = cursor;
    const char* const stop = findAny(start, bufferEnd, quote, '<', expandAttributeReference ? '&' : quote);
    cursor = stop;
    const char byte = rd();
    if (byte == '<') raise("Syntax error: unterminated attribute value");
    if (byte == quote) {
        attribute.value = {start, static_cast<std::size_t>(stop - start)};
    } else {
        const std::size_t scratchStart = valueScratch.length();
        expandValue(valueScratch, start, quote);
        attribute.expanded = {scratchStart, valueScratch.length() - scratchStart};
    }
}

// Entered behind the first '&' of the value that begins at `start`; appends the value to `target`.
[[gnu::noinline]] void QeXmlReader::expandValue(QeCString& target, const char* start, char quote) {
    tessit::TextBuilder value(target);
    value.put({start, static_cast<std::size_t>(cursor - 1 - start)});
    for (;;) {
        char encoded[4];
        value.put(readReference(encoded));
        value.putPlain(cursor, bufferEnd, quote, '<', '&');
        const char stop = rd();
        if (stop == quote) return;
        if (stop == '<') raise("Syntax error: unterminated attribute value");
    }
}

// Leaves the cursor on the '<' of the next tag. Most texts are one run up to there.
void QeXmlReader::scanContent() {
    lastNodeType = Content;
    if (readShortContent()) return;
    const char* const stop = findAny(cursor, bufferEnd, '<', '&', '\r');
    lastContent.assign(cursor, static_cast<std::size_t>(stop - cursor));
    cursor = stop;
    const bool endsAtTag = bufferEnd - stop >= 2 && stop[0] == '<' && stop[1] != '!' && stop[1] != '?';
    if (!endsAtTag) readContentPieces();
}

// Reads a text of up to 31 bytes that ends at a tag, without a branch on its
// length: such lengths differ from text to text, and are mostly mispredicted.
// Else does nothing.
bool QeXmlReader::readShortContent() {
    constexpr std::ptrdiff_t WindowSize = 32;
    if (bufferEnd - cursor <= WindowSize + 1) return false;
    const bool startsWithLine = cursor[0] == '\r' && cursor[1] == '\n';
    const char* const start = cursor + startsWithLine;
    const std::size_t length = corvel::findIn32(start, '<', '&', '\r');
    const char* const stop = start + length;
    if (length == WindowSize || *stop != '<' || stop[1] == '!' || stop[1] == '?') return false;
    lastContent.assignFromWindow(start, length);
    cursor = stop;
    return true;
}

// Goes on with a text, from what is not plain in it.
[[gnu::noinline]] void QeXmlReader::readContentPieces() {
    for (;;) {
        if (cursor == bufferEnd) raiseEnd();
        if (*cursor == '<') {
            ++cursor;
            if (!readMarkupInContent()) return;
        } else {
            appendText();
        }
    }
}

// Appends text up to the next '<', with references replaced and line ends made one line feed.
void QeXmlReader::appendText() {
    tessit::TextBuilder text(lastContent);
    for (;;) {
        text.putPlain(cursor, bufferEnd, '<', '&', '\r');
        if (cursor == bufferEnd || *cursor == '<') return;
        if (*cursor++ == '&') {
            char encoded[4];
            text.put(readReference(encoded));
        } else if (cursor == bufferEnd || *cursor != '\n') {
            text.put('\n');  // a lone carriage return; before a line feed it is dropped
        }
    }
}

// Entered just after a '<' in text. Passes a comment or an instruction, takes in a
// CDATA section, and steps back from a tag, where the text ends: then false.
bool QeXmlReader::readMarkupInContent() {
    const char byte = rd();
    if (byte == '?') {
        readPIOrXmlDecl();
        return true;
    }
    if (byte != '!') {
        cursor -= 2;
        return false;
    }
    switch (const char kind = rd()) {
        case '-':
            readComment();
            return true;
        case '[':
            readCDATA();
            return true;
        default:
            raiseWith("Invalid character sequence <!", {&kind, 1});
    }
}

// Passes a name. The first character is examined by its class; of the others,
// everything past ASCII belongs to the name.
QeXmlReader::RawName QeXmlReader::readName() {
    if (bufferEnd - cursor >= tessit::NameBlock::Size) {
        const tessit::NameBlock block(cursor);
        if (block.isWhole()) {
            cursor += block.length();
            return {cursor - block.length(), block.length(), block.localStart()};
        }
    }
    return readLongName();
}

// A name byte by byte: one of more than a block, or at the end of the document, or with characters past ASCII.
[[gnu::noinline]] QeXmlReader::RawName QeXmlReader::readLongName() {
    if (cursor == bufferEnd) raiseEnd();
    const char* const start = cursor;
    if (nameByte(*start) != tessit::StartsName) return readNameSlowly(start, 0);
    const char* at = start + 1;
    while (at != bufferEnd && nameByte(*at) - 1u < tessit::StartsName)
        ++at;
    std::size_t localStart = 0;
    if (at != bufferEnd && nameByte(*at) == tessit::SplitsName) {
        localStart = static_cast<std::size_t>(at + 1 - start);
        do
            ++at;
        while (at != bufferEnd && nameByte(*at) - 1u < tessit::SplitsName);
    }
    if (at == bufferEnd) raiseEnd();
    if (nameByte(*at) == tessit::MultiByteName) return readNameSlowly(at, localStart);
    cursor = at;
    return {start, static_cast<std::size_t>(at - start), localStart};
}

// Goes on with a name at `from`, where a character stands that is not plain; the
// cursor is still on the name's first.
QeXmlReader::RawName QeXmlReader::readNameSlowly(const char* from, std::size_t localStart) {
    const char* const start = cursor;
    const char* at = from;
    if (at == start) {
        std::uint32_t first = 0;
        cursor = passCharacter(at, first);
        if (tessit::charClass(first) != tessit::NameStart) {
            const auto length = static_cast<std::size_t>(cursor - at);
            raiseWith("Illegal starting character for name: ", {at, first == 0 ? 0 : length});
        }
        at = cursor;
        if (first == ':') localStart = 1;
    }
    for (;;) {
        if (at == bufferEnd) raiseEnd();
        const tessit::NameByte kind = nameByte(*at);
        if (kind == tessit::EndsName) break;
        if (kind == tessit::MultiByteName) {
            std::uint32_t character;
            at = passCharacter(at, character);
            continue;
        }
        ++at;
        if (kind == tessit::SplitsName && localStart == 0) localStart = static_cast<std::size_t>(at - start);
    }
    cursor = at;
    return {start, static_cast<std::size_t>(at - start), localStart};
}

namespace {

// How many bytes a character takes by its first; 4 for bytes that cannot begin one.
std::ptrdiff_t characterLength(unsigned char lead) {
    return lead < 0x80 ? 1 : lead >= 0xC2 && lead < 0xE0 ? 2 : lead >= 0xE0 && lead < 0xF0 ? 3 : 4;
}

// Decodes a character of that length; a value past Unicode where the bytes are not UTF-8.
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
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    return value < Least[length] || isSurrogate ? Malformed : value;
}

}  // namespace

// Decodes the character at `at` and returns where it ends. Errors are raised with the cursor on its first byte.
const char* QeXmlReader::passCharacter(const char* at, std::uint32_t& codePoint) {
    const std::ptrdiff_t length = characterLength(static_cast<unsigned char>(*at));
    if (bufferEnd - at < length) {
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

void QeXmlReader::readS() noexcept {
    while (cursor != bufferEnd && tessit::isSpace(*cursor))
        ++cursor;
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

// The character of the entity with that name, or null.
const char* characterOf(std::string_view body) {
    for (const Entity& entity : Entities)
        if (entity.name.substr(0, entity.name.size() - 1) == body) return &entity.character;
    return nullptr;
}

}  // namespace

// Entered just after the '&'; returns what the reference stands for. An unknown
// entity is no error: it stands for its reference as written. `encoded` is room
// for the character.
std::string_view QeXmlReader::readReference(char (&encoded)[4]) {
    if (bufferEnd - cursor >= std::ptrdiff_t{Entity::WordSize}) {
        if (const FoundEntity entity = findEntity(cursor); entity.length != 0) {
            cursor += entity.length;
            encoded[0] = entity.character;
            return {encoded, 1};
        }
    }
    const char* const semicolon = findByte(cursor, bufferEnd, ';');
    if (semicolon == bufferEnd) raiseEnd();
    const std::string_view body(cursor, static_cast<std::size_t>(semicolon - cursor));
    cursor = semicolon + 1;
    if (body.empty()) raise("Empty reference");
    if (body[0] == '#') return readNumericReference(body.substr(1), encoded);
    if (const char* character = characterOf(body)) return {character, 1};
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
std::string_view QeXmlReader::readNumericReference(std::string_view body, char (&encoded)[4]) const {
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
    return {encoded, static_cast<std::size_t>(tessit::putUtf8(encoded, value) - encoded)};
}
