// What reading cannot be faster than.

#include <cstring>
#include <reader.h>
#include <tokenizer.h>

namespace tessit::benchmarks {

namespace {

Tally copyBytes(const Document& document) {
    static std::vector<char> target;
    if (target.size() < document.bytes.size()) target.resize(document.bytes.size());
    std::memcpy(target.data(), document.bytes.data(), document.bytes.size());
    asm volatile("" : : "r"(target.data()) : "memory");  // so that the copy is made
    return {};
}

Tally findTags(const Document& document) {
    Tally tally;
    const std::string_view bytes = document.view();
    for (std::size_t at = 0; (at = bytes.find('<', at)) != std::string_view::npos; ++at)
        ++tally.elements;
    return tally;
}

Tally tokenize(const Document& document) {
    Tally tally;
    Tokenizer(document.view(), tally).run();
    return tally;
}

}  // namespace

void addFloors(std::vector<Reader>& readers) {
    readers.push_back({.name = "memcpy", .role = Role::Floor, .read = copyBytes, .counts = false});
    readers.push_back({.name = "memchr '<'", .role = Role::Floor, .read = findTags, .counts = false});
    readers.push_back(
        {.name = "tokenizer",
         .role = Role::Floor,
         .delivery = {.namespaces = false, .references = false, .lineEnds = false, .otherEncodings = false},
         .read = tokenize});
}

}  // namespace tessit::benchmarks
