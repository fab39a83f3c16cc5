#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include <corvel/byte_copy.h>

namespace tessit {

/// The names of the elements that are open, as they were written in their start tags,
/// for a reader that is to match end tags against them. Knows nothing of the document:
/// names are copied, since their bytes can go before the element ends.
///
/// A name costs its bytes and one more, so that a million open elements cost no more
/// than their start tags.
class OpenElements {
public:
    bool empty() const noexcept { return used == 0; }

    void push(std::string_view name) {
        const bool isLong = name.size() >= IsLong;
        const std::size_t size = name.size() + 1 + (isLong ? sizeof(std::size_t) : 0);
        if (bytes.size() - used < size) grow(size);
        char* at = bytes.data() + used;
        corvel::copyBytes(at, name.data(), name.size());
        used += size;
        if (isLong) return endLongName(name.size());
        at[name.size()] = static_cast<char>(name.size());
    }

    /// The innermost one; there must be one. Valid until the next push or pop.
    std::string_view innermost() const noexcept {
        const auto length = static_cast<unsigned char>(bytes[used - 1]);
        if (length == IsLong) return longNameBefore(used);
        return {bytes.data() + used - 1 - length, length};
    }

    /// That many of them, from inside. Valid until the next push or pop.
    std::vector<std::string_view> innermost(std::size_t count) const;

    void pop() noexcept {
        const std::size_t length = innermost().size();
        used -= length + 1 + (length >= IsLong ? sizeof(std::size_t) : 0);
    }

    /// Forgets all of them.
    void clear() noexcept { used = 0; }

private:
    // Behind each name stands its length: one byte, or for long names this byte and, in front of it, a whole number.
    static constexpr unsigned char IsLong = 0xFF;

    void grow(std::size_t size);
    void endLongName(std::size_t length) noexcept;
    std::string_view longNameBefore(std::size_t end) const noexcept;

    std::vector<char> bytes;  // outermost first; those behind `used` mean nothing
    std::size_t used = 0;
};

}  // namespace tessit
