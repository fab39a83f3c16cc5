#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "console.h"

/// Runs what reads a file. Complains, and returns false, when the file cannot be
/// read, its document is refused, or memory does not suffice; a refusal has the
/// given meaning, and is said of the source that the error names, where it names
/// one. Output that cannot be written throws `WriteError`.
bool attempt(Console& console, std::string_view file, ExitStatus refusal, const std::function<void()>& read);
