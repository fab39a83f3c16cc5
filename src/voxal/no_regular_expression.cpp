// Libraries that are built without ICU have no regular expressions, and say so.

#include <voxal/regular_expression.h>

struct QeURegularExpression::Compiled {};

QeURegularExpression::QeURegularExpression(const QeCString& source) : pattern(source) {
    throw QeURegexError("Pattern '" + pattern + "' cannot be used: this library was built without ICU");
}

QeURegularExpression::QeURegularExpression(QeURegularExpression&&) noexcept = default;
QeURegularExpression& QeURegularExpression::operator=(QeURegularExpression&&) noexcept = default;
QeURegularExpression::~QeURegularExpression() = default;

QeURegexResult QeURegularExpression::search(std::string_view) {
    return {false, 0};  // there is none to call it on
}
