#include <atomic>
#include <new>

#include <corvel/text_pool.h>

// What stands in front of the bytes of a block that strings share.
struct QeTextPool::Header {
    std::atomic<std::size_t> owners;
    std::uint64_t pool;
};

namespace {

// In front of the bytes, so that they are aligned like those of any block.
constexpr std::size_t HeaderSize = 16;

constinit std::atomic<std::uint64_t> poolsMade = 0;

}  // namespace

QeTextPool::QeTextPool() noexcept : number(++poolsMade) {}
QeTextPool::~QeTextPool() = default;

QeTextPool::Header& QeTextPool::headerOf(const char* bytes) noexcept {
    static_assert(sizeof(Header) <= HeaderSize);
    return *reinterpret_cast<Header*>(const_cast<char*>(bytes) - HeaderSize);
}

void QeTextPool::retain(const char* bytes) noexcept {
    headerOf(bytes).owners.fetch_add(1, std::memory_order_relaxed);
}

void QeTextPool::release(char* bytes) noexcept {
    if (headerOf(bytes).owners.fetch_sub(1, std::memory_order_acq_rel) == 1) ::operator delete(bytes - HeaderSize);
}

bool QeTextPool::fromOnePool(const char* left, const char* right) noexcept {
    return headerOf(left).pool == headerOf(right).pool;
}

QeCString QeTextPool::makePooled(std::string_view text) const {
    QeCString result;
    char* const block = static_cast<char*>(::operator new(HeaderSize + text.size() + 1));
    new (block) Header{1, number};
    char* const bytes = block + HeaderSize;
    std::memcpy(bytes, text.data(), text.size());
    bytes[text.size()] = '\0';
    std::memcpy(result.raw + offsetof(QeCString::Block, data), &bytes, sizeof bytes);
    result.setHeapLength(text.size());
    result.raw[QeCString::TagIndex] = QeCString::PooledTag;
    return result;
}

const QeCString& QeTextPool::keep(std::string_view text) {
    const auto place = texts.lower_bound(text);
    if (place != texts.end() && *place == text) return *place;
    return *texts.insert(place, text.size() <= QeCString::InlineCapacity ? QeCString(text) : makePooled(text));
}
