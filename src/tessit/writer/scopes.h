#pragma once

#include <span>

#include <tessit/model/model_access.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_namespace_stack.h>

namespace tessit {

/// Which namespaces are in force where the writer stands, and which ones a tag has
/// still to declare.
///
/// Knows the rules by which a name needs a declaration, and one scope for the document
/// and each open element. Does not know how a declaration is written, nor where among
/// the attributes of its tag. The bindings themselves are in the stack of the writer.
class WriterScopes {
public:
    explicit WriterScopes(QeXmlNamespaceStack& ofWriter) noexcept : stack(ofWriter) {}

    /// Opens the scope of an element.
    void open() noexcept { stack.pushScope(); }

    /// Closes the innermost scope. That of the document stays, however many ends are written.
    void close() noexcept {
        if (!ModelAccess::hasOuterScope(stack)) return;
        if (innermostBinds()) lastFound = nullptr;
        stack.popScope();
    }

    /// Binds a prefix in the innermost scope.
    void add(const QeXmlNamespace& ns);

    /// Binds a prefix in the innermost scope unless it is taken for bound. Returns whether it was added.
    bool declare(const QeXmlNamespace& ns);

    /// Does the same for what a set of attributes needs and declares. Returns whether a
    /// binding was added that is not declared by an attribute of the set.
    bool declareNamespacesOf(const QeXmlAttributeSet& attributes);

    /// Whether the innermost scope has bindings.
    bool innermostBinds() const noexcept { return ModelAccess::innermostDeclares(stack); }

    /// The bindings of the innermost scope in the order in which they were added, up to the next one.
    std::span<const QeXmlNamespace> innermost() const noexcept {
        return {stack.namespacesBegin(), stack.namespacesEnd()};
    }

    /// The stack has been replaced.
    void forget() noexcept { lastFound = nullptr; }

private:
    void declare(const QeCString& prefix, const QeCString& uri);
    template <typename Name>
    const QeXmlNamespace* findPrefixed(const QeCString& uri, const Name& name);
    const QeXmlNamespace* findDefault(const QeCString& uri) const noexcept;

    QeXmlNamespaceStack& stack;
    const QeXmlNamespace* lastFound = nullptr;  // where the last URI looked for is bound, until bindings change
};

/// The innermost scope, which is closed again unless all that belongs to it went well.
class ScopeGuard {
public:
    explicit ScopeGuard(WriterScopes& opened) noexcept : scopes(&opened) {}
    ScopeGuard(const ScopeGuard&) = delete;
    ScopeGuard& operator=(const ScopeGuard&) = delete;
    ~ScopeGuard() {
        if (scopes != nullptr) scopes->close();
    }

    /// Leaves the scope open.
    void keep() noexcept { scopes = nullptr; }

private:
    WriterScopes* scopes;
};

}  // namespace tessit
