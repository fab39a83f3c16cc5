#pragma once

#include <tessit/model/xml_name.h>

/// A name and a value. The value is UTF-8 text without escapes.
///
/// References from the accessors live as long as the object. Storing a text can
/// throw `std::bad_alloc`: what takes several (an assignment, a name) has then
/// perhaps stored the first of them. Accessors are O(1); copying, storing and
/// comparing is O(length of the texts).
class TESSIT_API QeXmlAttribute {
public:
    QeXmlAttribute() = default;
    QeXmlAttribute(const QeXmlName& attributeName, const QeCString& text) : name(attributeName), value(text) {}

    /// Mind the order: local name, value, namespace.
    QeXmlAttribute(const QeCString& localName, const QeCString& text, const QeXmlNamespace& ns)
        : name(localName, ns), value(text) {}

    const QeXmlName& getName() const noexcept { return name; }
    QeXmlName& getName() noexcept { return name; }
    void setName(const QeXmlName& newName) { name = newName; }

    const QeCString& getValue() const noexcept { return value; }
    void setValue(const QeCString& newValue) { value = newValue; }

    /// The order of the names; values are not compared.
    int compareTo(const QeXmlAttribute& other) const noexcept { return name.compareTo(other.name); }

private:
    friend struct tessit::ModelAccess;

    QeXmlName name;
    QeCString value;
};
