#include <algorithm>
#include <cstdint>
#include <iterator>
#include <new>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
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
[[noreturn]] void raise(UErrorCode status, const char* message) {
    if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
    throw QeUConversionError(message);
}

struct Close {
    void operator()(UConverter* converter) const noexcept { ucnv_close(converter); }
};
using Handle = std::unique_ptr<UConverter, Close>;

Handle open(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    Handle converter(ucnv_open(name, &status));
    if (U_FAILURE(status)) raise(status, "no converter is known for it");
    return converter;
}

// ICU's own way makes U+001A, which XML forbids, of some bytes.
void replaceMalformed(const void*, UConverterToUnicodeArgs* where, const char*, std::int32_t,
                      UConverterCallbackReason reason, UErrorCode* status) {
    constexpr UChar Replacement = 0xFFFD;
    if (reason > UCNV_IRREGULAR) return;
    *status = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(where, &Replacement, 1, 0, status);
}

bool bothIn(std::string_view family, std::string_view left, std::string_view right) {
    return left.starts_with(family) && right.starts_with(family);
}

}  // namespace

// What ICU keeps between two pieces: the converters' states, and units that were
// read and not yet written.
class QeUToUnicodeConverter::Conversion {
public:
    explicit Conversion(const char* name) : source(open(name)), target(open("UTF-8")) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setToUCallBack(source.get(), replaceMalformed, nullptr, nullptr, nullptr, &status);
    }

    // Writes to `out` until that is full, or `at` has come to `end`: then true.
    bool convert(const char*& at, const char* end, Piece position, char*& out, const char* outEnd) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_convertEx(target.get(), source.get(), &out, outEnd, &at, end, pivot, &pivotRead, &pivotWrite,
                       std::end(pivot), isNew, position == Last, &status);
        isNew = false;
        if (status == U_BUFFER_OVERFLOW_ERROR) return false;
        if (U_FAILURE(status)) raise(status, "its bytes cannot be converted");
        isNew = position == Last;
        return true;
    }

private:
    Handle source, target;
    UChar pivot[1024];
    UChar* pivotRead = pivot;
    UChar* pivotWrite = pivot;
    bool isNew = true;
};

QeUToUnicodeConverter::QeUToUnicodeConverter(const QeCString& name) {
    if (!isEncodingName(name)) throw QeUConversionError("it is not the name of an encoding");
    conversion = std::make_unique<Conversion>(name.data());
}

QeUToUnicodeConverter::QeUToUnicodeConverter(QeUToUnicodeConverter&&) noexcept = default;
QeUToUnicodeConverter& QeUToUnicodeConverter::operator=(QeUToUnicodeConverter&&) noexcept = default;
QeUToUnicodeConverter::~QeUToUnicodeConverter() = default;

QeCString QeUToUnicodeConverter::toUtf8(std::string_view bytes, std::size_t mostBytes) {
    constexpr std::size_t PieceLength = 1 << 16;  // ICU takes no more than 2 GB at once
    QeCString result;
    result.reserve(std::min(bytes.size(), mostBytes));
    for (; bytes.size() > PieceLength; bytes.remove_prefix(PieceLength))
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
        done = conversion->convert(at, piece.data() + piece.size(), position, written, std::end(chunk));
        const auto count = static_cast<std::size_t>(written - chunk);
        makeRoom(utf8, count, mostBytes);
        utf8.append(chunk, count);
    }
}

bool QeUToUnicodeConverter::sameEncoding(const QeCString& left, const QeCString& right) {
    const std::string_view canonicalLeft = canonicalName(left);
    const std::string_view canonicalRight = canonicalName(right);
    if (canonicalLeft.empty() || canonicalRight.empty()) return false;
    return canonicalLeft == canonicalRight || bothIn("UTF-16", canonicalLeft, canonicalRight) ||
           bothIn("UTF-32", canonicalLeft, canonicalRight);
}
