// The replacement texts of entities: how they are opened, and what bounds them.

#include <algorithm>
#include <limits>
#include <utility>

#include <tessit/dtd/entities.h>
#include <tessit/rules/rules.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

namespace {

struct IdForResolver final : QeXmlExternalId {
    explicit IdForResolver(const ExternalId& id) : QeXmlExternalId(id.publicId, id.systemId, id.place) {}
};

struct ResolvedEntity final : QeXmlExternalEntity {
    using QeXmlExternalEntity::bytes;
    using QeXmlExternalEntity::encoding;
    using QeXmlExternalEntity::name;
};

// What an external entity is read as: its text, behind the text declaration.
void passTextDeclaration(Source& source) {
    StrictScanner scanner(source, source.begin());
    if (!scanner.isAtDeclaration()) return;
    scanner.readTextDeclaration();
    source.linesFrom = source.begin();
    source.text.remove_prefix(static_cast<std::size_t>(scanner.position() - source.begin()));
}

}  // namespace

void makeInternal(Entity& entity) noexcept {
    const std::string_view text(entity.text);
    entity.source.text = text;
    entity.source.hasPlaces = false;
    entity.isPlainText =
        text.find_first_of("<&") == std::string_view::npos && text.find("]]>") == std::string_view::npos;
}

void EntityReading::addBytesRead(std::uint64_t bytes) noexcept {
    bytesRead += bytes;
    const bool isBeyondAll =
        bytesRead != 0 && settings.expansionFactor > std::numeric_limits<std::uint64_t>::max() / bytesRead;
    const std::uint64_t byFactor =
        isBeyondAll ? std::numeric_limits<std::uint64_t>::max() : settings.expansionFactor * bytesRead;
    mostCharged = std::max(settings.freeExpansion, byFactor);
}

void EntityReading::charge(std::uint64_t bytes, const Source& where, const char* place) {
    const QeXmlLimits& limits = *settings.limits;
    if (bytes > limits.replacementText - std::min(charged, limits.replacementText))
        refuseLimit(where, place, limits, Limit::ReplacementText);
    if (bytes > mostCharged - charged) refuse(where, place, Rule::EntityExpansion);
    charged += bytes;
}

const Source* EntityReading::open(Entity& entity, const Source& where, const char* reference) {
    if (entity.isOpen) refuse(where, reference, Rule::RecursiveEntity, entity.name, noteOfDeclaration(entity.source));
    if (openEntities >= settings.limits->entityDepth)
        refuseLimit(where, reference, *settings.limits, Limit::EntityDepth);
    if (openEntities >= settings.entityDepth)
        refuse(where, reference, Rule::EntityDepth, entity.name, noteOfDeclaration(entity.source));
    entity.source.parent = &where;
    entity.source.reference = reference;
    if (entity.isExternal && !load(entity)) return nullptr;
    charge(entity.source.text.size() + 1, where, reference);  // an empty text is not for nothing
    entity.isOpen = true;
    ++openEntities;
    return &entity.source;
}

// Whether the text of an external entity is there.
bool EntityReading::load(Entity& entity) {
    Entity::External& external = *entity.external;
    if (external.wasAskedFor) return external.isAvailable;
    external.wasAskedFor = true;
    QeCString name, encoding;
    if (!askResolver(external, name, encoding)) return false;
    addBytesRead(external.bytes.length());
    decodeText(external.decoded, external.bytes, encoding);
    const Source& decoded = external.decoded.source;
    entity.source.text = decoded.text;
    entity.source.endsBy = decoded.endsBy;
    entity.source.foundAtEnd = decoded.foundAtEnd;
    entity.source.behind = decoded.behind;
    entity.source.inputUnits = decoded.inputUnits;
    entity.source.markLength = decoded.markLength;
    entity.source.name = std::move(name);
    passTextDeclaration(entity.source);
    return external.isAvailable = true;
}

bool EntityReading::askResolver(Entity::External& external, QeCString& name, QeCString& encoding) {
    if (settings.resolver == nullptr) return false;
    const IdForResolver id(external.id);
    ResolvedEntity found;
    if (!settings.resolver->resolve(id, found)) return false;
    external.bytes = std::move(found.bytes);
    encoding = std::move(found.encoding);
    name = std::move(found.name);
    if (name.empty()) name = external.id.systemId;
    return true;
}

}  // namespace tessit
