#pragma once

#include <string_view>

namespace tessit {

/// What often is the reason when a document is refused that looks like this one; or null. O(1), though not little: the
/// beginning is searched.
const char* hintFor(std::string_view document) noexcept;

/// The same where an element follows that is named like the root was.
constexpr char HintAtSecondRoot[] = "are these several documents in a row? Each is one of its own";

}  // namespace tessit
