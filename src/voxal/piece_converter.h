#pragma once

#include <bit>
#include <optional>
#include <string_view>
#include <voxal/converter.h>
#include <voxal/decoder.h>

namespace voxal {

/// Converts to UTF-8 what comes piece by piece, by the conversions that whole texts have: a character that a piece cuts
/// off is kept for the next one. Bytes that mean nothing are taken as `transcode.h` or a converter takes them, or end
/// the text.
class PieceConverter {
public:
    /// The encodings that need no tables.
    enum class Form { Latin1, Utf16BigEndian, Utf16LittleEndian };

    PieceConverter(Form ofText, Malformed reaction) noexcept : form(ofText), onMalformed(reaction) {}

    /// By tables: throws `QeUConversionError` where there are none.
    PieceConverter(const QeCString& name, Malformed reaction)
        : onMalformed(reaction), tables(QeUToUnicodeConverter(name, reaction)) {}

    /// Appends the text of the next piece. Where malformed bytes end the text, later pieces add nothing.
    void append(QeCString& utf8, std::string_view piece, bool isLast);

    /// Whether each byte is a character, as far as that is known.
    bool hasByteEach() const noexcept;

    /// The bytes that have ended the text, as far as they are known; null where none have.
    const QeCString* findMalformed() const noexcept;

private:
    template <std::endian Order>
    void appendUtf16(QeCString& utf8, std::string_view units, bool isLast);

    Form form = Form::Latin1;
    Malformed onMalformed;
    std::optional<QeUToUnicodeConverter> tables;
    QeCString kept;       // of a character that is not whole
    QeCString malformed;  // what has ended the text
    bool ended = false;
};

}  // namespace voxal
