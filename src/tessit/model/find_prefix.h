#pragma once

#include <tessit/model/xml_namespace_stack.h>

// The binding of a prefix that is in force, or null. Most documents bind none, which calls for no call.
inline const QeXmlNamespace* QeXmlNamespaceStack::findPrefix(std::string_view prefix, From from) const noexcept {
    return declaring.empty() ? nullptr : findBoundPrefix(prefix, from);
}
