#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <tessit/errors/xml_position.h>
#include <tessit/rules/counted_bytes.h>

namespace tessit {

/// How many bytes of the input a character of the text was.
enum class InputUnits : std::uint8_t {
    Same,     // as many as of the text
    One,      // in an encoding of a byte for each character
    TwoEach,  // UTF-16: two, or four for those past U+FFFF
    Four,     // UTF-32
    Unknown
};

/// Those of an encoding by its one name; `hasByteEach` says that each byte is a character.
InputUnits inputUnitsOf(std::string_view canonicalEncoding, bool hasByteEach) noexcept;

/// Finds the position of a place in a text. Goes on from the last place that was asked for, and
/// keeps what it counted every few thousand bytes: so that no order of questions costs more than
/// O(bytes) in all, and a few thousand bytes each.
class TextPlaces {
public:
    /// Begins a text; its own beginning has that position in the document.
    void begin(std::string_view text, LineEnds ends, InputUnits inputUnits = InputUnits::Same,
               const QeXmlPosition& position = {}) noexcept;

    /// The position of a place in the text, or behind it.
    QeXmlPosition at(const char* place);

    /// How many bytes stand in front of a place in the text, from the document's beginning on. O(1).
    std::uint64_t offsetAt(const char* place) const noexcept {
        return base.offset + static_cast<std::uint64_t>(place - text.data());
    }

    /// The place in the text that has that offset; null if none has. O(1).
    const char* placeOf(std::uint64_t offset) const noexcept {
        const bool isHere = offset >= base.offset && offset - base.offset <= text.size();
        return isHere ? text.data() + (offset - base.offset) : nullptr;
    }

    /// The place in the text that has that position; null if none has.
    const char* find(const QeXmlPosition& position);

    /// Has questions about places not far behind this one cost little, in any order.
    void dropAnchor(const char* place);

    /// The same for one in front of which everything is about to go: what was counted is of no more use then. Faster
    /// for long texts.
    QeXmlPosition leave(const char* place);

    /// The text has become longer, and ends there now.
    void goOnTo(const char* end) noexcept { text = {text.data(), static_cast<std::size_t>(end - text.data())}; }

    /// What the text began with.
    const QeXmlPosition& beginning() const noexcept { return base; }
    std::string_view whole() const noexcept { return text; }
    InputUnits inputUnits() const noexcept { return units; }

private:
    // What there is in front of a place.
    struct Count {
        const char* upTo;
        const char* lineStart;
        std::uint64_t lines;
        std::uint64_t continuations;  // bytes that begin no character
        std::uint64_t continuationsInFrontOfLine;
        std::uint64_t pastPlane;  // characters of four bytes
    };

    QeXmlPosition lastPosition() const noexcept;
    void goBackFor(const char* place);
    void countTo(const char* place);
    void countOn(const char* place) noexcept;
    void countByte(const char* at) noexcept;
    bool endsLine(const char* at) const noexcept;
    std::uint64_t inputBytes() const noexcept;

    std::string_view text;
    LineEnds lineEnds = LineEnds::LineFeed;
    InputUnits units = InputUnits::Same;
    QeXmlPosition base;
    Count last{}, anchor{};
    std::vector<Count> kept;  // at each multiple of a distance that was passed, the beginning left out
};

}  // namespace tessit
