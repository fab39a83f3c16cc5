#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>
#include <utility>

#include <corvel/calendar.h>
#include <corvel/decimal_text.h>
#include <tessit/schema/duration_text.h>
#include <tessit/schema/xml_duration.h>

namespace {

QeXmlDuration::ParseState fieldOf(char designator, bool seenT) noexcept {
    switch (designator) {
        case 'Y':
            return QeXmlDuration::ParseYears;
        case 'M':
            return seenT ? QeXmlDuration::ParseMinutes : QeXmlDuration::ParseMonths;
        case 'D':
            return QeXmlDuration::ParseDays;
        case 'H':
            return QeXmlDuration::ParseHours;
        case 'S':
            return QeXmlDuration::ParseSeconds;
        default:
            return QeXmlDuration::ParseStart;
    }
}

void appendCount(QeCString& text, std::uint32_t count, char designator) {
    corvel::appendDecimal(text, count);
    text += designator;
}

// As a stream writes a double by default.
void appendSeconds(QeCString& text, double seconds) {
    char buffer[32];
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, seconds, std::chars_format::general, 6).ptr;
    text.append(buffer, static_cast<std::size_t>(end - buffer));
    text += 'S';
}

}  // namespace

// How far a text is read.
struct QeXmlDuration::Scan {
    ParseState previous = ParseStart;
    bool seenP = false;
    bool seenT = false;
    tessit::FieldBytes bytes;
};

QeXmlDuration::QeXmlDuration(unsigned long yearCount, unsigned long monthCount, unsigned long dayCount,
                             unsigned long hourCount, unsigned long minuteCount, double secondCount) noexcept
    : years(toCount(yearCount)),
      months(toCount(monthCount)),
      days(toCount(dayCount)),
      hours(toCount(hourCount)),
      minutes(toCount(minuteCount)),
      seconds(secondCount) {}

QeXmlDuration::QeXmlDuration(const QeCString& text) {
    QeXmlDuration::extract(text);
}

QeXmlDuration::~QeXmlDuration() = default;

std::uint32_t QeXmlDuration::toCount(unsigned long count) noexcept {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(count, UINT32_MAX));  // a `long` may have 32 bits itself
}

void QeXmlDuration::clear() noexcept {
    years = months = days = hours = minutes = 0;
    seconds = 0;
    valid = negative = false;
}

void QeXmlDuration::extract(const QeCString& text) {
    clear();
    valid = true;
    Scan scan;
    for (char byte : text)
        if (!take(scan, byte)) {
            valid = false;
            return;
        }
    if (scan.seenT && !hasTime()) valid = false;
}

// Takes in one more byte of a text; false when nothing behind it counts.
bool QeXmlDuration::take(Scan& scan, char byte) noexcept {
    switch (byte) {
        case '-':
            if (!scan.seenP) negative = true;
            return !scan.seenP;
        case 'P':
            scan.seenP = true;
            return true;
        case 'T':
            scan.seenT = scan.seenP;
            return scan.seenP;
        default:
            takeDigitOrDesignator(scan, byte);
            return true;
    }
}

void QeXmlDuration::takeDigitOrDesignator(Scan& scan, char byte) noexcept {
    const ParseState field = fieldOf(byte, scan.seenT);
    if (field == ParseStart) {
        scan.bytes.append(byte);
        return;
    }
    if (scan.bytes.tooLong()) valid = false;
    verifyAndAssign(scan.previous, field, scan.seenP, scan.seenT, scan.bytes.view());
    scan.previous = field;
    scan.bytes.clear();
}

void QeXmlDuration::verifyAndAssign(ParseState previous, ParseState current, bool seenP, bool seenT,
                                    std::string_view digits) noexcept {
    if (!seenP || previous > current || (current >= ParseHours && !seenT)) {
        valid = false;
        return;
    }
    const auto assign = [this](auto& field, const auto& number) {
        field = number.value;
        if (!number.found || !number.rest.empty()) valid = false;
    };
    if (current == ParseSeconds)
        assign(seconds, tessit::readSeconds(digits));
    else
        assign(countOf(current), tessit::readCount(digits));
}

std::uint32_t& QeXmlDuration::countOf(ParseState field) noexcept {
    switch (field) {
        case ParseYears:
            return years;
        case ParseMonths:
            return months;
        case ParseDays:
            return days;
        case ParseHours:
            return hours;
        default:
            return minutes;
    }
}

bool QeXmlDuration::hasTime() const noexcept {
    return 0.0 + hours + minutes + seconds > 0;
}

QeCString QeXmlDuration::asString() const {
    QeCString text;
    if (!valid) return text;
    text += negative ? "-P" : "P";
    appendCount(text, years, 'Y');
    appendCount(text, months, 'M');
    appendCount(text, days, 'D');
    if (!hasTime()) return text;
    text += 'T';
    appendCount(text, hours, 'H');
    appendCount(text, minutes, 'M');
    appendSeconds(text, seconds);
    return text;
}

bool QeXmlDuration::isEqual(const QeXmlDuration& other) {
    return compareTo(other) == 0;
}

int QeXmlDuration::compareTo(const QeXmlDuration& other) {
    return std::as_const(*this).compareTo(other);
}

int QeXmlDuration::compareTo(const QeXmlDuration& other) const noexcept {
    const double mine = approximateSeconds();
    const double others = other.approximateSeconds();
    return mine < others ? -1 : mine > others ? 1 : 0;
}

double QeXmlDuration::approximateSeconds() const noexcept {
    const auto product = [](std::uint32_t count, double unit) { return count * unit; };
    const double wholeDays = std::trunc(product(years, DaysInYear) + product(months, DaysInMonth) + days);
    return wholeDays * SecondsInDay + product(hours, SecondsInHour) + product(minutes, SecondsInMinute) + seconds;
}

bool operator==(const QeXmlDuration& left, const QeXmlDuration& right) noexcept {
    return left.isValid() == right.isValid() && left.isNegative() == right.isNegative() &&
           left.getYears() == right.getYears() && left.getMonths() == right.getMonths() &&
           left.getDays() == right.getDays() && left.getHours() == right.getHours() &&
           left.getMinutes() == right.getMinutes() && left.getSeconds() == right.getSeconds();
}

bool operator!=(const QeXmlDuration& left, const QeXmlDuration& right) noexcept {
    return !(left == right);
}

bool operator<(const QeXmlDuration& left, const QeXmlDuration& right) {
    const auto midnight = [](int day, int month, int year) {
        return QeDateTime(QeDate(day, month, year), 0, 0, 0, 0, QeZone::utc());
    };
    // The months that follow these are, taken together, as short and as long as any.
    static const std::array starts = {midnight(1, 9, 1696), midnight(1, 2, 1697), midnight(1, 3, 1903),
                                      midnight(1, 7, 1903)};
    return std::ranges::all_of(starts, [&](const QeDateTime& start) { return left + start < right + start; });
}
