#pragma once

#include <limits>
#include <span>
#include <string>
#include <tally.h>

#include <corvel/c_string.h>

namespace tessit::benchmarks {

enum class Role { Ours, Peer, Floor };

/// What a library makes of a document by its design, where that differs: what is
/// counted is held against the figures that then have to come out.
struct Delivery {
    bool utf16 = false;                                       ///< strings are UTF-16, not UTF-8
    bool namespaces = true;                                   ///< names come with their URI
    bool xmlPrefix = true;                                    ///< the prefix "xml" has its URI without a declaration
    bool blankTexts = true;                                   ///< whitespace between tags is a text
    bool references = true;                                   ///< references are replaced by what they stand for
    bool lineEnds = true;                                     ///< any line end arrives as one line feed
    bool otherEncodings = true;                               ///< UTF-16 and ISO-8859-1 are read, too
    unsigned deepest = std::numeric_limits<unsigned>::max();  ///< how many levels of elements are accepted
    std::size_t mostDocuments = std::numeric_limits<std::size_t>::max();  ///< of more, making them ready would count
};

/// A document as the libraries take it. Both forms are made anew before each reading, which is not timed.
struct Document {
    std::span<char> bytes;  ///< may be written over; a NUL follows
    const QeCString& text;

    std::string_view view() const { return {bytes.data(), bytes.size()}; }
};

/// One way of reading documents.
struct Reader {
    std::string name;
    std::string version = {};
    Role role = Role::Peer;
    Delivery delivery = {};

    /// Reads a document and counts what is in it.
    Tally (*read)(const Document& document) = nullptr;

    /// What else is made of a document before each reading, and not timed.
    void (*makeReady)(const Document& document) = nullptr;

    /// Floors may do less than reading; then there is nothing to be checked.
    bool counts = true;

    /// For what is written for one kind of document: the only shape that can be read.
    std::string onlyShape = {};
};

}  // namespace tessit::benchmarks
