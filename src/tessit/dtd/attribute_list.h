#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include <corvel/c_string.h>
#include <tessit/dtd/named_list.h>

namespace tessit {

/// A reference in a value that was left as written: where it stands in the delivered value.
struct LeftReference {
    std::size_t offset, length;
};

/// What attribute-list declarations say of one attribute.
struct DeclaredAttribute {
    struct Default {
        QeCString value;                  ///< as it is delivered
        QeCString asWritten;              ///< with its references as written; empty where it has none
        std::vector<LeftReference> left;  ///< in the value
    };

    QeCString name;  ///< as written, prefix included
    std::optional<Default> byDefault;
    bool isTokenized = false;  ///< of a type other than CDATA: blanks are trimmed and come singly
    bool isDeclaredOutside = false;
    mutable std::uint64_t seenInTag = 0;  ///< the number of the last tag that has it, for who counts tags

    /// So many bytes can be read behind the name of one that has a default, as behind a name in a document.
    static constexpr std::size_t ReadableBehindName = 32;
};

/// The declared attributes of the elements of one name, in the order of their declarations.
/// Found by name in O(1).
struct AttributeList : NamedList<DeclaredAttribute, std::vector> {
    QeCString name;  ///< of the elements

    /// The numbers of those that have defaults: there can be many without.
    std::vector<std::size_t> defaults;
};

}  // namespace tessit
