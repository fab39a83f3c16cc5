// The record of what a lenient reader forgives: it changes nothing that is delivered, is in order, and has the
// fault that a conforming reader finds, if there is one.

#include "support/record.h"

#include <algorithm>
#include <string>

#include "fuzzing.h"

using tessit::fuzz::require;
using tessit::fuzz::textOf;
using namespace tessit::test;

namespace {

std::string readAll(std::string_view xml, QeXmlRecord* record) {
    const Document document(xml);
    std::string nodes;
    try {
        const auto reader = document.open(Source::Span, QeXmlReaderOptions{.record = record});
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
    const std::string_view xml = textOf(data, size);
    QeXmlRecord record(8), whole(100'000);
    require(readAll(xml, &record) == readAll(xml, nullptr), "a record changes nothing");
    readInto(whole, xml);
    require(record.getCount() == whole.getCount() && whole.getEntries().size() == whole.getCount(), "all are counted");
    require(std::is_sorted(whole.getEntries().begin(), whole.getEntries().end(), isInFront), "entries are in order");
    const std::string fault = faultOfRecord(xml);
    require(fault.empty(), fault.c_str());
    return 0;
}
