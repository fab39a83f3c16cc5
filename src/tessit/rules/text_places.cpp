#include <algorithm>
#include <bit>
#include <cstring>

#include <tessit/rules/counted_bytes.h>
#include <tessit/rules/text_places.h>

namespace tessit {

namespace {

constexpr std::size_t Distance = 4096;

using Word = std::uint64_t;

constexpr Word inEachByte(unsigned char byte) {
    return ~Word{0} / 0xFF * byte;
}

// The highest bit of each byte that is this one.
Word findByte(Word word, char byte) {
    const Word difference = word ^ inEachByte(static_cast<unsigned char>(byte));
    return ~(((difference & inEachByte(0x7F)) + inEachByte(0x7F)) | difference) & inEachByte(0x80);
}

// A mask of the bytes that come first in memory, fewer than all.
Word firstBytes(std::size_t count) {
    const Word low = (Word{1} << 8 * count) - 1;
    return std::endian::native == std::endian::little ? low : ~(~Word{0} >> 8 * count);
}

std::uint64_t howMany(Word marks) {
    return (marks >> 7) * inEachByte(1) >> 56;
}

// Of the bytes that are marked, the last one by its place in memory.
std::size_t lastOf(Word marks) {
    const int unmarked = std::endian::native == std::endian::little ? std::countl_zero(marks) : std::countr_zero(marks);
    return sizeof(Word) - 1 - static_cast<std::size_t>(unmarked) / 8;
}

}  // namespace

InputUnits inputUnitsOf(std::string_view canonical, bool hasByteEach) noexcept {
    if (canonical == "UTF-8" || canonical == "US-ASCII") return InputUnits::Same;
    if (hasByteEach || canonical == "ISO-8859-1") return InputUnits::One;
    if (canonical.starts_with("UTF-16")) return InputUnits::TwoEach;
    return canonical.starts_with("UTF-32") ? InputUnits::Four : InputUnits::Unknown;
}

void TextPlaces::begin(std::string_view newText, LineEnds ends, InputUnits inputUnits,
                       const QeXmlPosition& position) noexcept {
    text = newText;
    lineEnds = ends;
    units = inputUnits;
    base = position;
    last = anchor = {text.data(), text.data(), 0, 0, 0, 0};
    kept.clear();
}

void TextPlaces::dropAnchor(const char* place) {
    if (anchor.upTo == place) return;
    goBackFor(place);
    countTo(place);
    anchor = last;
}

// Where a character is as many bytes of the input as of the text, only those of the last line count.
QeXmlPosition TextPlaces::leave(const char* place) {
    constexpr std::ptrdiff_t Near = 64;  // blocks would not pay
    if (last.upTo >= place || (lineEnds == LineEnds::All && place[-1] == '\r')) return at(place);
    if (place - last.upTo < Near) {
        countOn(place);
        return lastPosition();
    }
    const char* const line = findLineBegin(last.upTo, place, lineEnds);
    if (line != last.upTo) {
        const ByteCounts inFront = units == InputUnits::Same ? ByteCounts{} : countBytes(last.upTo, line);
        last.lineStart = line;
        last.lines += countLineEnds(last.upTo, line, lineEnds);
        last.continuations += inFront.continuations;
        last.continuationsInFrontOfLine = last.continuations;
        last.pastPlane += inFront.pastPlane;
    }
    const ByteCounts inLine = countBytes(line, place);
    last.continuations += inLine.continuations;
    last.pastPlane += inLine.pastPlane;
    last.upTo = place;
    return lastPosition();
}

QeXmlPosition TextPlaces::at(const char* place) {
    goBackFor(place);
    countTo(place);
    return lastPosition();
}

// Of what was counted up to.
QeXmlPosition TextPlaces::lastPosition() const noexcept {
    QeXmlPosition position = base;
    const bool isFirstLine = last.lines == 0;
    const auto inLine = static_cast<std::uint64_t>(last.upTo - last.lineStart);
    const std::uint64_t continuations = last.continuations - last.continuationsInFrontOfLine;
    position.line += last.lines;
    position.column = inLine + (isFirstLine ? base.column : 1);
    position.characterColumn = inLine - continuations + (isFirstLine ? base.characterColumn : 1);
    position.offset += static_cast<std::uint64_t>(last.upTo - text.data());
    const bool isKnown = units != InputUnits::Unknown && base.inputOffset != QeXmlPosition::Unknown;
    position.inputOffset = isKnown ? base.inputOffset + inputBytes() : QeXmlPosition::Unknown;
    return position;
}

const char* TextPlaces::find(const QeXmlPosition& position) {
    const char* const place = placeOf(position.offset);
    if (place == nullptr) return nullptr;
    const QeXmlPosition found = at(place);
    return found.line == position.line && found.column == position.column ? place : nullptr;
}

// To the nearest place that was counted and is not behind this one.
void TextPlaces::goBackFor(const char* place) {
    if (last.upTo <= place && static_cast<std::size_t>(place - last.upTo) < Distance) return;
    const std::size_t number = std::min(static_cast<std::size_t>(place - text.data()) / Distance, kept.size());
    const Count begin{text.data(), text.data(), 0, 0, 0, 0};
    const Count& nearest = number == 0 ? begin : kept[number - 1];
    if (last.upTo > place || last.upTo < nearest.upTo) last = nearest;
    if (anchor.upTo <= place && anchor.upTo > last.upTo) last = anchor;
}

// Of what `leave` has passed, nothing is kept.
void TextPlaces::countTo(const char* place) {
    for (;;) {
        const char* const next = text.data() + (kept.size() + 1) * Distance;
        if (place < next || last.upTo > next) return countOn(place);
        countOn(next);
        kept.push_back(last);
    }
}

// Words are taken whole, the last one with what is behind `place` blanked out.
void TextPlaces::countOn(const char* place) noexcept {
    const char* const end = text.data() + text.size();
    Word word;
    while (last.upTo < place) {
        const auto length = std::min(static_cast<std::size_t>(place - last.upTo), sizeof word);
        if (static_cast<std::size_t>(end - last.upTo) < sizeof word) {
            countByte(last.upTo);
            continue;
        }
        std::memcpy(&word, last.upTo, sizeof word);
        if (length != sizeof word) word &= firstBytes(length);
        if ((word & inEachByte(0x80)) != 0 || (lineEnds == LineEnds::All && findByte(word, '\r') != 0)) {
            for (const char* const stop = last.upTo + length; last.upTo != stop;)
                countByte(last.upTo);
            continue;
        }
        if (const Word lineFeeds = findByte(word, '\n')) {
            last.lines += howMany(lineFeeds);
            last.lineStart = last.upTo + lastOf(lineFeeds) + 1;
            last.continuationsInFrontOfLine = last.continuations;
        }
        last.upTo += length;
    }
}

// A carriage return in front of a line feed is part of that line end.
bool TextPlaces::endsLine(const char* at) const noexcept {
    if (*at == '\n') return true;
    if (*at != '\r' || lineEnds == LineEnds::LineFeed) return false;
    return at + 1 == text.data() + text.size() || at[1] != '\n';
}

void TextPlaces::countByte(const char* at) noexcept {
    const auto byte = static_cast<unsigned char>(*at);
    last.upTo = at + 1;
    if (byte >= 0x80) {
        last.continuations += byte < 0xC0;
        last.pastPlane += byte >= 0xF0;
    } else if (endsLine(at)) {
        ++last.lines;
        last.lineStart = at + 1;
        last.continuationsInFrontOfLine = last.continuations;
    }
}

// What the input had for what was counted.
std::uint64_t TextPlaces::inputBytes() const noexcept {
    const auto bytes = static_cast<std::uint64_t>(last.upTo - text.data());
    const std::uint64_t characters = bytes - last.continuations;
    switch (units) {
        case InputUnits::Same:
            return bytes;
        case InputUnits::One:
            return characters;
        case InputUnits::TwoEach:
            return 2 * (characters + last.pastPlane);
        case InputUnits::Four:
            return 4 * characters;
        case InputUnits::Unknown:
            break;
    }
    return QeXmlPosition::Unknown;
}

}  // namespace tessit
