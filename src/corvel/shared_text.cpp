#include <algorithm>
#include <cstdint>
#include <cstring>

#include <corvel/keyed_hash.h>
#include <corvel/shared_text.h>

namespace corvel {

void SharedText::assign(QeCString& text, std::string_view bytes) {
    if (StringAccess::isShared(text) && isSoleOwner(text) && bytes.size() <= text.capacity()) {
        if (!bytes.empty()) std::memmove(StringAccess::bytesOf(text), bytes.data(), bytes.size());
        StringAccess::setLength(text, bytes.size());
        headerOf(text).hash = HashNotKnown;
        return;
    }
    if (bytes.size() <= QeCString::InlineCapacity) return text.assign(bytes);
    const std::uint32_t units = StringAccess::unitsFor(bytes.size());
    char* const block = static_cast<char*>(::operator new(sizeof(Header) + StringAccess::UnitSize * units));
    ::new (block) Header{1, HashNotKnown};
    std::memcpy(block + sizeof(Header), bytes.data(), bytes.size());  // which can lie in the old block
    StringAccess::adoptShared(text, block + sizeof(Header), bytes.size(), units);
}

std::size_t SharedText::hashOf(std::string_view text) noexcept {
    const auto hash = static_cast<std::size_t>(keyedHash(text, HashSecret::ofProcess()));
    return std::max(hash, HashNotKnown + 1);
}

std::size_t SharedText::hashOf(const QeCString& text) noexcept {
    if (!keepsHash(text)) return hashOf(std::string_view(text));
    const std::atomic_ref kept(headerOf(text).hash);
    std::size_t hash = kept.load(std::memory_order_relaxed);
    if (hash == HashNotKnown) kept.store(hash = hashOf(std::string_view(text)), std::memory_order_relaxed);
    return hash;
}

bool SharedText::areKnownToDiffer(const QeCString& left, const QeCString& right) noexcept {
    return keepsHash(left) && keepsHash(right) && hashOf(left) != hashOf(right);
}

}  // namespace corvel
