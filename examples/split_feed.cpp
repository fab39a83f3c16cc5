// Takes whole elements out of a document as they are written, without looking inside; any
// element will do, and what is no element ends the loop.

#include <iostream>

#include <tessit/tessit.h>

int main() {
    QeXmlReader reader(QeCString(
        "<feed><order id='17'><note>Ring &amp; wait</note></order>\n<order id='18'/><total>2</total></feed>"));
    reader.readElementStart("feed");
    for (;;) {
        const QeCString markup = reader.readElement(QeXmlReader::NullName);
        if (markup.empty()) break;
        std::cout << markup << '\n';
    }
    reader.readElementEnd("feed");
}
