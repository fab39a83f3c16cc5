// An element under another name: three lines for prefix, URI and local name, then
// its markup. Either nothing changes, or the content stands between tags of the new name.

#include <tessit/utils/xml_utils.h>

#include "fuzzing.h"

using tessit::fuzz::require;

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
    return 0;
}
