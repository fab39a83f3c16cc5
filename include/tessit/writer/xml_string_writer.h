#pragma once

#include <cstddef>

#include <tessit/writer/xml_writer.h>

/// A writer whose output is a string.
///
/// Small writes are collected in a buffer inside the object and moved to the
/// string in blocks. There is no way to start over: make a new writer for a new
/// document. A copy has the output so far and shares nothing that changes; it is
/// O(bytes written, and bytes of the bindings). One thread at a time.
class TESSIT_API QeXmlStringWriter : public QeXmlWriter {
public:
    QeXmlStringWriter();
    QeXmlStringWriter(const QeXmlStringWriter& other);
    QeXmlStringWriter& operator=(const QeXmlStringWriter& other);
    ~QeXmlStringWriter() override;

    /// A copy of everything written so far. Flushes, through its slot. O(bytes).
    QeCString getString() &;

    /// Everything written so far, without a copy, for a writer that is no longer
    /// needed: `std::move(writer).getString()`. The string keeps the room to grow that
    /// the writer had, up to its length again or half a kilobyte; a copy has none. The writer is left
    /// without output; bindings and indentation stay. Flushes, through its slot.
    /// O(bytes in the buffer).
    QeCString getString() &&;

    /// The number of bytes written so far. Flushes, through its slot. Throws
    /// `QeXmlLengthError` when there are more than an `unsigned` can count; nothing
    /// written is lost. Amortised O(bytes in the buffer), besides an override.
    unsigned getLength() const;

    /// Takes back the last byte written, if it is `byte`. O(1).
    void removeLastCharFromSink(char byte);

    /// This and the next ones have the strong guarantee, except that bytes may have
    /// moved from the buffer to the string. Amortised O(bytes). A full buffer is
    /// emptied through the slot of `flush`; where an override leaves it full, it is
    /// emptied all the same.
    void writeToSink(char byte) override;
    void writeToSink(const char* bytes, unsigned length) override;

    /// Goes through the slot above, in several calls past 4 GiB: each of them has the
    /// guarantee alone. Amortised O(bytes).
    void writeToSink(const QeCString& string) override;

    /// Moves the buffered bytes to the string. Amortised O(bytes moved). Strong guarantee.
    void flush() override;

private:
    static constexpr std::size_t BufferSize = 1024;

    TESSIT_NO_EXPORT void offerText() noexcept;
    TESSIT_NO_EXPORT void emptyBuffer();

    // The output is `sinkText`, then the first `bufferedBytes` bytes of the buffer. Both can
    // change when a constant writer is asked for its length.
    char sinkBuffer[BufferSize];
    mutable std::size_t bufferedBytes = 0;
    mutable QeCString sinkText;
};
