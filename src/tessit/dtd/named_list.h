#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <corvel/keyed_hash.h>

namespace tessit {

/// Things that have a name each, in the order in which they came. They are found by it in
/// O(1), whatever names a document chooses. `Container` is a vector, or a deque where they
/// keep their addresses.
template <typename Thing, template <typename...> typename Container>
class NamedList {
public:
    /// The thing of that name, or null.
    const Thing* find(std::string_view name) const noexcept {
        const std::uint32_t number = slots.empty() ? searchAll(name) : slots[slotOf(name)];
        return number == None ? nullptr : &things[number];
    }
    Thing* find(std::string_view name) noexcept {
        return const_cast<Thing*>(static_cast<const NamedList*>(this)->find(name));
    }

    /// A new thing of that name, which no other one has.
    Thing& append(std::string_view name) {
        if (things.size() >= FewThings && 2 * (things.size() + 1) > slots.size()) growSlots();
        Thing& thing = things.emplace_back();
        try {
            thing.name.assign(name);
        } catch (...) {
            things.pop_back();
            throw;
        }
        if (!slots.empty()) slots[slotOf(name)] = static_cast<std::uint32_t>(things.size() - 1);
        return thing;
    }

    bool empty() const noexcept { return things.empty(); }
    std::size_t size() const noexcept { return things.size(); }
    auto begin() noexcept { return things.begin(); }
    auto end() noexcept { return things.end(); }
    auto begin() const noexcept { return things.begin(); }
    auto end() const noexcept { return things.end(); }

private:
    static constexpr std::uint32_t None = UINT32_MAX;
    static constexpr std::size_t FewThings = 8;  // are looked through

    std::uint32_t searchAll(std::string_view name) const noexcept {
        for (std::uint32_t number = 0; number != things.size(); ++number)
            if (things[number].name == name) return number;
        return None;
    }

    // Where the number of that name stands, or is to stand.
    std::size_t slotOf(std::string_view name) const noexcept {
        std::size_t slot = corvel::keyedHash(name, corvel::HashSecret::ofProcess()) & (slots.size() - 1);
        while (slots[slot] != None && things[slots[slot]].name != name)
            slot = (slot + 1) & (slots.size() - 1);
        return slot;
    }

    void growSlots() {
        slots = std::vector<std::uint32_t>(slots.empty() ? 4 * FewThings : 2 * slots.size(), None);
        for (std::uint32_t number = 0; number != things.size(); ++number)
            slots[slotOf(things[number].name)] = number;
    }

    Container<Thing> things;
    std::vector<std::uint32_t> slots;  // numbers by hash, once there are many; their number is a power of two
};

}  // namespace tessit
