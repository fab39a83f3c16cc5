#pragma once

#include <cstddef>
#include <cstdint>

/// Counts what a piece of work asks of the heap. The program's own `malloc` and its
/// kin stand before the system's, so that everything is seen: operator new, which
/// goes through `malloc`, and the C libraries.
namespace tessit::benchmarks {

struct Allocations {
    std::uint64_t count = 0;    ///< blocks asked for; a block that is resized counts again
    std::size_t peakBytes = 0;  ///< the most that was held at once, beyond what was held before
};

/// Lets the heap keep all that is freed. Otherwise it depends on what was read before
/// whether the pages of a large tree go back to the system each time, which can make
/// building it four times as dear.
void keepFreedMemory();

/// Gives the system back what is free, so that the next work begins with fresh memory.
void releaseFreedMemory();

void startCountingAllocations();
Allocations stopCountingAllocations();

template <typename Work>
Allocations countAllocations(Work work) {
    startCountingAllocations();
    work();
    return stopCountingAllocations();
}

}  // namespace tessit::benchmarks
