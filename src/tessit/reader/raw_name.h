#pragma once

#include <cstddef>
#include <string_view>

namespace tessit {

/// A name as it stands in the document.
struct RawName {
    const char* data;
    std::size_t length;
    std::size_t localStart;  ///< behind the first colon; 0 without one

    std::string_view whole() const noexcept { return {data, length}; }
    std::string_view local() const noexcept { return {data + localStart, length - localStart}; }
    std::string_view prefix() const noexcept { return {data, localStart == 0 ? 0 : localStart - 1}; }

    /// The name that these bytes are.
    static RawName of(std::string_view whole, bool hasPrefix = true) noexcept {
        return {whole.data(), whole.size(), hasPrefix ? whole.find(':') + 1 : 0};
    }
};

}  // namespace tessit
