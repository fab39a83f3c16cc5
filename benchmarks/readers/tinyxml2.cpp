#include <reader.h>
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

}  // namespace

// Blank texts cannot be had.
void addTinyxml2Readers(std::vector<Reader>& readers) {
    constexpr Delivery Delivers{
        .namespaces = false, .blankTexts = false, .otherEncodings = false, .deepest = TINYXML2_MAX_ELEMENT_DEPTH};
    const std::string version = std::to_string(TIXML2_MAJOR_VERSION) + '.' + std::to_string(TIXML2_MINOR_VERSION) +
                                '.' + std::to_string(TIXML2_PATCH_VERSION);
    readers.push_back({"tinyxml2", version, Role::Peer, Delivers, read});
}

}  // namespace tessit::benchmarks
