#include "canonical_form.h"

#include <map>
#include <string_view>

namespace {

std::string_view referenceFor(char byte) {
    switch (byte) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\t':
            return "&#9;";
        case '\n':
            return "&#10;";
        case '\r':
            return "&#13;";
        default:
            return {};
    }
}

void appendData(std::string& form, std::string_view data) {
    for (const char byte : data) {
        const std::string_view reference = referenceFor(byte);
        form += reference.empty() ? std::string_view(&byte, 1) : reference;
    }
}

void appendStartTag(std::string& form, const QeXmlReader& reader) {
    std::map<std::string, std::string_view> inOrder;
    for (const QeXmlAttribute& attribute : reader.getLastAttributes())
        inOrder.emplace(attribute.getName().getQualifiedName(), attribute.getValue());
    form.append("<").append(reader.getLastName().getQualifiedName());
    for (const auto& [name, value] : inOrder) {
        form.append(" ").append(name).append("=\"");
        appendData(form, value);
        form += '"';
    }
    form += '>';
}

void appendIdentifiers(std::string& form, const QeXmlNotation& notation) {
    if (notation.publicId.empty()) {
        form.append(" SYSTEM");
    } else {
        form.append(" PUBLIC '").append(notation.publicId).append("'");
    }
    if (!notation.systemId.empty()) form.append(" '").append(notation.systemId).append("'");
}

// Notations stand in front of the root element, in the order of their names.
void appendNotations(std::string& form, const QeXmlDocumentType& type) {
    if (type.notations.empty()) return;
    std::map<std::string, const QeXmlNotation*> inOrder;
    for (const QeXmlNotation& notation : type.notations)
        inOrder.emplace(notation.name, &notation);
    form.append("<!DOCTYPE ").append(type.name).append(" [\n");
    for (const auto& [name, notation] : inOrder) {
        form.append("<!NOTATION ").append(name);
        appendIdentifiers(form, *notation);
        form.append(">\n");
    }
    form.append("]>\n");
}

void appendEndTag(std::string& form, const QeXmlReader& reader) {
    form.append("</").append(reader.getLastName().getQualifiedName()).append(">");
}

void appendNode(std::string& form, const QeXmlReader& reader) {
    switch (reader.getLastNodeType()) {
        case QeXmlReader::ElementStart:
            return appendStartTag(form, reader);
        case QeXmlReader::ElementEnd:
            return appendEndTag(form, reader);
        case QeXmlReader::EmptyElement:
            appendStartTag(form, reader);
            return appendEndTag(form, reader);
        case QeXmlReader::Content:
            return appendData(form, reader.getLastContent());
        case QeXmlReader::Instruction:
            form.append("<?").append(reader.getLastTarget()).append(" ").append(reader.getLastContent()).append("?>");
            return;
        default:  // not asked for
            return;
    }
}

}  // namespace

std::string readCanonicalForm(QeXmlReader& reader) {
    std::string form;
    for (bool isInFront = true; !reader.eof();) {
        reader.readNextNode();
        if (isInFront && reader.getLastNodeType() != QeXmlReader::Instruction) {
            appendNotations(form, reader.getDocumentType());
            isInFront = false;
        }
        appendNode(form, reader);
    }
    return form;
}
