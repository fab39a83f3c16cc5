// Tags and texts by the conforming rules, and the way into entities and back.

#include <corvel/compiler.h>
#include <tessit/reader/conforming_nodes.h>
#include <tessit/reader/text_builder.h>
#include <tessit/reader/windowed.h>
#include <tessit/rules/name_chars.h>

using tessit::RawName;
using tessit::Rule;
using tessit::Source;
using tessit::StrictScanner;

// As for a lenient reader, all that is called here is made one function.
TESSIT_FLATTEN void QeXmlReader::readNextConforming() {
    if (engine->windowed != nullptr && engine->windowed->isReading) [[unlikely]]
        engine->refuseWhileReading();  // which is no fault of the document
    if (engine->conforming->fault != nullptr) engine->raiseFault();
    try {
        Engine::ConformingNodes(*engine).readNextNode();
        if (engine->hasLimits()) engine->limitLastNode();
    } catch (...) {
        engine->keepFault();
        engine->raiseFault();
    }
}

// Inline, so that this one's address stays untaken.
inline void QeXmlReader::Engine::ConformingNodes::needNode() {
    const Lending lending(*this);
    engine.needNode();
}

inline void QeXmlReader::Engine::ConformingNodes::readNextNode() {
    if (state.phase != Conforming::InRoot) [[unlikely]] {
        if (apart([](ConformingNodes& nodes) { return nodes.passOutside(Others::Deliver); })) return;
        if (state.phase == Conforming::InEpilog) raise("Premature EOF");
        state.phase = Conforming::InRoot;
    }
    for (;;) {
        // In what an entity brought, either answer will do.
        if (engine.windowed != nullptr && position() >= engine.wholeUpTo) needNode();
        engine.lastNode = {position(), &source()};
        if (atEnd()) {
            apart([](ConformingNodes& nodes) { nodes.leaveEntity(); });
            continue;
        }
        if (peek() != '<') {
            if (readText(Others::Deliver)) return;
            continue;
        }
        skip(1);
        const char kind = next();
        if (kind == '/') return readEndTag();
        if (kind != '!' && kind != '?') return readStartTag();
        stepBack(1);
        if (apart([](ConformingNodes& nodes) { return nodes.readMarkup(); })) return;
    }
}

void QeXmlReader::Engine::ConformingNodes::readContent() {
    engine.lastNode = {position(), &source()};
    if (state.phase == Conforming::InRoot) {
        readText(Others::Pass);
        return;
    }
    reader.lastNodeType = Content;
    reader.lastContent.clear();
    passOutside(Others::Pass);
}

// --- Tags

// A name of a tag or an attribute; of most, a block shows all.
inline RawName QeXmlReader::Engine::ConformingNodes::readTagName() {
    return readConformingName(*this, source(), state.options.namespaces);
}

// Entered at the name. The scope is opened before the attributes are read, so that the
// tag's declarations go into it; names are resolved once all were seen.
inline void QeXmlReader::Engine::ConformingNodes::readStartTag() {
    const RawName name = readTagName();
    engine.bindings.openScope();
    state.tags.openTag(source());
    if (next() == '>' && !state.declared.hasAttributes()) {
        engine.slots.writeNoAttributes();
    } else {
        const Lending lending(*this);
        engine.slots.readAttributes(name, input, reader.expandAttributeReference, state.tags);
    }
    closeStartTag(name);
}

// Entered in front of the '>' or '/'.
inline void QeXmlReader::Engine::ConformingNodes::closeStartTag(const RawName& name) {
    const bool isEmpty = peek() == '/';
    if (isEmpty) skip(1);
    require('>', Rule::Attribute);
    if (!engine.slots.writeElementName(name)) tessit::refuse(source(), name.data, Rule::UnboundPrefix, name.prefix());
    engine.lastTag = {name.data - 1, &source()};
    if (!isEmpty) {
        engine.openElements.push(name.whole());  // which can throw
        if (engine.windowed != nullptr) engine.windowed->openTags.open(reader.depth + 1, name.data - 1);
        ++reader.depth;
        reader.lastNodeType = ElementStart;
        return;
    }
    reader.lastNodeType = EmptyElement;
    engine.bindings.closeScope();
    if (reader.depth == 0) state.phase = Conforming::InEpilog;
}

// Entered at the '/'. Names are written as in the start tag, so they mean the same; most end tags close the element
// whose start tag was the last one: then the name is there already.
inline void QeXmlReader::Engine::ConformingNodes::readEndTag() {
    skip(1);
    const std::string_view opened = engine.openElements.innermost();
    const std::string_view name(position(), opened.size());
    if (standsHere(opened, '>')) {
        skip(opened.size() + 1);
    } else {
        apart([opened](ConformingNodes& nodes) { nodes.passEndTag(opened); });
    }
    if (!state.entities.empty() && reader.depth == state.entities.back().depth)
        tessit::refuse(source(), name.data(), Rule::EntityNesting, name);
    if (!corvel::sameBytes(engine.slots.elementAsWritten(), opened) || !engine.slots.meansTheSameHere())
        engine.slots.writeElementName(RawName::of(name, state.options.namespaces));
    engine.bindings.closeScope();
    engine.openElements.pop();
    reader.lastNodeType = ElementEnd;
    if (--reader.depth == 0) state.phase = Conforming::InEpilog;
}

// The name may be followed by white space, and may be another one.
TESSIT_NOINLINE void QeXmlReader::Engine::ConformingNodes::passEndTag(std::string_view opened) {
    StrictScanner scanner(source(), position());
    const char* const start = position();
    const std::string_view name = scanner.readName(Rule::EndTag);
    if (name != opened) engine.refuseEndTag({start, &source()}, name);
    scanner.passSpace();
    scanner.require(">", Rule::EndTag);
    goBackTo(scanner.position());
}

// --- Text

// Whether there is a node to deliver: a text, or what stands in its place.
inline bool QeXmlReader::Engine::ConformingNodes::readText(Others others) {
    if (readShortText(reader.lastContent, '>')) {
        reader.lastNodeType = Content;
        return true;
    }
    return apart([others](ConformingNodes& nodes) { return nodes.readLongText(others); });
}

// Piece by piece, through entities and what is passed.
TESSIT_NOINLINE bool QeXmlReader::Engine::ConformingNodes::readLongText(Others others) {
    reader.lastNodeType = Content;
    const char* const start = position();
    if (readTextRun(reader.lastContent, '>')) return position() != start;
    bool found = position() != start;  // whether there is any text, be it of no bytes
    for (bool goesOn = true; goesOn;) {
        needRestOfText(others);
        const char* const before = position();
        appendRuns(reader.lastContent);
        found = found || position() != before;
        needRestOfText(others);
        if (atEnd()) {
            leaveEntity();
        } else {
            goesOn = peek() == '&' ? readReference(others, found) : readMarkupInText(others, found);
        }
        if (engine.hasLimits()) engine.holdNode(position());
    }
    return found || reader.lastNodeType != Content;
}

// Appends text up to markup, to the end, or to a reference to an entity that is not predefined.
void QeXmlReader::Engine::ConformingNodes::appendRuns(QeCString& target) {
    tessit::TextBuilder text(target, input.limits().text);
    // In what an internal entity brought, line ends are what they shall be.
    const bool isAsWritten = source().hasPlaces;
    while (!atEnd() && peek() != '<') {
        const char* at = position();
        text.putRun(at, limit(), '<', '&', '\r', '>');
        goBackTo(at);
        if (atEnd() || peek() == '<') return;
        switch (const char byte = peek()) {
            case '&':
                if (!appendCharacter(text)) return;
                break;
            case '>':
                if (at - source().begin() >= 2 && at[-1] == ']' && at[-2] == ']') {
                    goBackTo(at - 2);
                    refuse(Rule::CDATAEndInText);
                }
                text.put(byte);
                skip(1);
                break;
            default:
                skip(1);
                if (!isAsWritten)
                    text.put(byte);
                else if (atEnd() || peek() != '\n')
                    text.put('\n');
        }
    }
}

// Entered at an '&'. Where an entity that is not predefined stands there, does nothing and returns false.
inline bool QeXmlReader::Engine::ConformingNodes::appendCharacter(tessit::TextBuilder& text) {
    const char* const start = position();
    skip(1);
    char predefined;
    if (passPredefined(predefined)) {
        text.put(predefined);
        return true;
    }
    if (atEnd() || peek() != '#') {
        goBackTo(start);
        return false;
    }
    StrictScanner scanner(source(), start + 2);
    text.put(scanner.readCharacterReference());
    goBackTo(scanner.position());
    return true;
}

// Entered at the '&' of a reference to an entity. Whether the text goes on, behind it or in what it brings.
bool QeXmlReader::Engine::ConformingNodes::readReference(Others others, bool& found) {
    const char* const start = position();
    StrictScanner scanner(source(), start + 1);
    const std::string_view name = scanner.readReferenceName(state.options.namespaces);
    tessit::hold(name.size(), input.limits().name, tessit::Limit::Name, name.data());
    tessit::Entity* const entity = state.declared.get().resolve(source(), start, name);
    const Source* const text = entity == nullptr ? nullptr : state.declared.get().open(*entity, source(), start);
    if (text == nullptr) {
        const bool isNode = others == Others::Deliver && state.delivers(QeXmlNodes::References);
        if (isNode && found) return false;
        goBackTo(scanner.position());
        holdText(static_cast<std::size_t>(scanner.position() - start));
        reader.lastContent.append(start, static_cast<std::size_t>(scanner.position() - start));
        found = true;
        if (isNode) {
            engine.lastNode = {start, &source()};  // behind those that brought nothing
            reader.lastNodeType = EntityReference;
            state.target.assign(name);
        }
        return !isNode;
    }
    goBackTo(scanner.position());
    if (entity->isPlainText) {
        holdText(text->text.size());
        reader.lastContent += text->text;
        found = found || !text->text.empty();
        state.declared.get().close(*entity);
        return true;
    }
    enterEntity(*entity);
    return true;
}

// Entered at a '<' in text. Whether the text goes on behind what stands there.
bool QeXmlReader::Engine::ConformingNodes::readMarkupInText(Others others, bool& found) {
    if (limit() - position() < 2) refuseEnd();
    const char kind = position()[1];
    const Others behindText = others == Others::Deliver ? Others::Leave : others;  // nodes come behind the text
    if (kind == '?') return !readInstruction(behindText);
    if (kind != '!') return false;
    if (isCommentHere()) return !readComment(behindText);
    if (others == Others::Deliver && state.delivers(QeXmlNodes::CDATASections)) {
        requireCDATA();
        return false;
    }
    readCDATA(reader.lastContent);
    found = true;
    return true;
}

// --- Entities

void QeXmlReader::Engine::ConformingNodes::enterEntity(tessit::Entity& entity) {
    state.entities.push_back({&entity, position(), reader.depth});
    goOnIn(entity.source, entity.source.begin());
}

void QeXmlReader::Engine::ConformingNodes::goOnIn(const Source& text, const char* place) {
    if (engine.hasLimits()) {
        Conforming::Parts& parts = state.parts;
        if (parts.node != engine.lastNode.begin) parts = {engine.lastNode.begin, engine.lastNode.begin, 0};
        parts.bytes += static_cast<std::uint64_t>(position() - parts.begin);
        parts.begin = place;
    }
    const Lending lending(*this);
    engine.input.enter(text, place);
}

// A text goes on behind each reference, and what it comes to, for as long as nothing ends it.
inline void QeXmlReader::Engine::ConformingNodes::needRestOfText(Others others) {
    if (engine.windowed == nullptr) return;
    const Lending lending(*this);
    engine.needRestOfText(others == Others::Deliver);
}

// Entered at the end of what is read. What an entity brings has to be complete in itself.
TESSIT_NOINLINE void QeXmlReader::Engine::ConformingNodes::leaveEntity() {
    if (state.entities.empty() || source().endsBy != Rule::None) refuseEnd();
    const Conforming::OpenEntity left = state.entities.back();
    if (reader.depth != left.depth) refuse(Rule::EntityNesting, engine.openElements.innermost());
    state.entities.pop_back();
    state.declared.get().close(*left.entity);
    goOnIn(*left.entity->source.parent, left.resume);
}
