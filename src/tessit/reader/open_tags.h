#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include <corvel/c_string.h>
#include <corvel/compiler.h>
#include <tessit/errors/xml_position.h>
#include <tessit/reader/written_markup.h>

namespace tessit {

/// Where the start tags of the open elements stand, by their level, in a document whose text comes and goes: of those
/// that are gone, names and positions are kept, for so many levels.
class OpenTags {
public:
    static constexpr std::size_t MostKept = 1024;

    /// An element of that level begins at the '<'; at null if it stands in no text that comes and goes. Levels below 0,
    /// where more elements ended than began, are passed over.
    void open(std::ptrdiff_t level, const char* tag) {
        const auto number = static_cast<std::size_t>(level);
        if (number - keptLevels >= roomBehindKept) [[unlikely]]
            return openElsewhere(level, tag);
        tags[number] = tag;
    }

    /// What is in front of the place is about to go; what stands behind it moves to `begin`. Elements are open at as
    /// many levels. `keep` tells of a tag what is kept of it, from the outermost on.
    template <typename Keep>
    void leave(std::size_t levels, const char* keptFrom, const Keep& keep) {
        dropKept(levels);
        while (kept.size() < levels && kept.size() != MostKept) {
            const char* const begin = tag(kept.size());
            if (begin != nullptr && begin >= keptFrom) break;
            kept.push_back(begin == nullptr ? QeXmlOpenElement() : keep(begin));
            countRoom();
        }
    }
    void moveTo(std::size_t levels, const char* keptFrom, const char* begin) noexcept {
        for (std::size_t level = kept.size(); level < std::min(levels, tags.size()); ++level)
            if (const char*& place = tags[level]; place != nullptr)
                place = place < keptFrom ? nullptr : begin + (place - keptFrom);
    }

    /// What was kept of the element of that level; null if its tag may still be there.
    const QeXmlOpenElement* findKept(std::size_t level) const noexcept {
        return level < kept.size() ? &kept[level] : nullptr;
    }

    /// Its tag; null if nobody knows, as where there was no memory to note it.
    const char* tag(std::size_t level) const noexcept { return level < tags.size() ? tags[level] : nullptr; }

    void clear() noexcept { dropKept(0); }

private:
    TESSIT_NOINLINE void openElsewhere(std::ptrdiff_t level, const char* tag) {
        if (level < 0) return;
        const auto number = static_cast<std::size_t>(level);
        dropKept(number);
        if (number >= tags.size()) tags.resize(number + number / 2 + 16);
        countRoom();
        tags[number] = tag;
    }

    void dropKept(std::size_t level) noexcept {
        if (level >= kept.size()) return;
        kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(level), kept.end());
        countRoom();
    }

    void countRoom() noexcept {
        keptLevels = kept.size();
        roomBehindKept = tags.size() - std::min(tags.size(), keptLevels);
    }

    std::vector<const char*> tags;
    std::vector<QeXmlOpenElement> kept;  // of the outermost levels
    std::size_t keptLevels = 0;          // its size, at hand
    std::size_t roomBehindKept = 0;      // how many of the tags there are for other levels
};

}  // namespace tessit
