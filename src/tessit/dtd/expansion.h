#pragma once

#include <string_view>
#include <vector>

#include <corvel/byte_scan.h>
#include <corvel/c_string.h>
#include <tessit/dtd/declarations.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

/// A literal that is read together with the texts that references in it bring, one inside
/// the other, to any depth.
class Expansion {
public:
    Expansion(Declarations& from, QeCString& result, const Source& where, std::string_view literal) noexcept
        : declarations(from), text(result), here(where, literal.data()), end(literal.data() + literal.size()) {}
    Expansion(const Expansion&) = delete;
    Expansion& operator=(const Expansion&) = delete;

protected:
    /// Appends what stands up to the next of these bytes; false at the end of the text.
    template <typename... Byte>
    bool appendUpTo(Byte... bytes) {
        const char* const start = here.position();
        here.goTo(corvel::findAny(start, end, bytes...));
        text.append(start, static_cast<std::size_t>(here.position() - start));
        return here.position() != end;
    }

    /// Goes on in the text that has the reference, if all of one that it brought was read. False at the literal's end.
    bool leaveText();

    /// Goes on in the replacement text of an entity, whose reference was passed. False when it is not available.
    bool enterText(Entity& entity, const char* reference);

    /// At a carriage return, which is passed: whether it is the line end that it was in the document or an entity from
    /// outside, with the line feed behind it.
    bool passLineEnd() noexcept;

    Declarations& declarations;
    QeCString& text;  // what comes out
    StrictScanner here;
    const char* end;  // of the literal or of the replacement text

private:
    struct Suspended {
        StrictScanner at;
        const char* end;
        Entity* entered;  // what is read instead
    };
    std::vector<Suspended> outer;
};

}  // namespace tessit
