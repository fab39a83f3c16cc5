#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <tessit/model/xml_name.h>

namespace tessit {

/// The names of the open elements, to hold end tags against.
///
/// Kept as bytes, one behind the other, since a document may open millions: a
/// local name each, and its URI unless the parent has the same.
class OpenElements {
public:
    bool empty() const noexcept { return elements.empty(); }

    void push(const QeXmlName& name) {
        Element element;
        element.local = append(name.getLocalName());
        const std::string_view uri = name.getNamespace().getURI();
        const bool likeParent = !empty() && textOf(elements.back().uri) == uri;
        element.uri = likeParent ? elements.back().uri : append(uri);
        elements.push_back(element);
    }

    /// Whether the innermost element has that name; prefixes do not count.
    bool innermostIs(const QeXmlName& name) const noexcept {
        return name.getLocalName() == textOf(elements.back().local) &&
               name.getNamespace().getURI() == textOf(elements.back().uri);
    }

    void pop() noexcept {
        bytes.resize(elements.back().local.start);
        elements.pop_back();
    }

private:
    struct Text {
        std::size_t start;
        std::size_t length;
    };
    struct Element {
        Text local;
        Text uri;
    };

    Text append(std::string_view text) {
        bytes.insert(bytes.end(), text.begin(), text.end());
        return {bytes.size() - text.size(), text.size()};
    }

    std::string_view textOf(Text text) const noexcept { return {bytes.data() + text.start, text.length}; }

    std::vector<char> bytes;
    std::vector<Element> elements;
};

}  // namespace tessit
