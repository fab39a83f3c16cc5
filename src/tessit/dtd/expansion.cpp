#include <tessit/dtd/expansion.h>
#include <tessit/rules/rules.h>

namespace tessit {

bool Expansion::leaveText() {
    if (outer.empty()) return false;
    if (here.getSource().endsBy != Rule::None) refuseEnd(here.getSource());
    declarations.close(*outer.back().entered);
    here = outer.back().at;
    end = outer.back().end;
    outer.pop_back();
    return true;
}

bool Expansion::enterText(Entity& entity, const char* reference) {
    const Source* const source = declarations.open(entity, here.getSource(), reference);
    if (source == nullptr) return false;
    outer.push_back({here, end, &entity});
    here = StrictScanner(*source, source->begin());
    end = source->end();
    return true;
}

bool Expansion::passLineEnd() noexcept {
    here.goTo(here.position() + 1);
    if (!here.getSource().hasPlaces) return false;
    if (here.position() != end) here.passIf("\n");
    return true;
}

}  // namespace tessit
