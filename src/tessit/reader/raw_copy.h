#pragma once

#include <cstddef>

#include <corvel/c_string.h>
#include <tessit/reader/engine.h>

/// The document's text from one position on, as it is read: the markup that
/// `readElement` returns.
///
/// Usually a copy of one run of the buffer. An XML declaration inside the element
/// can replace the buffer; then the text up to there is kept aside.
class QeXmlReader::RawCopy {
public:
    /// Begins at that place of the document; until it ends, the engine knows of the copy.
    RawCopy(Engine& source, const char* start) noexcept : engine(source), runStart(start) { engine.rawCopy = this; }
    ~RawCopy() { engine.rawCopy = nullptr; }
    RawCopy(const RawCopy&) = delete;
    RawCopy& operator=(const RawCopy&) = delete;

    /// How many bytes lie between the begin and the cursor.
    std::size_t length() const noexcept { return kept.length() + run().size(); }

    /// The text from the begin to the cursor, behind what `front` holds.
    QeCString textAfter(QeCString front) const {
        front.reserve(front.length() + length());
        front += kept;
        front += run();
        return front;
    }

    /// The element's start tag; nowhere once its bytes are gone.
    Engine::Written startTag;

    /// What was read so far is about to go.
    void keepRun() {
        kept += run();
        startTag = {};
    }

    /// The input begins anew at its cursor.
    void goOn() noexcept { runStart = engine.input.position(); }

private:
    std::string_view run() const noexcept {
        return {runStart, static_cast<std::size_t>(engine.positionInDocument() - runStart)};
    }

    Engine& engine;
    QeCString kept;
    const char* runStart;
};
