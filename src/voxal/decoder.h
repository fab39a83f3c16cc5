#pragma once

#include <memory>
#include <string_view>

#include <corvel/c_string.h>

namespace voxal {

/// What comes of bytes that mean nothing in their encoding: U+FFFD, or the end of the conversion.
enum class Malformed : bool { Replaced, Ends };

/// The way from one encoding to UTF-8, with what it keeps between two pieces.
class Decoder {
public:
    virtual ~Decoder() = default;

    /// Converts from `at`, which it moves on, until it has come to `end`: then true;
    /// or until `out`, which it moves on too, has no room for another character. A
    /// character that the end cuts off is kept, unless the piece is the last one:
    /// then it is malformed, and the decoder begins anew. There is room for 16 bytes.
    /// Where malformed bytes end the conversion: true, and it has ended for good.
    virtual bool decode(const char*& at, const char* end, bool isLast, char*& out, const char* outEnd) = 0;

    /// Whether each byte is a character, as far as that is known.
    virtual bool hasByteEach() const noexcept { return false; }

    /// Whether malformed bytes have ended the conversion, and which ones, as far as they are known.
    bool hasEnded() const noexcept { return ended; }
    const QeCString& malformedBytes() const noexcept { return lastBytes; }

protected:
    void endAt(std::string_view bytes) {
        ended = true;
        lastBytes.assign(bytes);
    }

private:
    bool ended = false;
    QeCString lastBytes;
};

/// A decoder for an encoding by one of its names, which is made of letters, digits and a
/// few signs; throws `QeUConversionError` when none is known for it.
std::unique_ptr<Decoder> openDecoder(const QeCString& name, Malformed malformed);

/// The one name of an encoding that is known by this one; empty when none is. Lives for ever.
std::string_view canonicalName(const QeCString& name);

}  // namespace voxal
