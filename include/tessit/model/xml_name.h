#pragma once

#include <tessit/model/xml_namespace.h>

/// The name of an element or attribute: a local name and the namespace it is in.
///
/// Its identity is the local name and the URI. The prefix travels along for
/// output and takes part in no comparison. Comparisons are exact, byte for byte,
/// and O(length), as are copies, setters and the texts made of the name, though
/// copies share a long URI; accessors are O(1). References from the accessors live
/// as long as the object. Storing a text can throw `std::bad_alloc`: what takes
/// several (an assignment, a namespace) has then perhaps stored the first of them.
class TESSIT_API QeXmlName {
public:
    QeXmlName() = default;

    /// A name in no namespace. The text is not split: a colon stays in the local name.
    QeXmlName(const QeCString& local) : localName(local) {}

    QeXmlName(const QeCString& local, const QeXmlNamespace& nameSpace) : localName(local), ns(nameSpace) {}

    const QeCString& getLocalName() const noexcept { return localName; }
    void setLocalName(const QeCString& value) { localName = value; }

    const QeXmlNamespace& getNamespace() const noexcept { return ns; }
    QeXmlNamespace& getNamespace() noexcept { return ns; }
    void setNamespace(const QeXmlNamespace& value) { ns = value; }

    /// Takes the name out of its namespace: prefix and URI become empty.
    void unsetNamespace() { ns = QeXmlNamespace::getEmptyNamespace(); }

    /// `prefix:local`, or the local name when the prefix is empty.
    QeCString getQualifiedName() const;

    /// `URI::local`, or the local name when the URI is empty.
    QeCString getUniqueName() const;

    /// The same as `getQualifiedName()`.
    QeCString asString() const { return getQualifiedName(); }

    /// A negative number, 0 or a positive number: by local name, then by URI.
    int compareTo(const QeXmlName& other) const noexcept {
        const int order = localName.compare(other.localName);
        return order != 0 ? order : ns.compareTo(other.ns);
    }

private:
    friend struct tessit::ModelAccess;

    QeCString localName;
    QeXmlNamespace ns;
};

inline bool operator==(const QeXmlName& left, const QeXmlName& right) noexcept {
    return left.getLocalName() == right.getLocalName() && left.getNamespace().getURI() == right.getNamespace().getURI();
}

inline bool operator!=(const QeXmlName& left, const QeXmlName& right) noexcept {
    return !(left == right);
}

/// Orders names by local name, then by URI; consistent with `==`.
inline bool operator<(const QeXmlName& left, const QeXmlName& right) noexcept {
    return left.compareTo(right) < 0;
}

/// Of the local name and the URI, with a key of the process's own: nobody who chooses
/// names can choose equal hashes. O(length), without that of a URI that copies share.
template <>
struct std::hash<QeXmlName> {
    TESSIT_API std::size_t operator()(const QeXmlName& name) const noexcept;
};
