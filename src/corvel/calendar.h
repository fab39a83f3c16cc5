#pragma once

#include <chrono>
#include <cstdint>

/// The calendar for years and days of any size that 64 bits hold some room for.
///
/// std::chrono's calendar spans the years -32767 to 32767. It repeats itself after
/// 400 years, a whole number of days (and of weeks), so each question is asked
/// about a day within 400 years that it spans.
namespace corvel {

constexpr std::int64_t YearsInEra = 400;
constexpr std::int64_t DaysInEra = 146'097;

/// The quotient rounded down, for a divisor above 0.
constexpr std::int64_t floorQuotient(std::int64_t dividend, std::int64_t divisor) noexcept {
    return dividend / divisor - (dividend % divisor < 0 ? 1 : 0);
}

/// What `floorQuotient` leaves: 0 to divisor - 1.
constexpr std::int64_t floorRemainder(std::int64_t dividend, std::int64_t divisor) noexcept {
    const std::int64_t remainder = dividend % divisor;
    return remainder < 0 ? remainder + divisor : remainder;
}

struct CalendarDay {
    std::int64_t year;
    int month;  // 1 to 12
    int day;    // of the month, from 1
};

// The year of the same calendar from 2000 to 2399.
constexpr std::chrono::year spannedYear(std::int64_t year) noexcept {
    return std::chrono::year(2000 + static_cast<int>(floorRemainder(year, YearsInEra)));
}

/// The number of days of a month, 1 to 12.
constexpr int daysInMonth(std::int64_t year, int month) noexcept {
    const std::chrono::year_month_day_last last = spannedYear(year) / month / std::chrono::last;
    return static_cast<int>(static_cast<unsigned>(last.day()));
}

/// Days since 1 January 1970 of a day that the calendar has.
constexpr std::int64_t dayNumber(const CalendarDay& date) noexcept {
    const std::chrono::sys_days spanned = spannedYear(date.year) / date.month / date.day;
    const std::int64_t eras = floorQuotient(date.year - 2000, YearsInEra);
    return spanned.time_since_epoch().count() + eras * DaysInEra;
}

/// The day so many days after 1 January 1970.
constexpr CalendarDay calendarDay(std::int64_t number) noexcept {
    const std::chrono::days withinEra(floorRemainder(number, DaysInEra));
    const std::chrono::year_month_day spanned{std::chrono::sys_days(withinEra)};
    return {static_cast<int>(spanned.year()) + YearsInEra * floorQuotient(number, DaysInEra),
            static_cast<int>(static_cast<unsigned>(spanned.month())),
            static_cast<int>(static_cast<unsigned>(spanned.day()))};
}

}  // namespace corvel
