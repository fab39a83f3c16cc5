#pragma once

#include <string_view>
#include <voxal/plain_pattern.h>

namespace voxal {

/// Whether the pattern matches anywhere in the text, in UTF-16.
///
/// Follows all the ways through the pattern side by side, a character at a time,
/// where ICU tries one after the other: O(length of the text x instructions),
/// whatever they are, and memory for the instructions only.
bool searchInOnePass(PlainPattern& pattern, std::u16string_view text);

}  // namespace voxal
