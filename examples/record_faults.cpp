// Reads what a partner sends as it comes, and tells him what is wrong with it.

#include <iostream>
#include <span>
#include <string_view>

#include <tessit/tessit.h>

namespace {

void printFaults(const QeXmlRecord& record) {
    for (const QeXmlParseError& fault : record.getEntries())
        std::cout << fault.getSourceFile() << ':' << fault.getLineNumber() << ':' << fault.getColumnNumber() << ": "
                  << fault.why() << " [" << fault.getRule() << "]\n";
}

// The items are what matters: a lenient reader finds them all the same.
void readItems(std::string_view document) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(document.data());
    QeXmlRecord record;
    QeXmlReader reader(std::span(bytes, document.size()), {.sourceName = "stock.xml", .record = &record});
    reader.readElementStart("stock");
    while (reader.isElementNext("item")) {
        reader.readElementStart("item");
        std::cout << "item: " << reader.readElementValue() << '\n';
        reader.readElementEnd("item");
    }
    reader.readElementEnd("stock");
    printFaults(record);
}

}  // namespace

int main() {
    constexpr std::string_view Document =
        "<stock>\n"
        "  <item id='1' id='2'>Bolts ]]> nuts</item>\n"
        "  <item x:id='3'>Wire &wire;</item>\n"
        "</stock>\n";
    try {
        readItems(Document);
    } catch (const QeXmlParseError& error) {
        std::cout << error.why() << '\n';
    }
}
