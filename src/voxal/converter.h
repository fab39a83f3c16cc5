#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <string_view>

#include <corvel/c_string.h>
#include <corvel/exmsg.h>

namespace voxal {
class Decoder;
enum class Malformed : bool;
}  // namespace voxal

/// A character encoding that no converter is known for, or text that could not be converted.
class QeUConversionError : public Qexmsg {
public:
    explicit QeUConversionError(const QeCString& msg) : Qexmsg(msg.data()) {}
};

/// A conversion that was given up because its result would be longer than it may be.
class QeUConversionTooLong : public QeUConversionError {
public:
    QeUConversionTooLong() : QeUConversionError("the text becomes too long") {}
};

/// Converts bytes in a named encoding into UTF-8, all at once or piece by piece.
///
/// What means nothing in the encoding becomes U+FFFD, or ends the text. O(bytes) time; beside the
/// result, a few kilobytes, whatever the length.
class QeUToUnicodeConverter {
public:
    static constexpr std::size_t NoLimit = std::numeric_limits<std::size_t>::max();

    /// Any name in ICU's list, whatever its case, hyphens and underlines; throws
    /// `QeUConversionError` for others, and for names that hold more than letters,
    /// digits and the signs - _ . : + , = ( ). Without ICU, the encodings that need no
    /// tables: UTF-8 and US-ASCII, whose bytes pass as they are, ISO-8859-1, UTF-16, UTF-32.
    explicit QeUToUnicodeConverter(const QeCString& name);
    QeUToUnicodeConverter(const QeCString& name, voxal::Malformed malformed);

    QeUToUnicodeConverter(QeUToUnicodeConverter&&) noexcept;
    QeUToUnicodeConverter& operator=(QeUToUnicodeConverter&&) noexcept;
    ~QeUToUnicodeConverter();

    /// The text of `bytes`. Throws `QeUConversionTooLong` where it is longer than
    /// `mostBytes`, without ever having held more.
    QeCString toUtf8(std::string_view bytes, std::size_t mostBytes = NoLimit);

    /// Whether a piece is followed by others.
    enum Piece { MoreFollow, Last };

    /// Appends the text of the next piece to `utf8`, which may come to at most
    /// `mostBytes` in all: throws `QeUConversionTooLong` before it would hold more. A
    /// character that the piece cuts off is completed by the next one; after the last,
    /// the converter begins anew. What was appended before a throw stays, and the
    /// converter is of no more use then.
    void append(QeCString& utf8, std::string_view piece, Piece position, std::size_t mostBytes = NoLimit);

    /// The bytes that ended the text, as far as they are known, where malformed ones do; null where none have.
    const QeCString* findMalformed() const noexcept;

    /// Whether each byte is a character, as far as that is known.
    bool hasByteEach() const noexcept;

    /// The one name of an encoding that is known by this one; empty when none is. Lives for ever.
    static std::string_view canonicalName(const QeCString& name);

    /// Whether both names stand for one encoding in another spelling. The byte
    /// order of UTF-16 and UTF-32 is taken as a matter of spelling.
    static bool sameEncoding(const QeCString& left, const QeCString& right);

private:
    std::unique_ptr<voxal::Decoder> decoder;
};
