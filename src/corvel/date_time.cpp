#include <corvel/calendar.h>
#include <corvel/date_time.h>
#include <corvel/decimal_text.h>
#include <corvel/time_format.h>
#include <corvel/value_message.h>

namespace {

constexpr std::int64_t MillisecondsInMinute = 60 * 1000;
constexpr std::int64_t MinutesInDay = 24 * 60;
constexpr std::int64_t MillisecondsInDay = MinutesInDay * MillisecondsInMinute;

void requireBelow(const char* field, int value, int limit) {
    if (value >= 0 && value < limit) return;
    QeCString expected(field);
    expected += " from 0 to ";
    corvel::appendDecimal(expected, limit - 1);
    corvel::raiseValueError(expected, corvel::decimalText(value));
}

void appendFraction(QeCString& text, int milliseconds) {
    if (milliseconds == 0) return;
    text += ',';
    corvel::appendDecimal(text, milliseconds, 3);
    while (text[text.length() - 1] == '0')
        text.truncate(text.length() - 1);
}

}  // namespace

QeDateTime::QeDateTime(const QeDate& date, int hour, int minute, int second, int millisecond, const QeZone& zone) {
    requireBelow("an hour", hour, 24);
    requireBelow("a minute", minute, 60);
    requireBelow("a second", second, 60);
    requireBelow("a millisecond", millisecond, 1000);
    const std::int64_t minuteInUtc = hour * 60 + minute - zone.offsetInMinutes();
    day = date.dayNumber() + corvel::floorQuotient(minuteInUtc, MinutesInDay);
    millisecondOfDay =
        corvel::floorRemainder(minuteInUtc, MinutesInDay) * MillisecondsInMinute + second * 1000 + millisecond;
}

QeDate QeDateTime::date(const QeZone& zone) const noexcept {
    const std::int64_t local = millisecondOfDay + zone.offsetInMinutes() * MillisecondsInMinute;
    QeDate shown;
    shown.number = day + corvel::floorQuotient(local, MillisecondsInDay);  // cut short, it would be a day off
    return shown;
}

std::int64_t QeDateTime::minuteOfDay(const QeZone& zone) const noexcept {
    return corvel::floorRemainder(millisecondOfDay / MillisecondsInMinute + zone.offsetInMinutes(), MinutesInDay);
}

int QeDateTime::hour(const QeZone& zone) const noexcept {
    return static_cast<int>(minuteOfDay(zone) / 60);
}

int QeDateTime::minute(const QeZone& zone) const noexcept {
    return static_cast<int>(minuteOfDay(zone) % 60);
}

int QeDateTime::second() const noexcept {
    return static_cast<int>(millisecondOfDay / 1000 % 60);
}

int QeDateTime::milliSecond() const noexcept {
    return static_cast<int>(millisecondOfDay % 1000);
}

QeCString QeDateTime::asString(Format, const QeLocale& locale, const QeZone& zone) const {
    QeCString text = asString("%Y-%m-%dT%H:%M:%S", locale, zone);
    appendFraction(text, milliSecond());
    text += zone.designator();
    return text;
}

QeCString QeDateTime::asString(const QeCString& format, const QeLocale& locale, const QeZone& zone) const {
    QeCString text;
    corvel::appendTime(text, format, *this, locale, zone);
    return text;
}
