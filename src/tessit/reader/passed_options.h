#pragma once

#include <cstddef>

#include <tessit/reader/xml_reader_options.h>

namespace tessit {

/// The size of the options in the first headers that had any, and in those that had limits, too.
constexpr std::size_t SizeWithoutRecord = sizeof(QeXmlReaderOptions) - sizeof(void*);
constexpr std::size_t SizeWithoutLimits = SizeWithoutRecord - sizeof(QeXmlLimits);

/// Whether a program knows all fields that this library does; a later one knows more.
inline bool hasAll(const QeXmlReaderOptions::Passed& passed) noexcept {
    return passed.size >= sizeof(QeXmlReaderOptions);
}

/// What a program passed on, with the defaults of all that its headers did not have: nothing behind its own fields is
/// looked at.
inline QeXmlReaderOptions withDefaults(const QeXmlReaderOptions::Passed& passed) {
    if (hasAll(passed)) return passed.fields;
    const QeXmlReaderOptions& known = passed.fields;
    QeXmlReaderOptions options;
    options.rules = known.rules;
    options.sourceName = known.sourceName;
    options.encoding = known.encoding;
    options.namespaces = known.namespaces;
    options.nodes = known.nodes;
    options.resolver = known.resolver;
    options.entities = known.entities;
    options.expansionFactor = known.expansionFactor;
    options.freeExpansion = known.freeExpansion;
    options.entityDepth = known.entityDepth;
    if (passed.size >= SizeWithoutRecord) options.limits = known.limits;
    return options;
}

}  // namespace tessit
