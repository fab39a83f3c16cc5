#pragma once

#include <concepts>

#include <corvel/c_string.h>

/// A decimal number of any length, exact.
///
/// It keeps the digits that it is given, trailing zeros of the fraction included:
/// "1.50" stays "1.50". A copy is O(length); making one of a number, and looking at
/// it, is O(1).
class TESSIT_API QeDecimalPortable {
public:
    /// Zero.
    QeDecimalPortable() : digits("0") {}

    /// The number that `text` writes: an optional sign, digits, and optionally a
    /// full stop and more digits; digits must stand on one side of it at least.
    /// Throws `QeValueError` for anything else, blanks and exponents included. O(length).
    explicit QeDecimalPortable(const QeCString& text);

    /// The value of an integer.
    template <std::integral Integer>
    explicit QeDecimalPortable(Integer value) {
        if constexpr (std::signed_integral<Integer>)
            assignSigned(value);
        else
            assignUnsigned(value);
    }

    /// The shortest number that reads back as `value`: 0.1 is 0.1, not the binary
    /// fraction next to it. Throws `QeValueError` for an infinity or no number.
    explicit QeDecimalPortable(double value);

    /// The number without an exponent: "-" when it is negative, at least one digit,
    /// no needless zeros in front, and a full stop with the fraction when it has
    /// one. Zero has no sign.
    const QeCString& asString() const noexcept { return digits; }

private:
    void assignSigned(long long value);
    void assignUnsigned(unsigned long long value);

    QeCString digits;
};
