#pragma once

#include <string>

#include <tessit/reader/xml_reader.h>

/// What is left of the document, in the form in which the suite has its outputs: tags and
/// text without references but for a few, attributes in the order of their names,
/// instructions, notations, nothing else. Throws `QeXmlParseError`.
std::string readCanonicalForm(QeXmlReader& reader);
