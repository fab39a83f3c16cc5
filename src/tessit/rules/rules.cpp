#include <algorithm>
#include <iterator>
#include <utility>

#include <tessit/errors/error_access.h>
#include <tessit/rules/excerpt.h>
#include <tessit/rules/rules.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

namespace {

struct RuleText {
    Rule rule;
    std::string_view name;
    const char* message;
};

constexpr RuleText Texts[] = {
    {Rule::None, "none", ""},
    {Rule::Character, "character", "a character that XML does not allow"},
    {Rule::MalformedEncoding, "malformed-encoding", "bytes that mean nothing in the encoding"},
    {Rule::UnknownEncoding, "unknown-encoding", "an encoding that is not known"},
    {Rule::EncodingMismatch, "encoding-mismatch", "the document is not in the encoding that it declares"},
    {Rule::UnfinishedDocument, "unfinished-document", "the document ends before it is complete"},
    {Rule::XmlDeclaration, "xml-declaration", "an XML declaration is written wrong"},
    {Rule::XmlDeclarationPlace, "xml-declaration-place", "an XML declaration stands elsewhere than at the beginning"},
    {Rule::SecondRoot, "second-root", "a second root element"},
    {Rule::TextOutsideRoot, "text-outside-root", "text outside the root element"},
    {Rule::CDATAOutsideRoot, "cdata-outside-root", "a CDATA section outside the root element"},
    {Rule::Markup, "markup", "'<!' that begins nothing that may stand here"},
    {Rule::Name, "name", "a name was expected"},
    {Rule::WhiteSpace, "white-space", "white space was expected"},
    {Rule::Attribute, "attribute", "an attribute, '>' or '/>' was expected"},
    {Rule::LessThanInValue, "less-than-in-value", "'<' in an attribute's value"},
    {Rule::DuplicateAttribute, "duplicate-attribute", "an attribute stands twice in a tag"},
    {Rule::EndTag, "end-tag", "an end tag that does not close the innermost element"},
    {Rule::CDATAEndInText, "cdata-end-in-text", "']]>' in text"},
    {Rule::HyphensInComment, "hyphens-in-comment", "'--' in a comment"},
    {Rule::InstructionTarget, "instruction-target", "a processing instruction's target is wrong"},
    {Rule::Reference, "reference", "'&' that begins no reference"},
    {Rule::CharacterReference, "character-reference", "a reference to a character that XML does not allow"},
    {Rule::UndeclaredEntity, "undeclared-entity", "an entity that is not declared"},
    {Rule::UnparsedEntity, "unparsed-entity", "a reference to an unparsed entity"},
    {Rule::ExternalEntityInValue, "external-entity-in-value", "a reference to an external entity in a value"},
    {Rule::RecursiveEntity, "recursive-entity", "an entity that refers to itself"},
    {Rule::EntityNesting, "entity-nesting", "markup that begins and ends in different entities"},
    {Rule::EntityExpansion, "entity-expansion", "entities bring more text than they may"},
    {Rule::EntityDepth, "entity-depth", "entities are nested deeper than they may be"},
    {Rule::DocumentType, "document-type", "a document type declaration is written wrong"},
    {Rule::DocumentTypePlace, "document-type-place", "a document type declaration that may not stand here"},
    {Rule::EntityDeclaration, "entity-declaration", "an entity declaration is written wrong"},
    {Rule::ElementDeclaration, "element-declaration", "an element declaration is written wrong"},
    {Rule::AttributeListDeclaration, "attribute-list-declaration", "an attribute-list declaration is written wrong"},
    {Rule::NotationDeclaration, "notation-declaration", "a notation declaration is written wrong"},
    {Rule::Literal, "literal", "a quoted literal was expected, of characters that may stand in it"},
    {Rule::ParameterEntity, "parameter-entity",
     "'%' that begins no reference to a parameter entity, or one that may not stand here"},
    {Rule::DeclarationNesting, "declaration-nesting", "a declaration that begins and ends in different entities"},
    {Rule::ConditionalSection, "conditional-section", "a conditional section is written wrong, or may not stand here"},
    {Rule::TextDeclaration, "text-declaration", "a text declaration is written wrong"},
    {Rule::Colon, "colon", "a colon where namespaces allow none"},
    {Rule::UnboundPrefix, "unbound-prefix", "a prefix that is not bound to a namespace"},
    {Rule::EmptyPrefixDeclaration, "empty-prefix-declaration", "a prefix that is declared to be in no namespace"},
    {Rule::ReservedPrefix, "reserved-prefix", "the prefixes xml and xmlns are not declared otherwise"},
    {Rule::ReservedNamespace, "reserved-namespace", "the namespaces of xml and xmlns have no other prefix"},
};

consteval bool isInOrder() {
    std::size_t number = 0;
    for (const RuleText& row : Texts)
        if (row.rule != static_cast<Rule>(number++)) return false;
    return std::size(Texts) == static_cast<std::size_t>(Rule::Last) + 1;
}
static_assert(isInOrder());

const RuleText& textOf(Rule rule) noexcept {
    return Texts[static_cast<std::size_t>(rule)];
}

constexpr std::size_t LongestQuoted = 100;

// Whether a rule's message says what was expected, so that what stands there instead is to be said.
bool expectsSomething(Rule rule) noexcept {
    return rule == Rule::Name || rule == Rule::WhiteSpace || rule == Rule::Attribute || rule == Rule::Literal;
}

void appendCharacterAt(QeCString& message, const Source& source, const char* place) {
    if (place == source.end()) return;
    message += ", found ";
    if (std::string_view(" \t\r\n").find(*place) != std::string_view::npos) {
        message += "white space";
        return;
    }
    message += '\'';
    message += std::string_view(place, characterAt(place).length);
    message += '\'';
}

QeCString messageFor(const Source& source, const char* place, Rule rule, std::string_view found) {
    QeCString message(textOf(rule).message);
    if (found.empty()) {
        if (expectsSomething(rule)) appendCharacterAt(message, source, place);
        return message;
    }
    message += ": ";
    message += quoted(found);
    if (quoted(found).size() != found.size()) message += "...";
    return message;
}

// A mark is three bytes of a text in UTF-8, whatever it was in the input.
TextPlaces& placesOf(const Source& source) {
    if (source.isCounted) return *source.places;
    constexpr std::uint64_t MarkInText = 3;
    const char* const first = source.linesFrom != nullptr ? source.linesFrom : source.begin();
    QeXmlPosition beginning;
    if (source.markLength != 0) beginning.offset = MarkInText;
    beginning.inputOffset = source.markLength;
    if (source.places == nullptr) source.places = std::make_unique<TextPlaces>();
    source.isCounted = true;
    source.places->begin({first, static_cast<std::size_t>(source.end() - first)}, LineEnds::All, source.inputUnits,
                         beginning);
    return *source.places;
}

struct PlaceInSource {
    const Source* source;
    const char* place;
};

// Where places are told: up to the reference, from a text that has none.
PlaceInSource toldIn(const Source& source, const char* place) {
    PlaceInSource told{&source, place};
    while (!told.source->hasPlaces && told.source->parent != nullptr)
        told = {told.source->parent, told.source->reference};
    return told;
}

QeXmlPlace positionOf(const PlaceInSource& told) {
    return {told.source->name, placesOf(*told.source).at(told.place)};
}

// Behind a fault of characters, the line is shown all the same, as far as its bytes are there.
QeXmlExcerpt excerptOf(const PlaceInSource& told) {
    const Source& source = *told.source;
    const char* const first = source.linesFrom != nullptr ? source.linesFrom : source.begin();
    const char* const last = source.behind != nullptr ? source.behind : source.end();
    QeXmlExcerpt excerpt = excerptAt({first, static_cast<std::size_t>(last - first)}, told.place, LineEnds::All);
    const bool reachesLast = told.place + (excerpt.text.length() - excerpt.offset) == last;
    if (reachesLast && source.behind == nullptr) excerpt.isCutBehind = source.endsBy != Rule::None;
    return excerpt;
}

// The text whose reference a reader would want to see besides: that of the entity from outside in which the place is.
const Source* outsideOf(const Source& source) {
    const Source* at = &source;
    while (!at->hasPlaces && at->parent != nullptr)
        at = at->parent;
    return at->parent == nullptr ? nullptr : at;
}

}  // namespace

std::string_view nameOf(Rule rule) noexcept {
    return textOf(rule).name;
}

const char* messageOf(Rule rule) noexcept {
    return textOf(rule).message;
}

QeXmlPlace placeIn(const Source& source, const char* place) {
    return positionOf(toldIn(source, place));
}

const char* findIn(const Source& source, const QeXmlPosition& position) {
    return placesOf(source).find(position);
}

std::uint64_t offsetIn(const Source& source, const char* place) {
    return placesOf(source).offsetAt(place);
}

const char* placeOf(const Source& source, std::uint64_t offset) {
    return placesOf(source).placeOf(offset);
}

QeXmlExcerpt excerptIn(const Source& source, const char* place) {
    return excerptOf(toldIn(source, place));
}

QeXmlNote noteIn(const Source& source, const char* place, const char* text) {
    const PlaceInSource told = toldIn(source, place);
    return {text, positionOf(told), excerptOf(told)};
}

QeXmlPosition leaveBehind(const Source& source, const char* place) {
    return placesOf(source).leave(place);
}

void goOnIn(const Source& source, std::string_view text, const QeXmlPosition& beginning) noexcept {
    source.isContinued = true;
    source.places->begin(text, LineEnds::All, source.inputUnits, beginning);
}

void dropAnchor(const Source& source, const char* place) {
    if (source.hasPlaces) placesOf(source).dropAnchor(place);
}

std::optional<QeXmlNote> noteOfReference(const Source& source) {
    const Source* const outside = outsideOf(source);
    if (outside == nullptr) return std::nullopt;
    return noteIn(*outside->parent, outside->reference, "the entity was referred to here");
}

void refuseSaying(const Source& source, const char* place, Rule rule, const QeCString& message,
                  std::optional<QeXmlNote>&& note) {
    const QeXmlPlace where = placeIn(source, place);
    if (!source.hasPlaces && !note) note = noteOfDeclaration(source);
    if (!note) note = noteOfReference(source);
    throw ErrorAccess::make(message, where,
                            {.position = where.position,
                             .note = std::move(note),
                             .rule = nameOf(rule),
                             .excerpt = excerptIn(source, place)});
}

void refuse(const Source& source, const char* place, Rule rule, std::string_view found,
            std::optional<QeXmlNote>&& note) {
    refuseSaying(source, place, rule, messageFor(source, place, rule, found), std::move(note));
}

void refuseEndTag(const Source& source, const char* place, std::string_view name, std::string_view opened,
                  std::optional<QeXmlNote>&& note) {
    QeCString message(messageOf(Rule::EndTag));
    message += ": </";
    message += quoted(name);
    message += "> closes <";
    message += quoted(opened);
    message += '>';
    if (note) {
        const QeXmlPosition& position = note->place.position;
        message += ", which was opened at " + std::to_string(position.line) + ':' + std::to_string(position.column);
    }
    refuseSaying(source, place, Rule::EndTag, message, std::move(note));
}

std::optional<QeXmlNote> noteOfDeclaration(const Source& source) {
    if (source.declaredIn == nullptr) return std::nullopt;
    return noteIn(*source.declaredIn, source.declaredAt, "the entity is declared here");
}

std::string_view quoted(std::string_view text) noexcept {
    return beginOf(text, LongestQuoted);
}

std::string_view beginOf(std::string_view text, std::size_t most) noexcept {
    std::size_t length = std::min(text.size(), most);
    while (length != 0 && length != text.size() && (text[length] & 0xC0) == 0x80)
        --length;
    return text.substr(0, length);
}

void refuseEnd(const Source& source) {
    const Rule atTrueEnd = source.cutBy == Rule::None ? Rule::UnfinishedDocument : source.cutBy;
    refuse(source, source.end(), source.endsBy == Rule::None ? atTrueEnd : source.endsBy, source.foundAtEnd);
}

}  // namespace tessit
