// Our own ways of reading.

#include <reader.h>

#include <tessit/reader/xml_reader.h>
#include <tessit/sax/xml_sax_parser.h>

namespace tessit::benchmarks {

namespace {

void countStart(Tally& tally, const QeXmlName& name, const QeXmlAttributeSet& attributes) {
    const auto view = [](const QeCString& text) { return std::string_view(text); };
    const QeXmlNamespace& ns = name.getNamespace();
    tally.element(view(ns.getPrefix()), view(name.getLocalName()), view(ns.getURI()));
    for (const QeXmlAttribute& attribute : attributes) {
        const QeXmlNamespace& attributeNs = attribute.getName().getNamespace();
        tally.attribute(view(attributeNs.getPrefix()), view(attribute.getName().getLocalName()),
                        view(attributeNs.getURI()), view(attribute.getValue()));
    }
}

Tally pullAll(QeXmlReader& reader) {
    Tally tally;
    while (!reader.eof()) {
        reader.readNextNode();
        switch (reader.getLastNodeType()) {
            case QeXmlReader::EmptyElement:
            case QeXmlReader::ElementStart:
                countStart(tally, reader.getLastName(), reader.getLastAttributes());
                break;
            case QeXmlReader::ElementEnd:
                tally.elementEnd();
                break;
            case QeXmlReader::Content:
                tally.text(std::string_view(reader.getLastContent()));
                break;
            case QeXmlReader::NoNode:
                break;
        }
    }
    return tally;
}

std::span<const unsigned char> bytesOf(const Document& document) {
    return {reinterpret_cast<const unsigned char*>(document.bytes.data()), document.bytes.size()};
}

Tally pullFromBuffer(const Document& document) {
    QeXmlReader reader(bytesOf(document));
    return pullAll(reader);
}

Tally pullFromString(const Document& document) {
    QeXmlReader reader(document.text);
    return pullAll(reader);
}

class CountingHandler final : public QeXmlContentHandler {
public:
    void elementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes) override {
        countStart(tally, name, attributes);
    }
    void elementEnd(const QeXmlName&) override { tally.elementEnd(); }
    void content(const QeCString& text) override { tally.text(std::string_view(text)); }

    Tally tally;
};

Tally parse(const Document& document) {
    CountingHandler handler;
    QeXmlSAXParser parser;
    parser.setContentHandler(&handler);
    parser.parse(document.text, QeCString());
    return handler.tally;
}

// Reads records by asking for each element by name, as programs do that know their format.
class RecordReader {
public:
    explicit RecordReader(const Document& document) : reader(bytesOf(document)) {}

    Tally read() {
        start("records");
        while (reader.isElementNext("record")) {
            start("record");
            field("name");
            field("city");
            field("born");
            field("balance");
            end("record");
        }
        end("records");
        return tally;
    }

private:
    void field(const char* name) {
        start(name);
        tally.text(std::string_view(reader.readElementValue()));
        end(name);
    }

    // The text in front of the tag was passed over and is still there.
    void start(const char* name) {
        const QeXmlAttributeSet& attributes = reader.readElementStart(name);
        tally.text(std::string_view(reader.getLastContent()));
        countStart(tally, reader.getLastName(), attributes);
    }

    void end(const char* name) {
        reader.readElementEnd(name);
        tally.text(std::string_view(reader.getLastContent()));
        tally.elementEnd();
    }

    QeXmlReader reader;
    Tally tally;
};

Tally demand(const Document& document) {
    return RecordReader(document).read();
}

}  // namespace

void addTessitReaders(std::vector<Reader>& readers) {
    const std::string version = TESSIT_VERSION;
    // A name with the prefix "xml" is in no namespace unless the document declares one.
    const Delivery delivery{.xmlPrefix = false};
    readers.push_back({"tessit pull", version, Role::Ours, delivery, pullFromBuffer});
    readers.push_back({"tessit SAX", version, Role::Ours, delivery, parse});
    readers.push_back({"tessit pull, string", version, Role::Ours, delivery, pullFromString});
    readers.push_back({.name = "tessit demand",
                       .version = version,
                       .role = Role::Ours,
                       .delivery = delivery,
                       .read = demand,
                       .onlyShape = "records"});
}

}  // namespace tessit::benchmarks
