#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include <corvel/c_string.h>

namespace tessit {

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

    std::size_t depth() const noexcept { return tags.size(); }
    Element element(std::size_t level) const noexcept {
        return {tags[level], level < counted.size() ? counted[level].index : 0};
    }

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

    void open(const char* tag, bool isEmpty);
    void close() noexcept;
    std::uint32_t countAmongSiblings(const char* tag);

    const char* at;
    std::vector<const char*> tags;  // of the open elements, outermost first
    std::vector<Counted> counted;   // of the outermost ones
    std::vector<NameCount> counts;
};

/// A path of elements as text: `/feed/entry[3]/title`. Long names are cut, and so is the middle of a long path.
class PathText {
public:
    /// So much of a name makes a difference, and so many elements on either side have room.
    static constexpr std::size_t MostOfName = 128, MostSteps = 256;

    /// Adds elements from outside, then from inside, each time until there is no more room: then false. The names stay
    /// as long as this.
    bool addOutermost(std::string_view name, std::uint32_t index);
    bool addInnermost(std::string_view name, std::uint32_t index);

    /// `isWhole` says whether all of the path was added.
    QeCString whole(bool isWhole) const;

private:
    struct Step {
        std::string_view name;
        std::uint32_t index;
    };

    static std::size_t lengthOf(const Step& step) noexcept;
    static void append(QeCString& text, const Step& step);

    std::vector<Step> front, back;  // from outside, and from inside
    std::size_t frontLength = 0, backLength = 0;
};

}  // namespace tessit
