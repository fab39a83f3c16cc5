#include <algorithm>
#include <voxal/transcode.h>

namespace voxal {

namespace {

// Room for so many bytes behind the text.
char* roomBehind(QeCString& text, std::size_t count) {
    const std::size_t front = text.length();
    return text.resizeForOverwrite(front + count) + front;
}

}  // namespace

bool appendLatin1(QeCString& utf8, std::string_view bytes, std::uint64_t mostBytes) {
    const auto high = std::count_if(bytes.begin(), bytes.end(), [](char byte) { return (byte & 0x80) != 0; });
    const std::size_t length = bytes.size() + static_cast<std::size_t>(high);
    if (length > mostBytes) return false;
    char* out = roomBehind(utf8, length);
    for (const char byte : bytes)
        out = putUtf8(out, static_cast<unsigned char>(byte));
    return true;
}

namespace {

// Reads UTF-16 in either byte order, whatever the host's.
template <std::endian Order>
class Utf16Units {
public:
    explicit Utf16Units(std::string_view bytes) : at(bytes.data()), end(at + bytes.size() / 2 * 2) {}

    bool done() const { return at == end; }
    const char* position() const { return at; }

    std::uint32_t takeCodePoint() {
        const std::uint32_t unit = take();
        if ((unit & 0xFC00) != 0xD800 || done() || (peek() & 0xFC00) != 0xDC00) return unit;
        return ((unit - 0xD800) << 10) + (take() - 0xDC00) + 0x10000;
    }

private:
    std::uint32_t peek() const {
        constexpr std::size_t HighByte = Order == std::endian::big ? 0 : 1;
        return static_cast<std::uint32_t>(static_cast<unsigned char>(at[HighByte]) << 8 |
                                          static_cast<unsigned char>(at[1 - HighByte]));
    }

    std::uint32_t take() {
        const std::uint32_t unit = peek();
        at += 2;
        return unit;
    }

    const char* at;
    const char* end;
};

std::size_t utf8Length(std::uint32_t codePoint) {
    return codePoint < 0x80 ? 1 : codePoint < 0x800 ? 2 : codePoint < 0x10000 ? 3 : 4;
}

}  // namespace

template <std::endian Order>
bool appendUtf16(QeCString& utf8, std::string_view bytes, std::uint64_t mostBytes) {
    std::size_t length = 0;
    for (Utf16Units<Order> units(bytes); !units.done();)
        length += utf8Length(units.takeCodePoint());
    if (length > mostBytes) return false;
    char* out = roomBehind(utf8, length);
    for (Utf16Units<Order> units(bytes); !units.done();)
        out = putUtf8(out, units.takeCodePoint());
    return true;
}

template <std::endian Order>
std::size_t findMalformedUtf16(std::string_view bytes) noexcept {
    for (Utf16Units<Order> units(bytes); !units.done();) {
        const auto place = static_cast<std::size_t>(units.position() - bytes.data());
        if ((units.takeCodePoint() & 0xFFFFF800) == 0xD800) return place;
    }
    return bytes.size() / 2 * 2;
}

template std::size_t findMalformedUtf16<std::endian::big>(std::string_view) noexcept;
template std::size_t findMalformedUtf16<std::endian::little>(std::string_view) noexcept;
template bool appendUtf16<std::endian::big>(QeCString&, std::string_view, std::uint64_t);
template bool appendUtf16<std::endian::little>(QeCString&, std::string_view, std::uint64_t);

}  // namespace voxal
