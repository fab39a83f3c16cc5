#pragma once

#include <compare>
#include <cstdint>

#include <tessit/export.h>

/// A day of the calendar, in no particular time zone.
///
/// The Gregorian rules hold for all times. Years are counted without a gap: 1 is
/// followed backwards by 0 and -1, so that 0 is the year that historians call
/// 1 BC. A plain value; every operation is O(1).
class TESSIT_API QeDate {
public:
    /// The last year that a date can be made in; the first is `-MaxYear`. Only as the
    /// day of an instant (`QeDateTime::date`), a date can lie up to two days beyond.
    static constexpr std::int64_t MaxYear = 999'999'999'999;

    /// 1 January 1970.
    QeDate() noexcept = default;

    /// A day (from 1) of a month (1 to 12) of a year. Throws `QeValueError` for a
    /// day that the calendar does not have, and past `MaxYear`.
    QeDate(int dayOfMonth, int monthOfYear, std::int64_t ofYear);

    /// The day that lies so many days after (or, when negative, before) 1 January
    /// 1970. Past the years of a date, the first or the last day.
    static QeDate fromDayNumber(std::int64_t daysSince1970) noexcept;

    std::int64_t year() const noexcept;
    int month() const noexcept;       ///< 1 to 12
    int dayOfMonth() const noexcept;  ///< 1 to 31

    /// Days since 1 January 1970: the difference of two numbers is a span of days.
    std::int64_t dayNumber() const noexcept { return number; }

    /// Earlier days are less.
    friend bool operator==(const QeDate&, const QeDate&) noexcept = default;
    friend std::strong_ordering operator<=>(const QeDate&, const QeDate&) noexcept = default;

private:
    friend class QeDateTime;

    std::int64_t number = 0;
};
