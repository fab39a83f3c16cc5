#pragma once

#include <cstddef>
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
    QeCString name;                   ///< as written, prefix included
    QeCString defaultValue;           ///< as it is delivered
    std::vector<LeftReference> left;  ///< in the default value
    bool isTokenized = false;         ///< of a type other than CDATA: blanks are trimmed and come singly
    bool hasDefault = false;
    bool isDeclaredOutside = false;
};

/// The declared attributes of the elements of one name, in the order of their declarations.
/// Found by name in O(1).
struct AttributeList : NamedList<DeclaredAttribute, std::vector> {
    QeCString name;  ///< of the elements
};

}  // namespace tessit
