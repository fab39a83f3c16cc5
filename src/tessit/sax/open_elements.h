#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <corvel/slot_array.h>
#include <tessit/model/xml_name.h>

namespace tessit {

/// The names of the open elements, to hold end tags against.
///
/// Local names are kept as bytes, one behind the other, since a document may open
/// millions. URIs are strings, as copies of long ones share their bytes; an element
/// has none of its own where the parent's is the same.
class OpenElements {
public:
    bool empty() const noexcept { return elements.empty(); }

    void push(const QeXmlName& name) {
        const std::size_t uri = placeOf(name.getNamespace().getURI());
        const Element element{bytes.length(), name.getLocalName().length(), uri};
        bytes += name.getLocalName();
        elements.push_back(element);
    }

    /// Whether the innermost element has that name; prefixes do not count.
    bool innermostIs(const QeXmlName& name) const noexcept {
        const Element& innermost = elements.back();
        const QeCString& uri = name.getNamespace().getURI();
        return name.getLocalName() == bytes.substring(innermost.start, innermost.length) &&
               (innermost.uri == None ? uri.empty() : uri == uris[innermost.uri]);
    }

    void pop() noexcept {
        const Element innermost = elements.back();
        bytes.truncate(innermost.start);
        elements.pop_back();
        if (innermost.uri != None && innermost.uri != innermostURI()) uris.dropLast();
    }

private:
    static constexpr std::size_t None = static_cast<std::size_t>(-1);

    struct Element {
        std::size_t start;  // of the local name in `bytes`
        std::size_t length;
        std::size_t uri;  // its place in `uris`; None for the empty one
    };

    std::size_t innermostURI() const noexcept { return empty() ? None : elements.back().uri; }

    // The place for a new innermost element's URI. The parent's, if it has one, is the last.
    std::size_t placeOf(const QeCString& uri) {
        if (uri.empty()) return None;
        const bool likeParent = innermostURI() != None && uris.back() == uri;
        if (!likeParent) uris.append([&](QeCString& slot) { slot = uri; });
        return uris.size() - 1;
    }

    QeCString bytes;
    QeSlotArray<QeCString> uris;
    std::vector<Element> elements;
};

}  // namespace tessit
