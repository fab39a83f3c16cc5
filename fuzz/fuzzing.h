#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What the fuzz targets share. Each is a function that the fuzzer calls with one
/// input after the other; the sanitizers, `require` and any exception that gets
/// out of it end the run.
namespace tessit::fuzz {

/// Ends the run when something that must hold does not.
inline void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// Whether the trace of a document has what is refused, or said, in another way when the document comes in pieces.
inline bool differsInPieces(std::string_view nodes) {
    const auto says = [nodes](std::string_view words) { return nodes.find(words) != std::string_view::npos; };
    return says("An encoding is declared inside the root element") || says("make it grow too much") ||
           says("entities bring more text than they may");
}

/// An input that decisions are taken from, piece by piece from its front. Behind
/// its end there are zeros and empty texts.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : left(textOf(data, size)) {}

    bool empty() const { return left.empty(); }

    unsigned byte() {
        const std::string_view taken = text(1);
        return taken.empty() ? 0 : static_cast<unsigned char>(taken[0]);
    }

    /// A number from 0 to `count` - 1.
    unsigned below(std::size_t count) { return byte() % static_cast<unsigned>(count); }

    template <typename T, std::size_t Count>
    const T& oneOf(const T (&choices)[Count]) {
        return choices[below(Count)];
    }

    std::string_view text(std::size_t length) {
        const std::string_view taken = left.substr(0, length);
        left.remove_prefix(taken.size());
        return taken;
    }

    /// The text up to the next such byte, which is passed over.
    std::string_view until(char byte) {
        const std::string_view taken = text(std::min(left.find(byte), left.size()));
        text(1);
        return taken;
    }
    std::string_view line() { return until('\n'); }

    std::string_view rest() { return text(left.size()); }

private:
    std::string_view left;
};

}  // namespace tessit::fuzz
