#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

/// A growable array that keeps its elements' storage when it is emptied.
///
/// Elements behind the last one in use stay constructed as spare slots, so that
/// what is filled and cleared over and over (the attributes of each tag, the
/// bindings of each scope) stops allocating: a new element takes a spare slot
/// and assigns to the strings in it. Copies take over the elements in use only.
///
/// Accessors, swaps and moves, but for what they replace, are O(1); copies are
/// O(elements in use), and one that throws leaves the array as it was.
template <typename T>
class QeSlotArray {
public:
    QeSlotArray() = default;
    QeSlotArray(const QeSlotArray& other) : slots(other.begin(), other.end()), used(other.used) {}
    QeSlotArray(QeSlotArray&& other) noexcept : slots(std::move(other.slots)), used(std::exchange(other.used, 0)) {}
    ~QeSlotArray() = default;

    // Two assignments, not one by value: that would be noexcept, hence also the
    // default assignment of a class with such a member, which copies all the same.
    QeSlotArray& operator=(const QeSlotArray& other) {
        QeSlotArray(other).swap(*this);
        return *this;
    }

    QeSlotArray& operator=(QeSlotArray&& other) noexcept {
        QeSlotArray(std::move(other)).swap(*this);
        return *this;
    }

    T* begin() noexcept { return slots.data(); }
    T* end() noexcept { return slots.data() + used; }
    const T* begin() const noexcept { return slots.data(); }
    const T* end() const noexcept { return slots.data() + used; }
    T& operator[](std::size_t index) noexcept { return slots[index]; }
    const T& operator[](std::size_t index) const noexcept { return slots[index]; }
    T& back() noexcept { return slots[used - 1]; }
    const T& back() const noexcept { return slots[used - 1]; }

    std::size_t size() const noexcept { return used; }
    bool empty() const noexcept { return used == 0; }

    /// Makes sure that there are slots for `count` elements in all. Amortised O(slots added); strong guarantee.
    void reserveSlots(std::size_t count) {
        if (count > slots.size()) slots.resize(std::max(count, slots.size() + slots.size() / 2));
    }

    /// Appends an element, in whatever state its slot was left. Amortised O(1); strong guarantee.
    T& append() {
        if (used == slots.size()) reserveSlots(std::max<std::size_t>(4, used + 1));
        return slots[used++];
    }

    /// Makes exactly `count` elements the ones in use, in whatever state their slots
    /// were left. O(1) where there are slots enough, else as `reserveSlots`.
    void takeSlots(std::size_t count) {
        reserveSlots(count);
        used = count;
    }

    /// Appends an element that `fill` writes, over whatever is left in its slot.
    /// `fill` may read the elements that are there: they do not move before it is
    /// done. Amortised O(1). Strong guarantee: should anything throw, no element
    /// has moved either.
    template <typename Fill>
    T& append(const Fill& fill) {
        if (used < slots.size()) {
            fill(slots[used]);
            return slots[used++];
        }
        T filled;
        fill(filled);
        return append() = std::move(filled);
    }

    /// Replaces all elements by copies of those of another array, in the slots that are there. After a throw, there
    /// are none. O(elements of the other array), and `reserveSlots`.
    void assignInPlace(const QeSlotArray& other) {
        clear();
        reserveSlots(other.used);
        std::copy(other.begin(), other.end(), begin());
        used = other.used;
    }

    /// Drops the last element and keeps its slot. O(1).
    void dropLast() noexcept { --used; }

    /// Drops all elements and keeps their slots. O(1).
    void clear() noexcept { used = 0; }

    /// Moves the last element to `position`, and those from there on up by one. O(elements moved).
    void moveLastTo(T* position) noexcept {
        T last = std::move(back());
        std::move_backward(position, end() - 1, end());
        *position = std::move(last);
    }

    /// Removes the element at `position`; those behind it move down by one. O(elements moved).
    void remove(T* position) noexcept {
        T removed = std::move(*position);
        std::move(position + 1, end(), position);
        back() = std::move(removed);
        dropLast();
    }

    void swap(QeSlotArray& other) noexcept {
        slots.swap(other.slots);
        std::swap(used, other.used);
    }

private:
    std::vector<T> slots;
    std::size_t used = 0;
};
