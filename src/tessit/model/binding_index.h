#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <corvel/shared_text.h>
#include <tessit/model/binding_store.h>

/// BindingStore by prefix and by URI, for stacks that hold many.
///
/// Scopes come and go last in, first out, and so do the entries: each knows the older
/// one of its bucket, and dropping it brings that one back. Nothing is allocated once
/// the arrays have their size. Hashes are not kept, for a document can have a binding
/// for each dozen of bytes.
namespace tessit {

/// The numbers of bindings by one of their texts.
template <const QeCString& (QeXmlNamespace::*key)() const noexcept>
class BindingTable {
public:
    using Number = BindingStore::Number;

    /// Makes sure that `number` finds room, behind all those before `end`.
    void makeRoomFor(const BindingStore& bindings, Number end, Number number) {
        older.makeRoomFor(std::size_t{number} + 1);
        if (listed >= MostInABucket * buckets.size()) growBuckets(bindings, end);
    }

    /// Lists the newest binding, unless its scope, which starts at `scopeStart`, has an
    /// older one with the same key: a lookup returns the first one.
    void add(const BindingStore& bindings, Number number, Number scopeStart) noexcept {
        const QeCString& text = keyAt(bindings, number);
        const std::size_t hash = corvel::SharedText::hashOf(text);
        for (Link at = bucketOf(hash); at > scopeStart; at = older[at - 1])
            if (keyAt(bindings, at - 1) == text) return skip(number);
        link(number, hash);
        ++listed;
    }

    /// For a number that stands for no binding.
    void skip(Number number) noexcept { older[number] = NotListed; }

    void drop(const BindingStore& bindings, Number newest) noexcept {
        if (older[newest] == NotListed) return;
        bucketOf(corvel::SharedText::hashOf(keyAt(bindings, newest))) = older[newest];
        --listed;
    }

    /// The newest binding with that key among the first `end`, or null.
    template <typename Text>
    const QeXmlNamespace* find(const BindingStore& bindings, const Text& text, Number end) const noexcept {
        for (Link at = buckets[bucketIndex(corvel::SharedText::hashOf(text))]; at != None; at = older[at - 1])
            if (at <= end && keyAt(bindings, at - 1) == text) return &bindings[at - 1];
        return nullptr;
    }

private:
    using Link = Number;  // a number and one, or:
    static constexpr Link None = 0, NotListed = UINT32_MAX;

    static constexpr std::size_t MostInABucket = 2;  // on average

    static const QeCString& keyAt(const BindingStore& bindings, Number number) noexcept {
        return (bindings[number].*key)();
    }

    std::size_t bucketIndex(std::size_t hash) const noexcept { return hash & (buckets.size() - 1); }
    Link& bucketOf(std::size_t hash) noexcept { return buckets[bucketIndex(hash)]; }

    // Puts a binding in front of its bucket.
    void link(Number number, std::size_t hash) noexcept {
        Link& bucket = bucketOf(hash);
        older[number] = bucket;
        bucket = number + 1;
    }

    void growBuckets(const BindingStore& bindings, Number end) {
        buckets = std::vector<Link>(buckets.empty() ? 32 : 2 * buckets.size());
        for (Number number = 0; listed != 0 && number < end; ++number)
            if (older[number] != NotListed) link(number, corvel::SharedText::hashOf(keyAt(bindings, number)));
    }

    ChunkedArray<Link, 64> older;  // of each number, the next one of its bucket
    std::vector<Link> buckets;     // the newest of each; their number is a power of two
    std::size_t listed = 0;
};

struct BindingIndex {
    using Number = BindingStore::Number;

    void makeRoomFor(const BindingStore& bindings, Number end, Number number) {
        byPrefix.makeRoomFor(bindings, end, number);
        byURI.makeRoomFor(bindings, end, number);
    }

    void add(const BindingStore& bindings, Number number, Number scopeStart) noexcept {
        byPrefix.add(bindings, number, scopeStart);
        byURI.add(bindings, number, scopeStart);
    }

    void skip(Number number) noexcept {
        byPrefix.skip(number);
        byURI.skip(number);
    }

    void drop(const BindingStore& bindings, Number newest) noexcept {
        byPrefix.drop(bindings, newest);
        byURI.drop(bindings, newest);
    }

    BindingTable<&QeXmlNamespace::getPrefix> byPrefix;
    BindingTable<&QeXmlNamespace::getURI> byURI;
};

}  // namespace tessit
