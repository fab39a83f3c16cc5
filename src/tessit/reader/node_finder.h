#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <tessit/reader/xml_reader_options.h>

namespace tessit {

/// Finds up to where the nodes of a text are whole, as the text comes piece by piece: so that none has to be read
/// before its last byte is there. Reads nothing, and refuses nothing.
///
/// Looks at each byte a constant number of times, in whatever pieces they come: what needs thought in a text is little
/// besides markup that is neither tag nor text, and the last tag. A tag ends at a '>' outside of its values, a text
/// where the next tag begins, or a reference to an entity, which may bring one; whatever ends in an error counts as
/// whole where a reader is sure to raise it.
///
/// Places are offsets from the text's begin, which moves: `drop`.
class NodeFinder {
public:
    static constexpr std::size_t Everything = SIZE_MAX;

    enum class Where : std::uint8_t {
        Begin,       ///< at the beginning of a document
        Outside,     ///< in front of the root element, or behind it in a conforming reader
        Content,     ///< between nodes, as behind a tag
        Declaration  ///< behind the encoding in an XML declaration
    };

    /// What counts as a node besides tags and texts: nothing for a lenient reader.
    NodeFinder(bool conforming, QeXmlNodes deliveredNodes) noexcept : isConforming(conforming), nodes(deliveredNodes) {}

    /// Begins at a place in the text. Lenient readers can leave references in values as they are.
    void begin(std::size_t place, Where where, bool expandsReferences) noexcept;
    bool expands() const noexcept { return expandsValues; }

    /// Goes on in a text that has become longer.
    void look(std::string_view text) noexcept;

    /// So many bytes of the text are gone from its front; all that was read.
    void drop(std::size_t count) noexcept;

    /// A node that begins in front of this place can be read.
    std::size_t nodesUpTo() const noexcept { return wholeNodes; }

    /// All up to the next tag, or reference to an entity, can be read from a place in front of this one; outside of the
    /// root element, all up to the end of what comes next.
    std::size_t textsUpTo() const noexcept { return wholeTexts; }

    /// Whether a node that is neither tag nor text begins at this place, and is not whole: the text in front ends
    /// there.
    bool isInNodeAt(std::size_t place) const noexcept { return isNode && tagState == Tag::None && markup == place; }

private:
    enum class State : std::uint8_t {
        Between,
        Reference,
        Markup,  // "<!" or "<?"
        Target,
        Instruction,
        LenientDeclaration,
        StrictDeclaration,
        Comment,
        SectionName,
        Section,
        DocumentTypeName,
        LenientDocumentType,
        DocumentType,
        Subset,
        SubsetMarkup,
        SubsetInstruction,
        SubsetDeclaration,
        Literal,
        Broken
    };
    enum class Tag : std::uint8_t { None, Begin, EndTag, Outside, Equals, Value, Reference, Entity, Whole, Broken };
    enum class Declaration : std::uint8_t { VersionSpace, EqualsSpace, QuoteSpace, Value, NextSpace, Skip };

    bool step() noexcept;
    bool passBetween() noexcept;
    bool passReferences() noexcept;
    bool isInTag() noexcept;
    bool passShortReference() noexcept;
    bool passOutside() noexcept;
    void noteTags(std::size_t from, std::size_t to) noexcept;
    void noteTag(std::size_t place) noexcept;
    void noteEntities(std::size_t upTo) noexcept;
    bool passMarkup() noexcept;
    bool passLenientMarkup() noexcept;
    bool passStrictMarkup() noexcept;
    bool passTarget() noexcept;
    bool mayBeDeclared(bool isThere) const noexcept;
    bool passName() noexcept;
    bool passUpTo(std::string_view end, State next) noexcept;
    bool passComment() noexcept;
    bool passSectionName() noexcept;
    bool passDocumentTypeName() noexcept;
    bool passLenientDeclaration() noexcept;
    bool passLenientDocumentType() noexcept;
    bool passDocumentType() noexcept;
    bool passSubset() noexcept;
    bool passSubsetMarkup() noexcept;
    bool passUpToEnd(State next) noexcept;
    bool passLiteral() noexcept;
    template <typename... Byte>
    bool find(Byte... bytes) noexcept;
    template <typename... Byte>
    bool findInTag(std::size_t upTo, Byte... bytes) noexcept;

    void lookAtTag(std::size_t upTo) noexcept;
    bool stepInTag(std::size_t upTo) noexcept;
    bool isAnnounced(std::size_t place) const noexcept;
    bool isCut(std::size_t place) const noexcept;
    void conclude() noexcept;

    bool enter(State next) noexcept {
        state = next;
        start = at;
        return true;
    }
    bool leave(State next) noexcept { return next == State::Between ? endMarkup() : enter(next); }
    bool enterComment(State behind) noexcept;
    bool enterLiteral() noexcept;
    bool endMarkup() noexcept;
    bool breakHere() noexcept;
    void noteNode(QeXmlNodes node) noexcept;
    void passAlone() noexcept;
    std::size_t left() const noexcept { return text.size() - at; }
    std::string_view passed() const noexcept { return text.substr(start, at - start); }

    const bool isConforming;
    const QeXmlNodes nodes;
    bool expandsValues = true;
    bool isOutside = false;
    bool isNode = false;  // whether the markup that is passed is a node of its own, or passed by readers like one
    std::string_view text;

    State state = State::Between;
    State behindComment = State::Between;
    State behindLiteral = State::Between;
    Declaration declaration = Declaration::VersionSpace;
    char quote = '\0';      // of the literal that is passed
    std::size_t count = 0;  // of bytes that are still to be skipped, or hyphens that were passed
    std::ptrdiff_t brackets = 0;
    std::size_t at = 0;      // all in front of it was looked at
    std::size_t start = 0;   // of what is passed
    std::size_t markup = 0;  // its '<'
    bool isDocumentBegin = false;

    Tag tagState = Tag::None;
    char tagQuote = '\0';
    std::size_t tag = 0;        // the last one, or another node, or a reference to an entity
    std::size_t tagAt = 0;      // all of it in front of this was looked at
    std::size_t textEnd = 0;    // behind the '<' of the last one, or a reference; 0 where there was none
    std::size_t textAt = 0;     // texts were looked at for references in front of this
    std::size_t markupEnd = 0;  // of the last markup outside of the root element

    std::size_t wholeNodes = 0, wholeTexts = 0;
};

}  // namespace tessit
