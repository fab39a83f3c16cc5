#pragma once

#include <cstddef>
#include <string_view>

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

}  // namespace tessit
