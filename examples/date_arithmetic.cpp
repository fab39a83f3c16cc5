// Reads a date out of a document, adds durations to it, and writes the results.
// Exits with 1 when one of them is not what it should be.

#include <iostream>

#include <tessit/tessit.h>

namespace {

bool allAsExpected = true;

void show(const char* what, const QeCString& found, const char* expected) {
    std::cout << what << ": " << found << '\n';
    if (found == expected) return;
    std::cout << "  but it should be " << expected << '\n';
    allAsExpected = false;
}

QeCString isoText(const QeDateTime& when) {
    return QeXmlUtils::convertDateTimeToISOString(when, QeXmlUtils::ISO8601Format);
}

}  // namespace

int main() {
    QeXmlReader reader(QeCString("<loan><begin>2024-01-31T22:30:00.500-02:00</begin><term>P1M</term></loan>"));
    reader.readElementStart(QeXmlName("loan"));
    reader.readElementStart(QeXmlName("begin"));
    const QeDateTime begin = QeXmlUtils::convertISODateStringToDateTime(reader.readElementValue());
    reader.readElementEnd(QeXmlName("begin"));
    reader.readElementStart(QeXmlName("term"));
    QeXmlDuration term(reader.readElementValue());

    show("The loan begins, in UTC", isoText(begin), "2024-02-01T00:30:00.5Z");
    show("It ends", isoText(term + begin), "2024-03-01T00:30:00.5Z");
    show("Half a day later", isoText(QeXmlDuration("PT12H") + (term + begin)), "2024-03-01T12:30:00.5Z");
    show("A month after 31 January", isoText(term + QeXmlUtils::convertISODateStringToDateTime("2024-01-31")),
         "2024-02-29T00:00:00Z");

    QeXmlDuration days("P30D");
    show("A month and 30 days are roughly equal", term.isEqual(days) ? "yes" : "no", "yes");
    show("A month is shorter wherever it begins", term < days ? "yes" : "no", "no");
    show("A month before that", isoText(-term + begin), "2024-01-01T00:30:00.5Z");

    show("The day as a schema value", QeXmlSchemaUtils::ConvertTypeToString(begin, "xsd:date"), "2024-02-01");
    show("The interest", QeXmlSchemaUtils::ConvertTypeToString(QeDecimalPortable("4.250"), "decimal"), "4.250");

    try {
        QeXmlUtils::convertISODateStringToDateTime("2023-02-29");
        allAsExpected = false;
    } catch (const QeValueError& error) {
        show("No such day", error.why(),
             "Expected a day of that month from 01 to 28, found \"29\" in the ISO 8601 text \"2023-02-29\"");
    }
    return allAsExpected ? 0 : 1;
}
