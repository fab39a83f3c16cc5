#include "catalogue.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <tessit/tessit.h>

namespace {

// The value of an attribute of the element that was read, or what the catalogue's document type has for it.
std::string valueOf(const QeXmlReader& reader, std::string_view name, std::string_view otherwise = {}) {
    for (const QeXmlAttribute& attribute : reader.getLastAttributes())
        if (attribute.getName().getQualifiedName() == QeCString(name))
            return std::string(std::string_view(attribute.getValue()));
    return std::string(otherwise);
}

Kind kindOf(const QeXmlReader& reader) {
    const std::string type = valueOf(reader, "TYPE");
    const std::string recommendation = valueOf(reader, "RECOMMENDATION", "XML1.0");
    const std::string edition = valueOf(reader, "EDITION");
    const bool isOfNamespaces = recommendation.starts_with("NS");
    if (valueOf(reader, "VERSION") == "1.1" && !isOfNamespaces) return Kind::OtherVersion;
    if (type == "error") return Kind::Either;
    if (type == "valid" || type == "invalid") return edition == "5" ? Kind::WellFormedByFifth : Kind::WellFormed;
    if (edition == "1 2 3 4") return Kind::IllFormedBeforeIt;
    return isOfNamespaces ? Kind::NamespaceFault : Kind::NotWellFormed;
}

std::string withoutSlash(const std::string& folder) {
    return folder.ends_with('/') ? folder.substr(0, folder.size() - 1) : folder;
}

Test readTest(const QeXmlReader& reader, const std::string& folder) {
    const std::string output = valueOf(reader, "OUTPUT");
    return {.collection = withoutSlash(folder),
            .id = valueOf(reader, "ID"),
            .type = valueOf(reader, "TYPE"),
            .document = folder + valueOf(reader, "URI"),
            .output = output.empty() ? "" : folder + output,
            .entities = valueOf(reader, "ENTITIES", "none"),
            .namespaces = valueOf(reader, "NAMESPACE", "yes") == "yes",
            .kind = kindOf(reader)};
}

}  // namespace

std::string_view nameOf(Kind kind) {
    switch (kind) {
        case Kind::WellFormed:
            return "well-formed";
        case Kind::WellFormedByFifth:
            return "well-formed by the fifth edition";
        case Kind::IllFormedBeforeIt:
            return "not well-formed before the fifth edition";
        case Kind::NotWellFormed:
            return "not well-formed";
        case Kind::NamespaceFault:
            return "namespace fault";
        case Kind::Either:
            return "error that need not be reported";
        case Kind::OtherVersion:
            break;
    }
    return "XML 1.1";
}

bool isWellFormed(Kind kind) {
    return kind == Kind::WellFormed || kind == Kind::WellFormedByFifth || kind == Kind::IllFormedBeforeIt;
}

// Folders are put together by the `xml:base` of the elements around a test.
std::vector<Test> readCatalogue(const std::filesystem::path& file) {
    const QeCString document(contentOf(file));
    QeXmlReader reader(document);
    std::vector<Test> tests;
    std::vector<std::string> folders = {""};
    while (!reader.eof()) {
        reader.readNextNode();
        const QeXmlReader::NodeType node = reader.getLastNodeType();
        if (node == QeXmlReader::ElementEnd) folders.pop_back();
        if (node == QeXmlReader::ElementStart) folders.push_back(folders.back() + valueOf(reader, "xml:base"));
        if (node == QeXmlReader::ElementStart && reader.getLastName().getLocalName() == "TEST")
            tests.push_back(readTest(reader, folders.back()));
    }
    return tests;
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error(file.string() + " cannot be read");
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
