#pragma once

#include <algorithm>
#include <cstddef>
#include <forward_list>
#include <string>
#include <string_view>
#include <vector>

#include <corvel/byte_scan.h>
#include <tessit/reader/xml_reader.h>

namespace tessit {

/// The names of the elements that a reader has opened, to hold end tags against.
///
/// Kept as written, as views of the document: most end tags are written like their
/// start tags, and need no look at namespaces. Where an XML declaration replaces the
/// document, the names of its open elements are copied, each once.
class OpenElements {
public:
    /// From now on, the reader knows of the names.
    explicit OpenElements(QeXmlReader& source) : reader(source) {
        names.reserve(16);
        reader.openElements = this;
    }
    ~OpenElements() { reader.openElements = nullptr; }
    OpenElements(const OpenElements&) = delete;
    OpenElements& operator=(const OpenElements&) = delete;

    /// Takes in the last tag, a start tag.
    void push() { names.push_back(reader.lastNameWritten.raw); }

    /// Whether the last tag, an end tag, closes the innermost element: local name
    /// and URI are the same. If so, drops that element.
    bool close() {
        if (names.empty() || !(isWrittenAlike() || isSameName())) return false;
        names.pop_back();
        keptCount = std::min(keptCount, names.size());
        return true;
    }

    /// Copies the names that still stand in the document, which is about to go.
    void keepNames() {
        std::string& copy = kept.emplace_front();
        for (std::size_t i = keptCount; i < names.size(); ++i)
            copy += names[i];
        const char* at = copy.data();
        for (; keptCount < names.size(); at += names[keptCount++].size())
            names[keptCount] = {at, names[keptCount].size()};
    }

private:
    // The end of an element without children has the very name of its start, taken again.
    bool isWrittenAlike() const noexcept {
        const std::string_view name = reader.lastNameWritten.raw, innermost = names.back();
        return name.size() == innermost.size() &&
               (name.data() == innermost.data() || corvel::sameBytes(name.data(), innermost.data(), name.size()));
    }

    // The prefixes may differ. Both names stand in the scope of the element that closes.
    bool isSameName() const {
        const std::string_view name = names.back();
        const std::size_t colon = name.find(':');
        const std::string_view prefix = name.substr(0, colon == std::string_view::npos ? 0 : colon);
        const std::string_view local = colon == std::string_view::npos ? name : name.substr(colon + 1);
        return reader.lastName.getLocalName() == local &&
               reader.lastName.getNamespace().getURI() == reader.uriInsideTag(prefix);
    }

    QeXmlReader& reader;
    std::vector<std::string_view> names;  // outermost first
    std::size_t keptCount = 0;            // so many of them stand in `kept`
    std::forward_list<std::string> kept;
};

}  // namespace tessit
