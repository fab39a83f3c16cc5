#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

#include <corvel/byte_copy.h>
#include <corvel/byte_scan.h>

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
        if (name.size() > LongestShort || bytes.size() - used <= name.size()) return pushSlowly(name);
        char* const at = bytes.data() + used;
        corvel::copyBytes(at, name.data(), name.size());
        at[name.size()] = static_cast<char>(name.size());
        used += name.size() + 1;
    }

    /// The innermost one; there must be one. Valid until the next push or pop.
    std::string_view innermost() const noexcept {
        const auto length = static_cast<unsigned char>(bytes[used - 1]);
        if (length == IsLong) return longNameBefore(used);
        return {bytes.data() + used - 1 - length, length};
    }

    /// That many of them, from inside. Valid until the next push or pop.
    std::vector<std::string_view> innermost(std::size_t count) const;

    /// Drops the innermost one.
    void pop() noexcept { drop(innermost().size()); }

    /// The same if it is written like this. Whether it is.
    bool popIf(std::string_view name) noexcept {
        if (empty() || !corvel::sameBytes(name, innermost())) return false;
        drop(name.size());
        return true;
    }

    /// Forgets all of them.
    void clear() noexcept { used = 0; }

private:
    // Behind each name stands its length: one byte, or for long names this byte and, in front of it, a whole number.
    static constexpr unsigned char IsLong = 0xFF;

    static constexpr std::size_t LongestShort = 32;  // as most are: pushed without a call

    void drop(std::size_t length) noexcept { used -= length + 1 + (length >= IsLong ? sizeof(std::size_t) : 0); }
    void pushSlowly(std::string_view name);
    void grow(std::size_t size);
    std::string_view longNameBefore(std::size_t end) const noexcept;

    std::vector<char> bytes;  // outermost first; those behind `used` mean nothing
    std::size_t used = 0;
};

}  // namespace tessit
