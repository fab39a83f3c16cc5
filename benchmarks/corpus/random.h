#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tessit::benchmarks {

/// A small generator of pseudo-random numbers that gives the same sequence on
/// every machine and with every standard library, as the distributions of
/// <random> do not.
class Random {
public:
    explicit Random(std::uint64_t seed) : state(seed) {}

    /// A number from 0 to `limit` - 1.
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }

    /// A number from `least` to `most`.
    std::size_t between(std::size_t least, std::size_t most) { return least + below(most - least + 1); }

    bool percent(unsigned chance) { return below(100) < chance; }

    template <typename T, std::size_t Count>
    const T& pick(const T (&choices)[Count]) {
        return choices[below(Count)];
    }

private:
    // SplitMix64: each state differs from the last by an odd constant, so no seed is a bad one.
    std::uint64_t next() {
        std::uint64_t mixed = state += 0x9E3779B97F4A7C15u;
        mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9u;
        mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBu;
        return mixed ^ mixed >> 31;
    }

    std::uint64_t state;
};

}  // namespace tessit::benchmarks
