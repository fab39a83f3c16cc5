#pragma once

#include <cstdint>
#include <string_view>

#include <corvel/date_time.h>

/// A span of time as XML Schema has it: years, months, days, hours, minutes and
/// seconds, forwards or backwards.
///
/// Counts are kept as they are given: 90 minutes do not become an hour and a half,
/// since a month has no fixed number of days. Counts are 32 bits wide; what is
/// larger becomes 4294967295. Nothing here throws over a value: a malformed text
/// leaves a duration that says so in `isValid()`, and still compares and adds with
/// the counts that it has. Setting a count makes no invalid duration valid and
/// changes no direction.
///
/// Everything but reading a text is O(1). A class may derive from this one and
/// replace the virtual operations.
class TESSIT_API QeXmlDuration {
public:
    /// How far a text is read: the field that was assigned last, in the order in
    /// which a text has them.
    enum ParseState { ParseStart, ParseYears, ParseMonths, ParseDays, ParseHours, ParseMinutes, ParseSeconds };

    /// The span of no length: valid, forwards.
    QeXmlDuration() noexcept = default;

    /// A valid span forwards.
    explicit QeXmlDuration(unsigned long yearCount, unsigned long monthCount = 0, unsigned long dayCount = 0,
                           unsigned long hourCount = 0, unsigned long minuteCount = 0, double secondCount = 0) noexcept;

    /// The span that `text` writes, read by this class's own `extract`. O(length).
    explicit QeXmlDuration(const QeCString& text);

    QeXmlDuration(const QeXmlDuration&) = default;
    QeXmlDuration& operator=(const QeXmlDuration&) = default;
    virtual ~QeXmlDuration();

    unsigned long getYears() const noexcept { return years; }
    unsigned long getMonths() const noexcept { return months; }
    unsigned long getDays() const noexcept { return days; }
    unsigned long getHours() const noexcept { return hours; }
    unsigned long getMinutes() const noexcept { return minutes; }
    double getSeconds() const noexcept { return seconds; }

    void setYears(unsigned long count) noexcept { years = toCount(count); }
    void setMonths(unsigned long count) noexcept { months = toCount(count); }
    void setDays(unsigned long count) noexcept { days = toCount(count); }
    void setHours(unsigned long count) noexcept { hours = toCount(count); }
    void setMinutes(unsigned long count) noexcept { minutes = toCount(count); }
    void setSeconds(double count) noexcept { seconds = count; }

    bool isValid() const noexcept { return valid; }
    bool isNegative() const noexcept { return negative; }

    /// Whether `compareTo(other)`, a derived class's where there is one, is 0.
    virtual bool isEqual(const QeXmlDuration& other);

    /// -1, 0 or 1 by the approximate length in seconds: a year has 365 days, a month
    /// 30.42, the days of both together rounded down. Neither direction nor validity
    /// counts, so that -P1D and P1D are equal.
    virtual int compareTo(const QeXmlDuration& other);

    /// The same for constant objects, by the rule of this class; so is the next.
    bool isEqual(const QeXmlDuration& other) const noexcept { return compareTo(other) == 0; }
    int compareTo(const QeXmlDuration& other) const noexcept;

    /// Reads a text of the form PnYnMnDTnHnMnS, with a minus sign in front for a span
    /// backwards, into this object, whatever it held. Only seconds may have a
    /// fraction. Fields may be left out and keep their order; there is a "T" exactly
    /// where fields of time follow, and they must not all be 0.
    ///
    /// Lenient: an empty text is the span of no length; bytes without a designator
    /// behind them are passed over at the end; a designator may be repeated, the
    /// last value counts. A field of more than 19 characters is an error. On an
    /// error `isValid()` is false, and fields hold what was read. Seconds past the
    /// range of a double (PT1e400S) are infinite, as `strtod` has them, and no error.
    /// O(length), no allocation.
    virtual void extract(const QeCString& text);

    /// The span as a text that `extract` reads: all the fields of the date, and all
    /// those of the time unless they are 0 (P0Y0M1D, P0Y0M0DT1H0M6.5S). Seconds have
    /// at most six significant digits, and an exponent below 0.0001 and from a million
    /// on. `extract` reads all of these but negative exponents, whose minus sign ends a
    /// duration, and infinite ones, which are written "inf". Empty when the duration is
    /// not valid. O(1).
    virtual QeCString asString() const;

    /// Turns this very object round, and returns it.
    QeXmlDuration& operator-() noexcept {
        negative = !negative;
        return *this;
    }

    /// The instant that lies this span after `start`, or before it when the span is
    /// negative, on the calendar in UTC.
    ///
    /// Years and months are added first, and a day that the month found does not
    /// have becomes its last; then the rest is added, exactly. Digits of the seconds
    /// past the milliseconds are dropped from the sum. A result that the calendar
    /// does not reach is its first or last instant; seconds that are no number count
    /// as 0. O(1).
    QeDateTime operator+(const QeDateTime& start) const;

protected:
    /// The quotient rounded down; 0 for a divisor of 0.
    long quotient(long a, long b) const noexcept;

    /// `quotient(a - low, high - low)`.
    long quotient(long a, long low, long high) const noexcept;

    /// a - `quotient`(a, b) * b, the quotient being that of their whole parts.
    double modulo(double a, double b) const noexcept;

    /// The place of `a` in a cycle from `low` to below `high`.
    double modulo(double a, double low, double high) const noexcept;

    /// The days of a month; 0 is the December before, 13 the January after the year.
    unsigned long maxDaysInMonth(long year, long month) const noexcept;

private:
    static constexpr double DaysInMonth = 30.42;
    static constexpr unsigned int DaysInYear = 365;
    static constexpr unsigned int SecondsInMinute = 60;
    static constexpr unsigned int SecondsInHour = 3600;
    static constexpr unsigned int SecondsInDay = 86400;

    struct Scan;

    static std::uint32_t toCount(unsigned long count) noexcept;

    TESSIT_NO_EXPORT bool take(Scan& scan, char byte) noexcept;
    TESSIT_NO_EXPORT void takeDigitOrDesignator(Scan& scan, char byte) noexcept;
    TESSIT_NO_EXPORT void verifyAndAssign(ParseState previous, ParseState current, bool seenP, bool seenT,
                                          std::string_view digits) noexcept;
    TESSIT_NO_EXPORT void clear() noexcept;
    TESSIT_NO_EXPORT std::uint32_t& countOf(ParseState field) noexcept;
    TESSIT_NO_EXPORT bool hasTime() const noexcept;
    TESSIT_NO_EXPORT double approximateSeconds() const noexcept;

    std::uint32_t years = 0;
    std::uint32_t months = 0;
    std::uint32_t days = 0;
    std::uint32_t hours = 0;
    std::uint32_t minutes = 0;
    double seconds = 0;
    bool valid = true;
    bool negative = false;
};

/// Whether all the fields are equal, the flags included: P1D is not PT24H. O(1).
TESSIT_API bool operator==(const QeXmlDuration& left, const QeXmlDuration& right) noexcept;
TESSIT_API bool operator!=(const QeXmlDuration& left, const QeXmlDuration& right) noexcept;

/// XML Schema's order, which is partial: whether `left` ends earlier than `right`
/// when both begin at any of four instants that differ in the months that follow.
/// P1M is less than P32D, but neither less nor greater than P31D. O(1).
TESSIT_API bool operator<(const QeXmlDuration& left, const QeXmlDuration& right);
