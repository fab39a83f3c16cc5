// The path of a place: the tags up to there, read once more, and the names that are counted on the way. Knows what
// markup looks like, and nothing of the reader.

#include <algorithm>
#include <string>

#include <corvel/byte_scan.h>
#include <tessit/reader/element_path.h>
#include <tessit/reader/written_markup.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

constexpr std::size_t MostNames = 16;      // that are counted in one element
constexpr std::size_t MostCounted = 1024;  // levels in which children are counted

}  // namespace

// A lenient reader takes all up to a semicolon for a reference, in texts, too.
void ElementPath::goOnTo(const char* place, bool expandsReferences) {
    while (at < place) {
        const char* const tag = corvel::findAny(at, place, '<', '&');
        if (tag != place && *tag == '&') {
            at = corvel::findByte(tag, place, ';');
            continue;
        }
        const char* const end = tag == place ? nullptr : endOfMarkup(tag, place, expandsReferences);
        if (end == nullptr) {
            at = place;
            return;
        }
        at = end;
        if (tag[1] == '/')
            close();
        else if (tag[1] != '!' && tag[1] != '?')
            open(tag, end[-2] == '/');
    }
}

void ElementPath::open(const char* tag, bool isEmpty) {
    const std::size_t level = tags.size();
    const std::uint32_t index = level <= counted.size() ? countAmongSiblings(tag) : 0;
    if (isEmpty) return;
    if (level < MostCounted) counted.push_back({index, static_cast<std::uint32_t>(counts.size())});
    tags.push_back(tag);
}

void ElementPath::close() noexcept {
    if (tags.empty()) return;
    tags.pop_back();
    if (tags.size() >= counted.size()) return;
    counts.resize(counted.back().firstCount);
    counted.pop_back();
}

// The counts of the innermost element are the last ones. The root has no siblings.
std::uint32_t ElementPath::countAmongSiblings(const char* tag) {
    if (tags.empty()) return 1;
    const auto first = counts.begin() + counted.back().firstCount;
    const std::string_view name = nameInTag(tag);
    const auto found = std::find_if(first, counts.end(), [name](const NameCount& known) { return known.name == name; });
    if (found != counts.end()) return ++found->count;
    if (static_cast<std::size_t>(counts.end() - first) == MostNames) return 0;
    counts.push_back({name, 1});
    return 1;
}

namespace {

constexpr std::size_t LongestHalf = 500;

// A path that is too long by this step is cut in front of it.
bool takesRoom(std::size_t& used, std::size_t length) noexcept {
    if (used + length > LongestHalf) return false;
    used += length;
    return true;
}

}  // namespace

std::size_t PathText::lengthOf(const Step& step) noexcept {
    constexpr std::size_t Slash = 1, Dots = 3, Brackets = 2;
    const std::size_t shown = quoted(step.name).size();
    std::size_t length = Slash + shown + (shown == step.name.size() ? 0 : Dots);
    if (step.index < 2) return length;
    for (std::uint32_t rest = step.index; rest != 0; rest /= 10)
        ++length;
    return length + Brackets;
}

void PathText::append(QeCString& text, const Step& step) {
    const std::string_view shown = quoted(step.name);
    text += '/';
    text += shown;
    if (shown.size() != step.name.size()) text += "...";
    if (step.index > 1) text += '[' + std::to_string(step.index) + ']';
}

bool PathText::addOutermost(std::string_view name, std::uint32_t index) {
    const Step step{name, index};
    if (!takesRoom(frontLength, lengthOf(step))) return false;
    front.push_back(step);
    return true;
}

bool PathText::addInnermost(std::string_view name, std::uint32_t index) {
    const Step step{name, index};
    if (!takesRoom(backLength, lengthOf(step))) return false;
    back.push_back(step);
    return true;
}

QeCString PathText::whole(bool isWhole) const {
    QeCString text;
    text.reserve(frontLength + backLength + 4);
    for (const Step& step : front)
        append(text, step);
    if (!isWhole) text += "/...";
    for (std::size_t left = back.size(); left-- > 0;)
        append(text, back[left]);
    return text;
}

}  // namespace tessit
