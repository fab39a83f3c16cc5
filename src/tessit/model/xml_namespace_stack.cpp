#include <utility>
#include <vector>

#include <corvel/shared_text.h>
#include <tessit/model/find_prefix.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_namespace_stack.h>

using corvel::SharedText;

namespace {

// Up to this many bindings a scan is faster than the index. Once there, it stays as
// long as any binding does: building it costs the bytes of all.
constexpr std::size_t IndexThreshold = 16;

std::uint64_t lengthBit(std::string_view text) noexcept {
    return std::uint64_t{1} << (text.size() & 63);
}

}  // namespace

// Bindings by prefix and by URI, for stacks that hold many.
//
// Scopes come and go last in, first out, and so do the entries of the index. Each
// entry knows the older one of its bucket: dropping it brings that one back, and
// nothing is allocated once the arrays have their size.
struct QeXmlNamespaceStack::Index {
    using Scopes = QeSlotArray<DeclaringScope>;

    struct Place {
        std::size_t scope;
        std::size_t binding;
    };

    template <const QeCString& (QeXmlNamespace::*key)() const noexcept>
    class Table {
    public:
        // Lists the newest binding, unless its scope has a binding with the same key: a lookup returns the first one.
        // There must be room for it.
        void add(const Scopes& scopes, Place place) noexcept {
            const QeCString& added = (bindingAt(scopes, place).*key)();
            const std::size_t hash = SharedText::hashOf(added);
            const Entry* same = findEntry(scopes, added, hash, place.scope + 1);
            if (same != nullptr && same->place.scope == place.scope) return;
            entries.push_back({hash, place, 0});
            link(entries.size());
        }

        // Makes sure that the next addition finds room.
        void makeRoom() {
            if (entries.size() == buckets.size()) growBuckets();
            if (entries.size() == entries.capacity()) entries.reserve(2 * entries.size() + 1);
        }

        void dropScope(std::size_t scope) noexcept {
            while (!entries.empty() && entries.back().place.scope == scope)
                dropLast();
        }

        // Costs as much as the entries, not as the buckets, which once may have been many more.
        void clear() noexcept {
            while (!entries.empty())
                dropLast();
        }

        // The innermost binding with that key in a scope before `scopeEnd`.
        const QeXmlNamespace* find(const Scopes& scopes, std::string_view wanted, std::size_t hash,
                                   std::size_t scopeEnd) const noexcept {
            const Entry* found = findEntry(scopes, wanted, hash, scopeEnd);
            return found == nullptr ? nullptr : &bindingAt(scopes, found->place);
        }

    private:
        struct Entry {
            std::size_t hash;
            Place place;
            std::size_t older;  // in the same bucket; from 1, and 0 for none
        };

        static const QeXmlNamespace& bindingAt(const Scopes& scopes, Place place) noexcept {
            return scopes[place.scope].bindings[place.binding];
        }

        std::size_t bucketIndex(std::size_t hash) const noexcept { return hash & (buckets.size() - 1); }
        std::size_t& bucketOf(std::size_t hash) noexcept { return buckets[bucketIndex(hash)]; }

        const Entry* findEntry(const Scopes& scopes, std::string_view wanted, std::size_t hash,
                               std::size_t scopeEnd) const noexcept {
            if (buckets.empty()) return nullptr;
            for (std::size_t at = buckets[bucketIndex(hash)]; at != 0; at = entries[at - 1].older) {
                const Entry& entry = entries[at - 1];
                if (entry.hash == hash && entry.place.scope < scopeEnd &&
                    (bindingAt(scopes, entry.place).*key)() == wanted)
                    return &entry;
            }
            return nullptr;
        }

        void dropLast() noexcept {
            bucketOf(entries.back().hash) = entries.back().older;
            entries.pop_back();
        }

        // Puts an entry in front of its bucket.
        void link(std::size_t at) noexcept {
            std::size_t& bucket = bucketOf(entries[at - 1].hash);
            entries[at - 1].older = bucket;
            bucket = at;
        }

        void growBuckets() {
            std::vector<std::size_t> grown(buckets.empty() ? 4 * IndexThreshold : 2 * buckets.size());
            buckets.swap(grown);
            for (std::size_t at = 1; at <= entries.size(); ++at)
                link(at);
        }

        std::vector<Entry> entries;        // outermost first
        std::vector<std::size_t> buckets;  // the newest entry of each; their number is a power of two
    };

    void makeRoom() {
        byPrefix.makeRoom();
        byURI.makeRoom();
    }

    void add(const Scopes& scopes, Place place) noexcept {
        byPrefix.add(scopes, place);
        byURI.add(scopes, place);
    }

    void dropScope(std::size_t scope) noexcept {
        byPrefix.dropScope(scope);
        byURI.dropScope(scope);
    }

    void clear() noexcept {
        byPrefix.clear();
        byURI.clear();
    }

    Table<&QeXmlNamespace::getPrefix> byPrefix;
    Table<&QeXmlNamespace::getURI> byURI;
};

QeXmlNamespaceStack::QeXmlNamespaceStack() noexcept = default;
QeXmlNamespaceStack::~QeXmlNamespaceStack() = default;

QeXmlNamespaceStack::QeXmlNamespaceStack(const QeXmlNamespaceStack& other)
    : depth(other.depth), declaring(other.declaring), bindingCount(other.bindingCount), lastState(other.lastState) {
    if (bindingCount > IndexThreshold) buildIndex();
}

QeXmlNamespaceStack::QeXmlNamespaceStack(QeXmlNamespaceStack&& other) noexcept
    : depth(std::exchange(other.depth, 0)),
      declaring(std::move(other.declaring)),
      bindingCount(std::exchange(other.bindingCount, 0)),
      lastState(other.lastState),
      indexed(std::exchange(other.indexed, false)),
      index(std::move(other.index)) {}

QeXmlNamespaceStack& QeXmlNamespaceStack::operator=(const QeXmlNamespaceStack& other) {
    return *this = QeXmlNamespaceStack(other);
}

QeXmlNamespaceStack& QeXmlNamespaceStack::operator=(QeXmlNamespaceStack&& other) noexcept {
    depth = std::exchange(other.depth, 0);
    declaring = std::move(other.declaring);
    bindingCount = std::exchange(other.bindingCount, 0);
    lastState = other.lastState;
    indexed = std::exchange(other.indexed, false);
    index = std::move(other.index);
    return *this;
}

void QeXmlNamespaceStack::addNamespace(const QeXmlNamespace& ns) {
    addBinding(ns.prefix, ns.uri, &ns.uri);
}

// Everything that can throw comes first and changes nothing that can be seen; the
// last lines make the binding visible and cannot fail. The views may point into
// the stack, whose bindings do not move before the new one was written.
void QeXmlNamespaceStack::addBinding(std::string_view prefix, std::string_view uri, const QeCString* shared) {
    const bool opensDeclaring = !innermostDeclares();
    const std::size_t scopeIndex = declaring.size() - (opensDeclaring ? 0 : 1);
    declaring.reserveSlots(scopeIndex + 1);
    DeclaringScope& scope = declaring[scopeIndex];
    const std::uint64_t outerLengths = scopeIndex == 0 ? 0 : declaring[scopeIndex - 1].uriLengths;
    if (opensDeclaring) {
        scope.bindings.clear();
        scope.uriLengths = 0;
    }
    if (indexed || bindingCount >= IndexThreshold) makeRoomInIndex();
    // A long URI that is bound already is shared, so that names can be compared by where it stands.
    const bool isLong = SharedText::isLong(uri);
    const QeXmlNamespace* same = nullptr;
    if (isLong) same = shared != nullptr ? findURI(*shared) : findURI(uri);
    if (same != nullptr) shared = &same->uri;
    scope.bindings.append([=](QeXmlNamespace& slot) {
        slot.prefix.assign(prefix);
        if (isLong && shared != nullptr) {
            SharedText::share(slot.uri, *shared);
        } else {
            SharedText::assign(slot.uri, uri);
        }
    });

    if (indexed) index->add(declaring, {scopeIndex, scope.bindings.size() - 1});
    if (depth == 0) pushScope();
    if (opensDeclaring) {
        scope.depth = depth;
        declaring.append();
    }
    scope.state = ++lastState;
    scope.uriLengths |= outerLengths | lengthBit(uri);
    ++bindingCount;
}

void QeXmlNamespaceStack::shareBlock(const QeXmlNamespace& binding, const QeCString& uri) noexcept {
    SharedText::share(const_cast<QeXmlNamespace&>(binding).uri, uri);  // ours, and equal: nobody sees it
}

// Makes sure that there is an index, and that taking one more binding into it cannot fail.
void QeXmlNamespaceStack::makeRoomInIndex() {
    if (!indexed) buildIndex();
    index->makeRoom();
}

void QeXmlNamespaceStack::buildIndex() {
    if (index == nullptr) index = std::make_unique<Index>();
    index->clear();
    for (std::size_t scope = 0; scope < declaring.size(); ++scope)
        for (std::size_t binding = 0; binding < declaring[scope].bindings.size(); ++binding) {
            index->makeRoom();
            index->add(declaring, {scope, binding});
        }
    indexed = true;
}

// Its storage stays for the next time.
void QeXmlNamespaceStack::clearIndex() noexcept {
    if (indexed) index->clear();
    indexed = false;
}

void QeXmlNamespaceStack::dropBindings() noexcept {
    forgetInnermost();
    declaring.back().bindings.clear();
    declaring.dropLast();
}

// Takes the bindings of the innermost scope out of the count and the index.
void QeXmlNamespaceStack::forgetInnermost() noexcept {
    bindingCount -= declaring.back().bindings.size();
    if (indexed) index->dropScope(declaring.size() - 1);
    if (bindingCount == 0) clearIndex();
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
    if (closed.bindingCount > IndexThreshold) closed.buildIndex();
}

void QeXmlNamespaceStack::takeScope(DeclaringScope& scope) noexcept {
    DeclaringScope& only = declaring.append();
    only.bindings.swap(scope.bindings);  // and leaves our old storage there, for the next scope
    only.depth = depth = 1;
    only.state = ++lastState;
    only.uriLengths = scope.uriLengths;
    bindingCount = only.bindings.size();
}

void QeXmlNamespaceStack::dropAll() noexcept {
    clearIndex();
    declaring.clear();
    bindingCount = 0;
    depth = 0;
}

const QeXmlNamespace* QeXmlNamespaceStack::findBoundPrefix(std::string_view prefix, From from) const noexcept {
    const bool skipsInnermost = from == From::AroundInnermost && innermostDeclares();
    const std::size_t scopeEnd = declaring.size() - (skipsInnermost ? 1 : 0);
    if (indexed) [[unlikely]]
        return index->byPrefix.find(declaring, prefix, SharedText::hashOf(prefix), scopeEnd);
    return findInScopes(scopeEnd, [=](const QeXmlNamespace& binding) { return binding.getPrefix() == prefix; });
}

const QeXmlNamespace* QeXmlNamespaceStack::findURI(const QeCString& uri) const noexcept {
    return findEqualURI(uri, [&] { return SharedText::hashOf(uri); });
}

const QeXmlNamespace* QeXmlNamespaceStack::findURI(std::string_view uri) const noexcept {
    return findEqualURI(uri, [&] { return SharedText::hashOf(uri); });
}

template <typename Text, typename Hash>
const QeXmlNamespace* QeXmlNamespaceStack::findEqualURI(const Text& uri, const Hash& hash) const noexcept {
    if (declaring.empty() || (declaring.back().uriLengths & lengthBit(uri)) == 0) return nullptr;
    if (indexed) [[unlikely]]
        return index->byURI.find(declaring, uri, hash(), declaring.size());
    return findInScopes(declaring.size(), [&](const QeXmlNamespace& binding) { return binding.getURI() == uri; });
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
