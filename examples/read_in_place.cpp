// Reads a document where it lies, without a copy of it, node by node: counts its elements and texts.

#include <iostream>
#include <span>
#include <string_view>

#include <tessit/tessit.h>

namespace {

struct Tally {
    std::size_t elements = 0;
    std::size_t textBytes = 0;
};

// The bytes can be those of a mapped file or of a network buffer; they must stay as they are meanwhile.
Tally tallyOf(std::span<const unsigned char> document) {
    QeXmlReader reader(document);
    Tally tally;
    while (!reader.eof()) {
        reader.readNextNode();
        const QeXmlReader::NodeType type = reader.getLastNodeType();
        if (type == QeXmlReader::ElementStart || type == QeXmlReader::EmptyElement) ++tally.elements;
        if (type == QeXmlReader::Content) tally.textBytes += reader.getLastContent().length();
    }
    return tally;
}

}  // namespace

int main() {
    constexpr std::string_view Document = "<list><item>tea</item><item>rice</item><total n='2'/></list>";
    const auto* bytes = reinterpret_cast<const unsigned char*>(Document.data());
    const Tally tally = tallyOf({bytes, Document.size()});
    std::cout << tally.elements << " elements, " << tally.textBytes << " bytes of text\n";
}
