#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <tessit/dtd/xml_resolver.h>

#include "console.h"

/// Finds external entities in the folder of a document and the folders in it, and nowhere
/// else: not by absolute paths or schemes, not by `..` or symbolic links that lead out.
///
/// What it does not read it says in a note on the console.
class BesideResolver : public QeXmlResolver {
public:
    /// The document's source is called `displayName(document)`. What stands beside standard
    /// input is not known, so nothing is read there.
    BesideResolver(Console& notes, std::string_view document);

    bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) override;

private:
    std::filesystem::path pathInFolder(const QeXmlExternalId& id) const;
    std::filesystem::path targetInFolder(const std::filesystem::path& file) const;

    Console& console;
    bool hasFolder;
    std::filesystem::path folder;  // as the document's name has it
};
