// A document that comes in pieces is read as it is in place: the same nodes, and the same error at the same place. The
// first bytes say by which rules, how long the pieces are, whether the window moves, and whether much of the text is
// there at once.

#include <algorithm>

#include "fuzzing.h"
#include "support/documents.h"

using tessit::fuzz::differsInPieces;
using namespace tessit::test;

namespace {

constexpr std::size_t ChoiceLength = 2;

std::string read(QeXmlInput input, const QeXmlReaderOptions& options, bool expands) {
    std::string nodes;
    try {
        QeXmlReader reader(std::move(input), options);
        reader.setExpandAttributeReference(expands);
        while (!reader.eof()) {
            reader.readNextNode();
            nodes += describeNode(reader) + "\n";
        }
    } catch (const QeXmlParseError& error) {
        nodes += describe(error);
    }
    return nodes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < ChoiceLength) return 0;
    const unsigned choice = data[0], length = data[1];
    QeXmlReaderOptions options;
    if ((choice & 1) != 0) options.rules = QeXmlRules::Conforming;
    if ((choice & 2) != 0) options.nodes = QeXmlNodes::All;
    const bool expands = (choice & 4) == 0;
    std::string text(tessit::fuzz::textOf(data + ChoiceLength, size - ChoiceLength));
    const std::size_t front = (choice & 8) == 0 ? 0 : 50'000;
    const std::size_t much = (choice & 16) == 0 ? 0 : 4'096;
    if (much != 0) text.insert(0, "<r>" + std::string(much, 'x') + "<b/>");
    if (front != 0) text.insert(0, "<!--" + std::string(front, '-' + 1) + "-->");
    const Document document(text);
    const std::size_t first = front == 0 ? much / 1024 : front + 7 + length % size;
    const std::size_t piece = much == 0 ? 1 + length % 64 : much + length * size / 256;
    const std::string whole = read(document.inPlace(), options, expands);
    const std::string pieces = read(document.inPieces(first, piece), options, expands);
    tessit::fuzz::require(differsInPieces(whole) || differsInPieces(pieces) || whole == pieces,
                          "the same nodes from pieces as in place");
    return 0;
}
