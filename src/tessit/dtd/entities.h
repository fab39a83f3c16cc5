#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <string_view>

#include <corvel/c_string.h>
#include <tessit/dtd/named_list.h>
#include <tessit/dtd/xml_resolver.h>
#include <tessit/rules/decoded_text.h>
#include <tessit/rules/limits.h>
#include <tessit/rules/source.h>

namespace tessit {

struct DeclarationSettings {
    bool namespaces = true;
    QeXmlResolver* resolver = nullptr;
    std::span<const QeXmlNamedEntity> named = {};
    std::uint64_t expansionFactor = 100;
    std::uint64_t freeExpansion = 8 * 1024 * 1024;
    std::size_t entityDepth = 256;
    const QeXmlLimits* limits = &NoLimits;
    bool keepsInstructions = false;  ///< those among the declarations
};

struct ExternalId {
    QeCString publicId, systemId;
    QeXmlPlace place;  ///< where it stands: relative identifiers are relative to the source
};

/// A general or parameter entity that was declared, or the external subset.
struct Entity {
    QeCString name;
    Source source;            ///< the replacement text; of an external one only once it was read
    bool isExternal = false;  ///< declared by an identifier, unparsed ones included
    bool isUnparsed = false;
    bool isDeclaredOutside = false;  ///< in the external subset or a parameter entity
    bool isPlainText = false;        ///< internal, without '<', '&' and "]]>": can be taken as it is
    bool isOpen = false;             ///< is being read: a reference to it is recursive

    /// What an external one has besides.
    struct External {
        ExternalId id;
        QeCString notation;  // of an unparsed one
        QeCString bytes;
        DecodedText decoded;
        bool wasAskedFor = false, isAvailable = false;
    };
    QeCString text;                      // of an internal one
    std::unique_ptr<External> external;  // of another one
};

/// Makes an entity one whose replacement text is that of its `text`.
void makeInternal(Entity& entity) noexcept;

/// The entities that are being read, and the bounds of what they may bring.
class EntityReading {
public:
    explicit EntityReading(const DeclarationSettings& readSettings) noexcept : settings(readSettings) {}

    /// That many bytes more of the document, or of entities from outside, were read.
    void addBytesRead(std::uint64_t bytes) noexcept;

    /// Counts bytes that entities and defaults bring; refuses more than there may be.
    void charge(std::uint64_t bytes, const Source& where, const char* place);

    /// How much was counted; what was counted since counts no more.
    std::uint64_t countedSoFar() const noexcept { return charged; }
    void countAgainFrom(std::uint64_t count) noexcept { charged = count; }

    /// Begins to read the replacement text of an entity for the reference at that place, which
    /// outlives the reading. Refuses it where it is recursive, too deep, or too much. Null when
    /// an external one is not available, for which the resolver is asked once.
    const Source* open(Entity& entity, const Source& where, const char* reference);

    /// Ends what `open` began.
    void close(Entity& entity) noexcept {
        entity.isOpen = false;
        --openEntities;
    }

private:
    bool load(Entity& entity);
    bool askResolver(Entity::External& external, QeCString& name, QeCString& encoding);

    const DeclarationSettings& settings;
    std::uint64_t bytesRead = 0, charged = 0;
    std::uint64_t mostCharged = settings.freeExpansion;
    std::size_t openEntities = 0;
};

}  // namespace tessit
