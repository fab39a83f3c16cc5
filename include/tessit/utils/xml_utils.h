#pragma once

#include <tessit/model/xml_name.h>

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
    /// is empty, of the default namespace, unless the start tag has one of that,
    /// which stays in force. Text that cannot be taken apart (no leading '<', an
    /// empty-element tag, no end tag) is returned unchanged.
    ///
    /// A rewrite of text, not a parse: a '>' in an attribute value, or values in
    /// single quotes or with whitespace in them, are not understood. O(length).
    static QeCString changeName(QeXmlName name, QeCString xml);
};
