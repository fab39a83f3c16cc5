#pragma once

#include <cstdint>
#include <string_view>

namespace voxal {

/// A run through a pattern that has no choice in it.
struct Stretch {
    std::int64_t length = 0;      // in bytes
    std::int64_t boundaries = 0;  // word boundaries that are looked for
};

/// How far one step of a search for a pattern may look.
class PatternSight {
public:
    /// Of a valid pattern, in UTF-8. O(pattern).
    explicit PatternSight(std::string_view pattern);

    /// What one step may look at, in characters that are compared one for one. Linear in the text where the pattern
    /// looks far, or for word boundaries.
    std::int64_t reach(std::u16string_view text) const;

private:
    Stretch stretch;     // the longest of each kind
    std::int64_t saved;  // what a step keeps besides its place, in registers
    bool looksFar;
    bool refersBack;
    bool ignoresCase;
};

/// The work that a search for a pattern is charged with, and the one budget that it has.
///
/// ICU tells of each place at which it tries to match, and of each portion of
/// states that it saves to come back to. Between two of these it runs through the
/// pattern without a choice: it compares at most as many characters as the longest
/// stretch of the pattern that has none, unless the pattern looks around. So each
/// counts as one step, and one more for each 8 characters that it may look at. So
/// weighed, none has been found to take more than some 40 ns; 100 million are allowed.
class SearchWork {
public:
    SearchWork(const PatternSight& sight, std::u16string_view text);

    /// Whether the first portion is within the budget: it is run before anyone is asked.
    bool affordsPortion() const noexcept { return StepsPerPortion * weight <= Allowed; }

    /// Each charges what ICU tells of, and returns whether the search may go on.
    bool chargeStart() noexcept { return charge(1); }
    bool chargeSteps() noexcept { return charge(StepsPerPortion); }

    /// How many steps each step counts for.
    std::int64_t stepWeight() const noexcept { return weight; }

    std::int64_t charged() const noexcept { return done; }

private:
    static constexpr std::int64_t Allowed = 100'000'000;
    static constexpr std::int64_t StepsPerPortion = 10'000;  // ICU's own

    bool charge(std::int64_t steps) noexcept { return (done += steps * weight) <= Allowed; }

    std::int64_t weight;
    std::int64_t done = 0;
};

}  // namespace voxal
