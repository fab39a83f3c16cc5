// One text as a duration, a date and a decimal number: what it is taken for, put
// into text and read again, is the same. And the number that its bytes make.

#include <cmath>
#include <cstring>
#include <limits>

#include <corvel/value_error.h>
#include <tessit/schema/xml_duration.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/utils/xml_utils.h>

#include "fuzzing.h"

using tessit::fuzz::require;

namespace {

void readDuration(const QeCString& text) {
    const QeXmlDuration duration(text);
    const QeCString written = duration.asString();
    require(written.empty() == !duration.isValid(), "what is valid has a text");
    if (!duration.isValid()) return;
    // A minus sign ends a duration, and "inf" is no number in one.
    const bool isReadAgain = written.find("e-") == QeCString::npos && std::isfinite(duration.getSeconds());
    const QeXmlDuration again(written);
    require(again.isValid() == isReadAgain, "a text that is read again");
    require(!isReadAgain || again.asString() == written, "the same duration");
    require(!(duration < duration) && duration == duration, "equal to itself");
    require(again.compareTo(duration) == -duration.compareTo(again), "in one order");
    const QeDateTime start, end = duration + start;
    require(duration.isNegative() ? end <= start : end >= start, "forwards or backwards");
}

void readDate(const QeCString& text) {
    try {
        const QeDateTime instant = QeXmlUtils::convertISODateStringToDateTime(text);
        const QeCString written = QeXmlUtils::convertDateTimeToISOString(instant, QeXmlUtils::ISO8601Format);
        require(QeXmlUtils::convertISODateStringToDateTime(written) == instant, "the same instant");
        require(QeXmlUtils::convertISODateStringToDate(text) == instant.date(QeZone::utc()), "the same day");
        const QeDate day = instant.date(QeZone::utc());
        const QeCString writtenDay = QeXmlUtils::convertDateToISOString(day);
        require(QeXmlUtils::convertISODateStringToDate(writtenDay) == day, "the same day again");
    } catch (const QeValueError&) {
    }
}

void readDecimal(const QeCString& text) {
    try {
        const QeDecimalPortable number(text);
        require(QeDecimalPortable(number.asString()).asString() == number.asString(), "the same number");
    } catch (const QeValueError&) {
    }
}

void writeNumber(std::string_view bytes) {
    double number = 0;
    std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
    QeXmlSchemaUtils::ConvertTypeToString(number, "double");
    if (!std::isfinite(number)) return;
    const QeCString written = QeDecimalPortable(number).asString();
    require(std::strtod(written.data(), nullptr) == number, "the same floating-point number");
}

void format(const QeCString& text) {
    QeXmlUtils::convertDateTimeToISOString(QeDateTime(), text);
    QeDateTime().asString(text, QeLocale::defaultLocale(), QeZone(90));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = tessit::fuzz::textOf(data, size);
    const QeCString text(bytes);
    readDuration(text);
    readDate(text);
    readDecimal(text);
    writeNumber(bytes);
    format(text);
    return 0;
}
