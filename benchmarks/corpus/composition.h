#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

/// A document as a program has it in mind before it is written: names, values and
/// texts without escapes, in the string type of the library that writes it.
namespace tessit::benchmarks {

template <typename String>
struct ComposedName {
    String prefix;
    String local;
    String uri;
    String qualified;
};

template <typename String>
struct ComposedNode {
    enum class Kind { Start, Empty, End, Text };

    Kind kind;
    std::size_t name = 0;  ///< an index; of tags
    std::vector<std::pair<std::size_t, String>> attributes =
        {};  ///< name and value; declarations have the prefix "xmlns"
    String text = {};
};

template <typename String>
struct Composition {
    std::vector<ComposedName<String>> names;
    std::vector<ComposedNode<String>> nodes;
};

/// Orders with their customers and items, in several namespaces, of about `bytes`
/// bytes when written; a reference or two in each. The root declares three
/// namespaces, and some items declare one more that they use.
Composition<std::string> composeOrders(std::size_t bytes, std::uint64_t seed);

/// The same document in strings of another kind.
template <typename String, typename Convert>
Composition<String> composedOf(const Composition<std::string>& source, Convert convert) {
    Composition<String> result;
    for (const auto& [prefix, local, uri, qualified] : source.names)
        result.names.push_back({convert(prefix), convert(local), convert(uri), convert(qualified)});
    for (const ComposedNode<std::string>& node : source.nodes) {
        result.nodes.push_back(
            {static_cast<typename ComposedNode<String>::Kind>(node.kind), node.name, {}, convert(node.text)});
        for (const auto& [name, value] : node.attributes)
            result.nodes.back().attributes.emplace_back(name, convert(value));
    }
    return result;
}

}  // namespace tessit::benchmarks
