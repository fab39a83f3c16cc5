// What a writer puts together: the pieces of tags, attributes and texts, and the order in which they are sent.

#include <tessit/writer/borrowed.h>
#include <tessit/writer/output.h>

using namespace tessit;

// The sink is given each piece before the next one is made: it may call its writer.
void QeXmlWriter::Engine::writeElementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty) {
    scopes.open();
    ScopeGuard scope(scopes);
    scopes.declare(name.getNamespace());
    Output output(*this);
    const NameParts parts = partsOf(name);
    char* const to = output.begin(1 + roomForName(parts));
    *to = '<';
    output.sendString(putName(to + 1, parts));
    sendAttributes(output, attributes);
    char* const end = output.begin(2);
    end[0] = '/';
    end[empty ? 1 : 0] = '>';
    output.sendString(end + (empty ? 2 : 1));
    output.finish();
    if (!empty) scope.keep();
}

// Most tags are written with the attributes that they are given.
void QeXmlWriter::Engine::sendAttributes(Output& output, const QeXmlAttributeSet& attributes) {
    const bool binds = scopes.innermostBinds();
    const bool needsMore = scopes.declareNamespacesOf(attributes);
    if (!binds && !needsMore && isSurelyInOrder(attributes)) return sendEach(output, attributes);
    Borrowed<CompletionStorage> storage(spareCompletion);
    sendEach(output, Completion(scopes.innermost(), *storage).of(attributes));
}

void QeXmlWriter::Engine::sendEach(Output& output, const QeXmlAttributeSet& attributes) {
    for (const QeXmlAttribute& attribute : attributes) {
        const NameParts name = attributePartsOf(attribute.getName());
        char* const to = output.begin(roomForAttribute(name, attribute.getValue(), true));
        output.sendBytes(putAttribute(to, name, attribute.getValue(), true));
    }
}

void QeXmlWriter::Engine::writeElementEnd(const QeXmlName& name) {
    sendEnd(name);
    scopes.close();
}

void QeXmlWriter::Engine::sendEnd(const QeXmlName& name) {
    const NameParts parts = partsOf(name);
    Output output(*this);
    char* to = output.begin(3 + roomForName(parts));
    *to++ = '<';
    *to++ = '/';
    to = putName(to, parts);
    *to++ = '>';
    output.sendString(to);
    output.finish();
}

void QeXmlWriter::Engine::writeSimpleElement(const QeXmlName& name, const QeCString& content, const QeCString& typeName,
                                             bool withType) {
    if (!withType) return writeSimpleElement(name, {}, content);
    Borrowed<QeXmlAttributeSet> type(spareTypeAttribute);
    ModelAccess::append(*type, "type", QeXmlNamespace::getXsi(), typeName);
    writeSimpleElement(name, *type, content);
}

void QeXmlWriter::Engine::writeSimpleElement(const QeXmlName& name, const QeXmlAttributeSet& attributes,
                                             const QeCString& content) {
    writeElementStart(name, attributes, content.empty());
    if (!content.empty()) {
        ScopeGuard scope(scopes);
        writeEscaped(content);
        writeElementEnd(name);
        scope.keep();
    }
    beginLine();
}

// --- Text and attributes.

void QeXmlWriter::Engine::writeAsIs(const QeCString& text) {
    Output output(*this);
    output.sendString(text);
    output.finish();
}

void QeXmlWriter::Engine::writeEscaped(const QeCString& text) {
    if (text.length() > ShortEnough / TextEscapes::Longest) return writeLongText(text);
    Output output(*this);
    output.sendBytes(putEscaped<TextEscapes>(output.begin(text.length() * TextEscapes::Longest), text));
    output.finish();
}

// Long texts are looked through first, since the room for the worst case would be much.
void QeXmlWriter::Engine::writeLongText(const QeCString& text) {
    Output output(*this);
    const auto lengthAsIs = static_cast<std::size_t>(TextEscapes::find(text.begin(), text.end()) - text.begin());
    if (lengthAsIs == text.length()) {
        output.sendBytes(text);
    } else {
        char* const to = output.begin(escapedLength<TextEscapes>(text));
        char* const end = corvel::put(to, text.substring(0, lengthAsIs));
        output.sendBytes(tessit::putEscapedRuns<TextEscapes>(end, text.substring(lengthAsIs)));
    }
    output.finish();
}

void QeXmlWriter::Engine::writeAttribute(NameParts name, const QeCString& value, bool escape) {
    Output output(*this);
    char* const to = output.begin(roomForAttribute(name, value, escape));
    output.sendBytes(putAttribute(to, name, value, escape));
    output.finish();
}
