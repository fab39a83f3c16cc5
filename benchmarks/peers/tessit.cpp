// Our own ways of reading and writing.

#include <contestants.h>

#include <tessit/reader/xml_reader.h>
#include <tessit/sax/xml_sax_parser.h>
#include <tessit/version.h>
#include <tessit/writer/xml_string_writer.h>

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

class WrittenByTessit final : public Writable {
public:
    explicit WrittenByTessit(const Composition<std::string>& source)
        : composition(composedOf<QeCString>(
              source, [](const std::string& text) { return QeCString(std::string_view(text)); })) {
        for (const auto& name : composition.names)
            names.emplace_back(name.local, QeXmlNamespace(name.prefix, name.uri));
        root = composition.nodes.data();
    }

    void write(const Take& take) override {
        QeXmlStringWriter writer;
        for (const ComposedNode<QeCString>& node : composition.nodes)
            writeNode(writer, node);
        take(writer.getString());
    }

private:
    using Kind = ComposedNode<QeCString>::Kind;

    void writeNode(QeXmlStringWriter& writer, const ComposedNode<QeCString>& node) {
        switch (node.kind) {
            case Kind::Start:
            case Kind::Empty:
                fillAttributes(node);
                return writer.writeElementStart(names[node.name], attributes, node.kind == Kind::Empty);
            case Kind::End:
                return writer.writeElementEnd(names[node.name]);
            case Kind::Text:
                return writer.write(node.text, true);
        }
    }

    // Below the root, the writer finds out by itself what has to be declared.
    void fillAttributes(const ComposedNode<QeCString>& node) {
        attributes.clear();
        for (const auto& [name, value] : node.attributes)
            if (&node == root || names[name].getNamespace().getPrefix() != "xmlns") attributes.add(names[name], value);
    }

    Composition<QeCString> composition;
    std::vector<QeXmlName> names;
    const ComposedNode<QeCString>* root;
    QeXmlAttributeSet attributes;
};

}  // namespace

void addTessit(Contestants& all) {
    const std::string version = versionString();
    // A name with the prefix "xml" is in no namespace unless the document declares one.
    const Delivery delivery{.xmlPrefix = false};
    all.readers.push_back({"tessit pull", version, Role::Ours, delivery, pullFromBuffer});
    all.readers.push_back({"tessit SAX", version, Role::Ours, delivery, parse});
    all.readers.push_back({"tessit pull, string", version, Role::Ours, delivery, pullFromString});
    all.readers.push_back({.name = "tessit demand",
                           .version = version,
                           .role = Role::Ours,
                           .delivery = delivery,
                           .read = demand,
                           .onlyShape = "records"});
    all.writers.push_back({"tessit writer", version, Role::Ours, prepared<WrittenByTessit>});
}

}  // namespace tessit::benchmarks
