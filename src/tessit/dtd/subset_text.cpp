#include <tessit/dtd/subset_text.h>
#include <tessit/rules/name_chars.h>

namespace tessit {

bool SubsetText::passBlank() {
    for (bool isBlank = false;; isBlank = true) {
        if (passSpace()) continue;
        if (atEnd() && state.isWithin) {
            leaveText();
        } else if (isAtReference()) {
            enterWithin();
        } else {
            return isBlank;
        }
    }
}

void SubsetText::requireBlank() {
    if (!passBlank()) refuseNext(Rule::WhiteSpace);
}

// A '%' that stands by itself declares a parameter entity.
bool SubsetText::isAtReference() const noexcept {
    return isAt('%') && position() + 1 != end() && startsStrictName(characterAt(position() + 1).character);
}

void SubsetText::enterBetween() {
    enter(false);
}

void SubsetText::enterWithin() {
    if (!isOutside()) refuseHere(Rule::ParameterEntity);
    // Nothing stands for an entity that nobody declared, unless that was done where nothing was read.
    const bool isAllKnown = !declarations.hasUnreadEntity();
    const Found found = enter(true);
    if (found != Found::Text && !(found == Found::Nothing && isAllKnown)) throw Unreadable();
}

SubsetText::Found SubsetText::enter(bool isWithin) {
    const char* const reference = position();
    take();
    const std::string_view name = readReferenceName(declarations.getSettings().namespaces, Rule::ParameterEntity);
    declarations.holdName(getSource(), name);
    Entity* const entity = declarations.resolveParameter(getSource(), reference, name);
    const Source* const text = entity == nullptr ? nullptr : declarations.open(*entity, getSource(), reference);
    if (text == nullptr) {
        declarations.noteUnreadEntity();
        return entity == nullptr ? Found::Nothing : Found::Unavailable;
    }
    outer.push_back({*this, state, entity});
    static_cast<StrictScanner&>(*this) = StrictScanner(*text, text->begin());
    state.isWithin = isWithin;
    if (!isWithin) state.sectionsAround = openSections;
    state.isOutside |= entity->isExternal;
    declarations.setReadingOutside(true);
    return Found::Text;
}

bool SubsetText::leaveText() {
    if (getSource().endsBy != Rule::None) refuseEnd(getSource());
    if (!state.isWithin && openSections != state.sectionsAround) refuseHere(Rule::ConditionalSection);
    if (outer.empty()) return false;
    goBack();
    return true;
}

void SubsetText::goBack() noexcept {
    declarations.close(*outer.back().entered);
    static_cast<StrictScanner&>(*this) = outer.back().at;
    state = outer.back().state;
    outer.pop_back();
    declarations.setReadingOutside(isOutside() || !isInSubset());
}

void SubsetText::leaveAll() noexcept {
    while (!isInSubset())
        goBack();
    openSections = 0;
}

std::string_view SubsetText::readName(Rule rule) {
    if (!startsStrictName(characterAt((peek(), position())).character)) refuseHere(rule);
    return passNameCharacters();
}

std::string_view SubsetText::readNameToken(Rule rule) {
    const std::string_view token = passNameCharacters();
    if (token.empty()) refuseNext(rule);
    declarations.holdName(getSource(), token);
    return token;
}

std::string_view SubsetText::readQName(Rule rule) {
    const std::string_view name = readName(rule);
    declarations.holdName(getSource(), name);
    if (declarations.getSettings().namespaces) checkQName(getSource(), name);
    return name;
}

std::string_view SubsetText::readNCName(Rule rule) {
    const std::string_view name = readName(rule);
    declarations.holdName(getSource(), name);
    if (const std::size_t colon = name.find(':');
        declarations.getSettings().namespaces && colon != std::string_view::npos)
        refuseAt(name.data() + colon, Rule::Colon, name);
    return name;
}

void SubsetText::refuseNext(Rule rule) const {
    if (atEnd()) refuseEnd(getSource());
    refuseHere(rule);
}

bool SubsetText::closeSection() noexcept {
    if (openSections == state.sectionsAround) return false;
    --openSections;
    return true;
}

}  // namespace tessit
