// The record of what a lenient reader forgives: it changes nothing that is delivered, is in order, and has the
// fault that a conforming reader finds, if there is one. The first byte says how the document is read.

#include "support/record.h"

#include <algorithm>
#include <string>

#include "fuzzing.h"

using tessit::fuzz::differsInPieces;
using tessit::fuzz::Input;
using tessit::fuzz::require;
using namespace tessit::test;

namespace {

std::string readAll(std::string_view xml, Source source, bool namespaces, QeXmlRecord* record) {
    const Document document(xml);
    std::string nodes;
    try {
        const auto reader = document.open(source, QeXmlReaderOptions{.namespaces = namespaces, .record = record});
        while (!reader->eof()) {
            reader->readNextNode();
            nodes += describeNode(*reader) + '\n';
        }
    } catch (const QeXmlParseError& error) {
        nodes += describe(error);
    }
    return nodes;
}

bool isInFront(const QeXmlParseError& left, const QeXmlParseError& right) {
    return left.getPosition().offset < right.getPosition().offset;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const unsigned choice = input.byte();
    const Source source = Sources[choice % std::size(Sources)];
    const bool namespaces = (choice & 64) == 0;
    std::string xml(input.rest());
    if ((choice & 128) != 0 && isUtf8(xml)) xml = encode(xml, Encoding::Utf16BE);
    QeXmlRecord record(8), whole(100'000);
    const std::string with = readAll(xml, source, namespaces, &record);
    const std::string without = readAll(xml, source, namespaces, nullptr);
    // For a record, the pieces are put together first.
    const bool isKnownToDiffer = isInPieces(source) && (differsInPieces(with) || differsInPieces(without));
    require(isKnownToDiffer || with == without, "a record changes nothing");
    readInto(whole, xml, namespaces);
    require(record.getCount() == whole.getCount() && whole.getEntries().size() == whole.getCount(), "all are counted");
    require(std::is_sorted(whole.getEntries().begin(), whole.getEntries().end(), isInFront), "entries are in order");
    const std::string fault = faultOfRecord(xml, namespaces);
    require(fault.empty(), fault.c_str());
    return 0;
}
