// Reads documents from strangers: only what is well-formed passes, entities come from a shelf of the program's own, and
// what is refused is told with its place.

#include <iostream>
#include <span>
#include <string_view>

#include <tessit/tessit.h>

namespace {

// Has one file: the library itself opens none.
class Shelf : public QeXmlResolver {
    bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) override {
        if (id.getSystemId() != "order.dtd") return false;
        entity.setBytes("<!ATTLIST item unit CDATA 'kg'><!ENTITY tea 'Earl Grey'>");
        entity.setName("shelf/order.dtd");
        return true;
    }
};

class Printer final : public QeXmlContentHandler, public QeXmlLexicalHandler {
    void elementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes) override {
        std::cout << "<" << name.asString();
        for (const QeXmlAttribute& attribute : attributes)
            std::cout << " " << attribute.getName().asString() << "='" << attribute.getValue() << "'";
        std::cout << ">";
    }
    void elementEnd(const QeXmlName& name) override { std::cout << "</" << name.asString() << ">"; }
    void content(const QeCString& text) override { std::cout << text; }
    void comment(const QeCString& text) override { std::cout << "(" << text << ")"; }
};

void print(std::string_view document) {
    Shelf shelf;
    Printer printer;
    QeXmlSAXParser parser;
    parser.setContentHandler(&printer);
    parser.setLexicalHandler(&printer);
    const auto* bytes = reinterpret_cast<const unsigned char*>(document.data());
    try {
        parser.parse({bytes, document.size()}, {.rules = QeXmlRules::Conforming,
                                                .sourceName = "order.xml",
                                                .nodes = QeXmlNodes::Comments,
                                                .resolver = &shelf});
        std::cout << "\n";
    } catch (const QeXmlParseError& error) {
        std::cout << "\n"
                  << error.getSourceFile() << ":" << error.getLineNumber() << ":" << error.getColumnNumber() << ": "
                  << error.why() << "\n";
    }
}

}  // namespace

int main() {
    print("<!DOCTYPE order SYSTEM 'order.dtd'><order><!--soon--><item>&tea;</item></order>");
    print("<order>\n<item name='tea' name='rice'/></order>");
}
