// An element class of an application: a price that is written as an element and read back.

#include <charconv>
#include <iostream>
#include <stdexcept>
#include <string>

#include <tessit/tessit.h>

namespace {

const QeXmlNamespace Shop("s", "http://example.com/shop");
const QeXmlName CurrencyName("currency");

class Price : public QeXmlElementImp {
public:
    Price() : QeXmlElementImp(QeXmlName("price", Shop)) {}

    Price(const QeCString& currency, int amount) : Price() {
        setCurrency(currency);
        cents = amount;
    }

    int getCents() const { return cents; }

    QeCString getCurrency() const {
        const QeXmlAttribute* currency = findAttribute(CurrencyName);
        return currency == attributesEnd() ? QeCString() : currency->getValue();
    }

    void setCurrency(const QeCString& currency) { addAttribute(CurrencyName, currency); }

    // Whatever adds a currency, through this class or through its base, is checked here.
    void addAttribute(const QeXmlName& name, const QeCString& value) override {
        if (name == CurrencyName && value.length() != 3) throw std::invalid_argument("A currency has three letters");
        QeXmlElementImp::addAttribute(name, value);
    }

    // The other overload does not come here by itself.
    void addAttribute(const QeXmlAttribute& attribute) override {
        addAttribute(attribute.getName(), attribute.getValue());
    }

    void write(QeXmlWriter& writer) const {
        writer.writeElementStart(getName(), getAttributes(), false);
        writer.write(QeCString(std::to_string(cents).c_str()), true);
        writer.writeElementEnd(getName());
    }

    void read(QeXmlReader& reader) {
        clearAttributes();
        for (const QeXmlAttribute& attribute : reader.readElementStart(getName()))
            addAttribute(attribute);
        QeCString text;  // an empty-element tag has none
        if (reader.getLastNodeType() == QeXmlReader::ElementStart) text = reader.readElementValue();
        if (std::from_chars(text.begin(), text.end(), cents).ec != std::errc())
            throw std::invalid_argument("A price is a number of cents");
        reader.readElementEnd(getName());
    }

private:
    int cents = 0;
};

bool refuses(Price& price, const QeXmlAttribute& attribute) {
    try {
        static_cast<QeXmlElementImp&>(price).addAttribute(attribute);
        return false;
    } catch (const std::invalid_argument&) {
        return true;
    }
}

}  // namespace

int main() {
    QeXmlStringWriter writer;
    Price("EUR", 1250).write(writer);
    const QeCString element = writer.getString();
    std::cout << element << '\n';

    Price read;
    QeXmlReader reader(element);
    read.read(reader);
    std::cout << read.getCents() << " cents, " << read.getCurrency() << '\n';

    const bool right = element == R"(<s:price currency="EUR" xmlns:s="http://example.com/shop">1250</s:price>)" &&
                       read.getCents() == 1250 && read.getCurrency() == "EUR" &&
                       refuses(read, QeXmlAttribute("currency", "euro", QeXmlNamespace()));
    return right ? 0 : 1;
}
