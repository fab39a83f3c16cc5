#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include <corvel/calendar.h>
#include <corvel/decimal_text.h>
#include <corvel/time_format.h>

// The C library's strftime would do for none of this: it knows 32 bits of years,
// writes the year 33 with two digits, and looks at the locale and the zone of the
// process.

namespace corvel {

namespace {

// What the directives write.
struct Fields {
    std::int64_t day;  // since 1 January 1970
    CalendarDay date;
    int hour;
    int minute;
    int second;

    int weekday() const { return static_cast<int>(floorRemainder(day + 4, 7)); }  // from Sunday; day 0 was a Thursday
    int weekdayFromMonday() const { return (weekday() + 6) % 7; }
    int dayOfYear() const { return static_cast<int>(day - dayNumber({date.year, 1, 1})); }  // from 0
    int weekFromSunday() const { return (dayOfYear() + 7 - weekday()) / 7; }
    int weekFromMonday() const { return (dayOfYear() + 7 - weekdayFromMonday()) / 7; }

    // A week of ISO 8601 belongs to the year, and has the number, of its Thursday.
    std::int64_t weekYear() const { return calendarDay(thursday()).year; }
    std::int64_t weekOfWeekYear() const { return (thursday() - dayNumber({weekYear(), 1, 1})) / 7 + 1; }

private:
    std::int64_t thursday() const { return day - weekdayFromMonday() + 3; }
};

struct NumberDirective {
    char letter;
    std::size_t width;
    char pad;
    std::int64_t (*value)(const Fields&);
};

constexpr NumberDirective Numbers[] = {
    {'C', 2, '0', [](const Fields& f) { return floorQuotient(f.date.year, 100); }},
    {'d', 2, '0', [](const Fields& f) -> std::int64_t { return f.date.day; }},
    {'e', 2, ' ', [](const Fields& f) -> std::int64_t { return f.date.day; }},
    {'G', 4, '0', [](const Fields& f) { return f.weekYear(); }},
    {'g', 2, '0', [](const Fields& f) { return floorRemainder(f.weekYear(), 100); }},
    {'H', 2, '0', [](const Fields& f) -> std::int64_t { return f.hour; }},
    {'I', 2, '0', [](const Fields& f) -> std::int64_t { return (f.hour + 11) % 12 + 1; }},
    {'j', 3, '0', [](const Fields& f) -> std::int64_t { return f.dayOfYear() + 1; }},
    {'M', 2, '0', [](const Fields& f) -> std::int64_t { return f.minute; }},
    {'m', 2, '0', [](const Fields& f) -> std::int64_t { return f.date.month; }},
    {'S', 2, '0', [](const Fields& f) -> std::int64_t { return f.second; }},
    {'U', 2, '0', [](const Fields& f) -> std::int64_t { return f.weekFromSunday(); }},
    {'u', 1, '0', [](const Fields& f) -> std::int64_t { return f.weekdayFromMonday() + 1; }},
    {'V', 2, '0', [](const Fields& f) { return f.weekOfWeekYear(); }},
    {'W', 2, '0', [](const Fields& f) -> std::int64_t { return f.weekFromMonday(); }},
    {'w', 1, '0', [](const Fields& f) -> std::int64_t { return f.weekday(); }},
    {'Y', 4, '0', [](const Fields& f) { return f.date.year; }},
    {'y', 2, '0', [](const Fields& f) { return floorRemainder(f.date.year, 100); }},
};

// Directives that stand for others.
struct CompositeDirective {
    char letter;
    std::string_view format;
};

constexpr CompositeDirective Composites[] = {
    {'c', "%a %b %e %H:%M:%S %Y"}, {'D', "%m/%d/%y"}, {'F', "%Y-%m-%d"}, {'h', "%b"},       {'R', "%H:%M"},
    {'r', "%I:%M:%S %p"},          {'T', "%H:%M:%S"}, {'x', "%m/%d/%y"}, {'X', "%H:%M:%S"},
};

template <typename Directive, std::size_t Count>
const Directive* findDirective(const Directive (&directives)[Count], char letter) {
    const Directive* found = std::ranges::find(directives, letter, &Directive::letter);
    return found == directives + Count ? nullptr : found;
}

// What stands behind a '%'. Only years have a flag and a width.
struct Directive {
    std::size_t length;     // of all of it, the '%' included
    char letter;            // '%' too when the format ends before there is one
    char flag = 0;          // '0' or '+'
    std::size_t width = 0;  // 0 for the usual one

    bool hasYearForm() const { return flag != 0 || width != 0; }
};

Directive readDirective(std::string_view format) {
    constexpr std::size_t MostWidthDigits = 3;
    std::size_t at = 1;
    Directive directive{};
    if (at < format.size() && (format[at] == '0' || format[at] == '+')) directive.flag = format[at++];
    for (const std::size_t end = std::min(at + MostWidthDigits, format.size());
         at < end && format[at] >= '0' && format[at] <= '9'; ++at)
        directive.width = directive.width * 10 + static_cast<std::size_t>(format[at] - '0');
    if (at < format.size() && (format[at] == 'E' || format[at] == 'O')) ++at;
    directive.length = std::min(at + 1, format.size());
    directive.letter = format[directive.length - 1];
    return directive;
}

class TimeFormatter {
public:
    TimeFormatter(QeCString& out, const Fields& instant, const QeLocale& words, const QeZone& place)
        : text(out), fields(instant), locale(words), zone(place) {}

    void append(std::string_view format) {
        while (!format.empty()) {
            const std::size_t percent = std::min(format.find('%'), format.size());
            text += format.substr(0, percent);
            format.remove_prefix(percent);
            if (!format.empty()) format.remove_prefix(appendDirective(format));
        }
    }

private:
    // Returns the length of the directive at the front of `format`.
    std::size_t appendDirective(std::string_view format) {
        const Directive directive = readDirective(format);
        const bool known = directive.hasYearForm() ? appendYear(directive) : appendValue(directive.letter);
        if (!known) text += format.substr(0, directive.length);
        return directive.length;
    }

    // A directive with a flag or a width; false for one that has neither.
    bool appendYear(const Directive& directive) {
        if (directive.letter == 'F') {
            constexpr std::size_t MonthAndDay = 6;  // "-05-20"
            const std::size_t width =
                directive.width == 0 ? 0 : std::max(directive.width, MonthAndDay + 1) - MonthAndDay;
            appendYear({0, 'Y', directive.flag, width});
            append("-%m-%d");
            return true;
        }
        if (std::string_view("CGY").find(directive.letter) == std::string_view::npos) return false;
        const NumberDirective& number = *findDirective(Numbers, directive.letter);
        appendYear(number.value(fields), number.width, directive);
        return true;
    }

    void appendYear(std::int64_t year, std::size_t usualWidth, const Directive& directive) {
        const std::size_t digits = decimalText(year).length() - (year < 0 ? 1 : 0);
        const bool plus = directive.flag == '+' && year >= 0 && std::max(digits, directive.width) > usualWidth;
        if (plus) text += '+';
        const bool signCounts = directive.width != 0 && (plus || year < 0);
        const std::size_t width = directive.width == 0 ? usualWidth : directive.width;
        appendDecimal(text, year, signCounts ? width - 1 : width);
    }

    bool appendValue(char letter) {
        if (const NumberDirective* number = findDirective(Numbers, letter)) {
            appendDecimal(text, number->value(fields), number->width, number->pad);
        } else if (const CompositeDirective* composite = findDirective(Composites, letter)) {
            append(composite->format);
        } else {
            return appendWord(letter);
        }
        return true;
    }

    bool appendWord(char letter) {
        switch (letter) {
            case 'A':
                text += locale.weekdayName(fields.weekday());
                return true;
            case 'a':
                text += locale.weekdayName(fields.weekday()).substr(0, 3);
                return true;
            case 'B':
                text += locale.monthName(fields.date.month);
                return true;
            case 'b':
                text += locale.monthName(fields.date.month).substr(0, 3);
                return true;
            case 'p':
                text += fields.hour < 12 ? "AM" : "PM";
                return true;
            case 'Z':
                text += zone.designator();
                return true;
            case 'z':
                appendOffset();
                return true;
            case 'n':
                text += '\n';
                return true;
            case 't':
                text += '\t';
                return true;
            case '%':
                text += '%';
                return true;
            default:
                return false;
        }
    }

    void appendOffset() {
        const int offset = zone.offsetInMinutes();
        text += offset < 0 ? '-' : '+';
        const int distance = std::abs(offset);
        appendDecimal(text, distance / 60 * 100 + distance % 60, 4);
    }

    QeCString& text;
    const Fields& fields;
    const QeLocale& locale;
    const QeZone& zone;
};

}  // namespace

void appendTime(QeCString& text, std::string_view format, const QeDateTime& when, const QeLocale& locale,
                const QeZone& zone) {
    const std::int64_t day = when.date(zone).dayNumber();
    const Fields fields{day, calendarDay(day), when.hour(zone), when.minute(zone), when.second()};
    TimeFormatter(text, fields, locale, zone).append(format);
}

}  // namespace corvel
