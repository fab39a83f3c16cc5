#pragma once

#include <stdexcept>

#include <corvel/exmsg.h>

/// A text, or a set of fields, that makes no value: no such date, no such zone,
/// no such number.
///
/// The text says what was expected, what was found, and in which text. It costs
/// what every `Qexmsg` does.
class TESSIT_API QeValueError : public Qexmsg, public std::invalid_argument {
public:
    explicit QeValueError(const QeCString& msg) : Qexmsg(msg.data()), std::invalid_argument(msg.data()) {}
    QeValueError(const QeValueError&) = default;
    QeValueError& operator=(const QeValueError&) = default;
    ~QeValueError() override;
};
