#include <charconv>
#include <string_view>

#include <corvel/calendar.h>
#include <corvel/convert_8601.h>
#include <corvel/decimal_text.h>
#include <corvel/value_message.h>

namespace {

constexpr char ZoneForms[] = "a zone (\"Z\", \"+hh:mm\" or \"-hh:mm\")";
constexpr char TimeOrZoneForms[] = "\"T\" and a time, or a zone (\"Z\", \"+hh:mm\" or \"-hh:mm\")";

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

struct TimeOfDay {
    int hour = 0;  // up to 24
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

// One text, read from front to back.
class Iso8601Reader {
public:
    explicit Iso8601Reader(std::string_view text) : whole(text), rest(text) {}

    QeDateTime read(const QeZone& defaultZone) {
        const bool hasDate = rest.size() < 3 || rest[2] != ':';
        const QeDate date = hasDate ? readDate() : QeDate();
        const bool hasTime = !hasDate || take('T');
        const TimeOfDay time = hasTime ? readTime() : TimeOfDay();
        const QeZone zone = rest.empty() ? defaultZone : readZone(hasTime ? ZoneForms : TimeOrZoneForms);
        if (!rest.empty()) raise("the end of the text");
        const QeDate day = QeDate::fromDayNumber(date.dayNumber() + time.hour / 24);
        return QeDateTime(day, time.hour % 24, time.minute, time.second, time.millisecond, zone);
    }

private:
    QeDate readDate() {
        const std::int64_t year = readYear();
        require('-');
        const int month = readField("a month", 1, 12);
        require('-');
        const int day = readField("a day of that month", 1, corvel::daysInMonth(year, month));
        return QeDate(day, month, year);
    }

    std::int64_t readYear() {
        const std::string_view start = rest;
        const bool negative = take('-');
        const std::string_view digits = takeDigits();
        const bool needlessZero = digits.size() > 4 && digits[0] == '0';
        std::int64_t year = 0;
        if (digits.size() <= 9) std::from_chars(digits.data(), digits.data() + digits.size(), year);
        if (digits.size() < 4 || digits.size() > 9 || needlessZero || (negative && year == 0))
            raiseAt(start, "a year of four to nine digits");
        return negative ? -year : year;
    }

    TimeOfDay readTime() {
        const std::string_view start = rest;
        TimeOfDay time;
        time.hour = readField("an hour", 0, 24);
        require(':');
        time.minute = readField("a minute", 0, 59);
        require(':');
        time.second = readField("a second", 0, 59);
        const std::string_view fraction = take('.') || take(',') ? readFraction() : std::string_view();
        time.millisecond = milliseconds(fraction);
        const bool exactHour =
            time.minute == 0 && time.second == 0 && fraction.find_first_not_of('0') == std::string_view::npos;
        if (time.hour == 24 && !exactHour) raiseAt(start, "nothing but zeros behind the hour 24");
        return time;
    }

    std::string_view readFraction() {
        const std::string_view digits = takeDigits();
        if (digits.empty()) raise("a digit");
        return digits;
    }

    static int milliseconds(std::string_view fraction) {
        int value = 0;
        for (std::size_t i = 0; i < 3; ++i)
            value = value * 10 + (i < fraction.size() ? fraction[i] - '0' : 0);
        return value;
    }

    QeZone readZone(const char* expected) {
        if (take('Z')) return QeZone::utc();
        const std::string_view start = rest;
        const bool ahead = take('+');
        if (!ahead && !take('-')) raise(expected);
        const int hours = readField("the hours of a zone", 0, 14);
        const int minutes = hours * 60 + (take(':') ? readField("the minutes of a zone", 0, 59) : 0);
        if (minutes > QeZone::MaxOffset) raiseAt(start, "a zone at most 14:00 from UTC");
        return QeZone(ahead ? minutes : -minutes);
    }

    // Two digits.
    int readField(const char* field, int low, int high) {
        if (rest.size() < 2 || !isDigit(rest[0]) || !isDigit(rest[1])) raiseField(field, low, high);
        const int value = (rest[0] - '0') * 10 + (rest[1] - '0');
        if (value < low || value > high) raiseField(field, low, high);
        rest.remove_prefix(2);
        return value;
    }

    std::string_view takeDigits() {
        std::size_t count = 0;
        while (count < rest.size() && isDigit(rest[count]))
            ++count;
        const std::string_view digits = rest.substr(0, count);
        rest.remove_prefix(count);
        return digits;
    }

    bool take(char byte) {
        if (!rest.starts_with(byte)) return false;
        rest.remove_prefix(1);
        return true;
    }

    void require(char byte) {
        if (!take(byte)) raise(corvel::quoted({&byte, 1}));
    }

    [[noreturn]] void raiseField(const char* field, int low, int high) {
        QeCString expected(field);
        expected += " from ";
        corvel::appendDecimal(expected, low, 2);
        expected += " to ";
        corvel::appendDecimal(expected, high, 2);
        raise(expected);
    }

    [[noreturn]] void raise(std::string_view expected) { raiseAt(rest, expected); }

    [[noreturn]] void raiseAt(std::string_view from, std::string_view expected) {
        const QeCString found = from.empty() ? QeCString("the end") : corvel::quoted(from);
        corvel::raiseValueError(expected, found, " in the ISO 8601 text " + corvel::quoted(whole));
    }

    const std::string_view whole;
    std::string_view rest;
};

}  // namespace

QeDateTime Qe8601Convert::toQeDateTime(const QeCString& text, const QeZone& zone) const {
    return Iso8601Reader(text).read(zone);
}
