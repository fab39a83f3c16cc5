#pragma once

#include <string_view>

#include <tessit/export.h>

/// The words in which dates are written.
///
/// There is one locale, that of the C language: English names, whatever the
/// locale of the process. Views live for ever. Every operation is O(1).
class TESSIT_API QeLocale {
public:
    static QeLocale defaultLocale() noexcept { return {}; }

    /// The name of a weekday: 0 is Sunday, 6 Saturday; empty for other numbers.
    std::string_view weekdayName(int fromSunday) const noexcept;

    /// The name of a month, 1 to 12; empty for other numbers.
    std::string_view monthName(int month) const noexcept;

private:
    QeLocale() noexcept = default;
};
