#pragma once

#include <tessit/reader/xml_reader.h>

/// Walks a document node by node and refuses tags that do not pair up, which the
/// reader by itself does not look at.
class DocumentWalk {
public:
    /// The reader has read no tag yet, must outlive the walk, and is moved by it alone.
    explicit DocumentWalk(QeXmlReader& source) : reader(source) { reader.setMatchTags(true); }

    /// Takes the next node; false at the end of the document. Throws
    /// `QeXmlParseError` for what the reader refuses, for an end tag that is not
    /// that of the innermost open element, and for an end inside an element.
    bool next();

private:
    QeXmlReader& reader;
};
