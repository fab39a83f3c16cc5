#pragma once

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <malloc.h>
#include <string>
#include <string_view>

#include "support/documents.h"

/// How the time of an operation grows with its input.
namespace tessit::test {

/// Of an operation at some size and at four times that: the least of several runs,
/// in seconds of the processor on this thread, so that a busy machine has no say.
class Growth {
public:
    Growth() { keepMemory(); }

    template <typename Small, typename Large>
    void measure(const Small& small, const Large& large) {
        least = std::min(least, secondsOf(small));
        leastOfLarge = std::min(leastOfLarge, secondsOf(large));
    }

    double small() const { return least; }
    double large() const { return leastOfLarge; }

    /// Linear growth gives 4, quadratic growth 16; caches add to either.
    double ratio() const { return leastOfLarge / least; }

private:
    // Else large blocks go back to the system and come anew, page by page, at each run: that looks like growth.
    static void keepMemory() {
#if defined(__GLIBC__)
        mallopt(M_MMAP_MAX, 0);
        mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
#endif
    }

    static double now() {
        std::timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }

    template <typename Operation>
    static double secondsOf(const Operation& operation) {
        const double start = now();
        operation();
        return now() - start + 3e-5;  // so that what hardly takes time is not seen to grow
    }

    double least = std::numeric_limits<double>::max();
    double leastOfLarge = std::numeric_limits<double>::max();
};

/// Runs `use` on what `make` makes of `parts` and of four times as many parts, and
/// expects that it grows linearly, give or take a logarithm. Prints what a unit
/// costs at both sizes, of which `sizeOf` tells how many there are.
template <typename Make, typename Use, typename SizeOf>
void expectLinearGrowth(const std::string& name, std::size_t parts, const Make& make, const Use& use,
                        const SizeOf& sizeOf) {
    const auto small = make(parts), large = make(4 * parts);
    Growth growth;
    for (int run = 0; run < 3 || (run < 10 && growth.ratio() >= 10); ++run)
        growth.measure([&] { use(small); }, [&] { use(large); });
    std::printf("%-44s %9.2f %9.2f ns  x%.1f\n", name.c_str(),
                1e9 * growth.small() / static_cast<double>(sizeOf(small)),
                1e9 * growth.large() / static_cast<double>(sizeOf(large)), growth.ratio());
    EXPECT_LT(growth.ratio(), 10) << name;
}

/// The numbers below `count`, each once, in an order that is neither up nor down.
template <typename Visit>
void inOddOrder(std::size_t count, const Visit& visit) {
    constexpr std::size_t Prime = 7919;  // must not divide the count
    for (std::size_t i = 0; i < count; ++i)
        visit(std::to_string(i * Prime % count));
}

/// A text as the argument of a template.
template <std::size_t Length>
struct Literal {
    constexpr Literal(const char (&text)[Length]) { std::copy_n(text, Length, bytes); }
    char bytes[Length];
};

}  // namespace tessit::test
