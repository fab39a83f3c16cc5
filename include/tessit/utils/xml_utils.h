#pragma once

#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_name.h>

class QeXmlReader;

/// Helpers and named constants, all static.
///
/// Three bytes count as whitespace here: space, line feed and tab. A carriage
/// return does not.
class TESSIT_API QeXmlUtils {
public:
    static const QeCString Blank;       ///< one space
    static const QeCString Newline;     ///< one line feed
    static const QeCString Tab;         ///< one tab
    static const QeCString WhiteSpace;  ///< space, line feed, tab
    static const QeCString EmptyString;
    static const QeCString Colon;
    static const QeCString Hypen;   ///< "-"; kept for its users, like the next
    static const QeCString Hyphen;  ///< "-"
    static const QeCString Minus;
    static const QeCString Plus;
    static const QeCString TimeSeparator;  ///< "T", between date and time
    static const QeCString UTimeZone;      ///< "Z", universal time
    static const QeCString TZD;            ///< the bytes that can open a time zone: "Z+-"
    static const QeCString ISO8601Format;
    static const QeCString ISO8601Date;
    static const QeCString ISO8601Time;

    static constexpr char BlankUtf8 = ' ';
    static constexpr char NewlineUtf8 = '\n';
    static constexpr char TabUtf8 = '\t';

    static constexpr unsigned int MinDateLength = 10;
    static constexpr unsigned int MinTimeLength = 8;
    static constexpr unsigned int MinDateTimeLength = 19;

    /// Whether the byte is a space, a line feed or a tab.
    static bool isWhiteSpace(char byte) noexcept { return byte == BlankUtf8 || byte == NewlineUtf8 || byte == TabUtf8; }

    /// The text without the whitespace at the ends that `type` names. O(length).
    static QeCString stripWhiteSpaceAndNewlines(const QeCString& text, QeCString::stripType type);

    /// What stands before the first colon; empty without one.
    static QeCString getPrefix(const QeCString& qname);

    /// Splits a name at its first colon. Without one, `localName` becomes the whole
    /// name and `prefix` stays as it is: pass an empty string to get an empty prefix.
    /// The arguments may be the same objects.
    static void getPrefixAndLocalName(const QeCString& qname, QeCString& prefix, QeCString& localName);

    /// The element `xml` (a start tag, content, an end tag) under another name,
    /// with a line feed behind its end tag. Attributes and content stay byte for
    /// byte; what follows the last tag is dropped.
    ///
    /// When the new name is in a namespace that the start tag does not declare
    /// under a prefix, a declaration is added: of the name's prefix, or, when that
    /// is empty, of the default namespace. Text that cannot be taken apart (no
    /// leading '<', an empty-element tag, no end tag) is returned unchanged.
    ///
    /// A rewrite of text, not a parse: a '>' in an attribute value, or values in
    /// single quotes or with whitespace in them, are not understood. O(length).
    static QeCString changeName(QeXmlName name, QeCString xml);

    /// Whether two documents say the same thing.
    ///
    /// They do when they have the same elements in the same order, with the same
    /// names (local name and URI; prefixes do not count), the same attributes,
    /// namespace declarations included, as `compareAttributeSet` sees them, and
    /// byte for byte the same text behind a start tag or an empty-element tag.
    ///
    /// Not looked at: the XML declaration and the rest of the prolog, comments,
    /// processing instructions, the encoding, how a character is written (as itself,
    /// by a reference, in a CDATA section), text behind an end tag where both have
    /// text there, and blank text that one document has and the other lacks. An
    /// empty-element tag equals any start tag with an end tag behind it and at most
    /// blank text between; names and attributes are not compared then.
    ///
    /// Throws the `QeXmlParseError` of a document that cannot be read that far; the
    /// comparison ends at the first difference. End tags need not match start tags.
    /// Takes one pass over both documents, in place: time as the two readers take,
    /// and memory for one node of each.
    static bool compareXml(const QeCString& left, const QeCString& right);

    /// Whether two sets have equal names (prefixes do not count) with equal values
    /// at every position of their order. O(n).
    ///
    /// The order of adding does not matter. In sets from the reader, attributes with
    /// one local name and different prefixes stand in the order of the prefixes, so
    /// that other prefixes can make two such sets unequal.
    static bool compareAttributeSet(const QeXmlAttributeSet& left, const QeXmlAttributeSet& right) noexcept;

private:
    class Comparison;

    static bool verifyEmptyTag(QeXmlReader& reader, QeXmlReader& other);
    static bool verifyEmptyData(QeXmlReader& reader, QeXmlReader& other);
};
