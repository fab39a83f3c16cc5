#pragma once

#include <array>
#include <span>
#include <vector>

#include <tessit/model/xml_attribute_set.h>
#include <tessit/writer/unqualified_attributes.h>

namespace tessit {

/// What the completion of one tag's attributes takes, to be used for the next tag, too.
struct CompletionStorage {
    QeXmlAttributeSet completed;
    UnqualifiedAttributes::Positions given;
    UnqualifiedAttributes::Positions entries;
    std::vector<const QeXmlNamespace*> missing;

    void clear() noexcept {
        completed.clear();
        given.clear();
        entries.clear();
        missing.clear();
    }
};

/// What a start tag has to declare besides what it was given, each declaration at its place among the attributes.
///
/// Knows sets of attributes, in order and out of order, and the bindings of one scope. Does
/// not know why they are bound, and writes nothing.
class Completion {
public:
    Completion(std::span<const QeXmlNamespace> ofScope, CompletionStorage& emptyStorage) noexcept
        : bindings(ofScope), storage(emptyStorage) {}

    /// The set with the bindings among its attributes: the given one where it declares them all, as sets that were read
    /// do, or else one in the storage. Of several bindings of one prefix the last one stays.
    const QeXmlAttributeSet& of(const QeXmlAttributeSet& attributes);

private:
    bool isDeclaredBy(const UnqualifiedAttributes& declarations) const;
    void completeInOrder(const QeXmlAttributeSet& attributes, const UnqualifiedAttributes& declarations);
    void completeOutOfOrder(const QeXmlAttributeSet& attributes, const UnqualifiedAttributes& declarations);
    using Missing = std::span<const QeXmlNamespace* const>;
    Missing findMissing(const UnqualifiedAttributes& declarations);
    void merge(const QeXmlAttributeSet& attributes, Missing missing);
    void setValueAt(const QeXmlAttribute* position, const QeCString& value);

    std::span<const QeXmlNamespace> bindings;
    CompletionStorage& storage;
    std::array<const QeXmlNamespace*, 4> few;  // mostly enough for what is missing
};

/// Whether a set stands in order, as far as can be told without a look at two long URIs, which would cost their length
/// at every tag. What may be out of order is written with more effort, and the same in the end.
bool isSurelyInOrder(const QeXmlAttributeSet& attributes) noexcept;

}  // namespace tessit
