#include <algorithm>
#include <memory>
#include <span>
#include <utility>

#include <corvel/shared_text.h>
#include <tessit/model/binding_index.h>
#include <tessit/model/binding_store.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_namespace_stack.h>

using corvel::SharedText;

namespace {

// Up to this many bindings a scan is faster than the index. Once there, it stays as
// long as any binding does: building it costs the bytes of all.
constexpr std::size_t IndexThreshold = 16;

}  // namespace

// Most elements declare nothing, so such a scope is only a count: opening one
// allocates nothing, and a lookup at depth 10^6 visits none of them.
struct QeXmlNamespaceStack::Declarations {
    using Number = tessit::BindingStore::Number;

    struct Scope {
        std::uint64_t version;
        std::size_t depth;
        Number first;
        Number count;
    };

    const Scope& innermost() const noexcept { return scopes[scopeCount - 1]; }

    // The number behind those of the first scopes.
    Number endOf(std::size_t scopeEnd) const noexcept {
        return scopeEnd == 0 ? 0 : scopes[scopeEnd - 1].first + scopes[scopeEnd - 1].count;
    }

    std::span<const QeXmlNamespace> bindingsOf(const Scope& scope) const noexcept {
        return {&bindings[scope.first], scope.count};
    }

    template <typename Matches>
    const QeXmlNamespace* findInScopes(std::size_t scopeEnd, const Matches& matches) const noexcept {
        for (std::size_t scope = scopeEnd; scope-- > 0;)
            for (const QeXmlNamespace& binding : bindingsOf(scopes[scope]))
                if (matches(binding)) return &binding;
        return nullptr;
    }

    template <typename Text>
    const QeXmlNamespace* findURI(const Text& uri) const noexcept {
        if (isIndexed) [[unlikely]]
            return index->byURI.find(bindings, uri, endOf(scopeCount));
        return findInScopes(scopeCount, [&](const QeXmlNamespace& binding) { return binding.getURI() == uri; });
    }

    void makeRoomFor(Number number, bool inNewScope) {
        scopes.makeRoomFor(scopeCount + (inNewScope ? 1 : 0));
        if (!isIndexed && bindingCount < IndexThreshold) return;
        if (!isIndexed) buildIndex();
        index->makeRoomFor(bindings, endOf(scopeCount), number);
    }

    void buildIndex() {
        if (index == nullptr) index = std::make_unique<tessit::BindingIndex>();
        Number number = 0;
        for (std::size_t scope = 0; scope < scopeCount; ++scope) {
            const Number first = scopes[scope].first;
            for (; number < first; ++number) {
                index->makeRoomFor(bindings, number, number);
                index->skip(number);
            }
            for (; number < first + scopes[scope].count; ++number) {
                index->makeRoomFor(bindings, number, number);
                index->add(bindings, number, first);
            }
        }
        isIndexed = true;
    }

    // Has the innermost scope stand where it has room for one more.
    void settle(Scope& scope, tessit::BindingStore::Place place) noexcept {
        const Number to = place.first;
        const bool changesNumbers = isIndexed && to != scope.first;
        if (changesNumbers) dropFromIndex(scope);
        bindings.settle(std::move(place), scope.first, scope.count);
        if (changesNumbers) {
            for (Number hole = scope.first; hole < to; ++hole)
                index->skip(hole);
            for (Number i = 0; i < scope.count; ++i)
                index->add(bindings, to + i, to);
        }
        scope.first = to;
    }

    void dropFromIndex(const Scope& scope) noexcept {
        for (Number left = scope.count; left-- > 0;)
            index->drop(bindings, scope.first + left);
    }

    // Its bindings stay as storage for the next ones.
    void dropInnermost() noexcept {
        if (isIndexed) dropFromIndex(innermost());
        bindingCount -= innermost().count;
        if (bindingCount == 0) isIndexed = false;
        --scopeCount;
    }

    tessit::BindingStore bindings;
    tessit::ChunkedArray<Scope, 4> scopes;  // those with bindings, outermost first
    std::size_t scopeCount = 0;
    std::size_t bindingCount = 0;
    bool isIndexed = false;                       // while many bindings are in force
    std::unique_ptr<tessit::BindingIndex> index;  // from the first time that there are many
};

QeXmlNamespaceStack::QeXmlNamespaceStack() noexcept = default;
QeXmlNamespaceStack::~QeXmlNamespaceStack() = default;

QeXmlNamespaceStack::QeXmlNamespaceStack(const QeXmlNamespaceStack& other) {
    if (other.version() != 0)
        for (std::size_t i = 0; i < other.declared->scopeCount; ++i) {
            const Declarations::Scope& scope = other.declared->scopes[i];
            depth = scope.depth;
            for (const QeXmlNamespace& binding : other.declared->bindingsOf(scope))
                addNamespace(binding);
        }
    depth = other.depth;
}

QeXmlNamespaceStack::QeXmlNamespaceStack(QeXmlNamespaceStack&& other) noexcept
    : depth(std::exchange(other.depth, 0)),
      declaringDepth(std::exchange(other.declaringDepth, 0)),
      versionInForce(std::exchange(other.versionInForce, 0)),
      lastVersion(other.lastVersion),
      declared(std::move(other.declared)) {}

QeXmlNamespaceStack& QeXmlNamespaceStack::operator=(const QeXmlNamespaceStack& other) {
    return *this = QeXmlNamespaceStack(other);
}

QeXmlNamespaceStack& QeXmlNamespaceStack::operator=(QeXmlNamespaceStack&& other) noexcept {
    depth = std::exchange(other.depth, 0);
    declaringDepth = std::exchange(other.declaringDepth, 0);
    versionInForce = std::exchange(other.versionInForce, 0);
    lastVersion = other.lastVersion;
    declared = std::move(other.declared);
    return *this;
}

void QeXmlNamespaceStack::addNamespace(const QeXmlNamespace& ns) {
    addBinding(ns.prefix, ns.uri, &ns.uri);
}

std::size_t QeXmlNamespaceStack::count() const noexcept {
    return declared == nullptr ? 0 : declared->bindingCount;
}

QeXmlNamespaceStack::Declarations& QeXmlNamespaceStack::declarations() {
    if (declared == nullptr) declared = std::make_unique<Declarations>();
    return *declared;
}

// Everything that can throw comes first and changes nothing that can be seen; the
// last lines make the binding visible and cannot fail. The views may point into
// the stack, whose bindings do not move before the new one was written.
void QeXmlNamespaceStack::addBinding(std::string_view prefix, std::string_view uri, const QeCString* shared) {
    Declarations& all = declarations();
    const bool opensScope = !innermostDeclares();
    Declarations::Scope scope{0, std::max<std::size_t>(depth, 1), all.endOf(all.scopeCount), 0};
    if (!opensScope) scope = all.innermost();
    tessit::BindingStore::Place place = all.bindings.placeBehind(scope.first, scope.count);
    const Declarations::Number number = place.first + scope.count;
    all.makeRoomFor(number, opensScope);
    writeBinding(*place.slot, prefix, uri, shared);

    all.settle(scope, std::move(place));
    if (all.isIndexed) all.index->add(all.bindings, number, scope.first);
    ++scope.count;
    ++all.bindingCount;
    scope.version = ++lastVersion;
    if (opensScope) ++all.scopeCount;
    all.scopes[all.scopeCount - 1] = scope;
    depth = std::max<std::size_t>(depth, 1);
    lookAtInnermost();
}

// A long URI that is bound already is shared, so that names can be compared by where it stands.
void QeXmlNamespaceStack::writeBinding(QeXmlNamespace& slot, std::string_view prefix, std::string_view uri,
                                       const QeCString* shared) const {
    if (!SharedText::isLong(uri)) {
        shared = nullptr;
    } else if (const QeXmlNamespace* same = shared != nullptr ? findURI(*shared) : findURI(uri)) {
        shared = &same->uri;
    }
    slot.prefix.assign(prefix);
    if (shared != nullptr) {
        SharedText::share(slot.uri, *shared);
    } else {
        SharedText::assign(slot.uri, uri);
    }
}

void QeXmlNamespaceStack::shareBlock(const QeXmlNamespace& binding, const QeCString& uri) noexcept {
    if (SharedText::isLong(uri))
        SharedText::share(const_cast<QeXmlNamespace&>(binding).uri, uri);  // ours, and equal: nobody sees it
}

void QeXmlNamespaceStack::dropBindings() noexcept {
    declared->dropInnermost();
    lookAtInnermost();
}

// For after the scopes with bindings have changed.
void QeXmlNamespaceStack::lookAtInnermost() noexcept {
    const bool isBound = declared != nullptr && declared->scopeCount != 0;
    declaringDepth = isBound ? declared->innermost().depth : 0;
    versionInForce = isBound ? declared->innermost().version : 0;
}

void QeXmlNamespaceStack::popScopeInto(QeXmlNamespaceStack& closed) {
    if (closed.depth != 0) closed.dropAll();
    if (innermostDeclares()) {
        if (declared->scopeCount == 1) {
            declared.swap(closed.declared);
        } else {
            closed.takeInnermost(*declared);
        }
        lookAtInnermost();
        closed.makeInnermostOnly();
    }
    popScope();
    if (closed.version() != 0) closed.declared->makeRoomFor(closed.declared->endOf(1), false);  // for an index
}

// Takes over the bindings of an innermost scope, and leaves old storage in their place.
void QeXmlNamespaceStack::takeInnermost(Declarations& from) {
    Declarations& all = declarations();
    const Declarations::Scope scope = from.innermost();
    Declarations::Number first = 0;
    for (Declarations::Number count = 0; count < scope.count; ++count) {
        tessit::BindingStore::Place place = all.bindings.placeBehind(first, count);
        const Declarations::Number old = std::exchange(first, place.first);
        all.bindings.settle(std::move(place), old, 0);
    }
    from.dropInnermost();
    for (Declarations::Number i = 0; i < scope.count; ++i)
        std::swap(all.bindings[first + i], from.bindings[scope.first + i]);
    all.scopes[0] = {0, 1, first, scope.count};
    all.scopeCount = 1;
    all.bindingCount = scope.count;
}

void QeXmlNamespaceStack::makeInnermostOnly() noexcept {
    declared->scopes[0].version = ++lastVersion;
    declared->scopes[0].depth = depth = 1;
    lookAtInnermost();
}

void QeXmlNamespaceStack::dropAll() noexcept {
    while (version() != 0)
        dropBindings();
    depth = 0;
}

const QeXmlNamespace* QeXmlNamespaceStack::findBoundPrefix(std::string_view prefix, From from) const noexcept {
    const Declarations& all = *declared;
    const bool skipsInnermost = from == From::AroundInnermost && innermostDeclares();
    const std::size_t scopeEnd = all.scopeCount - (skipsInnermost ? 1 : 0);
    if (all.isIndexed) [[unlikely]]
        return all.index->byPrefix.find(all.bindings, prefix, all.endOf(scopeEnd));
    return all.findInScopes(scopeEnd, [=](const QeXmlNamespace& binding) { return binding.getPrefix() == prefix; });
}

const QeXmlNamespace* QeXmlNamespaceStack::findURI(const QeCString& uri) const noexcept {
    return version() == 0 ? nullptr : declared->findURI(uri);
}

const QeXmlNamespace* QeXmlNamespaceStack::findURI(std::string_view uri) const noexcept {
    return version() == 0 ? nullptr : declared->findURI(uri);
}

const QeCString& QeXmlNamespaceStack::getURIForPrefix(const QeCString& prefix) const noexcept {
    const QeXmlNamespace* found = version() == 0 ? nullptr : findBoundPrefix(prefix, From::Innermost);
    return found == nullptr ? QeXmlAttributeSet::EmptyString : found->getURI();
}

const QeCString& QeXmlNamespaceStack::getPrefixForURI(const QeCString& uri) const noexcept {
    const QeXmlNamespace* found = findURI(uri);
    return found == nullptr ? QeXmlAttributeSet::EmptyString : found->getPrefix();
}

const QeXmlNamespace* QeXmlNamespaceStack::namespacesBegin() const noexcept {
    return innermostDeclares() ? declared->bindingsOf(declared->innermost()).data() : nullptr;
}

const QeXmlNamespace* QeXmlNamespaceStack::namespacesEnd() const noexcept {
    return innermostDeclares() ? namespacesBegin() + declared->innermost().count : nullptr;
}
