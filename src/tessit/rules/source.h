#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <corvel/c_string.h>

namespace tessit {

enum class Rule : std::uint8_t;

/// A text that is read under the rules: the document, an entity from outside, or the
/// replacement text of an entity that was declared. It is UTF-8 and has nothing but
/// characters that XML allows: it ends in front of the first byte that breaks a rule.
struct Source {
    std::string_view text;
    Rule endsBy{};         ///< the rule that is broken behind the text; none where that is its true end
    QeCString foundAtEnd;  ///< and what is said to be found there
    Rule cutBy{};          ///< the rule that what the true end cuts breaks; none where the document is unfinished then
    QeCString name;        ///< of the document, or of the entity from outside
    const Source* parent = nullptr;   ///< where the reference stands that brought the text; null for the document
    const char* reference = nullptr;  ///< its '&' or '%'
    const char* linesFrom = nullptr;  ///< the text declaration in front, from which on lines count; null without one

    /// Whether lines and columns count in it. Else its places are the reference's, and what looks like a line end was
    /// written as a character reference: it is not to be normalised.
    bool hasPlaces = true;

    /// The lines in front of a place, as they were counted for the last error: a program may raise any number of them.
    struct Counted {
        const char* upTo = nullptr;
        const char* lineStart = nullptr;
        std::uint64_t line = 1;
    };
    mutable Counted counted{};

    const char* begin() const noexcept { return text.data(); }
    const char* end() const noexcept { return text.data() + text.size(); }
};

}  // namespace tessit
