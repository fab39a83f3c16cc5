#pragma once

#include <charconv>
#include <concepts>
#include <utility>

#include <corvel/c_string.h>

namespace corvel {

/// Appends a whole number in decimal, its digits padded in front up to `width`.
template <std::integral Integer>
void appendDecimal(QeCString& text, Integer value, std::size_t width = 1, char pad = '0') {
    char buffer[24];
    const char* first = buffer;
    const char* last = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
    if (std::cmp_less(value, 0)) text += *first++;
    const auto count = static_cast<std::size_t>(last - first);
    for (std::size_t i = count; i < width; ++i)
        text += pad;
    text.append(first, count);
}

template <std::integral Integer>
QeCString decimalText(Integer value) {
    QeCString text;
    appendDecimal(text, value);
    return text;
}

}  // namespace corvel
