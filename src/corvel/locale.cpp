#include <array>

#include <corvel/locale.h>

namespace {

constexpr std::array<std::string_view, 7> Weekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                      "Thursday", "Friday", "Saturday"};

constexpr std::array<std::string_view, 12> Months = {"January",   "February", "March",    "April",
                                                     "May",       "June",     "July",     "August",
                                                     "September", "October",  "November", "December"};

template <std::size_t Count>
std::string_view nameAt(const std::array<std::string_view, Count>& names, int index) {
    return index < 0 || index >= static_cast<int>(Count) ? std::string_view() : names[static_cast<std::size_t>(index)];
}

}  // namespace

std::string_view QeLocale::weekdayName(int fromSunday) const noexcept {
    return nameAt(Weekdays, fromSunday);
}

std::string_view QeLocale::monthName(int month) const noexcept {
    return month < 1 ? std::string_view() : nameAt(Months, month - 1);
}
