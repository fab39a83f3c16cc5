#pragma once

// Counts the allocations of a test program and lets any one of them fail, or any
// call of the program's own classes.
//
// Replaces the global operator new and delete, by which the other forms of default
// alignment work, so exactly one source of a program includes it. Blocks of more
// alignment and those that C libraries allocate are not seen. One thread.

#include <cstddef>
#include <cstdlib>
#include <gtest/gtest.h>
#include <malloc.h>
#include <new>

namespace allocator {

inline std::size_t allocations = 0;   // since the program began
inline std::size_t liveBlocks = 0;    // allocated and not yet freed
inline std::size_t liveBytes = 0;     // of these blocks
inline std::size_t peakBytes = 0;     // the most that there ever were
inline std::size_t untilFailure = 0;  // allocations and calls up to the one that fails; 0: none fails
inline bool failureHappened = false;

inline bool failsNow() noexcept {
    if (untilFailure == 0 || --untilFailure != 0) return false;
    return failureHappened = true;
}

struct CallFailed {};

/// In a class of the program: a call that can fail like an allocation.
inline void call() {
    if (failsNow()) throw CallFailed();
}

inline void* allocate(std::size_t size) {
    void* const block = failsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    ++allocations;
    ++liveBlocks;
    liveBytes += malloc_usable_size(block);
    if (liveBytes > peakBytes) peakBytes = liveBytes;
    return block;
}

inline void release(void* block) noexcept {
    if (block != nullptr) --liveBlocks;
    liveBytes -= malloc_usable_size(block);
    std::free(block);
}

}  // namespace allocator

void* operator new(std::size_t size) {
    return allocator::allocate(size);
}
void operator delete(void* block) noexcept {
    allocator::release(block);
}
void operator delete(void* block, std::size_t) noexcept {
    allocator::release(block);
}
/// The number of allocations that `operation` makes.
template <typename Operation>
std::size_t countAllocations(const Operation& operation) {
    const std::size_t before = allocator::allocations;
    operation();
    return allocator::allocations - before;
}

/// The most bytes that `operation` has at any time, beside those that are there before.
template <typename Operation>
std::size_t countPeakBytes(const Operation& operation) {
    const std::size_t before = allocator::peakBytes = allocator::liveBytes;
    operation();
    return allocator::peakBytes - before;
}

/// What a scenario of `forEachFailure` tries its operation with.
class Attempt {
public:
    /// `failing` counts the operation's allocations and calls from 1; with 0, none fails.
    explicit Attempt(std::size_t failing) : failingOne(failing) {}

    /// Runs the operation with the one allocation or call failing. Whether it got
    /// through: false when that failure arrived. Other exceptions pass.
    template <typename Operation>
    bool operator()(const Operation& operation) {
        allocator::failureHappened = false;
        allocator::untilFailure = failingOne;
        bool done = false;
        try {
            operation();
            done = true;
        } catch (const std::bad_alloc&) {
        } catch (const allocator::CallFailed&) {
        }
        allocator::untilFailure = 0;
        failed |= allocator::failureHappened;
        return done;
    }

    /// Whether one did fail, whatever the operation made of it.
    bool sawFailure() const { return failed; }

private:
    std::size_t failingOne;
    bool failed = false;
};

/// Runs `scenario` over and over, each time letting another allocation or call of
/// the operations that it attempts fail: the first, the second, and so on, until a
/// run needs no more. What a scenario made must be gone when it returns: each run is
/// checked for leaks.
///
///     forEachFailure([](Attempt& attempt) {
///         QeCString text("before");
///         const bool done = attempt([&] { text = LongText; });
///         EXPECT_EQ(text, done ? LongText : "before");
///     });
template <typename Scenario>
void forEachFailure(const Scenario& scenario) {
    Attempt undisturbed(0);
    scenario(undisturbed);  // makes what is made on first use and stays
    for (std::size_t failing = 1;; ++failing) {
        SCOPED_TRACE(testing::Message() << "number " << failing << " fails");
        const std::size_t blocksBefore = allocator::liveBlocks;
        Attempt attempt(failing);
        scenario(attempt);
        if (testing::Test::HasFailure()) return;  // one report is enough, and it allocates
        ASSERT_EQ(allocator::liveBlocks, blocksBefore) << "blocks leaked";
        if (!attempt.sawFailure()) {
            EXPECT_GT(failing, 1u) << "nothing could fail";
            return;
        }
    }
}
