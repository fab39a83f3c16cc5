#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <tessit/model/xml_namespace.h>

/// Where a stack keeps its bindings. It knows scopes and numbers, and neither texts nor depths.
namespace tessit {

/// Elements by number that never move. The first stand within the object, so that few
/// need no memory of their own, the others in chunks: a growing vector would take up to
/// three times its size, for a moment.
template <typename T, std::size_t FirstOnes>
class ChunkedArray {
public:
    T& operator[](std::size_t number) noexcept {
        return number < FirstOnes ? first[number] : inChunk(number - FirstOnes);
    }
    const T& operator[](std::size_t number) const noexcept {
        return number < FirstOnes ? first[number] : inChunk(number - FirstOnes);
    }

    /// Makes sure that there are `count` elements.
    void makeRoomFor(std::size_t count) {
        while (count > FirstOnes + ChunkSize * chunks.size())
            chunks.push_back(std::make_unique<T[]>(ChunkSize));
    }

private:
    static constexpr std::size_t ChunkSize = 64;

    T& inChunk(std::size_t place) const noexcept { return chunks[place / ChunkSize][place % ChunkSize]; }

    T first[FirstOnes] = {};
    std::vector<std::unique_ptr<T[]>> chunks;
};

/// Bindings by number, oldest first, the last of which are those of the innermost scope.
///
/// None moves while another scope is innermost, and the bindings of a scope stand side
/// by side. Where a scope grows out of its chunks, it moves to a longer run of them:
/// to higher numbers at first, so that some are skipped, then in the place of its run.
/// What is dropped stays as storage for the next ones.
class BindingStore {
public:
    using Number = std::uint32_t;

    /// Where a scope finds room for one more binding.
    struct Place {
        Number first;          // of the scope, which may have to move there
        QeXmlNamespace* slot;  // of the new binding
        std::unique_ptr<QeXmlNamespace[]> run{};
        std::size_t length = 0;  // of the run, in chunks
    };

    BindingStore() = default;
    BindingStore(const BindingStore&) = delete;
    BindingStore& operator=(const BindingStore&) = delete;

    QeXmlNamespace& operator[](Number number) noexcept { return chunk(number / ChunkSize)[number % ChunkSize]; }
    const QeXmlNamespace& operator[](Number number) const noexcept {
        return chunk(number / ChunkSize)[number % ChunkSize];
    }

    /// Finds room behind the innermost scope, `count` bindings from the number `first`
    /// on. Nothing moves yet. Can throw.
    Place placeBehind(Number first, std::size_t count);

    /// Moves the scope there.
    void settle(Place place, Number first, std::size_t count) noexcept;

private:
    static constexpr std::size_t ChunkSize = 8;

    struct Run {
        std::size_t firstChunk;
        std::unique_ptr<QeXmlNamespace[]> bindings;
    };

    const QeXmlNamespace* chunk(std::size_t index) const noexcept { return index == 0 ? firstOnes : chunks[index - 1]; }
    QeXmlNamespace* chunk(std::size_t index) noexcept { return index == 0 ? firstOnes : chunks[index - 1]; }
    std::size_t chunkCount() const noexcept { return 1 + chunks.size(); }

    bool continues(std::size_t index) const noexcept;
    bool isSpareRun(std::size_t index, std::size_t length) const noexcept;
    bool startsRun(Number number) const noexcept;
    Place placeInRun(std::size_t index, std::size_t length, std::size_t count);
    void install(Place place) noexcept;

    QeXmlNamespace firstOnes[ChunkSize];
    std::vector<QeXmlNamespace*> chunks;  // all but the first
    std::vector<Run> runs;                // of which they are, in order
};

}  // namespace tessit
