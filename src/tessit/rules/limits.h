#pragma once

#include <cstdint>

#include <tessit/errors/xml_limits.h>
#include <tessit/rules/source.h>

namespace tessit {

enum class Limit : std::uint8_t {
    Depth,
    Attributes,
    Bindings,
    Name,
    Value,
    Text,
    Node,
    Document,
    EntityDepth,
    ReplacementText,
    Declarations
};

/// What a limit is set to, its name, and what is said where it is exceeded.
std::uint64_t valueOf(const QeXmlLimits& limits, Limit limit) noexcept;
const char* nameOf(Limit limit) noexcept;
QeCString messageFor(const QeXmlLimits& limits, Limit limit);

/// Whether any limit is set.
bool areAny(const QeXmlLimits& limits) noexcept;

/// The limits of who set none.
inline constexpr QeXmlLimits NoLimits;

/// Thrown where nobody knows the place that an error has: whoever does makes one of it.
struct Exceeded {
    Limit limit;
    const char* place = nullptr;  // where that is known; in the text that is read
};

/// Refuses so many of something where the limit is less.
inline void hold(std::uint64_t count, std::uint64_t most, Limit limit, const char* place = nullptr) {
    if (count > most) [[unlikely]]
        throw Exceeded{limit, place};
}

/// Throws `QeXmlLimitError` with the place.
[[noreturn]] void refuseLimit(const Source& source, const char* place, const QeXmlLimits& limits, Limit limit);

}  // namespace tessit
