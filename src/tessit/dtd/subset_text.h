#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <tessit/dtd/declarations.h>
#include <tessit/rules/rules.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

/// The text that declarations are read from: a subset, and inside of it what parameter
/// entities bring, to any depth.
///
/// A reference between declarations brings whole declarations. In the external subset and in
/// external entities it may stand within a declaration, too: then it counts as white space
/// around what it brings, and what it brings may begin and end anywhere between two tokens.
class SubsetText : public StrictScanner {
public:
    SubsetText(Declarations& from, const StrictScanner& start) noexcept : StrictScanner(start), declarations(from) {}

    /// What is read is an external entity: references within declarations are read.
    void beOutside() noexcept {
        state.isOutside = true;
        declarations.setReadingOutside(true);
    }
    bool isOutside() const noexcept { return state.isOutside; }

    /// Whether this is the subset itself, and not what an entity brought.
    bool isInSubset() const noexcept { return outer.empty(); }

    /// Passes white space and, where it is read, what stands for it: references, which are entered, and the ends of
    /// what they brought. Whether there was any.
    bool passBlank();

    /// The same where there must be some.
    void requireBlank();

    /// At the '%' of a reference between declarations, which brings what follows unless it is not available.
    void enterBetween();

    /// At the end of a text: goes on behind the reference that brought it. False at the end of the subset.
    bool leaveText();

    /// At the end of what references within a declaration brought: goes on behind them.
    void leaveEnded() {
        while (atEnd() && state.isWithin)
            leaveText();
    }

    /// What parameter entities brought is left, wherever it is read: something is missing there.
    void leaveAll() noexcept;

    /// A name, or a keyword, which no limit is for; one that ends where an entity does is whole.
    std::string_view readName(Rule rule);

    /// A token of an attribute's type.
    std::string_view readNameToken(Rule rule);

    /// A name of an element or attribute.
    std::string_view readQName(Rule rule);

    /// A name of an entity or notation.
    std::string_view readNCName(Rule rule);

    /// Whether that byte comes next.
    bool isAt(char byte) const noexcept { return !atEnd() && *position() == byte; }

    /// Refuses what comes next, or the end.
    [[noreturn]] void refuseNext(Rule rule) const;

    /// @name Conditional sections that are included
    /// @{
    void openSection() noexcept { ++openSections; }
    bool closeSection() noexcept;
    /// @}

    /// Thrown when a declaration cannot be read because an entity within it is not available.
    struct Unreadable {};

private:
    struct State {
        bool isOutside = false;
        bool isWithin = false;           // brought by a reference within a declaration
        std::size_t sectionsAround = 0;  // that were open where the text began, and are not closed in it
    };
    struct Suspended {
        StrictScanner at;
        State state;
        Entity* entered;  // what is read instead
    };

    bool isAtReference() const noexcept;
    void enterWithin();
    enum class Found { Text, Nothing, Unavailable };
    Found enter(bool isWithin);
    void goBack() noexcept;

    Declarations& declarations;
    State state;
    std::vector<Suspended> outer;
    std::size_t openSections = 0;
};

}  // namespace tessit
