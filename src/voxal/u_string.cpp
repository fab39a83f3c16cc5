#include <limits>
#include <new>
#include <unicode/ustring.h>
#include <voxal/converter.h>
#include <voxal/u_string.h>

QeUString::QeUString(std::string_view utf8) {
    constexpr UChar32 Replacement = 0xFFFD;
    if (utf8.size() > std::numeric_limits<std::int32_t>::max())
        throw QeUConversionError("a text of more than 2 GiB cannot be converted to UTF-16");
    const auto length = static_cast<std::int32_t>(utf8.size());
    text.resize(utf8.size());  // no byte makes more than one unit
    std::int32_t written = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(text.data(), length, &written, utf8.data(), length, Replacement, nullptr, &status);
    if (U_FAILURE(status)) throw QeUConversionError(u_errorName(status));
    text.resize(static_cast<std::size_t>(written));
}
