#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <tessit/model/xml_name.h>

namespace tessit {

/// The names of the open elements, to hold end tags against.
///
/// Kept as bytes, one behind the other, since a document may open millions: a
/// local name each, and its URI unless the parent has the same. Long URIs are
/// shared with the reader instead, so that an element never costs their length.
class OpenElements {
public:
    bool empty() const noexcept { return elements.empty(); }

    void push(const QeXmlName& name) {
        const QeCString& local = name.getLocalName();
        const bool likeParent = !empty() && hasUri(elements.back(), name.getNamespace().getURI());
        const Element element{bytes.length(), local.length(), likeParent ? elements.back().uri : Uri{}};
        elements.push_back(element);
        bytes += local;
        if (!likeParent) elements.back().uri = keep(name.getNamespace().getURI());
    }

    /// Whether the innermost element has that name; prefixes do not count.
    bool innermostIs(const QeXmlName& name) const noexcept {
        const Element& innermost = elements.back();
        return name.getLocalName() == bytes.substring(innermost.start, innermost.length) &&
               hasUri(innermost, name.getNamespace().getURI());
    }

    void pop() {
        bytes.truncate(elements.back().start);
        elements.pop_back();
        const std::size_t stillUsed = empty() ? 0 : elements.back().uri.longUris;
        while (longUris.size() > stillUsed)
            longUris.pop_back();
    }

private:
    // Where a URI is kept: among the bytes, or, when it is long, as the last of so many long ones.
    struct Uri {
        std::size_t start = 0;
        std::size_t length = 0;
        std::size_t longUris = 0;
    };
    struct Element {
        std::size_t start;  // of the local name in `bytes`
        std::size_t length;
        Uri uri;
    };

    Uri keep(const QeCString& uri) {
        Uri kept{bytes.length(), uri.length(), longUris.size()};
        if (uri.length() < QeCString::LargeLength) {
            bytes += uri;
        } else {
            longUris.emplace_back().shareBlockOf(uri);
            ++kept.longUris;
        }
        return kept;
    }

    bool hasUri(const Element& element, const QeCString& uri) const noexcept {
        if (element.uri.length != uri.length()) return false;
        // Equal long URIs that are bound at the same time are one. Of others, bytes need not be compared.
        if (uri.length() >= QeCString::LargeLength) return longUris[element.uri.longUris - 1].data() == uri.data();
        return uri == bytes.substring(element.uri.start, element.uri.length);
    }

    QeCString bytes;
    std::vector<Element> elements;
    std::vector<QeCString> longUris;
};

}  // namespace tessit
