#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tessit {

/// Where markup ends that begins at a '<' and was read before; null if that is not in front of `limit`. In a document
/// type, quotes count for nothing, as for a lenient reader. `expands` says whether references in values are expanded: a
/// lenient reader takes all up to a semicolon for one then, quotes included. O(bytes of the markup).
const char* endOfMarkup(const char* begin, const char* limit, bool expands) noexcept;

/// The name in a start tag or an end tag that begins at a '<' and was read before.
std::string_view nameInTag(const char* begin) noexcept;

/// Where the attributes of a tag stand. Looks through a tag once, whatever is asked about it.
class WrittenAttributes {
public:
    struct Attribute {
        std::string_view name, value;  // without quotes
    };

    /// That attribute of the tag which begins at a '<' and was read before, in front of `limit`; of several of one
    /// name, the name is the first one's, the value the last one's, as they count for a lenient reader. None if it has
    /// no such attribute.
    std::optional<Attribute> find(const char* tag, const char* limit, bool expands, std::string_view name);

    /// For when the document's bytes are about to go.
    void forget() noexcept { lastTag = nullptr; }

private:
    void lookThrough(const char* tag, const char* limit, bool expands);

    const char* lastTag = nullptr;
    std::vector<Attribute> attributes;  // by their names, equal ones as in the document, unless there are few
};

}  // namespace tessit
