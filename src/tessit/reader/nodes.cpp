// Constructs by the lenient rules, told apart by their first bytes. What they mean is for the slots and the bindings.

#include <utility>

#include <corvel/compiler.h>
#include <tessit/reader/nodes.h>
#include <tessit/reader/windowed.h>

// Everything that is called here and stands in a header or in this file is made one
// function: with the cursor in a register from one construct to the next, records read
// 12 % faster.
TESSIT_FLATTEN void QeXmlReader::readNextLenient() {
    for (;;) {
        try {
            return Engine::NodeReader(*engine, *this).readNextNode();
        } catch (const tessit::Cut&) {
            engine->goBack();
        }
    }
}

void QeXmlReader::Engine::readLenientApart() {
    readApart([this] { reader.readNextLenient(); });
}

// Where nothing begins that is known to be there as a whole: there is more of the document then, or its end.
TESSIT_NOINLINE void QeXmlReader::Engine::needNextNode() {
    needNode();
    if (reader.cursor != input.limit()) return;
    lastNode.begin = reader.cursor;
    input.raiseEnd(reader.cursor);
}

void QeXmlReader::Engine::readContent() {
    if (conforming != nullptr) return readConformingContent();
    const auto read = [this] {
        for (;;) {
            try {
                needText();
                lastNode.begin = input.position();
                return NodeReader(*this).readContent();
            } catch (const tessit::Cut&) {
                goBack();
            }
        }
    };
    if (!reader.readsApart) return read();
    readApart(read);
}

inline void QeXmlReader::Engine::NodeReader::readNextNode() {
    for (;;) {
        if (position() >= engine.wholeUpTo) needNextNode();
        engine.lastNode.begin = position();
        if (peek() != '<') return readContent();
        skip(1);
        const char kind = take();
        if (kind == '/') return readEndTag();
        if (kind == '?') {
            apart(&NodeReader::readInstruction);
            engine.holdNode(position());
        } else if (kind != '!') {
            stepBack(1);
            return readStartTag();
        } else {
            if (atEnd()) raiseEnd();
            if (peek() == '[') {
                stepBack(2);
                return readContent();  // a CDATA section is text
            }
            if (peek() != '-') raiseWith("Invalid character sequence <!", {position(), 1});
            skip(1);
            apart(&NodeReader::skipComment);
            engine.holdNode(position());
        }
    }
}

// The same as the scanner's, for what a node reader does.
template <typename Read>
void QeXmlReader::Engine::NodeReader::apart(const Read& read) {
    const Lending lending(*this);
    (NodeReader(engine).*read)();
}

inline void QeXmlReader::Engine::NodeReader::needNextNode() {
    const Lending lending(*this);
    engine.needNextNode();
}

// Entered just after "</".
inline void QeXmlReader::Engine::NodeReader::readEndTag() {
    --reader.depth;
    reader.lastNodeType = ElementEnd;
    try {
        passEndTag();
    } catch (const tessit::Cut&) {
        ++reader.depth;
        reader.lastNodeType = NoNode;  // should no more come
        throw;
    }
    if (reader.matchesTags && !engine.closesInnermost()) apart(&NodeReader::matchEndTag);
}

// The name is resolved while the element's scope is still open.
inline void QeXmlReader::Engine::NodeReader::passEndTag() {
    // Most end tags close the element whose start tag was the last one: then the name is there already.
    if (!skipLastName()) engine.slots.writeElementName(readName());
    skipSpace();
    if (atEnd()) [[unlikely]]
        return apart(&NodeReader::raiseEndInEndTag);
    engine.bindings.closeScope();
    if (const char byte = take(); byte != '>') raiseWith("Unexpected character ", {&byte, 1});
}

void QeXmlReader::Engine::NodeReader::raiseEndInEndTag() {
    input.needMore();
    engine.bindings.closeScope();
    raiseEnd();
}

// Passes the name of the last tag, if it stands here again, ended by a '>', and means the same.
inline bool QeXmlReader::Engine::NodeReader::skipLastName() noexcept {
    const std::string_view name = engine.slots.elementAsWritten();
    if (name.empty() || !standsHere(name, '>') || !engine.slots.meansTheSameHere()) return false;
    skip(name.size());
    return true;
}

// Apart from the loop, which has enough to keep in registers. The tag comes first: should there be no memory for the
// name, that which was at its level before has gone.
TESSIT_NOINLINE void QeXmlReader::Engine::noteOpen(std::string_view name) {
    if (windowed != nullptr) windowed->openTags.open(reader.depth, name.data() - 1);
    openElements.push(name);
}

// Where tags are not matched, there is a window.
inline void QeXmlReader::Engine::NodeReader::noteOpen(const tessit::RawName& name) {
    if (reader.matchesTags) [[unlikely]]
        return engine.noteOpen(name.whole());
    engine.windowed->openTags.open(reader.depth, name.data - 1);
}

// Whether the end tag is written like the start tag of the innermost element, as most are: that is closed then.
TESSIT_NOINLINE bool QeXmlReader::Engine::closesInnermost() noexcept {
    return openElements.popIf(slots.elementAsWritten());
}

TESSIT_NOINLINE void QeXmlReader::Engine::NodeReader::matchEndTag() {
    if (engine.openElements.empty() || !isLikeInnermost()) engine.raiseUnmatched();
    engine.openElements.pop();
}

// Where prefixes differ, both names stand in the scope of the element that closes.
bool QeXmlReader::Engine::NodeReader::isLikeInnermost() const {
    const std::string_view opened = engine.openElements.innermost();
    const auto name = tessit::RawName::of(opened);
    return reader.lastName.getLocalName() == name.local() &&
           reader.lastName.getNamespace().getURI() == engine.bindings.uriInsideTag(name.prefix());
}

// Entered just after the '<'. The scope is opened before the attributes are read,
// so that the tag's declarations go into it; names are resolved once all were seen.
inline void QeXmlReader::Engine::NodeReader::readStartTag() {
    const tessit::RawName name = readName();
    engine.bindings.openScope();
    try {
        readAttributes(name);
        closeStartTag(name);
    } catch (const tessit::Cut&) {
        engine.bindings.dropScope();
        throw;
    }
}

inline void QeXmlReader::Engine::NodeReader::readAttributes(const tessit::RawName& name) {
    if (peek() == '>') return engine.slots.writeNoAttributes();
    const Lending lending(*this);
    engine.slots.readAttributes(name, input, reader.expandAttributeReference);
}

// Entered in front of the '>' or '/', of which there is one.
inline void QeXmlReader::Engine::NodeReader::closeStartTag(const tessit::RawName& name) {
    if (take() == '>') {
        ++reader.depth;
        reader.lastNodeType = ElementStart;
        engine.slots.writeElementName(name);
        engine.lastTag.begin = name.data - 1;
        if (reader.notesOpen) noteOpen(name);
        return;
    }
    if (atEnd()) input.needMore();
    reader.lastNodeType = EmptyElement;
    if (take() != '>') raise("Invalid '/' found in tag");
    engine.slots.writeElementName(name);
    engine.lastTag.begin = name.data - 1;
    engine.bindings.closeScope();
}

inline void QeXmlReader::Engine::NodeReader::readContent() {
    reader.lastNodeType = Content;
    try {
        if (!readShortText(reader.lastContent)) apart(&NodeReader::readLongContent);
    } catch (const tessit::Cut&) {
        reader.lastNodeType = NoNode;  // should no more come
        throw;
    }
}

// Most texts are one run up to the tag. Others go on, piece by piece, with what needs thought in them.
TESSIT_NOINLINE void QeXmlReader::Engine::NodeReader::readLongContent() {
    if (readTextRun(reader.lastContent)) return;
    for (;;) {
        if (atEnd()) raiseEnd();
        if (peek() == '<') {
            skip(1);
            if (!readMarkupInContent()) return;
        } else {
            appendText(reader.lastContent);
        }
    }
}

// Entered just after a '<' in text. Passes a comment or an instruction, takes in a
// CDATA section, and steps back from a tag, where the text ends: then false.
bool QeXmlReader::Engine::NodeReader::readMarkupInContent() {
    const char byte = take();
    if (byte != '?' && byte != '!') {
        stepBack(2);
        return false;
    }
    if (byte == '?')
        readInstruction();
    else
        readDeclarationInContent();
    engine.holdNode(position());
    return true;
}

// Entered just after "<!".
void QeXmlReader::Engine::NodeReader::readDeclarationInContent() {
    switch (const char kind = take()) {
        case '-':
            return skipComment();
        case '[':
            return readCDATA(reader.lastContent);
        default:
            raiseWith("Invalid character sequence <!", {&kind, 1});
    }
}
