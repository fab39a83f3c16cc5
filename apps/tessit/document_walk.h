#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <tessit/reader/xml_reader.h>

/// Walks a document node by node and refuses tags that do not pair up, which the
/// reader alone does not look at.
class DocumentWalk {
public:
    /// The reader must outlive the walk and is moved by it alone.
    explicit DocumentWalk(QeXmlReader& source) : reader(source) {}

    /// Takes the next node; false at the end of the document. Throws
    /// `QeXmlParseError` for what the reader refuses, for an end tag that is not
    /// that of the innermost open element, and for an end inside an element.
    bool next();

private:
    // URIs are kept once each, so that the names of a million open elements cost
    // no more than the document, however long a URI they share.
    struct OpenElement {
        QeCString qualifiedName;
        std::size_t localLength;
        const QeCString* uri;

        std::string_view localName() const;
    };

    void open(const QeXmlName& name);
    void close(const QeXmlName& name);

    QeXmlReader& reader;
    std::vector<OpenElement> elements;
    std::unordered_set<QeCString> uris;
};
