#pragma once

#include <reader.h>
#include <vector>
#include <writer.h>

namespace tessit::benchmarks {

/// Everyone who reads or writes.
struct Contestants {
    std::vector<Reader> readers;
    std::vector<Writer> writers;
};

/// Ours first, then the peers that the build was configured with, then the floors.
Contestants allContestants();

}  // namespace tessit::benchmarks
