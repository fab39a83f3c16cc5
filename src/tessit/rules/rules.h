#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include <tessit/errors/xml_error.h>
#include <tessit/rules/source.h>

/// What a conforming reader refuses. Each rule has a name that stays, a message, and one
/// place in the code that finds it broken.
namespace tessit {

enum class Rule : std::uint8_t {
    None,
    // the document as bytes and characters
    Character,
    MalformedEncoding,
    UnknownEncoding,
    EncodingMismatch,
    UnfinishedDocument,
    // the document as a whole
    XmlDeclaration,
    XmlDeclarationPlace,
    SecondRoot,
    TextOutsideRoot,
    CDATAOutsideRoot,
    Markup,
    // tags and what stands between them
    Name,
    WhiteSpace,
    Attribute,
    LessThanInValue,
    DuplicateAttribute,
    EndTag,
    CDATAEndInText,
    HyphensInComment,
    InstructionTarget,
    // references
    Reference,
    CharacterReference,
    UndeclaredEntity,
    UnparsedEntity,
    ExternalEntityInValue,
    RecursiveEntity,
    EntityNesting,
    EntityExpansion,
    EntityDepth,
    // declarations
    DocumentType,
    DocumentTypePlace,
    EntityDeclaration,
    ElementDeclaration,
    AttributeListDeclaration,
    NotationDeclaration,
    Literal,
    ParameterEntity,
    DeclarationNesting,
    ConditionalSection,
    TextDeclaration,
    // namespaces
    Colon,
    UnboundPrefix,
    EmptyPrefixDeclaration,
    ReservedPrefix,
    ReservedNamespace,
    Last = ReservedNamespace
};

/// The name of a rule, as programs and pages know it: `duplicate-attribute`.
std::string_view nameOf(Rule rule) noexcept;

/// What is said where it is broken.
const char* messageOf(Rule rule) noexcept;

/// Lines and columns of a place, and the name of the source in which they count: for one that has no places of its own,
/// those of the reference that brought it. O(bytes since the last place that was asked for, if that was in front).
QeXmlPlace placeIn(const Source& source, const char* place);

/// The place in a source that has places which has this position; null if none has.
const char* findIn(const Source& source, const QeXmlPosition& position);

/// How many bytes stand in front of a place in a source that has places, and the place that has so many; null if none
/// has. O(1).
std::uint64_t offsetIn(const Source& source, const char* place);
const char* placeOf(const Source& source, std::uint64_t offset);

/// The line of a place, told as `placeIn` tells places. O(1).
QeXmlExcerpt excerptIn(const Source& source, const char* place);

/// A place with its line, and what is to be said of it.
QeXmlNote noteIn(const Source& source, const char* place, const char* text);

/// Has questions about places not far behind this one cost little, in any order.
void dropAnchor(const Source& source, const char* place);

/// What stands in front of the place is about to leave the source's text: returns the place's position. Then the rest
/// of it is that text, and begins there: places go on counting.
QeXmlPosition leaveBehind(const Source& source, const char* place);
void goOnIn(const Source& source, std::string_view text, const QeXmlPosition& beginning) noexcept;

/// Throws `QeXmlParseError`: what the rule says, with what was found there, and the place. Where the source is what an
/// entity brought, the place of the reference goes along as the second place, unless another is given; for one that
/// has no places of its own, it is the place.
[[noreturn]] void refuse(const Source& source, const char* place, Rule rule, std::string_view found = {},
                         std::optional<QeXmlNote>&& note = {});

/// The same with all that is to be said.
[[noreturn]] void refuseSaying(const Source& source, const char* place, Rule rule, const QeCString& message,
                               std::optional<QeXmlNote>&& note);

/// Refuses an end tag whose name is not that of the innermost element; the note is where that was opened.
[[noreturn]] void refuseEndTag(const Source& source, const char* place, std::string_view name, std::string_view opened,
                               std::optional<QeXmlNote>&& note);

/// The reference that brought the entity from outside in which a place is; nothing where it is in the document.
std::optional<QeXmlNote> noteOfReference(const Source& source);

/// The place where the entity is declared that the text is of; nothing where nobody knows.
std::optional<QeXmlNote> noteOfDeclaration(const Source& source);

/// What is quoted in messages: a name can be as long as the document.
std::string_view quoted(std::string_view text) noexcept;

/// So many bytes of a text, or fewer where that would cut a character.
std::string_view beginOf(std::string_view text, std::size_t most) noexcept;

/// The same for a construct that was not whole where the source ended: what cannot be read there, or that it ended.
[[noreturn]] void refuseEnd(const Source& source);

}  // namespace tessit
