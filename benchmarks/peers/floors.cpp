// What reading and writing cannot be faster than.

#include <contestants.h>
#include <cstdlib>
#include <cstring>
#include <descriptors.h>
#include <tokenizer.h>
#include <vector>

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

// In pieces as long as the window's.
Tally readBytes(int descriptor) {
    static std::vector<char> piece(256 * 1024);
    while (const ssize_t count = read(descriptor, piece.data(), piece.size()))
        if (count < 0) std::abort();
    return {};
}

Tally readBytesOfFile(const Document&) {
    return readFile(readBytes);
}

Tally readBytesOfPipe(const Document& document) {
    return readPipe(document, readBytes);
}

std::string escaped(std::string_view text) {
    std::string out;
    for (const char byte : text) {
        switch (byte) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += byte;
        }
    }
    return out;
}

// Appends strings that were escaped before: the least that writing can be.
class Appended final : public Writable {
public:
    using Node = ComposedNode<std::string>;

    explicit Appended(const Composition<std::string>& source) : composition(composedOf<std::string>(source, escaped)) {}

    void write(const Take& take) override {
        std::string out;
        for (const Node& node : composition.nodes)
            writeNode(out, node);
        take(out);
    }

private:
    void writeNode(std::string& out, const Node& node) const {
        switch (node.kind) {
            case Node::Kind::Start:
            case Node::Kind::Empty:
                return writeStart(out, node);
            case Node::Kind::End:
                out.append("</").append(composition.names[node.name].qualified).append(">");
                return;
            case Node::Kind::Text:
                out += node.text;
                return;
        }
    }

    void writeStart(std::string& out, const Node& node) const {
        out.append("<").append(composition.names[node.name].qualified);
        for (const auto& [name, value] : node.attributes)
            out.append(" ").append(composition.names[name].qualified).append("=\"").append(value).append("\"");
        out.append(node.kind == Node::Kind::Empty ? "/>" : ">");
    }

    Composition<std::string> composition;
};

}  // namespace

void addFloors(Contestants& all) {
    all.readers.push_back({.name = "memcpy", .role = Role::Floor, .read = copyBytes, .counts = false});
    all.readers.push_back({.name = "memchr '<'", .role = Role::Floor, .read = findTags, .counts = false});
    all.readers.push_back(
        {.name = "tokenizer",
         .role = Role::Floor,
         .delivery = {.namespaces = false, .references = false, .lineEnds = false, .otherEncodings = false},
         .read = tokenize});
    constexpr Delivery Large{.mostDocuments = 1};
    all.readers.push_back({"read of a file", {}, Role::Floor, Large, readBytesOfFile, writeFile, false});
    all.readers.push_back({"read of a pipe", {}, Role::Floor, Large, readBytesOfPipe, nullptr, false});
    all.writers.push_back({.name = "plain appends", .role = Role::Floor, .prepare = prepared<Appended>});
}

}  // namespace tessit::benchmarks
