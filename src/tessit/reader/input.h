#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <voxal/piece_converter.h>

#include <corvel/c_string.h>
#include <tessit/errors/error_access.h>
#include <tessit/rules/limits.h>
#include <tessit/rules/rules.h>
#include <tessit/rules/source.h>
#include <tessit/rules/text_places.h>

namespace tessit {

/// Thrown where a text that may go on ends too early for what is read: that is to be read again once there is more.
struct Cut {};

/// Knows what else is to be said of an error that is raised where the input stands.
class ErrorContext {
public:
    /// The document was read up to `place`; the error can be elsewhere.
    virtual void complete(ErrorAccess::Details& details, const char* place) const = 0;

protected:
    ~ErrorContext() = default;
};

/// The document's bytes and the place that was read up to. Finds out their encoding,
/// converts them to UTF-8, bounds what conversions may produce, counts lines, and
/// raises every error with its position. Knows nothing of XML.
class Input {
public:
    /// The reader's members of these names, which the input sets and moves.
    struct Members {
        const char*& cursor;
        const char*& bufferStart;
        const char*& bufferEnd;
        QeCString& ownedDocument;
        QeCString& encoding;
    };

    // What is counted of the document, from a mark, or the last conversion, on.
    struct Counted {
        TextPlaces places;

        // Where the described line and column begin: the line, and how much of it is in front of the bytes.
        std::uint64_t describedLine = 1, columnsInFront = 0;

        std::uint64_t bytesConverted = 0;  // by all conversions
    };

    /// What the bytes from the cursor on are as UTF-8.
    struct Converted {
        QeCString text;
        InputUnits units;
        QeXmlPosition beginning;
        std::uint64_t bytesConverted;  // by all conversions
    };

    Input(const Members& members, const ErrorContext& errorContext) noexcept
        : context(errorContext),
          cursor(members.cursor),
          bufferStart(members.bufferStart),
          bufferEnd(members.bufferEnd),
          ownedDocument(members.ownedDocument),
          encoding(members.encoding) {}

    /// What a document may have; `limits` lives as long.
    void setLimits(const QeXmlLimits& limits) noexcept { bounds = &limits; }
    const QeXmlLimits& limits() const noexcept { return *bounds; }

    /// Forgets the document.
    void begin() noexcept;

    /// Begins with these bytes, which stay where they are.
    void take(std::string_view document) noexcept;

    /// How many bytes the document had, for one that was not taken.
    void setLength(std::uint64_t bytes) noexcept { length = bytes; }
    std::uint64_t bytesTaken() const noexcept { return length; }

    /// Goes on in a source that a conforming reader reads, from this place on; errors have their places in it. It stays
    /// where it is as long as it is read.
    void enter(const Source& source, const char* place) noexcept;

    /// What a conforming reader reads.
    const Source& source() const noexcept { return *strict; }

    /// The name that errors have as that of their source.
    void setSourceName(const QeCString& name) { sourceName = name; }
    const QeCString& getSourceName() const noexcept { return sourceName; }

    /// @name A document that comes piece by piece
    /// @{

    /// What is there of it now, from the same beginning on, and the cursor's place in that.
    void takeWindow(std::string_view text, std::size_t place) noexcept;

    /// All in front of the place is about to go: returns where it stands in the document. Then what is left begins
    /// elsewhere, with that position.
    QeXmlPosition leaveBehind(const char* place);

    /// Before that, of places in front of that one, in their order: it is cheap.
    QeXmlPosition positionOnTheWay(const char* place) const {
        return strict != nullptr ? tessit::leaveBehind(*strict, place) : placesInText().leave(place);
    }
    void goOnIn(std::string_view text, const QeXmlPosition& beginning) noexcept;

    /// The same behind a conversion of all from the cursor on.
    void goOnConverted(std::string_view text, InputUnits units, const QeXmlPosition& beginning);

    /// Whether more may come behind the end, as far as is known: what ends there too early throws `Cut` then, and no
    /// error.
    void expectMore(bool mayCome) noexcept { moreMayCome = mayCome; }
    void needMore() const {
        if (moreMayCome) throw Cut();
    }

    /// The encoding that a mark, which is passed, or the first bytes tell; null where they tell none, or UTF-8.
    const char* tellEncoding();

    /// Makes the encoding a declared one. Whether what follows is to be converted from it.
    bool takeDeclaration(const QeCString& name);

    /// Opens what converts from an encoding, unless that is UTF-8 as it is.
    std::optional<voxal::PieceConverter> openPieces(const QeCString& name);

    /// What the bytes that are converted from that encoding are for each character of the text.
    InputUnits unitsOf(const QeCString& name, const voxal::PieceConverter& converter) const;

    [[noreturn]] void raiseTranscoding(const char* reason) const;

    /// How many bytes all conversions of an input of that length may make together, and what is raised where they make
    /// more.
    static std::uint64_t mostConverted(std::uint64_t inputLength) noexcept;
    [[noreturn]] void raiseTooManyConversions() const;

    /// @}

    /// Tells the encoding by a mark or by the first bytes, and converts what is not UTF-8.
    void detectEncoding();

    /// Makes the encoding a declared one. Returns all from the cursor on in UTF-8 where
    /// that makes a difference: it is for `replaceRest`, once nobody needs the old bytes.
    std::optional<Converted> declareEncoding(const QeCString& name);

    /// Goes on with these bytes. What was before the cursor is gone, so the described lines and columns count from
    /// here.
    void replaceRest(Converted&& converted) noexcept;

    const char* position() const noexcept { return cursor; }

    /// How often the bytes were replaced: a place is good for as long as this is the same.
    unsigned conversions() const noexcept { return replaced; }

    /// Has questions about places of a lenient reader's document that are not far behind this one cost little.
    void dropAnchor(const char* place) const { placesInText().dropAnchor(place); }

    /// The same for places by how many bytes of the text stand in front of them.
    std::uint64_t offsetOf(const char* place) const { return placesInText().offsetAt(place); }
    const char* placeOf(std::uint64_t offset) const { return placesInText().placeOf(offset); }

    /// What stays of a lenient reader's document, without a mark in front.
    std::string_view textBehindMark() const { return placesInText().whole(); }

    /// The cursor itself, for who moves it, and where the bytes end.
    const char*& place() noexcept { return cursor; }
    const char* const& limit() const noexcept { return bufferEnd; }

    /// The position of a place in what is read. O(bytes since the last one that was asked for).
    QeXmlPosition positionOf(const char* place) const;

    /// The line of a place. O(1).
    QeXmlExcerpt excerptAt(const char* place) const;

    /// The place of a lenient reader's document that has that position; null if none has.
    const char* find(const QeXmlPosition& position) const { return placesInText().find(position); }

    /// Throws `QeXmlParseError` with this message and the cursor's position. O(bytes read since the last error).
    [[noreturn]] void raise(const QeCString& message, std::optional<QeXmlNote>&& note = {}) const;

    /// The same of what is wrong with a node that was read already, and begins there.
    [[noreturn]] void raiseBehind(const char* node, const QeCString& message, std::optional<QeXmlNote>&& note) const;

    /// The same where a limit is exceeded, with that place.
    [[noreturn]] void raiseLimit(Limit limit, const char* place) const;

    /// The same at the end of the document, for what was read up to a place and has no end.
    [[noreturn]] void raiseEnd(const char* place);

    /// The same with the cursor at that place, and with what was found there behind the message.
    [[noreturn]] void raiseAt(const char* place, const char* message, std::string_view found = {});

private:
    std::string_view rest() const noexcept { return {cursor, static_cast<std::size_t>(bufferEnd - cursor)}; }
    void passMark(std::size_t markLength);
    std::optional<Converted> convertRest(const QeCString& name);
    std::optional<QeCString> convertText(const QeCString& name, InputUnits& units);
    QeCString convertByTables(const QeCString& name, InputUnits& units);
    std::uint64_t conversionAllowance() const noexcept;
    Counted& counted() const;
    Counted& countFrom(std::string_view text, InputUnits units, const QeXmlPosition& beginning) const;
    TextPlaces& placesInText() const { return counted().places; }
    QeXmlParseError errorAt(const char* place, const QeCString& message, std::optional<QeXmlNote>&& note,
                            const char* readUpTo) const;

    const ErrorContext& context;
    const char*& cursor;       // the next byte to be read
    const char*& bufferStart;  // lines and columns count from here
    const char*& bufferEnd;
    QeCString& ownedDocument;
    QeCString& encoding;

    const QeXmlLimits* bounds = &NoLimits;
    const Source* strict = nullptr;  // what is read by a conforming reader
    QeCString sourceName;

    bool isDetected = false;  // no declaration was taken in yet
    bool moreMayCome = false;
    mutable bool isCounted = false;  // whether there is anything in the counts
    unsigned replaced = 0;
    std::uint64_t length = 0;                   // bytes of a document that is in memory as a whole
    mutable std::unique_ptr<Counted> ofCounts;  // made when it is needed, and kept for other documents
};

}  // namespace tessit
