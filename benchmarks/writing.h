#pragma once

#include <measurement.h>
#include <memory>
#include <vector>
#include <writer.h>

namespace benchmark {
class State;
}

namespace tessit::benchmarks {

/// The benchmarks of writing: one document with each writer.
class Writing {
public:
    Writing(std::vector<Writer> contestants, std::size_t bytes);

    /// The benchmarks find their measurement in the list and refer to this object: both must outlive them.
    void registerBenchmarks(std::vector<Measurement>& measurements);

    /// Writes with every writer, reads the result and reports what is not what was to be written. Whether all was.
    bool check();

private:
    void measure(benchmark::State& state, Measurement& measurement, std::size_t writer);
    Writable& writableOf(std::size_t writer);

    Composition<std::string> composition;
    std::vector<Writer> writers;
    std::vector<std::unique_ptr<Writable>> writables;  // made when first needed
};

}  // namespace tessit::benchmarks
