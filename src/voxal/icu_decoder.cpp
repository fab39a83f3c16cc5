// All encodings, by ICU's converters.

#include <cstdint>
#include <iterator>
#include <new>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <voxal/converter.h>
#include <voxal/decoder.h>

namespace voxal {

namespace {

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

// Keeps the converters' states, and units that were read and not yet written.
class IcuDecoder : public Decoder {
public:
    IcuDecoder(const char* name, Malformed malformed)
        : source(open(name)), target(open("UTF-8")), onMalformed(malformed) {
        UErrorCode status = U_ZERO_ERROR;
        const bool isReplaced = malformed == Malformed::Replaced;
        ucnv_setToUCallBack(source.get(), isReplaced ? replaceMalformed : UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr,
                            nullptr, &status);
        if (!isReplaced)
            ucnv_setFromUCallBack(target.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    }

    bool decode(const char*& at, const char* end, bool isLast, char*& out, const char* outEnd) override {
        if (hasEnded()) return writeRest(out, outEnd);
        UErrorCode status = U_ZERO_ERROR;
        ucnv_convertEx(target.get(), source.get(), &out, outEnd, &at, end, pivot, &pivotRead, &pivotWrite,
                       std::end(pivot), isNew, isLast, &status);
        isNew = false;
        if (status == U_BUFFER_OVERFLOW_ERROR) return false;
        if (U_FAILURE(status)) {
            if (onMalformed == Malformed::Replaced || status == U_MEMORY_ALLOCATION_ERROR)
                raise(status, "its bytes cannot be converted");
            endAtMalformed();
            return writeRest(out, outEnd);
        }
        isNew = isLast;
        return true;
    }

    bool hasByteEach() const noexcept override { return ucnv_getMaxCharSize(source.get()) == 1; }

private:
    // Either converter may have met what means nothing. What the pivot still has is text in front
    // of it in the one case, and behind it in the other.
    void endAtMalformed() {
        UErrorCode status = U_ZERO_ERROR;
        char bytes[32];
        std::int8_t length = std::size(bytes);
        ucnv_getInvalidChars(source.get(), bytes, &length, &status);
        const bool isKnown = U_SUCCESS(status) && length > 0;
        endAt({bytes, isKnown ? static_cast<std::size_t>(length) : 0});
        if (!isKnown) pivotRead = pivotWrite;
    }

    bool writeRest(char*& out, const char* outEnd) {
        UErrorCode status = U_ZERO_ERROR;
        const UChar* read = pivotRead;
        ucnv_fromUnicode(target.get(), &out, outEnd, &read, pivotWrite, nullptr, true, &status);
        pivotRead = pivot + (read - pivot);
        return status != U_BUFFER_OVERFLOW_ERROR;
    }

    Handle source, target;
    Malformed onMalformed;
    UChar pivot[1024];
    UChar* pivotRead = pivot;
    UChar* pivotWrite = pivot;
    bool isNew = true;
};

std::string_view findAlias(const char* name) {
    UErrorCode status = U_ZERO_ERROR;
    const char* canonical = ucnv_getAlias(name, 0, &status);
    return U_FAILURE(status) || canonical == nullptr ? std::string_view() : std::string_view(canonical);
}

}  // namespace

// ICU looks for a file by the name of what is not in its list, in the folder that
// the variable ICU_DATA names. Options stand behind a comma; some names in the
// list have them.
std::unique_ptr<Decoder> openDecoder(const QeCString& name, Malformed malformed) {
    const QeCString withoutOptions(std::string_view(name).substr(0, std::string_view(name).find(',')));
    if (canonicalName(name).empty() && canonicalName(withoutOptions).empty())
        throw QeUConversionError("no converter is known for it");
    return std::make_unique<IcuDecoder>(name.data(), malformed);
}

std::string_view canonicalName(const QeCString& name) {
    return findAlias(name.data());
}

}  // namespace voxal
