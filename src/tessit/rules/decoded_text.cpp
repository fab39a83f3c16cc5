// Which encoding bytes are in, and what comes of them. A mark or the first bytes tell how to read
// the declaration, which names the encoding; what the transport said comes before all that.

#include <algorithm>
#include <bit>
#include <optional>
#include <voxal/converter.h>
#include <voxal/decoder.h>
#include <voxal/transcode.h>

#include <corvel/string_access.h>
#include <tessit/rules/characters.h>
#include <tessit/rules/decoded_text.h>
#include <tessit/rules/rules.h>
#include <tessit/rules/text_pieces.h>

namespace tessit {

namespace {

struct FirstBytes {
    std::string_view bytes, encoding;
};

// The longer ones first: a mark of UTF-32LE begins like one of UTF-16LE.
constexpr FirstBytes Marks[] = {
    {{"\x00\x00\xFE\xFF", 4}, "UTF-32BE"},
    {{"\xFF\xFE\x00\x00", 4}, "UTF-32LE"},
    {"\xFE\xFF", "UTF-16BE"},
    {"\xFF\xFE", "UTF-16LE"},
    {"\xEF\xBB\xBF", "UTF-8"},
};

// How "<" or "<?" begin where no mark stands in front.
constexpr FirstBytes Declarations[] = {
    {{"\x00\x00\x00\x3C", 4}, "UTF-32BE"},
    {{"\x3C\x00\x00\x00", 4}, "UTF-32LE"},
    {{"\x00\x3C\x00\x3F", 4}, "UTF-16BE"},
    {{"\x3C\x00\x3F\x00", 4}, "UTF-16LE"},
};
constexpr std::string_view DeclarationInEbcdic = "\x4C\x6F\xA7\x94";

template <std::size_t Count>
const FirstBytes* find(const FirstBytes (&rows)[Count], std::string_view bytes) {
    const auto found = std::find_if(std::begin(rows), std::end(rows),
                                    [&](const FirstBytes& row) { return bytes.starts_with(row.bytes); });
    return found == std::end(rows) ? nullptr : &*found;
}

// A family of encodings, of which the first bytes tell the one that is meant.
bool isFamily(std::string_view canonical) {
    return canonical == "UTF-16" || canonical == "UTF-32";
}

bool fits(std::string_view detected, std::string_view canonical) {
    return detected == canonical || (isFamily(canonical) && detected.starts_with(canonical));
}

// The most significant byte comes first, unless '<' or white space stands there the other way round.
std::string_view withOrder(std::string_view canonical, std::string_view bytes) {
    const bool isLittle =
        bytes.size() > 1 && bytes[1] == '\0' && std::string_view("<\t\n\r ").find(bytes[0]) != std::string_view::npos;
    if (canonical == "UTF-16") return isLittle ? "UTF-16LE" : "UTF-16BE";
    if (canonical == "UTF-32") return isLittle ? "UTF-32LE" : "UTF-32BE";
    return canonical;
}

bool isSpace(char byte) {
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

bool isLetterOfName(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '.' || byte == '_';
}

// Takes what stands in a text's front as long as it is such bytes.
template <typename Is>
std::string_view takeWhile(std::string_view& text, Is is) {
    const auto length = static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is) - text.begin());
    const std::string_view taken = text.substr(0, length);
    text.remove_prefix(length);
    return taken;
}

struct PseudoAttribute {
    std::string_view name, value;
};

// The next one of a declaration, without a value where it is none.
PseudoAttribute takePseudoAttribute(std::string_view& text) {
    takeWhile(text, isSpace);
    PseudoAttribute taken{takeWhile(text, isLetterOfName), {}};
    takeWhile(text, isSpace);
    if (!text.starts_with('=')) return taken;
    text.remove_prefix(1);
    takeWhile(text, isSpace);
    if (!text.starts_with('"') && !text.starts_with('\'')) return taken;
    const char quote = text[0];
    text.remove_prefix(1);
    taken.value = takeWhile(text, isLetterOfName);
    if (!text.starts_with(quote)) return {};
    text.remove_prefix(1);
    return taken;
}

// The name of the encoding in the declaration that a text begins with. Empty where none is, or
// what is there is no name: then the grammar of declarations has its say.
std::string_view findDeclared(std::string_view text) {
    constexpr std::string_view Begin = "<?xml";
    if (!text.starts_with(Begin)) return {};
    text.remove_prefix(Begin.size());
    if (takeWhile(text, isSpace).empty()) return {};  // an instruction with another target
    for (;;) {
        const PseudoAttribute next = takePseudoAttribute(text);
        if (next.value.empty() || next.name == "encoding") return next.value;
    }
}

// The characters of declarations are the same in all tables of EBCDIC; others become '?'.
char fromEbcdic(char byte) {
    constexpr struct {
        unsigned char first, last;
        char character;
    } Runs[] = {{0x81, 0x89, 'a'},  {0x91, 0x99, 'j'},  {0xA2, 0xA9, 's'}, {0xC1, 0xC9, 'A'},  {0xD1, 0xD9, 'J'},
                {0xE2, 0xE9, 'S'},  {0xF0, 0xF9, '0'},  {0x40, 0x40, ' '}, {0x05, 0x05, '\t'}, {0x0D, 0x0D, '\r'},
                {0x15, 0x15, '\n'}, {0x25, 0x25, '\n'}, {0x4B, 0x4B, '.'}, {0x4C, 0x4C, '<'},  {0x60, 0x60, '-'},
                {0x6D, 0x6D, '_'},  {0x6E, 0x6E, '>'},  {0x7A, 0x7A, ':'}, {0x7D, 0x7D, '\''}, {0x7E, 0x7E, '='},
                {0x7F, 0x7F, '"'}};
    const auto code = static_cast<unsigned char>(byte);
    for (const auto& [first, last, character] : Runs)
        if (code >= first && code <= last) return static_cast<char>(character + (code - first));
    return '?';
}

QeCString declarationFromEbcdic(std::string_view bytes) {
    constexpr char End = '\x6E';
    QeCString text(bytes.substr(0, bytes.find(End)));
    std::transform(text.begin(), text.end(), corvel::StringAccess::bytesOf(text), fromEbcdic);
    return text;
}

// None where no converter is known, or its tables are not there.
std::optional<QeUToUnicodeConverter> openConverter(const QeCString& name) {
    try {
        return QeUToUnicodeConverter(name, voxal::Malformed::Ends);
    } catch (const QeUConversionError&) {
        return std::nullopt;
    }
}

class TextDecoder {
public:
    TextDecoder(DecodedText& decoded, std::string_view document) : text(decoded), bytes(document) {}

    void decode(const QeCString& transport) {
        const FirstBytes* const mark = find(Marks, bytes);
        if (!transport.empty())
            decodeAsTold(transport, mark);
        else if (mark != nullptr)
            decodeMarked(*mark);
        else if (const FirstBytes* const declaration = find(Declarations, bytes))
            decodeWideWithoutMark(declaration->encoding);
        else if (bytes.starts_with(DeclarationInEbcdic))
            decodeEbcdic();
        else
            decodeWithoutMark();
    }

private:
    void decodeAsTold(const QeCString& transport, const FirstBytes* mark) {
        const std::string_view canonical = QeUToUnicodeConverter::canonicalName(transport);
        if (canonical.empty()) return endInFront(Rule::UnknownEncoding, transport);
        if (mark == nullptr) return convert(bytes, withOrder(canonical, bytes), transport);
        if (!fits(mark->encoding, canonical)) return endInFront(Rule::EncodingMismatch, transport);
        convert(bytes.substr(mark->bytes.size()), mark->encoding, transport);
    }

    void decodeMarked(const FirstBytes& mark) {
        convert(bytes.substr(mark.bytes.size()), mark.encoding, QeCString(mark.encoding));
        if (const std::string_view declared = findDeclared(text.source.text); !declared.empty())
            declare(declared, mark.encoding);
    }

    // Without a mark and a declaration, it is UTF-8, which has no NUL.
    void decodeWideWithoutMark(std::string_view detected) {
        convert(bytes, detected, QeCString(detected));
        const std::string_view declared = findDeclared(text.source.text);
        if (declared.empty()) return convert(bytes, "UTF-8", "UTF-8");
        declare(declared, detected);
    }

    // What the text declares, which is to be as it was converted.
    void declare(std::string_view declared, std::string_view detected) {
        text.encoding.assign(declared);
        const std::string_view canonical = QeUToUnicodeConverter::canonicalName(text.encoding);
        if (canonical.empty())
            endAt(declared, Rule::UnknownEncoding);
        else if (!fits(detected, canonical))
            endAt(declared, Rule::EncodingMismatch);
    }

    void decodeWithoutMark() {
        const std::string_view declared = findDeclared(bytes);
        if (declared.empty()) return convert(bytes, "UTF-8", "UTF-8");
        text.source.text = bytes;
        convertDeclared(declared);
    }

    void decodeEbcdic() {
        text.converted = declarationFromEbcdic(bytes);
        text.source.text = text.converted;
        text.source.inputUnits = InputUnits::One;
        const std::string_view declared = findDeclared(text.source.text);
        if (declared.empty()) return endInFront(Rule::UnknownEncoding, "EBCDIC");
        convertDeclared(declared);
    }

    // The name stands in the text, which is the document as far as it could be read.
    void convertDeclared(std::string_view declared) {
        constexpr std::string_view Begin = "<?xml";
        const QeCString name(declared);
        const std::string_view canonical = QeUToUnicodeConverter::canonicalName(name);
        if (isLikeAscii(canonical) && text.converted.empty()) return convert(bytes, canonical, name);
        std::optional<QeUToUnicodeConverter> converter = canonical.empty() ? std::nullopt : openConverter(name);
        if (!converter) return endAt(declared, Rule::UnknownEncoding);
        if (converter->toUtf8(bytes.substr(0, Begin.size())) != Begin) return endAt(declared, Rule::EncodingMismatch);
        convert(bytes, canonical, name);
    }

    static bool isLikeAscii(std::string_view canonical) {
        return canonical == "UTF-8" || canonical == "US-ASCII" || canonical == "ISO-8859-1";
    }

    void convert(std::string_view from, std::string_view canonical, const QeCString& name) {
        text.encoding = name;
        text.canonical = canonical;
        text.source.endsBy = Rule::None;
        text.source.behind = nullptr;
        text.source.markLength = static_cast<unsigned>(from.data() - bytes.data());
        text.source.inputUnits = inputUnitsOf(canonical, false);
        if (canonical == "UTF-8")
            text.source.text = from;
        else if (canonical == "US-ASCII")
            takeAscii(from);
        else if (canonical == "ISO-8859-1")
            convertLatin1(from);
        else if (canonical == "UTF-16BE")
            convertUtf16<std::endian::big>(from);
        else if (canonical == "UTF-16LE")
            convertUtf16<std::endian::little>(from);
        else
            convertByTables(from, canonical.starts_with("UTF-32") ? QeCString(canonical) : name);
        checkCharacters();
    }

    void takeConverted() { text.source.text = text.converted; }

    void convertLatin1(std::string_view from) {
        voxal::appendLatin1(text.converted, from, NoLimit);
        takeConverted();
    }

    void takeAscii(std::string_view from) {
        const auto isPast = [](char byte) { return (byte & 0x80) != 0; };
        const auto length = static_cast<std::size_t>(std::find_if(from.begin(), from.end(), isPast) - from.begin());
        text.source.text = from;
        cut(length);
        if (length != from.size()) endByMalformed(from.substr(length, 1));
    }

    template <std::endian Order>
    void convertUtf16(std::string_view from) {
        const std::size_t length = voxal::findMalformedUtf16<Order>(from);
        voxal::appendUtf16<Order>(text.converted, from.substr(0, length), NoLimit);
        takeConverted();
        if (length != from.size()) endByMalformed(from.substr(length, 2));
    }

    void convertByTables(std::string_view from, const QeCString& name) {
        std::optional<QeUToUnicodeConverter> converter = openConverter(name);
        if (!converter) return endInFront(Rule::UnknownEncoding, name);
        if (converter->hasByteEach()) text.source.inputUnits = InputUnits::One;
        text.converted = converter->toUtf8(from);
        takeConverted();
        if (const QeCString* const malformed = converter->findMalformed()) endByMalformed(*malformed);
    }

    void checkCharacters() {
        std::string_view& utf8 = text.source.text;
        const auto length = static_cast<std::size_t>(findBadCharacter(utf8) - utf8.data());
        if (length == utf8.size()) return;
        const std::string_view bad = utf8.substr(length);
        cut(length);
        endByCharacter(text.source, bad, text.encodingInMessages());
    }

    void endByMalformed(std::string_view malformed) {
        tessit::endByMalformed(text.source, malformed, text.encodingInMessages());
    }

    // Nothing of the text can be read.
    void endInFront(Rule rule, const QeCString& name) {
        text.encoding = name;
        text.source.text = bytes.substr(0, 0);
        endBy(rule, QeCString(name));
    }

    // In front of a name that stands in the text.
    void endAt(std::string_view name, Rule rule) {
        text.encoding.assign(name);
        cut(static_cast<std::size_t>(name.data() - text.source.begin()));
        endBy(rule, QeCString(name));
    }

    void cut(std::size_t length) {
        text.source.behind = text.source.end();
        text.source.text = text.source.text.substr(0, length);
    }

    void endBy(Rule rule, QeCString&& found) {
        text.source.endsBy = rule;
        text.source.foundAtEnd = std::move(found);
    }

    static constexpr std::size_t NoLimit = QeUToUnicodeConverter::NoLimit;

    DecodedText& text;
    std::string_view bytes;
};

}  // namespace

void decodeText(DecodedText& text, std::string_view bytes, const QeCString& transport) {
    TextDecoder(text, bytes).decode(transport);
}

}  // namespace tessit
