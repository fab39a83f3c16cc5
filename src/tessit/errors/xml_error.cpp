#include <algorithm>
#include <limits>
#include <utility>

#include <corvel/immortal.h>
#include <tessit/errors/error_access.h>
#include <tessit/errors/xml_limits.h>

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
QeXmlLimitError::~QeXmlLimitError() = default;

namespace {

constinit const corvel::Immortal<QeCString> None;
constinit const corvel::Immortal<QeXmlExcerpt> NoExcerpt;

unsigned clamped(std::uint64_t count) {
    return static_cast<unsigned>(std::min<std::uint64_t>(count, std::numeric_limits<unsigned>::max()));
}

}  // namespace

QeXmlParseError::QeXmlParseError(const QeCString& msg, const QeXmlPlace& where)
    : QeXmlParseError(msg, where.sourceFile, clamped(where.position.line), clamped(where.position.column)) {
    details = std::make_shared<const Details>(Details{.position = where.position});
}

QeXmlParseError::QeXmlParseError(const QeCString& msg, const QeXmlPlace& where, const QeXmlNote& note)
    : QeXmlParseError(msg, where) {
    details = std::make_shared<const Details>(Details{.position = where.position, .note = note});
}

QeXmlPosition QeXmlParseError::getPosition() const noexcept {
    if (details != nullptr) return details->position;
    return {lineNumber, columnNumber, QeXmlPosition::Unknown, QeXmlPosition::Unknown, QeXmlPosition::Unknown};
}

const QeXmlNote* QeXmlParseError::getNote() const noexcept {
    return details == nullptr || !details->note ? nullptr : &*details->note;
}

const QeCString& QeXmlParseError::getPath() const noexcept {
    return details == nullptr ? None.value : details->path;
}

const QeXmlExcerpt& QeXmlParseError::getExcerpt() const noexcept {
    return details == nullptr ? NoExcerpt.value : details->excerpt;
}

const QeCString& QeXmlParseError::getHint() const noexcept {
    return details == nullptr ? None.value : details->hint;
}

std::string_view QeXmlParseError::getRule() const noexcept {
    return details == nullptr ? std::string_view() : details->rule;
}

namespace tessit {

QeXmlParseError ErrorAccess::make(const QeCString& message, const QeXmlPlace& described, Details&& details) {
    QeXmlParseError error(message, described.sourceFile, clamped(described.position.line),
                          clamped(described.position.column));
    setDetails(error, std::move(details));
    return error;
}

ErrorAccess::Details ErrorAccess::detailsOf(const QeXmlParseError& error) {
    if (error.details != nullptr) return *error.details;
    return {.position = error.getPosition()};
}

void ErrorAccess::setDetails(QeXmlParseError& error, Details&& details) {
    error.details = std::make_shared<const Details>(std::move(details));
}

}  // namespace tessit

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
