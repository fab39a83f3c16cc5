#pragma once

#include <corvel/c_string.h>

/// What a document type declaration says by itself. Later versions append fields.
struct QeXmlDocumentType {
    QeCString name;            ///< of the root element that it declares; empty when there is no declaration
    QeCString publicId;        ///< with single spaces; empty when there is none
    QeCString systemId;        ///< empty when there is none
    QeCString internalSubset;  ///< what stands between the brackets, as written
    bool hasExternalId = false;
    bool hasInternalSubset = false;
};
