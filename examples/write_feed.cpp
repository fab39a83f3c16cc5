// Writes a feed of orders: a declaration, two namespaces, attributes, text, and
// every element on a line of its own.

#include <iostream>

#include <tessit/tessit.h>

namespace {

const QeXmlNamespace Shop("", "http://example.com/shop");
const QeXmlNamespace People("p", "http://example.com/people");

struct Order {
    const char* id;
    const char* customer;
    const char* item;
    const char* count;
};

constexpr Order Orders[] = {
    {"A-1", "Smith & Sons", "Chair \"Oslo\"", "4"},
    {"A-2", "Ren\u00E9e", "Table <large>", ""},
};

void writeOrder(QeXmlWriter& writer, const Order& order) {
    QeXmlAttributeSet attributes;
    attributes.add(QeXmlName("id"), order.id);
    attributes.add(QeXmlName("item"), order.item);
    const QeXmlName name("order", Shop);

    writer.writeElementStart(name, attributes, false);
    writer.writeNewLine();
    writer.incrementIndent();
    writer.writeSimpleElement(QeXmlName("customer", People), order.customer, "", false);
    writer.writeSimpleElement(QeXmlName("count", Shop), order.count, "xsd:int", true);
    writer.decrementIndent();
    writer.writeElementEnd(name);
    writer.writeNewLine();
}

void writeFeed(QeXmlWriter& writer) {
    QeXmlProlog declaration;
    declaration.setCharacterEncoding("UTF-8");
    writer.write(declaration.asString(), false);
    writer.writeNewLine();

    // Declared once, here, and not at each order. Nothing else would declare
    // "xsd": it is used in values only.
    QeXmlAttributeSet declarations;
    declarations.addNamespaceAttribute(People);
    declarations.addNamespaceAttribute(QeXmlNamespace::getXsi());
    declarations.addNamespaceAttribute(QeXmlNamespace::getXsd());
    const QeXmlName name("orders", Shop);

    writer.writeElementStart(name, declarations, false);
    writer.writeNewLine();
    writer.incrementIndent();
    for (const Order& order : Orders)
        writeOrder(writer, order);
    writer.decrementIndent();
    writer.writeElementEnd(name);
    writer.writeNewLine();
}

constexpr char Expected[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<orders xmlns="http://example.com/shop" xmlns:p="http://example.com/people" xmlns:xsd="http://www.w3.org/2001/XMLSchema" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
  <order id="A-1" item="Chair &quot;Oslo&quot;">
    <p:customer>Smith &amp; Sons</p:customer>
    <count xsi:type="xsd:int">4</count>
  </order>
  <order id="A-2" item="Table &lt;large&gt;">
    <p:customer>Renée</p:customer>
    <count xsi:type="xsd:int"/>
  </order>
</orders>
)";

}  // namespace

int main() {
    QeXmlStringWriter writer;
    writeFeed(writer);
    const QeCString feed = writer.getString();
    std::cout << feed;
    return feed == Expected ? 0 : 1;
}
