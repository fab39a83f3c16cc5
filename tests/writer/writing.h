#pragma once

#include <sstream>
#include <string>
#include <string_view>

#include <tessit/writer/xml_writer.h>

/// Calls of a writer in a short form: elements and attributes are written as the
/// traces of what a reader delivers show them.

/// `{URI}prefix:local`, without the braces in no namespace.
inline QeXmlName nameOf(std::string_view text) {
    std::string_view uri;
    if (text.starts_with('{')) {
        uri = text.substr(1, text.find('}') - 1);
        text.remove_prefix(uri.size() + 2);
    }
    const std::size_t colon = text.find(':');
    const std::string_view prefix = colon == text.npos ? "" : text.substr(0, colon);
    return QeXmlName(QeCString(text.substr(colon + 1)), QeXmlNamespace(QeCString(prefix), QeCString(uri)));
}

/// `name=value`, apart by commas, in the order of adding; `xmlns:p=u` and `xmlns=u` are declarations.
inline QeXmlAttributeSet attributesOf(const std::string& list) {
    QeXmlAttributeSet set;
    std::istringstream in(list);
    for (std::string text; std::getline(in, text, ',');) {
        const std::size_t equals = text.find('=');
        const QeCString name(std::string_view(text).substr(0, equals)),
            value(std::string_view(text).substr(equals + 1));
        if (name == "xmlns")
            set.setDefaultNamespaceAttribute(value);
        else if (text.starts_with("xmlns:"))
            set.addNamespaceAttribute({QeCString(name.substring(6)), value});
        else
            set.add(nameOf(name), value);
    }
    return set;
}

/// Calls apart by blanks: `+NAME[ATTRIBUTES]` starts an element, `/NAME[ATTRIBUTES]`
/// writes an empty one, `-NAME` ends one, `@PREFIX=URI` binds a prefix.
inline void run(QeXmlWriter& writer, const std::string& script) {
    std::istringstream in(script);
    for (std::string call; in >> call;) {
        const std::size_t list = std::min(call.find('['), call.size());
        const std::string operand = call.substr(1, list - 1);
        if (call[0] == '@')
            writer.addNamespace({QeCString(operand.substr(0, operand.find('=')).c_str()),
                                 QeCString(operand.substr(operand.find('=') + 1).c_str())});
        else if (call[0] == '-')
            writer.writeElementEnd(nameOf(operand));
        else
            writer.writeElementStart(
                nameOf(operand),
                list == call.size() ? QeXmlAttributeSet() : attributesOf(call.substr(list + 1, call.size() - list - 2)),
                call[0] == '/');
    }
}
