#include <algorithm>
#include <string_view>

#include <tessit/utils/xml_utils.h>

constinit const QeCString QeXmlUtils::Blank(" ");
constinit const QeCString QeXmlUtils::Newline("\n");
constinit const QeCString QeXmlUtils::Tab("\t");
constinit const QeCString QeXmlUtils::WhiteSpace(" \n\t");
constinit const QeCString QeXmlUtils::EmptyString("");
constinit const QeCString QeXmlUtils::Colon(":");
constinit const QeCString QeXmlUtils::Hypen("-");
constinit const QeCString QeXmlUtils::Hyphen("-");
constinit const QeCString QeXmlUtils::Minus("-");
constinit const QeCString QeXmlUtils::Plus("+");
constinit const QeCString QeXmlUtils::TimeSeparator("T");
constinit const QeCString QeXmlUtils::UTimeZone("Z");
constinit const QeCString QeXmlUtils::TZD("Z+-");
constinit const QeCString QeXmlUtils::ISO8601Format("%Y-%m-%dT%X");
constinit const QeCString QeXmlUtils::ISO8601Date("%Y-%m-%d");
constinit const QeCString QeXmlUtils::ISO8601Time("%X");

QeCString QeXmlUtils::stripWhiteSpaceAndNewlines(const QeCString& text, QeCString::stripType type) {
    const char* first = text.begin();
    const char* last = text.end();
    if (type & QeCString::stripLeading)
        while (first < last && isWhiteSpace(*first))
            ++first;
    if (type & QeCString::stripTrailing)
        while (last > first && isWhiteSpace(last[-1]))
            --last;
    return QeCString(first, static_cast<std::size_t>(last - first));
}

QeCString QeXmlUtils::getPrefix(const QeCString& qname) {
    const std::size_t colon = qname.find(':');
    return colon == QeCString::npos ? QeCString() : QeCString(qname.substring(0, colon));
}

void QeXmlUtils::getPrefixAndLocalName(const QeCString& qname, QeCString& prefix, QeCString& localName) {
    const std::size_t colon = qname.find(':');
    if (colon == QeCString::npos) {
        localName = qname;
        return;
    }
    QeCString front(qname.substring(0, colon));
    QeCString back(qname.substring(colon + 1));
    prefix = std::move(front);
    localName = std::move(back);
}

namespace {

// The next run of bytes that are not whitespace, taken off the front of `text`; empty at its end.
std::string_view takeToken(std::string_view& text) {
    const std::string_view whiteSpace = QeXmlUtils::WhiteSpace;
    text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
    const std::string_view token = text.substr(0, text.find_first_of(whiteSpace));
    text.remove_prefix(token.size());
    return token;
}

// Whether a token of a start tag reads `xmlns:PREFIX="URI"`, for whatever prefix.
bool declares(std::string_view token, std::string_view uri) {
    const std::string_view name = token.substr(0, token.find('='));
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos) return false;
    if (QeXmlNamespace::getXmlns().getPrefix() != name.substr(0, colon)) return false;
    const std::size_t quote = token.find('"');
    if (quote == std::string_view::npos || quote + 1 >= token.size()) return false;
    return token.substr(quote + 1, token.size() - quote - 2) == uri;
}

bool needsDeclaration(const QeXmlNamespace& ns, std::string_view tagText) {
    if (ns.getURI() == QeXmlNamespace::getEmptyNamespace().getURI()) return false;
    takeToken(tagText);  // the old element name
    for (std::string_view token = takeToken(tagText); !token.empty(); token = takeToken(tagText))
        if (declares(token, ns.getURI())) return false;
    return true;
}

// The value, in its quotes, that a start tag declares as the default namespace; empty if it declares none.
std::string_view findDefaultDeclaration(std::string_view tagText) {
    takeToken(tagText);  // the old element name
    for (;;) {
        const std::size_t equals = tagText.find('=');
        const std::size_t quote = tagText.find_first_of("\"'", equals);
        if (quote == std::string_view::npos) return {};
        const std::size_t end = tagText.find(tagText[quote], quote + 1);
        if (end == std::string_view::npos) return {};
        const std::size_t first = tagText.find_first_not_of(" \t\r\n");  // a carriage return, too, ends a name in XML
        const std::string_view name = tagText.substr(first, tagText.find_first_of("= \t\r\n", first) - first);
        if (name == QeXmlNamespace::getXmlns().getPrefix()) return tagText.substr(quote, end + 1 - quote);
        tagText.remove_prefix(end + 1);
    }
}

void appendQuoted(QeCString& tag, const QeCString& uri) {
    tag += '"';
    tag += uri;
    tag += '"';
}

void appendDeclaration(QeCString& tag, const QeXmlNamespace& ns) {
    tag += " xmlns";
    if (!ns.getPrefix().empty()) {
        tag += ':';
        tag += ns.getPrefix();
    }
    tag += '=';
    appendQuoted(tag, ns.getURI());
    tag += ' ';
}

// Declares what the name needs, and appends the attributes that are kept: those behind the first space of the tag.
void appendAttributes(QeCString& tag, const QeXmlNamespace& ns, std::string_view tagText) {
    std::string_view kept = tagText.substr(std::min(tagText.find(' '), tagText.size()));
    const bool isDefault = ns.getPrefix().empty() && !ns.getURI().empty();
    const std::string_view declared = isDefault ? findDefaultDeclaration(tagText) : std::string_view();
    if (!declared.empty() && declared.data() >= kept.data()) {
        // A tag has room for one default declaration: another URI gives way in place.
        tag += kept.substr(0, static_cast<std::size_t>(declared.data() - kept.data()));
        kept.remove_prefix(static_cast<std::size_t>(declared.data() - kept.data()));
        if (declared.substr(1, declared.size() - 2) != ns.getURI()) {
            appendQuoted(tag, ns.getURI());
            kept.remove_prefix(declared.size());
        }
    } else if (!declared.empty() || needsDeclaration(ns, tagText)) {
        appendDeclaration(tag, ns);
    }
    tag += kept;
}

}  // namespace

QeCString QeXmlUtils::changeName(QeXmlName name, QeCString xml) {
    const std::string_view text = xml;
    if (text.empty() || text.front() != '<') return xml;
    const std::size_t startTagEnd = std::min(text.find('>'), text.size());
    const std::size_t endTag = text.rfind('<');  // at least the leading one
    if (startTagEnd >= endTag) return xml;

    const std::string_view content = text.substr(startTagEnd + 1, endTag - startTagEnd - 1);
    const std::string_view tagText = text.substr(1, startTagEnd - 1);
    const QeCString newName = name.getQualifiedName();

    QeCString result("<");
    result.reserve(text.size() + 2 * newName.length() + name.getNamespace().getURI().length() + 64);
    result += newName;
    appendAttributes(result, name.getNamespace(), tagText);
    result += ">";
    result += content;
    result += "</";
    result += newName;
    result += ">\n";
    return result;
}
