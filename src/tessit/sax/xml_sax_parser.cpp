#include <span>

#include <tessit/reader/open_elements.h>
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

void closeElement(tessit::OpenElements& open, const QeXmlReader& reader) {
    if (!open.close()) reader.err("Unmatched start tag for " + reader.getLastName().asString());
}

}  // namespace

void QeXmlSAXParser::parse(const QeCString& text, const QeCString& /*unused*/) {
    QeXmlReader reader(bytesOf(text));
    reader.setExpandAttributeReference(expandAttributeReference);
    tessit::OpenElements open(reader);
    if (contentHandler != nullptr && !reader.getVersion().empty()) contentHandler->prolog(prologOf(reader));

    while (!reader.eof()) {
        reader.readNextNode();
        const QeXmlName& name = reader.getLastName();
        switch (reader.getLastNodeType()) {
            case QeXmlReader::ElementStart:
                open.push();
                if (contentHandler != nullptr) contentHandler->elementStart(name, reader.getLastAttributes());
                break;
            case QeXmlReader::ElementEnd:
                closeElement(open, reader);
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
