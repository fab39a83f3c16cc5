// Names whose prefixes differ, and prefixes that stand in values.

#include <iostream>

#include <tessit/tessit.h>

namespace {

constexpr char Shop[] = "urn:example:shop";
const QeXmlName Item("item", QeXmlNamespace("", Shop));

// Whatever prefix the document uses, the name is the same.
void readItem(const char* document) {
    QeXmlReader reader{QeCString(document)};
    reader.readElementStart(Item);
    std::cout << reader.getLastName().getQualifiedName() << " is " << reader.getLastName().getUniqueName() << '\n';
}

// A prefix in a value (xsi:type="s:Tea") means what it is bound to there, which the reader knows.
void readType(QeXmlReader& reader) {
    reader.readElementStart();
    const QeXmlAttributeSet& attributes = reader.getLastAttributes();
    const QeXmlAttribute* type = attributes.find(QeXmlSchemaUtils::XsiTypeAttributeName);
    if (type == attributes.end()) return;
    QeCString prefix, name;
    QeXmlUtils::getPrefixAndLocalName(type->getValue(), prefix, name);
    std::cout << type->getValue() << " is " << name << " of " << reader.getURIForPrefix(prefix) << '\n';
}

// A handler keeps a stack of its own, as events tell only what each tag declares.
class TypeHandler final : public QeXmlContentHandler {
public:
    void elementStart(const QeXmlName&, const QeXmlAttributeSet& attributes) override {
        bindings.pushScope();
        for (const QeXmlAttribute& attribute : attributes)
            if (attribute.getName().getNamespace().getPrefix() == "xmlns")
                bindings.addNamespace({attribute.getName().getLocalName(), attribute.getValue()});
        const QeXmlAttribute* type = attributes.find(QeXmlSchemaUtils::XsiTypeAttributeName);
        if (type != attributes.end())
            std::cout << type->getValue() << " is of "
                      << bindings.getURIForPrefix(QeXmlUtils::getPrefix(type->getValue())) << '\n';
    }

    void elementEnd(const QeXmlName&) override { bindings.popScope(); }

    void content(const QeCString&) override {}

private:
    QeXmlNamespaceStack bindings;
};

}  // namespace

int main() {
    readItem("<item xmlns='urn:example:shop'/>");
    readItem("<s:item xmlns:s='urn:example:shop'/>");

    const QeCString typed(
        "<item xmlns:s='urn:example:shop' xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance'"
        " xsi:type='s:Tea'>Assam</item>");
    QeXmlReader reader(typed);
    readType(reader);

    TypeHandler handler;
    QeXmlSAXParser parser;
    parser.setContentHandler(&handler);
    parser.parse(typed, "");
}
