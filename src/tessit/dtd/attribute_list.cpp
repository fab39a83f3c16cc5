// Attribute-list declarations.

#include <algorithm>
#include <iterator>
#include <utility>

#include <tessit/dtd/subset_reader.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

constexpr Rule Broken = Rule::AttributeListDeclaration;

constexpr std::string_view TokenizedTypes[] = {"ID", "IDREF", "IDREFS", "ENTITY", "ENTITIES", "NMTOKEN", "NMTOKENS"};

}  // namespace

// Entered just after "<!ATTLIST".
void SubsetReader::readAttributeListDeclaration() {
    text.requireBlank();
    AttributeList* const list = declarations.declareAttributesOf(text.readQName(Broken));
    for (;;) {
        const bool isApart = text.passBlank();
        if (text.passIf(">")) return;
        if (!isApart) text.refuseNext(Rule::WhiteSpace);
        readAttribute(list);
    }
}

void SubsetReader::readAttribute(AttributeList* list) {
    const std::string_view name = text.readQName(Broken);
    text.requireBlank();
    const bool isTokenized = readAttributeType();
    text.requireBlank();
    std::optional<DeclaredAttribute::Default> byDefault = readDefault(isTokenized);
    DeclaredAttribute* const attribute = list == nullptr ? nullptr : declarations.declareAttribute(*list, name);
    if (attribute == nullptr) return;
    attribute->isTokenized = isTokenized;
    attribute->byDefault = std::move(byDefault);
    if (!attribute->byDefault) return;
    attribute->name.reserve(name.size() + DeclaredAttribute::ReadableBehindName);
    list->defaults.push_back(list->size() - 1);
}

// Whether values consist of tokens.
bool SubsetReader::readAttributeType() {
    if (text.isAt('(')) {
        readEnumeration(false);
        return true;
    }
    const char* const place = text.position();
    const std::string_view type = text.readName(Broken);
    if (type == "CDATA") return false;
    if (type == "NOTATION") {
        text.requireBlank();
        readEnumeration(true);
    } else if (std::find(std::begin(TokenizedTypes), std::end(TokenizedTypes), type) == std::end(TokenizedTypes)) {
        text.refuseAt(place, Broken, type);
    }
    return true;
}

void SubsetReader::readEnumeration(bool areNames) {
    text.require("(", Broken);
    do {
        text.passBlank();
        if (areNames)
            text.readNCName(Broken);
        else
            text.readNameToken(Broken);
        text.passBlank();
    } while (text.passIf("|"));
    text.require(")", Broken);
}

std::optional<DeclaredAttribute::Default> SubsetReader::readDefault(bool isTokenized) {
    if (text.passIf("#REQUIRED") || text.passIf("#IMPLIED")) return std::nullopt;
    if (text.passIf("#FIXED"))
        text.requireBlank();
    else if (text.isAt('#'))
        text.refuseHere(Broken);
    const std::string_view literal = text.readLiteral(Broken);
    DeclaredAttribute::Default read;
    declarations.appendValue(read.value, text.getSource(), literal, &read.left);
    if (literal.find('&') != std::string_view::npos)
        Declarations::appendAsWritten(read.asWritten, text.getSource(), literal);
    if (!isTokenized) return read;
    Declarations::tokenize(read.value, 0, &read.left);
    Declarations::tokenize(read.asWritten, 0);
    return read;
}

}  // namespace tessit
