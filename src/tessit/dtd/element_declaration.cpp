// Element declarations: only their grammar matters here.

#include <tessit/dtd/subset_reader.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

constexpr Rule Broken = Rule::ElementDeclaration;

}  // namespace

// Entered just after "<!ELEMENT".
void SubsetReader::readElementDeclaration() {
    text.requireBlank();
    text.readQName(Broken);
    text.requireBlank();
    if (text.passIf("("))
        readContentModel();
    else if (!text.passIf("EMPTY") && !text.passIf("ANY"))
        text.refuseNext(Broken);
    endDeclaration(Broken);
}

// Entered just after the first '('.
void SubsetReader::readContentModel() {
    text.passBlank();
    if (text.passIf("#PCDATA")) return readMixedContent();
    std::vector<char> groups{'\0'};  // what connects the particles of each open group, once that is known
    while (readNextParticle(groups))
        ;
}

// Names are listed, or "#PCDATA" stands alone.
void SubsetReader::readMixedContent() {
    bool hasNames = false;
    for (text.passBlank(); text.passIf("|"); text.passBlank()) {
        text.passBlank();
        text.readQName(Broken);
        hasNames = true;
    }
    text.require(")", Broken);
    if (hasNames)
        text.require("*", Broken);
    else
        text.passIf("*");
}

// A particle and what follows it; false behind the last one.
bool SubsetReader::readNextParticle(std::vector<char>& groups) {
    text.passBlank();
    if (text.passIf("(")) {
        groups.push_back('\0');
        return true;
    }
    text.readQName(Broken);
    passOccurrence();
    return readConnector(groups);
}

// Closes groups up to what connects a particle with the next one; false when none is left open.
bool SubsetReader::readConnector(std::vector<char>& groups) {
    for (text.passBlank(); text.passIf(")"); text.passBlank()) {
        passOccurrence();
        groups.pop_back();
        if (groups.empty()) return false;
    }
    const char connector = text.peek();
    if ((connector != '|' && connector != ',') || (groups.back() != '\0' && groups.back() != connector))
        text.refuseHere(Broken);
    groups.back() = text.take();
    return true;
}

void SubsetReader::passOccurrence() noexcept {
    if (text.isAt('?') || text.isAt('*') || text.isAt('+')) text.goTo(text.position() + 1);
}

}  // namespace tessit
