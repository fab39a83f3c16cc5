#pragma once

#include <memory>

#include <corvel/c_string.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_name.h>
#include <tessit/model/xml_namespace_stack.h>

/// Writes markup: elements with their attributes, text, namespace declarations,
/// escapes and, where asked for, indentation. The bytes go to a sink, which a
/// derived class supplies; `QeXmlStringWriter` collects them in a string.
///
/// Strings are UTF-8 by convention, and their bytes are written as they are.
/// Nothing is checked: not whether names are names, nor whether text is free of
/// what XML forbids, nor whether an end has the name of its start. Line breaks
/// and indentation come only where the caller asks for them. The writer declares
/// the namespaces of elements and attributes itself where it holds that they are
/// not in force; its rules are at `writeElementStart`.
///
/// The writer raises no errors of its own. What a sink operation throws passes
/// through, and so does `std::bad_alloc`; the call then counts as not made, and
/// can be made again: an element whose start failed is not open, one whose end
/// failed still is. Bytes that went to the sink before are not taken back.
///
/// Ordinary writes allocate nothing in the long run. A copy has indentation and
/// bindings of its own and shares nothing that changes; it is O(bytes of the bindings). Costs are
/// those of the writer, besides what the sink operations take; the operations of the
/// layout are O(1), unless they say otherwise. One thread at a time.
class TESSIT_API QeXmlWriter {
public:
    static const QeCString StartTag;          ///< "<"
    static const QeCString EndTag;            ///< ">"
    static const QeCString StartEndTag;       ///< "</"
    static const QeCString UnpairedTag;       ///< "/>"
    static const QeCString EqualToAndQuotes;  ///< an equals sign and a double quote
    static const QeCString Quotes;            ///< one double quote
    static const QeCString MarkupLt;          ///< "&lt;"
    static const QeCString MarkupGt;          ///< "&gt;"
    static const QeCString MarkupAmpersand;   ///< "&amp;"
    static const QeCString MarkupQuotes;      ///< "&quot;"
    static const QeCString MarkupApos;        ///< "&apos;"
    static const QeCString MarkupCR;          ///< "&#xD;"
    static const QeCString XmlNamespaceTag;   ///< "xmlns"
    static const QeCString TrueValue;         ///< "1"
    static const QeCString FalseValue;        ///< "0"
    static const QeCString Blank;             ///< one space
    static const QeCString WhiteSpace;        ///< one space
    static const QeCString Colon;             ///< ":"
    static const QeCString Newline;           ///< one line feed

    /// No indentation, steps of two spaces, and no namespace bound.
    QeXmlWriter();
    QeXmlWriter(const QeXmlWriter& other);
    QeXmlWriter& operator=(const QeXmlWriter& other);
    virtual ~QeXmlWriter();

    /// @name Elements and text
    ///
    /// Whatever these write first is preceded by the indentation, when it stands at
    /// the start of a line that `writeNewLine` has begun.
    /// @{

    /// Writes a start tag, or with `empty` an empty-element tag, and opens the
    /// element's scope. Attributes come in the set's order, their values escaped as
    /// `writeAttribute` does it. The set must not change during the call.
    ///
    /// Declarations that the set holds are always written. Others are added, and
    /// come in the order of their local names among the attributes, by these rules:
    ///
    /// - A name with a prefix needs a declaration unless some prefix, not
    ///   necessarily this one, is bound to its URI.
    /// - A name without a prefix in a namespace needs a default declaration unless
    ///   that URI is the default namespace in force.
    /// - A name in no namespace needs none; a default namespace in force is not
    ///   undeclared for it.
    /// - An attribute whose name is in no namespace counts as a declaration of its
    ///   local name as a prefix, bound to its value, unless some prefix is bound to
    ///   that value. Nothing more is written for it; but where a prefix of that name
    ///   is to be declared in the same tag, the attribute's value gives way to the
    ///   prefix's URI, unless the attribute's own binding comes later in the tag.
    ///
    /// Sink calls: "<" and the name through the string slot, each attribute through
    /// the bytes slot, ">" or "/>" through the string slot. O(bytes written), plus
    /// a lookup of each name's namespace, O(length of its URI) on average, or O(1) for
    /// a long URI that names share as copies do; and, where something has to be added,
    /// the copying of the set of n attributes and O(log n) comparisons for each name. In
    /// a set whose local names have lost their order, each declaration added costs O(n).
    void writeElementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty);

    /// Writes an end tag, in one call of the string slot, and closes the innermost
    /// scope. The name is not compared with that of the start tag. Without an open
    /// element the tag is written all the same. O(bytes written), plus the bindings of
    /// the scope.
    void writeElementEnd(const QeXmlName& name);

    /// Writes text. With `escape`, "&", "<", ">" and the carriage return become
    /// references, and the result goes through the bytes slot in one call (past
    /// 4 GiB, in several). Without it, `text` itself goes through the string slot:
    /// for markup that is ready, as comments or a document type. O(bytes).
    void write(const QeCString& text, bool escape);

    /// Writes ` name="value"`, in one call of the bytes slot; for tags that the
    /// caller puts together with `write`. With `escape`, quotes, apostrophes, "<",
    /// ">" and "&" in the value become references, but an "&" that begins one of
    /// the five predefined references stays. No namespace is declared. O(bytes).
    void writeAttribute(const QeCString& name, const QeCString& value, bool escape);
    void writeAttribute(const QeXmlName& name, const QeCString& value, bool escape);

    /// Writes a whole element and a line feed: start tag, escaped content, end tag;
    /// or an empty-element tag when there is no content. With `withType` the start
    /// tag has the attribute `xsi:type` with the value `typeName`; a prefix in that
    /// value is not declared. A string as name is a local name in no namespace. Costs
    /// what its parts do.
    void writeSimpleElement(const QeXmlName& name, const QeCString& content, const QeCString& typeName, bool withType);
    void writeSimpleElement(const QeCString& name, const QeCString& content, const QeCString& typeName, bool withType);

    /// Binds a prefix for the element that is open, until it ends; before the first
    /// element, for the whole document. Nothing is written: the writer takes the
    /// namespace for declared from then on. Costs and guarantees are those of
    /// `QeXmlNamespaceStack::addNamespace`.
    void addNamespace(const QeXmlNamespace& ns);

    /// @}
    /// @name Layout
    /// @{

    /// Writes a line feed; what is written next is indented.
    void writeNewLine();

    /// Writes the indentation, space by space, if nothing has been written since
    /// `writeNewLine`. O(spaces).
    void writeIndentChars();

    /// The number of spaces that lines begin with; a negative one counts as 0.
    void setCurrentIndent(int spaces) noexcept;
    int getCurrentIndent() const noexcept { return currentIndent; }

    /// The number of spaces that one step is; a negative one counts as 0. Returns the number before.
    int setSizeOfIndent(int spaces) noexcept;
    int getSizeOfIndent() const noexcept { return indentSize; }

    /// One step more; never past the largest `int`.
    void incrementIndent() noexcept;

    /// One step less; never below 0.
    void decrementIndent() noexcept;

    /// @}
    /// @name The sink: what a derived class supplies
    ///
    /// Who overrides some overloads of `writeToSink` hides the others: bring them
    /// back with `using QeXmlWriter::writeToSink;`.
    /// @{

    /// Appends one byte. Line feeds and indentation come this way.
    virtual void writeToSink(char byte) = 0;

protected:
    /// Appends `length` bytes, which live during the call. Attributes and escaped
    /// text come this way. Unless overridden, passes a string of these bytes on. O(bytes).
    virtual void writeToSink(const char* bytes, unsigned length);

public:
    /// Appends a string. Tags and text that is not escaped come this way.
    virtual void writeToSink(const QeCString& text) = 0;

    /// Makes what was written so far visible in the sink's result. The writer never calls it.
    virtual void flush() = 0;

    /// @}

private:
    friend class QeXmlStringWriter;  // has the engine put bytes into its text

    class TESSIT_NO_EXPORT Engine;

    int currentIndent = 0;
    int indentSize = 2;
    bool atLineStart = false;
    QeXmlNamespaceStack namespaces;  // one scope for the document, one for each open element
    std::unique_ptr<Engine> engine;
};
