// The public members of a writer: its constants, its numbers, and what hands over to the engine.

#include <algorithm>
#include <limits>
#include <utility>

#include <tessit/writer/engine.h>

constinit const QeCString QeXmlWriter::StartTag("<");
constinit const QeCString QeXmlWriter::EndTag(">");
constinit const QeCString QeXmlWriter::StartEndTag("</");
constinit const QeCString QeXmlWriter::UnpairedTag("/>");
constinit const QeCString QeXmlWriter::EqualToAndQuotes("=\"");
constinit const QeCString QeXmlWriter::Quotes("\"");
constinit const QeCString QeXmlWriter::MarkupLt("&lt;");
constinit const QeCString QeXmlWriter::MarkupGt("&gt;");
constinit const QeCString QeXmlWriter::MarkupAmpersand("&amp;");
constinit const QeCString QeXmlWriter::MarkupQuotes("&quot;");
constinit const QeCString QeXmlWriter::MarkupApos("&apos;");
constinit const QeCString QeXmlWriter::MarkupCR("&#xD;");
constinit const QeCString QeXmlWriter::XmlNamespaceTag("xmlns");
constinit const QeCString QeXmlWriter::TrueValue("1");
constinit const QeCString QeXmlWriter::FalseValue("0");
constinit const QeCString QeXmlWriter::Blank(" ");
constinit const QeCString QeXmlWriter::WhiteSpace(" ");
constinit const QeCString QeXmlWriter::Colon(":");
constinit const QeCString QeXmlWriter::Newline("\n");

QeXmlWriter::QeXmlWriter() : engine(std::make_unique<Engine>(*this)) {
    namespaces.pushScope();
}

QeXmlWriter::QeXmlWriter(const QeXmlWriter& other)
    : currentIndent(other.currentIndent),
      indentSize(other.indentSize),
      atLineStart(other.atLineStart),
      namespaces(other.namespaces),
      engine(std::make_unique<Engine>(*this)) {}

QeXmlWriter& QeXmlWriter::operator=(const QeXmlWriter& other) {
    namespaces = other.namespaces;
    currentIndent = other.currentIndent;
    indentSize = other.indentSize;
    atLineStart = other.atLineStart;
    engine->forgetBindings();
    return *this;
}

QeXmlWriter::~QeXmlWriter() = default;

// --- Layout.

int QeXmlWriter::setSizeOfIndent(int spaces) noexcept {
    return std::exchange(indentSize, std::max(spaces, 0));
}

void QeXmlWriter::setCurrentIndent(int spaces) noexcept {
    currentIndent = std::max(spaces, 0);
}

void QeXmlWriter::incrementIndent() noexcept {
    currentIndent = std::min(currentIndent, std::numeric_limits<int>::max() - indentSize) + indentSize;
}

void QeXmlWriter::decrementIndent() noexcept {
    currentIndent = std::max(currentIndent - indentSize, 0);
}

void QeXmlWriter::writeNewLine() {
    engine->beginLine();
}

void QeXmlWriter::writeIndentChars() {
    if (atLineStart) engine->indent();
}

// --- Elements and text.

void QeXmlWriter::writeElementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty) {
    engine->writeElementStart(name, attributes, empty);
}

void QeXmlWriter::writeElementEnd(const QeXmlName& name) {
    engine->writeElementEnd(name);
}

void QeXmlWriter::write(const QeCString& text, bool escape) {
    if (escape) return engine->writeEscaped(text);
    engine->writeAsIs(text);
}

void QeXmlWriter::writeAttribute(const QeCString& name, const QeCString& value, bool escape) {
    engine->writeAttribute({QeXmlAttributeSet::EmptyString, name}, value, escape);
}

void QeXmlWriter::writeAttribute(const QeXmlName& name, const QeCString& value, bool escape) {
    engine->writeAttribute(tessit::partsOf(name), value, escape);
}

void QeXmlWriter::writeSimpleElement(const QeXmlName& name, const QeCString& content, const QeCString& typeName,
                                     bool withType) {
    engine->writeSimpleElement(name, content, typeName, withType);
}

void QeXmlWriter::writeSimpleElement(const QeCString& name, const QeCString& content, const QeCString& typeName,
                                     bool withType) {
    engine->writeSimpleElement(QeXmlName(name), content, typeName, withType);
}

void QeXmlWriter::addNamespace(const QeXmlNamespace& ns) {
    engine->addNamespace(ns);
}

// --- The sink.

void QeXmlWriter::writeToSink(const char* bytes, unsigned length) {
    engine->sendAsString(bytes, length);
}
