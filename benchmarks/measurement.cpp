#include <algorithm>
#include <fstream>
#include <iomanip>
#include <measurement.h>
#include <stdexcept>
#include <string_view>
#include <thread>

#include <tessit/reader/xml_reader.h>

namespace tessit::benchmarks {

namespace {

// The value that a line "KEY : VALUE" or KEY="VALUE" of a file has.
std::string valueInFile(const char* file, std::string_view key, char separator) {
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        const std::size_t at = line.find(separator);
        if (!line.starts_with(key) || at == std::string::npos) continue;
        const std::size_t first = line.find_first_not_of(" \"", at + 1);
        if (first != std::string::npos) return line.substr(first, line.find_last_not_of('"') + 1 - first);
    }
    return "unknown";
}

#if defined(__clang__)
constexpr char Compiler[] = "clang " __clang_version__;
#else
constexpr char Compiler[] = "GCC " __VERSION__;
#endif

void writeFacts(std::ostream& out, double processorShare) {
    out << "# processor: " << valueInFile("/proc/cpuinfo", "model name", ':') << ", "
        << std::thread::hardware_concurrency() << " threads\n"
        << "# memory: " << valueInFile("/proc/meminfo", "MemTotal", ':') << '\n'
        << "# system: " << valueInFile("/etc/os-release", "PRETTY_NAME", '=') << '\n'
        << "# compiler: " << Compiler << ", build type " TESSIT_BUILD_TYPE "\n"
        << "# processor share: " << std::setprecision(2) << processorShare << std::setprecision(0) << '\n'
        << "# reader object: " << sizeof(QeXmlReader) << '\n';
}

const char* nameOf(Role role) {
    return role == Role::Ours ? "ours" : role == Role::Peer ? "peer" : "floor";
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

// No name has a quote in it.
std::string quoted(const std::string& text) {
    return text.find(',') == std::string::npos ? text : '"' + text + '"';
}

void writeLine(std::ostream& out, const Measurement& measurement) {
    const std::vector<double>& times = measurement.nanoseconds;
    const Allocations allocations = measurement.allocations.value_or(Allocations{});
    out << measurement.work << ',' << measurement.corpus << ',' << quoted(measurement.library) << ','
        << measurement.version << ',' << nameOf(measurement.role) << ',' << measurement.bytes << ','
        << measurement.documents << ',' << measurement.nodes << ',' << times.size() << ','
        << *std::min_element(times.begin(), times.end()) << ',' << median(times) << ',' << allocations.count << ','
        << allocations.peakBytes << '\n';
}

}  // namespace

void writeCsv(const std::string& file, const std::vector<Measurement>& measurements, double processorShare) {
    std::ofstream out(file);
    out << std::fixed;
    writeFacts(out, processorShare);
    out << "work,corpus,library,version,role,bytes,documents,nodes,rounds,min_ns,median_ns,allocations,peak_bytes\n";
    for (const Measurement& measurement : measurements)
        if (!measurement.nanoseconds.empty()) writeLine(out, measurement);
    if (!out.flush()) throw std::runtime_error("cannot write " + file);
}

}  // namespace tessit::benchmarks
