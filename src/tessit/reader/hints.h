#pragma once

#include <string_view>

namespace tessit {

/// What often is the reason when a document is refused that looks like this one; or null. O(1), though not little: the
/// beginning is searched.
const char* hintFor(std::string_view document) noexcept;

/// Whether what the rule refuses behind a root of that name, at the beginning of `text`, looks like another document:
/// it has an XML declaration, or its root is named alike.
bool beginsAnotherDocument(std::string_view rule, std::string_view text, std::string_view root) noexcept;

/// Whether a text ends within an XML declaration. O(1).
bool endsInDeclaration(std::string_view text) noexcept;

/// What is said there.
constexpr char HintAtAnotherDocument[] = "are these several documents in a row? Each is one of its own";

}  // namespace tessit
