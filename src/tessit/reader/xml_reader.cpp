// A reader from its construction to its end, and what its program asks it besides nodes.

#include <istream>

#include <tessit/reader/conforming.h>

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

QeXmlReader::~QeXmlReader() = default;

void QeXmlReader::open(std::string_view document) {
    namespaceStack.pushScope();  // the document's own
    if (engine->conforming != nullptr) return engine->openConforming(document);
    engine->input.take(document);
    engine->readProlog();
}

void QeXmlReader::skipSpace() noexcept {
    if (engine->conforming != nullptr) return engine->passOutsideOfRoot();
    while (cursor != bufferEnd && tessit::isSpace(*cursor))
        ++cursor;
}

void QeXmlReader::setMatchTags(bool match) noexcept {
    if (engine->conforming != nullptr) return;
    engine->matchesTags = match;
    engine->openElements.clear();
}

bool QeXmlReader::getMatchTags() const noexcept {
    return engine->matchesTags || engine->conforming != nullptr;
}

QeCString QeXmlReader::getOpenElement() const {
    return engine->openElements.empty() ? QeCString() : QeCString(engine->openElements.innermost());
}

void QeXmlReader::err(const QeCString& message) const {
    engine->input.raise(message);
}
