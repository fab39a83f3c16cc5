#include <map>
#include <new>
#include <utility>
#include <vector>

#include <tessit/model/xml_namespace_stack.h>

// Bindings by prefix and by URI, for stacks that hold many. An ordered map, not
// a hash table: a hostile document could choose names that all hash alike.
//
// Each list names, outermost first, the bindings that a lookup could return: the
// first one of each scope with that prefix (or URI). Its last entry is the answer.
struct QeXmlNamespaceStack::Index {
    struct Place {
        std::size_t scope;
        std::size_t binding;
    };
    using Places = std::map<QeCString, std::vector<Place>, std::less<>>;

    void add(std::string_view prefix, std::string_view uri, Place place) {
        add(byPrefix, prefix, place);
        add(byURI, uri, place);
    }

    // Forgets a binding of the innermost scope.
    void drop(const QeXmlNamespace& binding, std::size_t scope) noexcept {
        drop(byPrefix, binding.getPrefix(), scope);
        drop(byURI, binding.getURI(), scope);
    }

    static void add(Places& places, std::string_view key, Place place) {
        auto entry = places.lower_bound(key);
        if (entry == places.end() || entry->first != key)
            entry = places.emplace_hint(entry, QeCString(key), std::vector<Place>());
        std::vector<Place>& list = entry->second;
        if (list.empty() || list.back().scope != place.scope) list.push_back(place);
    }

    // Does nothing when an equal key of the same scope was dropped already.
    static void drop(Places& places, const QeCString& key, std::size_t scope) noexcept {
        const auto found = places.find(key);
        if (found == places.end()) return;
        std::vector<Place>& list = found->second;
        if (!list.empty() && list.back().scope == scope) list.pop_back();
        if (list.empty()) places.erase(found);
    }

    // The innermost place under `key` in a scope before `scopeEnd`, which is the last scope or the end of all.
    static const Place* find(const Places& places, std::string_view key, std::size_t scopeEnd) noexcept {
        const auto found = places.find(key);
        if (found == places.end()) return nullptr;
        const std::vector<Place>& list = found->second;
        std::size_t count = list.size();
        if (count > 0 && list[count - 1].scope >= scopeEnd) --count;
        return count == 0 ? nullptr : &list[count - 1];
    }

    Places byPrefix;
    Places byURI;
};

namespace {

// Up to this many bindings a scan is faster than the index; it is dropped again at half as many.
constexpr std::size_t IndexThreshold = 16;

// The longest URI that every name has a copy of.
constexpr std::size_t LongestCopiedURI = 127;

}  // namespace

QeXmlNamespaceStack::QeXmlNamespaceStack() noexcept = default;
QeXmlNamespaceStack::~QeXmlNamespaceStack() = default;

QeXmlNamespaceStack::QeXmlNamespaceStack(const QeXmlNamespaceStack& other)
    : depth(other.depth), declaring(other.declaring), bindingCount(other.bindingCount), lastState(other.lastState) {}

QeXmlNamespaceStack::QeXmlNamespaceStack(QeXmlNamespaceStack&& other) noexcept
    : depth(std::exchange(other.depth, 0)),
      declaring(std::move(other.declaring)),
      bindingCount(std::exchange(other.bindingCount, 0)),
      lastState(other.lastState),
      index(std::move(other.index)),
      longURIs(std::move(other.longURIs)) {}

QeXmlNamespaceStack& QeXmlNamespaceStack::operator=(const QeXmlNamespaceStack& other) {
    return *this = QeXmlNamespaceStack(other);
}

QeXmlNamespaceStack& QeXmlNamespaceStack::operator=(QeXmlNamespaceStack&& other) noexcept {
    depth = std::exchange(other.depth, 0);
    declaring = std::move(other.declaring);
    bindingCount = std::exchange(other.bindingCount, 0);
    lastState = other.lastState;
    index = std::move(other.index);
    longURIs = std::move(other.longURIs);
    return *this;
}

void QeXmlNamespaceStack::addNamespace(const QeXmlNamespace& ns) {
    addBinding(ns.getPrefix(), ns.getURI());
}

// Everything that can throw comes first and changes nothing that can be seen; the
// last lines make the binding visible and cannot fail. The views may point into
// the stack, whose bindings do not move before the new one was written.
void QeXmlNamespaceStack::addBinding(std::string_view prefix, std::string_view uri) {
    const bool opensDeclaring = !innermostDeclares();
    const std::size_t scopeIndex = declaring.size() - (opensDeclaring ? 0 : 1);
    declaring.reserveSlots(scopeIndex + 1);
    DeclaringScope& scope = declaring[scopeIndex];
    if (opensDeclaring) scope.bindings.clear();
    try {
        if (index != nullptr) index->add(prefix, uri, {scopeIndex, scope.bindings.size()});
        scope.bindings.append([&](QeXmlNamespace& slot) {
            slot.prefix.assign(prefix);
            writeURI(slot.uri, uri);
        });
    } catch (...) {
        index.reset();  // it may know the binding already; the next lookup builds a new index
        throw;
    }

    if (depth == 0) pushScope();
    if (opensDeclaring) {
        scope.depth = depth;
        declaring.append();
    }
    scope.state = ++lastState;
    ++bindingCount;
}

void QeXmlNamespaceStack::writeURI(QeCString& slot, std::string_view uri) {
    if (uri.size() <= LongestCopiedURI) return slot.assign(uri);
    if (longURIs == nullptr) longURIs = std::make_unique<QeTextPool>();
    slot = longURIs->keep(uri);
}

// The index, if there are bindings enough for one. Built by the first lookup: many a
// scope, above all one that was closed, never has any.
const QeXmlNamespaceStack::Index* QeXmlNamespaceStack::indexForLookup() const noexcept {
    if (index == nullptr && bindingCount > IndexThreshold) {
        try {
            buildIndex();
        } catch (const std::bad_alloc&) {  // a scan finds the same
        }
    }
    return index.get();
}

void QeXmlNamespaceStack::buildIndex() const {
    auto built = std::make_unique<Index>();
    for (std::size_t scope = 0; scope < declaring.size(); ++scope) {
        std::size_t position = 0;
        for (const QeXmlNamespace& binding : declaring[scope].bindings)
            built->add(binding.getPrefix(), binding.getURI(), {scope, position++});
    }
    index = std::move(built);
}

void QeXmlNamespaceStack::dropBindings() noexcept {
    forgetInnermost();
    declaring.back().bindings.clear();
    declaring.dropLast();
}

// Takes the bindings of the innermost scope out of the count and the index.
void QeXmlNamespaceStack::forgetInnermost() noexcept {
    const QeSlotArray<QeXmlNamespace>& bindings = declaring.back().bindings;
    bindingCount -= bindings.size();
    if (bindingCount <= IndexThreshold / 2) {
        index.reset();
    } else if (index != nullptr) {
        for (const QeXmlNamespace& binding : bindings)
            index->drop(binding, declaring.size() - 1);
    }
}

void QeXmlNamespaceStack::popScopeInto(QeXmlNamespaceStack& closed) {
    closed.clear();
    if (innermostDeclares()) {
        closed.declaring.reserveSlots(1);
        forgetInnermost();
        closed.takeScope(declaring.back());
        declaring.dropLast();
    }
    popScope();
}

void QeXmlNamespaceStack::takeScope(DeclaringScope& scope) noexcept {
    DeclaringScope& only = declaring.append();
    only.bindings.swap(scope.bindings);  // and leaves our old storage there, for the next scope
    only.depth = depth = 1;
    only.state = ++lastState;
    bindingCount = only.bindings.size();
}

void QeXmlNamespaceStack::dropAll() noexcept {
    index.reset();
    declaring.clear();
    bindingCount = 0;
    depth = 0;
}

const QeXmlNamespace* QeXmlNamespaceStack::findPrefix(std::string_view prefix, From from) const noexcept {
    const bool skipsInnermost = from == From::AroundInnermost && innermostDeclares();
    const std::size_t scopeEnd = declaring.size() - (skipsInnermost ? 1 : 0);
    if (const Index* known = indexForLookup()) {
        const Index::Place* place = Index::find(known->byPrefix, prefix, scopeEnd);
        return place == nullptr ? nullptr : &declaring[place->scope].bindings[place->binding];
    }
    return findInScopes(scopeEnd, [=](const QeXmlNamespace& binding) { return binding.getPrefix() == prefix; });
}

const QeXmlNamespace* QeXmlNamespaceStack::findURI(std::string_view uri) const noexcept {
    if (const Index* known = indexForLookup()) {
        const Index::Place* place = Index::find(known->byURI, uri, declaring.size());
        return place == nullptr ? nullptr : &declaring[place->scope].bindings[place->binding];
    }
    return findInScopes(declaring.size(), [=](const QeXmlNamespace& binding) { return binding.getURI() == uri; });
}

template <typename Matches>
const QeXmlNamespace* QeXmlNamespaceStack::findInScopes(std::size_t scopeEnd, const Matches& matches) const noexcept {
    for (std::size_t scope = scopeEnd; scope-- > 0;)
        for (const QeXmlNamespace& binding : declaring[scope].bindings)
            if (matches(binding)) return &binding;
    return nullptr;
}

const QeCString& QeXmlNamespaceStack::getURIForPrefix(const QeCString& prefix) const noexcept {
    const QeXmlNamespace* found = findPrefix(prefix);
    return found == nullptr ? QeXmlAttributeSet::EmptyString : found->getURI();
}

const QeCString& QeXmlNamespaceStack::getPrefixForURI(const QeCString& uri) const noexcept {
    const QeXmlNamespace* found = findURI(uri);
    return found == nullptr ? QeXmlAttributeSet::EmptyString : found->getPrefix();
}
