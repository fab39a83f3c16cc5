#pragma once

#include <memory>
#include <string_view>

#include <corvel/c_string.h>
#include <tessit/rules/text_places.h>

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
    const char* behind = nullptr;    ///< where the bytes behind a fault end; null where they are not there
    const Source* parent = nullptr;  ///< where the reference stands that brought the text; null for the document
    mutable const char* reference = nullptr;  ///< its '&' or '%'; moves with that text
    const Source* declaredIn = nullptr;  ///< where the entity is declared that the text is of; null where nobody knows
    const char* declaredAt = nullptr;    ///< its name there
    const char* linesFrom = nullptr;     ///< the text declaration in front, from which on lines count; null without one

    /// Whether lines and columns count in it. Else its places are the reference's, and what looks like a line end was
    /// written as a character reference: it is not to be normalised.
    bool hasPlaces = true;

    InputUnits inputUnits = InputUnits::Same;
    unsigned markLength = 0;  ///< of the byte-order mark in front, in bytes of the input

    /// What was counted, if it was; made when a place is asked for, as most entities have none that is.
    mutable std::unique_ptr<TextPlaces> places;
    mutable bool isCounted = false;

    mutable bool isContinued = false;  ///< the document's beginning has gone

    const char* begin() const noexcept { return text.data(); }
    const char* end() const noexcept { return text.data() + text.size(); }
};

}  // namespace tessit
