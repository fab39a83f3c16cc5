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
        const QeCString& uri = name.getNamespace().getURI();
        Element element{bytes.length(), name.getLocalName().length(), 0, 0};
        bytes += name.getLocalName();
        if (!uri.empty()) {
            const bool likeParent = !empty() && uriOf(elements.back()) == uri;
            element.uriStart = likeParent ? elements.back().uriStart : bytes.length();
            element.uriLength = uri.length();
            if (!likeParent) bytes += uri;
        }
        elements.push_back(element);
    }

    /// Whether the innermost element has that name; prefixes do not count.
    bool innermostIs(const QeXmlName& name) const noexcept {
        const Element& innermost = elements.back();
        return name.getLocalName() == bytes.substring(innermost.start, innermost.length) &&
               name.getNamespace().getURI() == uriOf(innermost);
    }

    void pop() noexcept {
        bytes.truncate(elements.back().start);
        elements.pop_back();
    }

private:
    struct Element {
        std::size_t start;  // of the local name in `bytes`
        std::size_t length;
        std::size_t uriStart;
        std::size_t uriLength;
    };

    std::string_view uriOf(const Element& element) const noexcept {
        return bytes.substring(element.uriStart, element.uriLength);
    }

    QeCString bytes;
    std::vector<Element> elements;
};

}  // namespace tessit
