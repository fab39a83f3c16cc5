#include <algorithm>
#include <functional>

#include <tessit/model/xml_attribute_set.h>

constinit const QeCString QeXmlAttributeSet::DefaultNamespaceAttributeTag("xmlns");
constinit const QeCString QeXmlAttributeSet::EmptyString("");

namespace {

// Up to this many attributes a linear scan, which mostly compares lengths, beats the binary search.
constexpr std::size_t LinearSearchLimit = 16;

// Where a binary search puts `name`: before the first attribute that sorts after
// it. Written out, since std::upper_bound promises nothing for a broken order.
QeXmlAttribute* upperBound(QeXmlAttribute* first, const QeXmlAttribute* last, const QeXmlName& name) noexcept {
    for (auto count = last - first; count > 0;) {
        const auto half = count / 2;
        if (name < first[half].getName()) {
            count = half;
        } else {
            first += half + 1;
            count -= half + 1;
        }
    }
    return first;
}

}  // namespace

QeXmlAttributeSet::~QeXmlAttributeSet() = default;

// Whether the names stand in order, each once.
bool QeXmlAttributeSet::isStrictlySorted() const noexcept {
    return knownSorted ||
           std::adjacent_find(begin(), end(), [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
               return left.compareTo(right) >= 0;
           }) == end();
}

// Called after attributes were added or removed, which made the pointers that were
// out void. Few attributes are scanned whatever their order.
void QeXmlAttributeSet::lookAtOrder() noexcept {
    if (!knownSorted && attributes.size() > LinearSearchLimit) knownSorted = isStrictlySorted();
}

// The same for attributes that stand in order of their local names. The URIs of
// equal ones are not compared: they can be long, and the reader's are looked at
// for every tag.
void QeXmlAttributeSet::lookAtLocalNames() noexcept {
    if (attributes.size() <= LinearSearchLimit) return;
    const auto alike = [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
        return left.getName().getLocalName() == right.getName().getLocalName();
    };
    knownSorted = std::adjacent_find(attributes.begin(), attributes.end(), alike) == attributes.end();
}

// The first attribute that matches; those that `isBefore` holds for stand before it as long as the order is right.
template <typename IsBefore, typename Matches>
const QeXmlAttribute* QeXmlAttributeSet::findFirst(const IsBefore& isBefore, const Matches& matches) const noexcept {
    const QeXmlAttribute* last = attributes.end();
    if (!knownSorted || attributes.size() <= LinearSearchLimit) return std::find_if(attributes.begin(), last, matches);
    const QeXmlAttribute* found = std::partition_point(attributes.begin(), last, isBefore);
    return found != last && matches(*found) ? found : last;
}

const QeXmlAttribute* QeXmlAttributeSet::find(const QeXmlName& name) const noexcept {
    return findFirst([&](const QeXmlAttribute& attribute) { return attribute.getName() < name; },
                     [&](const QeXmlAttribute& attribute) { return attribute.getName() == name; });
}

void QeXmlAttributeSet::add(const QeXmlName& name, const QeCString& value) {
    if (knownSorted && attributes.size() <= LinearSearchLimit) return addToFew(name, value);
    const QeXmlAttribute* present = std::as_const(*this).find(name);
    if (present != attributes.end()) {
        attributes.begin()[present - attributes.begin()].setValue(value);
        return;
    }
    append(name.getLocalName(), name.getNamespace(), value);
    QeXmlAttribute* added = &attributes.back();
    attributes.moveLastTo(upperBound(attributes.begin(), added, added->getName()));
    lookAtOrder();
}

// Most attributes are added in order, so that one comparison finds their place.
void QeXmlAttributeSet::addToFew(const QeXmlName& name, const QeCString& value) {
    std::size_t place = attributes.size();
    for (; place > 0; --place) {
        QeXmlAttribute& present = attributes[place - 1];
        if (present.getName() == name) return present.setValue(value);
        if (present.getName() < name) break;
    }
    append(name.getLocalName(), name.getNamespace(), value);
    if (place + 1 < attributes.size()) attributes.moveLastTo(attributes.begin() + place);
}

void QeXmlAttributeSet::append(const QeCString& localName, const QeXmlNamespace& ns, const QeCString& value) {
    attributes.append([&](QeXmlAttribute& slot) {
        slot.getName().setLocalName(localName);
        slot.getName().setNamespace(ns);
        slot.setValue(value);
    });
}

void QeXmlAttributeSet::remove(const QeXmlName& name) noexcept {
    const QeXmlAttribute* present = std::as_const(*this).find(name);
    if (present == attributes.end()) return;
    attributes.remove(attributes.begin() + (present - attributes.begin()));
    lookAtOrder();
}

void QeXmlAttributeSet::assignInPlace(const QeXmlAttributeSet& other) {
    knownSorted = true;  // as the empty set that a throw leaves behind
    attributes.assignInPlace(other.attributes);
    knownSorted = other.knownSorted;
}

QeXmlAttribute* QeXmlAttributeSet::remove(QeXmlAttribute* position) noexcept {
    const std::less<const QeXmlAttribute*> before;  // a total order, also for pointers from elsewhere
    if (before(position, attributes.begin()) || !before(position, attributes.end())) return end();
    attributes.remove(position);
    return handOut(position);
}

void QeXmlAttributeSet::clear() noexcept {
    attributes.clear();
    knownSorted = true;
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
    return findFirst([&](const QeXmlAttribute& attribute) { return attribute.getName().getLocalName() < prefix; },
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
