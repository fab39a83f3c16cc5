#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <corvel/byte_scan.h>

/// What the writer writes for bytes that would read as markup.
///
/// Two sets of rules, for text and for attribute values, and the functions that
/// apply a set: bytes that stand for themselves are copied in runs.
namespace tessit {

/// What `byte` is written as where it is escaped.
inline std::string_view markupFor(char byte) {
    switch (byte) {
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        case '\'':
            return "&apos;";
        case '\r':
            return "&#xD;";  // as such it would be read as a line feed
        default:
            return "&amp;";
    }
}

/// Whether one of the five references that need no declaration stands at the front of `text`.
inline bool startsWithReference(std::string_view text) {
    for (const std::string_view reference : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"})
        if (text.substr(0, reference.size()) == reference) return true;
    return false;
}

/// Text between tags: every '&' is escaped, and quotes stay as they are.
struct TextEscapes {
    static constexpr std::size_t Longest = 5;  // bytes that one byte can become

    static const char* find(const char* at, const char* end) { return corvel::findAny(at, end, '\r', '&', '<', '>'); }
    static void copyRun(const char*& from, const char* end, char*& to) {
        corvel::copyUntilAny(from, end, to, '\r', '&', '<', '>');
    }
    static bool haveNone(const char* at, std::size_t length) {
        return corvel::areNone(at, length, '\r', '&', '<', '>');
    }
    static std::string_view replacement(const char* at, const char* /*end*/) { return markupFor(*at); }
};

/// Attribute values: quotes are escaped, line ends and tabs stay as they are, and so
/// does an '&' that begins a reference, so that nothing is escaped twice.
struct ValueEscapes {
    static constexpr std::size_t Longest = 6;

    static const char* find(const char* at, const char* end) {
        return corvel::findAny(at, end, '"', '\'', '<', '>', '&');
    }
    static void copyRun(const char*& from, const char* end, char*& to) {
        corvel::copyUntilAny(from, end, to, '"', '\'', '<', '>', '&');
    }
    static bool haveNone(const char* at, std::size_t length) {
        return corvel::areNone(at, length, '"', '\'', '<', '>', '&');
    }
    static std::string_view replacement(const char* at, const char* end) {
        const bool stays = *at == '&' && startsWithReference({at, static_cast<std::size_t>(end - at)});
        return stays ? "&" : markupFor(*at);
    }
};

/// The number of bytes that `text` is escaped to, which can be more than memory has addresses.
template <typename Escapes>
std::uint64_t escapedLength(std::string_view text) {
    const char* const end = text.data() + text.size();
    std::uint64_t length = text.size();
    for (const char* at = Escapes::find(text.data(), end); at != end; at = Escapes::find(at + 1, end))
        length += Escapes::replacement(at, end).size() - 1;
    return length;
}

/// Writes `text`, escaped, to `to`, which has room for it, and returns the end of what was written.
template <typename Escapes>
char* putEscapedRuns(char* to, std::string_view text) {
    const char* from = text.data();
    const char* const end = from + text.size();
    for (;;) {
        Escapes::copyRun(from, end, to);
        if (from == end) return to;
        to = corvel::put(to, Escapes::replacement(from++, end));
    }
}

}  // namespace tessit
