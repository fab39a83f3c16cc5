#include <algorithm>
#include <stdexcept>
#include <utility>

#include <tessit/model/binding_store.h>

namespace tessit {

namespace {

// Room for so many elements, which amounts to O(1) for each of them.
template <typename T>
void reserve(std::vector<T>& elements, std::size_t count) {
    if (count > elements.capacity()) elements.reserve(std::max(count, elements.size() + elements.size() / 2));
}

}  // namespace

BindingStore::Place BindingStore::placeBehind(Number first, std::size_t count) {
    constexpr std::size_t MostNumbers = UINT32_MAX / 2;
    const std::size_t number = first + count, index = number / ChunkSize;
    if (number >= MostNumbers) throw std::length_error("QeXmlNamespaceStack: too many bindings");
    if (count == 0 && index == chunkCount()) install(placeInRun(index, 4, 0));
    if (number % ChunkSize != 0 || count == 0 || continues(index)) return {first, &chunk(index)[number % ChunkSize]};
    const std::size_t length = (count + count / 2) / ChunkSize + 1;
    if (startsRun(first)) return placeInRun(first / ChunkSize, length, count);
    if (!isSpareRun(index, length)) return placeInRun(index, length, count);
    return {static_cast<Number>(index * ChunkSize), chunk(index) + count};
}

// Whether a chunk stands right behind the one before it.
bool BindingStore::continues(std::size_t index) const noexcept {
    return index < chunkCount() && chunk(index) == chunk(index - 1) + ChunkSize;
}

bool BindingStore::isSpareRun(std::size_t index, std::size_t length) const noexcept {
    if (index + length > chunkCount()) return false;
    for (std::size_t next = index + 1; next < index + length; ++next)
        if (!continues(next)) return false;
    return true;
}

bool BindingStore::startsRun(Number number) const noexcept {
    const auto found = std::lower_bound(runs.begin(), runs.end(), number / ChunkSize,
                                        [](const Run& run, std::size_t index) { return run.firstChunk < index; });
    return number % ChunkSize == 0 && found != runs.end() && found->firstChunk == number / ChunkSize;
}

// A new run, to stand where the chunk `index` is and all behind it, which hold nothing but the scope that moves.
BindingStore::Place BindingStore::placeInRun(std::size_t index, std::size_t length, std::size_t count) {
    auto run = std::make_unique<QeXmlNamespace[]>(length * ChunkSize);
    reserve(chunks, index + length);
    reserve(runs, runs.size() + 1);
    return {static_cast<Number>(index * ChunkSize), run.get() + count, std::move(run), length};
}

void BindingStore::settle(Place place, Number first, std::size_t count) noexcept {
    if (place.run == nullptr && place.first == first) return;
    QeXmlNamespace* const to = place.run != nullptr ? place.run.get() : &(*this)[place.first];
    if (count != 0) std::swap_ranges(&(*this)[first], &(*this)[first] + count, to);
    if (place.run != nullptr) install(std::move(place));
}

void BindingStore::install(Place place) noexcept {
    const std::size_t index = place.first / ChunkSize;
    while (!runs.empty() && runs.back().firstChunk >= index)
        runs.pop_back();
    chunks.resize(index - 1);
    for (std::size_t i = 0; i < place.length; ++i)
        chunks.push_back(place.run.get() + i * ChunkSize);
    runs.push_back({index, std::move(place.run)});
}

}  // namespace tessit
