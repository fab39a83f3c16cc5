#include <benchmark/benchmark.h>
#include <cpu_clock.h>
#include <expectation.h>
#include <instructions.h>
#include <iostream>
#include <vector_state.h>
#include <writing.h>

namespace tessit::benchmarks {

namespace {

constexpr std::uint64_t Seed = 20240229;
constexpr char CorpusName[] = "orders";

using Node = ComposedNode<std::string>;

void countStart(Tally& tally, const std::vector<ComposedName<std::string>>& names, const Node& node) {
    tally.element(std::string_view(names[node.name].qualified));
    tally.addUri(std::string_view(names[node.name].uri));
    for (const auto& [index, value] : node.attributes) {
        tally.attribute(std::string_view(names[index].qualified), std::string_view(value));
        tally.addUri(std::string_view(names[index].uri));
    }
}

Tally countOf(const Composition<std::string>& composition) {
    Tally tally;
    for (const Node& node : composition.nodes) {
        if (node.kind == Node::Kind::Text) tally.text(std::string_view(node.text));
        if (node.kind == Node::Kind::End) tally.elementEnd();
        if (node.kind == Node::Kind::Start || node.kind == Node::Kind::Empty)
            countStart(tally, composition.names, node);
    }
    return tally;
}

std::string resultOf(Writable& writable) {
    std::string result;
    writable.write([&](std::string_view text) { result = text; });
    return result;
}

}  // namespace

Writing::Writing(std::vector<Writer> contestants, std::size_t bytes)
    : composition(composeOrders(bytes, Seed)), writers(std::move(contestants)), writables(writers.size()) {}

Writable& Writing::writableOf(std::size_t writer) {
    if (writables[writer] == nullptr) writables[writer] = writers[writer].prepare(composition);
    return *writables[writer];
}

void Writing::registerBenchmarks(std::vector<Measurement>& measurements) {
    for (std::size_t i = 0; i < writers.size(); ++i) {
        measurements.push_back({.work = "write",
                                .corpus = CorpusName,
                                .library = writers[i].name,
                                .version = writers[i].version,
                                .role = writers[i].role});
        const auto run = [this, i, &measurements, index = measurements.size() - 1](auto& state) {
            measure(state, measurements[index], i);
        };
        benchmark::RegisterBenchmark(measurements.back().name().c_str(), run)->UseManualTime();
    }
}

void Writing::measure(benchmark::State& state, Measurement& measurement, std::size_t writer) {
    Writable& writable = writableOf(writer);
    std::size_t bytes = 0;
    const auto write = [&] { writable.write([&](std::string_view text) { bytes = text.size(); }); };
    write();  // what is made once in a process counts for no document
    if (!measurement.allocations)
        measurement.allocations = countAllocations([&] { countInstructions(measurement.name(), write); });
    for ([[maybe_unused]] const auto& iteration : state) {
        settleVectorState();
        const CpuClock clock;
        write();
        state.SetIterationTime(clock.seconds());
    }
    measurement.bytes = bytes;
    measurement.nodes = composition.nodes.size();
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

// Escapes differ from library to library, and so do lengths: what counts is that the result reads the same.
bool Writing::check() {
    const Tally expected = countOf(composition);
    bool good = true;
    for (std::size_t i = 0; i < writers.size(); ++i) {
        const Expectation written(Corpus{CorpusName, CorpusName, {resultOf(writableOf(i))}});
        const std::string fault = difference(written.utf8.all, expected);
        if (fault.empty()) continue;
        std::cerr << writers[i].name << ": " << fault << '\n';
        good = false;
    }
    return good;
}

}  // namespace tessit::benchmarks
