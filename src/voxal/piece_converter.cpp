#include <utility>
#include <voxal/piece_converter.h>
#include <voxal/transcode.h>

namespace voxal {

void PieceConverter::append(QeCString& utf8, std::string_view piece, bool isLast) {
    if (ended) return;
    if (tables) {
        tables->append(utf8, piece, isLast ? QeUToUnicodeConverter::Last : QeUToUnicodeConverter::MoreFollow);
        return;
    }
    if (form == Form::Latin1) {
        appendLatin1(utf8, piece, QeUToUnicodeConverter::NoLimit);
        return;
    }
    QeCString joined;
    if (!kept.empty()) {
        joined = std::exchange(kept, QeCString()) + piece;
        piece = joined;
    }
    if (form == Form::Utf16BigEndian)
        appendUtf16<std::endian::big>(utf8, piece, isLast);
    else
        appendUtf16<std::endian::little>(utf8, piece, isLast);
}

// Keeps a last odd byte, and a unit whose pair may come.
template <std::endian Order>
void PieceConverter::appendUtf16(QeCString& utf8, std::string_view units, bool isLast) {
    if (!isLast) {
        constexpr std::size_t HighByte = Order == std::endian::big ? 0 : 1;
        std::size_t whole = units.size() / 2 * 2;
        if (whole != 0 && (units[whole - 2 + HighByte] & 0xFC) == 0xD8) whole -= 2;
        kept.assign(units.substr(whole));
        units = units.substr(0, whole);
    }
    if (onMalformed == Malformed::Ends) {
        const std::size_t length = findMalformedUtf16<Order>(units);
        ended = length != units.size();
        if (ended) malformed.assign(units.substr(length, 2));
        units = units.substr(0, length);
    }
    voxal::appendUtf16<Order>(utf8, units, QeUToUnicodeConverter::NoLimit);
}

bool PieceConverter::hasByteEach() const noexcept {
    return tables ? tables->hasByteEach() : form == Form::Latin1;
}

const QeCString* PieceConverter::findMalformed() const noexcept {
    if (tables) return tables->findMalformed();
    return ended ? &malformed : nullptr;
}

}  // namespace voxal
