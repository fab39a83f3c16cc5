// How room is made for bytes, and what becomes of a call that fails.

#include <cstring>

#include <tessit/writer/borrowed.h>
#include <tessit/writer/output.h>
#include <tessit/writer/pieces.h>

using corvel::StringAccess;
using tessit::Borrowed;

// More than can be had stays so: asking for it throws.
void QeXmlWriter::Engine::Output::makeRoom(std::uint64_t room) {
    const std::size_t size = static_cast<std::size_t>(std::min<std::uint64_t>(room, PTRDIFF_MAX)) + tessit::Slack;
    if (text == nullptr) {
        heap = std::make_unique_for_overwrite<char[]>(size);
        at = heap.get();
        limit = at + size;
    } else {
        StringAccess::setLength(*text, static_cast<std::size_t>(at - text->data()));
        StringAccess::roomBehind(*text, std::max(size, FirstRoom));
        takeTextRoom();
    }
}

void QeXmlWriter::Engine::Output::sendBytes(const QeCString& bytes) {
    if (text != nullptr) return sendBytes(tessit::putString(begin(bytes.length()), bytes));
    engine.sendInPieces(bytes.data(), bytes.length());
}

void QeXmlWriter::Engine::Output::sendString(const QeCString& string) {
    if (text != nullptr) return sendString(tessit::putString(begin(string.length()), string));
    engine.writer.writeIndentChars();
    engine.writer.writeToSink(string);
}

void QeXmlWriter::Engine::Output::sendPiece(const char* end) {
    engine.sendInPieces(at, static_cast<std::size_t>(end - at));
    heap.reset();
    takeLocalRoom();
}

void QeXmlWriter::Engine::Output::sendPieceAsString(const char* end) {
    Borrowed<QeCString> string(engine.spareTag);
    string->assign(at, static_cast<std::size_t>(end - at));
    sendString(*string);
    heap.reset();
    takeLocalRoom();
}

// --- The slots.

void QeXmlWriter::Engine::sendInPieces(const char* bytes, std::size_t length) {
    writer.writeIndentChars();
    tessit::inPieces(bytes, length, [this](const char* piece, unsigned count) { writer.writeToSink(piece, count); });
}

// The string is kept for the next call, unless it has become large.
void QeXmlWriter::Engine::sendAsString(const char* bytes, unsigned length) {
    if (length > tessit::ShortEnough) return writer.writeToSink(QeCString(bytes, length));
    Borrowed<QeCString> string(spareBytes);
    string->assign(bytes, length);
    writer.writeToSink(*string);
}

void QeXmlWriter::Engine::beginLine() {
    if (QeCString* const text = takeOwnText()) {
        text->append('\n');
    } else {
        writer.writeToSink('\n');
    }
    writer.atLineStart = true;
}

// One call of the slot for each space.
void QeXmlWriter::Engine::indent() {
    if (QeCString* const text = takeOwnText()) {
        const auto spaces = static_cast<std::size_t>(writer.currentIndent);
        std::memset(StringAccess::roomBehind(*text, spaces), ' ', spaces);
        StringAccess::setLength(*text, text->length() + spaces);
    } else {
        for (int i = 0; i < writer.currentIndent; ++i)
            writer.writeToSink(' ');
    }
    writer.atLineStart = false;
}
