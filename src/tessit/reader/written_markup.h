#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tessit {

/// Where markup ends that begins at a '<' and was read before; null if that is not in front of `limit`. In a document
/// type, quotes count for nothing, as for a lenient reader. `expands` says whether references in values are expanded: a
/// lenient reader takes all up to a semicolon for one then, quotes included. O(bytes of the markup).
const char* endOfMarkup(const char* begin, const char* limit, bool expands) noexcept;

/// The name in a tag that begins at a '<' and was read before, or of a long one so many bytes.
std::string_view nameInTag(const char* begin, std::size_t most = SIZE_MAX) noexcept;

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

private:
    void lookThrough(const char* tag, const char* limit, bool expands);

    const char* lastTag = nullptr;
    std::vector<Attribute> attributes;  // by their names, equal ones as in the document, unless there are few
};

}  // namespace tessit
