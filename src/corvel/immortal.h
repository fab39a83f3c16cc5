#pragma once

#include <utility>

namespace corvel {

/// A value of static storage that is never destroyed, so that whatever runs while the
/// program ends can use it.
template <typename T>
union Immortal {
    template <typename... Arguments>
    explicit constexpr Immortal(Arguments&&... arguments) : value(std::forward<Arguments>(arguments)...) {}
    constexpr ~Immortal() {}  // NOLINT(modernize-use-equals-default): that would be deleted

    T value;
};

}  // namespace corvel
