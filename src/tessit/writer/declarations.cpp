// What a start tag has to declare besides what it was given.

#include <algorithm>
#include <span>
#include <utility>
#include <vector>

#include <tessit/writer/borrowed.h>
#include <tessit/writer/plain_attributes.h>
#include <tessit/writer/xml_writer.h>

using tessit::Borrowed;
using tessit::PlainAttributes;

bool QeXmlWriter::declaresInnermostBindings(const PlainAttributes& declarations) const {
    const std::span bindings = innermostBindings();
    return std::all_of(bindings.begin(), bindings.end(), [&](const QeXmlNamespace& binding) {
        const QeXmlAttribute* declaration = declarations.find(binding.getPrefix());
        return declaration != nullptr && declaration->getValue() == binding.getURI();
    });
}

// The set with the bindings of the innermost scope among its attributes: the given one where it declares them all, as
// sets that were read do, or else `completed`. Of several bindings of one prefix the last one stays.
const QeXmlAttributeSet& QeXmlWriter::getCompleteAttributeSet(const QeXmlAttributeSet& attributes,
                                                              QeXmlAttributeSet& completed) {
    Borrowed<PlainAttributes::Positions> positions(spare.positions);
    const PlainAttributes declarations(attributes, *positions);
    if (declaresInnermostBindings(declarations)) return attributes;
    if (areLocalNamesInOrder(attributes)) {
        completeInOrder(attributes, declarations, completed);
    } else {
        completeOutOfOrder(attributes, declarations, completed);
    }
    return completed;
}

void QeXmlWriter::completeInOrder(const QeXmlAttributeSet& attributes, const PlainAttributes& declarations,
                                  QeXmlAttributeSet& completed) {
    addMissingDeclarations(attributes, declarations, completed);
    Borrowed<PlainAttributes::Positions> positions(spare.completedPositions);
    const PlainAttributes entries(completed, *positions);
    for (const QeXmlNamespace& binding : innermostBindings())
        setValueAt(completed, entries.find(binding.getPrefix()), binding.getURI());
}

// All that a declaration's place depends on: it stands in front of what has its prefix as a local name. The reader's
// sets are always so, though their URIs need not be in order.
bool QeXmlWriter::areLocalNamesInOrder(const QeXmlAttributeSet& attributes) noexcept {
    const auto precedes = [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
        return left.getName().getLocalName() < right.getName().getLocalName();
    };
    return attributes.knownSorted || std::is_sorted(attributes.begin(), attributes.end(), precedes);
}

void QeXmlWriter::setValueAt(QeXmlAttributeSet& set, const QeXmlAttribute* position, const QeCString& value) {
    set.attributes[static_cast<std::size_t>(position - std::as_const(set).begin())].setValue(value);
}

// A merge: an insertion for each declaration would move what stands behind it, over and over.
void QeXmlWriter::addMissingDeclarations(const QeXmlAttributeSet& attributes, const PlainAttributes& declarations,
                                         QeXmlAttributeSet& completed) {
    Borrowed<std::vector<const QeXmlNamespace*>> missing(spare.bindings);
    for (const QeXmlNamespace& binding : innermostBindings())
        if (declarations.find(binding.getPrefix()) == nullptr) missing->push_back(&binding);
    std::sort(missing->begin(), missing->end(), [](const QeXmlNamespace* left, const QeXmlNamespace* right) {
        return left->getPrefix() < right->getPrefix();
    });
    const auto samePrefix = [](const QeXmlNamespace* left, const QeXmlNamespace* right) {
        return left->getPrefix() == right->getPrefix();
    };
    missing->erase(std::unique(missing->begin(), missing->end(), samePrefix), missing->end());

    completed.knownSorted = attributes.knownSorted;
    completed.attributes.reserveSlots(attributes.size() + missing->size());
    auto next = missing->begin();
    for (const QeXmlAttribute& attribute : attributes) {
        for (; next != missing->end() && (*next)->getPrefix() <= attribute.getName().getLocalName(); ++next)
            completed.append((*next)->getPrefix(), QeXmlNamespace::getXmlns(), (*next)->getURI());
        completed.append(attribute.getName().getLocalName(), attribute.getName().getNamespace(), attribute.getValue());
    }
    for (; next != missing->end(); ++next)
        completed.append((*next)->getPrefix(), QeXmlNamespace::getXmlns(), (*next)->getURI());
}

// A set out of order keeps what order it has: values are replaced where they stand,
// and what is missing goes where an addition puts it.
void QeXmlWriter::completeOutOfOrder(const QeXmlAttributeSet& attributes, const PlainAttributes& declarations,
                                     QeXmlAttributeSet& completed) {
    completed.assignInPlace(attributes);
    for (const QeXmlNamespace& binding : innermostBindings()) {
        const QeXmlAttribute* declaration = declarations.find(binding.getPrefix());
        if (declaration != nullptr)
            setValueAt(completed, completed.attributes.begin() + (declaration - attributes.begin()), binding.getURI());
    }
    for (const QeXmlNamespace& binding : innermostBindings())
        if (declarations.find(binding.getPrefix()) == nullptr) completed.addNamespaceAttribute(binding);
}
