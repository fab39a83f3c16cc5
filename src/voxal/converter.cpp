#include <algorithm>
#include <iterator>
#include <voxal/converter.h>
#include <voxal/decoder.h>

namespace {

// What encoding names are made of, ICU's options (",version=1") included. No
// slash and no NUL: a name comes from the document and must not become a path.
bool isEncodingName(std::string_view name) {
    constexpr std::string_view Signs = "-_.:+,=()";
    return !name.empty() && std::all_of(name.begin(), name.end(), [&](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
               Signs.find(byte) != std::string_view::npos;
    });
}

bool bothIn(std::string_view family, std::string_view left, std::string_view right) {
    return left.starts_with(family) && right.starts_with(family);
}

}  // namespace

QeUToUnicodeConverter::QeUToUnicodeConverter(const QeCString& name)
    : QeUToUnicodeConverter(name, voxal::Malformed::Replaced) {}

QeUToUnicodeConverter::QeUToUnicodeConverter(const QeCString& name, voxal::Malformed malformed) {
    if (!isEncodingName(name)) throw QeUConversionError("it is not the name of an encoding");
    decoder = voxal::openDecoder(name, malformed);
}

QeUToUnicodeConverter::QeUToUnicodeConverter(QeUToUnicodeConverter&&) noexcept = default;
QeUToUnicodeConverter& QeUToUnicodeConverter::operator=(QeUToUnicodeConverter&&) noexcept = default;
QeUToUnicodeConverter::~QeUToUnicodeConverter() = default;

QeCString QeUToUnicodeConverter::toUtf8(std::string_view bytes, std::size_t mostBytes) {
    constexpr std::size_t PieceLength = 1 << 16;  // ICU takes no more than 2 GB at once
    QeCString result;
    result.reserve(std::min(bytes.size(), mostBytes));
    for (; bytes.size() > PieceLength && !decoder->hasEnded(); bytes.remove_prefix(PieceLength))
        append(result, bytes.substr(0, PieceLength), MoreFollow, mostBytes);
    append(result, bytes, Last, mostBytes);
    return result;
}

namespace {

// Grows by half at a time, but never past `mostBytes`.
void makeRoom(QeCString& text, std::size_t count, std::size_t mostBytes) {
    const std::size_t length = text.length();
    if (length > mostBytes || count > mostBytes - length) throw QeUConversionTooLong();
    if (count > text.capacity() - length)
        text.reserve(length + std::min(std::max(count, length / 2), mostBytes - length));
}

}  // namespace

void QeUToUnicodeConverter::append(QeCString& utf8, std::string_view piece, Piece position, std::size_t mostBytes) {
    char chunk[4096];
    const char* at = piece.data();
    for (bool done = false; !done;) {
        char* written = chunk;
        done = decoder->decode(at, piece.data() + piece.size(), position == Last, written, std::end(chunk));
        const auto count = static_cast<std::size_t>(written - chunk);
        makeRoom(utf8, count, mostBytes);
        utf8.append(chunk, count);
    }
}

const QeCString* QeUToUnicodeConverter::findMalformed() const noexcept {
    return decoder->hasEnded() ? &decoder->malformedBytes() : nullptr;
}

bool QeUToUnicodeConverter::hasByteEach() const noexcept {
    return decoder->hasByteEach();
}

std::string_view QeUToUnicodeConverter::canonicalName(const QeCString& name) {
    return isEncodingName(name) ? voxal::canonicalName(name) : std::string_view();
}

bool QeUToUnicodeConverter::sameEncoding(const QeCString& left, const QeCString& right) {
    const std::string_view canonicalLeft = canonicalName(left), canonicalRight = canonicalName(right);
    if (canonicalLeft.empty() || canonicalRight.empty()) return false;
    return canonicalLeft == canonicalRight || bothIn("UTF-16", canonicalLeft, canonicalRight) ||
           bothIn("UTF-32", canonicalLeft, canonicalRight);
}
