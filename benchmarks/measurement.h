#pragma once

#include <allocations.h>
#include <optional>
#include <reader.h>
#include <string>
#include <vector>

namespace tessit::benchmarks {

/// What was measured of one library at one piece of work.
struct Measurement {
    std::string work;  ///< "read" or "write"
    std::string corpus;
    std::string library;
    std::string version;
    Role role = Role::Peer;
    std::size_t bytes = 0;
    std::size_t documents = 1;
    std::uint64_t nodes = 0;
    std::optional<Allocations> allocations = {};  ///< for all documents, once they were counted
    std::vector<double> nanoseconds = {};         ///< one figure a round, for all documents

    /// As the benchmark is called: work, corpus and library.
    std::string name() const { return work + '/' + corpus + '/' + library; }
};

/// Writes one line a measurement that was made, below what is known of machine and
/// compiler. Times are in nanoseconds, memory in bytes; `processorShare` is how much of
/// a processor the measurements had, 1 being all of it.
void writeCsv(const std::string& file, const std::vector<Measurement>& measurements, double processorShare);

}  // namespace tessit::benchmarks
