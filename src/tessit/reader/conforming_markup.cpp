// What is neither tag nor text, by the conforming rules, and what stands outside of the root element.

#include <tessit/reader/conforming_nodes.h>
#include <tessit/reader/text_builder.h>

using tessit::Rule;
using tessit::StrictScanner;

namespace {

constexpr std::string_view CommentBegin = "<!--", CDATABegin = "<![CDATA[", DocumentTypeBegin = "<!DOCTYPE";

}  // namespace

void QeXmlReader::Engine::ConformingNodes::readProlog() {
    if (engine.windowed != nullptr) needOutside(Others::Leave);
    StrictScanner scanner(source(), position());
    if (position() == source().begin() && !source().isContinued && scanner.isAtDeclaration()) {
        const StrictScanner::Declaration declaration = scanner.readXmlDeclaration();
        engine.limitMarkup(position(), scanner.position());
        reader.version.assign(declaration.version);
        reader.encodingDeclared = !declaration.encoding.empty();
        reader.standaloneDeclared = !declaration.standalone.empty();
        reader.standalone.assign(declaration.standalone);
        goBackTo(scanner.position());
    }
    state.declared.beginDocument(source().text.size(), reader.standalone == "yes");
    passOutside(Others::Leave);
}

// Whether the text stands here; where the source ends in it, the end is refused.
bool QeXmlReader::Engine::ConformingNodes::beginsWith(std::string_view text) {
    const std::string_view here(position(), static_cast<std::size_t>(limit() - position()));
    if (here.size() < text.size() && text.starts_with(here)) refuseEnd();
    return here.starts_with(text);
}

bool QeXmlReader::Engine::ConformingNodes::isCommentHere() {
    return beginsWith(CommentBegin);
}

void QeXmlReader::Engine::ConformingNodes::requireCDATA() {
    if (beginsWith(CDATABegin)) return;
    refuse(beginsWith(DocumentTypeBegin) ? Rule::DocumentTypePlace : Rule::Markup);
}

// Entered at "<!" or "<?" inside the root element.
bool QeXmlReader::Engine::ConformingNodes::readMarkup() {
    if (position()[1] == '?') return readInstruction(Others::Deliver);
    if (isCommentHere()) return readComment(Others::Deliver);
    requireCDATA();
    if (!state.delivers(QeXmlNodes::CDATASections)) return readLongText(Others::Deliver);
    reader.lastContent.clear();
    readCDATA(reader.lastContent);
    reader.lastNodeType = CDATASection;
    return true;
}

// Passes what may stand outside of the root element. Whether a node was delivered, or stands here to be.
bool QeXmlReader::Engine::ConformingNodes::passOutside(Others others) {
    for (;;) {
        if (state.hasInstructions()) {
            if (others != Others::Pass) return deliverInstruction(others);
            state.nextInstruction = state.declared.get().instructions().size();
        }
        if (engine.windowed != nullptr) needOutside(others);
        skipSpace();
        if (atEnd()) {
            if (state.phase == Conforming::InProlog || source().endsBy != Rule::None) refuseEnd();
            reader.bufferEnd = position();  // the document is complete
            return false;
        }
        if (peek() != '<') refuse(Rule::TextOutsideRoot);
        if (others == Others::Deliver) engine.lastNode = {position(), &source()};
        if (limit() - position() < 2) refuseEnd();
        const char kind = position()[1];
        if (kind == '/') refuse(Rule::EndTag);
        if (kind != '?' && kind != '!') {
            if (state.phase == Conforming::InEpilog) refuse(Rule::SecondRoot);
            return false;
        }
        if (kind == '?' ? readInstruction(others) : readMarkupOutside(others)) return true;
    }
}

void QeXmlReader::Engine::ConformingNodes::needOutside(Others others) {
    const Lending lending(*this);
    engine.needOutside(others == Others::Leave);
}

bool QeXmlReader::Engine::ConformingNodes::readMarkupOutside(Others others) {
    if (isCommentHere()) return readComment(others);
    if (beginsWith(CDATABegin)) refuse(Rule::CDATAOutsideRoot);
    if (!beginsWith(DocumentTypeBegin)) refuse(Rule::Markup);
    if (state.phase != Conforming::InProlog || state.documentTypeWasRead) refuse(Rule::DocumentTypePlace);
    return readDocumentType(others);
}

// Whether a node of that kind was delivered, or stands here to be; else it is to be passed.
bool QeXmlReader::Engine::ConformingNodes::isLeft(Others others, QeXmlNodes kind) const {
    return others == Others::Leave && state.delivers(kind);
}

// Inside of the root element, markup that stands here is a node, or part of a text, even if it is passed.
void QeXmlReader::Engine::ConformingNodes::holdMarkup(const char* upTo) const {
    state.phase == Conforming::InRoot ? engine.holdNode(upTo) : engine.limitMarkup(position(), upTo);
}

bool QeXmlReader::Engine::ConformingNodes::readComment(Others others) {
    if (isLeft(others, QeXmlNodes::Comments)) return true;
    StrictScanner scanner(source(), position() + CommentBegin.size());
    const std::string_view text = scanner.readComment();
    holdMarkup(scanner.position());
    goBackTo(scanner.position());
    if (others == Others::Pass || !state.delivers(QeXmlNodes::Comments)) return false;
    deliver(Comment, text);
    return true;
}

bool QeXmlReader::Engine::ConformingNodes::readInstruction(Others others) {
    if (isLeft(others, QeXmlNodes::Instructions)) return true;
    StrictScanner scanner(source(), position() + std::string_view("<?").size());
    const auto [target, data] = scanner.readInstruction(state.options.namespaces);
    tessit::hold(target.size(), input.limits().name, tessit::Limit::Name, target.data());
    holdMarkup(scanner.position());
    goBackTo(scanner.position());
    if (others == Others::Pass || !state.delivers(QeXmlNodes::Instructions)) return false;
    state.target.assign(target);
    deliver(Instruction, data);
    return true;
}

// One of those among the declarations, which are delivered behind the document type.
bool QeXmlReader::Engine::ConformingNodes::deliverInstruction(Others others) {
    if (others == Others::Leave) return true;
    engine.lastNode.begin = state.documentTypeBegin;
    const auto& [target, data] = state.declared.get().instructions()[state.nextInstruction++];
    state.target.assign(target);
    deliver(Instruction, data);
    return true;
}

// The declaration is read in one go: it is delivered, or not, behind it.
bool QeXmlReader::Engine::ConformingNodes::readDocumentType(Others others) {
    if (isLeft(others, QeXmlNodes::DocumentType)) return true;
    StrictScanner scanner(source(), position() + DocumentTypeBegin.size());
    state.documentTypeWasRead = true;
    state.documentTypeBegin = position();
    state.declared.get().readDocumentType(scanner, state.documentType);
    engine.limitMarkup(position(), scanner.position());
    goBackTo(scanner.position());
    state.documentTypeEnd = position();
    if (others == Others::Pass || !state.delivers(QeXmlNodes::DocumentType)) return false;
    state.target = state.documentType.name;
    deliver(DocumentType, {});
    return true;
}

// Makes the text the last content, with line ends made one line feed.
void QeXmlReader::Engine::ConformingNodes::deliver(NodeType type, std::string_view text) {
    reader.lastNodeType = type;
    reader.lastContent.clear();
    appendAsWritten(reader.lastContent, text);
}

void QeXmlReader::Engine::ConformingNodes::appendAsWritten(QeCString& target, std::string_view text) {
    const char* const textEnd = text.data() + text.size();
    if (!source().hasPlaces || corvel::findByte(text.data(), textEnd, '\r') == textEnd) {
        tessit::hold(target.length() + text.size(), input.limits().text, tessit::Limit::Text);
        target += text;
        return;
    }
    tessit::TextBuilder builder(target, input.limits().text);
    for (const char* at = text.data(); at != textEnd;) {
        builder.putRun(at, textEnd, '\r');
        if (at == textEnd) return;
        if (++at == textEnd || *at != '\n') builder.put('\n');
    }
}

// Entered at "<!["; appends the section's text.
void QeXmlReader::Engine::ConformingNodes::readCDATA(QeCString& text) {
    constexpr std::string_view End = "]]>";
    requireCDATA();
    const char* const start = position() + CDATABegin.size();
    const char* const found = corvel::findText(start, limit(), End);
    if (found == limit()) refuseEnd();
    appendAsWritten(text, {start, static_cast<std::size_t>(found - start)});
    holdMarkup(found + End.size());
    goBackTo(found + End.size());
}
