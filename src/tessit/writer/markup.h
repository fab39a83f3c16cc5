#pragma once

#include <cstdint>
#include <cstring>

#include <corvel/byte_copy.h>
#include <corvel/string_access.h>
#include <tessit/model/xml_attribute.h>
#include <tessit/writer/escape.h>

/// The bytes of names and attributes: how many they are at most, and how they are put
/// into memory that has room for them.
///
/// Knows how names and attributes are written. Does not know where the bytes go, nor
/// which namespaces are in force. All functions that put something return its end.
namespace tessit {

/// How many bytes behind the room that was asked for may be written over, too.
inline constexpr std::size_t Slack = sizeof(QeCString);

/// Values up to so many bytes get the room that they need in the worst case: to look at them first would cost more.
inline constexpr std::size_t ShortEnough = 1024;

/// A name as a tag has it.
struct NameParts {
    const QeCString& prefix;
    const QeCString& localName;
};

inline NameParts partsOf(const QeXmlName& name) {
    return {name.getNamespace().getPrefix(), name.getLocalName()};
}

/// The declaration of the empty prefix is the one whose name is written otherwise than it is made up.
inline NameParts attributePartsOf(const QeXmlName& name) {
    const auto [prefix, localName] = partsOf(name);
    if (localName.empty() && prefix == "xmlns") return {localName, prefix};
    return {prefix, localName};
}

/// The room for a name. Rooms have 64 bits everywhere: what is escaped, and the sum of
/// it, can pass what addresses of 32 bits reach.
inline std::uint64_t roomForName(NameParts name) {
    return std::uint64_t{name.prefix.length()} + name.localName.length() + 1;
}

/// The room for an escaped text: counted exactly only where the worst case would be much.
template <typename Escapes>
std::uint64_t roomForEscaped(std::string_view text) {
    const bool ordinary = text.size() <= ShortEnough / Escapes::Longest;
    return ordinary ? text.size() * Escapes::Longest : escapedLength<Escapes>(text);
}

inline std::uint64_t roomForAttribute(NameParts name, const QeCString& value, bool escape) {
    const std::uint64_t room = escape ? roomForEscaped<ValueEscapes>(value) : value.length();
    const std::size_t colon = name.prefix.empty() ? 0 : 1;
    return name.prefix.length() + colon + name.localName.length() + room + 4;  // with ` =""`
}

/// Short strings are copied with what stands behind them.
inline char* putString(char* to, const QeCString& text) {
    if (!corvel::StringAccess::isInline(text)) return corvel::put(to, text);
    corvel::StringAccess::copyInline(to, text);
    return to + text.length();
}

inline char* putName(char* to, NameParts name) {
    if (!name.prefix.empty()) {
        to = putString(to, name.prefix);
        *to++ = ':';
    }
    return putString(to, name.localName);
}

/// Most values are short and have nothing to escape: that is found out without a branch on their length.
template <typename Escapes>
char* putEscaped(char* to, const QeCString& text) {
    if (corvel::StringAccess::isInline(text) && Escapes::haveNone(text.data(), text.length()))
        return putString(to, text);
    return putEscapedRuns<Escapes>(to, text);
}

inline char* putAttribute(char* to, NameParts name, const QeCString& value, bool escape) {
    *to++ = ' ';
    to = putName(to, name);
    *to++ = '=';
    *to++ = '"';
    to = escape ? putEscaped<ValueEscapes>(to, value) : putString(to, value);
    *to++ = '"';
    return to;
}

}  // namespace tessit
