#pragma once

#include <utility>

namespace tessit {

/// Storage that is kept between calls, taken out of its home for one use.
///
/// Whoever comes meanwhile finds an empty home and makes storage of its own, so
/// that a use within a use disturbs nothing.
template <typename T>
class Borrowed {
public:
    explicit Borrowed(T& owner) noexcept : home(owner), value(std::move(owner)) { value.clear(); }
    Borrowed(const Borrowed&) = delete;
    Borrowed& operator=(const Borrowed&) = delete;
    ~Borrowed() { home = std::move(value); }

    T& operator*() noexcept { return value; }
    T* operator->() noexcept { return &value; }

private:
    T& home;
    T value;
};

}  // namespace tessit
