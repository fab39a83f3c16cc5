#include <tessit/errors/catalog.h>

namespace {

constexpr char Domain[] = "tessit_";

constexpr QeCatMsg BoundedArray{Domain, 0x7101, "[BOUNDED_ARRAY][Array is bounded]"};
constexpr QeCatMsg ParsingError{Domain, 0x7102,
                                "[PARSING_ERROR][A parse error occurred while parsing the XML document]"};
constexpr QeCatMsg InvalidDatetimeFormat{
    Domain, 0x7103, "[INVALID_DATETIME_FORMAT] Allowed datetime or date or time format MUST confirm to ISO8601"};

}  // namespace

const QeCatMsg* qetessit_BOUNDED_ARRAY() noexcept {
    return &BoundedArray;
}
const QeCatMsg* qetessit_PARSING_ERROR() noexcept {
    return &ParsingError;
}
const QeCatMsg* qetessit_INVALID_DATETIME_FORMAT() noexcept {
    return &InvalidDatetimeFormat;
}
