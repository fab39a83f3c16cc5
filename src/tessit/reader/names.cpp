// Namespace resolution: from names as written to names with their URIs, and from
// the attributes as scanned to the set that is handed out.

#include <algorithm>

#include <corvel/byte_scan.h>
#include <tessit/model/find_prefix.h>
#include <tessit/reader/xml_reader.h>

namespace {

constexpr std::string_view Xmlns = "xmlns";

// Room that a shape gets at once, so that growing attribute by attribute does not allocate each time.
constexpr std::size_t LeastSlots = 4;

// What names without a namespace are resolved to: its prefix and URI are empty.
constinit const QeXmlNamespace NoNamespace;

}  // namespace

void QeXmlReader::addAttribute(const RawAttribute& attribute) {
    rawAttributes.push_back(attribute);
    if (attribute.name.whole().starts_with(Xmlns)) declareNamespace(attribute);
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

// Called once the whole tag was read: turns the attributes as scanned into the set.
// They are put in order before they are written, so that each string is written
// once, into its final place.
void QeXmlReader::fixupAttributes() {
    if (rawAttributes.empty()) return lastAttributes.clear();
    shape->isInSlots = false;  // until all is written: an assignment can throw
    if (!valueScratch.empty())
        for (RawAttribute& attribute : rawAttributes)
            attribute.value = valueOf(attribute);
    constexpr std::size_t Few = 8;
    Ordered few[Few];
    const std::size_t count = rawAttributes.size();
    if (count > Few) manyOrdered.resize(count);
    const std::span<Ordered> ordered = putInOrder({count > Few ? manyOrdered.data() : few, count});
    writeAttributes(ordered);
    if (shape->pause == 0 && shape != &firstShape && ordered.size() == count) learnShape(ordered);
    lastAttributes.lookAtLocalNames();
}

// A tag that is the first of its name may be the only one, in a small document:
// nothing is learnt from it.
QeXmlReader::TagShape* QeXmlReader::shapeNumber(std::size_t number) {
    const std::uint32_t bit = std::uint32_t{1} << number;
    if ((shapesSeen & bit) == 0) {
        shapesSeen |= bit;
        return &firstShape;
    }
    if (shapes.empty()) shapes.resize(ShapeCount);
    return &shapes[number];
}

// The slots of one shape are those of `lastAttributes`; those of the others are parked.
void QeXmlReader::expectShapeOf(const RawName& element) {
    const auto first = static_cast<unsigned char>(element.data[0]);
    const auto last = static_cast<unsigned char>(element.data[element.length - 1]);
    TagShape* const expected = shapeNumber((element.length + first * 3u + last * 5u) % ShapeCount);
    if (expected == shape) return;
    if (shape != nullptr) lastAttributes.attributes.swap(shape->parked);
    lastAttributes.attributes.swap(expected->parked);
    shape = expected;
}

// Whether this tag is expected to look like the last one of its name. Where tags
// often turned out different, most are not even compared.
bool QeXmlReader::expectsShape() noexcept {
    if (shape->pause == 0) return !shape->attributes.empty();
    --shape->pause;
    return false;
}

void QeXmlReader::noteMiss() noexcept {
    constexpr unsigned LongestPause = 31;
    shape->pause = shape->lastPause = std::min(2 * shape->lastPause + 1, LongestPause);
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
std::span<QeXmlReader::Ordered> QeXmlReader::putInOrder(std::span<Ordered> ordered) {
    for (std::size_t i = 0; i < ordered.size(); ++i)
        ordered[i] = {corvel::firstBytes(rawAttributes[i].name.local(), bufferEnd), &rawAttributes[i]};
    if (ordered.size() == 1) return ordered;

    const auto compare = [](const Ordered& left, const Ordered& right) {
        if (left.key != right.key) return left.key < right.key ? -1 : 1;
        return compareAsWritten(*left.attribute, *right.attribute);
    };
    std::sort(ordered.begin(), ordered.end(), [&](const Ordered& left, const Ordered& right) {
        const int order = compare(left, right);
        return order != 0 ? order < 0 : left.attribute < right.attribute;  // equal ones as in the document
    });
    auto out = ordered.begin();
    for (auto first = out; first != ordered.end(); ++out) {
        const auto next =
            std::find_if(first + 1, ordered.end(), [&](const Ordered& other) { return compare(*first, other) != 0; });
        first->attribute->value = (next - 1)->attribute->value;
        *out = *first;
        first = next;
    }
    return {ordered.begin(), out};
}

// Fills the set in place, over what the last tag left in its slots.
void QeXmlReader::writeAttributes(std::span<const Ordered> ordered) {
    openSlots(ordered.size());
    for (std::size_t slot = 0; slot < ordered.size(); ++slot)
        writeAttribute(slot, *ordered[slot].attribute);
}

// Gives the set that many attributes, with what earlier tags left in them.
void QeXmlReader::openSlots(std::size_t count) {
    const std::size_t slots = std::max(count, LeastSlots);
    if (shape->written.size() < count) shape->written.resize(slots);
    lastAttributes.attributes.reserveSlots(slots);
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
void QeXmlReader::learnShape(std::span<const Ordered> ordered) {
    constexpr std::size_t MostAttributes = 64;
    const std::size_t count = ordered.size();
    shape->attributes.clear();
    if (count > MostAttributes || namespaceStack.innermostDeclares()) return;
    shape->attributes.reserve(std::max(count, LeastSlots));
    shape->attributes.resize(count);
    for (std::size_t slot = 0; slot < count; ++slot)
        shape->attributes[static_cast<std::size_t>(ordered[slot].attribute - rawAttributes.data())] = {
            ordered[slot].attribute->name, slot};
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
    const bool sameBinding = binding == written.binding && !written.raw.empty();
    const bool sameNamespace = sameBinding && binding != nullptr && (written.state == state || binding == &NoNamespace);
    if (sameNamespace) {
        writeLocalName(name, raw);
        written.raw = raw.whole();
        return;
    }
    if (sameBinding && binding == nullptr && corvel::sameBytes(written.raw, raw.whole())) return;

    written = {};  // until all is there: an assignment can throw
    writeLocalName(name, raw);
    if (binding == nullptr) {
        name.ns.prefix.assign(raw.prefix());
        name.ns.uri.clear();
    } else {
        name.ns.prefix = binding->prefix;
        name.ns.uri.shareBlockOf(binding->uri);
    }
    written = {raw.whole(), binding, state};
}

void QeXmlReader::writeLocalName(QeXmlName& name, const RawName& raw) {
    const std::string_view local = raw.local();
    if (static_cast<std::size_t>(bufferEnd - local.data()) >= QeCString::Window) {
        name.localName.assignFromWindow(local.data(), local.size());
    } else {
        name.localName.assign(local);
    }
}

// The binding of a prefix, or null. Short prefixes go through a small cache, which
// is right as long as the bindings in force are the same.
const QeXmlNamespace* QeXmlReader::bindingFor(std::string_view prefix) noexcept {
    constexpr std::size_t LongestCached = 7;
    const std::uint64_t state = namespaceStack.state();
    if (state == 0) return nullptr;  // nothing is bound at all
    if (prefix.size() > LongestCached) return namespaceStack.findPrefix(prefix);
    const std::uint64_t key = corvel::firstBytes(prefix, bufferEnd);
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
    firstShape.forget();
    for (TagShape& known : shapes)
        known.forget();
}

// For when the attributes in the slots are no longer those that were written there.
void QeXmlReader::forgetSlots() noexcept {
    if (shape != nullptr) shape->forget();
}
