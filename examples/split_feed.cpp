// Takes whole elements out of a document as they are written, without looking inside; any
// element will do, and what is no element ends the loop.

#include <iostream>

#include <tessit/tessit.h>

namespace {

void printElements(QeXmlReader& reader) {
    for (;;) {
        const QeCString markup = reader.readElement(QeXmlReader::NullName);
        if (markup.empty()) break;
        std::cout << markup << '\n';
    }
}

void splitFeed(const QeCString& document) {
    QeXmlReader reader(document);
    reader.readElementStart("feed");
    if (reader.getLastNodeType() == QeXmlReader::ElementStart) printElements(reader);  // <feed/> holds none
    reader.readElementEnd("feed");
}

}  // namespace

int main() {
    splitFeed("<feed><order id='17'><note>Ring &amp; wait</note></order>\n<order id='18'/><total>2</total></feed>");
    splitFeed("<feed/>");
}
