#include <algorithm>
#include <benchmark/benchmark.h>
#include <cpu_clock.h>
#include <cstring>
#include <instructions.h>
#include <iostream>
#include <reading.h>
#include <vector_state.h>

namespace tessit::benchmarks {

ReadyDocuments::ReadyDocuments(const Corpus& corpus)
    : source(corpus), bytes(corpus.bytes() + corpus.documents.size()), texts(corpus.documents.size()) {
    char* at = bytes.data();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::size_t length = corpus.documents[i].size();
        documents.push_back({{at, length}, texts[i]});
        at += length + 1;
    }
    renew();
}

void ReadyDocuments::renew() {
    for (std::size_t i = 0; i < documents.size(); ++i) {
        const std::string& original = source.documents[i];
        texts[i].assign(original.data(), original.size());
        std::memcpy(documents[i].bytes.data(), original.c_str(), original.size() + 1);
    }
}

void ReadyDocuments::renew(const Reader& reader) {
    renew();
    if (reader.makeReady == nullptr) return;
    for (const Document& document : documents)
        reader.makeReady(document);
}

Tally ReadyDocuments::read(const Reader& reader) const {
    Tally total;
    for (const Document& document : documents)
        total += reader.read(document);
    return total;
}

Reading::Reading(std::vector<Reader> contestants, std::size_t corpusBytes)
    : corpora(makeCorpora(corpusBytes)), readers(std::move(contestants)), expectations(corpora.size()) {}

const Expectation& Reading::expectationOf(std::size_t corpus) {
    if (!expectations[corpus]) expectations[corpus].emplace(corpora[corpus]);
    return *expectations[corpus];
}

ReadyDocuments& Reading::documentsOf(std::size_t corpus) {
    if (ready == nullptr || readyCorpus != corpus) ready = std::make_unique<ReadyDocuments>(corpora[corpus]);
    readyCorpus = corpus;
    return *ready;
}

void Reading::addMeasurements(std::vector<Measurement>& measurements, std::size_t corpus) {
    for (const Reader& reader : readers) {
        if (!reads(reader, corpora[corpus])) continue;
        measurements.push_back({.work = "read",
                                .corpus = corpora[corpus].name,
                                .library = reader.name,
                                .version = reader.version,
                                .role = reader.role,
                                .bytes = corpora[corpus].bytes(),
                                .documents = corpora[corpus].documents.size()});
        const auto run = [this, corpus, &reader, &measurements, index = measurements.size() - 1](auto& state) {
            measure(state, corpus, reader, measurements[index]);
        };
        benchmark::RegisterBenchmark(measurements.back().name().c_str(), run)->UseManualTime();
    }
}

void Reading::registerBenchmarks(std::vector<Measurement>& measurements) {
    for (std::size_t corpus = 0; corpus < corpora.size(); ++corpus)
        addMeasurements(measurements, corpus);
}

namespace {

Allocations allocationsOf(ReadyDocuments& documents, const Reader& reader, const std::string& name) {
    documents.renew(reader);
    documents.read(reader);  // what is made once in a process counts for no document
    documents.renew(reader);
    return countAllocations([&] { countInstructions(name, [&] { documents.read(reader); }); });
}

}  // namespace

void Reading::measure(benchmark::State& state, std::size_t corpus, const Reader& reader, Measurement& measurement) {
    ReadyDocuments& documents = documentsOf(corpus);
    if (!measurement.allocations) measurement.allocations = allocationsOf(documents, reader, measurement.name());
    for ([[maybe_unused]] const auto& iteration : state) {
        documents.renew(reader);
        if (corpora[corpus].freshMemory) releaseFreedMemory();
        settleVectorState();
        const CpuClock clock;
        const Tally found = documents.read(reader);
        state.SetIterationTime(clock.seconds());
        measurement.nodes = found.nodes();
        const std::string fault = faultOf(found, corpus, reader);
        if (!fault.empty()) state.SkipWithError(fault.c_str());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(measurement.bytes));
}

std::string Reading::faultOf(const Tally& found, std::size_t corpus, const Reader& reader) {
    return reader.counts ? difference(found, expectationOf(corpus).of(reader)) : std::string();
}

bool Reading::check() {
    bool good = true;
    for (std::size_t corpus = 0; corpus < corpora.size(); ++corpus)
        for (const Reader& reader : readers)
            if (reads(reader, corpora[corpus]) && !checkReader(corpus, reader)) good = false;
    return good;
}

bool Reading::checkReader(std::size_t corpus, const Reader& reader) {
    ReadyDocuments& documents = documentsOf(corpus);
    documents.renew(reader);
    const std::string fault = faultOf(documents.read(reader), corpus, reader);
    if (!fault.empty()) std::cerr << reader.name << " on " << corpora[corpus].name << ": " << fault << '\n';
    return fault.empty();
}

}  // namespace tessit::benchmarks
