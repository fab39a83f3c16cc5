#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <tessit/errors/xml_error.h>

namespace tessit {
class Judge;
}

/// What a lenient reader forgave: each place where the document breaks a rule of the conforming mode. A program hands
/// it over by `QeXmlReaderOptions::record`. What the reader delivers is the same with and without.
///
/// The document is held against the rules when the reader is made, as a whole and whatever of it is read later; what
/// the reader itself refuses is added when it does. O(bytes) in all, plus sorting the attributes of each tag.
///
/// For a document without a document type that the reader reads to its end, the record is empty exactly when a
/// conforming reader accepts it, by the document's own mark and declaration: `QeXmlReaderOptions::encoding` does not
/// count. Of the limits, that on the document bounds what is judged. Three entries say what else there is to know:
/// - `document-type`: there is one. It is not judged itself, nor are the rules that need declarations: references to
///   entities and prefixes without a binding pass.
/// - `not-judged-further`: from there on, the two modes would read different documents, or the bytes mean nothing.
/// - `not-read`: what the lenient reader refused, with its words.
class QeXmlRecord {
public:
    static constexpr std::size_t MostEntries = 1000;

    /// Keeps the first so many entries of the document; others are counted.
    explicit QeXmlRecord(std::size_t mostEntries = MostEntries) noexcept : most(mostEntries) {}

    /// The errors that a conforming reader would throw, in the order of the document: rule, message, position, line and
    /// path of open elements as there, and where it helps a second place and a hint. Behind a fault, the path is that
    /// of tags as far as they pair up. Valid until the record changes. O(1).
    const std::vector<QeXmlParseError>& getEntries() const noexcept { return entries; }

    /// How many entries there would be without a limit.
    std::uint64_t getCount() const noexcept { return count; }

    bool empty() const noexcept { return count == 0; }

    /// Whether an entry of that offset would be kept.
    bool keeps(std::uint64_t offset) const noexcept {
        return entries.size() < most || (most != 0 && offset < entries.back().getPosition().offset);
    }

    /// For the next document.
    void clear() noexcept {
        entries.clear();
        count = 0;
    }

    /// Behind all entries in front of its place, and those at the same. O(entries behind it).
    void add(const QeXmlParseError& entry) {
        ++count;
        const std::uint64_t offset = entry.getPosition().offset;
        if (!keeps(offset)) return;
        if (entries.size() == most) entries.pop_back();
        auto behind = entries.end();
        while (behind != entries.begin() && offset < behind[-1].getPosition().offset)
            --behind;
        entries.insert(behind, entry);
    }

    /// One that is not kept.
    void countOne() noexcept { ++count; }

private:
    friend class tessit::Judge;

    std::vector<QeXmlParseError> entries;
    std::uint64_t count = 0;
    std::size_t most;
};
