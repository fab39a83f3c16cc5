#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cstdint>
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

// Else large blocks go back to the system and come anew, page by page, at each run: that looks like growth.
inline void keepMemory() {
#if defined(__GLIBC__)
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
#endif
}

// The address sanitizer maps each block of more than 256 KiB anew, page by page, which looks like growth, too: there,
// inputs are so much smaller. The other builds judge them at full size.
#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t SmallerBy = 16;
#else
constexpr std::size_t SmallerBy = 1;
#endif

// Of the processor, so that a busy machine has no say.
template <typename Operation>
double secondsOf(const Operation& operation) {
    const std::clock_t start = std::clock();
    operation();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC +
           3e-5;  // so that what hardly takes time is not seen to grow
}

constexpr double MostGrowth = 10;

/// How many times longer `use` takes on what `make` makes of four times `parts` than of `parts`: the least of several
/// runs of each, as a machine can be busy for a while; fewer of what takes long. Prints what a part costs at both
/// sizes.
template <typename Make, typename Use>
double growthFrom(const std::string& name, std::size_t parts, const Make& make, const Use& use) {
    const auto small = make(parts), large = make(4 * parts);
    double ofSmall = std::numeric_limits<double>::max(), ofLarge = ofSmall;
    const auto runBoth = [&] {
        ofSmall = std::min(ofSmall, secondsOf([&] { use(small); }));
        ofLarge = std::min(ofLarge, secondsOf([&] { use(large); }));
    };
    double spent = secondsOf(runBoth);
    for (int run = 1; spent < 20 && run < 30 && (run < 3 || ofLarge >= MostGrowth * ofSmall); ++run)
        spent += secondsOf(runBoth);
    const double nanoseconds = 1e9 / static_cast<double>(parts), ratio = ofLarge / ofSmall;
    std::printf("%-44s %9.2f %9.2f ns  x%.1f\n", name.c_str(), nanoseconds * ofSmall, nanoseconds * ofLarge / 4, ratio);
    return ratio;
}

/// Expects that `use` grows linearly with the parts that it is given, give or take a logarithm: four times as many take
/// four times as long, at quadratic growth 16 times. An input that no longer fits a cache grows faster, but once: what
/// grows too fast is asked again from the larger size on, where quadratic growth goes on as before.
template <typename Make, typename Use>
void expectLinearGrowth(const std::string& name, std::size_t parts, const Make& make, const Use& use) {
    keepMemory();
    parts /= SmallerBy;
    if (growthFrom(name, parts, make, use) < MostGrowth) return;
    EXPECT_LT(growthFrom(name, 4 * parts, make, use), MostGrowth) << name;
}

/// A text of `pattern`, in which each part in brackets stands so many times, numbered.
inline std::string expand(std::string_view pattern, std::size_t count) {
    std::string text;
    for (;;) {
        const std::size_t open = std::min(pattern.find('{'), pattern.size());
        text += pattern.substr(0, open);
        if (open == pattern.size()) return text;
        const std::size_t close = pattern.find('}', open);
        text += numbered(pattern.substr(open + 1, close - open - 1), count);
        pattern.remove_prefix(close + 1);
    }
}

/// Names that are one to a hash of the standard library's, whose seed is fixed: they consist of parts of which either
/// of two leads on to the same. What differs between their first words, the next ones take back.
class CollidingNames {
public:
    CollidingNames() {
        std::uint64_t hash = 0xC70F6907 ^ 16 * std::size(parts) * Factor;
        for (auto& [one, other] : parts) {
            do {
                one = {nextWord(), nextWord()};
                other[0] = nextWord();
                other[1] = unmix(mix(one[1]) ^ (hash ^ mix(one[0])) * Factor ^ (hash ^ mix(other[0])) * Factor);
            } while (!isInName(other[1]));
            hash = ((hash ^ mix(one[0])) * Factor ^ mix(one[1])) * Factor;
        }
    }

    /// Differs for so many numbers as two to the number of parts.
    std::string operator[](std::size_t number) const {
        std::string name;
        for (std::size_t bit = 0; bit != std::size(parts); ++bit)
            name.append(reinterpret_cast<const char*>(parts[bit][number >> bit & 1].data()), 16);
        return name;
    }

private:
    static constexpr std::uint64_t Factor = 0xC6A4A7935BD1E995u, Inverse = 0x5F7A0EA7E59B19BDu;
    static_assert(Factor * Inverse == 1);

    static std::uint64_t mix(std::uint64_t word) { return (word * Factor ^ word * Factor >> 47) * Factor; }
    static std::uint64_t unmix(std::uint64_t word) { return (word * Inverse ^ word * Inverse >> 47) * Inverse; }
    static bool isInName(std::uint64_t word) {
        const auto bytes = std::bit_cast<std::array<unsigned char, 8>>(word);
        return std::ranges::all_of(bytes, [](unsigned char byte) { return std::isalnum(byte) != 0; });
    }

    // Of letters.
    std::uint64_t nextWord() {
        std::uint64_t word = 0x6161616161616161u;
        for (int i = 0; i != 8; ++i)
            word += (wordCount >> 4 * i & 15) << 8 * i;
        ++wordCount;
        return word;
    }

    std::uint64_t wordCount = 0;
    std::array<std::uint64_t, 2> parts[16][2];
};

}  // namespace tessit::test
