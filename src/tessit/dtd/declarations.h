#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <span>
#include <string_view>
#include <vector>

#include <corvel/c_string.h>
#include <tessit/dtd/attribute_list.h>
#include <tessit/dtd/entities.h>
#include <tessit/dtd/xml_document_type.h>
#include <tessit/rules/source.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

/// A processing instruction among the declarations: views of the text that it stands in.
struct SubsetInstruction {
    std::string_view target, data;
};

/// What the declarations of a document say: entities and attributes. Owns the texts that
/// entities bring, which stay where they are as long as it lives.
///
/// What breaks a rule is refused where it stands; nothing is of use after that. No cost here
/// is more than linear in the bytes that are read and charged, and nesting is not on the call
/// stack.
class Declarations {
public:
    /// The settings, and what they point to, live as long.
    explicit Declarations(const DeclarationSettings& declarationSettings) noexcept : settings(declarationSettings) {}
    Declarations(const Declarations&) = delete;
    Declarations& operator=(const Declarations&) = delete;

    /// What is known before the document type is read: the bytes of the document, and whether it says that it is
    /// standalone.
    void beginDocument(std::uint64_t bytes, bool standalone);

    /// More of the document was read.
    void addDocumentBytes(std::uint64_t bytes) noexcept { reading.addBytesRead(bytes); }

    /// For when the document's bytes are about to go: nobody knows any more where in them entities are declared.
    void forgetPlaces() noexcept {
        for (auto* const entities : {&general, &parameters})
            for (Entity& entity : *entities)
                if (entity.source.declaredIn != nullptr && entity.source.declaredIn->parent == nullptr)
                    entity.source.declaredIn = nullptr;
    }

    /// Entered just after "<!DOCTYPE"; passes the closing '>'. Reads the external subset too, where the resolver has
    /// it.
    void readDocumentType(StrictScanner& scanner, QeXmlDocumentType& type);

    /// Whether a reference to an entity that is not declared may be left alone. Where the internal subset is all there
    /// is, or the document is standalone, it breaks a rule; with an external subset or a reference to a parameter
    /// entity it is a matter of validity, whether these were read or not.
    bool mayLackDeclarations() const noexcept { return !isStandalone && refersElsewhere; }

    /// The instructions in the subsets, in their order; none unless the settings ask for them.
    std::span<const SubsetInstruction> instructions() const noexcept { return subsetInstructions; }

    /// What is declared for the elements of that name, as written; null when nothing is. O(length of the name).
    const AttributeList* attributesOf(std::string_view elementName) const noexcept { return lists.find(elementName); }
    bool declaresAttributes() const noexcept { return !lists.empty(); }

    /// The entity of a general reference, whose '&' is at that place, other than a predefined one. Null when it is left
    /// alone; refused when that may not be, or when it is unparsed.
    Entity* resolve(const Source& where, const char* reference, std::string_view name);

    /// The text of a predefined entity; empty when the name is none.
    static std::string_view predefined(std::string_view name) noexcept;

    /// Begins to read the replacement text of an entity for the reference at that place. Refuses it where it is
    /// recursive, nested too deep, or too much. Null when it is external and not available: it is left alone then.
    const Source* open(Entity& entity, const Source& where, const char* reference) {
        return reading.open(entity, where, reference);
    }
    void close(Entity& entity) noexcept { reading.close(entity); }

    /// Counts bytes that declarations bring: to be called for each default value that is delivered.
    void charge(std::uint64_t bytes, const Source& where, const char* place) { reading.charge(bytes, where, place); }

    /// For what is read anew, and is to count once.
    std::uint64_t countedSoFar() const noexcept { return reading.countedSoFar(); }
    void countAgainFrom(std::uint64_t count) noexcept { reading.countAgainFrom(count); }

    /// Appends what an attribute's value is that stands between quotes in `where`. References that are left alone stay
    /// as written, and are listed in `left` if there is one. Throws `Exceeded` before the value would have more than
    /// `most` bytes.
    void appendValue(QeCString& value, const Source& where, std::string_view literal, std::vector<LeftReference>* left,
                     std::uint64_t most = QeXmlLimits::None);

    /// The same with its references as written, and white space as it is delivered.
    static void appendAsWritten(QeCString& value, const Source& where, std::string_view literal);

    /// Drops the blanks around what stands in the value from a place on, and all but one of those within. What is
    /// listed in `left` stays listed.
    static void tokenize(QeCString& value, std::size_t from, std::vector<LeftReference>* left = nullptr);

    /// @name For those who read declarations
    /// @{

    const DeclarationSettings& getSettings() const noexcept { return settings; }

    /// Whether what is read now stands in the external subset or in a parameter entity.
    void setReadingOutside(bool isOutside) noexcept { isReadingOutside = isOutside; }

    /// There is an external subset, or a reference to a parameter entity.
    void noteReference() noexcept { refersElsewhere = true; }

    void addInstruction(const SubsetInstruction& instruction) {
        if (settings.keepsInstructions) subsetInstructions.push_back(instruction);
    }

    /// A parameter entity is not read: what follows is not applied, unless the document is standalone.
    void noteUnreadEntity() noexcept { lacksParameterEntity = true; }
    bool hasUnreadEntity() const noexcept { return lacksParameterEntity; }
    bool appliesDeclarations() const noexcept { return isStandalone || !lacksParameterEntity; }

    /// The parameter entity of a reference, whose '%' is at that place; null when it is not declared.
    Entity* resolveParameter(const Source& where, const char* reference, std::string_view name);

    /// Refuses a name, which stands in `where`, that is longer than the limit; of a reference, unless it is predefined.
    void holdName(const Source& where, std::string_view name) const;
    void holdReferenceName(const Source& where, std::string_view name) const {
        if (predefined(name).empty()) holdName(where, name);
    }

    /// There is one more, at that place.
    void countDeclaration(const Source& where, const char* place);

    /// A new entity, or null where the declaration is not applied: another one came first, or something was not read.
    Entity* declareEntity(std::string_view name, bool isParameter);

    /// What is declared for the elements of that name, to be added to; null where declarations are not applied.
    AttributeList* declareAttributesOf(std::string_view elementName);

    /// A new attribute, or null where another declaration of it came first.
    DeclaredAttribute* declareAttribute(AttributeList& list, std::string_view name);

    /// @}

private:
    void readSubsets(StrictScanner& scanner, QeXmlDocumentType& type);
    void noteUndeclared(const Source& where, const char* reference, std::string_view name);
    Entity* findNamed(std::string_view name);

    const DeclarationSettings& settings;
    EntityReading reading{settings};
    NamedList<Entity, std::deque> general, parameters, named;
    NamedList<AttributeList, std::deque> lists;
    Entity externalSubset;
    bool isStandalone = false;
    std::uint64_t declarationCount = 0;
    std::vector<SubsetInstruction> subsetInstructions;
    bool refersElsewhere = false, lacksParameterEntity = false;
    bool isReadingOutside = false, isReadingSubsets = false;
    std::exception_ptr undeclared;  // the first of what may be a fault, until the document type is read
    bool hasIndexOfNamed = false;
};

}  // namespace tessit
