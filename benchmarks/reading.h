#pragma once

#include <corpus/corpus.h>
#include <expectation.h>
#include <measurement.h>
#include <memory>
#include <optional>
#include <reader.h>
#include <vector>

namespace benchmark {
class State;
}

namespace tessit::benchmarks {

/// The documents of a corpus, ready to be read, and to be made ready again.
class ReadyDocuments {
public:
    explicit ReadyDocuments(const Corpus& corpus);

    /// Copies the corpus once more, over what a reader may have left. Every reader
    /// gets its documents this way, so that all find them equally near in the caches.
    void renew(const Reader& reader);

    Tally read(const Reader& reader) const;

private:
    void renew();

    const Corpus& source;
    std::vector<char> bytes;
    std::vector<QeCString> texts;
    std::vector<Document> documents;
};

/// The benchmarks of reading: each corpus with each reader that can read it.
class Reading {
public:
    Reading(std::vector<Reader> contestants, std::size_t corpusBytes);

    /// The benchmarks find their measurement in the list and refer to this object: both must outlive them.
    void registerBenchmarks(std::vector<Measurement>& measurements);

    /// Reads everything once and reports what was not counted as expected. Whether all was.
    bool check();

private:
    void addMeasurements(std::vector<Measurement>& measurements, std::size_t corpus);
    void measure(benchmark::State& state, std::size_t corpus, const Reader& reader, Measurement& measurement);
    bool checkReader(std::size_t corpus, const Reader& reader);
    std::string faultOf(const Tally& found, std::size_t corpus, const Reader& reader);
    const Expectation& expectationOf(std::size_t corpus);
    ReadyDocuments& documentsOf(std::size_t corpus);

    std::vector<Corpus> corpora;
    std::vector<Reader> readers;
    std::vector<std::optional<Expectation>> expectations;  // made when first needed
    std::unique_ptr<ReadyDocuments> ready;                 // of one corpus at a time, for the memory's sake
    std::size_t readyCorpus = 0;
};

}  // namespace tessit::benchmarks
