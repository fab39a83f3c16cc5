// The nodes of a document, written; what was written is read and written again:
// the same nodes, and the same bytes.

#include <cctype>

#include <tessit/writer/xml_string_writer.h>

#include "fuzzing.h"
#include "support/documents.h"

using namespace tessit::test;

namespace {

// What was read, and what the writer made of it.
struct Copy {
    std::string nodes;
    QeCString text;
    bool isWhole = false;
};

// The reader lets names pass that are none: with nothing in front of the colon, or
// what cannot start a name behind it, or under a prefix that is bound to nothing, or
// where "xmlns" is bound. These are other names, or equal ones, when they are written.
// So are two whose URIs differ in an ampersand that stands for itself.
bool isName(const QeXmlName& name) {
    const QeCString &local = name.getLocalName(), &prefix = name.getNamespace().getPrefix();
    if (name.getNamespace().getURI().find('&') != QeCString::npos) return false;
    if (local.empty() || !std::isalpha(static_cast<unsigned char>(local[0]))) return false;
    if (local.find(":") != QeCString::npos) return false;
    const bool isBound = !name.getNamespace().getURI().empty();
    return prefix.empty() || (prefix == "xmlns" ? !isBound && local != "xmlns" : isBound);
}

// Whether the tag names its attributes, and no two of them by equal names: the
// writer's sets have each name once. A declaration's is its prefix.
bool hasNames(const QeXmlReader& reader) {
    QeXmlAttributeSet set;
    for (const QeXmlAttribute& attribute : reader.getLastAttributes()) {
        if (!isName(attribute.getName())) return false;
        set.add(attribute);
    }
    return isName(reader.getLastName()) && set.size() == reader.getLastAttributes().size();
}

// Whether a prefix of the tag has been declared twice there: it stands for the first
// URI, and its attribute has the last one.
bool declaresTwice(const QeXmlReader& reader) {
    const bool isOpen = reader.getLastNodeType() == QeXmlReader::ElementStart;
    for (const QeXmlAttribute& declaration : reader.getLastAttributes()) {
        if (declaration.getName().getNamespace().getPrefix() != "xmlns") continue;
        const QeCString &prefix = declaration.getName().getLocalName(), &uri = declaration.getValue();
        const auto isElsewhere = [&](const QeXmlName& name) {
            return name.getNamespace().getPrefix() == prefix && name.getNamespace().getURI() != uri;
        };
        if (isElsewhere(reader.getLastName()) || (isOpen && reader.getURIForPrefix(prefix) != uri)) return true;
        for (const QeXmlAttribute& attribute : reader.getLastAttributes())
            if (isElsewhere(attribute.getName())) return true;
    }
    return false;
}

// The writer declares default namespaces itself, and is told where one ends.
void writeStart(QeXmlWriter& writer, const QeXmlName& name, QeXmlAttributeSet attributes) {
    if (!attributes.getDefaultNamespaceAttribute().empty()) attributes.removeDefaultNamespaceAttribute();
    const bool endsDefault = attributes.contains(QeXmlName(QeXmlAttributeSet::DefaultNamespaceAttributeTag));
    writer.writeElementStart(name, attributes, false);
    if (endsDefault) writer.addNamespace(QeXmlNamespace::getEmptyNamespace());
}

void writeNode(QeXmlWriter& writer, const QeXmlReader& reader) {
    const QeXmlReader::NodeType type = reader.getLastNodeType();
    if (type == QeXmlReader::Content) return writer.write(reader.getLastContent(), true);
    if (type != QeXmlReader::ElementEnd) writeStart(writer, reader.getLastName(), reader.getLastAttributes());
    if (type != QeXmlReader::ElementStart) writer.writeElementEnd(reader.getLastName());
}

bool copyNodes(const QeCString& document, QeXmlWriter& writer, std::string& nodes) {
    // Values stay as they were written, since what looks like a reference in a value is one for the writer.
    QeXmlReader reader(document);
    reader.setExpandAttributeReference(false);
    while (!reader.eof()) {
        reader.readNextNode();
        if (reader.getLastNodeType() != QeXmlReader::Content && (!hasNames(reader) || declaresTwice(reader)))
            return false;
        writeNode(writer, reader);
        nodes += describeNode(reader) + "\n";
    }
    return true;
}

// As far as the document can be read, with an end tag where it cannot be read on:
// text without a tag behind it is an error.
Copy copy(const QeCString& document) {
    Copy result;
    QeXmlStringWriter writer;
    try {
        result.isWhole = copyNodes(document, writer, result.nodes);
    } catch (const QeXmlParseError&) {
    }
    if (!result.isWhole) writer.writeElementEnd(QeXmlName("end"));
    result.text = writer.getString();
    return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Copy first = copy(QeCString(tessit::fuzz::textOf(data, size)));
    const Copy second = copy(first.text);
    if (!second.isWhole) return 0;  // what was ":xmlns" before declares a namespace now
    const Copy third = copy(second.text);
    tessit::fuzz::require(third.nodes == second.nodes, "the same nodes");
    tessit::fuzz::require(third.text == second.text, "the same bytes");
    return 0;
}
