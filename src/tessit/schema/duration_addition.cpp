#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>

#include <corvel/calendar.h>
#include <tessit/schema/xml_duration.h>

// Counts have 32 bits, years and the days of any number of seconds fewer than 51: 64
// bits hold the sums of a few of them, where a `long` need not.

namespace {

// More than the calendar has, from its first day to its last.
constexpr double MaxSeconds = 1e20;
constexpr double SecondsInDay = 24 * 60 * 60;

// What seconds add to a time: days and a rest of little more than one, each of either sign.
struct Seconds {
    std::int64_t days;
    std::int64_t seconds;
    std::int64_t milliseconds;
};

// The part of `seconds` past the whole ones, in milliseconds. Few decimals have an
// exact double: 3.3 - 3 falls short of 0.3. So the double that is the closest to a
// whole number of milliseconds counts as that number.
double fractionInMilliseconds(double seconds) {
    const double milliseconds = std::round(seconds * 1000);
    if (std::abs(milliseconds) < 0x1p53 && milliseconds / 1000 == seconds) return std::fmod(milliseconds, 1000);
    return (seconds - std::trunc(seconds)) * 1000;
}

// The sum of a time's second and a span, its milliseconds cut off towards zero.
Seconds addSeconds(int second, double span) {
    const double bounded = std::isnan(span) ? 0 : std::clamp(span, -MaxSeconds, MaxSeconds);
    const double sum = second + std::trunc(bounded);
    const double fraction = fractionInMilliseconds(bounded);
    const double kept = sum > 0 ? std::floor(fraction) : sum < 0 ? std::ceil(fraction) : std::trunc(fraction);
    const double days = std::trunc(bounded / SecondsInDay);
    // Exact, whichever way the quotient was rounded.
    const double rest = std::fma(-days, SecondsInDay, std::trunc(bounded));
    return {static_cast<std::int64_t>(days), second + static_cast<std::int64_t>(rest), static_cast<std::int64_t>(kept)};
}

// Leaves 0 to size - 1 of `field`, and returns what it takes out of it, in units of `size`.
std::int64_t takeCarry(std::int64_t& field, std::int64_t size) {
    const std::int64_t carry = corvel::floorQuotient(field, size);
    field -= carry * size;
    return carry;
}

long difference(long a, long b) {
    if (b < 0) return a > LONG_MAX + b ? LONG_MAX : a - b;
    return a < LONG_MIN + b ? LONG_MIN : a - b;
}

long truncated(double value) {
    constexpr double Limit = -static_cast<double>(LONG_MIN);
    if (std::isnan(value)) return 0;
    if (value >= Limit) return LONG_MAX;
    return value < -Limit ? LONG_MIN : static_cast<long>(value);
}

QeDateTime lastInstant() {
    return QeDateTime(QeDate(31, 12, QeDate::MaxYear), 23, 59, 59, 999, QeZone::utc());
}

QeDateTime firstInstant() {
    return QeDateTime(QeDate(1, 1, -QeDate::MaxYear), 0, 0, 0, 0, QeZone::utc());
}

}  // namespace

QeDateTime QeXmlDuration::operator+(const QeDateTime& start) const {
    const std::int64_t sign = negative ? -1 : 1;
    std::int64_t monthFrom0 = start.monthGMT() - 1 + sign * months;
    const std::int64_t year = start.yearGMT() + sign * years + takeCarry(monthFrom0, 12);
    const int month = static_cast<int>(monthFrom0) + 1;
    const int day = std::min(start.dayOfMonthGMT(), corvel::daysInMonth(year, month));

    auto [daysOfSeconds, second, millisecond] = addSeconds(start.second(), negative ? -seconds : seconds);
    millisecond += start.milliSecond();
    second += takeCarry(millisecond, 1000);
    std::int64_t minute = start.minuteGMT() + sign * minutes + takeCarry(second, 60);
    std::int64_t hour = start.hourGMT() + sign * hours + takeCarry(minute, 60);
    const std::int64_t daysAfter = sign * days + daysOfSeconds + takeCarry(hour, 24);

    const std::int64_t number = corvel::dayNumber({year, month, day}) + daysAfter;
    const QeDate date = QeDate::fromDayNumber(number);
    if (date.dayNumber() != number) return number > 0 ? lastInstant() : firstInstant();
    return QeDateTime(date, static_cast<int>(hour), static_cast<int>(minute), static_cast<int>(second),
                      static_cast<int>(millisecond), QeZone::utc());
}

long QeXmlDuration::quotient(long a, long b) const noexcept {
    if (b == 0) return 0;
    if (b == -1) return difference(0, a);
    const long truncatedQuotient = a / b;
    const bool roundedUp = a % b != 0 && (a < 0) != (b < 0);
    return roundedUp ? truncatedQuotient - 1 : truncatedQuotient;
}

long QeXmlDuration::quotient(long a, long low, long high) const noexcept {
    return quotient(difference(a, low), difference(high, low));
}

double QeXmlDuration::modulo(double a, double b) const noexcept {
    return a - static_cast<double>(quotient(truncated(a), truncated(b))) * b;
}

double QeXmlDuration::modulo(double a, double low, double high) const noexcept {
    return modulo(a - low, high - low) + low;
}

unsigned long QeXmlDuration::maxDaysInMonth(long year, long month) const noexcept {
    // The calendar repeats itself after 400 years: far years add up without an overflow.
    const long yearInEra = year % 400 + quotient(month, 1, 13) % 400;
    const auto monthFrom0 = static_cast<int>(corvel::floorRemainder(month % 12 - 1, 12));
    return static_cast<unsigned long>(corvel::daysInMonth(yearInEra, monthFrom0 + 1));
}
