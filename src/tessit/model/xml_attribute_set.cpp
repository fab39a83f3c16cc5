#include <algorithm>
#include <functional>

#include <tessit/model/xml_attribute_set.h>

constinit const QeCString QeXmlAttributeSet::DefaultNamespaceAttributeTag("xmlns");
constinit const QeCString QeXmlAttributeSet::EmptyString("");

namespace {

// Below this many attributes a linear scan, which mostly compares lengths, beats the binary search.
constexpr std::size_t LinearSearchLimit = 16;

bool nameLess(const QeXmlAttribute& attribute, const QeXmlName& name) noexcept {
    return attribute.getName() < name;
}

}  // namespace

QeXmlAttributeSet::~QeXmlAttributeSet() = default;

bool QeXmlAttributeSet::isStrictlySorted() const noexcept {
    if (order != Order::Unknown) return order == Order::Sorted;
    return std::adjacent_find(begin(), end(), [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
               return left.compareTo(right) >= 0;
           }) == end();
}

// Called before attributes are added or removed, which makes the pointers that are out void.
void QeXmlAttributeSet::settleOrder() noexcept {
    order = isStrictlySorted() ? Order::Sorted : Order::Broken;
}

const QeXmlAttribute* QeXmlAttributeSet::findSorted(const QeXmlName& name) const noexcept {
    const QeXmlAttribute* found = std::lower_bound(attributes.begin(), attributes.end(), name, nameLess);
    return found != attributes.end() && found->getName() == name ? found : attributes.end();
}

const QeXmlAttribute* QeXmlAttributeSet::find(const QeXmlName& name) const noexcept {
    if (order == Order::Sorted && attributes.size() > LinearSearchLimit) return findSorted(name);
    return std::find_if(attributes.begin(), attributes.end(),
                        [&](const QeXmlAttribute& attribute) { return attribute.getName() == name; });
}

void QeXmlAttributeSet::add(const QeXmlName& name, const QeCString& value) {
    settleOrder();
    const QeXmlAttribute* present = std::as_const(*this).find(name);
    if (present != attributes.end()) {
        attributes.begin()[present - attributes.begin()].setValue(value);
        return;
    }
    append(name.getLocalName(), name.getNamespace(), value);
    QeXmlAttribute* last = attributes.end() - 1;
    QeXmlAttribute* position =
        std::upper_bound(attributes.begin(), last, last->getName(),
                         [](const QeXmlName& wanted, const QeXmlAttribute& other) { return wanted < other.getName(); });
    attributes.moveLastTo(position);
}

void QeXmlAttributeSet::remove(const QeXmlName& name) noexcept {
    remove(attributes.begin() + (std::as_const(*this).find(name) - attributes.begin()));
}

// Writes into the strings of a spare slot, so that a set that is cleared and
// filled over and over stops allocating. Without a spare slot the array moves,
// and the arguments with it if they are of this set: then they are copied first.
void QeXmlAttributeSet::append(const QeCString& localName, const QeXmlNamespace& ns, const QeCString& value) {
    if (!attributes.hasSpareSlot()) {
        QeXmlAttribute added(localName, value, ns);
        attributes.append() = std::move(added);
        return;
    }
    QeXmlAttribute& slot = attributes[attributes.size()];
    slot.getName().setLocalName(localName);
    slot.getName().setNamespace(ns);
    slot.setValue(value);
    attributes.append();
}

void QeXmlAttributeSet::assignInPlace(const QeXmlAttributeSet& other) {
    order = Order::Sorted;  // as the empty set that a throw leaves behind
    attributes.assignInPlace(other.attributes);
    order = other.order;
}

QeXmlAttribute* QeXmlAttributeSet::remove(QeXmlAttribute* position) noexcept {
    const std::less<const QeXmlAttribute*> before;  // a total order, also for pointers from elsewhere
    if (before(position, attributes.begin()) || !before(position, attributes.end())) return end();
    settleOrder();
    attributes.remove(position);
    return handOut(position);
}

void QeXmlAttributeSet::clear() noexcept {
    attributes.clear();
    order = Order::Sorted;
}

int QeXmlAttributeSet::compareTo(const QeXmlAttributeSet& other) const noexcept {
    const QeXmlAttribute* theirs = other.begin();
    for (const QeXmlAttribute& mine : *this) {
        if (theirs == other.end()) return 1;
        const int difference = mine.compareTo(*theirs++);
        if (difference != 0) return difference < 0 ? -1 : 1;
    }
    return theirs == other.end() ? 0 : -1;
}

void QeXmlAttributeSet::addNamespaceAttribute(const QeXmlNamespace& ns) {
    add(QeXmlName(ns.getPrefix(), QeXmlNamespace::getXmlns()), ns.getURI());
}

const QeXmlAttribute* QeXmlAttributeSet::findNamespaceByPrefix(const QeCString& prefix) const noexcept {
    return std::find_if(attributes.begin(), attributes.end(),
                        [&](const QeXmlAttribute& attribute) { return attribute.getName().getLocalName() == prefix; });
}

void QeXmlAttributeSet::removeNamespaceAttribute(const QeCString& prefix) {
    remove(QeXmlName(prefix, QeXmlNamespace::getXmlns()));
}

void QeXmlAttributeSet::setDefaultNamespaceAttribute(const QeCString& uri) {
    add(QeXmlName(DefaultNamespaceAttributeTag, QeXmlNamespace::getEmptyNamespace()), uri);
}

void QeXmlAttributeSet::removeDefaultNamespaceAttribute() {
    remove(QeXmlName(DefaultNamespaceAttributeTag));
}

const QeCString& QeXmlAttributeSet::getDefaultNamespaceAttribute() const {
    const QeXmlAttribute* declaration = find(QeXmlName(DefaultNamespaceAttributeTag));
    return declaration == end() ? EmptyString : declaration->getValue();
}
