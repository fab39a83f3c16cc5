#pragma once

#include <string>
#include <string_view>

/// Text in UTF-16, the form in which ICU takes it.
class QeUString {
public:
    /// The text of UTF-8 bytes; each malformed sequence becomes U+FFFD. Throws
    /// `QeUConversionError` past 2 GiB, which is more than ICU can count. O(bytes).
    explicit QeUString(std::string_view utf8);

    std::u16string_view units() const noexcept { return text; }

private:
    std::u16string text;
};

namespace voxal {

/// How many units a character takes.
constexpr std::size_t unitCount(char32_t character) noexcept {
    return character > 0xFFFF ? 2 : 1;
}

/// The character that a text begins with, which must not be empty. Half of a
/// surrogate pair on its own counts as one.
constexpr char32_t firstCharacter(std::u16string_view units) noexcept {
    const bool paired = units.size() > 1 && (units[0] & 0xFC00) == 0xD800 && (units[1] & 0xFC00) == 0xDC00;
    return paired ? 0x10000U + ((units[0] & 0x3FFU) << 10) + (units[1] & 0x3FFU) : units[0];
}

}  // namespace voxal
