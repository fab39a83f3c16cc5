#pragma once

#include <string_view>
#include <vector>

#include <corvel/byte_scan.h>
#include <corvel/c_string.h>
#include <tessit/dtd/declarations.h>
#include <tessit/rules/limits.h>
#include <tessit/rules/strict_scanner.h>

namespace tessit {

/// A literal that is read together with the texts that references in it bring, one inside
/// the other, to any depth.
class Expansion {
public:
    /// The result may have `most` bytes; `Exceeded` is thrown before it has more.
    Expansion(Declarations& from, QeCString& result, const Source& where, std::string_view literal,
              std::uint64_t most = QeXmlLimits::None) noexcept
        : declarations(from),
          text(result),
          here(where, literal.data()),
          end(literal.data() + literal.size()),
          begin(literal.data()),
          alreadyThere(result.length()),
          mostBytes(most) {}
    Expansion(const Expansion&) = delete;
    Expansion& operator=(const Expansion&) = delete;

protected:
    /// Appends what stands up to the next of these bytes; false at the end of the text.
    template <typename... Byte>
    bool appendUpTo(Byte... bytes) {
        const char* const start = here.position();
        here.goTo(corvel::findAny(start, end, bytes...));
        const auto length = static_cast<std::size_t>(here.position() - start);
        holdMore(length);
        text.append(start, length);
        return here.position() != end;
    }

    /// So many bytes are about to be appended.
    void holdMore(std::size_t bytes) const {
        hold(text.length() - alreadyThere + bytes, mostBytes, Limit::Value, begin);
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
    const char* begin;
    std::size_t alreadyThere;
    std::uint64_t mostBytes;

    struct Suspended {
        StrictScanner at;
        const char* end;
        Entity* entered;  // what is read instead
    };
    std::vector<Suspended> outer;
};

}  // namespace tessit
