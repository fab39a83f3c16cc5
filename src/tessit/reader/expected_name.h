#pragma once

#include <string_view>

#include <corvel/byte_scan.h>
#include <corvel/string_access.h>
#include <tessit/reader/xml_reader.h>

/// A name that the caller expects, given as a name or as a string; a view of it. What
/// the prefix of a string means is known only with the tag: it depends on where the tag stands.
struct QeXmlReader::ExpectedName {
    explicit ExpectedName(const QeXmlName& name)
        : prefix(name.getNamespace().getPrefix()), local(name.getLocalName()), uri(&name.getNamespace().getURI()) {}

    explicit ExpectedName(const QeCString& qname) : uri(nullptr) {
        const std::string_view text(qname);
        const bool hasNoColon =
            corvel::StringAccess::isInline(qname) && corvel::areNone(text.data(), text.size(), ':');  // as most
        const std::size_t colon = hasNoColon ? std::string_view::npos : text.find(':');
        if (colon != std::string_view::npos) prefix = text.substr(0, colon);
        local = colon == std::string_view::npos ? text : text.substr(colon + 1);
    }

    QeCString asString() const {
        QeCString text(prefix);
        if (!prefix.empty()) text += ':';
        text += local;
        return text;
    }

    std::string_view prefix;
    std::string_view local;
    const QeCString* uri;  // of a name; null for a string
};
