#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include <corvel/c_string.h>

namespace tessit {

/// A step of a path: an element, or without a name one that nobody knows.
struct PathStep {
    std::string_view name;
    std::uint32_t index = 0;
};

/// The most bytes that a path has as text: so much of a name makes a difference, and so many steps have room.
inline constexpr std::size_t MostOfPath = 1000, MostSteps = MostOfPath / 2;

/// Which elements are open at a place of a document, found by reading it again from the last
/// place that was asked for. An end tag closes the innermost element, whatever its name.
///
/// Costs a pointer for each open element, and some more for the outermost ones.
class ElementPath {
public:
    struct Element {
        const char* tag;      // the '<' of its start tag
        std::uint32_t index;  // among its parent's of that name, from 1; 0 where nobody counted
    };

    /// The document's bytes from here on, in front of which no element is open.
    explicit ElementPath(const char* text) noexcept : at(text) {}

    /// Reads on to a place; what is not whole there is passed.
    void goOnTo(const char* place, bool expandsReferences);

    /// The same within a text that ends at `limit` and in which a reference hides no markup; what is whole behind the
    /// place counts later. O(bytes) for any number of places in their order.
    void goOnWithin(const char* place, const char* limit);

    std::size_t depth() const noexcept { return tags.size(); }
    Element element(std::size_t level) const noexcept {
        return {tags[level], level < counted.size() ? counted[level].index : 0};
    }
    PathStep step(std::size_t level) const noexcept;

private:
    // How often a name stood in an element that is open.
    struct NameCount {
        std::string_view name;
        std::uint32_t count;
    };

    // Of an element whose children are counted: the counts of each begin behind those of the one around it.
    struct Counted {
        std::uint32_t index;
        std::uint32_t firstCount;
    };

    void pass(const char* tag, const char* end);
    void open(const char* tag, bool isEmpty);
    void close() noexcept;
    std::uint32_t countAmongSiblings(const char* tag);

    const char* at;
    const char* markupEnd = nullptr;  // of what begins there, if that is known already
    std::vector<const char*> tags;    // of the open elements, outermost first
    std::vector<Counted> counted;     // of the outermost ones
    std::vector<NameCount> counts;
};

/// A path of elements as text: `/feed/entry[3]/title`. `stepAt` tells the step of a level, from the outermost one on.
/// The middle of a longer path is left out, in whole steps; a step is cut itself where it is all that is left out, or
/// the first or last one and longer than half. O(1) steps and bytes.
QeCString textOfPath(std::size_t levels, const std::function<PathStep(std::size_t level)>& stepAt);

}  // namespace tessit
