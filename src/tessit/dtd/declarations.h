#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include <corvel/c_string.h>
#include <tessit/dtd/xml_resolver.h>
#include <tessit/rules/source.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

/// A general or parameter entity that was declared.
struct Entity {
    QeCString name;
    Source source;  ///< the replacement text; of an entity from outside only once it was read
    QeCString publicId, systemId, notation, base;
    bool isExternal = false;
    bool isUnparsed = false;
    bool isDeclaredOutside = false;  ///< in the external subset or a parameter entity
    bool isPlainText = false;        ///< internal, without '<', '&' and "]]>": can be taken as it is
    bool isOpen = false;             ///< is being read: a reference to it is recursive
};

/// What attribute-list declarations say of one attribute.
struct DeclaredAttribute {
    QeCString name;            ///< as written, prefix included
    QeCString defaultValue;    ///< as it is delivered
    bool isTokenized = false;  ///< of a type other than CDATA: blanks are trimmed and come singly
    bool hasDefault = false;
    bool isDeclaredOutside = false;
};

struct DeclarationSettings {
    bool namespaces = true;
    QeXmlResolver* resolver = nullptr;
    std::span<const QeXmlNamedEntity> named;
    std::uint64_t expansionFactor = 100;
    std::uint64_t freeExpansion = 8 * 1024 * 1024;
    std::size_t entityDepth = 256;
};

/// What the document type declaration says by itself.
struct DocumentType {
    QeCString name, publicId, systemId, internalSubset;
    bool hasExternalId = false;
    bool hasInternalSubset = false;
};

/// A reference in a value that was left as written: where it stands in the delivered value.
struct LeftReference {
    std::size_t offset, length;
};

}  // namespace tessit
