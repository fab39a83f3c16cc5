// A reader from its construction to its end, and what its program asks it besides nodes.

#include <istream>
#include <system_error>
#include <utility>

#include <tessit/reader/char_class.h>
#include <tessit/reader/conforming.h>
#include <tessit/reader/windowed.h>

constinit const QeXmlName QeXmlReader::NullName;

QeXmlReader::QeXmlReader(std::istream& in) : engine(std::make_unique<Engine>(*this)) {
    ownedDocument.readFile(in);
    open(ownedDocument);
}

QeXmlReader::QeXmlReader(const QeCString& document) : ownedDocument(document), engine(std::make_unique<Engine>(*this)) {
    open(ownedDocument);
}

QeXmlReader::QeXmlReader(unsigned char* bytes, unsigned int length)
    : QeXmlReader(std::span<const unsigned char>(bytes, bytes == nullptr ? 0 : length)) {}

QeXmlReader::QeXmlReader(std::span<const unsigned char> document) : engine(std::make_unique<Engine>(*this)) {
    open({reinterpret_cast<const char*>(document.data()), document.size()});
}

QeXmlReader::QeXmlReader(std::istream& in, const Passed& passed) : engine(Engine::make(*this, passed)) {
    ownedDocument.readFile(in);
    open(ownedDocument);
}

QeXmlReader::QeXmlReader(const QeCString& document, const Passed& passed)
    : ownedDocument(document), engine(Engine::make(*this, passed)) {
    open(ownedDocument);
}

QeXmlReader::QeXmlReader(std::span<const unsigned char> document, const Passed& passed)
    : engine(Engine::make(*this, passed)) {
    open({reinterpret_cast<const char*>(document.data()), document.size()});
}

namespace {

void requireSource(const tessit::ByteSource* source) {
    if (source != nullptr) return;
    throw QeXmlInputError("the input", std::make_error_code(std::errc::invalid_argument), "it was handed on before");
}

}  // namespace

QeXmlReader::QeXmlReader(QeXmlInput&& input, const Passed& passed) : engine(Engine::make(*this, passed)) {
    requireSource(input.source.get());
    open(std::move(input));
}

void QeXmlReader::open(QeXmlInput&& input) {
    const std::optional<std::string_view> document = input.source->whole();
    if (!document && engine->judge() != nullptr) {
        engine->readWhole(*input.source);
        return open(ownedDocument);
    }
    if (!document) {
        namespaceStack.pushScope();
        return engine->openWindowed(std::move(input.source));
    }
    engine->leaveWindow();
    engine->makeBesides().whole = std::move(input.source);
    open(*document);
}

void QeXmlReader::reset(QeXmlInput input) {
    requireSource(input.source.get());
    engine->refuseWhileReading();
    try {
        forget();
        open(std::move(input));
    } catch (...) {
        engine->keepFaultOfReset();
        throw;
    }
}

void QeXmlReader::forget() {
    bufferEnd = nullptr;  // the next document may stand where the last one did
    depth = 0;
    lastNodeType = NoNode;
    nodePending = encodingDeclared = standaloneDeclared = false;
    for (QeCString* text : {&ownedDocument, &encoding, &version, &standalone, &lastContent})
        text->clear();
    lastAttributes.clear();
    lastName = NullName;
    engine->reset();
}

std::uint64_t QeXmlReader::getBytesRead() const noexcept {
    return engine->windowed == nullptr ? engine->input.bytesTaken() : engine->windowed->window.bytesRead();
}

std::optional<std::uint64_t> QeXmlReader::getInputSize() const noexcept {
    return engine->windowed == nullptr ? engine->input.bytesTaken() : engine->windowed->window.sourceSize();
}

QeXmlReader::~QeXmlReader() = default;

void QeXmlReader::open(std::string_view document) {
    namespaceStack.pushScope();  // the document's own
    engine->input.setLength(document.size());
    if (engine->conforming != nullptr) return engine->openConforming(document);
    if (engine->judge() != nullptr) engine->openRecord(document);
    engine->input.take(document);
    engine->readProlog();
}

// There may be any number of it.
void QeXmlReader::skipSpace() noexcept {
    if (engine->conforming != nullptr) return engine->passOutsideOfRoot();
    do {
        while (cursor != bufferEnd && tessit::isSpace(*cursor))
            ++cursor;
    } while (cursor == bufferEnd && engine->windowed != nullptr && engine->fetchQuietly(engine->windowed->keepsPlace));
}

// Asked where all is read that is there: whether more comes. What goes wrong is for the next reading call.
bool QeXmlReader::isAtEnd() noexcept {
    if (engine->conforming != nullptr) return bufferEnd != nullptr;  // else nothing was read yet, or nothing can be
    if (engine->windowed == nullptr) return true;
    return !engine->fetchQuietly(engine->windowed->keepsLast) && engine->windowed->fault == nullptr;
}

void QeXmlReader::noteExpansion() noexcept {
    engine->noteExpansion();
}

void QeXmlReader::takePendingOrApart() {
    if (nodePending) {
        nodePending = false;
        return;
    }
    if (engine->conforming != nullptr) return readNextConforming();
    engine->readLenientApart();
}

void QeXmlReader::setMatchTags(bool match) noexcept {
    if (engine->conforming != nullptr) return;
    matchesTags = match;
    notesOpen = match || engine->windowed != nullptr;
    engine->openElements.clear();
}

bool QeXmlReader::getMatchTags() const noexcept {
    return matchesTags || engine->conforming != nullptr;
}

QeCString QeXmlReader::getOpenElement() const {
    return engine->openElements.empty() ? QeCString() : QeCString(engine->openElements.innermost());
}

void QeXmlReader::err(const QeCString& message) const {
    engine->input.raise(message);
}
