#include "document_walk.h"

std::string_view DocumentWalk::OpenElement::localName() const {
    return qualifiedName.substring(qualifiedName.length() - localLength);
}

bool DocumentWalk::next() {
    if (reader.eof()) {
        if (!elements.empty()) reader.err("Missing end tag for " + elements.back().qualifiedName);
        return false;
    }
    reader.readNextNode();
    if (reader.getLastNodeType() == QeXmlReader::ElementStart) open(reader.getLastName());
    if (reader.getLastNodeType() == QeXmlReader::ElementEnd) close(reader.getLastName());
    return true;
}

void DocumentWalk::open(const QeXmlName& name) {
    const QeCString& uri = *uris.insert(name.getNamespace().getURI()).first;
    elements.push_back({name.asString(), name.getLocalName().length(), &uri});
}

void DocumentWalk::close(const QeXmlName& name) {
    const bool matches = !elements.empty() && name.getLocalName() == elements.back().localName() &&
                         name.getNamespace().getURI() == *elements.back().uri;
    if (!matches) reader.err("Unmatched start tag for " + name.asString());
    elements.pop_back();
}
