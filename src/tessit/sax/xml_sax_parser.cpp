#include <span>

#include <tessit/reader/xml_reader.h>
#include <tessit/sax/xml_sax_parser.h>

void QeXmlContentHandler::prolog(const QeXmlProlog&) {}

namespace {

QeXmlProlog prologOf(const QeXmlReader& reader) {
    QeXmlProlog prolog;
    prolog.setVersion(reader.getVersion());
    if (reader.hasEncoding()) prolog.setCharacterEncoding(reader.getEncoding());
    if (reader.hasStandalone()) prolog.setStandalone(reader.getStandalone() == "yes");
    return prolog;
}

std::span<const unsigned char> bytesOf(const QeCString& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.length()};
}

}  // namespace

void QeXmlSAXParser::parse(const QeCString& text, const QeCString& /*unused*/) {
    QeXmlReader reader(bytesOf(text));
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
            case QeXmlReader::NoNode:
                break;
        }
    }
}
