// Declarations of entities and notations.

#include <memory>
#include <utility>

#include <tessit/dtd/expansion.h>
#include <tessit/dtd/subset_reader.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

constexpr Rule Broken = Rule::EntityDeclaration;

// What an entity is declared to be: character references are read, and parameter entities
// where they may stand. References to general entities are left for the text to come.
class EntityValue : Expansion {
public:
    EntityValue(Declarations& from, QeCString& result, const SubsetText& where, std::string_view literal) noexcept
        : Expansion(from, result, where.getSource(), literal), mayRefer(where.isOutside()) {}

    /// False when something in it is not available.
    bool append() {
        do {
            while (appendUpTo('&', '%', '\r'))
                appendSpecial();
        } while (leaveText());
        return isComplete;
    }

private:
    void appendSpecial() {
        switch (*here.position()) {
            case '&':
                return appendReference();
            case '%':
                return enterParameterEntity();
            default:
                text.append(passLineEnd() ? '\n' : '\r');
        }
    }

    void appendReference() {
        const char* const reference = here.position();
        if (here.passIf("&#")) return appendCharacter(text, here.readCharacterReference());
        here.take();
        const std::string_view name = here.readReferenceName(declarations.getSettings().namespaces);
        declarations.holdReferenceName(here.getSource(), name);
        text.append(reference, static_cast<std::size_t>(here.position() - reference));
    }

    void enterParameterEntity() {
        const char* const reference = here.position();
        if (!mayRefer) here.refuseHere(Rule::ParameterEntity);
        here.take();
        const std::string_view name =
            here.readReferenceName(declarations.getSettings().namespaces, Rule::ParameterEntity);
        declarations.holdName(here.getSource(), name);
        Entity* const entity = declarations.resolveParameter(here.getSource(), reference, name);
        if (entity != nullptr && enterText(*entity, reference)) return;
        declarations.noteUnreadEntity();
        isComplete = false;
    }

    const bool mayRefer;
    bool isComplete = true;
};

}  // namespace

// Entered just after "<!ENTITY".
void SubsetReader::readEntityDeclaration() {
    text.requireBlank();
    const bool isParameter = text.passIf("%");
    if (isParameter) text.requireBlank();
    const std::string_view name = text.readNCName(Broken);
    const Source* const where = &text.getSource();
    text.requireBlank();

    EntityDefinition definition = readEntityDefinition(isParameter);
    endDeclaration(Broken);
    if (!definition.isComplete) return;
    Entity* const entity = declarations.declareEntity(name, isParameter);
    if (entity == nullptr) return;
    entity->source.declaredIn = where;
    entity->source.declaredAt = name.data();
    define(*entity, std::move(definition));
    if (!entity->isUnparsed) return;
    const Entity::External& external = *entity->external;
    documentType->unparsedEntities.push_back(
        {entity->name, external.id.publicId, external.id.systemId, external.notation});
}

SubsetReader::EntityDefinition SubsetReader::readEntityDefinition(bool isParameter) {
    EntityDefinition definition;
    if (text.isAt('"') || text.isAt('\'')) {
        definition.isComplete = readEntityValue(definition.text);
        return definition;
    }
    definition.external = std::make_unique<Entity::External>();
    definition.external->id = readExternalId(Broken, SystemPart::Required);
    if (!isParameter) readNotationName(definition.external->notation);
    return definition;
}

void SubsetReader::define(Entity& entity, EntityDefinition definition) {
    entity.isExternal = definition.external != nullptr;
    entity.isUnparsed = entity.isExternal && !definition.external->notation.empty();
    entity.external = std::move(definition.external);
    if (entity.isExternal) return;
    entity.text = std::move(definition.text);
    makeInternal(entity);
}

bool SubsetReader::readEntityValue(QeCString& value) {
    const std::string_view literal = text.readLiteral(Broken);
    return EntityValue(declarations, value, text, literal).append();
}

// Of an unparsed entity; of another one nothing is read.
void SubsetReader::readNotationName(QeCString& notation) {
    const bool isApart = text.passBlank();
    const char* const place = text.position();
    if (!text.passIf("NDATA")) return;
    if (!isApart) text.refuseAt(place, Rule::WhiteSpace);
    text.requireBlank();
    notation.assign(text.readNCName(Broken));
}

// Entered just after "<!NOTATION".
void SubsetReader::readNotationDeclaration() {
    text.requireBlank();
    const std::string_view name = text.readNCName(Rule::NotationDeclaration);
    text.requireBlank();
    const ExternalId id = readExternalId(Rule::NotationDeclaration, SystemPart::Optional);
    endDeclaration(Rule::NotationDeclaration);
    if (declarations.appliesDeclarations())
        documentType->notations.push_back({QeCString(name), id.publicId, id.systemId});
}

}  // namespace tessit
