#pragma once

#include <algorithm>
#include <vector>

#include <tessit/model/xml_attribute_set.h>

namespace tessit {

/// The attributes of a set that are in no namespace, declarations among them, to
/// be found by their local names.
///
/// A set that has lost its order, as the reader's can, finds its attributes one by
/// one. For large sets the attributes are therefore put in order here: a search
/// costs O(log n), whatever the set.
class UnqualifiedAttributes {
public:
    using Positions = std::vector<const QeXmlAttribute*>;

    /// `storage` is an empty array, for large sets to be sorted in.
    UnqualifiedAttributes(const QeXmlAttributeSet& set, Positions& storage) : attributes(set), byLocalName(storage) {
        if (set.size() > LinearSearchLimit) sortByLocalName();
    }

    /// The first one in set order with that local name, or null.
    const QeXmlAttribute* find(const QeCString& localName) const noexcept {
        return attributes.size() > LinearSearchLimit ? findSorted(localName) : findOneByOne(localName);
    }

private:
    static constexpr unsigned LinearSearchLimit = 16;

    static const QeCString& localNameOf(const QeXmlAttribute& attribute) { return attribute.getName().getLocalName(); }
    static bool isUnqualified(const QeXmlAttribute& attribute) {
        return attribute.getName().getNamespace().getURI().empty();
    }

    void sortByLocalName() {
        for (const QeXmlAttribute& attribute : attributes)
            if (isUnqualified(attribute)) byLocalName.push_back(&attribute);
        const auto before = [](const QeXmlAttribute* left, const QeXmlAttribute* right) {
            const int order = localNameOf(*left).compare(localNameOf(*right));
            return order != 0 ? order < 0 : left < right;  // equal ones in set order
        };
        if (!std::is_sorted(byLocalName.begin(), byLocalName.end(), before))
            std::sort(byLocalName.begin(), byLocalName.end(), before);
    }

    const QeXmlAttribute* findOneByOne(const QeCString& localName) const noexcept {
        for (const QeXmlAttribute& attribute : attributes)
            if (localNameOf(attribute) == localName && isUnqualified(attribute)) return &attribute;
        return nullptr;
    }

    const QeXmlAttribute* findSorted(const QeCString& localName) const noexcept {
        const auto found = std::lower_bound(
            byLocalName.begin(), byLocalName.end(), localName,
            [](const QeXmlAttribute* attribute, const QeCString& wanted) { return localNameOf(*attribute) < wanted; });
        return found != byLocalName.end() && localNameOf(**found) == localName ? *found : nullptr;
    }

    const QeXmlAttributeSet& attributes;
    Positions& byLocalName;  // of large sets only
};

}  // namespace tessit
