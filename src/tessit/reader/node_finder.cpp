// Goes through text once to see where markup ends, by lenient or by conforming rules. Makes nothing of it, and finds no
// fault.

#include <bit>

#include <corvel/byte_scan.h>
#include <tessit/reader/char_class.h>
#include <tessit/reader/node_finder.h>

namespace tessit {

namespace {

constexpr std::size_t LongestCharacter = 4;
constexpr unsigned char FirstOfLeads = 0xC0;
constexpr std::string_view Xml = "xml";

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & FirstOfLeads) == 0x80;
}

bool beginsMarkup(char kind) {
    return kind == '!' || kind == '?';
}

// Whether what stands behind an '&' is the name of an entity that is not predefined; as it begins, it may go on.
enum class Named { Yes, No, Perhaps };

Named isOfEntity(std::string_view reference) {
    for (const std::string_view other : {"#", "amp;", "lt;", "gt;", "apos;", "quot;"}) {
        if (reference.starts_with(other)) return Named::No;
        if (other.starts_with(reference)) return Named::Perhaps;
    }
    return Named::Yes;
}

#if defined(TESSIT_SCAN_BLOCKS)

constexpr std::ptrdiff_t ChunkSize = 64;

inline auto equals(char byte) {
    return [byte](const char* at) { return corvel::blockAt(at) == static_cast<unsigned char>(byte); };
}

// Which of sixteen bytes begin "<!" or "<?". One byte more is read.
inline auto compareMarkup(const char* at) {
    const corvel::Block next = corvel::blockAt(at + 1);
    return equals('<')(at) & ((next == '!') | (next == '?'));
}

// What the blocks of a chunk say together.
template <typename Compare>
inline bool isAnyInChunk(const char* at, const Compare& compare) {
    return corvel::matchesOf((compare(at) | compare(at + 16)) | (compare(at + 32) | compare(at + 48))) != 0;
}

// How much of a chunk has no references but whole ones that hold no '<': nothing, if there is another one.
inline std::ptrdiff_t passReferencesInChunk(const char* at) {
    const std::uint64_t begins = corvel::matchesOf64(at, equals('&')), ends = corvel::matchesOf64(at, equals(';'));
    const std::uint64_t others = ~(begins | ends);
    const std::uint64_t inside = others & ~(others + (begins << 1 & others));  // a carry runs from each '&' to the end
    if ((inside & corvel::matchesOf64(at, equals('<'))) != 0) return 0;
    if (begins <= ends) return ChunkSize;
    const std::uint64_t upToLastEnd = ends == 0 ? 0 : 2 * std::bit_floor(ends) - 1;
    return std::countr_zero(begins & ~upToLastEnd);
}

// Passes chunks in which nothing needs thought. Of marks there are few, so that most need no look at what stands in
// front of each.
template <typename... Reference>
inline const char* passChunks(const char* at, const char* end, Reference... reference) {
    const auto compareMarks = [=](const char* from) {
        const corvel::Block block = corvel::blockAt(from);
        return (((block == '!') | (block == '?')) | ... | (block == static_cast<unsigned char>(reference)));
    };
    while (end - at > ChunkSize) {
        std::ptrdiff_t passed = ChunkSize;
        if (isAnyInChunk(at + 1, compareMarks) || (... || (*at == reference))) {
            if (isAnyInChunk(at, compareMarkup)) break;
            if constexpr (sizeof...(Reference) != 0) passed = passReferencesInChunk(at);
        }
        if (passed == 0) break;
        at += passed;
    }
    return at;
}

#endif

// The first "<!", "<?", or '<' at the very end, or reference that is to be looked at, if there is one.
template <typename... Reference>
const char* findThought(const char* at, const char* end, Reference... reference) {
#if defined(TESSIT_SCAN_BLOCKS)
    at = passChunks(at, end, reference...);
    const auto compare = [=](const char* from) { return (compareMarkup(from) | ... | equals(reference)(from)); };
    for (; end - at > 16; at += 16)
        if (const auto matches = corvel::matchesOf(compare(at))) return at + corvel::firstMatch(matches);
#endif
    while (at != end && (... && (*at != reference)) && !(*at == '<' && (at + 1 == end || beginsMarkup(at[1]))))
        ++at;
    return at;
}

}  // namespace

void NodeFinder::begin(std::size_t place, Where where, bool expandsReferences) noexcept {
    expandsValues = expandsReferences;
    isOutside = where != Where::Content;
    isDocumentBegin = where == Where::Begin;
    isNode = false;
    tagState = isOutside ? Tag::None : Tag::Whole;
    at = start = markup = tag = tagAt = textAt = wholeNodes = wholeTexts = place;
    textEnd = markupEnd = 0;
    state = where == Where::Declaration ? State::LenientDeclaration : State::Between;
    declaration = Declaration::NextSpace;
}

void NodeFinder::drop(std::size_t dropped) noexcept {
    for (std::size_t* place :
         {&at, &start, &markup, &tag, &tagAt, &textEnd, &textAt, &markupEnd, &wholeNodes, &wholeTexts})
        *place = *place == Everything ? Everything : *place - std::min(*place, dropped);
}

void NodeFinder::look(std::string_view longer) noexcept {
    text = longer;
    while (step())
        ;
    lookAtTag(text.size());
    conclude();
}

// Passes what it can; false when the text ends in it.
bool NodeFinder::step() noexcept {
    switch (state) {
        case State::Between:
            return isOutside ? passOutside() : passBetween();
        case State::Reference:
            return passUpTo(";", State::Between);
        case State::Markup:
            return isConforming ? passStrictMarkup() : passLenientMarkup();
        case State::Target:
            return passTarget();
        case State::Instruction:
            return passUpTo("?>", State::Between);
        case State::LenientDeclaration:
            return passLenientDeclaration();
        case State::StrictDeclaration:
            return passUpToEnd(State::Between);
        case State::Comment:
            return passComment();
        case State::SectionName:
            return passSectionName();
        case State::Section:
            return passUpTo("]]>", State::Between);
        case State::DocumentTypeName:
            return passDocumentTypeName();
        case State::LenientDocumentType:
            return passLenientDocumentType();
        case State::DocumentType:
            return passDocumentType();
        case State::Subset:
            return passSubset();
        case State::SubsetMarkup:
            return passSubsetMarkup();
        case State::SubsetInstruction:
            return passUpTo("?>", State::Subset);
        case State::SubsetDeclaration:
            return passUpToEnd(State::Subset);
        case State::Literal:
            return passLiteral();
        case State::Broken:
            break;
    }
    return false;
}

// Goes to the next of these bytes.
template <typename... Byte>
bool NodeFinder::find(Byte... bytes) noexcept {
    const char* const end = text.data() + text.size();
    at = static_cast<std::size_t>(corvel::findAny(text.data() + at, end, bytes...) - text.data());
    return at != text.size();
}

// --- Between markup

// All that a text or a tag has is passed here but markup that is no tag, and references that are not short.
bool NodeFinder::passBetween() noexcept {
    const char* const end = text.data() + text.size();
    do {
        const char* const from = text.data() + at;
        const char* const thought = isConforming ? findThought(from, end) : findThought(from, end, '&');
        at = static_cast<std::size_t>(thought - text.data());
        noteTags(static_cast<std::size_t>(from - text.data()), at);
        if (isConforming) noteEntities(at);
    } while (left() != 0 && text[at] == '&' && passReferences());
    if (left() == 0) return false;
    if (text[at] == '&') {
        ++at;
        return enter(State::Reference);
    }
    if (left() == 1) return false;
    markup = at;
    lookAtTag(at);
    at += 2;
    return enter(State::Markup);
}

// Lenient readers take references up to the semicolon, be it behind markup; in values only if they are expanded.
// Conforming ones refuse what is none. False where one is not short.
bool NodeFinder::passReferences() noexcept {
    if (!expandsValues && isInTag()) {
        ++at;
        return true;
    }
    do {
        if (!passShortReference()) return false;
    } while (find('<', '&') && text[at] == '&');
    return true;
}

bool NodeFinder::isInTag() noexcept {
    lookAtTag(at);
    return tagState != Tag::None && tagState != Tag::Whole;
}

bool NodeFinder::passShortReference() noexcept {
    constexpr std::size_t Most = 10;
    const std::size_t end = std::min(text.size(), at + Most);
    for (std::size_t place = at + 1; place < end; ++place) {
        if (text[place] != ';') continue;
        at = place + 1;
        return true;
    }
    return false;
}

bool NodeFinder::passOutside() noexcept {
    while (left() != 0 && isSpace(text[at]))
        ++at;
    if (left() == 0) return false;
    if (text[at] != '<') return breakHere();
    if (left() == 1) return false;
    markup = at;
    if (beginsMarkup(text[at + 1])) {
        at += 2;
        return enter(State::Markup);
    }
    isOutside = false;
    noteTag(at++);
    return true;
}

// Each '<' there begins a tag, of which the last one counts.
void NodeFinder::noteTags(std::size_t from, std::size_t to) noexcept {
    const std::size_t last = text.substr(from, to - from).rfind('<');
    if (last != std::string_view::npos) noteTag(from + last);
}

void NodeFinder::noteTag(std::size_t place) noexcept {
    tag = place;
    tagAt = place + 1;
    tagState = Tag::Begin;
    textEnd = place + 1;
}

// Behind the last tag, each reference to an entity ends a text, and the last one counts.
void NodeFinder::noteEntities(std::size_t upTo) noexcept {
    lookAtTag(upTo);
    while (tagState == Tag::Whole) {
        textAt = std::min(text.substr(0, upTo).find('&', std::max(textAt, tagAt)), upTo);
        if (textAt == upTo) return;
        switch (isOfEntity(text.substr(textAt + 1, upTo - textAt - 1))) {
            case Named::Perhaps:
                return;
            case Named::No:
                ++textAt;
                break;
            case Named::Yes:
                tag = textEnd = textAt;
                tagAt = textAt + 1;
                tagState = Tag::Entity;
                lookAtTag(upTo);
        }
    }
}

// --- Markup

bool NodeFinder::passLenientMarkup() noexcept {
    if (text[markup + 1] == '?') {
        passAlone();
        return enter(State::Target);
    }
    if (left() == 0) return false;
    switch (text[at]) {
        case '-':
            if (left() == 1) return false;
            if (text[++at] != '-') return breakHere();
            ++at;
            passAlone();
            return enterComment(State::Between);
        case '[':
            if (isOutside) break;
            ++at;
            return enter(State::SectionName);
        default:
            break;
    }
    return isOutside ? enter(State::DocumentTypeName) : breakHere();
}

bool NodeFinder::passStrictMarkup() noexcept {
    constexpr std::string_view Comment = "<!--", Section = "<![CDATA[", Type = "<!DOCTYPE";
    if (text[markup + 1] == '?') {
        if (!isDocumentBegin) noteNode(QeXmlNodes::Instructions);
        return enter(State::Target);
    }
    const std::string_view here = text.substr(markup);
    if (here.starts_with(Comment)) {
        noteNode(QeXmlNodes::Comments);
        at = markup + Comment.size();
        return enterComment(State::Between);
    }
    if (here.starts_with(Section) && !isOutside) {
        noteNode(QeXmlNodes::CDATASections);
        at = markup + Section.size();
        return enter(State::Section);
    }
    if (here.starts_with(Type) && isOutside) {
        noteNode(QeXmlNodes::DocumentType);
        at = markup + Type.size();
        return enter(State::DocumentType);
    }
    const bool mayGoOn = Comment.starts_with(here) || Section.starts_with(here) || Type.starts_with(here);
    return mayGoOn && here != Section && here != Type ? false : breakHere();
}

// A conforming reader that is asked for such nodes delivers the text in front, and then them.
void NodeFinder::noteNode(QeXmlNodes node) noexcept {
    isNode = (static_cast<std::uint32_t>(nodes) & static_cast<std::uint32_t>(node)) != 0;
    if (!isNode && node != QeXmlNodes::CDATASections) return passAlone();
    if (!isNode || isOutside) return;
    tag = tagAt = markup;
    tagState = Tag::None;
}

// Right behind a tag, comments and instructions are passed one by one, not as part of a text: however many there are,
// none waits for the next tag.
void NodeFinder::passAlone() noexcept {
    isNode = !isOutside && tagState == Tag::Whole && tagAt == markup;
    if (isNode) tag = markup;
}

bool NodeFinder::endMarkup() noexcept {
    if (isOutside) {
        markupEnd = at;
    } else if (isNode) {
        tagAt = at;
        tagState = Tag::Whole;
    }
    textAt = at;
    isNode = isDocumentBegin = false;
    return enter(State::Between);
}

bool NodeFinder::breakHere() noexcept {
    state = State::Broken;
    return false;
}

bool NodeFinder::passName() noexcept {
    while (left() != 0 && nameByte(text[at]) != EndsName)
        ++at;
    return left() != 0;
}

bool NodeFinder::passTarget() noexcept {
    const bool isThere = passName();
    if (isDocumentBegin && !mayBeDeclared(isThere)) noteNode(QeXmlNodes::Instructions);
    if (!isThere) return false;
    if (at == start) return breakHere();
    if (passed() == Xml && !isConforming) {
        declaration = Declaration::VersionSpace;
        return enter(State::LenientDeclaration);
    }
    return enter(isDocumentBegin && mayBeDeclared(true) ? State::StrictDeclaration : State::Instruction);
}

// Whether the target that was passed so far, or is there, may be that of an XML declaration.
bool NodeFinder::mayBeDeclared(bool isThere) const noexcept {
    return isThere ? passed() == Xml && isSpace(text[at]) : Xml.starts_with(passed());
}

bool NodeFinder::passSectionName() noexcept {
    if (!passName()) return false;
    if (passed() != "CDATA" || text[at] != '[') return breakHere();
    ++at;
    return enter(State::Section);
}

bool NodeFinder::passDocumentTypeName() noexcept {
    if (!passName()) return false;
    if (passed() != "DOCTYPE") return breakHere();
    brackets = 0;
    return enter(State::LenientDocumentType);
}

bool NodeFinder::passUpTo(std::string_view end, State next) noexcept {
    const char* const limit = text.data() + text.size();
    const char* const found = corvel::findText(text.data() + at, limit, end);
    if (found == limit) {
        at = std::max(at, text.size() - std::min(text.size(), end.size() - 1));  // the end may have begun
        return false;
    }
    at = static_cast<std::size_t>(found - text.data()) + end.size();
    return leave(next);
}

bool NodeFinder::enterComment(State behind) noexcept {
    count = 0;
    behindComment = behind;
    return enter(State::Comment);
}

// Two hyphens that are not followed by a '>' are refused by all readers.
bool NodeFinder::passComment() noexcept {
    for (;; ++at) {
        if (count == 0 && !find('-')) return false;
        if (left() == 0) return false;
        if (count == 2) break;
        count = text[at] == '-' ? count + 1 : 0;
    }
    if (text[at] != '>') return breakHere();
    ++at;
    return leave(behindComment);
}

// As the lenient reader reads it: by first letters, and without a look at equals signs and opening quotes.
bool NodeFinder::passLenientDeclaration() noexcept {
    constexpr std::string_view Version = "version";
    while (left() != 0) {
        const char byte = text[at];
        switch (declaration) {
            case Declaration::VersionSpace:
                if (isSpace(byte)) break;
                if (left() < Version.size()) return false;
                at += Version.size();
                if (!text.substr(0, at).ends_with(Version)) return endMarkup();
                declaration = Declaration::EqualsSpace;
                continue;
            case Declaration::EqualsSpace:
                if (!isSpace(byte)) declaration = Declaration::QuoteSpace;
                break;
            case Declaration::QuoteSpace:
                if (!isSpace(byte)) declaration = Declaration::Value;
                break;
            case Declaration::Value:
                if (!find('"', '\'')) return false;
                declaration = Declaration::NextSpace;
                break;
            case Declaration::NextSpace:
                if (byte == '>') {
                    ++at;
                    return endMarkup();
                }
                if (byte != 'e' && byte != 's') break;
                count = byte == 'e' ? std::string_view("ncoding").size() : std::string_view("tandalone").size();
                declaration = Declaration::Skip;
                break;
            case Declaration::Skip:
                if (--count == 0) declaration = Declaration::EqualsSpace;
                break;
        }
        ++at;
    }
    return false;
}

bool NodeFinder::passLenientDocumentType() noexcept {
    while (find('[', ']', '>')) {
        const char byte = text[at++];
        if (byte == '>' && brackets == 0) return endMarkup();
        brackets += byte == '[' ? 1 : byte == ']' ? -1 : 0;
    }
    return false;
}

// --- The document type by its grammar

bool NodeFinder::passDocumentType() noexcept {
    if (!find('"', '\'', '[', '>')) return false;
    const char byte = text[at];
    if (byte == '"' || byte == '\'') return enterLiteral();
    ++at;
    return byte == '[' ? enter(State::Subset) : endMarkup();
}

bool NodeFinder::passSubset() noexcept {
    if (!find('<', ']')) return false;
    if (text[at++] == ']') return enter(State::DocumentType);
    return enter(State::SubsetMarkup);
}

bool NodeFinder::passSubsetMarkup() noexcept {
    constexpr std::string_view Comment = "!--";
    const std::string_view here = text.substr(start);
    if (here.starts_with(Comment)) {
        at = start + Comment.size();
        return enterComment(State::Subset);
    }
    if (Comment.starts_with(here)) return false;
    if (!here.starts_with('?')) return enter(State::SubsetDeclaration);
    ++at;
    return enter(State::SubsetInstruction);
}

// Past the next '>' that is in no literal.
bool NodeFinder::passUpToEnd(State next) noexcept {
    if (!find('"', '\'', '>')) return false;
    if (text[at] != '>') return enterLiteral();
    ++at;
    return leave(next);
}

bool NodeFinder::enterLiteral() noexcept {
    behindLiteral = state;
    quote = text[at++];
    return enter(State::Literal);
}

bool NodeFinder::passLiteral() noexcept {
    if (!find(quote)) return false;
    ++at;
    return enter(behindLiteral);
}

// --- The last tag

template <typename... Byte>
bool NodeFinder::findInTag(std::size_t upTo, Byte... bytes) noexcept {
    tagAt = static_cast<std::size_t>(corvel::findAny(text.data() + tagAt, text.data() + upTo, bytes...) - text.data());
    return tagAt != upTo;
}

void NodeFinder::lookAtTag(std::size_t upTo) noexcept {
    while (tagAt < upTo && stepInTag(upTo))
        ++tagAt;
}

// Goes to the next byte that matters, and says whether to go on behind it.
bool NodeFinder::stepInTag(std::size_t upTo) noexcept {
    const auto goTo = [this](Tag next) {
        tagState = next;
        return next != Tag::Broken;
    };
    const auto endBy = [this](char byte) {
        tagAt += byte == '>';
        tagState = byte == '>' ? Tag::Whole : Tag::Broken;
        return false;
    };
    switch (tagState) {
        case Tag::Begin:
            if (text[tagAt] == '/') return goTo(Tag::EndTag);
            tagState = Tag::Outside;
            [[fallthrough]];
        case Tag::Outside:
            if (!findInTag(upTo, '>', '=', '<')) return false;
            return text[tagAt] == '=' ? goTo(Tag::Equals) : endBy(text[tagAt]);
        case Tag::EndTag:
            return findInTag(upTo, '>', '<') && endBy(text[tagAt]);
        case Tag::Equals:
            if (isSpace(text[tagAt])) return true;
            tagQuote = text[tagAt];
            if (tagQuote == '"' || tagQuote == '\'') return goTo(Tag::Value);
            tagState = Tag::Outside;
            return stepInTag(upTo);
        case Tag::Value:
            if (!findInTag(upTo, tagQuote, '<', !isConforming && expandsValues ? '&' : tagQuote)) return false;
            return goTo(text[tagAt] == tagQuote ? Tag::Outside : text[tagAt] == '&' ? Tag::Reference : Tag::Broken);
        case Tag::Reference:
            return findInTag(upTo, ';') && goTo(Tag::Value);
        case Tag::Entity:
            if (!findInTag(upTo, ';', '<', '&') || text[tagAt] == '<') return false;
            if (text[tagAt] == '&') return goTo(Tag::Broken);
            textEnd = ++tagAt;
            tagState = Tag::Whole;
            return false;
        case Tag::None:
        case Tag::Whole:
        case Tag::Broken:
            break;
    }
    return false;
}

// --- What is whole

// Whether the byte is one of a character that a byte in front of it has announced.
bool NodeFinder::isAnnounced(std::size_t place) const noexcept {
    for (std::size_t back = 1; back <= std::min(place, LongestCharacter - 1); ++back) {
        if (!isContinuation(text[place - back + 1])) return false;
        const auto first = static_cast<unsigned char>(text[place - back]);
        if (first >= FirstOfLeads) return static_cast<std::size_t>(characterLength(first)) > back;
    }
    return false;
}

// Whether a character of a name that ends in front of the place would be read past the end of the text, as one can that
// is none: readers are sure what it is only with as many bytes as its first one announces.
bool NodeFinder::isCut(std::size_t place) const noexcept {
    for (std::size_t first = text.size() - std::min(text.size(), LongestCharacter - 1); first < place; ++first) {
        const auto byte = static_cast<unsigned char>(text[first]);
        const auto length = static_cast<std::size_t>(characterLength(byte));
        if (first + length > text.size() && !isAnnounced(first)) return true;
    }
    return false;
}

void NodeFinder::conclude() noexcept {
    if (markupEnd > wholeTexts && !isCut(markupEnd)) wholeTexts = markupEnd;
    const bool isBroken =
        (state == State::Broken && !isCut(std::min(at + 1, text.size()))) || (tagState == Tag::Broken && !isCut(tagAt));
    if (isBroken) {
        wholeNodes = wholeTexts = Everything;
    } else if (!isCut(tag)) {
        wholeNodes = tagState == Tag::Whole && !isCut(tagAt) ? tagAt : tag;
        if (textEnd != 0) wholeTexts = textEnd;
    }
}

}  // namespace tessit
