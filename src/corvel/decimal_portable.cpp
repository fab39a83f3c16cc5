#include <charconv>
#include <cmath>
#include <string_view>

#include <corvel/decimal_portable.h>
#include <corvel/decimal_text.h>
#include <corvel/value_message.h>

namespace {

// Takes the digits off the front of `text`.
std::string_view takeDigits(std::string_view& text) {
    const std::string_view digits = text.substr(0, text.find_first_not_of("0123456789"));
    text.remove_prefix(digits.size());
    return digits;
}

std::string_view withoutLeadingZeros(std::string_view digits) {
    while (digits.starts_with('0'))
        digits.remove_prefix(1);
    return digits;
}

bool isZero(std::string_view digits) {
    return withoutLeadingZeros(digits).empty();
}

[[noreturn]] void raiseNoNumber(std::string_view found) {
    corvel::raiseValueError("a decimal number", found);
}

}  // namespace

QeDecimalPortable::QeDecimalPortable(const QeCString& text) {
    std::string_view rest = text;
    const bool negative = rest.starts_with('-');
    if (negative || rest.starts_with('+')) rest.remove_prefix(1);
    const std::string_view whole = takeDigits(rest);
    const bool point = rest.starts_with('.');
    if (point) rest.remove_prefix(1);
    const std::string_view fraction = point ? takeDigits(rest) : std::string_view();
    if (!rest.empty() || (whole.empty() && fraction.empty())) raiseNoNumber(corvel::quoted(text));

    digits.reserve(text.length() + 1);
    if (negative && !(isZero(whole) && isZero(fraction))) digits += '-';
    digits += isZero(whole) ? "0" : withoutLeadingZeros(whole);
    if (fraction.empty()) return;
    digits += '.';
    digits += fraction;
}

QeDecimalPortable::QeDecimalPortable(double value) {
    if (!std::isfinite(value)) raiseNoNumber(std::isnan(value) ? "NaN" : "an infinity");
    const double withoutSignOfZero = value == 0 ? 0 : value;
    char buffer[400];  // the longest, that of the least double, has some 330 bytes
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, withoutSignOfZero, std::chars_format::fixed).ptr;
    digits.assign(buffer, static_cast<std::size_t>(end - buffer));
}

void QeDecimalPortable::assignSigned(long long value) {
    digits = corvel::decimalText(value);
}

void QeDecimalPortable::assignUnsigned(unsigned long long value) {
    digits = corvel::decimalText(value);
}
