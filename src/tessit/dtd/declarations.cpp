#include <memory>
#include <utility>

#include <tessit/dtd/declarations.h>
#include <tessit/dtd/subset_reader.h>
#include <tessit/rules/rules.h>

namespace tessit {

void Declarations::beginDocument(std::uint64_t bytes, bool standalone) {
    reading.addBytesRead(bytes);
    isStandalone = standalone;
}

// A reference to an entity that is not declared is no fault if one to a parameter entity stands anywhere: until all is
// read, nobody knows.
void Declarations::readDocumentType(StrictScanner& scanner, QeXmlDocumentType& type) {
    const auto refuseUndeclared = [this] {
        if (undeclared != nullptr && !mayLackDeclarations()) std::rethrow_exception(undeclared);
    };
    isReadingSubsets = true;
    try {
        readSubsets(scanner, type);
    } catch (const QeXmlParseError&) {
        refuseUndeclared();
        throw;
    }
    refuseUndeclared();
    isReadingSubsets = false;
}

void Declarations::readSubsets(StrictScanner& scanner, QeXmlDocumentType& type) {
    SubsetReader reader(*this, scanner);
    ExternalId id = reader.readDocumentType(type);
    scanner.goTo(reader.getText().position());
    if (!type.hasExternalId) return;
    externalSubset.isExternal = true;
    externalSubset.source.cutBy = Rule::DeclarationNesting;
    externalSubset.external = std::make_unique<Entity::External>();
    externalSubset.external->id = std::move(id);
    reader.readExternalSubset(externalSubset);
}

Entity* Declarations::resolve(const Source& where, const char* reference, std::string_view name) {
    Entity* const entity = general.find(name);
    if (entity == nullptr) {
        // That declarations name an entity in vain is no fault of the document.
        if (!mayLackDeclarations() && !isReadingOutside) noteUndeclared(where, reference, name);
        return findNamed(name);
    }
    if (isStandalone && entity->isDeclaredOutside && !isReadingOutside)
        refuse(where, reference, Rule::UndeclaredEntity, name);
    if (entity->isUnparsed) refuse(where, reference, Rule::UnparsedEntity, name, noteOfDeclaration(entity->source));
    return entity;
}

void Declarations::noteUndeclared(const Source& where, const char* reference, std::string_view name) {
    try {
        refuse(where, reference, Rule::UndeclaredEntity, name);
    } catch (const QeXmlParseError&) {
        if (isStandalone || !isReadingSubsets) throw;
        if (undeclared == nullptr) undeclared = std::current_exception();
    }
}

std::string_view Declarations::predefined(std::string_view name) noexcept {
    if (name == "amp") return "&";
    if (name == "lt") return "<";
    if (name == "gt") return ">";
    if (name == "apos") return "'";
    if (name == "quot") return "\"";
    return {};
}

Entity* Declarations::findNamed(std::string_view name) {
    if (!hasIndexOfNamed) {
        for (const QeXmlNamedEntity& given : settings.named) {
            if (named.find(given.name) != nullptr) continue;
            Entity& entity = named.append(given.name);
            entity.source.text = given.text;
            entity.source.hasPlaces = false;
            entity.isPlainText = true;
        }
        hasIndexOfNamed = true;
    }
    return named.find(name);
}

Entity* Declarations::resolveParameter(const Source& where, const char* reference, std::string_view name) {
    noteReference();
    Entity* const entity = parameters.find(name);
    if (entity == nullptr && isStandalone && !isReadingOutside) refuse(where, reference, Rule::UndeclaredEntity, name);
    return entity;
}

void Declarations::holdName(const Source& where, std::string_view name) const {
    if (name.size() > settings.limits->name) refuseLimit(where, name.data(), *settings.limits, Limit::Name);
}

void Declarations::countDeclaration(const Source& where, const char* place) {
    if (++declarationCount > settings.limits->declarations)
        refuseLimit(where, place, *settings.limits, Limit::Declarations);
}

Entity* Declarations::declareEntity(std::string_view name, bool isParameter) {
    auto& entities = isParameter ? parameters : general;
    if (!appliesDeclarations() || entities.find(name) != nullptr) return nullptr;
    Entity& entity = entities.append(name);
    entity.isDeclaredOutside = isReadingOutside;
    entity.source.cutBy = isParameter ? Rule::DeclarationNesting : Rule::EntityNesting;
    return &entity;
}

AttributeList* Declarations::declareAttributesOf(std::string_view elementName) {
    if (!appliesDeclarations()) return nullptr;
    AttributeList* const list = lists.find(elementName);
    return list != nullptr ? list : &lists.append(elementName);
}

DeclaredAttribute* Declarations::declareAttribute(AttributeList& list, std::string_view name) {
    if (list.find(name) != nullptr) return nullptr;
    DeclaredAttribute& attribute = list.append(name);
    attribute.isDeclaredOutside = isReadingOutside;
    return &attribute;
}

}  // namespace tessit
