#pragma once

#include <string>
#include <vector>

namespace tessit::benchmarks {

/// Documents that are read one after another: one large one, or many small ones.
struct Corpus {
    std::string name;
    std::string shape;  ///< corpora of one shape differ in size or encoding only
    std::vector<std::string> documents;
    unsigned depth = 0;          ///< the deepest nesting, or 0 where no one minds
    bool otherEncoding = false;  ///< neither ASCII nor UTF-8
    bool freshMemory = false;    ///< to be read in memory that the system has just given, as the first document is

    std::size_t bytes() const;
};

/// All corpora: about `bytes` bytes each, the small ones excepted.
std::vector<Corpus> makeCorpora(std::size_t bytes);

}  // namespace tessit::benchmarks
