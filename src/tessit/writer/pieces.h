#pragma once

#include <cstddef>
#include <limits>

namespace tessit {

/// Hands bytes to `take(bytes, length)`, which counts in `unsigned`: in one call
/// where their number fits, also when there are none, else in several.
template <typename Take>
void inPieces(const char* bytes, std::size_t length, const Take& take) {
    constexpr unsigned Largest = std::numeric_limits<unsigned>::max();
    for (; length > Largest; length -= Largest, bytes += Largest)
        take(bytes, Largest);
    take(bytes, static_cast<unsigned>(length));
}

}  // namespace tessit
