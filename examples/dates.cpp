// Makes days and instants of texts and of numbers, and writes them.

#include <iostream>

#include <tessit/tessit.h>

int main() {
    const QeDateTime start = QeXmlUtils::convertISODateStringToDateTime("2003-05-20T09:01:08.25+02:00");
    const QeDate day = QeXmlUtils::convertISODateStringToDate("2003-05-20");

    const QeDateTime noon(day, 12, 0, 0, 0, QeZone::utc());                     // hour, minute, second, millisecond
    const QeDateTime there(QeDate(20, 5, 2003), 12, 0, 0, 0, QeZone(-5 * 60));  // by clocks five hours behind UTC
    std::cout << there.hourGMT() - noon.hourGMT() << " hours later\n";

    std::cout << QeXmlUtils::convertDateTimeToISOString(start, QeXmlUtils::ISO8601Format) << '\n'
              << QeXmlUtils::convertDateTimeToISOString(start, QeXmlUtils::ISO8601Time) << '\n'
              << QeXmlUtils::convertDateTimeToISOString(start, "%d.%m.%Y") << '\n'
              << QeXmlUtils::convertDateToISOString(day) << '\n'
              << start.asString("%A, %H:%M", QeLocale::defaultLocale(), QeZone(120)) << '\n';
}
