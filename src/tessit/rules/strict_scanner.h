#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <tessit/rules/rules.h>

namespace tessit {

/// Reads, under the rules, what is rare in a document and its declarations: names, literals,
/// comments, instructions. Goes through a source from a place on; what is not as the rules
/// have it is refused with the place where it shows. Knows no declarations.
class StrictScanner {
public:
    StrictScanner(const Source& text, const char* from) noexcept : source(&text), at(from) {}

    const Source& getSource() const noexcept { return *source; }
    const char* position() const noexcept { return at; }
    void goTo(const char* place) noexcept { at = place; }
    const char* end() const noexcept { return source->end(); }
    bool atEnd() const noexcept { return at == source->end(); }

    /// The next byte; the end is refused.
    char peek() const {
        if (atEnd()) refuseEnd(*source);
        return *at;
    }
    char take() {
        const char byte = peek();
        ++at;
        return byte;
    }

    /// Whether white space stood here, which is passed.
    bool passSpace() noexcept;

    /// Passes white space, of which there must be some.
    void requireSpace();

    /// Passes the text if it stands here.
    bool passIf(std::string_view text) noexcept;

    /// Passes the text, which must stand here: else that rule is broken, or the source ends.
    void require(std::string_view text, Rule rule);

    /// A name, of which there must be one: else that rule is broken.
    std::string_view readName(Rule rule = Rule::Name);

    /// The same for one that namespaces, if they are read, allow no colon in.
    std::string_view readNameWithoutColon(bool namespaces, Rule rule = Rule::Name);

    /// One or more characters of names.
    std::string_view readNameToken(Rule rule);

    /// Passes the characters of names that stand here, if any; the end may follow them.
    std::string_view passNameCharacters() noexcept;

    /// What stands between quotes, which are passed; anything but the quote.
    std::string_view readLiteral(Rule rule = Rule::Literal);

    /// Entered just after "<!--"; passes the end and returns what stands in front of it.
    std::string_view readComment();

    struct Instruction {
        std::string_view target, data;
    };

    /// Entered just after "<?"; passes the end. A target "xml" in any case is refused.
    Instruction readInstruction(bool namespaces);

    struct Declaration {
        std::string_view version, encoding, standalone;  // empty where they are missing
    };

    /// Whether "<?xml" and white space stand here.
    bool isAtDeclaration() const noexcept;

    /// Entered in front of "<?xml": the XML declaration of a document, passed.
    Declaration readXmlDeclaration();

    /// The same for the text declaration of an entity from outside.
    Declaration readTextDeclaration();

    /// Entered just after '&' or '%'; the name, with the semicolon passed.
    std::string_view readReferenceName(bool namespaces, Rule rule = Rule::Reference);

    /// Entered just after "&#"; passes the semicolon.
    std::uint32_t readCharacterReference();

    [[noreturn]] void refuseHere(Rule rule, std::string_view found = {}) const { refuse(*source, at, rule, found); }
    [[noreturn]] void refuseAt(const char* place, Rule rule, std::string_view found = {}) const {
        refuse(*source, place, rule, found);
    }

private:
    bool passPseudoAttribute(std::string_view name, std::string_view& value, Rule rule);
    void readDeclarationEnd(Rule rule);

    const Source* source;
    const char* at;
};

/// The character at a place in a source, and how many bytes it takes.
struct CharacterAt {
    std::uint32_t character;
    std::size_t length;
};
CharacterAt characterAt(const char* at) noexcept;

/// Appends a character as UTF-8.
void appendCharacter(QeCString& text, std::uint32_t character);

/// Refuses a name of the source that namespaces do not allow: with more than one colon, or
/// with one that has no name in front of it or behind it.
void checkQName(const Source& source, std::string_view name);

}  // namespace tessit
