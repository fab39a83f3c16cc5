#pragma once

#include <string_view>

#include <corvel/c_string.h>

namespace tessit {

/// What often is the reason when a document is refused that looks like this one; or empty. `isSecondRoot` says that
/// an element follows which is named like the root was. O(1).
QeCString hintFor(std::string_view document, bool isSecondRoot);

}  // namespace tessit
