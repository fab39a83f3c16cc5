#pragma once

#include <string>

#include <tessit/errors/xml_position.h>

/// A line of a document with a caret under the place in it, for a terminal: each as one line, escaped, and cut around
/// the place where it is long.
struct MarkedLine {
    std::string text, caret;
};

MarkedLine mark(const QeXmlExcerpt& excerpt);
