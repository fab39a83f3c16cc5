#pragma once

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <sstream>
#include <string>
#include <string_view>

#include <tessit/errors/xml_error.h>
#include <tessit/reader/xml_reader.h>

/// Documents for tests, in every way that a reader takes them, and compact traces of what is read.
namespace tessit::test {

enum class Source { Stream, String, Buffer, Span, ByteByByte, InTwo, Moved };
constexpr Source Sources[] = {Source::Stream,     Source::String, Source::Buffer, Source::Span,
                              Source::ByteByByte, Source::InTwo,  Source::Moved};

/// Whether the document comes through a window.
constexpr bool isInPieces(Source source) {
    return source >= Source::ByteByByte;
}

enum class Encoding { Utf8, Utf16LE, Utf16BE };
constexpr Encoding Encodings[] = {Encoding::Utf8, Encoding::Utf16LE, Encoding::Utf16BE};

/// The code points of UTF-8; nothing when the text is not UTF-8.
inline std::optional<std::u32string> decode(std::string_view text) {
    constexpr unsigned Least[] = {0, 0, 0x80, 0x800, 0x10000};
    std::u32string codes;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4 || i + length > text.size()) return std::nullopt;
        unsigned code = length == 1 ? lead : lead & (0x7Fu >> length);
        for (std::size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80) return std::nullopt;
            code = code << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3Fu);
        }
        if (code < Least[length] || (code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) return std::nullopt;
        codes += code;
        i += length;
    }
    return codes;
}

/// Whether the text is UTF-8, so that it can be put into another encoding.
inline bool isUtf8(std::string_view text) {
    return decode(text).has_value();
}

/// UTF-8 text in another encoding, with a byte-order mark unless it stays UTF-8.
inline std::string encode(std::string_view text, Encoding encoding) {
    if (encoding == Encoding::Utf8) return std::string(text);
    std::string bytes;
    const auto put = [&](unsigned unit) {
        const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
        bytes += encoding == Encoding::Utf16BE ? high : low;
        bytes += encoding == Encoding::Utf16BE ? low : high;
    };
    put(0xFEFF);
    const std::u32string codes = decode(text).value();
    for (const char32_t code : codes) {
        if (code >= 0x10000) put(0xD800 + ((code - 0x10000) >> 10));
        put(code < 0x10000 ? code : 0xDC00 + ((code - 0x10000) & 0x3FF));
    }
    return bytes;
}

inline std::string repeat(std::string_view part, std::size_t count) {
    std::string text;
    text.reserve(part.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        text += part;
    return text;
}

/// The text `part` so many times; in each, its own number stands for `#`, and the
/// number read backwards for `~`. The numbers go neither up nor down.
inline std::string numbered(std::string_view part, std::size_t count) {
    constexpr std::size_t Prime = 7919;  // must not divide the count
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string number = std::to_string(i * Prime % count);
        for (const char byte : part)
            if (byte == '#') {
                text += number;
            } else if (byte == '~') {
                text.append(number.rbegin(), number.rend());
            } else {
                text += byte;
            }
    }
    return text;
}

/// A document, or its trace, with the URIs u and v so long that names share them, and the same but for the last byte.
inline std::string withLongURIs(std::string text) {
    constexpr const char* Places[][2] = {{"='", "'"}, {"=\"", "\""}, {"{", "}"}, {"=", "]"}, {"=", ","}, {"=", " "}};
    for (const std::string uri : {"u", "v"})
        for (const auto& [before, after] : Places)
            for (std::size_t at = 0; (at = text.find(before + uri + after, at)) != std::string::npos; at += 300)
                text.insert(at + std::string_view(before).size(), 300, 'x');
    return text;
}

/// Bytes in a heap block of exactly their size, so that a stray read is noticed, and readers over them.
class Document {
public:
    explicit Document(std::string_view text) : size(text.size()), bytes(new unsigned char[text.size()]) {
        std::copy(text.begin(), text.end(), bytes.get());
    }

    /// With options or, as described, without.
    template <typename... Options>
    std::unique_ptr<QeXmlReader> open(Source source, const Options&... options) const {
        const std::string_view text(reinterpret_cast<const char*>(bytes.get()), size);
        switch (source) {
            case Source::Stream: {
                std::istringstream in{std::string(text)};
                return std::make_unique<QeXmlReader>(in, options...);
            }
            case Source::String:
                return std::make_unique<QeXmlReader>(QeCString(text), options...);
            case Source::Buffer:
                return std::make_unique<QeXmlReader>(bytes.get(), static_cast<unsigned>(size), options...);
            case Source::ByteByByte:
                return std::make_unique<QeXmlReader>(inPieces(0, 1), options...);
            case Source::InTwo:
            case Source::Moved:
                return std::make_unique<QeXmlReader>(inPieces(split, size), options...);
            case Source::Span:
                break;
        }
        return std::make_unique<QeXmlReader>(std::span<const unsigned char>(bytes.get(), size), options...);
    }

    QeXmlInput inPlace() const { return QeXmlInput::bytes({bytes.get(), size}); }

    /// The bytes as they come through a window: so many first, and then pieces of that length.
    QeXmlInput inPieces(std::size_t first, std::size_t length) const {
        return QeXmlInput::callback([this, first, length, at = std::size_t{0}](std::span<char> room) mutable {
            const std::size_t piece = at < first ? first - at : length;
            const std::size_t count = std::min({piece, room.size(), size - at});
            std::copy_n(bytes.get() + at, count, room.data());
            at += count;
            return count;
        });
    }

    /// What comes of reading, which is to be the same wherever a document is split that comes in two pieces; and,
    /// behind a comment which fills a window so far that it moves for the second one, the same as in place.
    template <typename Read>
    std::string readEachWay(Source source, const Read& read) const {
        if (source == Source::InTwo) return readSplitFrom(0, read(*this, Source::Span), read);
        if (source != Source::Moved) return read(*this, source);
        const std::string comment = "<!--" + std::string(50'000, 'x') + "-->\n";
        const Document longer(comment + std::string(reinterpret_cast<const char*>(bytes.get()), size));
        const std::string whole = read(longer, Source::Span), moved = longer.readSplitFrom(comment.size(), whole, read);
        return moved == whole ? read(*this, Source::Span) : moved;
    }

private:
    template <typename Read>
    std::string readSplitFrom(std::size_t first, const std::string& whole, const Read& read) const {
        for (split = first; split <= size; ++split)
            if (const std::string nodes = read(*this, Source::InTwo); nodes != whole)
                return nodes + " when it is split at " + std::to_string(split - first);
        return whole;
    }

    std::size_t size;
    std::unique_ptr<unsigned char[]> bytes;
    mutable std::size_t split = 0;
};

/// `{URI}prefix:local`, without the braces in no namespace.
inline std::string describe(const QeXmlName& name) {
    const std::string uri(std::string_view(name.getNamespace().getURI()));
    return (uri.empty() ? "" : "{" + uri + "}") + std::string(std::string_view(name.asString()));
}

/// `[name=value name=value]`, or nothing without attributes.
inline std::string describe(const QeXmlAttributeSet& attributes) {
    std::string text;
    for (const QeXmlAttribute& attribute : attributes) {
        text += text.empty() ? "[" : " ";
        text += describe(attribute.getName()) + "=" + std::string(std::string_view(attribute.getValue()));
    }
    return text.empty() ? text : text + "]";
}

inline std::string describe(const QeXmlParseError& error) {
    return "!" + std::to_string(error.getLineNumber()) + ":" + std::to_string(error.getColumnNumber()) + " " +
           error.why();
}

/// The last node: `+` start, `-` end, `/` empty, `=` text.
inline std::string describeNode(const QeXmlReader& reader) {
    switch (reader.getLastNodeType()) {
        case QeXmlReader::ElementStart:
            return "+" + describe(reader.getLastName()) + describe(reader.getLastAttributes());
        case QeXmlReader::ElementEnd:
            return "-" + describe(reader.getLastName());
        case QeXmlReader::EmptyElement:
            return "/" + describe(reader.getLastName()) + describe(reader.getLastAttributes());
        case QeXmlReader::Content:
            return "=" + std::string(std::string_view(reader.getLastContent()));
        case QeXmlReader::Comment:
            return "#" + std::string(std::string_view(reader.getLastContent()));
        case QeXmlReader::Instruction:
            return "?" + std::string(std::string_view(reader.getLastTarget() + " " + reader.getLastContent()));
        case QeXmlReader::CDATASection:
            return "[" + std::string(std::string_view(reader.getLastContent()));
        case QeXmlReader::EntityReference:
            return "&" + std::string(std::string_view(reader.getLastTarget()));
        case QeXmlReader::DocumentType:
            return "!" + std::string(std::string_view(reader.getDocumentType().name));
        case QeXmlReader::NoNode:
            break;
    }
    return "none";
}

/// All nodes that `next` reads, a space before each but the first; an error ends
/// the trace with `!line:column message`.
inline std::string traceOnce(const Document& document, Source source, bool expandReferences) {
    std::string nodes;
    const auto add = [&](const std::string& node) { nodes += (nodes.empty() ? "" : " ") + node; };
    try {
        const auto reader = document.open(source);
        reader->setExpandAttributeReference(expandReferences);
        while (!reader->eof()) {
            reader->readNextNode();
            add(describeNode(*reader));
        }
    } catch (const QeXmlParseError& error) {
        add(describe(error));
    }
    return nodes;
}

inline std::string trace(const Document& document, Source source, bool expandReferences = true) {
    return document.readEachWay(
        source, [&](const Document& each, Source way) { return traceOnce(each, way, expandReferences); });
}

inline std::string trace(std::string_view xml) {
    return trace(Document(xml), Source::Span);
}

}  // namespace tessit::test
