// A writer whose sink is a text of its own.

#include <cstring>
#include <limits>
#include <utility>

#include <corvel/byte_copy.h>
#include <tessit/errors/xml_error.h>
#include <tessit/writer/engine.h>
#include <tessit/writer/pieces.h>
#include <tessit/writer/xml_string_writer.h>

QeXmlStringWriter::QeXmlStringWriter() {
    offerText();
}

// Only the bytes in use are copied: the rest of the buffer was never written.
QeXmlStringWriter::QeXmlStringWriter(const QeXmlStringWriter& other)
    : QeXmlWriter(other), bufferedBytes(other.bufferedBytes), sinkText(other.sinkText) {
    std::memcpy(sinkBuffer, other.sinkBuffer, bufferedBytes);
    offerText();
}

// What the slots of this class do, in the end, is to append to its text. The engine may do so itself as long as no
// class derived from this one can have overridden a slot.
void QeXmlStringWriter::offerText() noexcept {
    engine->offerText({&sinkText, sinkBuffer, &bufferedBytes, &typeid(QeXmlStringWriter)});
}

QeXmlStringWriter& QeXmlStringWriter::operator=(const QeXmlStringWriter& other) {
    QeCString copied(other.sinkText);
    QeXmlWriter::operator=(other);
    std::memmove(sinkBuffer, other.sinkBuffer, other.bufferedBytes);
    bufferedBytes = other.bufferedBytes;
    sinkText = std::move(copied);
    return *this;
}

QeXmlStringWriter::~QeXmlStringWriter() = default;

QeCString QeXmlStringWriter::getString() & {
    flush();
    return sinkText;
}

QeCString QeXmlStringWriter::getString() && {
    flush();
    return std::exchange(sinkText, {});
}

// An override of `flush` is to see this call too, and what ours changes is mutable.
unsigned QeXmlStringWriter::getLength() const {
    const_cast<QeXmlStringWriter*>(this)->flush();
    if (sinkText.length() > std::numeric_limits<unsigned>::max())
        throw QeXmlLengthError("The output is longer than its length can say");
    return static_cast<unsigned>(sinkText.length());
}

void QeXmlStringWriter::removeLastCharFromSink(char byte) {
    if (bufferedBytes != 0) {
        if (sinkBuffer[bufferedBytes - 1] == byte) --bufferedBytes;
    } else if (!sinkText.empty() && sinkText[sinkText.length() - 1] == byte) {
        sinkText.truncate(sinkText.length() - 1);
    }
}

void QeXmlStringWriter::writeToSink(char byte) {
    if (bufferedBytes == BufferSize) emptyBuffer();
    sinkBuffer[bufferedBytes++] = byte;
}

void QeXmlStringWriter::writeToSink(const char* bytes, unsigned length) {
    if (length >= BufferSize - bufferedBytes) emptyBuffer();
    if (length >= BufferSize) return sinkText.append(bytes, length);
    corvel::copyBytes(sinkBuffer + bufferedBytes, bytes, length);
    bufferedBytes += length;
}

void QeXmlStringWriter::writeToSink(const QeCString& string) {
    tessit::inPieces(string.data(), string.length(),
                     [this](const char* piece, unsigned count) { writeToSink(piece, count); });
}

void QeXmlStringWriter::flush() {
    sinkText.append(sinkBuffer, bufferedBytes);
    bufferedBytes = 0;
}

void QeXmlStringWriter::emptyBuffer() {
    flush();
    QeXmlStringWriter::flush();  // an override may have left, or written, bytes
}
