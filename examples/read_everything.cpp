// Reads a page that names a document type which nobody fetches: all of its nodes, and what its declarations brought.

#include <array>
#include <iostream>
#include <span>
#include <string_view>

#include <tessit/tessit.h>

namespace {

constexpr std::string_view Page = R"(<!DOCTYPE page SYSTEM "page.dtd" [
  <!ENTITY title "<b>Tea &amp; more</b>">
  <!ATTLIST page lang NMTOKEN "en">
]>
<page class="wide &theme;">&title; &copy; 2026&logo;<!--soon--></page>
)";

// In UTF-8. They hold where the document's own declarations may be missing, and only for names that it does not
// declare.
constexpr std::array<QeXmlNamedEntity, 2> Entities{{{"nbsp", "\xC2\xA0"}, {"copy", "\xC2\xA9"}}};

void printAttributes(const QeXmlReader& reader) {
    for (const QeXmlAttribute& attribute : reader.getLastAttributes()) {
        std::cout << "  " << attribute.getName().asString() << " is " << attribute.getValue();
        if (!reader.isSpecified(attribute)) std::cout << ", by declaration";
        for (const QeXmlLeftReference& left : reader.getLeftReferences(attribute))
            std::cout << ", with a reference at " << left.offset << " that is left";
        std::cout << '\n';
    }
}

void printNode(const QeXmlReader& reader) {
    switch (reader.getLastNodeType()) {
        case QeXmlReader::ElementStart:
        case QeXmlReader::EmptyElement:
            std::cout << "start of " << reader.getLastName().asString()
                      << (reader.isInEntity() ? ", from an entity" : "") << '\n';
            return printAttributes(reader);
        case QeXmlReader::ElementEnd:
            std::cout << "end of " << reader.getLastName().asString() << '\n';
            return;
        case QeXmlReader::Comment:
            std::cout << "comment: " << reader.getLastContent() << '\n';
            return;
        case QeXmlReader::EntityReference:
            std::cout << "reference to " << reader.getLastTarget() << '\n';
            return;
        case QeXmlReader::DocumentType:
            std::cout << "document type " << reader.getDocumentType().name << ", " << reader.getDocumentType().systemId
                      << '\n';
            return;
        default:
            std::cout << "text: " << reader.getLastContent() << '\n';
    }
}

}  // namespace

int main() {
    const auto* bytes = reinterpret_cast<const unsigned char*>(Page.data());
    QeXmlReader reader({bytes, Page.size()},
                       {.rules = QeXmlRules::Conforming, .nodes = QeXmlNodes::All, .entities = Entities});
    while (!reader.eof()) {
        reader.readNextNode();
        printNode(reader);
    }
}
