#pragma once

#include <cstdint>
#include <string_view>

#include <corvel/byte_scan.h>
#include <tessit/model/model_access.h>
#include <tessit/model/xml_namespace_stack.h>

namespace tessit {

/// What prefixes mean: inside a tag, in front of it, and behind it. Knows nothing of
/// the document but the prefixes that it is asked for.
///
/// A binding that is returned is valid until the next scope ends or a prefix is bound.
class Bindings {
public:
    /// Works on the reader's stack.
    explicit Bindings(QeXmlNamespaceStack& stack) noexcept : inForce(stack) {}

    /// Opens the scope of a tag. The declarations of the last one that closed are forgotten.
    void openScope() noexcept {
        inForce.pushScope();
        ModelAccess::clear(closed);
    }

    /// Takes back that the scope was opened, and all that it declares.
    void dropScope() noexcept { inForce.popScope(); }

    /// Ends all scopes.
    void clear() {
        while (ModelAccess::hasScope(inForce))
            inForce.popScope();
        ModelAccess::clear(closed);
    }

    void declare(std::string_view prefix, std::string_view uri) { ModelAccess::addBinding(inForce, prefix, uri); }

    /// Ends the innermost scope. Its own declarations can still be asked for by `uriInsideTag`.
    void closeScope() {
        if (!ModelAccess::hasScope(closed) && !tagDeclares()) return inForce.popScope();
        ModelAccess::popScopeInto(inForce, closed);
    }

    /// Whether the innermost scope binds anything.
    bool tagDeclares() const noexcept { return ModelAccess::innermostDeclares(inForce); }

    /// How many are in force, and with those of the element that closed last.
    std::size_t count(bool withClosed) const noexcept {
        return ModelAccess::countOf(inForce) + (withClosed ? ModelAccess::countOf(closed) : 0);
    }

    /// A number for the bindings in force: as long as it is the same, each prefix has the
    /// same binding, at the same address. It comes back when a scope ends.
    std::uint64_t version() const noexcept { return ModelAccess::versionOf(inForce); }

    /// The binding in force of a prefix, or null. Bytes up to `readableEnd` can be read.
    const QeXmlNamespace* find(std::string_view prefix, const char* readableEnd) noexcept {
        return version() == 0 ? nullptr : findBound(prefix, readableEnd);  // most documents bind nothing
    }

    /// The URI that a prefix has inside the last tag, the tag's own declarations included.
    const QeCString& uriInsideTag(std::string_view prefix) const noexcept;

    /// The URI that a prefix has in front of the last tag, which opened an element; its
    /// scope is open or, where the tag was its own end, closed again.
    const QeCString& uriInFrontOfTag(std::string_view prefix, bool isOpen) const noexcept;

private:
    // A prefix of up to seven bytes, and the binding it has in one version of the bindings.
    struct CachedPrefix {
        std::uint64_t key, version;
        const QeXmlNamespace* binding;
    };

    const QeXmlNamespace* findBound(std::string_view prefix, const char* readableEnd) noexcept;

    static constexpr unsigned CacheBits = 4;

    QeXmlNamespaceStack& inForce;

    // The bindings of the element that the last tag closed: names in front of that
    // tag still resolve with them, the caller's lookups no longer.
    QeXmlNamespaceStack closed;

    // A bit for each place of the cache that was written: to write them all at first takes longer than a small tag.
    std::uint32_t cachedPlaces = 0;
    CachedPrefix cache[1 << CacheBits];
};

// Short prefixes go through a small cache, which is right as long as the bindings in force are the same.
inline const QeXmlNamespace* Bindings::findBound(std::string_view prefix, const char* readableEnd) noexcept {
    constexpr std::size_t LongestCached = 7;
    constexpr std::uint64_t Spread = 0x9E3779B97F4A7C15;
    const std::uint64_t now = version();
    if (prefix.size() > LongestCached) return ModelAccess::findPrefix(inForce, prefix);
    const std::uint64_t key = corvel::firstBytes(prefix, readableEnd);
    const std::size_t number = (key * Spread) >> (64 - CacheBits);
    CachedPrefix& cached = cache[number];
    const bool isThere = (cachedPlaces >> number & 1) != 0 && cached.key == key && cached.version == now;
    if (!isThere) {
        cached = {key, now, ModelAccess::findPrefix(inForce, prefix)};
        cachedPlaces |= std::uint32_t{1} << number;
    }
    return cached.binding;
}

}  // namespace tessit
