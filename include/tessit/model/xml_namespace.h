#pragma once

#include <corvel/c_string.h>

namespace tessit {
struct ModelAccess;
}  // namespace tessit

/// A namespace binding: a prefix and the namespace name (URI) it stands for.
///
/// Its identity is the URI: comparisons never look at the prefix. An empty
/// prefix is a default namespace, an empty URI no namespace. All comparisons are
/// exact, byte for byte. References from the accessors live as long as the object.
/// Storing a text can throw `std::bad_alloc`: a setter then has changed nothing, an
/// assignment perhaps the prefix. Accessors and the named namespaces are O(1);
/// copies, setters, comparisons and texts are O(length). A URI of 256 bytes and
/// more, which a document can use over and over, is shared by copies, in whatever
/// threads: to copy it is O(1), and so is to find it equal to a copy, or other than
/// another that is shared.
class TESSIT_API QeXmlNamespace {
public:
    QeXmlNamespace() = default;
    QeXmlNamespace(const QeCString& nsPrefix, const QeCString& nsURI) : prefix(nsPrefix) { setURI(nsURI); }

    QeXmlNamespace(const QeXmlNamespace& other) : prefix(other.prefix) { copyURI(other); }
    QeXmlNamespace(QeXmlNamespace&& other) noexcept = default;
    QeXmlNamespace& operator=(const QeXmlNamespace& other) {
        prefix = other.prefix;
        copyURI(other);
        return *this;
    }
    QeXmlNamespace& operator=(QeXmlNamespace&& other) noexcept = default;
    ~QeXmlNamespace() = default;

    const QeCString& getPrefix() const noexcept { return prefix; }
    void setPrefix(const QeCString& value) { prefix = value; }

    const QeCString& getURI() const noexcept { return uri; }
    void setURI(const QeCString& value) {
        if (value.length() >= SharedLength) return setLongURI(value);
        uri = value;
    }

    /// -1, 0 or 1 by the URIs alone: bytes as unsigned, a proper prefix first. O(length).
    int compareTo(const QeXmlNamespace& other) const noexcept;

    /// `"PREFIX"-->"URI"`, the quotes included; for messages.
    QeCString infoString() const;

    /// The namespace of declarations: prefix "xmlns" and, unlike in other
    /// libraries, the empty URI, so by identity the same as no namespace.
    static const QeXmlNamespace& getXmlns();

    /// The XML Schema instance namespace, prefix "xsi". The reference can be
    /// written through; what is written is seen by all later callers, and must not
    /// be written while another thread reads it. The first call, and that of the next
    /// one, allocates and can throw `std::bad_alloc`; so can `matchXsi` and `matchXsd`.
    static QeXmlNamespace& getXsi();

    /// The XML Schema namespace, prefix "xsd"; to be changed as `getXsi()` is.
    static QeXmlNamespace& getXsd();

    /// Empty prefix, empty URI.
    static const QeXmlNamespace& getEmptyNamespace();

    /// Whether the URI of `ns` is that of `getXmlns()`, that is, empty.
    static bool matchXmlns(const QeXmlNamespace& ns);

    /// Whether the URI of `ns` is the one that `getXsi()` holds now, or that of
    /// the instance namespace in the 1999 working draft.
    static bool matchXsi(const QeXmlNamespace& ns);

    /// Whether the URI of `ns` is the one that `getXsd()` holds now, or that of
    /// XML Schema in the 1999 working draft.
    static bool matchXsd(const QeXmlNamespace& ns);

private:
    friend struct tessit::ModelAccess;
    friend class QeXmlNamespaceStack;  // fills its slots in place

    void copyURI(const QeXmlNamespace& other) {
        if (other.uri.length() >= SharedLength) return shareLongURI(other);
        uri = other.uri;
    }
    void setLongURI(const QeCString& value);
    void shareLongURI(const QeXmlNamespace& other);

    // The shortest URI that copies share.
    static constexpr std::size_t SharedLength = 256;

    QeCString prefix;
    QeCString uri;
};
