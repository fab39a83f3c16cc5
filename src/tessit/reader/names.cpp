// Namespace resolution: from names as written to names with their URIs, and from
// the attributes as scanned to the set that is handed out.

#include <algorithm>

#include <corvel/byte_scan.h>
#include <tessit/reader/xml_reader.h>

namespace {

constexpr std::string_view Xmlns = "xmlns";

// What names without a namespace are resolved to: its prefix and URI are empty.
constinit const QeXmlNamespace NoNamespace;

}  // namespace

void QeXmlReader::addAttribute(const RawAttribute& attribute) {
    rawAttributes.push_back(attribute);
    const bool mayDeclare = shapeNext == nullptr;  // what a shape expects is no declaration
    if (mayDeclare && attribute.name.whole().starts_with(Xmlns)) declareNamespace(attribute);
}

// Declarations take effect at once, for the names of the whole tag, and stay among the attributes.
void QeXmlReader::declareNamespace(const RawAttribute& attribute) {
    const RawName& name = attribute.name;
    if (name.whole() == Xmlns) {
        namespaceStack.addBinding(std::string_view(), valueOf(attribute));
    } else if (name.prefix() == Xmlns) {
        namespaceStack.addBinding(name.local(), valueOf(attribute));
    }
}

std::string_view QeXmlReader::valueOf(const RawAttribute& attribute) const noexcept {
    if (attribute.value.data() != nullptr) return attribute.value;
    return valueScratch.substring(attribute.expanded.start, attribute.expanded.length);
}

// Called once the whole tag was read: turns the attributes as scanned into the
// set. They are put in order before they are written, so that each string is
// written once, into its final place.
void QeXmlReader::fixupAttributes() {
    if (rawAttributes.empty()) return lastAttributes.clear();
    if (keepsShape()) {
        fillShape();
    } else {
        fillAnew();
    }
    lastAttributes.lookAtLocalNames();
}

void QeXmlReader::fillAnew() {
    shape->isInSlots = false;  // until all is written: an assignment can throw
    for (RawAttribute& attribute : rawAttributes)
        attribute.value = valueOf(attribute);
    const std::size_t count = rawAttributes.size();
    if (count > 1) sortAttributes();
    writeAttributes();
    if (count == rawAttributes.size()) learnShape();
}

// The slots of one shape are those of `lastAttributes`; those of the others are parked.
void QeXmlReader::expectShapeOf(const RawName& element) {
    if (shapes.empty()) shapes.resize(ShapeCount);
    const auto first = static_cast<unsigned char>(element.data[0]);
    const auto last = static_cast<unsigned char>(element.data[element.length - 1]);
    TagShape* const expected = &shapes[(element.length + first * 3u + last * 5u) % ShapeCount];
    if (expected == shape) return;
    if (shape != nullptr) lastAttributes.attributes.swap(shape->parked);
    lastAttributes.attributes.swap(expected->parked);
    shape = expected;
}

bool QeXmlReader::keepsShape() const noexcept {
    return shapeNext != nullptr && shapeNext == shape->attributes.data() + shape->attributes.size();
}

// Writes the attributes of a tag that kept its shape, whose names may have come to mean something else.
void QeXmlReader::fillShape() {
    shape->isInSlots = false;  // until all is written: an assignment can throw
    openSlots(rawAttributes.size());
    for (const RawAttribute& attribute : rawAttributes)
        writeAttribute(shape->attributes[attribute.position].slot, attribute);
    shape->isInSlots = true;
    shape->state = namespaceStack.state();
}

namespace {

// The order of the set, and what makes two attributes the same: the local name,
// then the prefix as written, whatever it is bound to. A default declaration
// stands by its value there.
template <typename Attribute>
int compareAsWritten(const Attribute& left, const Attribute& right) {
    const auto secondKey = [](const Attribute& attribute) {
        return attribute.name.whole() == Xmlns ? attribute.value : attribute.name.prefix();
    };
    const int order = left.name.local().compare(right.name.local());
    return order != 0 ? order : secondKey(left).compare(secondKey(right));
}

}  // namespace

// Puts the attributes in order, each name once: of equal ones, the first one's
// name and the last one's value count.
void QeXmlReader::sortAttributes() {
    const auto ascending = [](const RawAttribute& left, const RawAttribute& right) {
        return compareAsWritten(left, right) < 0;
    };
    const auto unsorted = [&](const RawAttribute& left, const RawAttribute& right) { return !ascending(left, right); };
    if (std::adjacent_find(rawAttributes.begin(), rawAttributes.end(), unsorted) == rawAttributes.end()) return;

    std::sort(rawAttributes.begin(), rawAttributes.end(), [](const RawAttribute& left, const RawAttribute& right) {
        const int order = compareAsWritten(left, right);
        return order != 0 ? order < 0 : left.name.data < right.name.data;  // equal ones as in the document
    });
    auto out = rawAttributes.begin();
    for (auto first = out; first != rawAttributes.end(); ++out) {
        const auto next = std::find_if(first + 1, rawAttributes.end(),
                                       [&](const RawAttribute& other) { return compareAsWritten(*first, other) != 0; });
        const std::string_view value = (next - 1)->value;
        *out = *first;
        out->value = value;
        first = next;
    }
    rawAttributes.erase(out, rawAttributes.end());
}

// Fills the set in place, over what the last tag left in its slots.
void QeXmlReader::writeAttributes() {
    openSlots(rawAttributes.size());
    std::size_t slot = 0;
    for (const RawAttribute& attribute : rawAttributes)
        writeAttribute(slot++, attribute);
}

// Gives the set that many attributes, with what earlier tags left in them.
void QeXmlReader::openSlots(std::size_t count) {
    if (shape->written.size() < count) shape->written.resize(count);
    lastAttributes.attributes.takeSlots(count);
    lastAttributes.knownSorted = false;  // where local names are equal, sorted by prefix, not by URI
}

void QeXmlReader::writeAttribute(std::size_t slot, const RawAttribute& attribute) {
    const std::string_view prefix = attribute.name.prefix();
    QeXmlAttribute& target = lastAttributes.attributes[slot];
    writeName(target.name, shape->written[slot], attribute.name, prefix.empty() ? &NoNamespace : bindingFor(prefix));
    target.value.assign(valueOf(attribute));
}

// Keeps the tag that was just written as what the next one of its name is
// expected to look like. A tag that declares namespaces is none to expect again;
// one with very many attributes is not worth the memory.
void QeXmlReader::learnShape() {
    constexpr std::size_t MostAttributes = 64;
    const std::size_t count = rawAttributes.size();
    shape->attributes.clear();
    if (count > MostAttributes || namespaceStack.innermostDeclares()) return;
    shape->attributes.resize(count);
    for (std::size_t slot = 0; slot < count; ++slot)
        shape->attributes[rawAttributes[slot].position] = {rawAttributes[slot].name, slot};
    shape->isInSlots = true;
    shape->state = namespaceStack.state();
}

void QeXmlReader::writeElementName(const RawName& name) {
    const std::string_view prefix = name.prefix();
    const QeXmlNamespace* binding = bindingFor(prefix);
    if (binding == nullptr && prefix.empty()) binding = &NoNamespace;
    writeName(lastName, lastNameWritten, name, binding);
}

// Makes `name` the name as written, in the namespace of `binding`; without one, in
// no namespace, though with its prefix. Does not write what is there already:
// `written` says what that is.
void QeXmlReader::writeName(QeXmlName& name, WrittenName& written, const RawName& raw, const QeXmlNamespace* binding) {
    const std::uint64_t state = namespaceStack.state();
    const bool sameBinding = binding == written.binding;
    const bool sameNamespace = sameBinding && binding != nullptr && (written.state == state || binding == &NoNamespace);
    if ((sameNamespace || (sameBinding && binding == nullptr)) && tessit::sameBytes(written.raw, raw.whole())) return;

    written = {};  // until all is there: an assignment can throw
    name.localName.assign(raw.local());
    if (binding == nullptr) {
        name.ns.prefix.assign(raw.prefix());
        name.ns.uri.clear();
    } else if (!sameNamespace) {
        name.ns.prefix = binding->prefix;
        name.ns.uri.shareBlockOf(binding->uri);
    }
    written = {raw.whole(), binding, state};
}

// The binding of a prefix, or null. Short prefixes go through a small cache, which
// is right as long as the bindings in force are the same.
const QeXmlNamespace* QeXmlReader::bindingFor(std::string_view prefix) noexcept {
    constexpr std::size_t LongestCached = 7;
    const std::uint64_t state = namespaceStack.state();
    if (state == 0) return nullptr;  // nothing is bound at all
    if (prefix.size() > LongestCached) return namespaceStack.findPrefix(prefix);
    std::uint64_t key = prefix.size();
    for (const char byte : prefix)
        key = key << 8 | static_cast<unsigned char>(byte);
    CachedPrefix& cached = prefixCache[(key * 0x9E3779B97F4A7C15u) >> 60];
    if (cached.key != key || cached.state != state) cached = {key, state, namespaceStack.findPrefix(prefix)};
    return cached.binding;
}

void QeXmlReader::closeScope() {
    if (closedScope.depth == 0 && !namespaceStack.innermostDeclares()) return namespaceStack.popScope();
    namespaceStack.popScopeInto(closedScope);
}

void QeXmlReader::forgetWrittenNames() noexcept {
    lastNameWritten = {};
    for (TagShape& known : shapes) {
        known.attributes.clear();
        known.written.clear();
        known.isInSlots = false;
    }
}

// For when the attributes in the slots are no longer those that were written there.
void QeXmlReader::forgetSlots() noexcept {
    if (shape == nullptr) return;
    shape->written.clear();
    shape->isInSlots = false;
}
