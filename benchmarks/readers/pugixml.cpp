#include <cstring>
#include <pugixml.hpp>
#include <reader.h>

namespace tessit::benchmarks {

namespace {

void countElement(Tally& tally, const pugi::xml_node& node) {
    tally.element(std::string_view(node.name()));
    for (const pugi::xml_attribute& attribute : node.attributes())
        tally.attribute(std::string_view(attribute.name()), std::string_view(attribute.value()));
}

// The next node in the order of the document, below `root`.
pugi::xml_node leave(pugi::xml_node node, const pugi::xml_node& root, Tally& tally) {
    while (!node.next_sibling()) {
        node = node.parent();
        if (node == root) return {};
        tally.elementEnd();
    }
    return node.next_sibling();
}

pugi::xml_node visit(const pugi::xml_node& node, const pugi::xml_node& root, Tally& tally) {
    if (node.type() != pugi::node_element) {
        tally.text(std::string_view(node.value()));
        return leave(node, root, tally);
    }
    countElement(tally, node);
    if (const pugi::xml_node child = node.first_child()) return child;
    tally.elementEnd();
    return leave(node, root, tally);
}

// Blank texts are asked for, since the others deliver them too.
Tally read(const Document& document) {
    Tally tally;
    pugi::xml_document tree;
    const unsigned options = pugi::parse_default | pugi::parse_ws_pcdata;
    if (!tree.load_buffer_inplace(document.bytes.data(), document.bytes.size(), options)) return tally;
    for (pugi::xml_node node = tree.first_child(); node;)
        node = visit(node, tree, tally);
    return tally;
}

}  // namespace

void addPugixmlReaders(std::vector<Reader>& readers) {
    const std::string version =
        std::to_string(PUGIXML_VERSION / 1000) + '.' + std::to_string(PUGIXML_VERSION / 10 % 100);
    readers.push_back({"pugixml", version, Role::Peer, {.namespaces = false}, read});
}

}  // namespace tessit::benchmarks
