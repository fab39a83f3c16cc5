#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <corvel/shared_text.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_namespace_stack.h>

/// What the engine and the writer may do with the values of this room, beyond what
/// any user may: fill them in place, and share what they hold.
namespace tessit {

struct ModelAccess {
    /// @name Names and attributes, to be written in place
    /// @{

    static QeCString& localNameOf(QeXmlName& name) noexcept { return name.localName; }
    static QeCString& prefixOf(QeXmlNamespace& ns) noexcept { return ns.prefix; }
    static QeCString& valueOf(QeXmlAttribute& attribute) noexcept { return attribute.value; }

    /// @}
    /// @name URIs
    /// @{

    static void clearURI(QeXmlNamespace& ns) noexcept { corvel::SharedText::clear(ns.uri); }

    /// Gives one namespace the URI of another: in O(1), and without a copy, where that
    /// is in a stack or was made so. A name that shares a short one must stay with the
    /// object that has the stack.
    static void shareURI(QeXmlNamespace& to, const QeXmlNamespace& from) {
        corvel::SharedText::share(to.uri, from.uri);
    }

    /// A copy whose URI can be shared, however short.
    static QeXmlNamespace toBeShared(const QeXmlNamespace& ns) {
        QeXmlNamespace copy;
        copy.prefix = ns.prefix;
        corvel::SharedText::assign(copy.uri, ns.uri);
        return copy;
    }

    /// Whether a URI is so long that its length must not count at every tag.
    static bool hasLongURI(const QeXmlNamespace& ns) noexcept { return corvel::SharedText::isLong(ns.uri); }

    /// @}
    /// @name Attribute sets
    /// @{

    static QeSlotArray<QeXmlAttribute>& slotsOf(QeXmlAttributeSet& set) noexcept { return set.attributes; }

    /// Whether the attributes are known to stand in order, each name once.
    static bool isKnownSorted(const QeXmlAttributeSet& set) noexcept { return set.knownSorted; }
    static void setKnownSorted(QeXmlAttributeSet& set, bool sorted) noexcept { set.knownSorted = sorted; }

    /// For attributes that stand in order of their local names: finds out whether the set is sorted.
    static void lookAtLocalNames(QeXmlAttributeSet& set) noexcept { set.lookAtLocalNames(); }

    /// Adds an attribute behind all others.
    static void append(QeXmlAttributeSet& set, const QeCString& localName, const QeXmlNamespace& ns,
                       const QeCString& value) {
        set.append(localName, ns, value);
    }

    /// Assignment that keeps the strings of the slots. After a throw, `set` is empty.
    static void assignInPlace(QeXmlAttributeSet& set, const QeXmlAttributeSet& other) { set.assignInPlace(other); }

    /// @}
    /// @name Namespace stacks
    /// @{

    /// Where a lookup begins: with the innermost scope, or with the one around it.
    using From = QeXmlNamespaceStack::From;

    /// Whether a scope is open, and whether one is open around the innermost.
    static bool hasScope(const QeXmlNamespaceStack& stack) noexcept { return stack.depth > 0; }
    static bool hasOuterScope(const QeXmlNamespaceStack& stack) noexcept { return stack.depth > 1; }

    /// Whether the innermost scope has bindings.
    static bool innermostDeclares(const QeXmlNamespaceStack& stack) noexcept { return stack.innermostDeclares(); }

    /// How many bindings there are in all scopes.
    static std::size_t countOf(const QeXmlNamespaceStack& stack) noexcept { return stack.count(); }

    /// A number for the bindings in force, 0 for none: as long as it is the same, every
    /// lookup gives the same binding, at the same address. Popping a scope brings back
    /// the number from before it.
    static std::uint64_t versionOf(const QeXmlNamespaceStack& stack) noexcept { return stack.version(); }

    /// The binding of a prefix that is in force, or null. Most documents bind none, which calls for no call.
    static const QeXmlNamespace* findPrefix(const QeXmlNamespaceStack& stack, std::string_view prefix,
                                            From from = From::Innermost) noexcept {
        return stack.version() == 0 ? nullptr : stack.findBoundPrefix(prefix, from);
    }

    /// The innermost binding of a URI, or null. That of a namespace is found in O(1)
    /// where it is long and shared.
    static const QeXmlNamespace* findURI(const QeXmlNamespaceStack& stack, std::string_view uri) noexcept {
        return stack.findURI(uri);
    }
    static const QeXmlNamespace* findURI(const QeXmlNamespaceStack& stack, const QeXmlNamespace& ns) noexcept {
        return stack.findURI(ns.uri);
    }

    /// Binds a prefix in the innermost scope, as `addNamespace` does. That of a
    /// namespace is shared where it is long.
    static void addBinding(QeXmlNamespaceStack& stack, std::string_view prefix, std::string_view uri) {
        stack.addBinding(prefix, uri);
    }
    static void addBinding(QeXmlNamespaceStack& stack, std::string_view prefix, const QeXmlNamespace& ns) {
        stack.addBinding(prefix, ns.uri, &ns.uri);
    }

    /// Has a binding of this stack take over the equal URI of a namespace, so that the
    /// next comparison with it is O(1).
    static void shareURIWithBinding(QeXmlNamespaceStack& stack, const QeXmlNamespace& binding,
                                    const QeXmlNamespace& equal) noexcept {
        stack.shareBlock(binding, equal.uri);
    }

    /// Pops a scope and leaves its bindings as the only scope of `closed`.
    static void popScopeInto(QeXmlNamespaceStack& stack, QeXmlNamespaceStack& closed) { stack.popScopeInto(closed); }

    static void clear(QeXmlNamespaceStack& stack) noexcept {
        if (stack.depth != 0) stack.dropAll();
    }

    /// @}
};

}  // namespace tessit
