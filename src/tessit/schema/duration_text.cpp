#include <charconv>
#include <limits>

#include <tessit/schema/duration_text.h>

namespace tessit {

namespace {

std::string_view withoutBlanksAndPlus(std::string_view field) noexcept {
    const std::size_t first = field.find_first_not_of(" \t\n\v\f\r");
    if (first == std::string_view::npos) return {};
    field.remove_prefix(first);
    if (field.starts_with('+')) field.remove_prefix(1);
    return field;
}

// Words that from_chars would take for numbers, and a second sign, are none here.
bool startsNumber(std::string_view field, std::string_view firstBytes) noexcept {
    return !field.empty() && firstBytes.find(field.front()) != std::string_view::npos;
}

// What the C library reads for a number that is too large.
template <typename Number>
constexpr Number PastTheTop = std::numeric_limits<Number>::max();
template <>
constexpr double PastTheTop<double> = std::numeric_limits<double>::infinity();

template <typename Number>
FieldNumber<Number> readNumber(std::string_view field, std::string_view firstBytes) noexcept {
    const std::string_view digits = withoutBlanksAndPlus(field);
    if (!startsNumber(digits, firstBytes)) return {0, false, field};
    const char* end = digits.data() + digits.size();
    Number value = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error == std::errc::invalid_argument) return {0, false, field};
    // No exponent is negative, since a minus sign ends a duration: so this is past the top.
    if (error == std::errc::result_out_of_range) value = PastTheTop<Number>;
    return {value, true, {stop, static_cast<std::size_t>(end - stop)}};
}

}  // namespace

FieldNumber<std::uint32_t> readCount(std::string_view field) noexcept {
    return readNumber<std::uint32_t>(field, "0123456789");
}

FieldNumber<double> readSeconds(std::string_view field) noexcept {
    return readNumber<double>(field, ".0123456789");
}

}  // namespace tessit
