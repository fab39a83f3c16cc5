#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include <corvel/c_string.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_name.h>
#include <tessit/model/xml_namespace_stack.h>

namespace tessit {
class PlainAttributes;
}  // namespace tessit

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
    void addNamespace(const QeXmlNamespace& ns) { addBinding(ns.getPrefix(), ns.getURI(), &ns.getURI()); }

    /// @}
    /// @name Layout
    /// @{

    /// Writes a line feed; what is written next is indented.
    void writeNewLine();

    /// Writes the indentation, space by space, if nothing has been written since
    /// `writeNewLine`. O(spaces).
    void writeIndentChars() {
        if (atLineStart) indent();
    }

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
    // Storage that is kept from call to call. It is taken out while in use, so that
    // a sink may call its writer. Copies of a writer start without.
    struct Storage {
        QeCString tag;
        QeCString bytes;
        QeXmlAttributeSet completedAttributes;
        QeXmlAttributeSet typeAttribute;
        std::vector<const QeXmlAttribute*> positions;
        std::vector<const QeXmlAttribute*> completedPositions;
        std::vector<const QeXmlNamespace*> bindings;
    };

    enum class Tag : unsigned char { Start, End };

    class Output;
    class ScopeRollback;

    TESSIT_NO_EXPORT QeCString* ownText();
    TESSIT_NO_EXPORT static char* putString(char* to, const QeCString& text) noexcept;
    TESSIT_NO_EXPORT static char* putName(char* to, const QeCString& prefix, const QeCString& localName) noexcept;
    TESSIT_NO_EXPORT static char* putAttribute(char* to, const QeCString& prefix, const QeCString& localName,
                                               const QeCString& value, bool escape) noexcept;
    template <typename Escapes>
    TESSIT_NO_EXPORT static char* putEscaped(char* to, const QeCString& text) noexcept;

    void indent();
    TESSIT_NO_EXPORT void writeRepeated(char byte, int count);
    TESSIT_NO_EXPORT void writeEscapedText(const QeCString& text);
    TESSIT_NO_EXPORT void writeLongText(const QeCString& text);
    TESSIT_NO_EXPORT bool appendInPlace(const QeCString& text);
    TESSIT_NO_EXPORT void writeTag(Tag kind, const QeXmlName& name);
    TESSIT_NO_EXPORT void writeStartInPlace(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty);
    TESSIT_NO_EXPORT void writeStartToSink(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty);
    template <typename Write>
    TESSIT_NO_EXPORT void withBindings(const QeXmlAttributeSet& attributes, const Write& write);
    TESSIT_NO_EXPORT void putStart(const QeXmlName& name, const QeXmlAttributeSet& attributes, bool empty);
    TESSIT_NO_EXPORT void writeAttributeSet(const QeXmlAttributeSet& attributes);
    TESSIT_NO_EXPORT void writeQualifiedAttribute(const QeCString& prefix, const QeCString& localName,
                                                  const QeCString& value, bool escape);
    TESSIT_NO_EXPORT void writeToSinkInPieces(const char* bytes, std::size_t length);

    TESSIT_NO_EXPORT bool addNamespaceToScopeIfNecessary(const QeXmlNamespace& ns);
    TESSIT_NO_EXPORT bool addNamespaceToScopeIfNecessary(const QeCString& prefix, const QeCString& uri,
                                                         const QeCString* shared);
    void addBinding(const QeCString& prefix, const QeCString& uri, const QeCString* shared);
    TESSIT_NO_EXPORT void popScope() noexcept;
    TESSIT_NO_EXPORT const QeXmlNamespace* findPrefixed(const QeCString& uri);
    TESSIT_NO_EXPORT const QeXmlNamespace* findDefault(const QeCString& uri) const;
    TESSIT_NO_EXPORT bool addNamespacesOf(const QeXmlAttributeSet& attributes);
    TESSIT_NO_EXPORT static bool isSurelyInOrder(const QeXmlAttributeSet& attributes) noexcept;
    TESSIT_NO_EXPORT static bool areLocalNamesInOrder(const QeXmlAttributeSet& attributes) noexcept;
    TESSIT_NO_EXPORT static void setValueAt(QeXmlAttributeSet& set, const QeXmlAttribute* position,
                                            const QeCString& value);
    TESSIT_NO_EXPORT std::span<const QeXmlNamespace> innermostBindings() const noexcept;
    TESSIT_NO_EXPORT bool declaresInnermostBindings(const tessit::PlainAttributes& declarations) const;
    TESSIT_NO_EXPORT const QeXmlAttributeSet& getCompleteAttributeSet(const QeXmlAttributeSet& attributes,
                                                                      QeXmlAttributeSet& completed);
    TESSIT_NO_EXPORT void completeInOrder(const QeXmlAttributeSet& attributes,
                                          const tessit::PlainAttributes& declarations, QeXmlAttributeSet& completed);
    TESSIT_NO_EXPORT void addMissingDeclarations(const QeXmlAttributeSet& attributes,
                                                 const tessit::PlainAttributes& declarations,
                                                 QeXmlAttributeSet& completed);
    TESSIT_NO_EXPORT void completeOutOfOrder(const QeXmlAttributeSet& attributes,
                                             const tessit::PlainAttributes& declarations, QeXmlAttributeSet& completed);

    int currentIndent = 0;
    int indentSize = 2;
    bool atLineStart = false;
    QeXmlNamespaceStack namespaces;             // one scope for the document, one for each open element
    const QeXmlNamespace* lastFound = nullptr;  // where the last URI looked for is bound, until bindings change
    Storage spare;
};
