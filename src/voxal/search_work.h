#pragma once

#include <cstdint>
#include <string_view>

namespace voxal {

/// How far one step of a search for a pattern may look.
class PatternSight {
public:
    /// Of a valid pattern, in UTF-8. O(pattern).
    explicit PatternSight(std::string_view pattern);

    /// The characters that one step may look at. Linear in the text where the pattern looks for word boundaries.
    std::int64_t reach(std::u16string_view text) const;

private:
    std::int64_t length;
    bool isFar;
    bool findsWords;
};

/// The work that a search for a pattern is charged with, and the one budget that it has.
///
/// ICU tells of each place at which it tries to match, and of each portion of
/// states that it saves to come back to. Between two of these it runs through the
/// pattern without a choice: it compares at most as many characters as the pattern
/// has, unless the pattern looks around. So each counts as one step, and one more
/// for each 32 characters that it may look at. Steps allowed are 50 million, and 64
/// for each unit of the text.
class SearchWork {
public:
    SearchWork(const PatternSight& sight, std::u16string_view text);

    /// Whether the first portion is within the budget: it is run before anyone is asked.
    bool affordsPortion() const noexcept { return StepsPerPortion * weight <= allowed; }

    /// Each charges what ICU tells of, and returns whether the search may go on.
    bool chargeStart() noexcept { return charge(1); }
    bool chargeSteps() noexcept { return charge(StepsPerPortion); }

    /// How many steps each step counts for.
    std::int64_t stepWeight() const noexcept { return weight; }

    std::int64_t charged() const noexcept { return done; }

private:
    static constexpr std::int64_t StepsPerPortion = 10'000;  // ICU's own

    bool charge(std::int64_t steps) noexcept { return (done += steps * weight) <= allowed; }

    std::int64_t weight;
    std::int64_t allowed;
    std::int64_t done = 0;
};

}  // namespace voxal
