#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include <corvel/c_string.h>

namespace tessit {

/// What stands behind an input: bytes that are all there, or that are read piece by piece.
class ByteSource {
public:
    ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;
    virtual ~ByteSource() = default;

    /// All bytes, of a source that has them in memory: they stay as long as it lives. Such a one is not read.
    virtual std::optional<std::string_view> whole() const noexcept { return std::nullopt; }

    /// Reads at least one byte and at most as many as there is room for; 0 is the end. Waits for no more than one.
    virtual std::size_t read(std::span<char> room) = 0;

    /// How many bytes there are in all, where that is known.
    virtual std::optional<std::uint64_t> size() const noexcept { return std::nullopt; }
};

std::unique_ptr<ByteSource> openFile(const std::filesystem::path& path);
std::unique_ptr<ByteSource> openDescriptor(int number, const QeCString& name);
std::unique_ptr<ByteSource> mapFile(const std::filesystem::path& path);

}  // namespace tessit
