#include <charconv>
#include <string_view>

#include <corvel/compiler.h>
#include <corvel/decimal_text.h>
#include <corvel/immortal.h>
#include <tessit/model/model_access.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/utils/xml_utils.h>

namespace {

// The URI is that of a namespace that is never destroyed, and so outlives the name.
QeXmlName xsiName(const char* localName) {
    static const corvel::Immortal<QeXmlNamespace> xsi(tessit::ModelAccess::toBeShared(QeXmlNamespace::getXsi()));
    QeXmlName name(localName);
    tessit::ModelAccess::prefixOf(name.getNamespace()) = xsi.value.getPrefix();
    tessit::ModelAccess::shareURI(name.getNamespace(), xsi.value);
    return name;
}

QeCString exponentText(double value) {
    char buffer[32];
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, 6).ptr;
    return QeCString(buffer, static_cast<std::size_t>(end - buffer));
}

const QeCString& formatFor(std::string_view typeName) {
    if (typeName.ends_with("time")) return QeXmlUtils::ISO8601Time;
    if (typeName.ends_with("date")) return QeXmlUtils::ISO8601Date;
    return QeXmlUtils::ISO8601Format;
}

}  // namespace

// Their URI is too long for a constant expression. The priority has them made before
// the objects of other sources, which may so use them even where the library is
// linked statically.
TESSIT_MADE_FIRST const QeXmlName QeXmlSchemaUtils::XsiTypeAttributeName = xsiName("type");
TESSIT_MADE_FIRST const QeXmlName QeXmlSchemaUtils::XsiNilAttributeName = xsiName("nil");
TESSIT_MADE_FIRST const QeXmlName QeXmlSchemaUtils::XsiSchemaLocationAttributeName = xsiName("schemaLocation");
TESSIT_MADE_FIRST const QeXmlName QeXmlSchemaUtils::XsiNoNamespaceSchemaLocationAttributeName =
    xsiName("noNamespaceSchemaLocation");

QeCString QeXmlSchemaUtils::ConvertTypeToString(const QeCString& value, const QeCString&) {
    return value;
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(const char* value, const QeCString&) {
    return value;
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(bool value, const QeCString&) {
    return value ? "1" : "0";
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(int value, const QeCString&) {
    return corvel::decimalText(value);
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(unsigned int value, const QeCString&) {
    return corvel::decimalText(value);
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(long value, const QeCString&) {
    return corvel::decimalText(value);
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(unsigned long value, const QeCString&) {
    return corvel::decimalText(value);
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(long long value, const QeCString&) {
    return corvel::decimalText(value);
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(unsigned long long value, const QeCString&) {
    return corvel::decimalText(value);
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(float value, const QeCString&) {
    return exponentText(value);
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(double value, const QeCString&) {
    return exponentText(value);
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(const QeXmlDuration& value, const QeCString&) {
    return value.asString();
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(const QeDecimalPortable& value, const QeCString&) {
    return value.asString();
}

QeCString QeXmlSchemaUtils::ConvertTypeToString(const QeDateTime& value, const QeCString& typeName) {
    return QeXmlUtils::convertDateTimeToISOString(value, formatFor(typeName));
}
