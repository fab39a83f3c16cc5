#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <corvel/exmsg.h>
#include <tessit/errors/xml_position.h>

namespace tessit {
struct ErrorAccess;
}

/// The root of the library's own exceptions.
///
/// Each class below is one reaction that a caller can have. It can be caught as
/// `QeXmlError`, as `Qexmsg`, or as the standard exception that is its second
/// base; `why()` and `what()` return the same text, which lives as long as the
/// exception. Making or copying an exception copies strings: it is O(length of the
/// text) and may throw `std::bad_alloc`; an assignment that does has changed
/// nothing, or, of a `QeXmlParseError`, the text alone.
class TESSIT_API QeXmlError : public Qexmsg {
public:
    explicit QeXmlError(const QeCString& msg) : Qexmsg(msg.data()) {}
    explicit QeXmlError(const QeMessage& msg) : Qexmsg(msg) {}
    QeXmlError(const QeXmlError&) = default;
    QeXmlError& operator=(const QeXmlError&) = default;
    ~QeXmlError() override;
};

/// An argument that the called operation cannot take.
class TESSIT_API QeXmlBadArgError : public QeXmlError, public std::invalid_argument {
public:
    explicit QeXmlBadArgError(const QeCString& msg) : QeXmlError(msg), std::invalid_argument(msg.data()) {}
    explicit QeXmlBadArgError(const QeMessage& msg) : QeXmlError(msg), std::invalid_argument(msg.getText()) {}
    QeXmlBadArgError(const QeXmlBadArgError&) = default;
    QeXmlBadArgError& operator=(const QeXmlBadArgError&) = default;
    ~QeXmlBadArgError() override;
};

/// An index or position outside a collection.
class TESSIT_API QeXmlBoundsError : public QeXmlError, public std::out_of_range {
public:
    explicit QeXmlBoundsError(const QeCString& msg) : QeXmlError(msg), std::out_of_range(msg.data()) {}
    explicit QeXmlBoundsError(const QeMessage& msg) : QeXmlError(msg), std::out_of_range(msg.getText()) {}
    QeXmlBoundsError(const QeXmlBoundsError&) = default;
    QeXmlBoundsError& operator=(const QeXmlBoundsError&) = default;
    ~QeXmlBoundsError() override;
};

/// Input outside what an operation is defined for.
class TESSIT_API QeXmlDomainError : public QeXmlError, public std::domain_error {
public:
    explicit QeXmlDomainError(const QeCString& msg) : QeXmlError(msg), std::domain_error(msg.data()) {}
    explicit QeXmlDomainError(const QeMessage& msg) : QeXmlError(msg), std::domain_error(msg.getText()) {}
    QeXmlDomainError(const QeXmlDomainError&) = default;
    QeXmlDomainError& operator=(const QeXmlDomainError&) = default;
    ~QeXmlDomainError() override;
};

/// A state that should not arise.
class TESSIT_API QeXmlInternalError : public QeXmlError, public std::logic_error {
public:
    explicit QeXmlInternalError(const QeCString& msg) : QeXmlError(msg), std::logic_error(msg.data()) {}
    explicit QeXmlInternalError(const QeMessage& msg) : QeXmlError(msg), std::logic_error(msg.getText()) {}
    QeXmlInternalError(const QeXmlInternalError&) = default;
    QeXmlInternalError& operator=(const QeXmlInternalError&) = default;
    ~QeXmlInternalError() override;
};

/// A length or count past its limit.
class TESSIT_API QeXmlLengthError : public QeXmlError, public std::length_error {
public:
    explicit QeXmlLengthError(const QeCString& msg) : QeXmlError(msg), std::length_error(msg.data()) {}
    explicit QeXmlLengthError(const QeMessage& msg) : QeXmlError(msg), std::length_error(msg.getText()) {}
    QeXmlLengthError(const QeXmlLengthError&) = default;
    QeXmlLengthError& operator=(const QeXmlLengthError&) = default;
    ~QeXmlLengthError() override;
};

/// A result that its type cannot hold.
class TESSIT_API QeXmlRangeError : public QeXmlError, public std::range_error {
public:
    explicit QeXmlRangeError(const QeCString& msg) : QeXmlError(msg), std::range_error(msg.data()) {}
    explicit QeXmlRangeError(const QeMessage& msg) : QeXmlError(msg), std::range_error(msg.getText()) {}
    QeXmlRangeError(const QeXmlRangeError&) = default;
    QeXmlRangeError& operator=(const QeXmlRangeError&) = default;
    ~QeXmlRangeError() override;
};

/// A value that its schema type refuses; the validator collects these.
class TESSIT_API QeXmlSchemaError : public QeXmlError, public std::logic_error {
public:
    explicit QeXmlSchemaError(const QeCString& msg) : QeXmlError(msg), std::logic_error(msg.data()) {}
    explicit QeXmlSchemaError(const QeMessage& msg) : QeXmlError(msg), std::logic_error(msg.getText()) {}
    QeXmlSchemaError(const QeXmlSchemaError&) = default;
    QeXmlSchemaError& operator=(const QeXmlSchemaError&) = default;
    ~QeXmlSchemaError() override;
};

/// A second place that belongs to an error, and what it has to do with it.
struct QeXmlNote {
    QeCString text;
    QeXmlPlace place;
    QeXmlExcerpt excerpt = {};  ///< the line of the place
};

/// A document that cannot be read, and where.
///
/// Line and column count from 1, the column in bytes of the document as UTF-8.
/// They stand beside the text, never in it.
class TESSIT_API QeXmlParseError : public QeXmlDomainError {
public:
    QeXmlParseError(const QeCString& msg, const QeCString& file, unsigned line, unsigned column)
        : QeXmlDomainError(msg), sourceFile(file), lineNumber(line), columnNumber(column) {}
    QeXmlParseError(const QeMessage& msg, const QeCString& file, unsigned line, unsigned column)
        : QeXmlDomainError(msg), sourceFile(file), lineNumber(line), columnNumber(column) {}

    /// The same for a place; lines and columns beyond an unsigned number stand as the largest one.
    QeXmlParseError(const QeCString& msg, const QeXmlPlace& where);

    /// The same with a second place, which copies share.
    QeXmlParseError(const QeCString& msg, const QeXmlPlace& where, const QeXmlNote& note);

    QeXmlParseError(const QeXmlParseError&) = default;
    QeXmlParseError& operator=(const QeXmlParseError&) = default;
    ~QeXmlParseError() override;

    /// A copy of the name of the document's source, O(length): the one that the reader was
    /// given, or empty. Setting one that throws changes nothing.
    QeCString getSourceFile() const { return sourceFile; }
    void setSourceFile(const QeCString& name) { sourceFile = name; }

    unsigned getLineNumber() const noexcept { return lineNumber; }
    void setLineNumber(unsigned line) noexcept { lineNumber = line; }

    unsigned getColumnNumber() const noexcept { return columnNumber; }
    void setColumnNumber(unsigned column) noexcept { columnNumber = column; }

    /// @name What a reader knows besides
    ///
    /// Each is O(1), and what is returned lives as long as an error that has it: copies share it.
    /// @{

    /// The position, of 64 bits each, as the reader counts: it can differ from the described numbers, which begin anew
    /// where a lenient reader converts the rest of a document. Of an error that a program made from a line and a
    /// column, the offsets are unknown.
    QeXmlPosition getPosition() const noexcept;

    /// The elements that were open, outermost first: `/feed/entry[3]/title` is in the third `entry` of its parent.
    /// First ones have no number, nor have those of more than sixteen names in one parent. The middle of a path of more
    /// than 1,000 bytes is left out. Empty where no element was open, or nobody knows.
    const QeCString& getPath() const noexcept;

    /// A second place, or null.
    const QeXmlNote* getNote() const noexcept;

    /// The line of the position, as far as the reader has it.
    const QeXmlExcerpt& getExcerpt() const noexcept;

    /// What often is the reason, for a person to read; or empty.
    const QeCString& getHint() const noexcept;

    /// The name of the rule that a conforming reader found broken, such as `duplicate-attribute`; or empty.
    std::string_view getRule() const noexcept;

    /// @}

private:
    struct Details;
    friend struct tessit::ErrorAccess;

    QeCString sourceFile;
    unsigned lineNumber;
    unsigned columnNumber;

    // What it holds is the library's own: programs built today catch the errors of later readers, too.
    std::shared_ptr<const Details> details;
};

/// Throws a copy of the argument, of exactly the parameter's class: the overload
/// is chosen by the static type. O(length of the text), as every copy.
[[noreturn]] TESSIT_API void QeThrow(const QeXmlError& error);
[[noreturn]] TESSIT_API void QeThrow(const QeXmlBadArgError& error);
[[noreturn]] TESSIT_API void QeThrow(const QeXmlBoundsError& error);
[[noreturn]] TESSIT_API void QeThrow(const QeXmlDomainError& error);
[[noreturn]] TESSIT_API void QeThrow(const QeXmlInternalError& error);
[[noreturn]] TESSIT_API void QeThrow(const QeXmlLengthError& error);
[[noreturn]] TESSIT_API void QeThrow(const QeXmlParseError& error);
[[noreturn]] TESSIT_API void QeThrow(const QeXmlRangeError& error);
[[noreturn]] TESSIT_API void QeThrow(const QeXmlSchemaError& error);
