// The calls that demand what comes next: they have the engine read the next node, and
// hold it against what the caller expects.

#include <utility>

#include <tessit/reader/conforming.h>
#include <tessit/reader/expected_name.h>
#include <tessit/reader/raw_copy.h>
#include <tessit/reader/windowed.h>

namespace {

bool opensElement(QeXmlReader::NodeType type) {
    return type == QeXmlReader::ElementStart || type == QeXmlReader::EmptyElement;
}

}  // namespace

// The caller's name may be one of the last-node members, or part of one, which the scan
// writes over: so it is copied first. What demands a tag looks at it only behind the scan: right after the
// copy was made, the processor would have to wait for it (records take 10 % less time so).
const QeXmlName& QeXmlReader::Engine::keepExpected(const QeXmlName& name) {
    if (windowed != nullptr) [[unlikely]]
        refuseWhileReading();
    return expectedName = name;
}

const QeCString& QeXmlReader::Engine::keepExpected(const QeCString& qname) {
    if (windowed != nullptr) [[unlikely]]
        refuseWhileReading();
    return tessit::ModelAccess::localNameOf(expectedName) = qname;
}

void QeXmlReader::Engine::takeNextNode() {
    if (std::exchange(reader.nodePending, false)) return;
    readContent();
    reader.readNextNode();
}

// An empty-element tag whose end was not taken yet is what comes next itself.
void QeXmlReader::Engine::lookAhead() {
    if (reader.nodePending || reader.lastNodeType == EmptyElement) return;
    readContent();
    pendingStart = nextInDocument();
    const LookingAhead looks(*this);
    reader.readNextNode();
    reader.nodePending = true;
}

// The URI of an expected name: a string has the one that its prefix has in front of the last tag, which opened an
// element.
const QeCString& QeXmlReader::Engine::uriOf(const ExpectedName& expected) const noexcept {
    if (expected.uri != nullptr) return *expected.uri;
    return bindings.uriInFrontOfTag(expected.prefix, reader.lastNodeType == ElementStart);
}

bool QeXmlReader::Engine::matchesStart(const ExpectedName& expected) const {
    if (reader.lastName.getLocalName() != expected.local) return false;
    const QeCString& uri = uriOf(expected);
    return reader.lastName.getNamespace().getURI() == (uri.empty() ? bindings.uriInsideTag(expected.prefix) : uri);
}

bool QeXmlReader::Engine::matchesEnd(const ExpectedName& expected) const {
    if (reader.lastName.getLocalName() != expected.local) return false;
    const QeCString& uri = expected.uri == nullptr ? bindings.uriInsideTag(expected.prefix) : *expected.uri;
    return reader.lastName.getNamespace().getURI() == uri;
}

// Whether the name is the empty one, which asks for any element.
bool QeXmlReader::Engine::asksForAny(const ExpectedName& expected) const noexcept {
    return expected.local.empty() && uriOf(expected).empty();
}

void QeXmlReader::Engine::raiseMismatch(const ExpectedName& expected) const {
    QeCString message("Expected ");
    message += expected.asString();
    message += ", found ";
    message += reader.lastName.asString();
    input.raise(message);
}

void QeXmlReader::Engine::demandStart() {
    takeNextNode();
    if (!opensElement(reader.lastNodeType)) input.raise("Couldn't find start tag");
}

void QeXmlReader::Engine::demandEnd() {
    if (reader.lastNodeType == EmptyElement) {
        reader.lastNodeType = ElementEnd;
        reader.nodePending = false;
        return;
    }
    takeNextNode();
    if (reader.lastNodeType != ElementEnd) input.raise("Couldn't find end tag");
}

// `name` stays as it is while the node is read.
template <typename Name>
void QeXmlReader::Engine::demandStart(const Name& name) {
    demandStart();
    const ExpectedName expected(name);
    if (!matchesStart(expected)) raiseMismatch(expected);
}

template <typename Name>
void QeXmlReader::Engine::demandEnd(const Name& name) {
    demandEnd();
    const ExpectedName expected(name);
    if (!matchesEnd(expected)) raiseMismatch(expected);
}

template <typename Name>
bool QeXmlReader::Engine::startsNext(const Name& name) {
    lookAhead();
    return opensElement(reader.lastNodeType) && matchesStart(ExpectedName(name));
}

QeCString QeXmlReader::Engine::readElement(const ExpectedName& expected) {
    const bool wasPending = reader.nodePending;
    const bool isThere = wasPending && conforming != nullptr;  // the tag as written; a lenient reader's document can go
    RawCopy copy(*this, isThere ? pendingStart : nextInDocument());
    if (!wasPending) takeNextNode();
    if (!opensElement(reader.lastNodeType)) {
        reader.nodePending = true;
        reader.lastContent.clear();
        return QeCString();
    }
    QeCString front;
    if (wasPending && !isThere) front = rebuildTag();  // it stands before the copy's begin
    reader.nodePending = false;
    if (!asksForAny(expected) && !matchesStart(expected)) raiseMismatch(expected);
    if (reader.lastNodeType == EmptyElement) {
        reader.lastContent.clear();
        return copy.textAfter(std::move(front));
    }
    const std::size_t frontLength = front.length();
    const std::size_t contentStart = copy.length();
    const std::size_t contentEnd = skipToMatchingEnd(copy);
    QeCString markup = copy.textAfter(std::move(front));
    reader.lastContent.assign(markup.substring(frontLength + contentStart, contentEnd - contentStart));
    return markup;
}

// Reads up to the end tag of the element that the last tag opened, and leaves that
// tag's attributes, and what is told of them, in place. Returns where the scan of the end tag began.
std::size_t QeXmlReader::Engine::skipToMatchingEnd(RawCopy& copy) {
    const QeXmlName startName(reader.lastName);
    copy.startTag = lastTag;
    QeXmlAttributeSet attributes = std::move(reader.lastAttributes);
    tessit::ConformingTags::Told told;
    if (conforming != nullptr) told = conforming->tags.takeTold();
    slots.forgetSlots();
    std::size_t contentEnd = copy.length();
    for (std::ptrdiff_t level = 1;; contentEnd = copy.length()) {
        reader.readNextNode();
        if (reader.lastNodeType != ElementStart && reader.lastNodeType != ElementEnd) continue;
        if (reader.lastName != startName) continue;
        level += reader.lastNodeType == ElementStart ? 1 : -1;
        if (level == 0) break;
    }
    lastTag = copy.startTag;
    reader.lastAttributes = std::move(attributes);
    if (conforming != nullptr) conforming->tags.putBack(std::move(told));
    slots.forgetSlots();
    return contentEnd;
}

// The start tag that was scanned ahead, written anew.
QeCString QeXmlReader::Engine::rebuildTag() const {
    QeCString tag("<");
    tag += reader.lastName.asString();
    tag += ' ';
    for (const QeXmlAttribute& attribute : std::as_const(reader.lastAttributes)) {
        tag += attribute.getName().asString();
        tag += "=\"";
        tag += attribute.getValue();
        tag += "\" ";
    }
    tag += reader.lastNodeType == EmptyElement ? "/>" : ">";
    return tag;
}

void QeXmlReader::readElementStart() {
    engine->demandStart();
}

const QeXmlAttributeSet& QeXmlReader::readElementStart(const QeXmlName& name) {
    engine->demandStart(engine->keepExpected(name));
    return lastAttributes;
}

const QeXmlAttributeSet& QeXmlReader::readElementStart(const QeCString& qname) {
    engine->demandStart(engine->keepExpected(qname));
    return lastAttributes;
}

void QeXmlReader::readElementEnd() {
    engine->demandEnd();
}

void QeXmlReader::readElementEnd(const QeXmlName& name) {
    engine->demandEnd(engine->keepExpected(name));
}

void QeXmlReader::readElementEnd(const QeCString& qname) {
    engine->demandEnd(engine->keepExpected(qname));
}

const QeCString& QeXmlReader::readElementValue() {
    if (!std::exchange(nodePending, false)) engine->readContent();
    return lastContent;
}

bool QeXmlReader::isElementNext(const QeXmlName& name) {
    return engine->startsNext(engine->keepExpected(name));
}

bool QeXmlReader::isElementNext(const QeCString& qname) {
    return engine->startsNext(engine->keepExpected(qname));
}

QeCString QeXmlReader::readElement(const QeXmlName& name) {
    return engine->readElement(ExpectedName(engine->keepExpected(name)));
}

QeCString QeXmlReader::readElement(const QeCString& qname) {
    return engine->readElement(ExpectedName(engine->keepExpected(qname)));
}
