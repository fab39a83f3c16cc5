#pragma once

#include <system_error>

#include <tessit/errors/xml_error.h>

/// An input that cannot be opened or read, and why: a file that is missing, a folder, a stream that fails.
///
/// `why()` is the name of the input, a colon, and the reason; `code()` is the system's.
class TESSIT_API QeXmlInputError : public QeXmlError, public std::system_error {
public:
    /// With the system's words for the reason.
    QeXmlInputError(const QeCString& inputName, std::error_code reason);

    /// With others.
    QeXmlInputError(const QeCString& inputName, std::error_code reason, const QeCString& words);

    QeXmlInputError(const QeXmlInputError&) = default;
    QeXmlInputError& operator=(const QeXmlInputError&) = default;
    ~QeXmlInputError() override;

    /// The same as `why()`.
    const char* what() const noexcept override;

    /// The path of a file, or what else the input is called: "the stream", "the callback".
    const QeCString& getInputName() const noexcept { return name; }

    /// What stands behind the name in `why()`.
    const QeCString& getReason() const noexcept { return reasonText; }

private:
    QeCString name, reasonText;
};
