#pragma once

#include <vector>

#include <corvel/c_string.h>

/// A notation that was declared; identifiers that are missing are empty.
struct QeXmlNotation {
    QeCString name, publicId, systemId;
};

/// An entity that was declared to be no XML, but of a notation.
struct QeXmlUnparsedEntity {
    QeCString name, publicId, systemId, notation;
};

/// What a document type declaration says by itself. Later versions append fields.
struct QeXmlDocumentType {
    QeCString name;            ///< of the root element that it declares; empty when there is no declaration
    QeCString publicId;        ///< with single spaces; empty when there is none
    QeCString systemId;        ///< empty when there is none
    QeCString internalSubset;  ///< what stands between the brackets, as written
    bool hasExternalId = false;
    bool hasInternalSubset = false;

    /// What was declared of these in the subsets that were read, in that order.
    std::vector<QeXmlNotation> notations;
    std::vector<QeXmlUnparsedEntity> unparsedEntities;
};
