#pragma once

#include <utility>

#include <corvel/slot_array.h>
#include <tessit/model/xml_attribute.h>

/// The attributes of one element, sorted by name, each name once.
///
/// The order of iteration is that of `QeXmlName::compareTo`, whatever the order
/// of adding. Namespace declarations live among the attributes: the declaration
/// of prefix p has the local name p in the namespace `QeXmlNamespace::getXmlns()`,
/// the default declaration the local name "xmlns" in no namespace; the value is
/// the URI. As the xmlns namespace has the empty URI, the declaration of p and an
/// attribute p in no namespace are the same entry.
///
/// Positions are plain pointers, and every operation that adds or removes an
/// attribute invalidates all of them; replacing a value does not. Who renames
/// attributes through them can break the order: lookups still find everything,
/// and later additions go where a binary search over the broken order puts them.
///
/// Lookups cost O(log n) comparisons of names, and so do additions and removals,
/// besides the O(n) moves. Once a modifiable pointer was handed out, the order may
/// be broken: lookups then cost O(n), and the next addition or removal by name
/// takes another O(n) to look. Operations that add give the strong guarantee.
///
/// Copies are O(bytes of the attributes), and one that throws leaves the set as it
/// was. Positions, `size`, `clear` and moves, but for what they replace, are O(1).
/// Removal by position costs the moves of attributes alone.
class TESSIT_API QeXmlAttributeSet {
public:
    /// "xmlns", the local name of the default namespace declaration.
    static const QeCString DefaultNamespaceAttributeTag;

    /// The empty string that lookups return when nothing is found.
    static const QeCString EmptyString;

    QeXmlAttributeSet() = default;
    QeXmlAttributeSet(const QeXmlAttributeSet&) = default;
    QeXmlAttributeSet(QeXmlAttributeSet&&) noexcept = default;
    QeXmlAttributeSet& operator=(const QeXmlAttributeSet&) = default;
    QeXmlAttributeSet& operator=(QeXmlAttributeSet&&) noexcept = default;
    virtual ~QeXmlAttributeSet();

    /// Adds an attribute. Where the name is there already, only its value is
    /// replaced: the stored prefix stays.
    void add(const QeXmlName& name, const QeCString& value);
    void add(const QeXmlAttribute& attribute) { add(attribute.getName(), attribute.getValue()); }

    /// The attribute with that name, or `end()`.
    const QeXmlAttribute* find(const QeXmlName& name) const noexcept;
    QeXmlAttribute* find(const QeXmlName& name) noexcept { return handOut(std::as_const(*this).find(name)); }

    /// The attribute with the same name, whatever the value, or `end()`.
    const QeXmlAttribute* find(const QeXmlAttribute& attribute) const noexcept { return find(attribute.getName()); }
    QeXmlAttribute* find(const QeXmlAttribute& attribute) noexcept { return find(attribute.getName()); }

    bool contains(const QeXmlName& name) const noexcept { return find(name) != end(); }
    bool contains(const QeXmlAttribute& attribute) const noexcept { return contains(attribute.getName()); }

    /// Removes the attribute with that name, if any.
    void remove(const QeXmlName& name) noexcept;
    void remove(const QeXmlAttribute& attribute) noexcept { remove(attribute.getName()); }

    /// Removes the attribute at `position` and returns where its successor now
    /// stands, which is `position` again. At `end()`, or at a pointer that is none
    /// of the set's positions, changes nothing and returns `end()`.
    QeXmlAttribute* remove(QeXmlAttribute* position) noexcept;

    unsigned size() const noexcept { return static_cast<unsigned>(attributes.size()); }

    /// Removes all attributes and keeps their storage for the next ones.
    void clear() noexcept;

    /// The first attribute, and one past the last.
    const QeXmlAttribute* begin() const noexcept { return attributes.begin(); }
    const QeXmlAttribute* end() const noexcept { return attributes.end(); }
    QeXmlAttribute* begin() noexcept { return handOut(attributes.begin()); }
    QeXmlAttribute* end() noexcept { return handOut(attributes.end()); }

    /// -1, 0 or 1 by the names in order; values are not compared, and a proper
    /// prefix comes first. O(n) comparisons of names.
    int compareTo(const QeXmlAttributeSet& other) const noexcept;

    /// Adds the declaration of `ns`'s prefix with its URI as value.
    void addNamespaceAttribute(const QeXmlNamespace& ns);

    /// The first attribute in order whose local name is `prefix`, whatever its
    /// namespace, or `end()`.
    const QeXmlAttribute* findNamespaceAttribute(const QeCString& prefix) const noexcept {
        return findNamespaceByPrefix(prefix);
    }
    QeXmlAttribute* findNamespaceAttribute(const QeCString& prefix) noexcept {
        return handOut(findNamespaceByPrefix(prefix));
    }

    /// The same by the prefix of `ns`; its URI is not looked at.
    const QeXmlAttribute* findNamespaceAttribute(const QeXmlNamespace& ns) const noexcept {
        return findNamespaceByPrefix(ns.getPrefix());
    }
    QeXmlAttribute* findNamespaceAttribute(const QeXmlNamespace& ns) noexcept {
        return handOut(findNamespaceByPrefix(ns.getPrefix()));
    }

    /// Removes the declaration of the prefix, if any. Can throw `std::bad_alloc`, and
    /// has changed nothing then.
    void removeNamespaceAttribute(const QeCString& prefix);
    void removeNamespaceAttribute(const QeXmlNamespace& ns) { removeNamespaceAttribute(ns.getPrefix()); }

    /// Adds the default namespace declaration, or replaces its URI.
    void setDefaultNamespaceAttribute(const QeCString& uri);

    /// The same with the URI of `ns`; its prefix is not looked at.
    void setDefaultNamespaceAttribute(const QeXmlNamespace& ns) { setDefaultNamespaceAttribute(ns.getURI()); }

    /// Declares that no default namespace applies: the declaration is there, with an empty value.
    void unsetDefaultNamespaceAttribute() { setDefaultNamespaceAttribute(EmptyString); }

    /// Removes the default namespace declaration, if any.
    void removeDefaultNamespaceAttribute();

    /// The URI of the default namespace declaration, or `EmptyString`. Valid until
    /// an attribute is added or removed.
    const QeCString& getDefaultNamespaceAttribute() const;

private:
    friend struct tessit::ModelAccess;

    // A modifiable pointer that is out can be used to rename at any time, so nothing
    // is known about the order from then on, until an addition or removal makes the
    // pointer void and has a look.
    QeXmlAttribute* handOut(const QeXmlAttribute* position) noexcept {
        if (!attributes.empty()) knownSorted = false;
        return attributes.begin() + (position - attributes.begin());
    }

    const QeXmlAttribute* findNamespaceByPrefix(const QeCString& prefix) const noexcept;
    template <typename IsBefore, typename Matches>
    const QeXmlAttribute* findFirst(const IsBefore& isBefore, const Matches& matches) const noexcept;

    TESSIT_NO_EXPORT void lookAtOrder() noexcept;
    TESSIT_NO_EXPORT void lookAtLocalNames() noexcept;

    TESSIT_NO_EXPORT void addToFew(const QeXmlName& name, const QeCString& value);

    // Adds an attribute behind all others.
    TESSIT_NO_EXPORT void append(const QeCString& localName, const QeXmlNamespace& ns, const QeCString& value);

    // Whether the names stand in order, each once.
    TESSIT_NO_EXPORT bool isStrictlySorted() const noexcept;

    // Assignment that keeps the strings of the slots. After a throw, the set is empty.
    TESSIT_NO_EXPORT void assignInPlace(const QeXmlAttributeSet& other);

    QeSlotArray<QeXmlAttribute> attributes;
    bool knownSorted = true;
};
