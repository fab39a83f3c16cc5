#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include <tessit/model/xml_namespace.h>

/// The namespace bindings in force at one point of a document.
///
/// One scope per open element; lookups see the innermost scope first, and within
/// a scope the binding that was added first. Prefixes and URIs are UTF-8 and
/// compared byte for byte. An empty result means either that nothing is bound or
/// that the empty string is. A copy shares nothing that changes. One thread at a
/// time.
///
/// References from the lookups stay valid until the scope that holds the binding
/// is popped or gains a binding. Copies are O(bytes of the bindings in force), and
/// one that throws changes nothing; moves are O(1), but for what they replace.
class TESSIT_API QeXmlNamespaceStack {
public:
    /// A stack without a scope.
    QeXmlNamespaceStack() noexcept;
    QeXmlNamespaceStack(const QeXmlNamespaceStack& other);
    QeXmlNamespaceStack(QeXmlNamespaceStack&& other) noexcept;
    QeXmlNamespaceStack& operator=(const QeXmlNamespaceStack& other);
    QeXmlNamespaceStack& operator=(QeXmlNamespaceStack&& other) noexcept;
    ~QeXmlNamespaceStack();

    /// Opens an empty scope. O(1), allocates nothing.
    void pushScope() noexcept { ++depth; }

    /// Drops the innermost scope with its bindings; without one, does nothing.
    /// O(1) for a scope that declares nothing, else O(its bindings).
    void popScope() noexcept {
        if (innermostDeclares()) dropBindings();
        if (depth > 0) --depth;
    }

    /// Appends a copy of `ns` to the innermost scope, behind any equal prefix
    /// already there. Without a scope, opens one. Amortised O(length of prefix and
    /// URI), on average, however many bindings are in force. Strong guarantee.
    void addNamespace(const QeXmlNamespace& ns);

    /// The URI bound to `prefix`, or the empty string. Visits scopes that declare
    /// something only, and with many bindings in force a hash table, whose keys no
    /// document can choose to fall together: O(length of the prefix), on average.
    const QeCString& getURIForPrefix(const QeCString& prefix) const noexcept;

    /// The prefix of the first binding found for `uri`, or the empty string. No
    /// check is made whether an inner scope binds that prefix to another URI.
    /// O(length of the URI), on average.
    const QeCString& getPrefixForURI(const QeCString& uri) const noexcept;

    /// The bindings of the innermost scope, in the order of adding; an empty range
    /// without a scope. Valid until the scope is popped or gains a binding. O(1).
    const QeXmlNamespace* namespacesBegin() const noexcept;
    const QeXmlNamespace* namespacesEnd() const noexcept;

private:
    friend struct tessit::ModelAccess;

    struct Declarations;

    bool innermostDeclares() const noexcept { return depth != 0 && depth == declaringDepth; }

    // A number for the bindings in force, 0 for none: as long as it is the same, every
    // lookup gives the same binding, at the same address. Popping a scope brings back
    // the number from before it.
    std::uint64_t version() const noexcept { return versionInForce; }

    // Where a lookup begins: with the innermost scope, or with the one around it.
    enum class From : unsigned char { Innermost, AroundInnermost };

    TESSIT_NO_EXPORT const QeXmlNamespace* findBoundPrefix(std::string_view prefix, From from) const noexcept;
    TESSIT_NO_EXPORT const QeXmlNamespace* findURI(const QeCString& uri) const noexcept;
    TESSIT_NO_EXPORT const QeXmlNamespace* findURI(std::string_view uri) const noexcept;

    // `shared` is equal to `uri`, and a long one is shared with it.
    TESSIT_NO_EXPORT void addBinding(std::string_view prefix, std::string_view uri, const QeCString* shared = nullptr);
    TESSIT_NO_EXPORT void writeBinding(QeXmlNamespace& slot, std::string_view prefix, std::string_view uri,
                                       const QeCString* shared) const;

    // Has a binding, which must be one of this stack, share an equal URI that is long.
    TESSIT_NO_EXPORT void shareBlock(const QeXmlNamespace& binding, const QeCString& uri) noexcept;

    // Pops a scope and leaves its bindings as the only scope of `closed`.
    TESSIT_NO_EXPORT void popScopeInto(QeXmlNamespaceStack& closed);
    TESSIT_NO_EXPORT void takeInnermost(Declarations& from);
    TESSIT_NO_EXPORT void makeInnermostOnly() noexcept;

    TESSIT_NO_EXPORT std::size_t count() const noexcept;
    TESSIT_NO_EXPORT Declarations& declarations();
    TESSIT_NO_EXPORT void dropAll() noexcept;
    TESSIT_NO_EXPORT void lookAtInnermost() noexcept;
    void dropBindings() noexcept;

    // Programs have code inlined that relies on these two; all else may change.
    std::size_t depth = 0;
    std::size_t declaringDepth = 0;  // of the innermost scope with bindings; 0 for none
    std::uint64_t versionInForce = 0;
    std::uint64_t lastVersion = 0;
    std::unique_ptr<Declarations> declared;  // from the first binding on
};
