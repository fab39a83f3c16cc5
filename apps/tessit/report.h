#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <tessit/errors/xml_error.h>

/// What there is to say of a document, or of what keeps the tool from reading one. Views what it is about.
struct Report {
    std::string_view severity;
    std::string_view file;  ///< or what else is to blame
    std::string_view message;
    std::optional<QeXmlPosition> position = {};
    const QeXmlParseError* error = nullptr;  ///< what else is known of the position
};

/// For people: `FILE:LINE:COLUMN: SEVERITY: MESSAGE`, then what else is known, in lines of its own.
std::string asText(const Report& report);

/// For programs: one JSON object, in one line.
std::string asJson(const Report& report);
