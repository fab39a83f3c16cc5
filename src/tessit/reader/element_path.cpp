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
    const auto found =
        std::find_if(first, counts.end(), [name](const NameCount& known) { return nameInTag(known.tag) == name; });
    if (found != counts.end()) return ++found->count;
    if (static_cast<std::size_t>(counts.end() - first) == MostNames) return 0;
    counts.push_back({tag, 1});
    return 1;
}

namespace {

constexpr std::size_t LongestHalf = 500;

QeCString stepOf(std::string_view name, std::uint32_t index) {
    const std::string_view shown = quoted(name);
    QeCString step("/");
    step += shown;
    if (shown.size() != name.size()) step += "...";
    if (index > 1) step += '[' + std::to_string(index) + ']';
    return step;
}

}  // namespace

bool PathText::addOutermost(std::string_view name, std::uint32_t index) {
    const QeCString step = stepOf(name, index);
    if (front.length() + step.length() > LongestHalf) return false;
    front += step;
    return true;
}

bool PathText::addInnermost(std::string_view name, std::uint32_t index) {
    const QeCString step = stepOf(name, index);
    if (back.length() + step.length() > LongestHalf) return false;
    back = step + back;
    return true;
}

QeCString PathText::whole(bool isWhole) const {
    return isWhole ? front + back : front + "/..." + back;
}

}  // namespace tessit
