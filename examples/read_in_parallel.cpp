// Reads several documents at once: a thread for each, and in it a reader of its own.

#include <future>
#include <iostream>
#include <vector>

#include <tessit/tessit.h>

namespace {

// Shared by all threads, and changed by none.
const QeXmlName Total("total", QeXmlNamespace("", "urn:example:orders"));
const QeCString Documents[] = {
    "<total xmlns='urn:example:orders'>12.50</total>",
    "<o:total xmlns:o='urn:example:orders'>7.00</o:total>",
    "<total>1.00</total>",
};

QeCString readTotal(const QeCString& document) {
    QeXmlReader reader(document);
    reader.readElementStart(Total);
    if (reader.getLastNodeType() == QeXmlReader::EmptyElement) reader.err("There is no total");
    return reader.readElementValue();
}

}  // namespace

int main() {
    std::vector<std::future<QeCString>> totals;
    for (const QeCString& document : Documents)
        totals.push_back(std::async(std::launch::async, readTotal, std::cref(document)));
    for (std::future<QeCString>& total : totals) {
        try {
            std::cout << total.get() << '\n';
        } catch (const QeXmlParseError& error) {  // an error can be handed from thread to thread
            std::cout << error.what() << '\n';
        }
    }
}
