#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string_view>
#include <vector>

#include <corvel/c_string.h>
#include <tessit/errors/xml_error.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_name.h>
#include <tessit/model/xml_namespace_stack.h>

namespace tessit {
class OpenElements;
}  // namespace tessit

/// A pull reader: hands out a document one node at a time, and lets the caller
/// demand the elements it expects.
///
/// A constructor takes in the whole input, finds out its encoding, converts it to
/// UTF-8 where needed, and reads the prolog; the reader then stands on the root
/// element. Everything it hands out is UTF-8.
///
/// What cannot be read, or is not what the caller demanded, throws
/// `QeXmlParseError` with line and column (from 1; the column in bytes) of where
/// the reader stood; after a conversion they count from the conversion point. The
/// reader can then be looked at and destroyed, but not resumed: nothing is rolled
/// back. Any operation that stores text can throw `std::bad_alloc`.
///
/// References returned are to the reader's own members and show the last node:
/// their content changes with the next call that scans. Copy what you keep.
///
/// Reading a whole document of n bytes costs O(n) time in all, plus sorting the
/// attributes of each tag, whatever the bytes; memory beyond the input is the
/// largest text, the largest tags of up to nine names, and a few bytes per open
/// element that declares namespaces. Each call costs O(bytes that it scans), and
/// of a name that it is given O(length), though the URI of one that copies a name of
/// the document is O(1) if it is long; accessors are O(1). An XML declaration in the
/// midst of a document can have all that is left converted once more: all conversions
/// together produce at most 16 bytes for each byte of the input, and 64 KiB. One
/// thread at a time; no two readers share anything that changes.
//
// Exported member by member: most of what is private is a matter of the library alone.
class QeXmlReader {
public:
    enum NodeType {
        ElementStart = 0,  ///< a start tag
        ElementEnd = 1,    ///< an end tag
        EmptyElement = 2,  ///< a tag closed by "/>", start and end at once
        Content = 3,       ///< text up to the next tag; CDATA sections and text around comments included
        NoNode = 4         ///< nothing was read yet
    };

    /// The empty name: asks `readElement` for any element.
    TESSIT_API static const QeXmlName NullName;

    /// Reads the stream to its end, into memory of the reader's own. A stream that
    /// cannot be read counts as empty. What the stream or its buffer throws passes through.
    /// O(bytes).
    TESSIT_API explicit QeXmlReader(std::istream& in);

    /// Reads a copy of the text. O(length).
    TESSIT_API explicit QeXmlReader(const QeCString& document);

    /// Reads `length` bytes in place: nothing is copied, written, or read outside
    /// them. They must stay alive and unchanged as long as the reader, unless the
    /// document had to be converted to UTF-8. A null pointer stands for no bytes.
    /// O(bytes of the prolog); of the whole document where it is converted.
    TESSIT_API QeXmlReader(unsigned char* bytes, unsigned int length);

    /// The same for bytes of any number that are constant.
    TESSIT_API explicit QeXmlReader(std::span<const unsigned char> document);

    QeXmlReader(const QeXmlReader&) = delete;
    QeXmlReader& operator=(const QeXmlReader&) = delete;
    TESSIT_API ~QeXmlReader();

    /// @name Demanding what comes next
    ///
    /// Text, comments and processing instructions in front of the tag are passed
    /// over; the text is left in `getLastContent()`. The node that turns out wrong
    /// has been consumed when the error is thrown.
    ///
    /// An expected name matches when local name and URI are those of the tag;
    /// prefixes do not count. A `QeXmlName` whose URI is empty stands for the URI
    /// that its prefix has inside the tag, the tag's own declarations included. A
    /// name given as a string means what it would mean written in front of the tag
    /// that it is held against: before a start tag without that tag's own
    /// declarations (unless its prefix is bound by them alone), before an end tag
    /// with those of the element that closes. It may be a reference that the reader
    /// returned: what it shows at the call counts.
    /// @{

    /// Takes the next tag, which must open an element; else "Couldn't find start tag".
    TESSIT_API void readElementStart();

    /// Takes the next tag, which must open the element of that name; else "Expected
    /// NAME, found NAME". Returns its attributes, as `getLastAttributes()`.
    TESSIT_API const QeXmlAttributeSet& readElementStart(const QeXmlName& name);
    TESSIT_API const QeXmlAttributeSet& readElementStart(const QeCString& qname);

    /// Takes the next tag, which must close an element; else "Couldn't find end
    /// tag". Right after an empty-element tag, that tag is its own end.
    TESSIT_API void readElementEnd();

    /// The same, and the name must be that one: `QeXmlName` equality for a name.
    TESSIT_API void readElementEnd(const QeXmlName& name);
    TESSIT_API void readElementEnd(const QeCString& qname);

    /// Takes the text up to the next tag and returns it, as `getLastContent()`;
    /// empty when a tag comes at once. When the next tag was looked at already, the
    /// text in front of it is returned and the tag counts as taken.
    TESSIT_API const QeCString& readElementValue();

    /// Whether the next tag opens an element of that name. Scans up to that tag at
    /// most once: the tag stays pending, and the next reading call takes it. Right
    /// after an empty-element tag nothing is scanned, and the answer is about it.
    TESSIT_API bool isElementNext(const QeXmlName& name);
    TESSIT_API bool isElementNext(const QeCString& qname);

    /// Takes a whole element and returns its markup as it stands in the document
    /// (as UTF-8), with what was passed over in front of it. `NullName`, or a string
    /// that means the same here, takes any element; another name than that of the
    /// next element throws "Expected NAME, found NAME". The inner markup is then in
    /// `getLastContent()`, the attributes of the start tag in `getLastAttributes()`.
    ///
    /// When the next tag is no start tag it stays pending, and both the result and
    /// `getLastContent()` are empty.
    /// A start tag that was pending is written anew: attributes in the set's order,
    /// values as stored, a space behind the name and behind each value.
    /// An empty-element tag is taken without its end, as by `readElementStart`:
    /// `readElementEnd` takes that. O(bytes of the element).
    TESSIT_API QeCString readElement(const QeXmlName& name);
    TESSIT_API QeCString readElement(const QeCString& qname);

    /// @}
    /// @name Node by node
    /// @{

    /// Scans the next node, whatever it is; `getLastNodeType()` tells. Tags are not
    /// checked to pair up. At the end of the input throws "Premature EOF": test
    /// `eof()` first.
    TESSIT_API void readNextNode();

    /// Whether the document is exhausted. Outside the root element skips whitespace
    /// first: O(bytes skipped).
    bool eof() noexcept {
        if (depth == 0) readS();
        return cursor == bufferEnd;
    }

    NodeType getLastNodeType() const noexcept { return lastNodeType; }

    /// The name of the last tag.
    const QeXmlName& getLastName() const noexcept { return lastName; }

    /// The last text.
    const QeCString& getLastContent() const noexcept { return lastContent; }

    /// The attributes of the last tag that opened an element, declarations among
    /// them, sorted by local name, then by prefix as written.
    const QeXmlAttributeSet& getLastAttributes() const noexcept { return lastAttributes; }

    /// @}
    /// @name Namespaces
    /// @{

    /// Binds a prefix for the element that is open, until it ends; before the first
    /// start tag, for the whole document. Names read from then on can resolve
    /// through it, unless the scope binds the prefix already. Costs and guarantees are
    /// those of `QeXmlNamespaceStack::addNamespace`.
    void addNamespace(const QeXmlNamespace& ns) { namespaceStack.addNamespace(ns); }

    /// The URI that the prefix is bound to here, or the empty string. Valid until
    /// the next call that scans or binds. O(length), on average, however many bindings
    /// are in force.
    const QeCString& getURIForPrefix(const QeCString& prefix) const noexcept {
        return namespaceStack.getURIForPrefix(prefix);
    }

    /// The prefix of the first binding found for the URI, or the empty string (also
    /// the answer for a default namespace). As valid and as costly as `getURIForPrefix`.
    const QeCString& getPrefixForURI(const QeCString& uri) const noexcept {
        return namespaceStack.getPrefixForURI(uri);
    }

    /// @}
    /// @name The XML declaration
    /// @{

    /// The version; empty when there is no declaration.
    const QeCString& getVersion() const noexcept { return version; }

    /// The encoding that was declared, or else detected: "UTF-8" without a mark or
    /// declaration, empty when the first bytes are those of no encoding.
    const QeCString& getEncoding() const noexcept { return encoding; }

    /// "yes" or "no"; empty when not declared.
    const QeCString& getStandalone() const noexcept { return standalone; }

    bool hasEncoding() const noexcept { return encodingDeclared; }
    bool hasStandalone() const noexcept { return standaloneDeclared; }

    /// @}
    /// @name Options
    /// @{

    /// Whether references in attribute values are replaced by what they stand for
    /// (the default) or left as written. Applies to tags scanned from then on.
    bool getExpandAttributeReference() const noexcept { return expandAttributeReference; }
    void setExpandAttributeReference(bool expand) noexcept { expandAttributeReference = expand; }

    /// Throws `QeXmlParseError` with this text and the reader's present position;
    /// for callers who find the document wrong themselves. O(bytes read since the last error).
    [[noreturn]] TESSIT_API void err(const QeCString& message) const;

    /// @}

private:
    friend class tessit::OpenElements;

    // A name as written. `localStart` is 0 without a colon, else the position behind the first.
    struct RawName {
        const char* data;
        std::size_t length;
        std::size_t localStart;

        std::string_view whole() const noexcept { return {data, length}; }
        std::string_view local() const noexcept { return {data + localStart, length - localStart}; }
        std::string_view prefix() const noexcept { return {data, localStart == 0 ? 0 : localStart - 1}; }
    };

    // An attribute as scanned. A value with references was expanded into
    // `valueScratch`, which may still move: `value` is a null view then, and
    // `expanded` says where the value stands there.
    struct ScratchRange {
        std::size_t start = 0;
        std::size_t length = 0;
    };
    struct RawAttribute {
        RawName name;
        std::string_view value;
        ScratchRange expanded;
    };

    // An attribute in the order of the set; `key` is the beginning of its local name.
    struct Ordered {
        std::uint64_t key;
        RawAttribute* attribute;
    };

    // What a name in the last-node members was written from: a name that is
    // there already is not written again. Empty raw bytes: not known.
    struct WrittenName {
        std::string_view raw;
        const QeXmlNamespace* binding = nullptr;
        std::uint64_t state = 0;
    };

    // The attributes of an earlier tag as they were written, and the slots that they
    // went to. Where the next tag of that name has the same ones in the same order,
    // as most have, names are only compared, and values go to the slots at once.
    struct TagShape {
        struct Attribute {
            RawName name;
            std::size_t slot;
        };
        std::vector<Attribute> attributes;   // in the order of the document; no declarations
        std::vector<WrittenName> written;    // by slot
        QeSlotArray<QeXmlAttribute> parked;  // the slots, unless `lastAttributes` has them
        std::uint64_t state = 0;             // of the namespace stack, when the slots were written
        unsigned pause = 0;                  // of so many tags, none is expected to be like this one
        unsigned lastPause = 0;              // grows with each tag that turned out different
        bool isInSlots = false;              // whether they have the names of `attributes`

        void forget() noexcept {
            attributes.clear();
            written.clear();
            isInSlots = false;
        }
    };

    // A prefix of up to seven bytes with its length, and the binding it has in one state of the namespace stack.
    struct CachedPrefix {
        std::uint64_t key = ~std::uint64_t{0};
        std::uint64_t state = 0;
        const QeXmlNamespace* binding = nullptr;
    };

    // The line feeds in front of a place in the buffer.
    struct LineCount {
        const char* upTo = nullptr;
        const char* lineStart = nullptr;
        std::size_t lines = 0;
    };

    struct ExpectedName;
    class RawCopy;

    // input.cpp
    void takeInput(std::string_view document);
    void readAndProcessBOM();
    void declareEncoding(const QeCString& name);
    void transcodeDocument(const QeCString& name);
    void replaceDocument(QeCString&& converted);
    QeCString transcode8859_1() const;
    QeCString transcodeUTF16BE() const;
    QeCString transcodeUTF16LE() const;
    QeCString transcodeOther(const QeCString& name) const;
    const LineCount& countLines() const;
    [[noreturn]] void raiseTranscoding(const char* reason) const;
    [[noreturn]] void raise(const char* message) const;
    [[noreturn]] void raiseWith(const char* message, std::string_view found) const;
    [[noreturn]] TESSIT_API void raiseEnd();
    char rd() {
        if (cursor == bufferEnd) raiseEnd();
        return *cursor++;
    }
    std::string_view rd(std::size_t count);

    // prolog.cpp
    void readDocument();
    void readProlog();
    void readPIOrXmlDecl();
    void readXmlDecl();
    void readEncodingDecl();
    void readStandaloneDecl();
    std::string_view readPseudoValue();
    void skipInstruction();
    void readDocTypeDecl();
    void readComment();
    void readCDATA();

    // scanner.cpp
    void readStartTag();
    void readEndTag();
    bool takeLastNameAgain() noexcept;
    void closeStartTag(const RawName& name);
    bool readIntoSlots();
    bool passExpectedName(const RawName& expected) noexcept;
    bool readValueInto(QeCString& value);
    bool missShapeAt(const char* start) noexcept;
    void readAttributes();
    void readAttribute();
    void readValue(char quote, RawAttribute& attribute);
    void expandValue(QeCString& target, const char* start, char quote);
    void scanContent();
    bool readShortContent();
    void readContentPieces();
    void appendText();
    bool readMarkupInContent();
    RawName readName();
    RawName readLongName();
    RawName readNameSlowly(const char* from, std::size_t localStart);
    const char* passCharacter(const char* at, std::uint32_t& codePoint);
    TESSIT_API void readS() noexcept;
    std::string_view readReference(char (&encoded)[4]);
    std::string_view readNumericReference(std::string_view body, char (&encoded)[4]) const;

    // names.cpp
    void addAttribute(const RawAttribute& attribute);
    void declareNamespace(const RawAttribute& attribute);
    std::string_view valueOf(const RawAttribute& attribute) const noexcept;
    TagShape* shapeNumber(std::size_t number);
    void expectShapeOf(const RawName& element);
    bool expectsShape() noexcept;
    void noteMiss() noexcept;
    void fixupAttributes();
    std::span<Ordered> putInOrder(std::span<Ordered> ordered);
    void writeAttributes(std::span<const Ordered> ordered);
    void openSlots(std::size_t count);
    void writeAttribute(std::size_t slot, const RawAttribute& attribute);
    void learnShape(std::span<const Ordered> ordered);
    void writeElementName(const RawName& name);
    void writeName(QeXmlName& name, WrittenName& written, const RawName& raw, const QeXmlNamespace* binding);
    void writeLocalName(QeXmlName& name, const RawName& raw);
    const QeXmlNamespace* bindingFor(std::string_view prefix) noexcept;
    void closeScope();
    void forgetWrittenNames() noexcept;
    void forgetSlots() noexcept;

    // pull.cpp
    const QeXmlName& keepExpected(const QeXmlName& name);
    const QeCString& keepExpected(const QeCString& qname);
    void takeNextNode();
    void lookAhead();
    bool opensElement() const noexcept { return lastNodeType == ElementStart || lastNodeType == EmptyElement; }
    const QeCString& uriInsideTag(std::string_view prefix) const noexcept;
    bool matchesStart(const ExpectedName& expected);
    bool matchesEnd(const ExpectedName& expected);
    template <typename Name>
    const QeXmlAttributeSet& demandStart(const Name& name);
    template <typename Name>
    void demandEnd(const Name& name);
    template <typename Name>
    bool startsNext(const Name& name);
    const QeCString& uriOfExpected(const ExpectedName& expected) const noexcept;
    bool asksForAny(const ExpectedName& expected) const noexcept;
    QeCString readRawElement(const ExpectedName& expected);
    std::size_t skipToMatchingEnd(const RawCopy& copy);
    QeCString rebuildTag() const;
    [[noreturn]] void raiseMismatch(const ExpectedName& expected) const;

    const char* cursor = nullptr;       // the next byte to be read
    const char* bufferStart = nullptr;  // lines and columns count from here
    const char* bufferEnd = nullptr;    // one past the last byte
    QeCString ownedDocument;            // what the buffer is, unless it is the caller's
    std::ptrdiff_t depth = 0;           // start tags less end tags
    QeXmlNamespaceStack namespaceStack;
    QeCString encoding;
    QeCString version;
    QeCString standalone;
    bool encodingDeclared = false;
    bool standaloneDeclared = false;
    QeXmlName lastName;
    QeCString lastContent;
    QeXmlAttributeSet lastAttributes;
    NodeType lastNodeType = NoNode;
    bool nodePending = false;  // the last node was scanned ahead and is to be delivered once more
    bool expandAttributeReference = true;
    mutable LineCount counted;  // up to the last error

    std::uint64_t conversionAllowance = 0;  // bytes that conversions may still produce

    // The bindings of the element that the last tag closed: names in front of that
    // tag still resolve with them, the caller's lookups no longer.
    QeXmlNamespaceStack closedScope;

    // Working storage of a tag, kept between tags so that it is allocated once.
    std::vector<RawAttribute> rawAttributes;
    std::vector<Ordered> manyOrdered;
    QeCString valueScratch;

    // What the tags that are read are expected to hold, by the name of the element;
    // `shape` is that of the last tag with attributes.
    static constexpr std::size_t ShapeCount = 8;
    TagShape firstShape;           // of tags that are the first of their name
    std::uint32_t shapesSeen = 0;  // a bit each
    std::vector<TagShape> shapes;
    TagShape* shape = nullptr;

    WrittenName lastNameWritten;
    CachedPrefix prefixCache[16];
    QeXmlName expectedName;                        // what the caller demands; working storage of one call
    RawCopy* rawCopy = nullptr;                    // the copy that `readElement` is making
    tessit::OpenElements* openElements = nullptr;  // the names that the SAX parser keeps of this document
};
