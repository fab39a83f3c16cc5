#include <QByteArray>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <contestants.h>

namespace tessit::benchmarks {

namespace {

std::u16string_view view(QStringView text) {
    return {text.utf16(), static_cast<std::size_t>(text.size())};
}

constexpr std::u16string_view Xmlns = u"xmlns";
constexpr std::u16string_view None;

// Declarations come apart from the attributes.
void countElement(const QXmlStreamReader& reader, Tally& tally) {
    tally.element(view(reader.qualifiedName()));
    tally.addUri(view(reader.namespaceUri()));
    for (const QXmlStreamNamespaceDeclaration& declaration : reader.namespaceDeclarations()) {
        const bool isDefault = declaration.prefix().isEmpty();
        tally.attribute(isDefault ? None : Xmlns, isDefault ? Xmlns : view(declaration.prefix()), None,
                        view(declaration.namespaceUri()));
    }
    for (const QXmlStreamAttribute& attribute : reader.attributes()) {
        tally.attribute(view(attribute.qualifiedName()), view(attribute.value()));
        tally.addUri(view(attribute.namespaceUri()));
    }
}

Tally read(const Document& document) {
    Tally tally;
    QXmlStreamReader reader(
        QByteArray::fromRawData(document.bytes.data(), static_cast<qsizetype>(document.bytes.size())));
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                countElement(reader, tally);
                break;
            case QXmlStreamReader::EndElement:
                tally.elementEnd();
                break;
            case QXmlStreamReader::Characters:
                tally.text(view(reader.text()));
                break;
            default:
                break;
        }
    }
    return tally;
}

class WrittenByQt final : public Writable {
public:
    using Node = ComposedNode<QString>;

    explicit WrittenByQt(const Composition<std::string>& source)
        : composition(
              composedOf<QString>(source, [](const std::string& text) { return QString::fromStdString(text); })) {}

    void write(const Take& take) override {
        QByteArray out;
        QXmlStreamWriter writer(&out);
        for (const Node& node : composition.nodes)
            writeNode(writer, node);
        take({out.constData(), static_cast<std::size_t>(out.size())});
    }

private:
    void writeNode(QXmlStreamWriter& writer, const Node& node) const {
        switch (node.kind) {
            case Node::Kind::Start:
                writer.writeStartElement(composition.names[node.name].qualified);
                return writeAttributes(writer, node);
            case Node::Kind::Empty:
                writer.writeEmptyElement(composition.names[node.name].qualified);
                return writeAttributes(writer, node);
            case Node::Kind::End:
                return writer.writeEndElement();
            case Node::Kind::Text:
                return writer.writeCharacters(node.text);
        }
    }

    void writeAttributes(QXmlStreamWriter& writer, const Node& node) const {
        for (const auto& [name, value] : node.attributes)
            writer.writeAttribute(composition.names[name].qualified, value);
    }

    Composition<QString> composition;
};

}  // namespace

void addQt(Contestants& all) {
    all.readers.push_back({"Qt QXmlStreamReader", qVersion(), Role::Peer, {.utf16 = true}, read});
    all.writers.push_back({"Qt QXmlStreamWriter", qVersion(), Role::Peer, prepared<WrittenByQt>});
}

}  // namespace tessit::benchmarks
