#pragma once

#include <corpus/corpus.h>
#include <reader.h>
#include <string>

namespace tessit::benchmarks {

/// What has to be counted in a corpus, in one form of its strings.
struct Account {
    Tally all;
    StringSum blankTexts;  // the part of them that some libraries drop
};

/// What has to be counted in a corpus, for every kind of library.
struct Expectation {
    explicit Expectation(const Corpus& corpus);

    /// The count that the reader must arrive at.
    Tally of(const Reader& reader) const;

    Account utf8;
    Account utf16;
    Account asWritten;  // references and line ends as in the document
    StringSum xmlUris;  // of names with the prefix "xml", which need no declaration
    bool carriageReturns = false;
};

/// Whether the reader can read the corpus at all.
bool reads(const Reader& reader, const Corpus& corpus);

/// What two counts differ in, in words; empty when they are equal.
std::string difference(const Tally& found, const Tally& expected);

}  // namespace tessit::benchmarks
