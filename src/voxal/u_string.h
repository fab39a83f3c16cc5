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
