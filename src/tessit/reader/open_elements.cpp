#include <cstring>

#include <tessit/reader/open_elements.h>

namespace tessit {

void OpenElements::push(std::string_view name) {
    const std::size_t before = names.length(), length = name.size();
    const bool isLong = length >= IsLong;
    char* const start = names.resizeForOverwrite(before + length + (isLong ? sizeof length : 0) + 1);
    char* at = start + before;
    std::memcpy(at, name.data(), length);
    at += length;
    if (isLong) std::memcpy(at, &length, sizeof length);
    at += isLong ? sizeof length : 0;
    *at = static_cast<char>(isLong ? IsLong : length);
}

std::size_t OpenElements::sizeOfLength() const noexcept {
    return static_cast<unsigned char>(names.end()[-1]) == IsLong ? 1 + sizeof(std::size_t) : 1;
}

std::string_view OpenElements::innermost() const noexcept {
    const std::size_t extra = sizeOfLength();
    std::size_t length = static_cast<unsigned char>(names.end()[-1]);
    if (extra != 1) std::memcpy(&length, names.end() - extra, sizeof length);
    return {names.end() - extra - length, length};
}

void OpenElements::pop() noexcept {
    names.truncate(names.length() - innermost().size() - sizeOfLength());
}

}  // namespace tessit
