#include <string>

#include <tessit/errors/xml_input_error.h>

QeXmlInputError::QeXmlInputError(const QeCString& inputName, std::error_code reason)
    : QeXmlInputError(inputName, reason, QeCString(reason.message().c_str())) {}

QeXmlInputError::QeXmlInputError(const QeCString& inputName, std::error_code reason, const QeCString& words)
    : QeXmlError(inputName + ": " + words), std::system_error(reason), name(inputName), reasonText(words) {}

QeXmlInputError::~QeXmlInputError() = default;

const char* QeXmlInputError::what() const noexcept {
    return why();
}
