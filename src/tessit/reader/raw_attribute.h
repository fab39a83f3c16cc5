#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

#include <corvel/compiler.h>
#include <tessit/reader/raw_name.h>

namespace tessit {

/// An attribute as scanned. A value with references was expanded into a scratch text,
/// behind the ones before, and is null until that text has all of the tag's.
struct RawAttribute {
    RawName name;
    const char* value;
    std::size_t valueLength;

    std::string_view valueText() const noexcept { return {value, valueLength}; }
};

/// The attributes of one tag as they come. Few of them are in room that whoever reads the tag has on the stack, so that
/// a small document pays for no allocation; many in memory that is kept from tag to tag.
class RawAttributes {
public:
    static constexpr std::size_t Few = 8;  // ordinary tags fit in

    /// The room, of an array that is empty first. What is in the array is gone with it.
    class Room {
    public:
        explicit Room(RawAttributes& array) noexcept : attributes(array) {
            array.first = array.last = few;
            array.roomEnd = few + Few;
        }
        ~Room() { attributes.first = attributes.last = attributes.roomEnd = nullptr; }
        Room(const Room&) = delete;
        Room& operator=(const Room&) = delete;

    private:
        RawAttributes& attributes;
        RawAttribute few[Few];
    };

    /// Moves the others where there is no room left. Amortised O(1); strong guarantee.
    void push_back(const RawAttribute& attribute) {
        if (last == roomEnd) grow();
        *last++ = attribute;
    }

    RawAttribute* begin() const noexcept { return first; }
    RawAttribute* end() const noexcept { return last; }
    std::size_t size() const noexcept { return static_cast<std::size_t>(last - first); }
    bool empty() const noexcept { return first == last; }
    RawAttribute& back() const noexcept { return last[-1]; }
    RawAttribute& operator[](std::size_t index) const noexcept { return first[index]; }

private:
    TESSIT_NOINLINE void grow() {
        const std::size_t count = size();
        if (manyCount < 2 * count) {
            auto more = std::make_unique<RawAttribute[]>(2 * count);
            std::copy(first, last, more.get());
            many = std::move(more);
            manyCount = 2 * count;
        } else {
            std::copy(first, last, many.get());  // from the stack
        }
        first = many.get();
        last = first + count;
        roomEnd = first + manyCount;
    }

    RawAttribute* first = nullptr;
    RawAttribute* last = nullptr;
    RawAttribute* roomEnd = nullptr;
    std::unique_ptr<RawAttribute[]> many;
    std::size_t manyCount = 0;
};

}  // namespace tessit
