// Reports a document to a handler: prints its elements, indented by their depth.

#include <iostream>
#include <string>

#include <tessit/tessit.h>

namespace {

class Outline final : public QeXmlContentHandler {
public:
    void elementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes) override {
        std::cout << std::string(2 * depth++, ' ') << name.asString();
        for (const QeXmlAttribute& attribute : attributes)
            std::cout << ' ' << attribute.getName().asString() << '=' << attribute.getValue();
        std::cout << '\n';
    }

    void elementEnd(const QeXmlName&) override { --depth; }

    void content(const QeCString&) override {}

private:
    std::size_t depth = 0;
};

}  // namespace

int main() {
    Outline outline;
    QeXmlSAXParser parser;
    parser.setContentHandler(&outline);
    parser.parse("<feed><order id='17'><note>Ring twice.</note></order><order id='18'/></feed>", "");
}
