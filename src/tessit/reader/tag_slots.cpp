// The attributes of tags that look like none before, and the shapes that such tags leave.

#include <algorithm>

#include <tessit/reader/tag_slots.h>

namespace tessit {

namespace {

constexpr std::string_view Xmlns = "xmlns";

// A tag with very many attributes is not worth the memory that it takes to expect another like it.
constexpr std::size_t MostExpected = 64;

// What names without a namespace are resolved to: its prefix and URI are empty.
constinit const QeXmlNamespace NoNamespace;

TESSIT_NOINLINE void assignLong(QeCString& target, std::string_view text) {
    target.assign(text);
}

}  // namespace

TagSlots::TagSlots(QeXmlName& lastName, QeXmlAttributeSet& lastAttributes, const char* const& bufferEnd,
                   Bindings& bindingsInForce)
    : elementName(lastName), attributes(lastAttributes), readableEnd(bufferEnd), bindings(bindingsInForce) {}

// Known and unknown attributes are read by functions of their own, each with the cursor in a
// register: in one with all that is around, it would not stay there.
TESSIT_FLATTEN void TagSlots::readAttributes(const RawName& element, Input& input, bool expands) {
    useShapeOf(element);
    if (mayBeKnown()) {
        Scanner scanner(input);
        const char* const start = scanner.position();
        if (readKnown(scanner, expands)) return;
        scanner.goBackTo(start);
        noteMiss();
    }
    readAny(input, expands);
}

// Where tags often turned out different, most are not even compared.
void TagSlots::noteMiss() noexcept {
    constexpr int MostSkipped = 31;
    shape->skippedAfterMiss = static_cast<std::uint8_t>(std::min(2 * shape->skippedAfterMiss + 1, MostSkipped));
    shape->tagsToSkip = shape->skippedAfterMiss;
}

// Reads a tag that looks like an earlier one of its name: the names are in the slots already, and
// the values go there at once. Where it is another after all, stops anywhere and returns false.
inline bool TagSlots::readKnown(Scanner& scanner, bool expands) {
    takeSlots(shape->expectedCount);
    QeXmlAttribute* const slots = ModelAccess::slotsOf(attributes).begin();
    for (const TagShape::Entry& expected : shape->expected()) {
        if (!scanner.passExpectedName(expected.name)) return false;
        if (!scanner.readValueInto(ModelAccess::valueOf(slots[expected.slot]), expands)) return false;
    }
    scanner.skipSpace();
    if (scanner.atEnd() || (scanner.peek() != '>' && scanner.peek() != '/')) return false;
    ModelAccess::lookAtLocalNames(attributes);
    shape->skippedAfterMiss = 0;
    return true;
}

// The slots of one shape are those of the delivered set; those of the others are parked.
void TagSlots::useShapeOf(const RawName& element) {
    TagShape* const expected = shapeOf(element);
    if (expected == shape) return;
    if (shape != nullptr) ModelAccess::slotsOf(attributes).swap(shape->parked);
    ModelAccess::slotsOf(attributes).swap(expected->parked);
    shape = expected;
}

// A tag that is the first of its place may be the only one, in a small document:
// nothing is learnt from it.
TagSlots::TagShape* TagSlots::shapeOf(const RawName& element) {
    constexpr std::uint64_t Spread = 0x9E3779B97F4A7C15;
    constexpr std::size_t Word = sizeof(std::uint64_t);
    std::uint64_t key = corvel::firstBytes(element.whole(), readableEnd) + element.length;
    if (element.length > Word)
        key ^= Spread * corvel::firstBytes({element.data + element.length - Word, Word}, readableEnd);
    const std::size_t number = (key * Spread) >> (64 - ShapeBits);
    const std::uint32_t bit = std::uint32_t{1} << number;
    if ((shapesSeen & bit) == 0) [[unlikely]] {
        shapesSeen |= bit;
        return &firstShape;
    }
    if (shapes.empty()) shapes.resize(std::size_t{1} << ShapeBits);
    return &shapes[number];
}

// Makes that many of the slots the set's attributes. Where local names are equal, they stand by prefix, not by URI.
void TagSlots::takeSlots(std::size_t count) {
    ModelAccess::slotsOf(attributes).takeSlots(count);
    ModelAccess::setKnownSorted(attributes, false);
}

TESSIT_NOINLINE void TagSlots::readAny(Input& input, bool expands) {
    Scanner scanner(input);
    const RawAttributes::Room room(rawAttributes);
    valueScratch.clear();
    for (;;) {
        scanner.skipSpace();
        if (scanner.atEnd()) scanner.raiseEnd();
        if (scanner.peek() == '>' || scanner.peek() == '/') return writeAttributes();
        readAttribute(scanner, expands);
    }
}

void TagSlots::readAttribute(Scanner& scanner, bool expands) {
    const RawName name = scanner.readName();
    hold(rawAttributes.size() + 1, scanner.limits().attributes, Limit::Attributes, name.data);
    hold(name.length, scanner.limits().name, Limit::Name, name.data);
    const char quote = scanner.readEqualsAndQuote();
    const std::size_t scratchLength = valueScratch.length();
    const std::string_view value = scanner.readValue(quote, expands, valueScratch);
    const std::size_t length = value.data() != nullptr ? value.size() : valueScratch.length() - scratchLength;
    rawAttributes.push_back({name, value.data(), length});
    if (name.whole().starts_with(Xmlns)) declare(rawAttributes.back());
}

// Declarations take effect at once, for the names of the whole tag, and stay among the attributes.
void TagSlots::declare(const RawAttribute& attribute) {
    const RawName& name = attribute.name;
    const bool isDefault = name.whole() == Xmlns;
    if (!isDefault && name.prefix() != Xmlns) return;
    bindings.declare(isDefault ? std::string_view() : name.local(), valueOf(attribute));
}

// The value of the attribute that was read last.
std::string_view TagSlots::valueOf(const RawAttribute& attribute) const noexcept {
    if (attribute.value != nullptr) return attribute.valueText();
    return {valueScratch.end() - attribute.valueLength, attribute.valueLength};
}

// Called once the whole tag was read: turns the attributes as scanned into the set.
// They are put in order before they are written, so that each string is written
// once, into its final place.
void TagSlots::writeAttributes() {
    if (rawAttributes.empty()) return writeNoAttributes();
    Ordered few[Few];
    const std::span<Ordered> ordered = leaveOutRepeated(putInOrder(few));
    writeInOrder(ordered, ordered.size() == rawAttributes.size());
}

void TagSlots::writeInOrder(std::span<const Ordered> ordered, bool mayLearn) {
    shape->isInSlots = false;  // until all is written: an assignment can throw
    openSlots(ordered.size());
    for (std::size_t slot = 0; slot < ordered.size(); ++slot)
        writeAttribute(slot, *ordered[slot].attribute);
    if (shape->tagsToSkip == 0 && shape != &firstShape && mayLearn) learnShape(ordered);
    ModelAccess::lookAtLocalNames(attributes);
}

// Values that were expanded stand in the scratch text, which moves no more, one behind the other.
void TagSlots::findValues() noexcept {
    if (valueScratch.empty()) return;
    const char* next = valueScratch.data();
    for (RawAttribute& attribute : rawAttributes) {
        if (attribute.value != nullptr) continue;
        attribute.value = next;
        next += attribute.valueLength;
    }
}

namespace {

// The order of the set, and what makes two attributes the same: the local name,
// then the prefix as written, whatever it is bound to. A default declaration
// stands by its value there.
int compareAsWritten(const RawAttribute& left, const RawAttribute& right) {
    const auto secondKey = [](const RawAttribute& attribute) {
        return attribute.name.whole() == Xmlns ? attribute.valueText() : attribute.name.prefix();
    };
    const int order = left.name.local().compare(right.name.local());
    return order != 0 ? order : secondKey(left).compare(secondKey(right));
}

int compare(std::uint64_t leftKey, const RawAttribute& left, std::uint64_t rightKey, const RawAttribute& right) {
    if (leftKey != rightKey) return leftKey < rightKey ? -1 : 1;
    return compareAsWritten(left, right);
}

}  // namespace

// Puts the attributes in order, where there is room for few or in storage of its own; equal ones stand as in the
// document.
std::span<TagSlots::Ordered> TagSlots::putInOrder(Ordered* few) {
    findValues();
    const std::size_t count = rawAttributes.size();
    if (count > Few) manyOrdered.resize(count);
    const std::span<Ordered> ordered(count > Few ? manyOrdered.data() : few, count);
    for (std::size_t i = 0; i < count; ++i)
        ordered[i] = {corvel::firstBytes(rawAttributes[i].name.local(), readableEnd), &rawAttributes[i]};
    if (count == 1) return ordered;
    std::sort(ordered.begin(), ordered.end(), [](const Ordered& left, const Ordered& right) {
        const int order = compare(left.key, *left.attribute, right.key, *right.attribute);
        return order != 0 ? order < 0 : left.attribute < right.attribute;
    });
    return ordered;
}

// Leaves each name once: of equal ones, the first one's name and the last one's value count.
std::span<TagSlots::Ordered> TagSlots::leaveOutRepeated(std::span<Ordered> ordered) {
    if (ordered.size() == 1) return ordered;
    auto out = ordered.begin();
    for (auto first = out; first != ordered.end(); ++out) {
        const auto next = std::find_if(first + 1, ordered.end(), [&](const Ordered& other) {
            return compare(first->key, *first->attribute, other.key, *other.attribute) != 0;
        });
        first->attribute->value = (next - 1)->attribute->value;
        first->attribute->valueLength = (next - 1)->attribute->valueLength;
        *out = *first;
        first = next;
    }
    return {ordered.begin(), out};
}

// Gives the set that many attributes, with what earlier tags left in them.
void TagSlots::openSlots(std::size_t count) {
    const std::size_t slots = std::max(count, Few / 4);
    const std::size_t expected = shape == &firstShape ? 0 : std::min(count, MostExpected);
    if (shape->entries.size() < expected) shape->entries.resize(std::min(slots, MostExpected));
    ModelAccess::slotsOf(attributes).reserveSlots(slots);
    takeSlots(count);
}

// What was in a slot that nobody expects anything of is not known.
void TagSlots::writeAttribute(std::size_t slot, const RawAttribute& attribute) {
    const std::string_view prefix = attribute.name.prefix();
    const QeXmlNamespace* binding = prefix.empty() ? &NoNamespace : bindings.find(prefix, readableEnd);
    QeXmlAttribute& target = ModelAccess::slotsOf(attributes)[slot];
    NameWritten unknown;
    writeName(target.getName(), slot < shape->entries.size() ? shape->entries[slot].written : unknown, attribute.name,
              binding);
    ModelAccess::valueOf(target).assign(attribute.valueText());
}

// Keeps the tag that was just written as what the next one of its name is
// expected to look like. A tag that declares namespaces is none to expect again.
void TagSlots::learnShape(std::span<const Ordered> ordered) {
    if (ordered.size() > MostExpected || bindings.tagDeclares()) return;
    for (std::size_t slot = 0; slot < ordered.size(); ++slot) {
        const RawAttribute& attribute = *ordered[slot].attribute;
        TagShape::Entry& entry = shape->entries[static_cast<std::size_t>(&attribute - rawAttributes.begin())];
        entry.name = attribute.name.whole();
        entry.slot = slot;
    }
    shape->expectedCount = ordered.size();
    shape->isInSlots = true;
    shape->version = bindings.version();
}

// Most documents bind nothing: their names, but for the first, call nothing here.
bool TagSlots::writeElementName(const RawName& name) {
    const bool hasNoNamespace = name.localStart == 0 && bindings.version() == 0;
    if (!hasNoNamespace || nameWritten.binding != &NoNamespace) return writeResolved(name);
    writeLocalName(elementName, name);
    nameWritten.raw = name.whole();
    return true;
}

TESSIT_NOINLINE bool TagSlots::writeResolved(const RawName& name) {
    const std::string_view prefix = name.prefix();
    const QeXmlNamespace* binding = bindings.find(prefix, readableEnd);
    if (binding == nullptr && prefix.empty()) binding = &NoNamespace;
    writeName(elementName, nameWritten, name, binding);
    return binding != nullptr;
}

// Makes `name` the name as written, in the namespace of `binding`; without one, in no namespace, though with its
// prefix. `written` says what is there already: mostly the namespace is.
inline void TagSlots::writeName(QeXmlName& name, NameWritten& written, const RawName& raw,
                                const QeXmlNamespace* binding) {
    const bool isThere = binding != nullptr && binding == written.binding &&
                         (binding == &NoNamespace || written.version == bindings.version());
    if (!isThere) return writeOtherName(name, written, raw, binding);
    writeLocalName(name, raw);
    written.raw = raw.whole();
}

TESSIT_NOINLINE void TagSlots::writeOtherName(QeXmlName& name, NameWritten& written, const RawName& raw,
                                              const QeXmlNamespace* binding) {
    const bool isUnboundAgain = binding == nullptr && written.binding == nullptr && !written.raw.empty();
    if (isUnboundAgain && corvel::sameBytes(written.raw, raw.whole())) return;

    written = {};  // until all is there: an assignment can throw
    writeLocalName(name, raw);
    if (binding == nullptr) {
        ModelAccess::prefixOf(name.getNamespace()).assign(raw.prefix());
        ModelAccess::clearURI(name.getNamespace());
    } else {
        ModelAccess::prefixOf(name.getNamespace()) = binding->getPrefix();
        ModelAccess::shareURI(name.getNamespace(), *binding);
    }
    written = {raw.whole(), binding, bindings.version()};
}

inline void TagSlots::writeLocalName(QeXmlName& name, const RawName& raw) {
    using corvel::StringAccess;
    const std::string_view local = raw.local();
    QeCString& target = ModelAccess::localNameOf(name);
    const bool isInWindow = static_cast<std::size_t>(readableEnd - local.data()) >= StringAccess::Window;
    if (!isInWindow || local.size() > QeCString::InlineCapacity || !StringAccess::isInline(target))
        return assignLong(target, local);
    StringAccess::assignFromWindow(target, local.data(), local.size());
}

void TagSlots::forgetDocument() noexcept {
    nameWritten = {};
    firstShape.forget();
    for (TagShape& known : shapes)
        known.forget();
}

}  // namespace tessit
