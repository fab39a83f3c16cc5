#include <algorithm>
#include <limits>
#include <span>
#include <utility>

#include <tessit/writer/borrowed.h>
#include <tessit/writer/escape.h>
#include <tessit/writer/output_buffer.h>
#include <tessit/writer/pieces.h>
#include <tessit/writer/plain_attributes.h>
#include <tessit/writer/xml_writer.h>

using tessit::Borrowed;
using tessit::OutputBuffer;
using tessit::PlainAttributes;
using tessit::TextEscapes;
using tessit::ValueEscapes;

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

namespace {

// Closes the innermost scope again, unless all that belongs to it went well.
class ScopeRollback {
public:
    explicit ScopeRollback(QeXmlNamespaceStack& stack) noexcept : namespaces(&stack) {}
    ScopeRollback(const ScopeRollback&) = delete;
    ScopeRollback& operator=(const ScopeRollback&) = delete;
    ~ScopeRollback() {
        if (namespaces != nullptr) namespaces->popScope();
    }

    void dismiss() noexcept { namespaces = nullptr; }

private:
    QeXmlNamespaceStack* namespaces;
};

char* put(char* to, std::string_view text) {
    return to + text.copy(to, text.size());
}

// The room that `text` needs when escaped. Counted exactly only where the worst case would be much.
template <typename Escapes>
std::size_t roomFor(std::string_view text) {
    const bool ordinary = text.size() <= OutputBuffer::LocalSize / Escapes::Longest;
    return ordinary ? text.size() * Escapes::Longest : tessit::escapedLength<Escapes>(text);
}

}  // namespace

QeXmlWriter::QeXmlWriter() {
    namespaces.pushScope();
}

QeXmlWriter::QeXmlWriter(const QeXmlWriter& other)
    : currentIndent(other.currentIndent),
      indentSize(other.indentSize),
      atLineStart(other.atLineStart),
      namespaces(other.namespaces) {}

QeXmlWriter& QeXmlWriter::operator=(const QeXmlWriter& other) {
    namespaces = other.namespaces;
    currentIndent = other.currentIndent;
    indentSize = other.indentSize;
    atLineStart = other.atLineStart;
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
    writeToSink('\n');
    atLineStart = true;
}

void QeXmlWriter::writeIndentChars() {
    if (!atLineStart) return;
    for (int i = 0; i < currentIndent; ++i)
        writeToSink(' ');
    atLineStart = false;
}

// --- Text and attributes.

void QeXmlWriter::write(const QeCString& text, bool escape) {
    writeIndentChars();
    if (!escape) return writeToSink(text);
    if (TextEscapes::find(text.begin(), text.end()) == text.end())
        return writeToSinkInPieces(text.data(), text.length());  // as it is: nothing to escape
    OutputBuffer buffer(roomFor<TextEscapes>(text));
    const char* const end = tessit::writeEscaped<TextEscapes>(buffer.begin(), text);
    writeToSinkInPieces(buffer.begin(), static_cast<std::size_t>(end - buffer.begin()));
}

void QeXmlWriter::writeAttribute(const QeCString& name, const QeCString& value, bool escape) {
    writeQualifiedAttribute({}, name, value, escape);
}

void QeXmlWriter::writeAttribute(const QeXmlName& name, const QeCString& value, bool escape) {
    writeQualifiedAttribute(name.getNamespace().getPrefix(), name.getLocalName(), value, escape);
}

void QeXmlWriter::writeQualifiedAttribute(std::string_view prefix, std::string_view localName, const QeCString& value,
                                          bool escape) {
    const std::size_t room = escape ? roomFor<ValueEscapes>(value) : value.length();
    OutputBuffer buffer(prefix.size() + localName.size() + room + 5);  // with ` :=""`
    char* end = put(buffer.begin(), " ");
    if (!prefix.empty()) end = put(put(end, prefix), ":");
    end = put(put(end, localName), "=\"");
    end = escape ? tessit::writeEscaped<ValueEscapes>(end, value) : put(end, value);
    end = put(end, "\"");
    writeIndentChars();
    writeToSinkInPieces(buffer.begin(), static_cast<std::size_t>(end - buffer.begin()));
}

// --- Elements.

void QeXmlWriter::writeElementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty) {
    namespaces.pushScope();
    ScopeRollback scope(namespaces);
    addNamespaceToScopeIfNecessary(name.getNamespace());
    writeTag(StartTag, name, {});
    Borrowed<QeXmlAttributeSet> completed(spare.completedAttributes);
    for (const QeXmlAttribute& attribute : getCompleteAttributeSet(attributes, *completed))
        writeAttributeOfElement(attribute);
    write(empty ? UnpairedTag : EndTag, false);
    if (!empty) scope.dismiss();
}

// The declaration of the empty prefix is the one whose name is written otherwise than it is made up.
void QeXmlWriter::writeAttributeOfElement(const QeXmlAttribute& attribute) {
    const QeXmlName& name = attribute.getName();
    const bool declaresDefault = name.getLocalName().empty() && name.getNamespace().getPrefix() == XmlNamespaceTag;
    if (declaresDefault) return writeAttribute(XmlNamespaceTag, attribute.getValue(), true);
    writeAttribute(name, attribute.getValue(), true);
}

// The document's scope stays, however many ends are written.
void QeXmlWriter::writeElementEnd(const QeXmlName& name) {
    writeTag(StartEndTag, name, EndTag);
    if (namespaces.depth > 1) namespaces.popScope();
}

void QeXmlWriter::writeSimpleElement(const QeXmlName& name, const QeCString& content, const QeCString& typeName,
                                     bool withType) {
    Borrowed<QeXmlAttributeSet> attributes(spare.typeAttribute);
    if (withType) addTypeAttribute(*attributes, typeName);
    writeElementStart(name, *attributes, content.empty());
    if (!content.empty()) {
        ScopeRollback scope(namespaces);
        write(content, true);
        writeElementEnd(name);
        scope.dismiss();
    }
    writeNewLine();
}

void QeXmlWriter::writeSimpleElement(const QeCString& name, const QeCString& content, const QeCString& typeName,
                                     bool withType) {
    writeSimpleElement(QeXmlName(name), content, typeName, withType);
}

// Writes into the slot that the last call left, so that nothing is allocated for the long URI.
void QeXmlWriter::addTypeAttribute(QeXmlAttributeSet& attributes, const QeCString& typeName) {
    attributes.attributes.reserveSlots(1);
    QeXmlAttribute& type = attributes.attributes[0];
    type.getName().setLocalName("type");
    type.getName().setNamespace(QeXmlNamespace::getXsi());
    type.setValue(typeName);
    attributes.attributes.append();
}

void QeXmlWriter::writeTag(const QeCString& opening, const QeXmlName& name, std::string_view closing) {
    Borrowed<QeCString> tag(spare.tag);
    const QeCString& prefix = name.getNamespace().getPrefix();
    tag->append(opening);
    if (!prefix.empty()) {
        tag->append(prefix);
        tag->append(Colon);
    }
    tag->append(name.getLocalName());
    tag->append(closing);
    write(*tag, false);
}

// --- The sink.

// The string is kept for the next call, unless it has become large.
void QeXmlWriter::writeToSink(const char* bytes, unsigned length) {
    if (length > OutputBuffer::LocalSize) return writeToSink(QeCString(bytes, length));
    Borrowed<QeCString> string(spare.bytes);
    string->assign(bytes, length);
    writeToSink(*string);
}

void QeXmlWriter::writeToSinkInPieces(const char* bytes, std::size_t length) {
    tessit::inPieces(bytes, length, [this](const char* piece, unsigned count) { writeToSink(piece, count); });
}

// --- Namespaces.

void QeXmlWriter::addNamespaceToScopeIfNecessary(const QeXmlNamespace& ns) {
    addNamespaceToScopeIfNecessary(ns.getPrefix(), ns.getURI());
}

// A URI that is bound to another prefix counts as declared.
void QeXmlWriter::addNamespaceToScopeIfNecessary(const QeCString& prefix, const QeCString& uri) {
    if (uri.empty()) return;
    const bool necessary =
        prefix.empty() ? namespaces.getURIForPrefix(prefix) != uri : namespaces.getPrefixForURI(uri).empty();
    if (necessary) namespaces.addBinding(prefix, uri);
}

// Adds to the scope what the attributes need, and returns them with the bindings
// of the scope among them: the set itself where it has them all, else `completed`.
const QeXmlAttributeSet& QeXmlWriter::getCompleteAttributeSet(const QeXmlAttributeSet& attributes,
                                                              QeXmlAttributeSet& completed) {
    addNamespacesOf(attributes);
    const std::span bindings(namespaces.namespacesBegin(), namespaces.namespacesEnd());
    if (bindings.empty()) return attributes;
    const PlainAttributes declarations(attributes);
    const auto isDeclared = [&](const QeXmlNamespace& binding) {
        const QeXmlAttribute* declaration = declarations.find(binding.getPrefix());
        return declaration != nullptr && declaration->getValue() == binding.getURI();
    };
    if (std::all_of(bindings.begin(), bindings.end(), isDeclared)) return attributes;
    completed.assignInPlace(attributes);
    for (const QeXmlNamespace& binding : bindings) {
        const QeXmlAttribute* declaration = declarations.find(binding.getPrefix());
        if (declaration != nullptr)
            completed.attributes[static_cast<std::size_t>(declaration - attributes.begin())].setValue(binding.getURI());
    }
    for (const QeXmlNamespace& binding : bindings)
        if (declarations.find(binding.getPrefix()) == nullptr) completed.addNamespaceAttribute(binding);
    return completed;
}

// A declaration is an attribute in no namespace. The reverse is taken for granted
// too: whatever attribute is in no namespace binds its local name to its value.
void QeXmlWriter::addNamespacesOf(const QeXmlAttributeSet& attributes) {
    for (const QeXmlAttribute& attribute : attributes) {
        const QeXmlName& name = attribute.getName();
        if (QeXmlNamespace::matchXmlns(name.getNamespace())) {
            addNamespaceToScopeIfNecessary(name.getLocalName(), attribute.getValue());
        } else {
            addNamespaceToScopeIfNecessary(name.getNamespace());
        }
    }
}
