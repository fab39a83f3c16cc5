// The pull interface: drives the scanner and holds the node that it finds against
// what the caller expects.

#include <corvel/byte_scan.h>
#include <tessit/model/find_prefix.h>
#include <tessit/reader/char_class.h>
#include <tessit/reader/raw_copy.h>
#include <tessit/reader/xml_reader.h>

// A name that the caller expects, in either form; a view of `expectedName`. A string
// is resolved only when the tag is known: what its prefix means depends on where
// the tag stands.
struct QeXmlReader::ExpectedName {
    explicit ExpectedName(const QeXmlName& name)
        : prefix(name.getNamespace().getPrefix()), local(name.getLocalName()), uri(&name.getNamespace().getURI()) {}

    explicit ExpectedName(const QeCString& qname) : uri(nullptr) {
        const std::string_view text(qname);
        const bool isPlain = qname.isInline() && corvel::areNone(text.data(), text.size(), ':');  // as most
        const std::size_t colon = isPlain ? std::string_view::npos : text.find(':');
        if (colon != std::string_view::npos) prefix = text.substr(0, colon);
        local = colon == std::string_view::npos ? text : text.substr(colon + 1);
    }

    QeCString asString() const {
        QeCString text(prefix);
        if (!prefix.empty()) text += ':';
        text += local;
        return text;
    }

    std::string_view prefix;
    std::string_view local;
    const QeCString* uri;  // of a name; null for a string
};

namespace {

const QeCString& uriOf(const QeXmlNamespace* binding) {
    return binding == nullptr ? QeXmlAttributeSet::EmptyString : binding->getURI();
}

}  // namespace

// The caller's name may be one of the last-node members, or part of one, which the
// scan writes over: it is held against the tag as it is now. What demands a tag
// looks at it only behind the scan, since a processor waits for bytes that were
// written just before in other pieces than they are read: records take 10 % less time.
const QeXmlName& QeXmlReader::keepExpected(const QeXmlName& name) {
    return expectedName = name;
}

const QeCString& QeXmlReader::keepExpected(const QeCString& qname) {
    return expectedName.localName = qname;
}

void QeXmlReader::takeNextNode() {
    if (nodePending) {
        nodePending = false;
        return;
    }
    scanContent();
    readNextNode();
}

// An empty-element tag whose end was not taken yet is what comes next itself.
void QeXmlReader::lookAhead() {
    if (nodePending || lastNodeType == EmptyElement) return;
    scanContent();
    readNextNode();
    nodePending = true;
}

// What a prefix is bound to inside the last tag, the tag's own declarations included.
const QeCString& QeXmlReader::uriInsideTag(std::string_view prefix) const noexcept {
    if (const QeXmlNamespace* own = closedScope.findPrefix(prefix)) return own->getURI();
    return uriOf(namespaceStack.findPrefix(prefix));
}

// The URI of an expected name: a string has the one that its prefix has in front of the last tag, which opened an
// element.
const QeCString& QeXmlReader::uriOfExpected(const ExpectedName& expected) const noexcept {
    if (expected.uri != nullptr) return *expected.uri;
    using From = QeXmlNamespaceStack::From;
    const From infront = lastNodeType == ElementStart ? From::AroundInnermost : From::Innermost;
    return uriOf(namespaceStack.findPrefix(expected.prefix, infront));
}

bool QeXmlReader::matchesStart(const ExpectedName& expected) {
    if (lastName.getLocalName() != expected.local) return false;
    const QeCString& uri = uriOfExpected(expected);
    return lastName.ns.uri == (uri.empty() ? uriInsideTag(expected.prefix) : uri);
}

// Whether the name is the empty one, which asks for any element.
bool QeXmlReader::asksForAny(const ExpectedName& expected) const noexcept {
    return expected.local.empty() && uriOfExpected(expected).empty();
}

bool QeXmlReader::matchesEnd(const ExpectedName& expected) {
    if (lastName.getLocalName() != expected.local) return false;
    return lastName.ns.uri == (expected.uri == nullptr ? uriInsideTag(expected.prefix) : *expected.uri);
}

void QeXmlReader::raiseMismatch(const ExpectedName& expected) const {
    QeCString message("Expected ");
    message += expected.asString();
    message += ", found ";
    message += lastName.asString();
    err(message);
}

void QeXmlReader::readElementStart() {
    takeNextNode();
    if (!opensElement()) raise("Couldn't find start tag");
}

template <typename Name>
const QeXmlAttributeSet& QeXmlReader::demandStart(const Name& name) {
    readElementStart();
    const ExpectedName expected(name);
    if (!matchesStart(expected)) raiseMismatch(expected);
    return lastAttributes;
}

const QeXmlAttributeSet& QeXmlReader::readElementStart(const QeXmlName& name) {
    return demandStart(keepExpected(name));
}

const QeXmlAttributeSet& QeXmlReader::readElementStart(const QeCString& qname) {
    return demandStart(keepExpected(qname));
}

void QeXmlReader::readElementEnd() {
    if (lastNodeType == EmptyElement) {
        lastNodeType = ElementEnd;
        nodePending = false;
        return;
    }
    takeNextNode();
    if (lastNodeType != ElementEnd) raise("Couldn't find end tag");
}

template <typename Name>
void QeXmlReader::demandEnd(const Name& name) {
    readElementEnd();
    const ExpectedName expected(name);
    if (!matchesEnd(expected)) raiseMismatch(expected);
}

void QeXmlReader::readElementEnd(const QeXmlName& name) {
    demandEnd(keepExpected(name));
}

void QeXmlReader::readElementEnd(const QeCString& qname) {
    demandEnd(keepExpected(qname));
}

const QeCString& QeXmlReader::readElementValue() {
    if (nodePending) {
        nodePending = false;
    } else {
        scanContent();
    }
    return lastContent;
}

template <typename Name>
bool QeXmlReader::startsNext(const Name& name) {
    lookAhead();
    return opensElement() && matchesStart(ExpectedName(name));
}

bool QeXmlReader::isElementNext(const QeXmlName& name) {
    return startsNext(keepExpected(name));
}

bool QeXmlReader::isElementNext(const QeCString& qname) {
    return startsNext(keepExpected(qname));
}

QeCString QeXmlReader::readElement(const QeXmlName& name) {
    return readRawElement(ExpectedName(keepExpected(name)));
}

QeCString QeXmlReader::readElement(const QeCString& qname) {
    return readRawElement(ExpectedName(keepExpected(qname)));
}

QeCString QeXmlReader::readRawElement(const ExpectedName& expected) {
    RawCopy copy(*this);
    const bool wasPending = nodePending;
    if (!wasPending) takeNextNode();
    if (!opensElement()) {
        nodePending = true;
        lastContent.clear();
        return QeCString();
    }
    QeCString front;
    if (wasPending) front = rebuildTag();  // it stands before the copy's begin
    nodePending = false;
    if (!asksForAny(expected) && !matchesStart(expected)) raiseMismatch(expected);
    if (lastNodeType == EmptyElement) {
        lastContent.clear();
        return copy.textAfter(std::move(front));
    }
    const std::size_t frontLength = front.length();
    const std::size_t contentStart = copy.length();
    const std::size_t contentEnd = skipToMatchingEnd(copy);
    QeCString markup = copy.textAfter(std::move(front));
    lastContent.assign(markup.substring(frontLength + contentStart, contentEnd - contentStart));
    return markup;
}

// Reads up to the end tag of the element that the last tag opened, and leaves that
// tag's attributes in place. Returns where the scan of the end tag began.
std::size_t QeXmlReader::skipToMatchingEnd(const RawCopy& copy) {
    QeXmlName startName(lastName.localName);
    startName.ns.uri.shareBlockOf(lastName.ns.uri);
    QeXmlAttributeSet attributes = std::move(lastAttributes);
    forgetSlots();
    std::size_t contentEnd = copy.length();
    for (std::ptrdiff_t level = 1;; contentEnd = copy.length()) {
        readNextNode();
        if (lastNodeType != ElementStart && lastNodeType != ElementEnd) continue;
        if (lastName != startName) continue;
        level += lastNodeType == ElementStart ? 1 : -1;
        if (level == 0) break;
    }
    lastAttributes = std::move(attributes);
    forgetSlots();
    return contentEnd;
}

// The start tag that was scanned ahead, written anew.
QeCString QeXmlReader::rebuildTag() const {
    QeCString tag("<");
    tag += lastName.asString();
    tag += ' ';
    for (const QeXmlAttribute& attribute : lastAttributes) {
        tag += attribute.getName().asString();
        tag += "=\"";
        tag += attribute.getValue();
        tag += "\" ";
    }
    tag += lastNodeType == EmptyElement ? "/>" : ">";
    return tag;
}
