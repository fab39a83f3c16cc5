#pragma once

#include <cstddef>
#include <string_view>

#include <corvel/c_string.h>

namespace tessit {

/// The names of the elements that are open, as they were written in their start tags,
/// for a reader that is to match end tags against them. Knows nothing of the document:
/// names are copied, since their bytes can go before the element ends.
///
/// A name costs its bytes and one more, so that a million open elements cost no more
/// than their start tags.
class OpenElements {
public:
    bool empty() const noexcept { return names.empty(); }

    void push(std::string_view name);

    /// The innermost one; there must be one. Valid until the next push or pop.
    std::string_view innermost() const noexcept;

    void pop() noexcept;

    /// Forgets all of them.
    void clear() noexcept { names.clear(); }

private:
    // Behind each name stands its length: one byte, or for long names this byte and, in front of it, a whole number.
    static constexpr unsigned char IsLong = 0xFF;

    std::size_t sizeOfLength() const noexcept;

    QeCString names;  // outermost first
};

}  // namespace tessit
