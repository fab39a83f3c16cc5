#include <iostream>

#include <tessit/tessit.h>

int main() {
    QeXmlReader reader(QeCString("<order>3 boxes of tea</order>"));
    reader.readElementStart("order");
    if (reader.getLastNodeType() == QeXmlReader::ElementStart)  // an empty element, <order/>, has no text
        std::cout << reader.readElementValue() << '\n';
    reader.readElementEnd("order");
}
