// The names of open elements that need room or are long, and those that are asked for from the innermost on.

#include <algorithm>

#include <tessit/reader/open_elements.h>

namespace tessit {

void OpenElements::grow(std::size_t size) {
    constexpr std::size_t Least = 64;
    bytes.resize(std::max({Least, used + size, bytes.size() + bytes.size() / 2}));
}

void OpenElements::pushSlowly(std::string_view name) {
    const bool isLong = name.size() >= IsLong;
    const std::size_t length = name.size(), size = length + 1 + (isLong ? sizeof length : 0);
    if (bytes.size() - used < size) grow(size);
    char* const at = bytes.data() + used;
    corvel::copyBytes(at, name.data(), length);
    if (isLong) std::memcpy(at + length, &length, sizeof length);
    at[size - 1] = static_cast<char>(isLong ? IsLong : length);
    used += size;
}

std::string_view OpenElements::longNameBefore(std::size_t end) const noexcept {
    std::size_t length;
    const char* const at = bytes.data() + end - 1 - sizeof length;
    std::memcpy(&length, at, sizeof length);
    return {at - length, length};
}

std::vector<std::string_view> OpenElements::innermost(std::size_t count) const {
    std::vector<std::string_view> names;
    for (std::size_t end = used; end != 0 && names.size() != count;
         end = static_cast<std::size_t>(names.back().data() - bytes.data())) {
        const auto length = static_cast<unsigned char>(bytes[end - 1]);
        names.push_back(length == IsLong ? longNameBefore(end)
                                         : std::string_view(bytes.data() + end - 1 - length, length));
    }
    return names;
}

}  // namespace tessit
