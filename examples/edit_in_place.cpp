// Changes one value of a document, and leaves every other byte as it is: white space, quotes, comments, order.

#include <iostream>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include <tessit/tessit.h>

namespace {

// Where the count stands of the item with that number.
std::optional<QeXmlSpan> findCount(std::string_view file, const QeCString& sku) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(file.data());
    QeXmlReader reader(std::span(bytes, file.size()), {.rules = QeXmlRules::Conforming, .sourceName = "stock.xml"});
    while (!reader.eof()) {
        reader.readNextNode();
        if (reader.getLastNodeType() != QeXmlReader::EmptyElement) continue;
        const QeXmlAttributeSet& attributes = reader.getLastAttributes();
        const QeXmlAttribute* const number = attributes.find(QeXmlName("sku"));
        const QeXmlAttribute* const count = attributes.find(QeXmlName("count"));
        if (number == attributes.end() || number->getValue() != sku || count == attributes.end()) continue;
        if (const auto spans = reader.getAttributeSpans(*count)) return spans->value;
    }
    return std::nullopt;
}

// Offsets in the input are those of the file, whatever its encoding. The text has to be in that encoding, and escaped
// as the place wants it: digits are fine in most.
void replace(std::string& file, const QeXmlSpan& span, std::string_view text) {
    const std::size_t begin = span.begin.inputOffset;
    file.replace(begin, span.end.inputOffset - begin, text);
}

}  // namespace

int main() {
    std::string file =
        "<stock>\n"
        "  <item count='12'   sku = 'T-100'/>  <!-- a crate -->\n"
        "  <item sku=\"K-2\"\n"
        "        count=\"2\" name=\"T&#xE9;\" />\n"
        "</stock>\n";
    if (const auto count = findCount(file, "K-2")) replace(file, *count, "14");
    std::cout << file;
}
