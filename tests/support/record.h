#pragma once

#include <algorithm>
#include <string>
#include <string_view>

#include <tessit/tessit.h>

#include "support/documents.h"

/// The record of what a lenient reader forgives, held against a conforming reader.
namespace tessit::test {

inline std::string placeAndRule(const QeXmlParseError& entry) {
    const QeXmlPosition place = entry.getPosition();
    return std::to_string(place.line) + ':' + std::to_string(place.column) + ' ' + std::string(entry.getRule());
}

inline std::string describeEntry(const QeXmlParseError& entry) {
    std::string text = placeAndRule(entry) + ' ' + std::string(entry.why()) + ' ' + std::string(entry.getPath()) + ' ' +
                       std::string(entry.getHint());
    if (const QeXmlNote* note = entry.getNote())
        text += ' ' + std::string(note->text) + ' ' + std::to_string(note->place.position.offset);
    return text;
}

/// Reads a document leniently with a record, to its end or the first error. Whether to its end.
inline bool readInto(QeXmlRecord& record, std::string_view xml, bool namespaces = true) {
    const Document document(xml);
    try {
        const auto reader =
            document.open(Source::Span, QeXmlReaderOptions{.namespaces = namespaces, .record = &record});
        while (!reader->eof())
            reader->readNextNode();
        return true;
    } catch (const QeXmlParseError&) {
        return false;
    }
}

/// The fault that a conforming reader finds, with its words; or nothing.
inline std::string firstFault(std::string_view xml, bool namespaces = true) {
    const Document document(xml);
    try {
        const auto reader =
            document.open(Source::Span, QeXmlReaderOptions{.rules = QeXmlRules::Conforming, .namespaces = namespaces});
        while (!reader->eof())
            reader->readNextNode();
        return {};
    } catch (const QeXmlParseError& error) {
        return describeEntry(error);
    }
}

/// What is wrong with a document's record: without a document type, it is empty where the document is accepted, and
/// else has what refuses it.
inline std::string faultOfRecord(std::string_view xml, bool namespaces = true) {
    QeXmlRecord record;
    const bool wasRead = readInto(record, xml, namespaces);
    if (!wasRead && record.empty()) return "an error that is not recorded";
    const auto& entries = record.getEntries();
    const auto isSaid = [&](auto&& ask) { return std::any_of(entries.begin(), entries.end(), ask); };
    if (isSaid([](const auto& entry) { return entry.getRule() == "document-type"; })) return {};
    const std::string fault = firstFault(xml, namespaces);
    if (fault.empty()) return wasRead && !record.empty() ? "too much: " + describeEntry(entries[0]) : "";
    const bool hasFault = isSaid([&](const auto& entry) { return describeEntry(entry) == fault; });
    return hasFault ? "" : "not recorded: " + fault;
}

}  // namespace tessit::test
