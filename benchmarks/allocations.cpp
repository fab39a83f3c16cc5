#include <algorithm>
#include <allocations.h>
#include <cerrno>
#include <limits>
#include <malloc.h>

namespace {

// One thread only: the benchmarks start no others. Off while times are taken, so that these pay one test a call.
bool counting = false;
std::uint64_t allocationCount = 0;
std::ptrdiff_t heldBytes = 0;
std::ptrdiff_t peakBytes = 0;

[[maybe_unused]] void* noteAllocated(void* block) {
    if (!counting || block == nullptr) return block;
    ++allocationCount;
    heldBytes += static_cast<std::ptrdiff_t>(malloc_usable_size(block));
    peakBytes = std::max(peakBytes, heldBytes);
    return block;
}

[[maybe_unused]] void noteReleased(void* block) {
    if (counting && block != nullptr) heldBytes -= static_cast<std::ptrdiff_t>(malloc_usable_size(block));
}

}  // namespace

namespace tessit::benchmarks {

void keepFreedMemory() {
    constexpr int LargestMmapThreshold = 32 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, LargestMmapThreshold);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
}

void releaseFreedMemory() {
    malloc_trim(0);
}

void startCountingAllocations() {
    allocationCount = 0;
    heldBytes = peakBytes = 0;
    counting = true;
}

Allocations stopCountingAllocations() {
    counting = false;
    return {allocationCount, static_cast<std::size_t>(peakBytes)};
}

}  // namespace tessit::benchmarks

// The address sanitizer has its own allocator in this place; nothing is counted then.
#if defined(__has_feature)
#define TESSIT_HAS_FEATURE(name) __has_feature(name)
#else
#define TESSIT_HAS_FEATURE(name) 0
#endif
#if !defined(__SANITIZE_ADDRESS__) && !TESSIT_HAS_FEATURE(address_sanitizer)

// The C library's own allocator, by the names that it keeps for those who replace the usual ones.
extern "C" {
void* __libc_malloc(std::size_t bytes);
void* __libc_calloc(std::size_t count, std::size_t bytes);
void* __libc_realloc(void* block, std::size_t bytes);
void* __libc_memalign(std::size_t alignment, std::size_t bytes);
void __libc_free(void* block);

void* malloc(std::size_t bytes) {
    return noteAllocated(__libc_malloc(bytes));
}

void* calloc(std::size_t count, std::size_t bytes) {
    return noteAllocated(__libc_calloc(count, bytes));
}

void* realloc(void* block, std::size_t bytes) {
    noteReleased(block);
    return noteAllocated(__libc_realloc(block, bytes));
}

void* memalign(std::size_t alignment, std::size_t bytes) {
    return noteAllocated(__libc_memalign(alignment, bytes));
}

void* aligned_alloc(std::size_t alignment, std::size_t bytes) {
    return memalign(alignment, bytes);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t bytes) {
    *block = memalign(alignment, bytes);
    return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) {
    noteReleased(block);
    __libc_free(block);
}
}

#endif
