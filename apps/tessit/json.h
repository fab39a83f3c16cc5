#pragma once

#include <string>
#include <string_view>

/// Appends the text as a JSON string, quotes included: on one line, in its own order, and valid UTF-8. Each byte that
/// is not UTF-8 becomes U+FFFD.
void appendJson(std::string& out, std::string_view text);
