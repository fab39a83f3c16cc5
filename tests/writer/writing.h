#pragma once

#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include <tessit/writer/xml_writer.h>

/// Calls of a writer in a short form: elements and attributes are written as the
/// traces of what a reader delivers show them.

/// `{URI}prefix:local`, without the braces in no namespace. The same text gives copies of one name, which share a long
/// URI; another name with that URI has it for itself.
inline QeXmlName nameOf(std::string_view text) {
    static std::map<std::string, QeXmlName, std::less<>> known;
    if (const auto found = known.find(text); found != known.end()) return found->second;
    const std::string whole(text);
    std::string_view uri;
    if (text.starts_with('{')) {
        uri = text.substr(1, text.find('}') - 1);
        text.remove_prefix(uri.size() + 2);
    }
    const std::size_t colon = text.find(':');
    const std::string_view prefix = colon == text.npos ? "" : text.substr(0, colon);
    return known[whole] = QeXmlName(QeCString(text.substr(colon + 1)), {QeCString(prefix), QeCString(uri)});
}

/// What stands in front of the first `=`, and what behind it.
inline std::pair<QeCString, QeCString> splitAtEquals(const std::string& text) {
    const std::size_t equals = std::min(text.find('='), text.size());
    const std::size_t behind = std::min(equals + 1, text.size());
    return {QeCString(text.substr(0, equals)), QeCString(text.substr(behind))};
}

/// `name=value`, apart by commas, in the order of adding; `xmlns:p=u` and `xmlns=u` are declarations.
inline QeXmlAttributeSet attributesOf(const std::string& list) {
    QeXmlAttributeSet set;
    std::istringstream in(list);
    for (std::string text; std::getline(in, text, ',');) {
        const auto [name, value] = splitAtEquals(text);
        if (name == "xmlns")
            set.setDefaultNamespaceAttribute(value);
        else if (text.starts_with("xmlns:"))
            set.addNamespaceAttribute({QeCString(name.substring(6)), value});
        else
            set.add(nameOf(name), value);
    }
    return set;
}

/// `NAME[ATTRIBUTES]`, or `NAME` without any.
inline void writeStart(QeXmlWriter& writer, const std::string& tag, bool empty) {
    const std::size_t list = std::min(tag.find('['), tag.size());
    const std::string attributes = list == tag.size() ? "" : tag.substr(list + 1, tag.size() - list - 2);
    writer.writeElementStart(nameOf(tag.substr(0, list)), attributesOf(attributes), empty);
}

/// One call, by the sign that stands in front of what it is about.
inline void write(QeXmlWriter& writer, char sign, const std::string& about) {
    const auto [name, value] = splitAtEquals(about);
    switch (sign) {
        case '+':
        case '/':
            return writeStart(writer, about, sign == '/');
        case '-':
            return writer.writeElementEnd(nameOf(about));
        case '*':
            return writer.writeSimpleElement(nameOf(name), value, "", false);
        case '@':
            return writer.addNamespace({name, value});
        case '=':
            return writer.write(QeCString(about), true);
        case '~':
            return writer.writeAttribute(QeCString(about), "1", true);
        case '>':
            return writer.setCurrentIndent(std::stoi(about));
        default:
            return writer.writeNewLine();
    }
}

/// Calls apart by blanks: `+NAME[ATTRIBUTES]` starts an element, `/NAME[ATTRIBUTES]`
/// writes an empty one, `-NAME` ends one, `*NAME=TEXT` is a simple one; `@PREFIX=URI`
/// binds a prefix; `=TEXT` writes text, `~NAME` an attribute; `>N` sets the
/// indentation, `|` begins a line.
inline void run(QeXmlWriter& writer, const std::string& script) {
    std::istringstream in(script);
    for (std::string call; in >> call;)
        write(writer, call[0], call.substr(1));
}
