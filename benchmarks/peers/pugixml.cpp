#include <contestants.h>
#include <cstring>
#include <pugixml.hpp>

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

class StringSink final : public pugi::xml_writer {
public:
    void write(const void* bytes, std::size_t length) override { text.append(static_cast<const char*>(bytes), length); }

    std::string text;
};

// Builds the tree and saves it: there is no other way.
class WrittenByPugixml final : public Writable {
public:
    using Node = ComposedNode<std::string>;

    explicit WrittenByPugixml(const Composition<std::string>& source) : composition(source) {}

    void write(const Take& take) override {
        pugi::xml_document tree;
        pugi::xml_node parent = tree;
        for (const Node& node : composition.nodes)
            parent = append(parent, node);
        StringSink sink;
        tree.save(sink, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
        take(sink.text);
    }

private:
    // Returns the element that is open then.
    pugi::xml_node append(pugi::xml_node parent, const Node& node) const {
        switch (node.kind) {
            case Node::Kind::Start:
                return appendElement(parent, node);
            case Node::Kind::Empty:
                appendElement(parent, node);
                return parent;
            case Node::Kind::End:
                return parent.parent();
            case Node::Kind::Text:
                parent.append_child(pugi::node_pcdata).set_value(node.text.c_str());
                return parent;
        }
        return parent;
    }

    pugi::xml_node appendElement(pugi::xml_node parent, const Node& node) const {
        pugi::xml_node element = parent.append_child(composition.names[node.name].qualified.c_str());
        for (const auto& [name, value] : node.attributes)
            element.append_attribute(composition.names[name].qualified.c_str()).set_value(value.c_str());
        return element;
    }

    Composition<std::string> composition;
};

}  // namespace

void addPugixml(Contestants& all) {
    const std::string version =
        std::to_string(PUGIXML_VERSION / 1000) + '.' + std::to_string(PUGIXML_VERSION / 10 % 100);
    all.readers.push_back({"pugixml", version, Role::Peer, {.namespaces = false}, read});
    all.writers.push_back({"pugixml build and save", version, Role::Peer, prepared<WrittenByPugixml>});
}

}  // namespace tessit::benchmarks
