// Reads documents from strangers: only what is well-formed passes, entities come from a shelf of the program's own, and
// what is refused is told with its place.

#include <iostream>
#include <span>
#include <string_view>

#include <tessit/tessit.h>

namespace {

// Has two entities, and nothing else: the library itself opens none.
class Shelf : public QeXmlResolver {
    bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) override {
        if (id.getSystemId() == "order.dtd")
            entity.setBytes("<!ATTLIST item unit CDATA 'kg'><!ENTITY tea 'Earl Grey'>");
        else if (id.getSystemId() == "note.xml")
            entity.setBytes("Ring twice,\nthen <b>knock.");
        else
            return false;
        entity.setName(QeCString("shelf/") + id.getSystemId());
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

void print(const QeXmlParseError& error) {
    std::cout << error.getSourceFile() << ":" << error.getLineNumber() << ":" << error.getColumnNumber() << ": "
              << error.why() << "\n";
    if (const QeXmlNote* note = error.getNote())
        std::cout << note->place.sourceFile << ":" << note->place.position.line << ":" << note->place.position.column
                  << ": " << note->text << "\n";
}

void print(std::string_view document) {
    Shelf shelf;
    Printer printer;
    QeXmlSAXParser parser;
    parser.setContentHandler(&printer);
    parser.setLexicalHandler(&printer);
    const auto* bytes = reinterpret_cast<const unsigned char*>(document.data());
    QeXmlLimits limits = QeXmlLimits::forStrangers();
    limits.depth = 2;  // orders are flat
    try {
        parser.parse({bytes, document.size()}, {.rules = QeXmlRules::Conforming,
                                                .sourceName = "order.xml",
                                                .nodes = QeXmlNodes::Comments,
                                                .resolver = &shelf,
                                                .limits = limits});
        std::cout << "\n";
    } catch (const QeXmlLimitError& error) {
        std::cout << "\n";
        print(error);
        std::cout << "The limit on " << error.getLimit() << " is " << error.getValue() << ".\n";
    } catch (const QeXmlParseError& error) {
        std::cout << "\n";
        print(error);
    }
}

}  // namespace

int main() {
    print("<!DOCTYPE order SYSTEM 'order.dtd'><order><!--soon--><item>&tea;</item></order>");
    print("<order>\n<item name='tea' name='rice'/></order>");
    print("<!DOCTYPE order [<!ENTITY note SYSTEM 'note.xml'>]>\n<order>&note;</order>");
    print("<order><item><item><item/></item></item></order>");
}
