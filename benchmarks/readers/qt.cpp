#include <QByteArray>
#include <QXmlStreamReader>
#include <reader.h>

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

}  // namespace

void addQtReaders(std::vector<Reader>& readers) {
    readers.push_back({"Qt QXmlStreamReader", qVersion(), Role::Peer, {.utf16 = true}, read});
}

}  // namespace tessit::benchmarks
