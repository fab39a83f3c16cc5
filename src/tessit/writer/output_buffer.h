#pragma once

#include <cstddef>
#include <memory>

namespace tessit {

/// Room for the bytes of one sink call, with slack behind them that may be written
/// over: within the object for ordinary ones, else on the heap.
class OutputBuffer {
public:
    static constexpr std::size_t LocalSize = 1024;

    static constexpr std::size_t Slack = 32;

    explicit OutputBuffer(std::size_t size)
        : heap(size > LocalSize ? std::make_unique_for_overwrite<char[]>(size + Slack) : nullptr) {}

    char* begin() noexcept { return heap != nullptr ? heap.get() : local; }

private:
    std::unique_ptr<char[]> heap;
    char local[LocalSize + Slack];
};

}  // namespace tessit
