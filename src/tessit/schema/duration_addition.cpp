#include <algorithm>
#include <climits>
#include <cmath>

#include <corvel/calendar.h>
#include <tessit/schema/xml_duration.h>

// Counts have 32 bits. The sums below are of a few of them and of years, and the
// products multiply them by no more than 1000: 64 bits hold all of it.
static_assert(sizeof(long) == 8);

namespace {

constexpr double MaxSeconds = 1e18;

// What seconds add to a time. Whole seconds and milliseconds may have either sign.
struct Seconds {
    long whole;
    long milliseconds;
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
Seconds addSeconds(long second, double span) {
    const double bounded = std::isnan(span) ? 0 : std::clamp(span, -MaxSeconds, MaxSeconds);
    const long whole = second + static_cast<long>(bounded);
    const double fraction = fractionInMilliseconds(bounded);
    const double kept = whole > 0 ? std::floor(fraction) : whole < 0 ? std::ceil(fraction) : std::trunc(fraction);
    return {whole, static_cast<long>(kept)};
}

// Leaves 0 to size - 1 of `field`, and returns what it takes out of it, in units of `size`.
long takeCarry(long& field, long size) {
    const long carry = corvel::floorQuotient(field, size);
    field -= carry * size;
    return carry;
}

long difference(long a, long b) {
    long result;
    if (__builtin_sub_overflow(a, b, &result)) return b < 0 ? LONG_MAX : LONG_MIN;
    return result;
}

long truncated(double value) {
    if (std::isnan(value)) return 0;
    if (value >= 0x1p63) return LONG_MAX;
    return value < -0x1p63 ? LONG_MIN : static_cast<long>(value);
}

}  // namespace

QeDateTime QeXmlDuration::operator+(const QeDateTime& start) const {
    const long sign = negative ? -1 : 1;
    long monthFrom0 = start.monthGMT() - 1 + sign * months;
    const long year = start.yearGMT() + sign * years + takeCarry(monthFrom0, 12);
    const int month = static_cast<int>(monthFrom0) + 1;
    const int day = std::min(start.dayOfMonthGMT(), static_cast<int>(maxDaysInMonth(year, month)));

    auto [second, millisecond] = addSeconds(start.second(), negative ? -seconds : seconds);
    millisecond += start.milliSecond();
    second += takeCarry(millisecond, 1000);
    long minute = start.minuteGMT() + sign * minutes + takeCarry(second, 60);
    long hour = start.hourGMT() + sign * hours + takeCarry(minute, 60);
    const long daysAfter = sign * days + takeCarry(hour, 24);
    const QeDate date = QeDate::fromDayNumber(corvel::dayNumber({year, month, day}) + daysAfter);
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
    const long monthFrom0 = corvel::floorRemainder(month % 12 - 1, 12);
    return static_cast<unsigned long>(corvel::daysInMonth(yearInEra, static_cast<int>(monthFrom0) + 1));
}
