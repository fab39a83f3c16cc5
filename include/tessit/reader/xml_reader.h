#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <corvel/c_string.h>
#include <tessit/dtd/xml_document_type.h>
#include <tessit/errors/xml_error.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_name.h>
#include <tessit/model/xml_namespace_stack.h>
#include <tessit/reader/xml_input.h>
#include <tessit/reader/xml_reader_options.h>

/// A pull reader: hands out a document one node at a time, and lets the caller demand the elements it expects. It
/// is lenient, or, with `QeXmlRules::Conforming`, takes well-formed documents alone: docs/conforming.md tells more.
///
/// A constructor takes in the whole input, unless that is a `QeXmlInput` that comes piece by piece, finds out its
/// encoding, converts it to UTF-8 where needed, and reads the prolog; the reader then stands on the root element.
/// Everything it hands out is UTF-8.
///
/// A document that cannot be read, or is not what the caller demanded, throws `QeXmlParseError` with line and column
/// (from 1; the column in bytes) of where the reader stood; after a conversion, those of a lenient reader count from
/// the conversion point. Nothing is rolled back: a node that was not the expected one has been read, and the next call
/// goes on behind it. After an error of syntax the reader can be looked at and destroyed; what a lenient one reads
/// next is unspecified, a conforming one throws the same again. Any operation that stores text can throw
/// `std::bad_alloc`.
///
/// References returned are to the reader's own members and show the last node: their content
/// changes with the next call that scans. Copy what you keep.
///
/// Reading a whole document of n bytes costs O(n) time in all, plus sorting the attributes of each tag, whatever
/// the bytes; what entities and defaults bring counts as read. Memory beyond the input is the largest text, the
/// largest tags of up to nine names (at most 28 times their bytes), and of open elements that declare namespaces at
/// most 8 times the bytes of their tags. Each call costs O(bytes that it scans), and of a name that it is given
/// O(length), though the URI of one that copies a name of the document is O(1) if it is long; accessors are O(1).
/// Declarations of encodings in the midst of a document have a lenient reader convert the rest once more: to at
/// most 16 bytes for each byte of the input, and 64 KiB, in all. One thread at a time; no two readers share
/// anything that changes.
// Exported member by member: most of what is private is a matter of the library alone.
class QeXmlReader {
public:
    enum NodeType {
        ElementStart = 0,  ///< a start tag
        ElementEnd = 1,    ///< an end tag
        EmptyElement = 2,  ///< a tag closed by "/>", start and end at once
        Content = 3,       ///< text up to the next tag; CDATA sections and text around comments included
        NoNode = 4,        ///< nothing was read yet, or the input failed in the midst of a node
        // only for who asks for them (`QeXmlReaderOptions::nodes`); what they hold is the last content
        Comment = 5,
        Instruction = 6,  ///< its data; see `getLastTarget`
        CDATASection = 7,
        EntityReference = 8,  ///< one that was left alone, as written; see `getLastTarget`
        DocumentType = 9      ///< nothing; see `getDocumentType`
    };

    /// The empty name: asks `readElement` for any element.
    TESSIT_API static const QeXmlName NullName;

    /// Reads the stream to its end, into memory of the reader's own. A stream that cannot be read
    /// counts as empty. What the stream or its buffer throws passes through. O(bytes).
    TESSIT_API explicit QeXmlReader(std::istream& in);

    /// Reads a copy of the text. O(length).
    TESSIT_API explicit QeXmlReader(const QeCString& document);

    /// Reads `length` bytes in place: nothing is copied, written, or read outside them. They must stay alive and
    /// unchanged as long as the reader, unless the document had to be converted to UTF-8. A null pointer stands for
    /// no bytes. O(bytes of the prolog); of the whole document where it is converted.
    TESSIT_API QeXmlReader(unsigned char* bytes, unsigned int length);

    /// The same for bytes of any number that are constant.
    TESSIT_API explicit QeXmlReader(std::span<const unsigned char> document);

    /// The same with options. In a conforming reader, the call that reads the first fault throws, as
    /// does each reading call behind it. O(bytes) then: all characters are looked at in advance.
    QeXmlReader(std::istream& in, const QeXmlReaderOptions& options) : QeXmlReader(in, Passed{options}) {}
    QeXmlReader(const QeCString& document, const QeXmlReaderOptions& options)
        : QeXmlReader(document, Passed{options}) {}
    QeXmlReader(unsigned char* bytes, unsigned int length, const QeXmlReaderOptions& options)
        : QeXmlReader(std::span<const unsigned char>(bytes, bytes == nullptr ? 0 : length), Passed{options}) {}
    QeXmlReader(std::span<const unsigned char> document, const QeXmlReaderOptions& options)
        : QeXmlReader(document, Passed{options}) {}

    /// Reads an input of any kind, with options or without: docs/reading.md tells more. What comes piece by piece is
    /// converted so, too; an encoding that is declared inside the root element is refused then, by a lenient reader as
    /// well. O(bytes of the prolog) for those; of others as above. What the input throws passes through.
    explicit QeXmlReader(QeXmlInput input, const QeXmlReaderOptions& options = {})
        : QeXmlReader(std::move(input), Passed{options}) {}

    QeXmlReader(const QeXmlReader&) = delete;
    QeXmlReader& operator=(const QeXmlReader&) = delete;
    TESSIT_API ~QeXmlReader();

    /// @name Demanding what comes next
    ///
    /// Text, and what else is no tag, is passed over in front of the tag; the text is left in
    /// `getLastContent()`. The node that turns out wrong has been consumed when the error is thrown.
    ///
    /// An expected name matches when local name and URI are those of the tag; prefixes do not count. A `QeXmlName`
    /// whose URI is empty stands for the URI that its prefix has inside the tag, the tag's own declarations
    /// included. A name given as a string means what it would mean written in front of the tag that it is held
    /// against: before a start tag without that tag's own declarations (unless its prefix is bound by them alone),
    /// before an end tag with those of the element that closes. It may be a reference that the reader returned:
    /// what it shows at the call counts.
    /// @{

    /// Takes the next tag, which must open an element; else "Couldn't find start tag".
    TESSIT_API void readElementStart();

    /// Takes the next tag, which must open the element of that name; else "Expected
    /// NAME, found NAME". Returns its attributes, as `getLastAttributes()`.
    TESSIT_API const QeXmlAttributeSet& readElementStart(const QeXmlName& name);
    TESSIT_API const QeXmlAttributeSet& readElementStart(const QeCString& qname);

    /// Takes the next tag, which must close an element; else "Couldn't find end tag". An empty-element
    /// tag that was read last, or looked at by `isElementNext`, is its own end.
    TESSIT_API void readElementEnd();

    /// The same, and the name must be that one: `QeXmlName` equality for a name.
    TESSIT_API void readElementEnd(const QeXmlName& name);
    TESSIT_API void readElementEnd(const QeCString& qname);

    /// Takes the text up to the next tag and returns it, as `getLastContent()`; empty when a tag comes at once.
    /// When the next tag was looked at already, the text in front of it is returned and the tag counts as taken.
    TESSIT_API const QeCString& readElementValue();

    /// Whether the next tag opens an element of that name. Scans up to it at most once: it stays pending, and the
    /// next reading call takes it. Right after an empty-element tag nothing is scanned: the answer is about it.
    TESSIT_API bool isElementNext(const QeXmlName& name);
    TESSIT_API bool isElementNext(const QeCString& qname);

    /// Takes a whole element and returns its markup as it stands in the document (as UTF-8), with what was
    /// passed over in front of it. `NullName`, or a string that means the same here, takes any element;
    /// another name than that of the next element throws "Expected NAME, found NAME". The inner markup, up to
    /// the end of the last node in it (a text ends in front of the next tag), is then in `getLastContent()`,
    /// the attributes of the start tag in `getLastAttributes()`.
    /// When the next tag is no start tag it stays pending, and both the result and `getLastContent()` are
    /// empty. A start tag that was pending is written anew by a lenient reader: attributes in the set's order, values
    /// as stored, a space behind the name and behind each value. An empty-element tag is taken without its end, as by
    /// `readElementStart`: `readElementEnd` takes that. Of an element that an entity brought, what stands in
    /// the document is the reference; it comes with the first one only. O(bytes of the element).
    TESSIT_API QeCString readElement(const QeXmlName& name);
    TESSIT_API QeCString readElement(const QeCString& qname);

    /// @}
    /// @name Node by node
    /// @{

    /// Scans the next node, whatever it is; `getLastNodeType()` tells. A lenient reader does not check that tags
    /// pair up. At the end of the input throws "Premature EOF": test `eof()` first.
    void readNextNode() { nodePending || readsApart ? takePendingOrApart() : readNextLenient(); }

    /// Whether the document is exhausted: a tag that `isElementNext` has looked at counts as read, though it
    /// is still to be taken. Outside the root element skips whitespace first, a conforming reader also what is
    /// not delivered; in front of a fault it is false. An input that comes piece by piece is waited for.
    /// O(bytes skipped).
    bool eof() noexcept {
        if (depth == 0) skipSpace();
        return cursor == bufferEnd && isAtEnd();
    }

    NodeType getLastNodeType() const noexcept { return lastNodeType; }

    /// The name of the last tag.
    const QeXmlName& getLastName() const noexcept { return lastName; }

    /// The last text.
    const QeCString& getLastContent() const noexcept { return lastContent; }

    /// The attributes of the last tag that opened an element, declarations among
    /// them, sorted by local name, then by prefix as written.
    const QeXmlAttributeSet& getLastAttributes() const noexcept { return lastAttributes; }

    /// The target of the last instruction, or the name in the last reference.
    TESSIT_API const QeCString& getLastTarget() const noexcept;

    /// What the document type declaration says, once a conforming reader has read it.
    TESSIT_API const QeXmlDocumentType& getDocumentType() const noexcept;

    /// Whether an attribute of the last tag stands there; else it is a declared default. Sorts those once; O(log).
    TESSIT_API bool isSpecified(const QeXmlAttribute& attribute) const;

    /// The references left as written in the value of an attribute of the last tag, if others are expanded. As costly.
    TESSIT_API std::vector<QeXmlLeftReference> getLeftReferences(const QeXmlAttribute& attribute) const;

    /// Whether the reader stands in what an entity brought: an internal one has the reference's place.
    TESSIT_API bool isInEntity() const noexcept;

    /// @}
    /// @name Places
    ///
    /// Spans are good for replacing what they cover in the document. What an internal entity brought stands where its
    /// reference does, what came from outside in its own text. After what a lenient reader converted anew, what came
    /// before is unknown: the present place stands for it; and places rely on one `setExpandAttributeReference` for
    /// all tags. O(bytes since the last place that was asked for), and O(bytes of the node).
    /// @{

    /// Where the last node stands, as written.
    TESSIT_API QeXmlSpan getLastSpan() const;

    /// How many bytes of the text as UTF-8 stand in front of the last node, from the document's true beginning on; of
    /// one that entities brought, in front of the reference. O(1): what a program can keep of each node.
    TESSIT_API std::uint64_t getLastOffset() const;

    /// The position of such an offset; nothing once the text there is gone.
    TESSIT_API std::optional<QeXmlPosition> getPosition(std::uint64_t offset) const;

    /// Where an attribute of the last tag that opened an element stands; nothing for a declared default and, through a
    /// window, once the tag's bytes have gone, as they may have after any later call that scans. Of several that are
    /// written alike, which a lenient reader takes for one, the first name and the last value.
    TESSIT_API std::optional<QeXmlAttributeSpans> getAttributeSpans(const QeXmlAttribute& attribute) const;

    /// The elements that are open, outermost first, as far as a lenient document's tags pair up: an end tag closes the
    /// innermost element. Through a window, those whose tags have gone are there at the outermost 1,024 levels
    /// alone. Also O(bytes of their tags).
    TESSIT_API std::vector<QeXmlOpenElement> getOpenElements() const;

    /// @}
    /// @name Namespaces
    /// @{

    /// Binds a prefix for the element that is open, until it ends; before the first start tag, for the whole
    /// document. A start tag that `isElementNext` has looked at has opened its element. Names read from then on
    /// can resolve through it, unless the scope binds the prefix already. As costly and as safe as
    /// `QeXmlNamespaceStack::addNamespace`.
    void addNamespace(const QeXmlNamespace& ns) { namespaceStack.addNamespace(ns); }

    /// The URI that the prefix is bound to here, or the empty string. Valid until the next call
    /// that scans or binds. O(length), on average, however many bindings are in force.
    const QeCString& getURIForPrefix(const QeCString& prefix) const noexcept {
        return namespaceStack.getURIForPrefix(prefix);
    }

    /// The prefix of the first binding found for the URI, or the empty string (also the answer for a default
    /// namespace). As valid and as costly as `getURIForPrefix`.
    const QeCString& getPrefixForURI(const QeCString& uri) const noexcept {
        return namespaceStack.getPrefixForURI(uri);
    }

    /// @}
    /// @name The XML declaration
    /// @{

    /// The version; empty when there is no declaration.
    const QeCString& getVersion() const noexcept { return version; }

    /// The encoding that the options name, or that was declared, or else detected: "UTF-8" without a mark or
    /// declaration, empty when a lenient reader finds the first bytes of no encoding.
    const QeCString& getEncoding() const noexcept { return encoding; }

    /// "yes" or "no"; empty when not declared.
    const QeCString& getStandalone() const noexcept { return standalone; }

    bool hasEncoding() const noexcept { return encodingDeclared; }
    bool hasStandalone() const noexcept { return standaloneDeclared; }

    /// @}
    /// @name The input
    /// @{

    /// Goes on with another document, as if this reader were new, with the same options and settings; what was left of
    /// the last one is not read. Keeps its memory: between documents that come piece by piece and are alike, nothing is
    /// allocated but what the input, a converter of ICU and a document type are made of. As a constructor, it throws
    /// what the prolog breaks; the reader can be reset again then, and reads nothing more before that if the input
    /// could not be read.
    TESSIT_API void reset(QeXmlInput input);

    /// How many bytes of the input were taken in: all at once, unless it comes piece by piece.
    TESSIT_API std::uint64_t getBytesRead() const noexcept;

    /// How many there are, where that is known.
    TESSIT_API std::optional<std::uint64_t> getInputSize() const noexcept;

    /// @}
    /// @name Options
    /// @{

    /// Whether references in attribute values are replaced by what they stand for
    /// (the default) or left as written. Applies to tags scanned from then on.
    bool getExpandAttributeReference() const noexcept { return expandAttributeReference; }
    void setExpandAttributeReference(bool expand) noexcept {
        expandAttributeReference = expand;
        if (notesOpen) noteExpansion();
    }

    /// Whether each end tag must be that of the innermost open element: local name and URI are the same. If it
    /// is not, the call that reads it throws "Unmatched start tag for NAME". To be set before the first tag is
    /// read; not by default, and always in a conforming reader, by its own rule. O(1). Reading then keeps the
    /// names of the open elements, and a byte more for each.
    TESSIT_API void setMatchTags(bool match) noexcept;
    TESSIT_API bool getMatchTags() const noexcept;

    /// The innermost open element as its start tag names it, prefix included; empty when
    /// none is open, or tags are not matched. O(length).
    TESSIT_API QeCString getOpenElement() const;

    /// Throws `QeXmlParseError` with this text and the reader's present position;
    /// for callers who find the document wrong themselves. O(bytes read since the last error).
    [[noreturn]] TESSIT_API void err(const QeCString& message) const;

    /// The same with the position, in the document, of what was found wrong, which may be long past. Its path is that
    /// of the elements that are open there, as long as the reader has all of the document up to there: none once a
    /// window has moved. O(bytes up to there).
    [[noreturn]] TESSIT_API void err(const QeCString& message, const QeXmlPosition& where) const;

    /// @}

private:
    struct Engine;
    struct ExpectedName;
    class RawCopy;
    using Passed = QeXmlReaderOptions::Passed;
    TESSIT_API QeXmlReader(std::istream& in, const Passed& passed);
    TESSIT_API QeXmlReader(const QeCString& document, const Passed& passed);
    TESSIT_API QeXmlReader(std::span<const unsigned char> document, const Passed& passed);
    TESSIT_API QeXmlReader(QeXmlInput&& input, const Passed& passed);
    void open(std::string_view document);
    void open(QeXmlInput&& input);
    void forget();
    TESSIT_API void readNextLenient();
    TESSIT_API void takePendingOrApart();
    void readNextConforming();
    TESSIT_API bool isAtEnd() noexcept;
    TESSIT_API void noteExpansion() noexcept;
    TESSIT_API void skipSpace() noexcept;

    // These stay where they are in every later library: programs have code inlined that relies on it.
    const char* cursor = nullptr;       // the next byte to be read
    const char* bufferStart = nullptr;  // lines and columns count from here
    const char* bufferEnd = nullptr;    // one past the last byte
    QeCString ownedDocument;            // what the buffer is, unless it is the caller's
    std::ptrdiff_t depth = 0;           // start tags less end tags
    QeXmlNamespaceStack namespaceStack;
    QeCString encoding, version, standalone;
    bool encodingDeclared = false, standaloneDeclared = false;
    bool notesOpen = false;  // where a lenient reader matches tags, or reads through a window
    QeXmlName lastName;
    QeCString lastContent;
    QeXmlAttributeSet lastAttributes;
    NodeType lastNodeType = NoNode;
    bool nodePending = false;  // the last node was scanned ahead and is to be delivered once more
    bool expandAttributeReference = true;
    bool readsApart = false;   // by the conforming rules, with limits, or with a record
    bool matchesTags = false;  // in a lenient reader
    std::unique_ptr<Engine> engine;
};
