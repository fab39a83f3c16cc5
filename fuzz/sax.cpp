// The parser's events are the nodes that a loop over the reader gives, with the end tags checked.

#include <vector>

#include <tessit/sax/xml_sax_parser.h>

#include "fuzzing.h"
#include "support/documents.h"

using namespace tessit::test;

namespace {

class Events final : public QeXmlContentHandler {
public:
    void elementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes) override {
        text += " +" + describe(name) + describe(attributes);
    }
    void elementEnd(const QeXmlName& name) override { text += " -" + describe(name); }
    void content(const QeCString& content) override { text += " =" + std::string(std::string_view(content)); }

    void end(const QeXmlParseError& error) { text += " " + describe(error); }

    std::string text;
};

std::string parsed(const QeCString& document, bool expandReferences) {
    Events events;
    QeXmlSAXParser parser;
    parser.setContentHandler(&events);
    parser.setExpandAttributeReference(expandReferences);
    try {
        parser.parse(document, document);
    } catch (const QeXmlParseError& error) {
        events.end(error);
    }
    return events.text;
}

void pullNode(QeXmlReader& reader, std::vector<QeXmlName>& open, Events& events) {
    reader.readNextNode();
    const QeXmlName& name = reader.getLastName();
    switch (reader.getLastNodeType()) {
        case QeXmlReader::ElementStart:
            open.push_back(name);
            return events.elementStart(name, reader.getLastAttributes());
        case QeXmlReader::ElementEnd:
            if (open.empty() || open.back() != name) reader.err("Unmatched start tag for " + name.asString());
            open.pop_back();
            return events.elementEnd(name);
        case QeXmlReader::EmptyElement:
            events.elementStart(name, reader.getLastAttributes());
            return events.elementEnd(name);
        default:
            return events.content(reader.getLastContent());
    }
}

std::string pulled(const QeCString& document, bool expandReferences) {
    Events events;
    try {
        QeXmlReader reader(document);
        reader.setExpandAttributeReference(expandReferences);
        for (std::vector<QeXmlName> open; !reader.eof();)
            pullNode(reader, open, events);
    } catch (const QeXmlParseError& error) {
        events.end(error);
    }
    return events.text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tessit::fuzz::Input input(data, size);
    const bool expandReferences = input.below(2) == 0;
    const QeCString document(input.rest());
    tessit::fuzz::require(parsed(document, expandReferences) == pulled(document, expandReferences),
                          "the events are the nodes");
    return 0;
}
