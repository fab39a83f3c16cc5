#include <cstdlib>

#include <corvel/decimal_text.h>
#include <corvel/value_message.h>
#include <corvel/zone.h>

QeZone::QeZone(int minutesAhead) : offset(minutesAhead) {
    if (offset < -MaxOffset || offset > MaxOffset)
        corvel::raiseValueError("a zone at most 840 minutes from UTC", corvel::decimalText(offset));
}

QeCString QeZone::designator() const {
    if (offset == 0) return "Z";
    const int distance = std::abs(offset);
    QeCString text(offset < 0 ? "-" : "+");
    corvel::appendDecimal(text, distance / 60, 2);
    text += ':';
    corvel::appendDecimal(text, distance % 60, 2);
    return text;
}
