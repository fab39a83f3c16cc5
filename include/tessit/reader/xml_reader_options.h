#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <corvel/c_string.h>
#include <tessit/dtd/xml_resolver.h>
#include <tessit/errors/xml_limits.h>

class QeXmlRecord;

/// By which rules a reader reads.
enum class QeXmlRules {
    Lenient,    ///< takes what it can make sense of
    Conforming  ///< a non-validating processor of XML 1.0 (fifth edition) and Namespaces in XML 1.0
};

/// Nodes that a conforming reader delivers besides tags and text; they can be joined by `|`.
/// Those that are not asked for are passed over: text goes on behind a comment or an
/// instruction, a CDATA section is text, and a reference that is left alone is text as written.
enum class QeXmlNodes : std::uint32_t {
    TagsAndText = 0,
    Comments = 1,
    Instructions = 2,
    CDATASections = 4,
    References = 8,     ///< to entities that nobody has read
    DocumentType = 16,  ///< the document type declaration
    All = 31
};

constexpr QeXmlNodes operator|(QeXmlNodes left, QeXmlNodes right) noexcept {
    return static_cast<QeXmlNodes>(static_cast<std::uint32_t>(left) | static_cast<std::uint32_t>(right));
}

/// How a reader is to read: `QeXmlReader reader(bytes, {.rules = QeXmlRules::Conforming})`.
///
/// All but the source's name, the limits and the record is for conforming readers, and without effect on a
/// lenient one; a record heeds `namespaces`, too. Later versions append fields; programs that were built with fewer of
/// them go on as if these had their defaults.
struct QeXmlReaderOptions {
    QeXmlRules rules = QeXmlRules::Lenient;

    /// What the document is called: errors say it, and a resolver is told it as the base of relative identifiers.
    QeCString sourceName = {};

    /// The encoding that a transport said; goes before the document's own mark and declaration. Empty: nobody said one.
    QeCString encoding = {};

    /// Whether names are read by Namespaces in XML. If not, a name with colons is a local name as a whole.
    bool namespaces = true;

    QeXmlNodes nodes = QeXmlNodes::TagsAndText;

    /// Who fetches external entities; null: they are not read. Not owned; to live as long as the reader.
    QeXmlResolver* resolver = nullptr;

    /// Entities for documents that refer to them without declaring them, where an external
    /// subset or a parameter entity is named. Not copied; to live as long as the reader.
    std::span<const QeXmlNamedEntity> entities = {};

    /// Replacement text and default values, with their names, may come to that many times the
    /// bytes that were read, and to `freeExpansion` bytes in any case.
    std::uint64_t expansionFactor = 100;
    std::uint64_t freeExpansion = std::uint64_t{8} << 20;

    /// How deep entities may stand in the replacement text of others.
    std::size_t entityDepth = 256;

    /// What a document may have at most, of lenient readers, too.
    QeXmlLimits limits = {};

    /// Of a lenient reader: what it forgives goes there; null: nobody asks. A conforming one leaves it as it is. Not
    /// owned; to live as long as the reader.
    QeXmlRecord* record = nullptr;

    struct Passed;
};

// Options as a program passes them on: `size` tells which fields it knows.
struct QeXmlReaderOptions::Passed {
    const QeXmlReaderOptions& fields;
    std::size_t size = sizeof(QeXmlReaderOptions);
};

/// A reference to an entity that nobody has read, in an attribute's value: it stands there as written.
struct QeXmlLeftReference {
    std::size_t offset;  ///< of the '&' in the value, in bytes
    std::size_t length;  ///< with the semicolon
};
