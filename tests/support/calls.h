#pragma once

#include <sstream>
#include <string>

#include "support/documents.h"

/// Scripts of calls on a reader, apart by blanks, so that tables can hold them.
///
/// S NAME, E NAME: demand a start or an end, by string (S and E alone: any); N NAME: is that next; R NAME: raw
/// element (R alone: any); V: value; F: end of file; T: next node; A: the last attributes; B PREFIX=URI: bind;
/// U PREFIX: its URI; P URI: its prefix. A name in braces, {URI}local, is passed as a QeXmlName with the prefix "z";
/// $c, $v and $n are the reader's own last content, attribute's value and name.
namespace tessit::test {

/// What a call returned; what it left behind is the reader's to show.
struct Returned {
    bool yes = false;
    QeCString text = {};
};

template <typename Name>
Returned demand(QeXmlReader& reader, char call, const Name& name) {
    switch (call) {
        case 'S':
            return reader.readElementStart(name), Returned{};
        case 'E':
            return reader.readElementEnd(name), Returned{};
        case 'N':
            return {reader.isElementNext(name)};
        default:
            return {true, reader.readElement(name)};
    }
}

inline Returned demandNamed(QeXmlReader& reader, char call, const std::string& name) {
    if (name == "$c") return demand(reader, call, reader.getLastContent());
    if (name == "$v") return demand(reader, call, reader.getLastAttributes().begin()->getValue());
    if (name == "$n") return demand(reader, call, reader.getLastName());
    if (!name.starts_with('{')) return demand(reader, call, QeCString(name));
    const std::size_t close = name.find('}');
    const QeXmlNamespace ns("z", QeCString(name.substr(1, close - 1)));
    return demand(reader, call, QeXmlName(QeCString(name.substr(close + 1)), ns));
}

inline Returned perform(QeXmlReader& reader, const std::string& call) {
    const QeCString argument(call.size() > 1 ? call.substr(2) : "");
    switch (call[0]) {
        case 'V':
            return reader.readElementValue(), Returned{};
        case 'F':
            return {reader.eof()};
        case 'T':
            return reader.readNextNode(), Returned{};
        case 'A':
            return {};
        case 'B':
            return reader.addNamespace({QeCString(argument.substring(0, 1)), QeCString(argument.substring(2))}),
                   Returned{};
        case 'U':
            return {true, reader.getURIForPrefix(argument)};
        case 'P':
            return {true, reader.getPrefixForURI(argument)};
    }
    if (call == "S") return reader.readElementStart(), Returned{};
    if (call == "E") return reader.readElementEnd(), Returned{};
    if (call == "R") return demand(reader, 'R', QeXmlReader::NullName);
    return demandNamed(reader, call[0], call.substr(2));
}

}  // namespace tessit::test
