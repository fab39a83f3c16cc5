#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// What a conforming processor of the fifth edition has to make of a document.
enum class Kind {
    WellFormed,         ///< by every edition
    WellFormedByFifth,  ///< by the fifth edition alone: its names
    IllFormedBeforeIt,  ///< by earlier editions alone
    NotWellFormed,
    NamespaceFault,  ///< well-formed, but not by Namespaces in XML
    Either,          ///< an error that need not be reported
    OtherVersion     ///< of XML 1.1, by whose rules it is not read
};

std::string_view nameOf(Kind kind);

/// Whether documents of that kind are to be accepted.
bool isWellFormed(Kind kind);

/// A document of the suite and what the catalogue says about it.
struct Test {
    std::string collection;  ///< the folder that it is in
    std::string id;
    std::string type;      ///< "valid", "invalid", "not-wf" or "error"
    std::string document;  ///< a path from the suite's folder, as the next
    std::string output;    ///< the document in its canonical form; empty when there is none
    std::string entities;  ///< which external entities it takes to judge it: "none", "general", "parameter" or "both"
    bool namespaces;       ///< whether the suite means it to be read by Namespaces in XML
    Kind kind;
};

/// The tests in the order of the catalogue. Throws `QeXmlParseError`.
std::vector<Test> readCatalogue(const std::filesystem::path& file);

/// The bytes of the file. Throws `std::runtime_error`.
std::string contentOf(const std::filesystem::path& file);
