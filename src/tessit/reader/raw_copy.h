#pragma once

#include <tessit/reader/xml_reader.h>

/// The document's text from one position on, as it is read: the markup that
/// `readElement` returns.
///
/// Usually a copy of one run of the buffer. An XML declaration inside the element
/// can replace the buffer; then the text up to there is kept aside.
class QeXmlReader::RawCopy {
public:
    /// Begins at the reader's cursor; until it ends, the reader knows of the copy.
    explicit RawCopy(QeXmlReader& source) noexcept : reader(source), runStart(source.cursor) { reader.rawCopy = this; }
    ~RawCopy() { reader.rawCopy = nullptr; }
    RawCopy(const RawCopy&) = delete;
    RawCopy& operator=(const RawCopy&) = delete;

    /// How many bytes lie between the begin and the cursor.
    std::size_t length() const noexcept { return kept.length() + static_cast<std::size_t>(reader.cursor - runStart); }

    /// The text from the begin to the cursor, behind what `front` holds.
    QeCString textAfter(QeCString front) const {
        front.reserve(front.length() + length());
        front += kept;
        front.append(runStart, static_cast<std::size_t>(reader.cursor - runStart));
        return front;
    }

    void keepUpTo(const char* position) { kept.append(runStart, static_cast<std::size_t>(position - runStart)); }
    void continueAt(const char* position) noexcept { runStart = position; }

private:
    QeXmlReader& reader;
    QeCString kept;
    const char* runStart;
};
