#include <contestants.h>
#include <tinyxml2.h>

namespace tessit::benchmarks {

namespace {

class Count final : public tinyxml2::XMLVisitor {
public:
    bool VisitEnter(const tinyxml2::XMLElement& element, const tinyxml2::XMLAttribute* attribute) override {
        tally.element(std::string_view(element.Name()));
        for (; attribute != nullptr; attribute = attribute->Next())
            tally.attribute(std::string_view(attribute->Name()), std::string_view(attribute->Value()));
        return true;
    }
    bool VisitExit(const tinyxml2::XMLElement&) override {
        tally.elementEnd();
        return true;
    }
    bool Visit(const tinyxml2::XMLText& text) override {
        tally.text(std::string_view(text.Value()));
        return true;
    }
    using XMLVisitor::Visit;
    using XMLVisitor::VisitEnter;
    using XMLVisitor::VisitExit;

    Tally tally;
};

Tally read(const Document& document) {
    Count count;
    tinyxml2::XMLDocument tree;
    tree.Parse(document.bytes.data(), document.bytes.size());
    tree.Accept(&count);
    return count.tally;
}

class WrittenByTinyxml2 final : public Writable {
public:
    using Node = ComposedNode<std::string>;

    explicit WrittenByTinyxml2(const Composition<std::string>& source) : composition(source) {}

    void write(const Take& take) override {
        tinyxml2::XMLPrinter printer(nullptr, Compact);
        for (const Node& node : composition.nodes)
            print(printer, node);
        take({printer.CStr(), static_cast<std::size_t>(printer.CStrSize() - 1)});
    }

private:
    static constexpr bool Compact = true;

    void print(tinyxml2::XMLPrinter& printer, const Node& node) const {
        switch (node.kind) {
            case Node::Kind::Start:
                return printStart(printer, node);
            case Node::Kind::Empty:
                printStart(printer, node);
                return printer.CloseElement(Compact);
            case Node::Kind::End:
                return printer.CloseElement(Compact);
            case Node::Kind::Text:
                return printer.PushText(node.text.c_str());
        }
    }

    void printStart(tinyxml2::XMLPrinter& printer, const Node& node) const {
        printer.OpenElement(composition.names[node.name].qualified.c_str(), Compact);
        for (const auto& [name, value] : node.attributes)
            printer.PushAttribute(composition.names[name].qualified.c_str(), value.c_str());
    }

    Composition<std::string> composition;
};

}  // namespace

// Blank texts cannot be had.
void addTinyxml2(Contestants& all) {
    constexpr Delivery Delivers{
        .namespaces = false, .blankTexts = false, .otherEncodings = false, .deepest = TINYXML2_MAX_ELEMENT_DEPTH};
    const std::string version = std::to_string(TIXML2_MAJOR_VERSION) + '.' + std::to_string(TIXML2_MINOR_VERSION) +
                                '.' + std::to_string(TIXML2_PATCH_VERSION);
    all.readers.push_back({"tinyxml2", version, Role::Peer, Delivers, read});
    all.writers.push_back({"tinyxml2 printer", version, Role::Peer, prepared<WrittenByTinyxml2>});
}

}  // namespace tessit::benchmarks
