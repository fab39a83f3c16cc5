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
    explicit IcuDecoder(const char* name) : source(open(name)), target(open("UTF-8")) {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_setToUCallBack(source.get(), replaceMalformed, nullptr, nullptr, nullptr, &status);
    }

    bool decode(const char*& at, const char* end, bool isLast, char*& out, const char* outEnd) override {
        UErrorCode status = U_ZERO_ERROR;
        ucnv_convertEx(target.get(), source.get(), &out, outEnd, &at, end, pivot, &pivotRead, &pivotWrite,
                       std::end(pivot), isNew, isLast, &status);
        isNew = false;
        if (status == U_BUFFER_OVERFLOW_ERROR) return false;
        if (U_FAILURE(status)) raise(status, "its bytes cannot be converted");
        isNew = isLast;
        return true;
    }

private:
    Handle source, target;
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
std::unique_ptr<Decoder> openDecoder(const QeCString& name) {
    const QeCString withoutOptions(std::string_view(name).substr(0, std::string_view(name).find(',')));
    if (canonicalName(name).empty() && canonicalName(withoutOptions).empty())
        throw QeUConversionError("no converter is known for it");
    return std::make_unique<IcuDecoder>(name.data());
}

std::string_view canonicalName(const QeCString& name) {
    return findAlias(name.data());
}

}  // namespace voxal
