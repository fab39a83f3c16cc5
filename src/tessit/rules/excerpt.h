#pragma once

#include <string_view>

#include <tessit/errors/xml_position.h>
#include <tessit/rules/text_places.h>

namespace tessit {

/// The line of a place that is in the text, or at its end. O(1): no more is looked at than is shown.
QeXmlExcerpt excerptAt(std::string_view text, const char* place, LineEnds lineEnds);

}  // namespace tessit
