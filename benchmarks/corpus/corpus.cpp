#include <corpus/corpus.h>
#include <corpus/encode.h>
#include <corpus/shapes.h>

namespace tessit::benchmarks {

namespace {

constexpr std::uint64_t Seed = 20240229;
constexpr std::size_t SmallDocument = 64 * 1024;
constexpr std::size_t TinyDocuments = 1000;

Corpus single(const char* name, const char* shape, std::string document) {
    return {name, shape, {std::move(document)}};
}

Corpus single(const char* name, std::string document) {
    return single(name, name, std::move(document));
}

std::string withCarriageReturns(const std::string& document) {
    std::string out;
    out.reserve(document.size() + document.size() / 16);
    for (const char byte : document) {
        if (byte == '\n') out += '\r';
        out += byte;
    }
    return out;
}

std::string declareLatin1(std::string document) {
    const std::string start = "<?xml version=\"1.0\"";
    return document.insert(start.size(), " encoding=\"ISO-8859-1\"");
}

Corpus tinyDocuments() {
    Corpus corpus{"records-200", "records", {}};
    for (std::size_t i = 0; i < TinyDocuments; ++i)
        corpus.documents.push_back(oneRecord(Seed + i));
    return corpus;
}

Corpus inOtherEncoding(Corpus corpus) {
    corpus.otherEncoding = true;
    return corpus;
}

Corpus inFreshMemory(Corpus corpus) {
    corpus.freshMemory = true;
    return corpus;
}

Corpus nested(Corpus corpus) {
    corpus.depth = DeepestNesting;
    return corpus;
}

}  // namespace

std::size_t Corpus::bytes() const {
    std::size_t sum = 0;
    for (const std::string& document : documents)
        sum += document.size();
    return sum;
}

std::vector<Corpus> makeCorpora(std::size_t bytes) {
    std::vector<Corpus> corpora;
    corpora.push_back(single("records", shortRecords(bytes, Seed)));
    corpora.push_back(single("records-crlf", "records", withCarriageReturns(shortRecords(bytes, Seed))));
    corpora.push_back(single("attributes", attributes(bytes, Seed)));
    corpora.push_back(single("prose", prose(bytes, Seed)));
    corpora.push_back(single("namespaces", namespaces(bytes, Seed)));
    corpora.push_back(single("cjk", cjk(bytes, Seed)));
    corpora.push_back(single("references", references(bytes, Seed)));
    corpora.push_back(single("sections", sections(bytes, Seed)));
    corpora.push_back(nested(single("deep", deep(bytes, Seed))));
    corpora.push_back(single("mixed", mixed(bytes, Seed)));
    corpora.push_back(single("records-64k", "records", shortRecords(SmallDocument, Seed)));
    corpora.push_back(tinyDocuments());
    corpora.push_back(inFreshMemory(single("records-fresh", "records", shortRecords(bytes, Seed))));
    corpora.push_back(
        inOtherEncoding(single("records-utf16", "records", toUtf16LittleEndian(accentedRecords(bytes / 2, Seed)))));
    corpora.push_back(
        inOtherEncoding(single("records-latin1", "records", toLatin1(declareLatin1(accentedRecords(bytes, Seed))))));
    return corpora;
}

}  // namespace tessit::benchmarks
