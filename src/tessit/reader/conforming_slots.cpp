// The attributes of a tag by the conforming rules, and into the same slots: names that are
// known are compared here, too. Where attributes are declared for the element, each is looked up.

#include <corvel/compiler.h>
#include <tessit/reader/conforming_tags.h>
#include <tessit/reader/tag_slots.h>

namespace tessit {

namespace {

constexpr std::string_view Xmlns = "xmlns";

}  // namespace

TESSIT_FLATTEN void TagSlots::readAttributes(const RawName& element, Input& input, bool expands,
                                             ConformingTags& rules) {
    useShapeOf(element);
    if (rules.areDeclared()) return readAny(element, input, expands, rules);
    if (mayBeKnown()) {
        Scanner scanner(input);
        const char* const start = scanner.position();
        const std::uint64_t counted = rules.countedSoFar();
        if (readKnown(scanner, expands, rules)) return;
        scanner.goBackTo(start);
        rules.takeBackTo(counted);
        noteMiss();
    }
    readAny(element, input, expands, rules);
}

// As for a lenient reader; here, white space is asked for. No name stands twice in a shape, and all are bound.
inline bool TagSlots::readKnown(Scanner& scanner, bool expands, ConformingTags& rules) {
    takeSlots(shape->expectedCount);
    QeXmlAttribute* const slots = ModelAccess::slotsOf(attributes).begin();
    for (const TagShape::Entry& expected : shape->expected()) {
        if (scanner.atEnd() || !isSpace(scanner.peek())) return false;
        if (!scanner.passExpectedName(expected.name)) return false;
        QeCString& value = ModelAccess::valueOf(slots[expected.slot]);
        if (scanner.readPlainValueInto(value)) continue;
        if (!readOtherValueInto(value, scanner, expands, rules)) return false;
        rules.keepLeft(expected.name, 0);
    }
    scanner.skipSpace();
    if (scanner.atEnd() || (scanner.peek() != '>' && scanner.peek() != '/')) return false;
    ModelAccess::lookAtLocalNames(attributes);
    shape->skippedAfterMiss = 0;
    return true;
}

// What is wrong with a value is said in its turn: other tags are read again from their beginning then.
TESSIT_NOINLINE bool TagSlots::readOtherValueInto(QeCString& value, Scanner& scanner, bool expands,
                                                  ConformingTags& rules) {
    if (scanner.atEnd() || (scanner.peek() != '"' && scanner.peek() != '\'')) return false;
    scanner.apart([&](Scanner& other) { rules.readValueInto(value, other, expands); });
    return true;
}

TESSIT_NOINLINE void TagSlots::readAny(const RawName& element, Input& input, bool expands, ConformingTags& rules) {
    Scanner scanner(input);
    const RawAttributes::Room room(rawAttributes);
    valueScratch.clear();
    const AttributeList* const list = rules.declaredFor(element.whole());
    for (;;) {
        const char* const before = scanner.position();
        scanner.skipSpace();
        if (scanner.atEnd()) refuseEnd(rules.getSource());
        if (scanner.peek() == '>' || scanner.peek() == '/') break;
        if (scanner.position() == before) refuse(rules.getSource(), before, Rule::WhiteSpace);
        readAttribute(scanner, expands, rules, list);
    }
    const char* const tagEnd = scanner.position();
    if (*tagEnd == '/') {
        if (tagEnd + 1 == rules.getSource().end()) refuseEnd(rules.getSource());
        if (tagEnd[1] != '>') refuse(rules.getSource(), tagEnd + 1, Rule::Attribute);
    }
    if (list != nullptr) addDefaults(*list, rules, tagEnd, expands);
    writeChecked(element, rules, tagEnd, list == nullptr);
}

void TagSlots::readAttribute(Scanner& scanner, bool expands, ConformingTags& rules, const AttributeList* list) {
    const RawName name = readConformingName(scanner, rules.getSource(), rules.readsNamespaces());
    hold(rawAttributes.size() + 1, scanner.limits().attributes, Limit::Attributes, name.data);
    scanner.skipSpace();
    if (scanner.atEnd()) refuseEnd(rules.getSource());
    if (scanner.peek() != '=') refuse(rules.getSource(), scanner.position(), Rule::Attribute, name.whole());
    scanner.skip(1);
    scanner.skipSpace();
    const std::size_t scratchLength = valueScratch.length();
    std::string_view value = rules.readValue(valueScratch, scanner, expands);
    if (const DeclaredAttribute* declared = list == nullptr ? nullptr : list->find(name.whole())) {
        if (declared->isTokenized && value.data() != nullptr) valueScratch += std::exchange(value, {});
        rules.apply(*declared, valueScratch, scratchLength);
    }
    rules.keepLeft(name.whole(), scratchLength);
    const std::size_t length = value.data() != nullptr ? value.size() : valueScratch.length() - scratchLength;
    rawAttributes.push_back({name, value.data(), length});
    if (name.whole().starts_with(Xmlns))
        declare(name, rules.meaningOf(valueOf(rawAttributes.back())), rules, name.data);
}

void TagSlots::declare(const RawName& name, std::string_view uri, const ConformingTags& rules, const char* place) {
    const bool isDefault = name.whole() == Xmlns;
    if (!rules.readsNamespaces() || (!isDefault && name.prefix() != Xmlns)) return;
    rules.checkDeclaration(name, uri, place);
    bindings.declare(isDefault ? std::string_view() : name.local(), uri);
}

void TagSlots::addDefaults(const AttributeList& list, ConformingTags& rules, const char* tagEnd, bool expands) {
    const std::size_t specified = rawAttributes.size();
    rules.addDefaults(rawAttributes, list, tagEnd, expands);
    for (std::size_t i = specified; i < rawAttributes.size(); ++i) {
        const RawName& name = rawAttributes[i].name;
        if (name.whole().starts_with(Xmlns)) declare(name, list.find(name.whole())->byDefault->value, rules, tagEnd);
    }
}

// What needs the whole tag is looked at now, in this order: prefixes, then what stands twice.
void TagSlots::writeChecked(const RawName& element, ConformingTags& rules, const char* tagEnd, bool mayLearn) {
    rules.checkPrefixes(element, rawAttributes, bindings, tagEnd);
    if (rawAttributes.empty()) return writeNoAttributes();
    Ordered few[Few];
    const std::span<const Ordered> ordered = putInOrder(few);
    checkDuplicates(ordered, rules, tagEnd);
    writeInOrder(ordered, mayLearn);
}

// Attributes with one local name stand together.
void TagSlots::checkDuplicates(std::span<const Ordered> ordered, ConformingTags& rules, const char* tagEnd) {
    const auto haveOneName = [](const Ordered& left, const Ordered& right) {
        return left.key == right.key && left.attribute->name.local() == right.attribute->name.local();
    };
    std::vector<RawAttribute*> sameLocalName;  // few tags have any
    for (auto first = ordered.begin(); first != ordered.end();) {
        auto last = first + 1;
        while (last != ordered.end() && haveOneName(*first, *last))
            ++last;
        if (last - first > 1) {
            sameLocalName.clear();
            for (; first != last; ++first)
                sameLocalName.push_back(first->attribute);
            rules.checkDuplicates(sameLocalName, bindings, tagEnd);
        }
        first = last;
    }
}

}  // namespace tessit
