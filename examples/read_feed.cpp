// Reads a feed of orders into structs: elements that repeat, elements that may be
// missing, attributes, and two namespaces.

#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <tessit/tessit.h>

namespace {

constexpr char Feed[] = R"(<?xml version="1.0"?>
<feed xmlns="urn:example:orders" xmlns:d="urn:example:delivery">
  <order id="17">
    <item sku="T-100" count="3">Darjeeling</item>
    <item sku="K-2">Kettle &amp; lid</item>
    <d:address>Spring Lane 4</d:address>
    <note>Ring twice.</note>
  </order>
  <order id="18">
    <item sku="T-220">Assam</item>
    <note/>
  </order>
</feed>)";

struct Item {
    std::string sku;
    std::string count;
    std::string text;
};

struct Order {
    std::string id;
    std::vector<Item> items;
    std::optional<std::string> address;
    std::optional<std::string> note;
};

// Whatever prefixes a feed uses, names are the same when local name and URI are.
const QeXmlNamespace Orders("", "urn:example:orders");
const QeXmlNamespace Delivery("d", "urn:example:delivery");
const QeXmlName FeedName("feed", Orders);
const QeXmlName OrderName("order", Orders);
const QeXmlName ItemName("item", Orders);
const QeXmlName NoteName("note", Orders);
const QeXmlName AddressName("address", Delivery);

std::string toString(const QeCString& text) {
    return std::string(std::string_view(text));
}

// An attribute without a prefix is in no namespace.
std::string attributeOr(const QeXmlAttributeSet& attributes, const char* name, const char* otherwise) {
    const QeXmlAttribute* found = attributes.find(QeXmlName(name));
    return found == attributes.end() ? otherwise : toString(found->getValue());
}

// The text of the element that was just opened. An empty-element tag has none: what stands behind it belongs to the
// element around it.
std::string readText(QeXmlReader& reader) {
    return reader.getLastNodeType() == QeXmlReader::ElementStart ? toString(reader.readElementValue()) : "";
}

// What is returned by the reader changes with its next call, so it is copied first.
Item readItem(QeXmlReader& reader) {
    Item item;
    const QeXmlAttributeSet& attributes = reader.readElementStart(ItemName);
    item.sku = attributeOr(attributes, "sku", "");
    item.count = attributeOr(attributes, "count", "1");
    item.text = readText(reader);
    reader.readElementEnd(ItemName);
    return item;
}

std::optional<std::string> readOptional(QeXmlReader& reader, const QeXmlName& name) {
    if (!reader.isElementNext(name)) return std::nullopt;
    reader.readElementStart(name);
    std::string text = readText(reader);
    reader.readElementEnd(name);
    return text;
}

Order readOrder(QeXmlReader& reader) {
    Order order;
    order.id = attributeOr(reader.readElementStart(OrderName), "id", "");
    while (reader.isElementNext(ItemName))
        order.items.push_back(readItem(reader));
    order.address = readOptional(reader, AddressName);
    order.note = readOptional(reader, NoteName);
    reader.readElementEnd(OrderName);
    return order;
}

std::vector<Order> readOrders(QeXmlReader& reader) {
    std::vector<Order> orders;
    reader.readElementStart(FeedName);
    while (reader.isElementNext(OrderName))
        orders.push_back(readOrder(reader));
    reader.readElementEnd(FeedName);
    return orders;
}

void print(const Order& order) {
    std::cout << "order " << order.id << " for " << order.address.value_or("collection") << '\n';
    for (const Item& item : order.items)
        std::cout << "  " << item.count << " x " << item.text << " (" << item.sku << ")\n";
    if (order.note) std::cout << "  note: " << (order.note->empty() ? "(empty)" : *order.note) << '\n';
}

}  // namespace

int main() {
    try {
        QeXmlReader reader{QeCString(Feed)};
        for (const Order& order : readOrders(reader))
            print(order);
    } catch (const QeXmlParseError& error) {
        std::cerr << "line " << error.getLineNumber() << ", column " << error.getColumnNumber() << ": " << error.what()
                  << '\n';
        return 1;
    }
}
