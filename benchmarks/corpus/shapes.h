#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// The documents that are measured, one function a shape. Each makes a
/// well-formed UTF-8 document of about `bytes` bytes, always the same one.
///
/// Two rules keep what different libraries count comparable: a text is either
/// blank altogether or none of its pieces (around comments and CDATA sections) is,
/// since some libraries drop blank pieces; and no attribute value has a line break.
namespace tessit::benchmarks {

/// Short fields with indentation, as in exported tables.
std::string shortRecords(std::size_t bytes, std::uint64_t seed);

/// One short record, about 200 bytes.
std::string oneRecord(std::uint64_t seed);

/// Short records with letters beyond ASCII, all of them in ISO-8859-1.
std::string accentedRecords(std::size_t bytes, std::uint64_t seed);

/// Empty elements with six attributes each.
std::string attributes(std::size_t bytes, std::uint64_t seed);

/// Long paragraphs with few tags.
std::string prose(std::size_t bytes, std::uint64_t seed);

/// Prefixes on every element and most attributes, for eight long URIs that the root declares; some are bound anew
/// deeper down.
std::string namespaces(std::size_t bytes, std::uint64_t seed);

/// Paragraphs of three-byte characters.
std::string cjk(std::size_t bytes, std::uint64_t seed);

/// A reference every few words, in texts and values.
std::string references(std::size_t bytes, std::uint64_t seed);

/// CDATA sections and comments of a few kilobytes.
std::string sections(std::size_t bytes, std::uint64_t seed);

/// Chains of elements nested 2,000 deep.
std::string deep(std::size_t bytes, std::uint64_t seed);

/// What desktop and office programs save: styled text runs, drawings, settings.
std::string mixed(std::size_t bytes, std::uint64_t seed);

/// How deep `deep` nests, its root included.
constexpr unsigned DeepestNesting = 2001;

}  // namespace tessit::benchmarks
