#pragma once

#include <corvel/date_time.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_name.h>

class QeXmlInput;
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
    static const QeCString ISO8601Format;  ///< asks for date and time, as ISO 8601 writes them
    static const QeCString ISO8601Date;    ///< asks for the date
    static const QeCString ISO8601Time;    ///< asks for the time of day

    static constexpr char BlankUtf8 = ' ';
    static constexpr char NewlineUtf8 = '\n';
    static constexpr char TabUtf8 = '\t';

    static constexpr unsigned int MinDateLength = 10;
    static constexpr unsigned int MinTimeLength = 8;
    static constexpr unsigned int MinDateTimeLength = 19;

    /// Whether the byte is a space, a line feed or a tab. O(1).
    static bool isWhiteSpace(char byte) noexcept { return byte == BlankUtf8 || byte == NewlineUtf8 || byte == TabUtf8; }

    /// The text without the whitespace at the ends that `type` names. O(length).
    static QeCString stripWhiteSpaceAndNewlines(const QeCString& text, QeCString::stripType type);

    /// What stands before the first colon; empty without one. O(length).
    static QeCString getPrefix(const QeCString& qname);

    /// Splits a name at its first colon. Without one, `localName` becomes the whole
    /// name and `prefix` stays as it is: pass an empty string to get an empty prefix.
    /// The arguments may be the same objects. O(length). Strong guarantee.
    static void getPrefixAndLocalName(const QeCString& qname, QeCString& prefix, QeCString& localName);

    /// The element `xml` (a start tag, content, an end tag) under another name,
    /// with a line feed behind its end tag. Attributes and content stay byte for
    /// byte; what follows the last tag is dropped.
    ///
    /// When the new name is in a namespace that the start tag does not declare
    /// under a prefix, a declaration is added: of the name's prefix, or, when that
    /// is empty, of the default namespace. A name without a prefix takes the place of
    /// another URI in the tag's default declaration, whatever else the tag declares:
    /// names without a prefix in the content are then in the new namespace, too.
    ///
    /// Only a space ends the old name: what stands behind a line feed or a tab goes
    /// with it, up to the first space. Text that cannot be taken apart (no leading '<', an
    /// empty-element tag, no end tag) is returned unchanged.
    ///
    /// A rewrite of text, not a parse: a '>' in an attribute value, or values in
    /// single quotes or with whitespace in them, are not understood. O(length of the
    /// text and of the name).
    static QeCString changeName(QeXmlName name, QeCString xml);

    /// The instant in UTC. A format equal to `ISO8601Format` gives
    /// 2003-05-20T09:01:08Z, with the fraction of the second, behind a full stop and
    /// without trailing zeros, when there is one. Any other format is one of
    /// `QeDateTime::asString`, and gives neither fraction nor zone unless it asks
    /// for them: `ISO8601Date` gives 2003-05-20, `ISO8601Time` 09:01:08. An empty
    /// format gives an empty text. O(length of the format and of the text).
    static QeCString convertDateTimeToISOString(const QeDateTime& dateTime, const QeCString& format);

    /// The instant that a text in ISO 8601's extended form stands for: a date
    /// (2003-05-20), a time (09:01:08) or both (2003-05-20T09:01:08), then,
    /// optionally, a zone ("Z", "+02:00" or "+02", up to 14 hours). Without a zone
    /// it is in UTC.
    ///
    /// A date alone is its midnight, a time alone lies on 1 January 1970. A second
    /// may have a fraction behind a full stop or a comma; digits past the
    /// milliseconds are dropped. 24:00:00 is the next midnight. A year has four to
    /// nine digits and may have a minus sign; 0000 comes before 0001.
    ///
    /// Throws `QeValueError` for any other text, blanks around it included, and for
    /// what does not exist: 30 February, 25:00:00, the leap second 23:59:60.
    /// O(length).
    static QeDateTime convertISODateStringToDateTime(const QeCString& text);

    /// The day as 2003-05-20. O(1).
    static QeCString convertDateToISOString(const QeDate& date);

    /// The day, in UTC, of the instant that `convertISODateStringToDateTime` reads:
    /// 2003-05-20T01:00:00+02:00 is 19 May. Throws as that does. O(length).
    static QeDate convertISODateStringToDate(const QeCString& text);

    /// Whether two documents say the same thing.
    ///
    /// They do when they have the same elements in the same order, with the same
    /// names (local name and URI; prefixes do not count), the same attributes,
    /// namespace declarations included, as `compareAttributeSet` sees them, and
    /// byte for byte the same text behind a start tag or an empty-element tag.
    ///
    /// Not looked at: the XML declaration and the rest of the prolog, comments and
    /// processing instructions inside the root element, the encoding, how a character is written (as itself,
    /// by a reference, in a CDATA section), text behind an end tag where both have
    /// text there, and blank text that one document has and the other lacks. An
    /// empty-element tag equals any start tag with an end tag behind it and at most
    /// blank text between; names and attributes are not compared then.
    ///
    /// Throws the `QeXmlParseError` of a document that cannot be read that far; the
    /// comparison ends at the first difference. End tags need not match start tags.
    /// Takes one pass over both documents, in place: time as the two readers take,
    /// and memory for one node of each and for URIs of 256 bytes and more.
    static bool compareXml(const QeCString& left, const QeCString& right);

    /// The same for inputs of any kind (<tessit/reader/xml_input.h>), each of them read once, and for readers with any
    /// options, of which both have just been opened and deliver tags and texts alone. Memory as those readers take.
    /// What the inputs throw passes through.
    static bool compareXml(QeXmlInput left, QeXmlInput right);
    static bool compareXml(QeXmlReader& left, QeXmlReader& right);

    /// Whether two sets have equal names (prefixes do not count) with equal values
    /// at every position of their order. O(n) comparisons of names and values.
    ///
    /// The order of adding does not matter. In sets from the reader, attributes with
    /// one local name and different prefixes stand in the order of the prefixes, so
    /// that other prefixes can make two such sets unequal.
    static bool compareAttributeSet(const QeXmlAttributeSet& left, const QeXmlAttributeSet& right) noexcept;

private:
    class Comparison;

    TESSIT_NO_EXPORT static bool verifyEmptyTag(QeXmlReader& reader, QeXmlReader& other);
    TESSIT_NO_EXPORT static bool verifyEmptyData(QeXmlReader& reader, QeXmlReader& other);
};
