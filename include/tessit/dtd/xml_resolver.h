#pragma once

#include <string_view>
#include <utility>

#include <corvel/c_string.h>
#include <tessit/errors/xml_error.h>
#include <tessit/export.h>

/// An entity outside the document, as a declaration names it. Made by the library alone, so
/// that later versions can say more.
class QeXmlExternalId {
public:
    QeXmlExternalId(const QeXmlExternalId&) = delete;
    QeXmlExternalId& operator=(const QeXmlExternalId&) = delete;

    /// The public identifier, with white space as XML has it (single spaces); empty when there is none.
    const QeCString& getPublicId() const noexcept { return publicId; }

    /// The system identifier as written, usually a relative URI.
    const QeCString& getSystemId() const noexcept { return systemId; }

    /// The name of the source in which the declaration stands: what relative identifiers are relative to.
    const QeCString& getBase() const noexcept { return place.sourceFile; }

    /// Where the identifier stands in it.
    const QeXmlPlace& getPlace() const noexcept { return place; }

protected:
    QeXmlExternalId(const QeCString& publicIdentifier, const QeCString& systemIdentifier, const QeXmlPlace& declaredAt)
        : publicId(publicIdentifier), systemId(systemIdentifier), place(declaredAt) {}
    ~QeXmlExternalId() = default;

private:
    QeCString publicId, systemId;
    QeXmlPlace place;
};

/// What a resolver found: the bytes of an entity and what they are called.
class QeXmlExternalEntity {
public:
    QeXmlExternalEntity(const QeXmlExternalEntity&) = delete;
    QeXmlExternalEntity& operator=(const QeXmlExternalEntity&) = delete;

    /// The bytes, in any encoding that the reader knows. O(1) where they are moved here.
    void setBytes(QeCString entityBytes) { bytes = std::move(entityBytes); }

    /// The name that errors and relative identifiers get. The system identifier when it is not set.
    void setName(const QeCString& sourceName) { name = sourceName; }

    /// The encoding that a transport said, which goes before what the bytes say; empty when nobody said one.
    void setEncoding(const QeCString& encodingName) { encoding = encodingName; }

protected:
    QeXmlExternalEntity() = default;
    ~QeXmlExternalEntity() = default;

    QeCString bytes, name, encoding;
};

/// What a program gives a reader so that external entities can be read. The library itself
/// opens nothing.
class TESSIT_API QeXmlResolver {
public:
    /// Fills in `entity`, or returns false when it is not available: then the document is read
    /// as far as it can be without it. What it throws leaves the reading call. Called at most
    /// once for each entity that is read.
    virtual bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) = 0;

    QeXmlResolver() = default;
    QeXmlResolver(const QeXmlResolver&) = default;
    QeXmlResolver& operator=(const QeXmlResolver&) = default;
    virtual ~QeXmlResolver();
};

/// An entity that a program names for documents which refer to it without declaring it.
struct QeXmlNamedEntity {
    std::string_view name;  ///< without '&' and ';'
    std::string_view text;  ///< plain text: what is markup in it counts as text
};
