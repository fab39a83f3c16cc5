#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <corvel/compiler.h>
#include <tessit/errors/xml_position.h>

namespace tessit {

/// Where the start tags of the open elements stand, by their level, in a document whose text comes and goes: of those
/// that are gone, names and positions are kept, for so many levels. Those that an entity opened are noted, too, and
/// never asked for. Tags are known by numbers, which go up with the bytes of all documents: nothing changes where text
/// moves or another document begins, however deep one was.
class OpenTags {
public:
    static constexpr std::size_t MostKept = 1024;

    /// An element begins at the '<', the innermost of so many. Where more elements ended than began, there is nothing
    /// to note.
    void open(std::ptrdiff_t levels, const char* tag) {
        const auto level = static_cast<std::size_t>(levels);
        if (level >= room) [[unlikely]]
            return openDeeper(levels, tag);
        tags[level] = numberOf(tag);
    }

    /// The text that is there begins at that place, which can be another one than before.
    void standsAt(const char* place) noexcept {
        text = place;
        shift = first - addressOf(text);
    }

    /// What is in front of the place is about to go. So many elements are open. `keep` tells of a tag what is kept of
    /// it, from the outermost on.
    template <typename Keep>
    void leave(std::size_t levels, const char* keptFrom, const Keep& keep) {
        dropClosed(levels);
        while (kept.size() < std::min(levels, MostKept)) {
            const Number number = numberAt(kept.size());
            if (number >= numberOf(keptFrom)) break;
            kept.push_back({number, number < first ? QeXmlOpenElement() : keep(tag(kept.size()))});
        }
    }
    void drop(std::size_t bytes) noexcept { first += bytes; }

    /// What was kept of the element of that level; null if its tag may still be there.
    const QeXmlOpenElement* findKept(std::size_t level) const noexcept {
        return isKept(level) ? &kept[level].element : nullptr;
    }

    /// Its tag; null if nobody knows, as where there was no memory to note it.
    const char* tag(std::size_t level) const noexcept {
        const Number number = numberAt(level);
        return number < first ? nullptr : text + (number - first);
    }

    /// Another document begins; of this one, so many bytes are there.
    void clear(std::size_t bytes) noexcept {
        kept.clear();
        first += bytes;
    }

private:
    using Number = std::uint64_t;

    struct Kept {
        Number number;
        QeXmlOpenElement element;
    };

    static Number addressOf(const char* place) noexcept { return reinterpret_cast<std::uintptr_t>(place); }
    Number numberOf(const char* place) const noexcept { return addressOf(place) + shift; }

    TESSIT_NOINLINE void openDeeper(std::ptrdiff_t levels, const char* tag) {
        if (levels < 0) return;
        const auto level = static_cast<std::size_t>(levels);
        tags.resize(level + level / 2 + 16);
        room = tags.size();
        tags[level] = numberOf(tag);
    }

    Number numberAt(std::size_t level) const noexcept { return level + 1 < room ? tags[level + 1] : 0; }

    // An element that was opened anew at the level has another number.
    bool isKept(std::size_t level) const noexcept {
        return level < kept.size() && kept[level].number == numberAt(level);
    }

    void dropClosed(std::size_t levels) noexcept {
        std::size_t open = 0;
        while (open < levels && isKept(open))
            ++open;
        kept.erase(kept.begin() + static_cast<std::ptrdiff_t>(open), kept.end());
    }

    std::vector<Number> tags;    // by how many elements are open; 0 where nobody knows
    std::size_t room = 0;        // its size, at hand
    const char* text = nullptr;  // what is there
    Number first = 1;            // its beginning's
    Number shift = 0;            // from an address to its number
    std::vector<Kept> kept;      // of the outermost levels
};

}  // namespace tessit
