#include <algorithm>

#include <corvel/calendar.h>
#include <corvel/date.h>
#include <corvel/decimal_text.h>
#include <corvel/value_message.h>

namespace {

constexpr std::int64_t FirstDay = corvel::dayNumber({-QeDate::MaxYear, 1, 1});
constexpr std::int64_t LastDay = corvel::dayNumber({QeDate::MaxYear, 12, 31});

void requireWithin(const char* field, std::int64_t value, std::int64_t low, std::int64_t high) {
    if (value >= low && value <= high) return;
    QeCString expected("a ");
    expected += field;
    expected += " from ";
    corvel::appendDecimal(expected, low);
    expected += " to ";
    corvel::appendDecimal(expected, high);
    corvel::raiseValueError(expected, corvel::decimalText(value));
}

}  // namespace

QeDate::QeDate(int dayOfMonth, int monthOfYear, std::int64_t ofYear) {
    requireWithin("year", ofYear, -MaxYear, MaxYear);
    requireWithin("month", monthOfYear, 1, 12);
    requireWithin("day of the month", dayOfMonth, 1, corvel::daysInMonth(ofYear, monthOfYear));
    number = corvel::dayNumber({ofYear, monthOfYear, dayOfMonth});
}

QeDate QeDate::fromDayNumber(std::int64_t daysSince1970) noexcept {
    QeDate date;
    date.number = std::clamp(daysSince1970, FirstDay, LastDay);
    return date;
}

std::int64_t QeDate::year() const noexcept {
    return corvel::calendarDay(number).year;
}

int QeDate::month() const noexcept {
    return corvel::calendarDay(number).month;
}

int QeDate::dayOfMonth() const noexcept {
    return corvel::calendarDay(number).day;
}
