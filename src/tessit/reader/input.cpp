// How the bytes become UTF-8, and how errors get their position.

#include <algorithm>
#include <bit>
#include <span>
#include <utility>
#include <voxal/converter.h>
#include <voxal/transcode.h>

#include <tessit/errors/error_access.h>
#include <tessit/reader/input.h>
#include <tessit/rules/excerpt.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

struct ByteOrderMark {
    std::string_view bytes;
    const char* encoding;
};

// The longer marks first: a UTF-32LE mark begins like a UTF-16LE one.
constexpr ByteOrderMark Marks[] = {
    {{"\x00\x00\xFE\xFF", 4}, "UTF-32BE"}, {{"\xFF\xFE\x00\x00", 4}, "UTF-32LE"}, {{"\x00\x00\xFF\xFE", 4}, "UTF-32"},
    {{"\xFE\xFF\x00\x00", 4}, "UTF-32"},   {{"\xFE\xFF", 2}, "UTF-16BE"},         {{"\xFF\xFE", 2}, "UTF-16LE"},
    {{"\xEF\xBB\xBF", 3}, "UTF-8"},
};

// How "<" or "<?xm" begin in the encodings that a document without a mark can be told apart by.
constexpr ByteOrderMark FirstBytes[] = {
    {{"\x00\x00\x00\x3C", 4}, "UTF-32BE"}, {{"\x3C\x00\x00\x00", 4}, "UTF-32LE"}, {{"\x00\x00\x3C\x00", 4}, "UTF-32"},
    {{"\x00\x3C\x00\x00", 4}, "UTF-32"},   {{"\x00\x3C\x00\x3F", 4}, "UTF-16BE"}, {{"\x3C\x00\x3F\x00", 4}, "UTF-16LE"},
    {{"\x3C\x3F\x78\x6D", 4}, "UTF-8"},    {{"\x4C\x6F\xA7\x94", 4}, "EBCDIC"},
};

const ByteOrderMark* findMark(std::span<const ByteOrderMark> marks, std::string_view document) {
    const auto found = std::find_if(marks.begin(), marks.end(),
                                    [&](const ByteOrderMark& mark) { return document.starts_with(mark.bytes); });
    return found == marks.end() ? nullptr : &*found;
}

bool beginsAsUtf8(std::string_view first) {
    return (first[0] == '<' && first[1] != '\0') || first[0] == ' ' || first[0] == '\t' || first[0] == '\n' ||
           first[0] == '\r';
}

}  // namespace

void Input::begin() noexcept {
    cursor = bufferStart = bufferEnd = nullptr;
    strict = nullptr;
    isDetected = moreMayCome = false;
    length = 0;
    isCounted = false;
}

void Input::take(std::string_view document) noexcept {
    isCounted = false;
    cursor = bufferStart = document.data();
    bufferEnd = bufferStart + document.size();
    length = document.size();
}

void Input::enter(const Source& source, const char* place) noexcept {
    strict = &source;
    bufferStart = source.begin();
    bufferEnd = source.end();
    cursor = place;
}

// A document that no row matches keeps an empty encoding: what follows fails at its first byte or name.
void Input::detectEncoding() {
    const char* const name = tellEncoding();
    if (name == nullptr) return;
    if (std::optional<Converted> converted = convertRest(name)) replaceRest(std::move(*converted));
}

const char* Input::tellEncoding() {
    isDetected = true;
    const std::string_view first = rest().substr(0, 4);
    if (first.size() < 4) raise("Premature EOF");
    const char* name = nullptr;
    if (beginsAsUtf8(first)) {
        encoding = "UTF-8";
    } else if (const ByteOrderMark* mark = findMark(Marks, first)) {
        passMark(mark->bytes.size());
        name = mark->encoding;
    } else if (const ByteOrderMark* row = findMark(FirstBytes, first)) {
        name = row->encoding;
    }
    return name;
}

// A mark is three bytes of a text in UTF-8, whatever it is in the input.
void Input::passMark(std::size_t markLength) {
    cursor += markLength;
    countFrom(rest(), InputUnits::Same, {.offset = 3, .inputOffset = markLength});
}

// A declaration that only spells the detected encoding differently converts nothing:
// the text is UTF-8 by now, and a second conversion would garble it. Declarations that
// come later, in the midst of the document, mean what they say.
std::optional<Input::Converted> Input::declareEncoding(const QeCString& name) {
    return takeDeclaration(name) ? convertRest(name) : std::nullopt;
}

bool Input::takeDeclaration(const QeCString& name) {
    const bool mayBeAnotherSpelling = std::exchange(isDetected, false);
    if (name == encoding) return false;
    if (!mayBeAnotherSpelling || !QeUToUnicodeConverter::sameEncoding(name, encoding)) return true;
    encoding = name;
    return false;
}

// Of bytes that were converted before, nobody knows where in the input they were.
std::optional<Input::Converted> Input::convertRest(const QeCString& name) {
    encoding = name;
    InputUnits units = inputUnitsOf(QeUToUnicodeConverter::canonicalName(name), false);
    std::optional<QeCString> text = convertText(name, units);
    if (!text) return std::nullopt;
    if (placesInText().inputUnits() != InputUnits::Same) units = InputUnits::Unknown;
    const std::uint64_t bytes = counted().bytesConverted + text->length();
    return Converted{std::move(*text), units, positionOf(cursor), bytes};
}

// Each XML declaration in a document converts the rest once more, and a conversion can double it: a few of them would
// make a small document huge. Documents with one declaration never come near this.
std::uint64_t Input::mostConverted(std::uint64_t inputLength) noexcept {
    constexpr std::uint64_t Factor = 16, Grace = 4096;
    return Factor * (inputLength + Grace);
}

void Input::raiseTooManyConversions() const {
    raiseTranscoding("the document's encoding declarations make it grow too much");
}

// How many bytes conversions may still produce.
std::uint64_t Input::conversionAllowance() const noexcept {
    return mostConverted(length) - (isCounted ? ofCounts->bytesConverted : 0);
}

// Nothing, where the bytes are UTF-8 already.
std::optional<QeCString> Input::convertText(const QeCString& name, InputUnits& units) {
    QeCString upperName = name;
    upperName.toUpper();
    if (upperName == "UTF-8" || upperName == "US-ASCII") return std::nullopt;
    QeCString text;
    bool isAllowed = true;
    if (upperName == "ISO-8859-1")
        isAllowed = voxal::appendLatin1(text, rest(), conversionAllowance());
    else if (upperName == "UTF-16" || upperName == "UTF-16BE")
        isAllowed = voxal::appendUtf16<std::endian::big>(text, rest(), conversionAllowance());
    else if (upperName == "UTF-16LE")
        isAllowed = voxal::appendUtf16<std::endian::little>(text, rest(), conversionAllowance());
    else
        text = convertByTables(name, units);
    if (!isAllowed) raiseTooManyConversions();
    return text;
}

QeCString Input::convertByTables(const QeCString& name, InputUnits& units) {
    const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(conversionAllowance(), SIZE_MAX));
    try {
        QeUToUnicodeConverter converter(name);
        if (converter.hasByteEach()) units = InputUnits::One;
        return converter.toUtf8(rest(), most);
    } catch (const QeUConversionTooLong&) {
        raiseTooManyConversions();
    } catch (const Qexmsg& error) {
        raiseTranscoding(error.why());
    }
}

void Input::replaceRest(Converted&& converted) noexcept {
    ++replaced;
    ownedDocument = std::move(converted.text);
    countFrom(ownedDocument, converted.units, converted.beginning).bytesConverted = converted.bytesConverted;
    cursor = bufferStart = ownedDocument.begin();
    bufferEnd = ownedDocument.end();
}

std::optional<voxal::PieceConverter> Input::openPieces(const QeCString& name) {
    using voxal::PieceConverter;
    constexpr auto Replaced = voxal::Malformed::Replaced;
    encoding = name;
    QeCString upperName = name;
    upperName.toUpper();
    if (upperName == "UTF-8" || upperName == "US-ASCII") return std::nullopt;
    if (upperName == "ISO-8859-1") return PieceConverter(PieceConverter::Form::Latin1, Replaced);
    if (upperName == "UTF-16" || upperName == "UTF-16BE")
        return PieceConverter(PieceConverter::Form::Utf16BigEndian, Replaced);
    if (upperName == "UTF-16LE") return PieceConverter(PieceConverter::Form::Utf16LittleEndian, Replaced);
    try {
        return PieceConverter(name, Replaced);
    } catch (const Qexmsg& error) {
        raiseTranscoding(error.why());
    }
}

InputUnits Input::unitsOf(const QeCString& name, const voxal::PieceConverter& converter) const {
    if (placesInText().inputUnits() != InputUnits::Same) return InputUnits::Unknown;
    return inputUnitsOf(QeUToUnicodeConverter::canonicalName(name), converter.hasByteEach());
}

void Input::takeWindow(std::string_view text, std::size_t place) noexcept {
    bufferStart = text.data();
    bufferEnd = text.data() + text.size();
    cursor = bufferStart + place;
    if (strict == nullptr && isCounted) ofCounts->places.goOnTo(bufferEnd);
}

QeXmlPosition Input::leaveBehind(const char* place) {
    if (strict != nullptr) return tessit::leaveBehind(*strict, place);
    const QeXmlPosition position = placesInText().leave(place);
    if (position.line == ofCounts->describedLine)
        ofCounts->columnsInFront += static_cast<std::uint64_t>(place - bufferStart);
    return position;
}

void Input::goOnIn(std::string_view text, const QeXmlPosition& beginning) noexcept {
    if (strict != nullptr) return tessit::goOnIn(*strict, text, beginning);
    bufferStart = text.data();
    ofCounts->places.begin(text, LineEnds::LineFeed, ofCounts->places.inputUnits(), beginning);
}

void Input::goOnConverted(std::string_view text, InputUnits units, const QeXmlPosition& beginning) {
    ++replaced;
    takeWindow(text, 0);
    countFrom(text, units, beginning);
}

void Input::raiseTranscoding(const char* reason) const {
    QeCString message("Couldn't transcode from input encoding '");
    message += encoding;
    message += "': ";
    message += reason;
    raise(message);
}

Input::Counted& Input::counted() const {
    if (isCounted) return *ofCounts;
    return countFrom({bufferStart, static_cast<std::size_t>(bufferEnd - bufferStart)}, InputUnits::Same, {});
}

// Allocates the first time alone: `replaceRest` relies on that.
Input::Counted& Input::countFrom(std::string_view text, InputUnits units, const QeXmlPosition& beginning) const {
    if (ofCounts == nullptr) ofCounts = std::make_unique<Counted>();
    ofCounts->places.begin(text, LineEnds::LineFeed, units, beginning);
    ofCounts->describedLine = beginning.line;
    ofCounts->columnsInFront = ofCounts->bytesConverted = 0;
    isCounted = true;
    return *ofCounts;
}

QeXmlPosition Input::positionOf(const char* place) const {
    return strict != nullptr ? placeIn(*strict, place).position : placesInText().at(place);
}

QeXmlExcerpt Input::excerptAt(const char* place) const {
    if (strict != nullptr) return excerptIn(*strict, place);
    const TextPlaces& text = placesInText();
    QeXmlExcerpt excerpt = tessit::excerptAt(text.whole(), place, LineEnds::LineFeed);
    const bool reachesFirst = place - excerpt.offset == text.whole().data();
    if (reachesFirst && text.beginning().column != 1) excerpt.isCutInFront = true;
    return excerpt;
}

// The described line and column count from the last conversion, and take a mark in.
QeXmlParseError Input::errorAt(const char* place, const QeCString& message, std::optional<QeXmlNote>&& note,
                               const char* readUpTo) const {
    const QeXmlPosition position = positionOf(place);
    ErrorAccess::Details details{.position = position, .note = std::move(note), .excerpt = excerptAt(place)};
    if (strict != nullptr && !details.note) details.note = noteOfReference(*strict);
    context.complete(details, readUpTo);
    if (strict != nullptr) return ErrorAccess::make(message, placeIn(*strict, place), std::move(details));
    QeXmlPlace described{sourceName, position};
    described.position.line = position.line - ofCounts->describedLine + 1;
    if (position.line == ofCounts->describedLine)
        described.position.column = ofCounts->columnsInFront + static_cast<std::uint64_t>(place - bufferStart) + 1;
    return ErrorAccess::make(message, described, std::move(details));
}

void Input::raise(const QeCString& message, std::optional<QeXmlNote>&& note) const {
    throw errorAt(cursor, message, std::move(note), cursor);
}

void Input::raiseBehind(const char* node, const QeCString& message, std::optional<QeXmlNote>&& note) const {
    throw errorAt(cursor, message, std::move(note), node);
}

void Input::raiseLimit(Limit limit, const char* place) const {
    throw QeXmlLimitError(errorAt(place, messageFor(limits(), limit), std::nullopt, place), nameOf(limit),
                          valueOf(limits(), limit));
}

void Input::raiseEnd(const char* place) {
    needMore();
    cursor = bufferEnd;
    throw errorAt(cursor, "Premature EOF", std::nullopt, place);
}

void Input::raiseAt(const char* place, const char* message, std::string_view found) {
    cursor = place;
    raise(QeCString(message) + found);
}

}  // namespace tessit
