// Copies a document: a parser reports it, a handler writes what is reported.

#include <iostream>

#include <tessit/tessit.h>

namespace {

class Copier final : public QeXmlContentHandler {
public:
    explicit Copier(QeXmlWriter& target) : writer(target) {}

    // The text arrives as UTF-8, whatever the document was encoded in.
    void prolog(const QeXmlProlog& declaration) override {
        QeXmlProlog copied(declaration);
        copied.setCharacterEncoding("UTF-8");
        writer.write(copied.asString(), false);
    }

    // The writer declares a default namespace by itself where a name needs it, and
    // would write a declaration in the set beside its own. What it does not see is
    // that `xmlns=""` ends a default namespace: that one stays, and the writer is told.
    void elementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes) override {
        QeXmlAttributeSet copied(attributes);
        if (!copied.getDefaultNamespaceAttribute().empty()) copied.removeDefaultNamespaceAttribute();
        const bool endsDefault = copied.contains(QeXmlName(QeXmlAttributeSet::DefaultNamespaceAttributeTag));

        writer.writeElementStart(name, copied, false);
        if (endsDefault) writer.addNamespace(QeXmlNamespace::getEmptyNamespace());
    }

    void elementEnd(const QeXmlName& name) override { writer.writeElementEnd(name); }

    void content(const QeCString& text) override { writer.write(text, true); }

private:
    QeXmlWriter& writer;
};

constexpr char Original[] = R"(<?xml version="1.0" encoding="ISO-8859-1"?>
<!-- Comments are not reported. -->
<list xmlns='urn:list' xmlns:m='urn:mail'>
  <m:to b='2' a='1'>Ren&#xE9;e &lt;r@example.com&gt;</m:to>
  <note xmlns=''><![CDATA[a < b & c]]><list xmlns='urn:list'/></note>
  <empty/>
</list>)";

constexpr char Expected[] = R"(<?xml version="1.0" encoding="UTF-8"?><list xmlns="urn:list" xmlns:m="urn:mail">
  <m:to a="1" b="2">Renée &lt;r@example.com&gt;</m:to>
  <note xmlns="">a &lt; b &amp; c<list xmlns="urn:list"></list></note>
  <empty></empty>
</list>)";

}  // namespace

int main() {
    QeXmlStringWriter writer;
    Copier copier(writer);
    QeXmlSAXParser parser;
    parser.setContentHandler(&copier);
    parser.parse(Original, "");
    const QeCString copy = writer.getString();
    std::cout << copy << '\n';
    return copy == Expected ? 0 : 1;
}
