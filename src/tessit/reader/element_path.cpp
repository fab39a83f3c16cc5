// The path of a place: the tags up to there, read once more, and the names that are counted on the way. Knows what
// markup looks like, and nothing of the reader.

#include <algorithm>
#include <string>
#include <utility>

#include <corvel/byte_scan.h>
#include <tessit/reader/element_path.h>
#include <tessit/reader/written_markup.h>
#include <tessit/rules/rules.h>

namespace tessit {

namespace {

constexpr std::size_t MostNames = 16;      // that are counted in one element
constexpr std::size_t MostCounted = 1024;  // levels in which children are counted

// A '<' in front of what begins neither a name nor other markup.
bool isText(const char* at, const char* limit) noexcept {
    return at + 1 != limit && std::string_view(" \t\r\n>='\"<").find(at[1]) != std::string_view::npos;
}

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
        pass(tag, end);
    }
}

void ElementPath::goOnWithin(const char* place, const char* limit) {
    while (at < place) {
        if (markupEnd == nullptr) {
            at = corvel::findByte(at, place, '<');
            if (at == place) return;
            if (isText(at, limit)) {
                ++at;
                continue;
            }
            markupEnd = endOfMarkup(at, limit, false);
        }
        if (markupEnd == nullptr) at = limit;
        if (markupEnd == nullptr || markupEnd > place) return;
        pass(at, std::exchange(markupEnd, nullptr));
    }
}

PathStep ElementPath::step(std::size_t level) const noexcept {
    const Element found = element(level);
    return {nameInTag(found.tag, MostOfPath), found.index};
}

void ElementPath::pass(const char* tag, const char* end) {
    at = end;
    if (tag[1] == '/')
        close();
    else if (tag[1] != '!' && tag[1] != '?')
        open(tag, end[-2] == '/');
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

constexpr std::string_view Dots = "...", LeftOut = "/...";
constexpr std::size_t Half = (MostOfPath - LeftOut.size()) / 2;

std::string indexOf(const PathStep& step) {
    return step.index > 1 ? '[' + std::to_string(step.index) + ']' : std::string();
}

// Whole, or as much of it as there is room for.
std::string textOf(const PathStep& step, std::size_t room) {
    const std::string index = indexOf(step);
    const std::size_t around = 1 + index.size();
    if (step.name.size() + around <= room && !step.name.empty()) return '/' + std::string(step.name) + index;
    if (step.name.empty() || room <= around + Dots.size()) return std::string(LeftOut);
    const std::string_view shown = beginOf(step.name, room - around - Dots.size());
    return '/' + std::string(shown) + std::string(Dots) + index;
}

// What one end of a path has, as far as there is room.
struct Part {
    std::vector<std::string> steps;  // from the end on
    std::size_t length = 0;

    bool add(const PathStep& step, std::size_t most) {
        const std::size_t stepLength = 1 + step.name.size() + indexOf(step).size();
        if (step.name.empty() || length + stepLength > most) return false;
        addCut(step, most);
        return true;
    }
    void addCut(const PathStep& step, std::size_t most) {
        steps.push_back(textOf(step, most - length));
        length += steps.back().size();
    }
    void dropLast() {
        length -= steps.back().size();
        steps.pop_back();
    }
};

QeCString join(const Part& outer, std::string_view between, const Part& inner) {
    QeCString text;
    text.reserve(outer.length + between.size() + inner.length);
    for (const std::string& step : outer.steps)
        text += step;
    text += between;
    for (std::size_t left = inner.steps.size(); left-- > 0;)
        text += inner.steps[left];
    return text;
}

}  // namespace

QeCString textOfPath(std::size_t levels, const std::function<PathStep(std::size_t)>& stepAt) {
    Part outer, inner;
    std::size_t first = 0, last = levels;
    while (last != 0 && inner.add(stepAt(last - 1), MostOfPath))
        --last;
    if (last == 0) return join(outer, {}, inner);
    for (; inner.length > Half; ++last)
        inner.dropLast();
    while (first != last && outer.add(stepAt(first), Half))
        ++first;
    if (last - first == 1) return join(outer, textOf(stepAt(first), MostOfPath - outer.length - inner.length), inner);
    if (outer.steps.empty()) outer.addCut(stepAt(first++), Half);
    if (inner.steps.empty()) inner.addCut(stepAt(--last), Half);
    return join(outer, first == last ? std::string_view() : LeftOut, inner);
}

}  // namespace tessit
