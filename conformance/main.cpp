// Reads the documents of the conformance suite and writes the page about it to standard output.
//
//     tessit_conformance CATALOGUE SUITE REASONS
//
// SUITE is the folder that the catalogue's documents are in. In REASONS each line is a test's identifier, a space, and
// why the reader does not do there what the suite has. Fails when such a reason is missing or is one too many.

#include <exception>
#include <iostream>
#include <sstream>

#include "page.h"

namespace {

Reasons readReasons(const std::filesystem::path& file) {
    Reasons reasons;
    std::istringstream lines(contentOf(file));
    for (std::string id, reason; lines >> id && std::getline(lines >> std::ws, reason);)
        reasons.emplace(id, reason);
    return reasons;
}

int report(const std::filesystem::path& catalogue, const std::filesystem::path& suite,
           const std::filesystem::path& reasonsFile) {
    const Reasons reasons = readReasons(reasonsFile);
    const std::vector<Result> results = run(suite, readCatalogue(catalogue));
    writePage(std::cout, results, reasons);
    const std::vector<std::string> faults = findFaults(results, reasons);
    for (const std::string& fault : faults)
        std::cerr << fault << '\n';
    return faults.empty() && std::cout.flush() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 4) return report(argv[1], argv[2], argv[3]);
        std::cerr << "usage: tessit_conformance CATALOGUE SUITE REASONS\n";
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
    }
    return 2;
}
