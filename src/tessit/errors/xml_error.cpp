#include <algorithm>
#include <limits>

#include <tessit/errors/xml_error.h>

// Destructors stand here, out of line: they are the classes' key functions, so
// that there is one type description of each class in the process and a catch
// outside the library recognises what was thrown inside.

QeXmlError::~QeXmlError() = default;
QeXmlBadArgError::~QeXmlBadArgError() = default;
QeXmlBoundsError::~QeXmlBoundsError() = default;
QeXmlDomainError::~QeXmlDomainError() = default;
QeXmlInternalError::~QeXmlInternalError() = default;
QeXmlLengthError::~QeXmlLengthError() = default;
QeXmlRangeError::~QeXmlRangeError() = default;
QeXmlSchemaError::~QeXmlSchemaError() = default;
QeXmlParseError::~QeXmlParseError() = default;

struct QeXmlParseError::Details {
    QeXmlNote note;
};

namespace {

unsigned clamped(std::uint64_t count) {
    return static_cast<unsigned>(std::min<std::uint64_t>(count, std::numeric_limits<unsigned>::max()));
}

}  // namespace

QeXmlParseError::QeXmlParseError(const QeCString& msg, const QeXmlPlace& where)
    : QeXmlParseError(msg, where.sourceFile, clamped(where.line), clamped(where.column)) {}

QeXmlParseError::QeXmlParseError(const QeCString& msg, const QeXmlPlace& where, const QeXmlNote& note)
    : QeXmlParseError(msg, where) {
    details = std::make_shared<const Details>(Details{note});
}

const QeXmlNote* QeXmlParseError::getNote() const noexcept {
    return details == nullptr ? nullptr : &details->note;
}

void QeThrow(const QeXmlError& error) {
    throw QeXmlError(error);
}
void QeThrow(const QeXmlBadArgError& error) {
    throw QeXmlBadArgError(error);
}
void QeThrow(const QeXmlBoundsError& error) {
    throw QeXmlBoundsError(error);
}
void QeThrow(const QeXmlDomainError& error) {
    throw QeXmlDomainError(error);
}
void QeThrow(const QeXmlInternalError& error) {
    throw QeXmlInternalError(error);
}
void QeThrow(const QeXmlLengthError& error) {
    throw QeXmlLengthError(error);
}
void QeThrow(const QeXmlParseError& error) {
    throw QeXmlParseError(error);
}
void QeThrow(const QeXmlRangeError& error) {
    throw QeXmlRangeError(error);
}
void QeThrow(const QeXmlSchemaError& error) {
    throw QeXmlSchemaError(error);
}
