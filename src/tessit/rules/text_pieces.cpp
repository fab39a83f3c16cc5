#include <algorithm>

#include <tessit/rules/characters.h>
#include <tessit/rules/decoded_text.h>
#include <tessit/rules/rules.h>
#include <tessit/rules/text_pieces.h>

namespace tessit {

namespace {

constexpr std::string_view Digits = "0123456789ABCDEF";

QeCString inHexadecimal(std::string_view bytes) {
    QeCString text;
    for (const char byte : bytes) {
        if (!text.empty()) text += ' ';
        text += Digits[static_cast<unsigned char>(byte) >> 4];
        text += Digits[byte & 0x0F];
    }
    return text;
}

// "U+0001"; four digits do for every character that is not allowed.
QeCString describeCharacter(std::uint32_t character) {
    QeCString text("U+");
    for (const unsigned shift : {12u, 8u, 4u, 0u})
        text += Digits[character >> shift & 0x0F];
    return text;
}

bool isPastAscii(char byte) noexcept {
    return (byte & 0x80) != 0;
}

// Whether the text, which is no character, is the beginning of one.
bool isCut(std::string_view text) noexcept {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t announced = first < 0xC0 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF8 ? 4 : 1;
    return text.size() < announced && lengthOfSequence(text) == text.size();
}

std::optional<voxal::PieceConverter> openConverter(const DecodedText& decided) {
    using voxal::PieceConverter;
    constexpr auto Ends = voxal::Malformed::Ends;
    const std::string_view canonical = decided.canonical;
    if (canonical == "UTF-8" || canonical == "US-ASCII") return std::nullopt;
    if (canonical == "ISO-8859-1") return PieceConverter(PieceConverter::Form::Latin1, Ends);
    if (canonical == "UTF-16BE") return PieceConverter(PieceConverter::Form::Utf16BigEndian, Ends);
    if (canonical == "UTF-16LE") return PieceConverter(PieceConverter::Form::Utf16LittleEndian, Ends);
    return PieceConverter(canonical.starts_with("UTF-32") ? QeCString(canonical) : decided.encoding, Ends);
}

}  // namespace

void endByMalformed(Source& source, std::string_view malformed, const QeCString& encoding) {
    source.endsBy = Rule::MalformedEncoding;
    source.foundAtEnd = inHexadecimal(malformed);
    if (!malformed.empty()) source.foundAtEnd += " in ";
    source.foundAtEnd += encoding;
}

void endByCharacter(Source& source, std::string_view bad, const QeCString& encoding) {
    const std::optional<std::uint32_t> character = decodeFirst(bad);
    if (!character) return endByMalformed(source, bad.substr(0, lengthOfSequence(bad)), encoding);
    source.endsBy = Rule::Character;
    source.foundAtEnd = describeCharacter(*character);
}

TextPieces::TextPieces(DecodedText& decided)
    : decoded(decided), isAscii(decided.canonical == "US-ASCII"), converter(openConverter(decided)) {
    decoded.source.endsBy = Rule::None;
    decoded.source.behind = nullptr;
    decoded.source.foundAtEnd = QeCString();
}

std::size_t TextPieces::check(std::string_view text, bool isLast) {
    Source& source = decoded.source;
    const auto length = static_cast<std::size_t>(findBadCharacter(text) - text.data());
    if (isAscii) {
        const auto past = std::find_if(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length), isPastAscii);
        const auto ascii = static_cast<std::size_t>(past - text.begin());
        if (ascii != length || (length != text.size() && isPastAscii(text[length]))) {
            endByMalformed(source, text.substr(ascii, 1), decoded.encodingInMessages());
            return endAt(ascii);
        }
    }
    if (length != text.size()) {
        const std::string_view bad = text.substr(length);
        if (!isLast && isCut(bad)) return length;
        endByCharacter(source, bad, decoded.encodingInMessages());
        return endAt(length);
    }
    if (isLast && isMalformed()) {
        endByMalformed(source, *converter->findMalformed(), decoded.encodingInMessages());
        return endAt(length);
    }
    return length;
}

}  // namespace tessit
