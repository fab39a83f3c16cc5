// A document and a twin that edits were made to: a count of edits, four bytes for
// each (a place, bytes to drop, bytes to put in) and the bytes, then the document.
// A document equals itself, and neither of two has a say in the result by standing first.

#include <string>

#include <tessit/errors/xml_error.h>
#include <tessit/utils/xml_utils.h>

#include "fuzzing.h"

using namespace tessit::fuzz;

namespace {

struct Edit {
    std::size_t place;
    std::size_t dropped;
    std::string_view put;
};

Edit takeEdit(Input& input) {
    const std::size_t place = input.byte() * 256 + input.byte(), dropped = input.below(16);
    return {place, dropped, input.text(input.below(16))};
}

enum class Outcome { Equal, Different, Unreadable };

Outcome compare(const QeCString& left, const QeCString& right) {
    try {
        return QeXmlUtils::compareXml(left, right) ? Outcome::Equal : Outcome::Different;
    } catch (const QeXmlParseError&) {
        return Outcome::Unreadable;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    Edit edits[3];
    const std::size_t count = input.below(std::size(edits) + 1);
    for (std::size_t i = 0; i < count; ++i)
        edits[i] = takeEdit(input);
    const std::string_view text = input.rest();

    std::string edited(text);
    for (std::size_t i = 0; i < count; ++i)
        edited.replace(edits[i].place % (edited.size() + 1), edits[i].dropped, edits[i].put);

    const QeCString document(text), twin{std::string_view(edited)};
    require(compare(document, document) != Outcome::Different, "a document equals itself");
    require(compare(document, twin) == compare(twin, document), "the order of the two does not matter");
    return 0;
}
