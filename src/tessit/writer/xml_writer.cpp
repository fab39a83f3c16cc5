#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <typeinfo>
#include <utility>

#include <corvel/byte_copy.h>
#include <tessit/model/find_prefix.h>
#include <tessit/writer/borrowed.h>
#include <tessit/writer/escape.h>
#include <tessit/writer/output_buffer.h>
#include <tessit/writer/pieces.h>
#include <tessit/writer/xml_string_writer.h>
#include <tessit/writer/xml_writer.h>

using corvel::put;
using tessit::Borrowed;
using tessit::OutputBuffer;
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

// The room that `text` needs when escaped. Counted exactly only where the worst case would be much.
// Rooms have 64 bits everywhere: what is escaped, and the sum of it, can pass what addresses of 32 bits reach.
template <typename Escapes>
std::uint64_t roomFor(std::string_view text) {
    const bool ordinary = text.size() <= OutputBuffer::LocalSize / Escapes::Longest;
    return ordinary ? text.size() * Escapes::Longest : tessit::escapedLength<Escapes>(text);
}

}  // namespace

// Closes the innermost scope again, unless all that belongs to it went well.
class QeXmlWriter::ScopeRollback {
public:
    explicit ScopeRollback(QeXmlWriter& opener) noexcept : writer(&opener) {}
    ScopeRollback(const ScopeRollback&) = delete;
    ScopeRollback& operator=(const ScopeRollback&) = delete;
    ~ScopeRollback() {
        if (writer != nullptr) writer->popScope();
    }

    void dismiss() noexcept { writer = nullptr; }

private:
    QeXmlWriter* writer;
};

// Room for the bytes of one sink call, which are put there and then sent.
//
// A string writer that is no more than that has no override that could see the
// call: its bytes are put where they belong, at the end of its text.
class QeXmlWriter::Output {
public:
    Output(QeXmlWriter& sender, std::uint64_t room)
        : writer(sender),
          text(sender.ownText()),
          buffer(text == nullptr ? sizeFor(room) : 0),
          start(text == nullptr ? buffer.begin() : text->roomBehind(sizeFor(room) + OutputBuffer::Slack)) {}

    char* begin() noexcept { return start; }

    /// Sends what ends at `end` through the bytes slot.
    void sendBytes(const char* end) {
        if (!isInPlace(end)) writer.writeToSinkInPieces(start, static_cast<std::size_t>(end - start));
    }

    /// Sends what ends at `end` through the string slot.
    void sendString(const char* end) {
        if (isInPlace(end)) return;
        Borrowed<QeCString> string(writer.spare.tag);
        string->assign(start, static_cast<std::size_t>(end - start));
        writer.writeToSink(*string);
    }

private:
    // More than can be had stays so: asking for it throws.
    static std::size_t sizeFor(std::uint64_t room) noexcept {
        return static_cast<std::size_t>(std::min<std::uint64_t>(room, PTRDIFF_MAX));
    }

    bool isInPlace(const char* end) noexcept {
        if (text == nullptr) return false;
        text->setLength(static_cast<std::size_t>(end - text->data()));
        return true;
    }

    QeXmlWriter& writer;
    QeCString* text;
    OutputBuffer buffer;
    char* start;
};

// The text of a string writer, unless a class that is derived from it may want to see the sink calls.
QeCString* QeXmlWriter::ownText() {
    if (typeid(*this) != typeid(QeXmlStringWriter)) return nullptr;
    auto& self = static_cast<QeXmlStringWriter&>(*this);
    if (self.bufferedBytes != 0) self.QeXmlStringWriter::flush();
    return &self.sinkText;
}

// Short strings are copied with what stands behind them, which the room has slack for.
char* QeXmlWriter::putString(char* to, const QeCString& text) noexcept {
    if (!text.isInline()) return put(to, text);
    std::memcpy(to, text.raw, sizeof text.raw);
    return to + text.length();
}

char* QeXmlWriter::putName(char* to, const QeCString& prefix, const QeCString& localName) noexcept {
    if (!prefix.empty()) {
        to = putString(to, prefix);
        *to++ = ':';
    }
    return putString(to, localName);
}

// Most values are short and have nothing to escape: that is found out without a branch on their length.
template <typename Escapes>
char* QeXmlWriter::putEscaped(char* to, const QeCString& text) noexcept {
    if (text.isInline() && Escapes::arePlain(text.raw, text.length())) return putString(to, text);
    return tessit::writeEscaped<Escapes>(to, text);
}

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
    lastFound = nullptr;
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
    writeRepeated('\n', 1);
    atLineStart = true;
}

void QeXmlWriter::indent() {
    writeRepeated(' ', currentIndent);
    atLineStart = false;
}

// One call of the byte slot for each.
void QeXmlWriter::writeRepeated(char byte, int count) {
    const auto length = static_cast<std::size_t>(count);
    if (QeCString* const text = ownText()) {
        const std::size_t oldLength = text->length();
        std::memset(text->resizeForOverwrite(oldLength + length) + oldLength, byte, length);
    } else {
        for (int i = 0; i < count; ++i)
            writeToSink(byte);
    }
}

// --- Text and attributes.

void QeXmlWriter::write(const QeCString& text, bool escape) {
    writeIndentChars();
    if (escape) return writeEscapedText(text);
    if (!appendInPlace(text)) writeToSink(text);
}

// Long texts are looked through first, since the room for the worst case would be much.
void QeXmlWriter::writeEscapedText(const QeCString& text) {
    if (text.length() > OutputBuffer::LocalSize / TextEscapes::Longest) return writeLongText(text);
    Output output(*this, text.length() * TextEscapes::Longest);
    output.sendBytes(putEscaped<TextEscapes>(output.begin(), text));
}

void QeXmlWriter::writeLongText(const QeCString& text) {
    const auto plainLength = static_cast<std::size_t>(TextEscapes::find(text.begin(), text.end()) - text.begin());
    if (plainLength == text.length()) {
        if (!appendInPlace(text)) writeToSinkInPieces(text.data(), text.length());
        return;
    }
    Output output(*this, tessit::escapedLength<TextEscapes>(text));
    char* const end = put(output.begin(), text.substring(0, plainLength));
    output.sendBytes(tessit::writeEscaped<TextEscapes>(end, text.substring(plainLength)));
}

// Returns whether it could: then no sink is to see the text.
bool QeXmlWriter::appendInPlace(const QeCString& text) {
    QeCString* const own = ownText();
    if (own != nullptr) own->append(text);
    return own != nullptr;
}

void QeXmlWriter::writeAttribute(const QeCString& name, const QeCString& value, bool escape) {
    writeQualifiedAttribute(QeXmlAttributeSet::EmptyString, name, value, escape);
}

void QeXmlWriter::writeAttribute(const QeXmlName& name, const QeCString& value, bool escape) {
    writeQualifiedAttribute(name.getNamespace().getPrefix(), name.getLocalName(), value, escape);
}

namespace {

std::uint64_t roomForAttribute(const QeCString& prefix, const QeCString& localName, const QeCString& value,
                               bool escape) {
    const std::size_t nameLength = localName.length() + (prefix.empty() ? 0 : prefix.length() + 1);
    return nameLength + (escape ? roomFor<ValueEscapes>(value) : value.length()) + 4;  // with ` =""`
}

}  // namespace

char* QeXmlWriter::putAttribute(char* to, const QeCString& prefix, const QeCString& localName, const QeCString& value,
                                bool escape) noexcept {
    *to++ = ' ';
    to = putName(to, prefix, localName);
    *to++ = '=';
    *to++ = '"';
    to = escape ? putEscaped<ValueEscapes>(to, value) : putString(to, value);
    *to++ = '"';
    return to;
}

void QeXmlWriter::writeQualifiedAttribute(const QeCString& prefix, const QeCString& localName, const QeCString& value,
                                          bool escape) {
    writeIndentChars();
    Output output(*this, roomForAttribute(prefix, localName, value, escape));
    output.sendBytes(putAttribute(output.begin(), prefix, localName, value, escape));
}

// --- Elements.

void QeXmlWriter::writeElementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty) {
    namespaces.pushScope();
    ScopeRollback scope(*this);
    if (ownText() != nullptr) {
        writeStartInPlace(name, attributes, empty);
    } else {
        writeStartToSink(name, attributes, empty);
    }
    if (!empty) scope.dismiss();
}

// Where no sink can tell, the whole tag is put in one go.
void QeXmlWriter::writeStartInPlace(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty) {
    const bool nameNeedsMore = addNamespaceToScopeIfNecessary(name.getNamespace());
    const bool attributesNeedMore = addNamespacesOf(attributes);
    if (!nameNeedsMore && !attributesNeedMore && isSurelyInOrder(attributes)) return putStart(name, attributes, empty);
    withBindings(attributes, [&](const QeXmlAttributeSet& completed) { putStart(name, completed, empty); });
}

void QeXmlWriter::writeStartToSink(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty) {
    addNamespaceToScopeIfNecessary(name.getNamespace());
    writeTag(Tag::Start, name);
    const bool bindsAlready = !innermostBindings().empty();  // what the name needs, or a sink that calls its writer
    const bool needsMore = addNamespacesOf(attributes);
    if (!bindsAlready && !needsMore && isSurelyInOrder(attributes)) {
        writeAttributeSet(attributes);
    } else {
        withBindings(attributes, [this](const QeXmlAttributeSet& completed) { writeAttributeSet(completed); });
    }
    write(empty ? UnpairedTag : EndTag, false);
}

// Calls `write` with the set and the bindings of the innermost scope.
template <typename Write>
void QeXmlWriter::withBindings(const QeXmlAttributeSet& attributes, const Write& write) {
    Borrowed<QeXmlAttributeSet> completed(spare.completedAttributes);
    write(getCompleteAttributeSet(attributes, *completed));
}

namespace {

struct WrittenName {
    const QeCString& prefix;
    const QeCString& localName;
};

// The declaration of the empty prefix is the one whose name is written otherwise than it is made up.
WrittenName nameAsWritten(const QeXmlAttribute& attribute) {
    const QeCString& prefix = attribute.getName().getNamespace().getPrefix();
    const QeCString& localName = attribute.getName().getLocalName();
    if (localName.empty() && prefix == QeXmlWriter::XmlNamespaceTag) return {localName, prefix};
    return {prefix, localName};
}

}  // namespace

void QeXmlWriter::writeAttributeSet(const QeXmlAttributeSet& attributes) {
    for (const QeXmlAttribute& attribute : attributes) {
        const WrittenName name = nameAsWritten(attribute);
        writeQualifiedAttribute(name.prefix, name.localName, attribute.getValue(), true);
    }
}

void QeXmlWriter::putStart(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty) {
    writeIndentChars();
    const QeCString& prefix = name.getNamespace().getPrefix();
    std::uint64_t room = prefix.length() + name.getLocalName().length() + 4;  // with `<:/>`
    for (const QeXmlAttribute& attribute : attributes) {
        const QeXmlName& attributeName = attribute.getName();
        room += roomForAttribute(attributeName.getNamespace().getPrefix(), attributeName.getLocalName(),
                                 attribute.getValue(), true);
    }
    Output output(*this, room);
    char* end = output.begin();
    *end++ = '<';
    end = putName(end, prefix, name.getLocalName());
    for (const QeXmlAttribute& attribute : attributes) {
        const WrittenName written = nameAsWritten(attribute);
        end = putAttribute(end, written.prefix, written.localName, attribute.getValue(), true);
    }
    if (empty) *end++ = '/';
    *end++ = '>';
    output.sendBytes(end);
}

void QeXmlWriter::writeElementEnd(const QeXmlName& name) {
    writeTag(Tag::End, name);
    popScope();
}

void QeXmlWriter::writeSimpleElement(const QeXmlName& name, const QeCString& content, const QeCString& typeName,
                                     bool withType) {
    Borrowed<QeXmlAttributeSet> attributes(spare.typeAttribute);
    if (withType) attributes->append("type", QeXmlNamespace::getXsi(), typeName);
    writeElementStart(name, *attributes, content.empty());
    if (!content.empty()) {
        ScopeRollback scope(*this);
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

// The whole end tag, or the start tag up to where the attributes begin.
void QeXmlWriter::writeTag(Tag kind, const QeXmlName& name) {
    writeIndentChars();
    const QeCString& prefix = name.getNamespace().getPrefix();
    Output output(*this, prefix.length() + name.getLocalName().length() + 4);  // with `</:>`
    char* end = output.begin();
    *end++ = '<';
    if (kind == Tag::End) *end++ = '/';
    end = putName(end, prefix, name.getLocalName());
    if (kind == Tag::End) *end++ = '>';
    output.sendString(end);
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

bool QeXmlWriter::addNamespaceToScopeIfNecessary(const QeXmlNamespace& ns) {
    return addNamespaceToScopeIfNecessary(ns.getPrefix(), ns.getURI(), &ns.getURI());
}

// Names come in runs of one namespace: what was found last is compared first.
inline const QeXmlNamespace* QeXmlWriter::findPrefixed(const QeCString& uri) {
    if (lastFound == nullptr || lastFound->getURI() != uri) lastFound = namespaces.findURI(uri);
    return lastFound == nullptr || lastFound->getPrefix().empty() ? nullptr : lastFound;
}

inline const QeXmlNamespace* QeXmlWriter::findDefault(const QeCString& uri) const {
    const QeXmlNamespace* const found = namespaces.findPrefix({});
    return found == nullptr || found->getURI() != uri ? nullptr : found;
}

// A URI that is bound to another prefix counts as declared. Returns whether the binding was added. `shared` is null or
// the URI of a namespace, which the binding shares if it is long: the next name of the same document is then known to
// be in that namespace by where its URI stands.
bool QeXmlWriter::addNamespaceToScopeIfNecessary(const QeCString& prefix, const QeCString& uri,
                                                 const QeCString* shared) {
    if (uri.empty()) return false;
    const QeXmlNamespace* const found = prefix.empty() ? findDefault(uri) : findPrefixed(uri);
    if (found == nullptr) {
        addBinding(prefix, uri, shared);
    } else if (shared != nullptr && uri.isLong()) {
        namespaces.shareBlock(*found, uri);
    }
    return found == nullptr;
}

void QeXmlWriter::addBinding(const QeCString& prefix, const QeCString& uri, const QeCString* shared) {
    lastFound = nullptr;
    namespaces.addBinding(prefix, uri, shared);
}

// The document's scope stays, however many ends are written, and whatever a sink makes of its writer.
void QeXmlWriter::popScope() noexcept {
    if (namespaces.depth <= 1) return;
    if (!innermostBindings().empty()) lastFound = nullptr;
    namespaces.popScope();
}

// A declaration is an attribute in no namespace. The reverse is taken for granted
// too: whatever attribute is in no namespace binds its local name to its value.
// Returns whether a binding was added that is not such an attribute's own.
bool QeXmlWriter::addNamespacesOf(const QeXmlAttributeSet& attributes) {
    bool added = false;
    for (const QeXmlAttribute& attribute : attributes) {
        const QeXmlName& name = attribute.getName();
        if (name.getNamespace().getURI().empty()) {
            addNamespaceToScopeIfNecessary(name.getLocalName(), attribute.getValue(), nullptr);
        } else {
            added |= addNamespaceToScopeIfNecessary(name.getNamespace());
        }
    }
    return added;
}

// Whether a set stands in order, as far as can be told without a look at two long URIs, which would cost their length
// at every tag. What may be out of order is written with more effort, and the same in the end.
bool QeXmlWriter::isSurelyInOrder(const QeXmlAttributeSet& attributes) noexcept {
    const auto mayFollow = [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
        const int order = left.getName().getLocalName().compare(right.getName().getLocalName());
        if (order != 0) return order > 0;
        const QeXmlNamespace &one = left.getName().getNamespace(), &other = right.getName().getNamespace();
        return (one.getURI().isLong() && other.getURI().isLong()) || one.compareTo(other) >= 0;
    };
    return attributes.knownSorted ||
           std::adjacent_find(attributes.begin(), attributes.end(), mayFollow) == attributes.end();
}

std::span<const QeXmlNamespace> QeXmlWriter::innermostBindings() const noexcept {
    return {namespaces.namespacesBegin(), namespaces.namespacesEnd()};
}
