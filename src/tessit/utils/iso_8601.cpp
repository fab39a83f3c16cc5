#include <corvel/convert_8601.h>
#include <tessit/utils/xml_utils.h>

namespace {

QeCString isoText(const QeDateTime& dateTime) {
    return dateTime.asString(QeDateTime::Iso8601, QeLocale::defaultLocale(), QeZone::utc());
}

}  // namespace

QeCString QeXmlUtils::convertDateTimeToISOString(const QeDateTime& dateTime, const QeCString& format) {
    if (format != ISO8601Format) return dateTime.asString(format, QeLocale::defaultLocale(), QeZone::utc());
    QeCString text = isoText(dateTime);
    const std::size_t comma = text.find(',');
    if (comma != QeCString::npos) text[comma] = '.';  // XML Schema has no comma there
    return text;
}

QeDateTime QeXmlUtils::convertISODateStringToDateTime(const QeCString& text) {
    return Qe8601Convert().toQeDateTime(text, QeZone::utc());
}

QeCString QeXmlUtils::convertDateToISOString(const QeDate& date) {
    QeCString text = isoText(QeDateTime(date, 0, 0, 0, 0, QeZone::utc()));
    text.truncate(text.find(TimeSeparator));
    return text;
}

QeDate QeXmlUtils::convertISODateStringToDate(const QeCString& text) {
    return convertISODateStringToDateTime(text).date(QeZone::utc());
}
