#pragma once

#include <compare>
#include <cstdint>

#include <corvel/c_string.h>
#include <corvel/date.h>
#include <corvel/locale.h>
#include <corvel/zone.h>

/// An instant, to the millisecond.
///
/// It has no zone of its own: a zone only says how it is read from and written as
/// a date and a time of day. Every day has 86,400 seconds; leap seconds do not
/// exist. The years are those of `QeDate`. A plain value; operations that make no
/// text are O(1).
class TESSIT_API QeDateTime {
public:
    /// Forms of text that need no format.
    enum Format {
        Iso8601 = 0  ///< 2003-05-20T09:01:08,25Z
    };

    /// 1 January 1970, midnight UTC.
    QeDateTime() noexcept = default;

    /// The instant at which clocks in `zone` show that date and time. Throws
    /// `QeValueError` unless the hour is within 0 to 23, minute and second within 0
    /// to 59, the millisecond within 0 to 999.
    QeDateTime(const QeDate& date, int hour, int minute, int second, int millisecond, const QeZone& zone);

    /// The day on the calendar in `zone`. For an instant at an end of the calendar, the
    /// zone may have a day of the year before or after it.
    QeDate date(const QeZone& zone) const noexcept;
    std::int64_t year(const QeZone& zone) const noexcept { return date(zone).year(); }
    int month(const QeZone& zone) const noexcept { return date(zone).month(); }
    int dayOfMonth(const QeZone& zone) const noexcept { return date(zone).dayOfMonth(); }
    int hour(const QeZone& zone) const noexcept;
    int minute(const QeZone& zone) const noexcept;

    std::int64_t yearGMT() const noexcept { return year(QeZone::utc()); }
    int monthGMT() const noexcept { return month(QeZone::utc()); }
    int dayOfMonthGMT() const noexcept { return dayOfMonth(QeZone::utc()); }
    int hourGMT() const noexcept { return hour(QeZone::utc()); }
    int minuteGMT() const noexcept { return minute(QeZone::utc()); }

    /// The same in all zones, as they are whole minutes apart; so is the millisecond.
    int second() const noexcept;
    int milliSecond() const noexcept;

    /// Date and time as ISO 8601 writes them: a comma and the fraction of the
    /// second, without trailing zeros, when there is one; then the zone. A year has
    /// at least four digits, and a minus sign before the year 0. O(1).
    QeCString asString(Format format, const QeLocale& locale, const QeZone& zone) const;

    /// Date and time in a format as `strftime` has them, with the directives of POSIX
    /// but "%s": % A a B b C c D d e F G g H h I j M m n p R r S T t U u V W w X x Y y Z z.
    /// "%Y" has at least four digits; "%Z" is the zone's designator; "E" and "O" in
    /// front of a letter change nothing. The locale of the process has no say.
    ///
    /// In front of C, F, G and Y there may be a flag, "0" or "+", and the least number
    /// of bytes, of up to three digits: "%010Y", "%+5Y", "%012F". It counts a sign, and
    /// takes the place of the usual least number; "+" writes the sign of years from 0
    /// on as well, where they take more than their usual four digits (of "%C", two).
    /// Without both, "%F" writes no plus sign. What is no directive is copied as it
    /// stands. O(length of the format and of the text).
    QeCString asString(const QeCString& format, const QeLocale& locale, const QeZone& zone) const;

    /// Earlier instants are less.
    friend bool operator==(const QeDateTime&, const QeDateTime&) noexcept = default;
    friend std::strong_ordering operator<=>(const QeDateTime&, const QeDateTime&) noexcept = default;

private:
    TESSIT_NO_EXPORT std::int64_t minuteOfDay(const QeZone& zone) const noexcept;

    // In UTC. Apart, they span more years than one count of milliseconds could.
    std::int64_t day = 0;  // since 1 January 1970
    std::int64_t millisecondOfDay = 0;
};
