// Where a program does need a tree: one of its own, of what it needs from the document.

#include <iostream>
#include <string>
#include <vector>

#include <tessit/tessit.h>

namespace {

struct Element {
    QeXmlName name;
    QeXmlAttributeSet attributes;
    QeCString text;  // of this element, without that of its children
    std::vector<Element> children;
};

// The reader has no limit of depth. A tree of nested vectors needs one: it is freed by recursion.
constexpr std::size_t MaxDepth = 1000;

Element readTree(QeXmlReader& reader) {
    std::vector<Element> open(1);  // the innermost last; the first is the document
    const auto close = [&] {
        Element closed = std::move(open.back());
        open.pop_back();
        open.back().children.push_back(std::move(closed));
    };
    do {
        reader.readNextNode();
        switch (reader.getLastNodeType()) {
            case QeXmlReader::ElementStart:
            case QeXmlReader::EmptyElement:
                if (open.size() > MaxDepth) reader.err("Too many elements in one another");
                open.push_back({reader.getLastName(), reader.getLastAttributes(), {}, {}});
                if (reader.getLastNodeType() == QeXmlReader::EmptyElement) close();
                break;
            case QeXmlReader::ElementEnd:
                if (open.size() == 1 || open.back().name != reader.getLastName()) reader.err("Tags do not pair up");
                close();
                break;
            default:
                open.back().text += reader.getLastContent();
        }
    } while (open.size() > 1);
    if (open.back().children.empty()) reader.err("There is no root element");
    return std::move(open.back().children.front());
}

const Element* child(const Element& parent, const QeXmlName& name) {
    for (const Element& candidate : parent.children)
        if (candidate.name == name) return &candidate;
    return nullptr;
}

void print(const Element& element, std::size_t depth = 0) {
    std::cout << std::string(2 * depth, ' ') << element.name.getQualifiedName() << ": " << element.text << '\n';
    for (const Element& inner : element.children)
        print(inner, depth + 1);
}

}  // namespace

int main() {
    QeXmlReader reader(QeCString("<order><item>tea</item><item>rice</item><note/></order>"));
    const Element order = readTree(reader);
    print(order);
    std::cout << (child(order, QeXmlName("note")) != nullptr ? "with a note\n" : "without a note\n");
}
