#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tessit {

/// A number read off the front of a field, as the C library would read it: blanks
/// and one plus sign may precede it.
template <typename Number>
struct FieldNumber {
    Number value;           // 0 when there was none
    bool found;             // whether there was one
    std::string_view rest;  // what follows it
};

/// A whole number; past 32 bits, the largest that they hold.
FieldNumber<std::uint32_t> readCount(std::string_view field) noexcept;

/// A decimal number, with fraction and exponent or without; past the range of a
/// double, infinity.
FieldNumber<double> readSeconds(std::string_view field) noexcept;

/// The bytes of one field of a duration, up to its designator.
class FieldBytes {
public:
    static constexpr std::size_t MaxLength = 19;

    void append(char byte) noexcept {
        if (length < MaxLength) bytes[length] = byte;
        ++length;
    }

    bool tooLong() const noexcept { return length > MaxLength; }

    std::string_view view() const noexcept { return {bytes, tooLong() ? MaxLength : length}; }

    void clear() noexcept { length = 0; }

private:
    char bytes[MaxLength];
    std::size_t length = 0;  // of all that was appended
};

}  // namespace tessit
