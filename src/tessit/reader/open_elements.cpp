#include <algorithm>

#include <tessit/reader/open_elements.h>

namespace tessit {

void OpenElements::grow(std::size_t size) {
    constexpr std::size_t Least = 64;
    bytes.resize(std::max({Least, used + size, bytes.size() + bytes.size() / 2}));
}

void OpenElements::endLongName(std::size_t length) noexcept {
    char* const at = bytes.data() + used - 1;
    std::memcpy(at - sizeof length, &length, sizeof length);
    *at = static_cast<char>(IsLong);
}

std::string_view OpenElements::innermostLong() const noexcept {
    std::size_t length;
    const char* const at = bytes.data() + used - 1 - sizeof length;
    std::memcpy(&length, at, sizeof length);
    return {at - length, length};
}

}  // namespace tessit
