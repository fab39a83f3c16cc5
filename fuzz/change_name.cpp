// An element under another name: three lines for prefix, URI and local name, then
// its markup. Either nothing changes, or the content stands between tags of the new name,
// which is in its namespace where it takes the place of another default namespace.

#include <algorithm>

#include <tessit/reader/xml_reader.h>
#include <tessit/utils/xml_utils.h>

#include "fuzzing.h"

using tessit::fuzz::require;

namespace {

// Whether the tag has one default declaration (an empty prefix makes another), and values in double quotes only,
// without a tag's signs in them.
bool declaresDefaultPlainly(std::string_view tag) {
    const auto declaration = tag.find("xmlns=\"");
    return declaration != tag.npos && tag.find("xmlns", declaration + 1) == tag.npos &&
           tag.find("xmlns:=") == tag.npos && tag.find_first_of("'&/") == tag.npos &&
           std::count(tag.begin(), tag.end(), '=') * 2 == std::count(tag.begin(), tag.end(), '"');
}

bool isPlain(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char byte) { return byte >= 'a' && byte <= 'z'; });
}

// The URI of the first element; `none` where no tag can be read.
QeCString uriOf(const QeCString& xml, const char* none) {
    try {
        QeXmlReader reader(xml);
        reader.readNextNode();
        return reader.getLastName().getNamespace().getURI();
    } catch (const QeXmlParseError&) {
        return none;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tessit::fuzz::Input input(data, size);
    const QeCString prefix(input.line()), uri(input.line()), local(input.line()), xml(input.rest());
    const QeXmlName name(local, QeXmlNamespace(prefix, uri));
    const QeCString changed = QeXmlUtils::changeName(name, xml);

    const std::string_view before(xml), after(changed);
    const std::size_t startTagEnd = before.find('>'), endTag = before.rfind('<');
    if (!before.starts_with('<') || startTagEnd == before.npos || startTagEnd >= endTag) {
        require(changed == xml, "what is no element stays as it is");
        return 0;
    }
    const QeCString qualified = name.getQualifiedName();
    const QeCString tail =
        ">" + QeCString(before.substr(startTagEnd + 1, endTag - startTagEnd - 1)) + "</" + qualified + ">\n";
    require(after.starts_with(std::string_view("<" + qualified)), "the start tag has the new name");
    require(after.ends_with(tail), "the content stands in front of the new end tag");
    if (prefix.empty() && isPlain(uri) && isPlain(local) && declaresDefaultPlainly(before.substr(0, startTagEnd)) &&
        uriOf(xml, "") != "")
        require(uriOf(changed, uri.data()) == uri, "the element is in the namespace of its new name");
    return 0;
}
