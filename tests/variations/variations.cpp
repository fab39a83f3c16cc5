// Runs a fuzz target on its seeds, and on variations of them: random bytes, and pieces of seeds put together anew,
// with a few bytes changed. They are the same in each run.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

std::vector<Bytes> contentsOf(const char* folder) {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());  // folders list their files in any order
    std::vector<Bytes> contents;
    for (const std::filesystem::path& path : paths) {
        std::ifstream file(path, std::ios::binary);
        contents.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return contents;
}

class Variations {
public:
    explicit Variations(std::vector<Bytes> from) : seeds(std::move(from)) {}

    Bytes next() { return below(2) == 0 ? randomBytes() : changedPieces(); }

private:
    std::size_t below(std::size_t limit) { return random() % limit; }
    std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }

    Bytes randomBytes() {
        Bytes bytes(below(2000));
        std::generate(bytes.begin(), bytes.end(), [this] { return byte(); });
        return bytes;
    }

    Bytes changedPieces() {
        Bytes bytes = seeds[below(seeds.size())];
        for (std::size_t pieces = below(4); pieces > 0; --pieces) {
            const Bytes& seed = seeds[below(seeds.size())];
            const auto from = seed.begin() + static_cast<std::ptrdiff_t>(below(seed.size()));
            bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(below(bytes.size())), from, seed.end());
        }
        for (std::size_t changes = below(4); changes > 0; --changes)
            bytes[below(bytes.size())] = byte();
        return bytes;
    }

    std::vector<Bytes> seeds;
    std::mt19937 random{1};
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return std::cerr << "which folder holds the seeds, and how many runs?\n", 2;
    const std::vector<Bytes> seeds = contentsOf(argv[1]);
    for (const Bytes& seed : seeds)
        LLVMFuzzerTestOneInput(seed.data(), seed.size());
    Variations variations(seeds);
    for (int runs = std::atoi(argv[2]); runs > 0; --runs) {
        const Bytes input = variations.next();
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
}
