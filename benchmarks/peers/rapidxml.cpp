#include <contestants.h>
#include <rapidxml/rapidxml.hpp>

namespace tessit::benchmarks {

namespace {

using Node = rapidxml::xml_node<char>;

void countElement(Tally& tally, const Node& node) {
    tally.element(std::string_view(node.name(), node.name_size()));
    for (const auto* attribute = node.first_attribute(); attribute != nullptr; attribute = attribute->next_attribute())
        tally.attribute(std::string_view(attribute->name(), attribute->name_size()),
                        std::string_view(attribute->value(), attribute->value_size()));
}

// The next node in the order of the document, below `root`.
const Node* leave(const Node* node, const Node* root, Tally& tally) {
    while (node->next_sibling() == nullptr) {
        node = node->parent();
        if (node == root) return nullptr;
        tally.elementEnd();
    }
    return node->next_sibling();
}

const Node* visit(const Node* node, const Node* root, Tally& tally) {
    if (node->type() != rapidxml::node_element) {
        tally.text(std::string_view(node->value(), node->value_size()));
        return leave(node, root, tally);
    }
    countElement(tally, *node);
    if (const Node* child = node->first_node()) return child;
    tally.elementEnd();
    return leave(node, root, tally);
}

template <int Flags>
Tally read(const Document& document) {
    Tally tally;
    rapidxml::xml_document<char> tree;
    tree.parse<Flags>(document.bytes.data());
    for (const Node* node = tree.first_node(); node != nullptr;)
        node = visit(node, &tree, tally);
    return tally;
}

}  // namespace

// Blank texts cannot be had, and line ends stay as they are. Without writing to the
// document, references stay as well.
void addRapidxml(Contestants& all) {
    constexpr Delivery InSitu{.namespaces = false, .blankTexts = false, .lineEnds = false, .otherEncodings = false};
    constexpr Delivery NonDestructive{
        .namespaces = false, .blankTexts = false, .references = false, .lineEnds = false, .otherEncodings = false};
    all.readers.push_back(
        {"RapidXML in situ", TESSIT_RAPIDXML_VERSION, Role::Peer, InSitu, read<rapidxml::parse_default>});
    all.readers.push_back({"RapidXML non-destructive", TESSIT_RAPIDXML_VERSION, Role::Peer, NonDestructive,
                           read<rapidxml::parse_non_destructive>});
}

}  // namespace tessit::benchmarks
