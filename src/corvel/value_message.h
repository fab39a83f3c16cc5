#pragma once

#include <string_view>

#include <corvel/c_string.h>

namespace corvel {

/// The front of a text for a message: 64 bytes at most, whole characters of UTF-8.
std::string_view front(std::string_view text);

/// A text in double quotes, for a message: cut short when it is long, with '?' for
/// control characters (a NUL would end the message).
QeCString quoted(std::string_view text);

/// Throws the `QeValueError` that says so. `found` is a text of the caller's own, or
/// from `quoted`; `context` goes on behind it and may be empty.
[[noreturn]] void raiseValueError(std::string_view expected, std::string_view found, std::string_view context = {});

}  // namespace corvel
