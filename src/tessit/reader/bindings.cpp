#include <tessit/model/xml_attribute_set.h>
#include <tessit/reader/bindings.h>

namespace tessit {

namespace {

const QeCString& uriOf(const QeXmlNamespace* binding) {
    return binding == nullptr ? QeXmlAttributeSet::EmptyString : binding->getURI();
}

}  // namespace

// Short prefixes go through a small cache, which is right as long as the bindings in force are the same.
const QeXmlNamespace* Bindings::findBound(std::string_view prefix, const char* readableEnd) noexcept {
    constexpr std::size_t LongestCached = 7;
    constexpr std::uint64_t Spread = 0x9E3779B97F4A7C15;
    const std::uint64_t now = version();
    if (prefix.size() > LongestCached) return ModelAccess::findPrefix(inForce, prefix);
    const std::uint64_t key = corvel::firstBytes(prefix, readableEnd);
    CachedPrefix& cached = cache[(key * Spread) >> (64 - CacheBits)];
    if (cached.key != key || cached.version != now) cached = {key, now, ModelAccess::findPrefix(inForce, prefix)};
    return cached.binding;
}

const QeCString& Bindings::uriInsideTag(std::string_view prefix) const noexcept {
    if (const QeXmlNamespace* own = ModelAccess::findPrefix(closed, prefix)) return own->getURI();
    return uriOf(ModelAccess::findPrefix(inForce, prefix));
}

const QeCString& Bindings::uriInFrontOfTag(std::string_view prefix, bool isOpen) const noexcept {
    return uriOf(isOpen ? ModelAccess::findPrefix(inForce, prefix, ModelAccess::From::AroundInnermost)
                        : ModelAccess::findPrefix(inForce, prefix));
}

}  // namespace tessit
