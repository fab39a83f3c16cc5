#pragma once

#include <corvel/date_time.h>
#include <corvel/decimal_portable.h>
#include <tessit/model/xml_name.h>
#include <tessit/schema/xml_duration.h>

/// Helpers for values of XML Schema's types, all static.
///
/// The names are those of the attributes of the instance namespace, as
/// `QeXmlNamespace::getXsi()` has it at the start of the program. They may be used
/// before `main`.
///
/// `ConvertTypeToString` gives the lexical form of a value. `typeName` is the name
/// of the schema type that it is written as; only the form of a date-time depends
/// on it. No locale has a say. O(length of the result); `std::bad_alloc` where there
/// is no memory for it.
class TESSIT_API QeXmlSchemaUtils {
public:
    static const QeXmlName XsiTypeAttributeName;                       ///< xsi:type
    static const QeXmlName XsiNilAttributeName;                        ///< xsi:nil
    static const QeXmlName XsiSchemaLocationAttributeName;             ///< xsi:schemaLocation
    static const QeXmlName XsiNoNamespaceSchemaLocationAttributeName;  ///< xsi:noNamespaceSchemaLocation

    /// The value itself.
    static QeCString ConvertTypeToString(const QeCString& value, const QeCString& typeName);

    /// The text up to its NUL; empty for a null pointer.
    static QeCString ConvertTypeToString(const char* value, const QeCString& typeName);

    /// "1" or "0".
    static QeCString ConvertTypeToString(bool value, const QeCString& typeName);

    /// Decimal digits, with a minus sign when the value is negative; so are those of the next three.
    static QeCString ConvertTypeToString(int value, const QeCString& typeName);
    static QeCString ConvertTypeToString(unsigned int value, const QeCString& typeName);
    static QeCString ConvertTypeToString(long value, const QeCString& typeName);
    static QeCString ConvertTypeToString(unsigned long value, const QeCString& typeName);
    static QeCString ConvertTypeToString(long long value, const QeCString& typeName);
    static QeCString ConvertTypeToString(unsigned long long value, const QeCString& typeName);

    /// As printf's "%e": 1.500000e+00. Seven significant digits; infinities and what
    /// is no number read "inf" and "nan", which XML Schema spells otherwise. A
    /// `double` is written in the same way.
    static QeCString ConvertTypeToString(float value, const QeCString& typeName);
    static QeCString ConvertTypeToString(double value, const QeCString& typeName);

    /// The value's `asString()`, a derived class's where it has one.
    static QeCString ConvertTypeToString(const QeXmlDuration& value, const QeCString& typeName);

    /// The value's `asString()`.
    static QeCString ConvertTypeToString(const QeDecimalPortable& value, const QeCString& typeName);

    /// In UTC: the time (09:01:08) when the type's name ends in "time", the date
    /// (2003-05-20) when it ends in "date", otherwise, as for "dateTime", both, as
    /// `QeXmlUtils::ISO8601Format` asks for them.
    static QeCString ConvertTypeToString(const QeDateTime& value, const QeCString& typeName);
};
