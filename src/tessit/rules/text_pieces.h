#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <voxal/piece_converter.h>

#include <corvel/c_string.h>
#include <tessit/rules/source.h>

namespace tessit {

struct DecodedText;

/// Says of a source that it ends in front of bytes that mean nothing in its encoding.
void endByMalformed(Source& source, std::string_view malformed, const QeCString& encoding);

/// The same in front of bytes that are no character which XML allows.
void endByCharacter(Source& source, std::string_view bad, const QeCString& encoding);

/// The bytes of a document as text, piece by piece: the same text as `decodeText` makes of all of them, which ends in
/// front of the same fault.
class TextPieces {
public:
    /// Goes on as it was decided by the first bytes; `decided` says so, and is told what ends the text.
    explicit TextPieces(DecodedText& decided);

    /// Whether the bytes are text as they are. If not, `convert` makes it of them.
    bool isAsItIs() const noexcept { return !converter.has_value(); }

    /// Appends what the next bytes are as text, up to such that mean nothing.
    void convert(QeCString& text, std::string_view piece, bool isLast) { converter->append(text, piece, isLast); }

    bool isMalformed() const noexcept { return converter && converter->findMalformed() != nullptr; }

    /// Looks at what came of the text, the last of it once all was converted. Returns how much of it is sound; the rest
    /// is a character that is not whole, or, once the text `hasEnded`, behind its end.
    std::size_t check(std::string_view text, bool isLast);
    bool hasEnded() const noexcept { return ended; }

private:
    std::size_t endAt(std::size_t length) noexcept {
        ended = true;
        return length;
    }

    DecodedText& decoded;
    bool isAscii;
    bool ended = false;
    std::optional<voxal::PieceConverter> converter;
};

}  // namespace tessit
