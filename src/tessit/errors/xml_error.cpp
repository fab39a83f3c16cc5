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
