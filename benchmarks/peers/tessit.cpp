// Our own ways of reading and writing.

#include <algorithm>
#include <contestants.h>
#include <descriptors.h>
#include <span>
#include <utility>
#include <vector>

#include <tessit/reader/xml_reader.h>
#if __has_include(<tessit/reader/xml_record.h>)
#include <tessit/reader/xml_record.h>
#endif
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

// `look` is called with the reader at each node.
template <typename Look>
Tally pullAll(QeXmlReader& reader, const Look& look) {
    Tally tally;
    while (!reader.eof()) {
        reader.readNextNode();
        look(reader);
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
            default:
                break;
        }
    }
    return tally;
}

Tally pullAll(QeXmlReader& reader) {
    return pullAll(reader, [](const QeXmlReader&) {});
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

// Older revisions, which this program is built against too, have no such readers.
#if __has_include(<tessit/reader/xml_reader_options.h>)
Tally pullConforming(const Document& document) {
    QeXmlReader reader(bytesOf(document), {.rules = QeXmlRules::Conforming});
    return pullAll(reader);
}

void addConforming(Contestants& all, const std::string& version) {
    all.readers.push_back({"tessit conforming", version, Role::Ours, Delivery(), pullConforming});
}
#else
void addConforming(Contestants&, const std::string&) {}
#endif

// The same bytes through a window, beside those in place: from a file that is in the page cache, and from a pipe.
#if __has_include(<tessit/reader/xml_input.h>)
Tally pullFromDescriptor(int descriptor, QeXmlRules rules) {
    QeXmlReader reader(QeXmlInput::descriptor(descriptor, "the document"), {.rules = rules});
    return pullAll(reader);
}

template <QeXmlRules Rules>
Tally pullFromFile(const Document&) {
    return readFile([](int descriptor) { return pullFromDescriptor(descriptor, Rules); });
}

Tally pullFromPipe(const Document& document) {
    return readPipe(document, [](int descriptor) { return pullFromDescriptor(descriptor, QeXmlRules::Lenient); });
}

void addWindowed(Contestants& all, const std::string& version) {
    constexpr Delivery Lenient{.xmlPrefix = false, .mostDocuments = 1}, Conforming{.mostDocuments = 1};
    all.readers.push_back({"tessit file", version, Role::Ours, Lenient, pullFromFile<QeXmlRules::Lenient>, writeFile});
    all.readers.push_back(
        {"tessit conforming file", version, Role::Ours, Conforming, pullFromFile<QeXmlRules::Conforming>, writeFile});
    all.readers.push_back({"tessit pipe", version, Role::Ours, Lenient, pullFromPipe});
}
#else
void addWindowed(Contestants&, const std::string&) {}
#endif

#if __has_include(<tessit/reader/xml_record.h>)
Tally pullWithRecord(const Document& document) {
    QeXmlRecord record;
    QeXmlReader reader(bytesOf(document), {.record = &record});
    const Tally tally = pullAll(reader);
    return record.empty() ? tally : Tally();
}

// Where each node begins, kept as programs do that may have to say it later.
Tally pullWithOffsets(const Document& document) {
    QeXmlReader reader(bytesOf(document));
    std::uint64_t sum = 0;
    const Tally tally = pullAll(reader, [&](const QeXmlReader& node) { sum += node.getLastOffset(); });
    return sum != 0 ? tally : Tally();
}

// The same with lines and columns, and those of each attribute's name and value.
Tally pullWithSpans(const Document& document) {
    QeXmlReader reader(bytesOf(document));
    std::uint64_t sum = 0;
    const Tally tally = pullAll(reader, [&](const QeXmlReader& node) {
        sum += node.getLastSpan().end.line;
        if (node.getLastNodeType() == QeXmlReader::Content || node.getLastNodeType() == QeXmlReader::ElementEnd) return;
        for (const QeXmlAttribute& attribute : node.getLastAttributes())
            sum += node.getAttributeSpans(attribute)->value.end.line;
    });
    return sum != 0 ? tally : Tally();
}

void addWithPlaces(Contestants& all, const std::string& version) {
    all.readers.push_back({"tessit record", version, Role::Ours, Delivery{.xmlPrefix = false}, pullWithRecord});
    all.readers.push_back({"tessit pull, offsets", version, Role::Ours, Delivery{.xmlPrefix = false}, pullWithOffsets});
    all.readers.push_back({"tessit pull, spans", version, Role::Ours, Delivery{.xmlPrefix = false}, pullWithSpans});
}
#else
void addWithPlaces(Contestants&, const std::string&) {}
#endif

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

// Either as programs do that write many elements of few kinds, where each kind of
// tag has a set of attributes that is kept and gets the values of the next element,
// or with a set that is filled anew for each tag.
enum class Sets { Kept, New };

template <Sets sets>
class WrittenByTessit final : public Writable {
public:
    explicit WrittenByTessit(const Composition<std::string>& source)
        : composition(composedOf<QeCString>(
              source, [](const std::string& text) { return QeCString(std::string_view(text)); })) {
        for (const auto& name : composition.names)
            names.emplace_back(name.local, QeXmlNamespace(name.prefix, name.uri));
        for (Node& node : std::span(composition.nodes).subspan(1))
            std::erase_if(node.attributes, [&](const auto& attribute) { return isDeclaration(attribute.first); });
        for (const Node& node : composition.nodes)
            kinds.push_back(kindOf(node));
    }

    void write(const Take& take) override {
        QeXmlStringWriter writer;
        std::vector<Tag> tags;
        for (const std::vector<std::size_t>& kind : attributeKinds)
            tags.emplace_back(names, kind);
        for (std::size_t i = 0; i < composition.nodes.size(); ++i)
            writeNode(writer, composition.nodes[i], tags[sets == Sets::Kept ? kinds[i] : 0]);
        take(std::move(writer).getString());
    }

private:
    using Node = ComposedNode<QeCString>;

    struct Tag {
        Tag(const std::vector<QeXmlName>& names, const std::vector<std::size_t>& kind) {
            for (const std::size_t name : kind)
                attributes.add(names[name], {});
            for (const std::size_t name : kind)
                places.push_back(attributes.find(names[name]));
        }

        QeXmlAttributeSet attributes;
        std::vector<QeXmlAttribute*> places;
    };

    void writeNode(QeXmlStringWriter& writer, const Node& node, Tag& tag) {
        switch (node.kind) {
            case Node::Kind::Start:
            case Node::Kind::Empty:
                setValues(tag, node);
                return writer.writeElementStart(names[node.name], tag.attributes, node.kind == Node::Kind::Empty);
            case Node::Kind::End:
                return writer.writeElementEnd(names[node.name]);
            case Node::Kind::Text:
                return writer.write(node.text, true);
        }
    }

    void setValues(Tag& tag, const Node& node) const {
        if constexpr (sets == Sets::Kept) {
            for (std::size_t i = 0; i < node.attributes.size(); ++i)
                tag.places[i]->setValue(node.attributes[i].second);
        } else {
            tag.attributes.clear();
            for (const auto& [name, value] : node.attributes)
                tag.attributes.add(names[name], value);
        }
    }

    // Below the root, the writer finds out by itself what has to be declared.
    bool isDeclaration(std::size_t name) const { return names[name].getNamespace().getPrefix() == "xmlns"; }

    // Which attributes the node has, as an index of `attributeKinds`.
    std::size_t kindOf(const Node& node) {
        std::vector<std::size_t> kind;
        for (const auto& [name, value] : node.attributes)
            kind.push_back(name);
        const auto known = std::find(attributeKinds.begin(), attributeKinds.end(), kind);
        const auto index = static_cast<std::size_t>(known - attributeKinds.begin());
        if (known == attributeKinds.end()) attributeKinds.push_back(kind);
        return index;
    }

    Composition<QeCString> composition;
    std::vector<QeXmlName> names;
    std::vector<std::vector<std::size_t>> attributeKinds;
    std::vector<std::size_t> kinds;  // of the nodes
};

}  // namespace

void addTessit(Contestants& all) {
    const std::string version = versionString();
    // A name with the prefix "xml" is in no namespace unless the document declares one.
    const Delivery delivery{.xmlPrefix = false};
    all.readers.push_back({"tessit pull", version, Role::Ours, delivery, pullFromBuffer});
    addConforming(all, version);
    addWindowed(all, version);
    addWithPlaces(all, version);
    all.readers.push_back({"tessit SAX", version, Role::Ours, delivery, parse});
    all.readers.push_back({"tessit pull, string", version, Role::Ours, delivery, pullFromString});
    all.readers.push_back({.name = "tessit demand",
                           .version = version,
                           .role = Role::Ours,
                           .delivery = delivery,
                           .read = demand,
                           .onlyShape = "records"});
    all.writers.push_back({"tessit writer", version, Role::Ours, prepared<WrittenByTessit<Sets::Kept>>});
    all.writers.push_back({"tessit writer, new sets", version, Role::Ours, prepared<WrittenByTessit<Sets::New>>});
}

}  // namespace tessit::benchmarks
