#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include <corvel/compiler.h>
#include <tessit/errors/xml_position.h>

namespace tessit {

/// Where the start tags of the open elements stand, by their level, in a document whose text comes and goes: of those
/// that are gone, names and positions are kept, for so many levels. Those that an entity opened are noted, too, and
/// never asked for.
class OpenTags {
public:
    static constexpr std::size_t MostKept = 1024;

    /// An element begins at the '<', the innermost of so many. Where more elements ended than began, there is nothing
    /// to note.
    void open(std::ptrdiff_t levels, const char* tag) {
        const auto number = static_cast<std::size_t>(levels);
        if (number >= room) [[unlikely]]
            return openDeeper(levels, tag);
        tags[number] = tag;
    }

    /// What is in front of the place is about to go; what stands behind it moves to `begin`. So many elements are open;
    /// tags of others go or move, too, as one that there is no memory to note would be taken for them. `keep` tells of
    /// a tag what is kept of it, from the outermost on.
    template <typename Keep>
    void leave(std::size_t levels, const char* keptFrom, const Keep& keep) {
        dropClosed(levels);
        while (kept.size() < std::min(levels, MostKept)) {
            const char* const begin = tag(kept.size());
            if (begin != nullptr && begin >= keptFrom) break;
            kept.push_back(begin == nullptr ? QeXmlOpenElement() : keep(begin));
            if (begin != nullptr) tags[kept.size()] = nullptr;
        }
    }
    void moveTo(const char* keptFrom, const char* begin) noexcept {
        for (std::size_t number = kept.size() + 1; number < room; ++number)
            if (const char*& place = tags[number]; place != nullptr)
                place = place < keptFrom ? nullptr : begin + (place - keptFrom);
    }

    /// What was kept of the element of that level; null if its tag may still be there.
    const QeXmlOpenElement* findKept(std::size_t level) const noexcept {
        return level < kept.size() && tag(level) == nullptr ? &kept[level] : nullptr;
    }

    /// Its tag; null if nobody knows, as where there was no memory to note it.
    const char* tag(std::size_t level) const noexcept { return level + 1 < room ? tags[level + 1] : nullptr; }

    void clear() noexcept {
        kept.clear();
        std::ranges::fill(tags, nullptr);
    }

private:
    TESSIT_NOINLINE void openDeeper(std::ptrdiff_t levels, const char* tag) {
        if (levels < 0) return;
        const auto number = static_cast<std::size_t>(levels);
        tags.resize(number + number / 2 + 16);
        room = tags.size();
        tags[number] = tag;
    }

    // Of elements that were opened anew at a level, the tag is there again.
    void dropClosed(std::size_t levels) noexcept {
        std::size_t open = 0;
        while (open < std::min(levels, kept.size()) && tag(open) == nullptr)
            ++open;
        kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(open), kept.end());
    }

    std::vector<const char*> tags;       // by how many elements are open; null where something is kept, or nobody knows
    std::size_t room = 0;                // its size, at hand
    std::vector<QeXmlOpenElement> kept;  // of the outermost levels
};

}  // namespace tessit
