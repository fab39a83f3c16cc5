#pragma once

#include <string_view>

#include <corvel/c_string.h>
#include <tessit/rules/source.h>

namespace tessit {

/// The bytes of a document, or of an entity from outside, as text: the encoding is found
/// out, or given, and what is not UTF-8 is converted. The text ends in front of the first
/// byte that means nothing in the encoding, or character that XML does not allow; the source
/// says what is wrong there. Knows of XML only how a declaration of the encoding is written.
struct DecodedText {
    DecodedText() = default;
    DecodedText(const DecodedText&) = delete;
    DecodedText& operator=(const DecodedText&) = delete;

    Source source;  // of the bytes in place where they are UTF-8, else of `converted`
    QeCString converted;
    QeCString encoding;  // the one in force, by the name that was given, declared or detected

    std::string_view canonical;  // the name that is the same for all of an encoding's

    /// The name that messages have: with the order of bytes, which a declaration may leave open.
    QeCString encodingInMessages() const {
        const bool isWide = canonical.starts_with("UTF-16") || canonical.starts_with("UTF-32");
        return isWide ? QeCString(canonical) : encoding;
    }
};

/// `transport` is the encoding that a transport said, or empty. The bytes stay alive as long
/// as the text. Throws nothing but `std::bad_alloc`. O(bytes).
void decodeText(DecodedText& text, std::string_view bytes, const QeCString& transport);

}  // namespace tessit
