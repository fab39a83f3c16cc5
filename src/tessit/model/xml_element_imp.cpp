#include <tessit/model/xml_element_imp.h>

QeXmlElementImp::~QeXmlElementImp() = default;

void QeXmlElementImp::setName(const QeXmlName& name) {
    ownName = name;
}

QeXmlName& QeXmlElementImp::getName() {
    return ownName;
}

const QeXmlName& QeXmlElementImp::getName() const {
    return ownName;
}

void QeXmlElementImp::setAndAddNamespace(const QeXmlNamespace& ns) {
    setNamespace(ns);
    ownAttributes.addNamespaceAttribute(ns);
}

void QeXmlElementImp::addNamespaceAttribute(const QeXmlNamespace& ns) {
    ownAttributes.addNamespaceAttribute(ns);
}

QeXmlAttribute* QeXmlElementImp::findNamespaceAttribute(const QeCString& prefix) {
    return ownAttributes.findNamespaceAttribute(prefix);
}

const QeXmlAttribute* QeXmlElementImp::findNamespaceAttribute(const QeCString& prefix) const {
    return ownAttributes.findNamespaceAttribute(prefix);
}

QeXmlAttribute* QeXmlElementImp::findNamespaceAttribute(const QeXmlNamespace& ns) {
    return ownAttributes.findNamespaceAttribute(ns);
}

const QeXmlAttribute* QeXmlElementImp::findNamespaceAttribute(const QeXmlNamespace& ns) const {
    return ownAttributes.findNamespaceAttribute(ns);
}

void QeXmlElementImp::removeNamespaceAttribute(const QeCString& prefix) {
    ownAttributes.removeNamespaceAttribute(prefix);
}

void QeXmlElementImp::removeNamespaceAttribute(const QeXmlNamespace& ns) {
    ownAttributes.removeNamespaceAttribute(ns);
}

void QeXmlElementImp::setDefaultNamespaceAttribute(const QeCString& uri) {
    ownAttributes.setDefaultNamespaceAttribute(uri);
}

void QeXmlElementImp::setDefaultNamespaceAttribute(const QeXmlNamespace& ns) {
    ownAttributes.setDefaultNamespaceAttribute(ns);
}

void QeXmlElementImp::unsetDefaultNamespaceAttribute() {
    ownAttributes.unsetDefaultNamespaceAttribute();
}

const QeCString& QeXmlElementImp::getDefaultNamespaceAttribute() const {
    return ownAttributes.getDefaultNamespaceAttribute();
}

QeXmlAttribute* QeXmlElementImp::attributesBegin() {
    return ownAttributes.begin();
}

const QeXmlAttribute* QeXmlElementImp::attributesBegin() const {
    return ownAttributes.begin();
}

const QeXmlAttribute* QeXmlElementImp::attributesEnd() const {
    return ownAttributes.end();
}

QeXmlAttribute* QeXmlElementImp::attributesEnd() {
    return ownAttributes.end();
}

unsigned QeXmlElementImp::attributeCount() const {
    return ownAttributes.size();
}

void QeXmlElementImp::clearAttributes() {
    ownAttributes.clear();
}

void QeXmlElementImp::addAttribute(const QeXmlAttribute& attribute) {
    ownAttributes.add(attribute);
}

void QeXmlElementImp::addAttribute(const QeXmlName& name, const QeCString& value) {
    ownAttributes.add(name, value);
}

// A derived class may keep attributes of its own behind ours, with an end of its
// own: that end is asked for first, and returned as it says.
QeXmlAttribute* QeXmlElementImp::removeAttribute(QeXmlAttribute* position) {
    if (position == attributesEnd()) return attributesEnd();
    return ownAttributes.remove(position);
}

void QeXmlElementImp::removeAttribute(const QeXmlAttribute& attribute) {
    ownAttributes.remove(attribute);
}

void QeXmlElementImp::removeAttribute(const QeXmlName& name) {
    ownAttributes.remove(name);
}

QeXmlAttribute* QeXmlElementImp::findAttribute(const QeXmlAttribute& attribute) {
    return ownAttributes.find(attribute);
}

const QeXmlAttribute* QeXmlElementImp::findAttribute(const QeXmlAttribute& attribute) const {
    return ownAttributes.find(attribute);
}

QeXmlAttribute* QeXmlElementImp::findAttribute(const QeXmlName& name) {
    return ownAttributes.find(name);
}

const QeXmlAttribute* QeXmlElementImp::findAttribute(const QeXmlName& name) const {
    return ownAttributes.find(name);
}

bool QeXmlElementImp::hasAttribute(const QeXmlAttribute& attribute) const {
    return ownAttributes.contains(attribute);
}

bool QeXmlElementImp::hasAttribute(const QeXmlName& name) const {
    return ownAttributes.contains(name);
}

QeXmlAttributeSet& QeXmlElementImp::getAttributes() {
    return ownAttributes;
}

const QeXmlAttributeSet& QeXmlElementImp::getAttributes() const {
    return ownAttributes;
}
