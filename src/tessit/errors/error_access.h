#pragma once

#include <optional>
#include <string_view>

#include <tessit/errors/xml_error.h>

/// What a reader knows of an error besides its text and the described numbers.
struct QeXmlParseError::Details {
    QeXmlPosition position = {};
    QeCString path = {};
    std::optional<QeXmlNote> note = {};
    QeCString hint = {};
    std::string_view rule = {};  // a text that stays
    QeXmlExcerpt excerpt = {};
};

namespace tessit {

/// How readers make errors, and say more of those that come by.
struct ErrorAccess {
    using Details = QeXmlParseError::Details;

    /// With the place that the described numbers are to have, clamped to what they can hold.
    static QeXmlParseError make(const QeCString& message, const QeXmlPlace& described, Details&& details);

    static Details detailsOf(const QeXmlParseError& error);
    static void setDetails(QeXmlParseError& error, Details&& details);
};

}  // namespace tessit
