// Runs the benchmarks in rounds, each benchmark once a round, so that what slows
// the machine down for a while slows all of them down alike. Beside the flags of
// the benchmark library it knows
//
//   --rounds=N      how many rounds (default 1)
//   --csv=FILE      write what was measured there
//   --megabytes=N   the size of the large documents that are read (default 10); what is written has 4/5 of it
//   --corpora=DIR   write the documents into an existing directory, and do nothing else
//   --check         read and write everything once, in small, and compare the counts
//   --turns         print the benchmarks' names and an empty line; then run once each that is named in a line of the
//                   input, and print its time in nanoseconds: so that several such programs can take turns

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <contestants.h>
#include <cpu_clock.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <measurement.h>
#include <optional>
#include <reading.h>
#include <stdexcept>
#include <writing.h>

namespace tessit::benchmarks {

namespace {

struct Options {
    std::size_t rounds = 1;
    std::size_t megabytes = 10;
    std::string csv;
    std::string corpora;
    bool check = false;
    bool turns = false;
};

// Whether the argument is one of ours; the others go to the benchmark library.
bool takeOption(std::string_view argument, Options& options) {
    const std::size_t equals = std::min(argument.find('='), argument.size());
    const std::string_view key = argument.substr(0, equals);
    const std::string value(argument.substr(std::min(equals + 1, argument.size())));
    if (key == "--rounds") return options.rounds = std::stoul(value), true;
    if (key == "--megabytes") return options.megabytes = std::stoul(value), true;
    if (key == "--csv") return options.csv = value, true;
    if (key == "--corpora") return options.corpora = value, true;
    if (key == "--check") return options.check = true;
    if (key == "--turns") return options.turns = true;
    return false;
}

/// Hands the time of each run to its measurement.
class Recorder final : public benchmark::BenchmarkReporter {
public:
    explicit Recorder(std::vector<Measurement>& list) {
        for (Measurement& measurement : list)
            byName.emplace(measurement.name(), &measurement);
    }

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            record(run);
    }

    bool failed() const { return anyFailed; }

private:
    void record(const Run& run) {
        const std::string& name = run.run_name.function_name;
        if (run.error_occurred) {
            std::cerr << name << ": " << run.error_message << '\n';
            anyFailed = true;
        } else {
            byName.at(name)->nanoseconds.push_back(run.GetAdjustedRealTime());
        }
    }

    std::map<std::string, Measurement*> byName;
    bool anyFailed = false;
};

void print(const Measurement& measurement) {
    const double least = *std::min_element(measurement.nanoseconds.begin(), measurement.nanoseconds.end());
    std::cout << std::left << std::setw(48) << measurement.name() << std::right << std::fixed << std::setprecision(3)
              << std::setw(10) << least / 1e6 << " ms" << std::setprecision(0) << std::setw(8)
              << static_cast<double>(measurement.bytes) * 1e3 / least << " MB/s" << std::setw(10)
              << measurement.allocations.value_or(Allocations{}).count << " allocations\n";
}

bool writeCorpora(const Options& options) {
    for (const Corpus& corpus : makeCorpora(options.megabytes * 1000000)) {
        const std::filesystem::path file = std::filesystem::path(options.corpora) / (corpus.name + ".xml");
        if (!(std::ofstream(file, std::ios::binary) << corpus.documents.front())) return false;
    }
    return true;
}

// How much of a processor the work had.
template <typename Work>
double shareOfProcessor(Work work) {
    const auto start = std::chrono::steady_clock::now();
    const CpuClock processorTime;
    work();
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start;
    return processorTime.seconds() / passed.count();
}

/// All benchmarks, ready to be run.
class Suite {
public:
    explicit Suite(std::size_t megabytes)
        : contestants(allContestants()),
          reading(contestants.readers, megabytes * 1000000),
          writing(std::move(contestants.writers), megabytes * 800000) {
        reading.registerBenchmarks(measurements);
        writing.registerBenchmarks(measurements);
        recorder.emplace(measurements);
        keepFreedMemory();
    }

    void run() { benchmark::RunSpecifiedBenchmarks(&*recorder); }
    void run(const std::string& filter) { benchmark::RunSpecifiedBenchmarks(&*recorder, filter); }

    const std::vector<Measurement>& results() const { return measurements; }
    bool failed() const { return recorder->failed(); }

private:
    Contestants contestants;
    Reading reading;
    Writing writing;
    std::vector<Measurement> measurements;
    std::optional<Recorder> recorder;
};

bool runRounds(const Options& options) {
    Suite suite(options.megabytes);
    const double processorShare = shareOfProcessor([&] {
        for (std::size_t round = 1; round <= options.rounds; ++round) {
            std::cerr << "round " << round << " of " << options.rounds << '\n';
            suite.run();
        }
    });
    for (const Measurement& measurement : suite.results())
        if (!measurement.nanoseconds.empty()) print(measurement);
    if (!options.csv.empty()) writeCsv(options.csv, suite.results(), processorShare);
    return !suite.failed();
}

double lastTime(const Suite& suite, const std::string& name) {
    for (const Measurement& measurement : suite.results())
        if (measurement.name() == name && !measurement.nanoseconds.empty()) return measurement.nanoseconds.back();
    throw std::runtime_error("there is no benchmark " + name);
}

bool takeTurns(const Options& options) {
    Suite suite(options.megabytes);
    for (const Measurement& measurement : suite.results())
        std::cout << measurement.name() << '\n';
    std::cout << std::endl;
    for (std::string name; !suite.failed() && std::getline(std::cin, name);) {
        suite.run('^' + name + "/manual_time$");
        std::cout << std::fixed << std::setprecision(0) << lastTime(suite, name) << std::endl;
    }
    return !suite.failed();
}

bool check() {
    constexpr std::size_t EnoughForEveryConstruct = 200000;
    const Contestants contestants = allContestants();
    const bool readsWell = Reading(contestants.readers, EnoughForEveryConstruct).check();
    const bool writesWell = Writing(contestants.writers, EnoughForEveryConstruct).check();
    return readsWell && writesWell;
}

bool run(int argumentCount, char** arguments) {
    Options options;
    char** const end = std::remove_if(arguments + 1, arguments + argumentCount,
                                      [&](char* argument) { return takeOption(argument, options); });
    int remaining = static_cast<int>(end - arguments);
    benchmark::Initialize(&remaining, arguments);
    if (benchmark::ReportUnrecognizedArguments(remaining, arguments)) return false;
    if (options.check) return check();
    if (!options.corpora.empty()) return writeCorpora(options);
    if (options.turns) return takeTurns(options);
    return runRounds(options);
}

}  // namespace

}  // namespace tessit::benchmarks

int main(int argumentCount, char** arguments) {
    try {
        return tessit::benchmarks::run(argumentCount, arguments) ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
