// Attribute values: what stands between the quotes, and what it means.

#include <algorithm>

#include <corvel/byte_scan.h>
#include <corvel/string_access.h>
#include <tessit/dtd/declarations.h>
#include <tessit/dtd/expansion.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

class Value : Expansion {
public:
    Value(Declarations& from, QeCString& result, const Source& where, std::string_view literal,
          std::vector<LeftReference>* leftReferences, std::uint64_t most) noexcept
        : Expansion(from, result, where, literal, most), left(leftReferences) {}

    void append() {
        do {
            while (appendUpTo('&', '<', '\r', '\n', '\t'))
                appendSpecial();
        } while (leaveText());
    }

private:
    void appendSpecial() {
        switch (*here.position()) {
            case '&':
                return appendReference();
            case '<':
                here.refuseHere(Rule::LessThanInValue);
            case '\r':
                passLineEnd();
                return text.append(' ');
            default:
                here.take();
                return text.append(' ');
        }
    }

    void appendReference() {
        const char* const reference = here.position();
        if (here.passIf("&#")) return appendCharacter(text, here.readCharacterReference());
        here.take();
        const std::string_view name = here.readReferenceName(declarations.getSettings().namespaces);
        if (const std::string_view known = Declarations::predefined(name); !known.empty()) return text.append(known);
        declarations.holdName(here.getSource(), name);
        Entity* const entity = declarations.resolve(here.getSource(), reference, name);
        if (entity == nullptr) return leaveAlone(reference);
        if (entity->isExternal)
            refuse(here.getSource(), reference, Rule::ExternalEntityInValue, name, noteOfDeclaration(entity->source));
        if (entity->isPlainText)
            appendPlainEntity(*entity, reference);
        else
            enterText(*entity, reference);
    }

    void leaveAlone(const char* reference) {
        const auto length = static_cast<std::size_t>(here.position() - reference);
        if (left != nullptr) left->push_back({text.length(), length});
        text.append(reference, length);
    }

    // What such an entity has that looks like markup is none.
    void appendPlainEntity(Entity& entity, const char* reference) {
        const Source& source = *declarations.open(entity, here.getSource(), reference);
        holdMore(source.text.size());
        for (const char* at = source.begin();;) {
            const char* const blank = corvel::findAny(at, source.end(), '\r', '\n', '\t');
            text.append(at, static_cast<std::size_t>(blank - at));
            if (blank == source.end()) break;
            text.append(' ');
            at = blank + 1;
        }
        declarations.close(entity);
    }

    std::vector<LeftReference>* left;
};

}  // namespace

void Declarations::appendValue(QeCString& value, const Source& where, std::string_view literal,
                               std::vector<LeftReference>* left, std::uint64_t most) {
    Value(*this, value, where, literal, left, most).append();
}

// What an internal entity brought has its line ends already.
void Declarations::appendAsWritten(QeCString& value, const Source& where, std::string_view literal) {
    for (std::size_t at = 0; at != literal.size(); ++at) {
        const char byte = literal[at];
        if (where.hasPlaces && byte == '\r' && at + 1 != literal.size() && literal[at + 1] == '\n') continue;
        value += byte == '\t' || byte == '\n' || byte == '\r' ? ' ' : byte;
    }
}

void Declarations::tokenize(QeCString& value, std::size_t from, std::vector<LeftReference>* left) {
    char* const bytes = corvel::StringAccess::bytesOf(value);
    std::size_t to = from, next = 0;
    const std::size_t count = left == nullptr ? 0 : left->size();
    while (next != count && (*left)[next].offset < from)
        ++next;
    for (std::size_t at = from; at != value.length(); ++at) {
        if (bytes[at] == ' ' && (to == from || bytes[to - 1] == ' ')) continue;
        if (next != count && (*left)[next].offset == at) (*left)[next++].offset = to;
        bytes[to++] = bytes[at];
    }
    if (to != from && bytes[to - 1] == ' ') --to;
    corvel::StringAccess::setLength(value, to);
}

}  // namespace tessit
