#pragma once

#include <cstddef>
#include <cstdint>

#include <corvel/c_string.h>

/// A place in a document. All counts begin at its true beginning, whatever was converted
/// since; a byte-order mark counts in offsets, not in columns.
struct QeXmlPosition {
    /// Stands for an offset that nobody knows.
    static constexpr std::uint64_t Unknown = UINT64_MAX;

    std::uint64_t line = 1;    ///< from 1; by the conforming rules each of CR LF, CR and LF ends one, else LF
    std::uint64_t column = 1;  ///< from 1, in bytes of the text as UTF-8
    std::uint64_t offset = 0;  ///< from 0, in bytes of the text as UTF-8

    /// From 0, in bytes of the input as it came. Known where that is UTF-8, UTF-16, UTF-32, or in an encoding of one
    /// byte for each character, and was converted at most once.
    std::uint64_t inputOffset = 0;

    std::uint64_t characterColumn = 1;  ///< the column in characters, which are Unicode's code points
};

/// A stretch of a document, from the first byte to behind the last one.
struct QeXmlSpan {
    QeXmlPosition begin, end;
};

/// Where an attribute stands: its name as written, and its value without the quotes.
struct QeXmlAttributeSpans {
    QeXmlSpan name, value;
};

/// An element that is open: its name as written, and where its start tag stands.
struct QeXmlOpenElement {
    QeCString name;
    QeXmlSpan tag;
};

/// The line in which a place stands, for people to see: up to 160 bytes of it on either side of the place.
struct QeXmlExcerpt {
    QeCString text;          ///< as UTF-8, without the line's end; empty where nobody knows it
    std::size_t offset = 0;  ///< of the place in the text, in bytes
    bool isCutInFront = false;
    bool isCutBehind = false;
};

/// A place, and in which text.
struct QeXmlPlace {
    QeCString sourceFile;  ///< what the text is called; empty when that is not known
    QeXmlPosition position;
};
