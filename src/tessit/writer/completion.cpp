// Where the declarations of a tag stand among its attributes. Knows neither bytes nor what is in force.

#include <algorithm>

#include <tessit/model/model_access.h>
#include <tessit/writer/completion.h>

namespace tessit {

namespace {

// All that a declaration's place depends on: it stands in front of what has its prefix as a local name. The reader's
// sets are always so, though their URIs need not be in order.
bool areLocalNamesInOrder(const QeXmlAttributeSet& attributes) noexcept {
    const auto precedes = [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
        return left.getName().getLocalName() < right.getName().getLocalName();
    };
    return ModelAccess::isKnownSorted(attributes) || std::is_sorted(attributes.begin(), attributes.end(), precedes);
}

}  // namespace

bool isSurelyInOrder(const QeXmlAttributeSet& attributes) noexcept {
    const auto mayFollow = [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
        const int order = left.getName().getLocalName().compare(right.getName().getLocalName());
        if (order != 0) return order > 0;
        const QeXmlNamespace &one = left.getName().getNamespace(), &other = right.getName().getNamespace();
        return (ModelAccess::hasLongURI(one) && ModelAccess::hasLongURI(other)) || one.compareTo(other) >= 0;
    };
    return ModelAccess::isKnownSorted(attributes) ||
           std::adjacent_find(attributes.begin(), attributes.end(), mayFollow) == attributes.end();
}

const QeXmlAttributeSet& Completion::of(const QeXmlAttributeSet& attributes) {
    const UnqualifiedAttributes declarations(attributes, storage.given);
    if (isDeclaredBy(declarations)) return attributes;
    if (areLocalNamesInOrder(attributes)) {
        completeInOrder(attributes, declarations);
    } else {
        completeOutOfOrder(attributes, declarations);
    }
    return storage.completed;
}

bool Completion::isDeclaredBy(const UnqualifiedAttributes& declarations) const {
    return std::all_of(bindings.begin(), bindings.end(), [&](const QeXmlNamespace& binding) {
        const QeXmlAttribute* declaration = declarations.find(binding.getPrefix());
        return declaration != nullptr && declaration->getValue() == binding.getURI();
    });
}

void Completion::completeInOrder(const QeXmlAttributeSet& attributes, const UnqualifiedAttributes& declarations) {
    merge(attributes, findMissing(declarations));
    const UnqualifiedAttributes entries(storage.completed, storage.entries);
    for (const QeXmlNamespace& binding : bindings)
        setValueAt(entries.find(binding.getPrefix()), binding.getURI());
}

void Completion::setValueAt(const QeXmlAttribute* position, const QeCString& value) {
    QeSlotArray<QeXmlAttribute>& slots = ModelAccess::slotsOf(storage.completed);
    slots[static_cast<std::size_t>(position - slots.begin())].setValue(value);
}

// The bindings that no attribute declares, one for each prefix, in order.
Completion::Missing Completion::findMissing(const UnqualifiedAttributes& declarations) {
    if (bindings.size() > few.size()) storage.missing.resize(bindings.size());
    const QeXmlNamespace** const first = bindings.size() > few.size() ? storage.missing.data() : few.data();
    const QeXmlNamespace** last = first;
    for (const QeXmlNamespace& binding : bindings)
        if (declarations.find(binding.getPrefix()) == nullptr) *last++ = &binding;
    std::sort(first, last, [](const QeXmlNamespace* left, const QeXmlNamespace* right) {
        return left->getPrefix() < right->getPrefix();
    });
    const auto samePrefix = [](const QeXmlNamespace* left, const QeXmlNamespace* right) {
        return left->getPrefix() == right->getPrefix();
    };
    return {first, std::unique(first, last, samePrefix)};
}

// An insertion for each declaration would move what stands behind it, over and over.
void Completion::merge(const QeXmlAttributeSet& attributes, Missing missing) {
    QeXmlAttributeSet& completed = storage.completed;
    ModelAccess::setKnownSorted(completed, ModelAccess::isKnownSorted(attributes));
    ModelAccess::slotsOf(completed).reserveSlots(attributes.size() + missing.size());
    auto next = missing.begin();
    const auto appendNext = [&] {
        ModelAccess::append(completed, (*next)->getPrefix(), QeXmlNamespace::getXmlns(), (*next)->getURI());
        ++next;
    };
    for (const QeXmlAttribute& attribute : attributes) {
        const QeXmlName& name = attribute.getName();
        while (next != missing.end() && (*next)->getPrefix() <= name.getLocalName())
            appendNext();
        ModelAccess::append(completed, name.getLocalName(), name.getNamespace(), attribute.getValue());
    }
    while (next != missing.end())
        appendNext();
}

// A set out of order keeps what order it has: values are replaced where they stand,
// and what is missing goes where an addition puts it.
void Completion::completeOutOfOrder(const QeXmlAttributeSet& attributes, const UnqualifiedAttributes& declarations) {
    QeXmlAttributeSet& completed = storage.completed;
    ModelAccess::assignInPlace(completed, attributes);
    for (const QeXmlNamespace& binding : bindings) {
        const QeXmlAttribute* declaration = declarations.find(binding.getPrefix());
        if (declaration != nullptr)
            setValueAt(std::as_const(completed).begin() + (declaration - attributes.begin()), binding.getURI());
    }
    for (const QeXmlNamespace& binding : bindings)
        if (declarations.find(binding.getPrefix()) == nullptr) completed.addNamespaceAttribute(binding);
}

}  // namespace tessit
