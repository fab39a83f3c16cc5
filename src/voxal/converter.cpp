#include <algorithm>
#include <new>
#include <unicode/ucnv.h>
#include <voxal/converter.h>

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

// ICU's own name of an encoding; empty when it knows none.
std::string_view canonicalName(const QeCString& name) {
    if (!isEncodingName(name)) return {};
    UErrorCode status = U_ZERO_ERROR;
    const char* canonical = ucnv_getAlias(name.data(), 0, &status);
    return U_FAILURE(status) || canonical == nullptr ? std::string_view() : std::string_view(canonical);
}

// Running out of memory is not the document's fault.
[[noreturn]] void raise(UErrorCode status, const QeCString& message) {
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    throw QeUConversionError(message);
}

bool bothIn(std::string_view family, std::string_view left, std::string_view right) {
    return left.starts_with(family) && right.starts_with(family);
}

}  // namespace

void QeUToUnicodeConverter::Close::operator()(UConverter* converter) const noexcept {
    ucnv_close(converter);
}

QeUToUnicodeConverter::Handle QeUToUnicodeConverter::open(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    Handle converter(ucnv_open(name, &status));
    if (U_FAILURE(status)) raise(status, QeCString("no converter is known for it (") + u_errorName(status) + ")");
    return converter;
}

QeUToUnicodeConverter::QeUToUnicodeConverter(const QeCString& name) {
    if (!isEncodingName(name)) throw QeUConversionError("it is not the name of an encoding");
    source = open(name.data());
}

// Piece by piece, since ICU takes no more than 2 GB at once; it remembers a character that a piece cuts off.
QeCString QeUToUnicodeConverter::toUtf8(std::string_view bytes) const {
    constexpr std::ptrdiff_t PieceLength = 1 << 16;
    const Handle target = open("UTF-8");
    QeCString result;
    result.reserve(bytes.size());
    UChar pivot[1024];
    UChar* pivotRead = pivot;
    UChar* pivotWrite = pivot;
    char chunk[4096];
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    for (bool first = true;; first = false) {
        const char* const pieceEnd = at + std::min(end - at, PieceLength);
        UErrorCode status = U_ZERO_ERROR;
        char* written = chunk;
        ucnv_convertEx(target.get(), source.get(), &written, chunk + sizeof chunk, &at, pieceEnd, pivot, &pivotRead,
                       &pivotWrite, pivot + std::size(pivot), first, pieceEnd == end, &status);
        result.append(chunk, static_cast<std::size_t>(written - chunk));
        if (status == U_BUFFER_OVERFLOW_ERROR) continue;
        if (U_FAILURE(status)) raise(status, u_errorName(status));
        if (pieceEnd == end) return result;
    }
}

bool QeUToUnicodeConverter::sameEncoding(const QeCString& left, const QeCString& right) {
    const std::string_view canonicalLeft = canonicalName(left);
    const std::string_view canonicalRight = canonicalName(right);
    if (canonicalLeft.empty() || canonicalRight.empty()) return false;
    return canonicalLeft == canonicalRight || bothIn("UTF-16", canonicalLeft, canonicalRight) ||
           bothIn("UTF-32", canonicalLeft, canonicalRight);
}
