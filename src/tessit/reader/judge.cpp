// A document held against the conforming rules, place by place.

#include <algorithm>
#include <voxal/converter.h>

#include <corvel/byte_scan.h>
#include <corvel/compiler.h>
#include <tessit/errors/error_access.h>
#include <tessit/reader/hints.h>
#include <tessit/reader/judge.h>
#include <tessit/reader/written_markup.h>
#include <tessit/rules/characters.h>
#include <tessit/rules/excerpt.h>
#include <tessit/rules/text_pieces.h>

namespace tessit {

namespace {

constexpr char InItsPlace = '$';  // of what is no character: it is in no name, and no markup
constexpr std::string_view Xmlns = "xmlns";
constexpr std::string_view CommentBegin = "<!--", CDATABegin = "<![CDATA[", DocumentTypeBegin = "<!DOCTYPE";

// Where a name ends that is none.
bool endsAnyName(char byte) noexcept {
    return isSpace(byte) || byte == '/' || byte == '>' || byte == '=' || byte == '"' || byte == '\'' || byte == '<';
}

std::string_view between(const char* from, const char* to) noexcept {
    return {from, static_cast<std::size_t>(to - from)};
}

}  // namespace

Judge::Judge(QeXmlRecord& given, const QeCString& name, bool namespaces)
    : record(given),
      source(document.source),
      bindings(stack),
      declared(DeclarationSettings{.namespaces = namespaces}),
      tags(declared, namespaces, NoLimits) {
    document.source.name = name;
}

// All that is read over and over becomes one function.
TESSIT_FLATTEN void Judge::judge(std::string_view bytes) {
    begin(bytes);
    while (at != end && !isOver)
        judgeNext();
    if (!isOver && (isInside() || root == nullptr || source.endsBy != Rule::None)) noteEnd();
    if (!record.empty()) completeEntries();
}

TESSIT_NOINLINE void Judge::begin(std::string_view bytes) {
    decodeText(document, bytes, {});
    soundLength = source.text.size();
    judgeCharacters(bytes);
    at = source.begin();
    end = source.end();
    declared.beginDocument(source.text.size(), false);
    tags.openTag(source);
    stack.pushScope();
    if (tags.readsNamespaces()) ConformingTags::bindXml(bindings);
    judgeDeclaration();
}

// A lenient reader counts lines in another way.
QeXmlPosition Judge::positionOf(const QeXmlParseError& error) const {
    const QeXmlPosition& position = error.getPosition();
    const std::uint64_t offset = position.offset - std::min(position.offset, markInText());  // a mark is not judged
    return offset > source.text.size() ? position : placeIn(source, source.begin() + offset).position;
}

// --- What is recorded

// Whether nothing was refused.
template <typename Read>
bool Judge::attempt(const Read& read) {
    try {
        read();
        return true;
    } catch (const QeXmlParseError& error) {
        add(error);
        const Rule atEnd = source.endsBy == Rule::None ? Rule::UnfinishedDocument : source.endsBy;
        if (std::string_view(error.getRule()) != nameOf(atEnd)) return false;
        at = end;
        if (source.endsBy != Rule::None) stopJudging(end);
        isOver = true;
        return false;
    }
}

// With the line as it is in the document.
void Judge::add(const QeXmlParseError& error) {
    if (patched.empty()) return record.add(error);
    ErrorAccess::Details details = ErrorAccess::detailsOf(error);
    details.excerpt = excerptAt(original, original.data() + (details.position.offset - markInText()), LineEnds::All);
    QeXmlParseError entry(error);
    ErrorAccess::setDetails(entry, std::move(details));
    record.add(entry);
}

TESSIT_NOINLINE void Judge::note(Rule rule, const char* place, std::string_view found) {
    if (!record.keeps(static_cast<std::uint64_t>(place - source.begin()) + markInText())) return record.countOne();
    attempt([&] { refuse(source, place, rule, found); });
}

TESSIT_NOINLINE void Judge::noteEnd() {
    attempt([this] { refuseEnd(source); });
}

void Judge::remark(std::string_view name, const char* place, const char* message) {
    const QeXmlPlace where = placeIn(source, place);
    add(ErrorAccess::make(message, where,
                          {.position = where.position, .rule = name, .excerpt = excerptIn(source, place)}));
}

void Judge::stopJudging(const char* place) {
    isOver = true;
    remark("not-judged-further", place, "from here on, nothing was judged");
}

// Once all are there, in their order: so the tags are looked at once more, however many entries there are.
TESSIT_NOINLINE void Judge::completeEntries() {
    ElementPath path(source.begin());
    const char* const hint = hintFor(source.text.substr(0, soundLength));
    for (QeXmlParseError& entry : record.entries) {
        ErrorAccess::Details details = ErrorAccess::detailsOf(entry);
        const char* const place = source.begin() + (details.position.offset - markInText());
        path.goOnWithin(place, source.end());
        complete(details, place, path, hint);
        ErrorAccess::setDetails(entry, std::move(details));
    }
}

void Judge::complete(ErrorAccess::Details& details, const char* place, const ElementPath& path,
                     const char* hint) const {
    details.path = textOfPath(path.depth(), [&path](std::size_t level) { return path.step(level); });
    if (path.depth() != 0 && details.rule == nameOf(Rule::UnfinishedDocument))
        details.note = noteIn(source, path.element(path.depth() - 1).tag, "this element is not closed");
    if (root != nullptr && place - root > 2 && path.depth() == 0) {
        const std::string_view name = nameInTag(root, static_cast<std::size_t>(place - root - 2));
        if (beginsAnotherDocument(details.rule, between(place, source.end()), name)) hint = HintAtAnotherDocument;
    }
    if (hint != nullptr) details.hint = hint;
}

// --- Characters

// In UTF-8, the text goes on behind what is none: it is read with another character in its place. In other encodings,
// it ends there.
void Judge::judgeCharacters(std::string_view bytes) {
    Source& text = document.source;
    if (text.endsBy != Rule::Character && text.endsBy != Rule::MalformedEncoding) return;
    if (QeUToUnicodeConverter::canonicalName(document.encoding) != "UTF-8") return;
    const std::size_t firstFault = text.text.size();
    original = bytes.substr(text.markLength);
    patched = original;
    text.text = patched;
    text.endsBy = Rule::None;
    text.foundAtEnd = {};
    text.behind = nullptr;
    char* const begin = patched.data();
    char* const last = begin + patched.size();
    for (char* bad = begin + firstFault; bad != last;) {
        Source found;
        endByCharacter(found, between(bad, last), document.encoding);
        note(found.endsBy, bad, found.foundAtEnd);
        std::fill_n(bad, lengthOfSequence(between(bad, last)), InItsPlace);
        bad = begin + (findBadCharacter(between(bad, last)) - begin);
    }
}

void Judge::judgeDeclaration() {
    StrictScanner scanner(source, at);
    if (!scanner.isAtDeclaration()) return;
    if (attempt([&] { scanner.readXmlDeclaration(); }))
        at = scanner.position();
    else
        goBehind(">", at);
}

// --- What stands outside of tags

inline void Judge::judgeNext() {
    if (*at != '<') return isInside() ? judgeText() : judgeTextOutside();
    if (end - at < 2) return noteEnd();
    switch (at[1]) {
        case '/':
            return judgeEndTag();
        case '?':
            return judgeInstruction();
        case '!':
            return judgeDeclarationMarkup();
        default:
            return judgeStartTag();
    }
}

inline void Judge::judgeText() {
    const char* const begin = at;
    while ((at = corvel::findAny(at, end, '<', '&', '>')) != end && *at != '<') {
        if (*at == '&')
            judgeReference(at);
        else if (at - begin >= 2 && at[-1] == ']' && at[-2] == ']')
            note(Rule::CDATAEndInText, at - 2);
        if (isOver) return;
        ++at;
    }
}

TESSIT_NOINLINE void Judge::judgeTextOutside() {
    passSpace();
    if (at == end || *at == '<') return;
    note(Rule::TextOutsideRoot, at);
    at = corvel::findByte(at, end, '<');
}

// Of the '&' there; what follows it is text in any case.
TESSIT_NOINLINE void Judge::judgeReference(const char* place) {
    constexpr std::string_view Predefined[] = {"amp;", "lt;", "gt;", "quot;", "apos;"};
    const std::string_view here = between(place + 1, end);
    if (std::ranges::any_of(Predefined, [here](std::string_view text) { return here.starts_with(text); })) return;
    StrictScanner scanner(source, place + 1);
    attempt([&] {
        if (scanner.passIf("#")) {
            scanner.readCharacterReference();
            return;
        }
        const std::string_view name = scanner.readReferenceName(tags.readsNamespaces());
        if (!hasDocumentType) refuse(source, place, Rule::UndeclaredEntity, name);
    });
}

TESSIT_NOINLINE void Judge::judgeReferences(const char* from, const char* to) {
    while ((from = corvel::findByte(from, to, '&')) != to)
        judgeReference(from++);
}

// --- Tags

inline void Judge::judgeStartTag() {
    const char* const tag = at++;
    if (!isInside()) judgeRoot(tag);
    if (passKnownTag()) return;
    const RawName name = passName();
    if (isOver || name.length == 0) return;  // without a name, it is text
    const RawAttributes::Room room(attributes);
    bindings.openScope();
    const bool isWhole = passAttributes();
    if (isWhole) {
        const bool isEmpty = at[-2] == '/';
        judgeNames(name, at - (isEmpty ? 2 : 1));
        if (!isEmpty) return openElements.push_back(name.whole());
    }
    bindings.closeScope();
}

TESSIT_NOINLINE void Judge::judgeRoot(const char* tag) {
    if (root != nullptr) return note(Rule::SecondRoot, tag);
    root = tag;
}

// --- Tags that are like one before

// Elements whose names begin alike share a place.
inline Judge::Shape& Judge::shapeAt(const char* name) noexcept {
    const auto byte = [name](int place) { return static_cast<unsigned>(static_cast<unsigned char>(name[place])); };
    return shapes[(byte(0) + 5 * byte(1)) % Shapes];
}

// Entered at the name. A tag with the names of one in which nothing was wrong, in that order, and plain values: passes
// it, or does nothing.
inline bool Judge::passKnownTag() {
    if (end - at < 2) return false;
    const Shape& shape = shapeAt(at);
    if (shape.names.empty() || shape.version != bindings.version()) return false;
    const char* next = passText(at, shape.names[0]);
    for (std::size_t i = 1; next != nullptr && i != shape.names.size(); ++i)
        next = passKnownAttribute(next, shape.names[i]);
    if (next == nullptr) return false;
    next = behindSpace(next);
    const bool isEmpty = next != end && *next == '/';
    if (isEmpty) ++next;
    if (next == end || *next != '>') return false;
    if (!isEmpty) {
        bindings.openScope();
        openElements.push_back({at, shape.names[0].size()});
    }
    at = next + 1;
    return true;
}

// The place behind the text, if it stands there.
inline const char* Judge::passText(const char* from, std::string_view text) const noexcept {
    if (static_cast<std::size_t>(end - from) <= text.size()) return nullptr;
    return corvel::sameBytes(from, text.data(), text.size()) ? from + text.size() : nullptr;
}

inline const char* Judge::passKnownAttribute(const char* from, std::string_view name) const noexcept {
    const char* next = behindSpace(from);
    if (next == from || (next = passText(next, name)) == nullptr || end - next < 3 || *next != '=') return nullptr;
    const char quote = next[1];
    if (quote != '"' && quote != '\'') return nullptr;
    const char* const stop = corvel::findAny(next + 2, end, quote, '<', '&');
    return stop != end && *stop == quote ? stop + 1 : nullptr;
}

void Judge::remember(const RawName& element) {
    if (attributes.size() > MostRemembered || bindings.tagDeclares()) return;
    Shape& shape = shapeAt(element.data);
    shape.version = bindings.version();
    shape.names.clear();
    shape.names.push_back(element.whole());
    for (const RawAttribute& attribute : attributes)
        shape.names.push_back(attribute.name.whole());
}

// --- Other tags

// A name of a tag or an attribute, or what stands in its place. Of most, a block shows all.
inline RawName Judge::passName() {
    if (end - at >= NameBlock::Size) {
        const NameBlock block(at);
        if (block.isWhole()) {
            const RawName name{at, block.length(), tags.readsNamespaces() ? block.localStart() : 0};
            at += block.length();
            return name.localStart == 0 ? name : checked(name);
        }
    }
    return passOtherName();
}

TESSIT_NOINLINE RawName Judge::passOtherName() {
    const char* const start = at;
    StrictScanner scanner(source, at);
    const bool isName = attempt([&] { scanner.readName(); });
    at = isName ? scanner.position() : std::find_if(scanner.position(), end, endsAnyName);
    const std::string_view name = between(start, at);
    return isName ? checked(RawName::of(name, tags.readsNamespaces())) : RawName::of(name, false);
}

// A name whose colons are wrong has no prefix.
TESSIT_NOINLINE RawName Judge::checked(RawName name) {
    if (name.localStart != 0 && !attempt([&] { checkQName(source, name.whole()); })) name.localStart = 0;
    return name;
}

// Passes the end of the tag, too. Whether there was one.
inline bool Judge::passAttributes() {
    for (;;) {
        const char* const before = at;
        passSpace();
        if (at == end) break;
        if (*at == '>') return ++at, true;
        if (*at == '/') {
            if (at + 1 == end) break;
            if (at[1] == '>') return at += 2, true;
            note(Rule::Attribute, ++at);
            continue;
        }
        if (at == before) note(Rule::WhiteSpace, at);
        passAttribute();
        if (isOver) return false;
    }
    noteEnd();
    return false;
}

// Passes one byte at least.
inline void Judge::passAttribute() {
    const RawName name = passName();
    if (isOver) return;
    if (name.length == 0 && *at != '=') {
        ++at;
        return;
    }
    passSpace();
    if (at == end) return noteEnd();
    if (*at != '=') return note(Rule::Attribute, at, name.whole());
    ++at;
    passSpace();
    if (at == end) return noteEnd();
    if (*at != '"' && *at != '\'') {
        note(Rule::Attribute, at);
        at = std::find_if(at, end, [](char byte) { return isSpace(byte) || byte == '>'; });
        return;
    }
    const char quote = *at++;
    const std::string_view value = passValue(quote);
    if (isOver || name.length == 0) return;
    attributes.push_back({name, nullptr, 0});
    if (name.whole().starts_with(Xmlns)) declare(name, value);
}

// Passes the closing quote. Each part up to a '<' is looked through for itself.
inline std::string_view Judge::passValue(char quote) {
    const char* const start = at;
    for (bool isCut = false;; ++at) {
        const char* const from = at;
        at = corvel::findAny(at, end, quote, '<', '&');
        const bool hasReferences = at != end && *at == '&';
        if (hasReferences) at = corvel::findAny(at, end, quote, '<');
        if (at == end) return noteEnd(), std::string_view();
        if (hasReferences) judgeReferences(from, at);
        if (isOver) break;
        if (*at == quote) return between(start, at++);
        if (!std::exchange(isCut, true)) note(Rule::LessThanInValue, at);
    }
    return {};
}

TESSIT_NOINLINE void Judge::declare(const RawName& name, std::string_view value) {
    const bool isDefault = name.whole() == Xmlns;
    if (!tags.readsNamespaces() || (!isDefault && name.prefix() != Xmlns)) return;
    const std::string_view uri = meaningOf(value);
    const bool mayBe = attempt([&] { tags.checkDeclaration(name, uri, name.data); });
    if (mayBe) bindings.declare(isDefault ? std::string_view() : name.local(), uri);
}

// What is wrong in the value was recorded.
std::string_view Judge::meaningOf(std::string_view value) {
    if (value.find_first_of("&\t\r\n") == std::string_view::npos) return value;
    meaning.clear();
    try {
        declared.get().appendValue(meaning, source, value, nullptr);
    } catch (const QeXmlParseError&) {
        return value;
    }
    return meaning;
}

// What needs the whole tag.
inline void Judge::judgeNames(const RawName& element, const char* tagEnd) {
    if (element.localStart == 0 && attributes.empty()) return;
    const std::uint64_t before = record.getCount();
    judgeOtherNames(element, tagEnd);
    if (record.getCount() == before) remember(element);
}

TESSIT_NOINLINE void Judge::judgeOtherNames(const RawName& element, const char* tagEnd) {
    if (tags.readsNamespaces() && !hasDocumentType) {
        const RawName none{element.data, 0, 0};
        if (element.localStart != 0) attempt([&] { tags.checkPrefixes(element, {}, bindings, tagEnd); });
        for (const RawAttribute& attribute : attributes)
            if (attribute.name.localStart != 0)
                attempt([&] { tags.checkPrefixes(none, {&attribute, 1}, bindings, tagEnd); });
    }
    if (attributes.size() > 1) judgeDuplicates(tagEnd);
}

// Attributes with one local name stand together; of each such group, the first that stands twice is recorded.
void Judge::judgeDuplicates(const char* tagEnd) {
    const auto local = [](const RawAttribute* attribute) { return attribute->name.local(); };
    ordered.clear();
    for (RawAttribute& attribute : attributes)
        ordered.push_back(&attribute);
    std::ranges::sort(ordered, {}, local);
    for (auto first = ordered.begin(); first != ordered.end();) {
        const auto last = std::find_if(first, ordered.end(),
                                       [&](const RawAttribute* other) { return local(other) != local(*first); });
        if (last - first > 1) attempt([&] { tags.checkDuplicates({first, last}, bindings, tagEnd); });
        first = last;
    }
}

inline void Judge::judgeEndTag() {
    const char* const start = at + 2;
    if (!isInside()) {
        note(Rule::EndTag, at);
        return goBehind(">", at);
    }
    const std::string_view opened = openElements.back();
    const auto left = static_cast<std::size_t>(end - start);
    if (left > opened.size() && start[opened.size()] == '>' && opened == std::string_view(start, opened.size())) {
        at = start + opened.size() + 1;
    } else {
        judgeOtherEndTag(opened);
    }
    bindings.closeScope();
    openElements.pop_back();
}

TESSIT_NOINLINE void Judge::judgeOtherEndTag(std::string_view opened) {
    const char* const start = at + 2;
    StrictScanner scanner(source, start);
    const bool closes = attempt([&] {
        const std::string_view name = scanner.readName(Rule::EndTag);
        if (name != opened)
            refuseEndTag(source, start, name, opened, noteIn(source, opened.data() - 1, "it was opened here"));
        scanner.passSpace();
        scanner.require(">", Rule::EndTag);
    });
    at = scanner.position();
    if (!closes) goBehind(">", at);
}

// --- Other markup

// Such a declaration inside has a lenient reader read what follows in another encoding.
TESSIT_NOINLINE void Judge::judgeInstruction() {
    const char* const target = at + 2;
    StrictScanner scanner(source, at);
    const bool isDeclaration = scanner.isAtDeclaration();
    scanner.goTo(target);
    if (attempt([&] { scanner.readInstruction(tags.readsNamespaces()); }))
        at = scanner.position();
    else if (isDeclaration)
        stopJudging(target);
    else
        goBehind("?>", scanner.position());
}

TESSIT_NOINLINE void Judge::judgeDeclarationMarkup() {
    if (beginsWith(CommentBegin)) return judgeComment();
    if (beginsWith(CDATABegin)) return judgeSection();
    const bool isDocumentType = beginsWith(DocumentTypeBegin);
    if (isOver) return;
    if (isDocumentType && root == nullptr && !hasDocumentType) return judgeDocumentType();
    note(isDocumentType ? Rule::DocumentTypePlace : Rule::Markup, at);
    goBehind(">", at);
}

void Judge::judgeComment() {
    StrictScanner scanner(source, at + CommentBegin.size());
    if (attempt([&] { scanner.readComment(); }))
        at = scanner.position();
    else
        goBehind("-->", scanner.position());
}

void Judge::judgeSection() {
    if (!isInside()) note(Rule::CDATAOutsideRoot, at);
    goBehind("]]>", at);
}

// For a lenient reader it ends where its brackets pair up.
void Judge::judgeDocumentType() {
    const char* const begin = at;
    hasDocumentType = true;
    remark(nameOf(Rule::DocumentType), begin, "rules that need declarations were not judged");
    const char* const strictEnd = strictEndOfDocumentType();
    if (strictEnd == nullptr) return noteEnd();
    if (endOfMarkup(begin, end, true) != strictEnd) return stopJudging(begin);
    at = strictEnd;
}

// Null where there is none.
const char* Judge::strictEndOfDocumentType() const {
    bool isInSubset = false;
    for (const char* next = at + DocumentTypeBegin.size();;) {
        next = corvel::findAny(next, end, '"', '\'', '[', ']', '>', '<');
        if (next == end) return nullptr;
        const std::string_view here = between(next, end);
        std::size_t behind = 1;
        if (*next == '"' || *next == '\'')
            behind = here.find(*next, 1) + 1;
        else if (here.starts_with(CommentBegin))
            behind = here.find("-->", CommentBegin.size()) + 1;
        else if (here.starts_with("<?"))
            behind = here.find("?>") + 1;
        else if (*next == '[' || *next == ']')
            isInSubset = *next == '[';
        else if (*next == '>' && !isInSubset)
            return next + 1;
        if (behind == 0) return nullptr;
        next += behind;
    }
}

// --- Steps

void Judge::goBehind(std::string_view text, const char* from) {
    if (isOver) return;
    const char* const found = corvel::findText(from, end, text);
    if (found == end) return noteEnd();
    at = found + text.size();
}

inline void Judge::passSpace() noexcept {
    at = behindSpace(at);
}

inline const char* Judge::behindSpace(const char* from) const noexcept {
    while (from != end && isSpace(*from))
        ++from;
    return from;
}

// Whether the text stands here; where the source ends in it, that is recorded.
bool Judge::beginsWith(std::string_view text) {
    const std::string_view here = between(at, end);
    if (!isOver && here.size() < text.size() && text.starts_with(here)) noteEnd();
    return here.starts_with(text);
}

}  // namespace tessit
