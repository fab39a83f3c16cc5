// A reader from its construction to its end, and what its program asks it besides nodes.

#include <istream>

#include <tessit/reader/engine.h>

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

QeXmlReader::~QeXmlReader() = default;

void QeXmlReader::open(std::string_view document) {
    engine->input.take(document);
    namespaceStack.pushScope();  // the document's own
    engine->readProlog();
}

void QeXmlReader::skipSpace() noexcept {
    while (cursor != bufferEnd && tessit::isSpace(*cursor))
        ++cursor;
}

void QeXmlReader::setMatchTags(bool match) noexcept {
    engine->matchesTags = match;
    engine->openElements.clear();
}

bool QeXmlReader::getMatchTags() const noexcept {
    return engine->matchesTags;
}

QeCString QeXmlReader::getOpenElement() const {
    return engine->openElements.empty() ? QeCString() : QeCString(engine->openElements.innermost());
}

void QeXmlReader::err(const QeCString& message) const {
    engine->input.raise(message);
}
