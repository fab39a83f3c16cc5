#include <span>

#include <tessit/sax/xml_sax_parser.h>

void QeXmlContentHandler::prolog(const QeXmlProlog&) {}

void QeXmlLexicalHandler::comment(const QeCString&) {}
void QeXmlLexicalHandler::instruction(const QeCString&, const QeCString&) {}
void QeXmlLexicalHandler::documentType(const QeXmlDocumentType&) {}
void QeXmlLexicalHandler::cdataSection(const QeCString&) {}
void QeXmlLexicalHandler::entityReference(const QeCString&) {}

struct QeXmlSAXParser::Settings {
    QeXmlLexicalHandler* lexicalHandler = nullptr;
};

namespace {

QeXmlProlog prologOf(const QeXmlReader& reader) {
    QeXmlProlog prolog;
    prolog.setVersion(reader.getVersion());
    if (reader.hasEncoding()) prolog.setCharacterEncoding(reader.getEncoding());
    if (reader.hasStandalone()) prolog.setStandalone(reader.getStandalone() == "yes");
    return prolog;
}

// What only those nodes hold that a reader delivers to who asks for them.
void reportMarkup(QeXmlLexicalHandler& handler, const QeXmlReader& reader) {
    switch (reader.getLastNodeType()) {
        case QeXmlReader::Comment:
            return handler.comment(reader.getLastContent());
        case QeXmlReader::Instruction:
            return handler.instruction(reader.getLastTarget(), reader.getLastContent());
        case QeXmlReader::DocumentType:
            return handler.documentType(reader.getDocumentType());
        case QeXmlReader::CDATASection:
            return handler.cdataSection(reader.getLastContent());
        case QeXmlReader::EntityReference:
            return handler.entityReference(reader.getLastTarget());
        default:
            return;
    }
}

std::span<const unsigned char> bytesOf(const QeCString& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.length()};
}

}  // namespace

void QeXmlSAXParser::setLexicalHandler(QeXmlLexicalHandler* handler) {
    settings = std::make_shared<const Settings>(Settings{handler});
}

QeXmlLexicalHandler* QeXmlSAXParser::getLexicalHandler() const noexcept {
    return settings == nullptr ? nullptr : settings->lexicalHandler;
}

void QeXmlSAXParser::parse(const QeCString& text, const QeCString& /*unused*/) {
    QeXmlReader reader(bytesOf(text));
    report(reader);
}

// Each node becomes one or two calls.
void QeXmlSAXParser::report(QeXmlReader& reader) {
    reader.setExpandAttributeReference(expandAttributeReference);
    reader.setMatchTags(true);
    if (contentHandler != nullptr && !reader.getVersion().empty()) contentHandler->prolog(prologOf(reader));

    while (!reader.eof()) {
        reader.readNextNode();
        const QeXmlName& name = reader.getLastName();
        switch (reader.getLastNodeType()) {
            case QeXmlReader::ElementStart:
                if (contentHandler != nullptr) contentHandler->elementStart(name, reader.getLastAttributes());
                break;
            case QeXmlReader::ElementEnd:
                if (contentHandler != nullptr) contentHandler->elementEnd(name);
                break;
            case QeXmlReader::EmptyElement:
                if (contentHandler != nullptr) contentHandler->elementStart(name, reader.getLastAttributes());
                if (contentHandler != nullptr) contentHandler->elementEnd(name);
                break;
            case QeXmlReader::Content:
                if (contentHandler != nullptr) contentHandler->content(reader.getLastContent());
                break;
            default:
                reportOther(reader);
        }
    }
}

// Where nobody asks for the other nodes, those that are text by nature are reported as that.
void QeXmlSAXParser::reportOther(const QeXmlReader& reader) {
    const QeXmlReader::NodeType type = reader.getLastNodeType();
    const bool isText = type == QeXmlReader::CDATASection || type == QeXmlReader::EntityReference;
    if (QeXmlLexicalHandler* handler = getLexicalHandler()) {
        reportMarkup(*handler, reader);
    } else if (isText && contentHandler != nullptr) {
        contentHandler->content(reader.getLastContent());
    }
}
