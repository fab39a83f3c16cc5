#include <corpus/composition.h>
#include <corpus/vocabulary.h>

namespace tessit::benchmarks {

namespace {

using Node = ComposedNode<std::string>;
using Kind = Node::Kind;

enum Name : std::size_t {
    Orders,
    Order,
    Customer,
    Person,
    City,
    Item,
    Remark,
    Note,
    Priority,
    Id,
    Status,
    Sku,
    Quantity,
    Price,
    DeclareOrder,
    DeclareParty,
    DeclareItem,
    DeclareNote
};

constexpr char OrderUri[] = "http://schemas.example.org/commerce/2024/order";
constexpr char PartyUri[] = "http://schemas.example.org/commerce/2024/party";
constexpr char ItemUri[] = "http://schemas.example.org/commerce/2024/catalogue/item";
constexpr char NoteUri[] = "http://schemas.example.org/annotations/note";

ComposedName<std::string> named(const std::string& prefix, const std::string& local, const std::string& uri) {
    return {prefix, local, uri, prefix.empty() ? local : prefix + ':' + local};
}

// In the order of the enumeration.
std::vector<ComposedName<std::string>> allNames() {
    return {named("o", "orders", OrderUri),   named("o", "order", OrderUri),
            named("p", "customer", PartyUri), named("p", "name", PartyUri),
            named("p", "city", PartyUri),     named("i", "item", ItemUri),
            named("o", "remark", OrderUri),   named("n", "note", NoteUri),
            named("n", "priority", NoteUri),  named("", "id", ""),
            named("", "status", ""),          named("i", "sku", ItemUri),
            named("i", "quantity", ItemUri),  named("i", "price", ItemUri),
            named("xmlns", "o", ""),          named("xmlns", "p", ""),
            named("xmlns", "i", ""),          named("xmlns", "n", "")};
}

class Composer {
public:
    explicit Composer(std::uint64_t seed) : random(seed) {}

    void composeOrder() {
        constexpr const char* States[] = {"open", "paid & sent", "cancelled", "on hold"};
        start(Order, {{Id, std::to_string(random.below(1000000))}, {Status, random.pick(States)}});
        start(Customer);
        leaf(Person, std::string(random.pick(GivenNames)) + ' ' + random.pick(FamilyNames));
        leaf(City, random.pick(Cities));
        end(Customer);
        for (std::size_t items = random.between(1, 5); items > 0; --items)
            composeItem();
        if (random.percent(50)) leaf(Remark, remark());
        end(Order);
        text("\n");
    }

    void start(Name name, std::vector<std::pair<std::size_t, std::string>> attributes = {}) {
        add({Kind::Start, name, std::move(attributes)});
    }
    void end(Name name) { add({Kind::End, name}); }
    void text(std::string characters) { add({.kind = Kind::Text, .text = std::move(characters)}); }

    std::size_t bytes = 0;  // roughly, as written
    std::vector<Node> nodes;

private:
    void composeItem() {
        const std::vector<std::pair<std::size_t, std::string>> attributes = {
            {Sku, "AB-" + std::to_string(random.below(100000))},
            {Quantity, std::to_string(random.between(1, 40))},
            {Price, amount(random)}};
        if (random.percent(80)) return add({Kind::Empty, Item, attributes});
        start(Item, attributes);
        start(Note, {{DeclareNote, NoteUri}, {Priority, words(random, 1) + " \"1\""}});
        text(remark());
        end(Note);
        end(Item);
    }

    std::string remark() {
        return words(random, random.between(2, 12)) + " <" + words(random, 1) + "> & " +
               words(random, random.between(1, 20));
    }

    void leaf(Name name, std::string characters) {
        start(name);
        text(std::move(characters));
        end(name);
    }

    void add(Node node) {
        constexpr std::size_t Markup = 12;  // the name and what stands around it
        bytes += Markup + node.text.size();
        for (const auto& [name, value] : node.attributes)
            bytes += Markup + value.size();
        nodes.push_back(std::move(node));
    }

    Random random;
};

}  // namespace

Composition<std::string> composeOrders(std::size_t bytes, std::uint64_t seed) {
    Composer composer(seed);
    composer.start(Orders, {{DeclareOrder, OrderUri}, {DeclareParty, PartyUri}, {DeclareItem, ItemUri}});
    while (composer.bytes < bytes)
        composer.composeOrder();
    composer.end(Orders);
    return {allNames(), std::move(composer.nodes)};
}

}  // namespace tessit::benchmarks
