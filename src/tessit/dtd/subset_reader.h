#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <corvel/c_string.h>
#include <tessit/dtd/declarations.h>
#include <tessit/dtd/subset_text.h>

namespace tessit {

/// Reads a document type declaration: its own grammar, that of the subsets, and of each kind
/// of declaration. What it says goes to `Declarations`, and to the document type what a program is told of it.
class SubsetReader {
public:
    SubsetReader(Declarations& into, const StrictScanner& behindBegin) noexcept
        : declarations(into), namespaces(into.getSettings().namespaces), text(into, behindBegin) {}

    const SubsetText& getText() const noexcept { return text; }

    /// Entered just after "<!DOCTYPE"; passes the closing '>'. Returns how the external subset is identified.
    ExternalId readDocumentType(QeXmlDocumentType& type);

    /// Reads the external subset, if it is available, once the document type was read.
    void readExternalSubset(Entity& subset);

private:
    // the subsets: document_type.cpp
    void readInternalSubset(QeXmlDocumentType& type);
    void readDeclarations();
    bool readNextDeclaration();
    void readMarkup();
    [[noreturn]] void refuseMarkup();
    void passComment() { text.readComment(); }
    void readInstruction() {
        const auto [target, data] = text.readInstruction(namespaces);
        declarations.holdName(text.getSource(), target);
        declarations.addInstruction({target, data});
    }
    void readConditionalSection();
    void passIgnored();
    void closeSection();

    // what several declarations have: identifiers.cpp
    enum class SystemPart { Required, Optional };
    ExternalId readExternalId(Rule rule, SystemPart systemPart);
    void readPublicId(QeCString& publicId);
    void readSystemId(QeCString& systemId);
    void endDeclaration(Rule rule);

    // element_declaration.cpp
    void readElementDeclaration();
    void readContentModel();
    void readMixedContent();
    bool readNextParticle(std::vector<char>& groups);
    bool readConnector(std::vector<char>& groups);
    void passOccurrence() noexcept;

    // attribute_list.cpp
    void readAttributeListDeclaration();
    void readAttribute(AttributeList* list);
    bool readAttributeType();
    void readEnumeration(bool areNames);
    std::optional<DeclaredAttribute::Default> readDefault(bool isTokenized);

    // entity_declaration.cpp
    struct EntityDefinition {
        QeCString text;  // of an internal one
        std::unique_ptr<Entity::External> external;
        bool isComplete = true;  // whether all that its text refers to could be read
    };
    void readEntityDeclaration();
    EntityDefinition readEntityDefinition(bool isParameter);
    static void define(Entity& entity, EntityDefinition definition);
    bool readEntityValue(QeCString& value);
    void readNotationName(QeCString& notation);
    void readNotationDeclaration();

    QeXmlDocumentType* documentType = nullptr;
    Declarations& declarations;
    const bool namespaces;
    SubsetText text;
    const char* externalIdPlace = nullptr;
};

}  // namespace tessit
