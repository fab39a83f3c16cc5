// Declarations of entities and notations.

#include <charconv>
#include <memory>
#include <system_error>
#include <utility>

#include <corvel/byte_scan.h>
#include <tessit/dtd/expansion.h>
#include <tessit/dtd/subset_reader.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

constexpr Rule Broken = Rule::EntityDeclaration;

// What an entity is declared to be: character references are read, and parameter entities
// where they may stand. References to general entities are left for the text to come.
class EntityValue : Expansion {
public:
    EntityValue(Declarations& from, QeCString& result, const SubsetText& where, std::string_view literal) noexcept
        : Expansion(from, result, where.getSource(), literal), mayRefer(where.isOutside()) {}

    /// False when something in it is not available.
    bool append() {
        do {
            while (appendPlain())
                appendSpecial();
        } while (leaveText());
        return isComplete;
    }

private:
    bool appendPlain() {
        const char* const start = here.position();
        here.goTo(corvel::findAny(start, end, '&', '%', '\r'));
        text.append(start, static_cast<std::size_t>(here.position() - start));
        return here.position() != end;
    }

    void appendSpecial() {
        switch (*here.position()) {
            case '&':
                return appendReference();
            case '%':
                return enterParameterEntity();
            default:
                text.append(passLineEnd() ? '\n' : '\r');
        }
    }

    void appendReference() {
        const char* const reference = here.position();
        if (here.passIf("&#")) return appendCharacter(text, here.readCharacterReference());
        here.take();
        here.readReferenceName();
        text.append(reference, static_cast<std::size_t>(here.position() - reference));
    }

    void enterParameterEntity() {
        const char* const reference = here.position();
        if (!mayRefer) here.refuseHere(Rule::ParameterEntity);
        here.take();
        const std::string_view name = here.readReferenceName(Rule::ParameterEntity);
        Entity* const entity = declarations.resolveParameter(here.getSource(), reference, name);
        if (entity != nullptr && enterText(*entity, reference)) return;
        declarations.noteUnreadEntity();
        isComplete = false;
    }

    const bool mayRefer;
    bool isComplete = true;
};

// Whether the text is a reference to the character.
bool refersTo(std::string_view text, char character) {
    if (!text.starts_with("&#") || !text.ends_with(';')) return false;
    const int base = text[2] == 'x' ? 16 : 10;
    unsigned code = 0;
    const char *const digits = text.data() + (base == 16 ? 3 : 2), *const end = text.data() + text.size() - 1;
    const auto [stop, error] = std::from_chars(digits, end, code, base);
    return error == std::errc() && stop == end && code == static_cast<unsigned char>(character);
}

// A predefined entity means the same when it is declared: that character, or a reference to it. The text cannot be
// '<' or '&' itself, which would be markup.
bool keepsMeaning(std::string_view value, char character) {
    if (value == std::string_view(&character, 1)) return character != '<' && character != '&';
    return refersTo(value, character);
}

}  // namespace

// Entered just after "<!ENTITY".
void SubsetReader::readEntityDeclaration() {
    text.requireBlank();
    const bool isParameter = text.passIf("%");
    if (isParameter) text.requireBlank();
    const char* const place = text.position();
    const Source& source = text.getSource();
    const std::string_view name = text.readNCName(Broken);
    text.requireBlank();

    QeCString value, notation;
    std::unique_ptr<Entity::External> external;
    bool isComplete = true;
    if (text.isAt('"') || text.isAt('\'')) {
        isComplete = readEntityValue(value);
    } else {
        external = std::make_unique<Entity::External>();
        external->id = readExternalId(Broken, SystemPart::Required);
        if (!isParameter) readNotationName(external->notation);
    }
    endDeclaration(Broken);

    const std::string_view predefined = Declarations::predefined(name);
    if (!isParameter && !predefined.empty() && isComplete &&
        (external != nullptr || !keepsMeaning(value, predefined.front())))
        refuse(source, place, Broken, name);
    Entity* const entity = isComplete ? declarations.declareEntity(name, isParameter) : nullptr;
    if (entity == nullptr) return;
    if (external == nullptr) {
        entity->text = std::move(value);
        makeInternal(*entity);
    } else {
        entity->isExternal = true;
        entity->isUnparsed = !external->notation.empty();
        entity->external = std::move(external);
    }
}

bool SubsetReader::readEntityValue(QeCString& value) {
    const std::string_view literal = text.readLiteral(Broken);
    return EntityValue(declarations, value, text, literal).append();
}

// Of an unparsed entity; of another one nothing is read.
void SubsetReader::readNotationName(QeCString& notation) {
    const bool isApart = text.passBlank();
    const char* const place = text.position();
    if (!text.passIf("NDATA")) return;
    if (!isApart) text.refuseAt(place, Rule::WhiteSpace);
    text.requireBlank();
    notation.assign(text.readNCName(Broken));
}

// Entered just after "<!NOTATION".
void SubsetReader::readNotationDeclaration() {
    text.requireBlank();
    text.readNCName(Rule::NotationDeclaration);
    text.requireBlank();
    readExternalId(Rule::NotationDeclaration, SystemPart::Optional);
    endDeclaration(Rule::NotationDeclaration);
}

}  // namespace tessit
