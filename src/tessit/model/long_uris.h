#pragma once

#include <cstdint>
#include <string_view>
#include <unordered_map>

#include <corvel/c_string.h>

namespace tessit {

/// Knows long URIs again by where they stand, so that each is looked at only once.
///
/// The names that a reader hands out, and their copies, share a long URI with the
/// binding that they were resolved by. Those that were seen here are kept: as long
/// as they are shared, they neither move nor change.
class LongUris {
public:
    LongUris();
    LongUris(const LongUris&) = delete;
    LongUris& operator=(const LongUris&) = delete;
    ~LongUris();

    /// What all equal ones are known as. Lives as long as the object that knows it.
    struct Known {
        QeCString uri;
        std::uint64_t hash;
    };

    /// Whether two URIs are equal, of whatever length. Both are remembered where that needs a look.
    bool areEqual(const QeCString& left, const QeCString& right) {
        if (left.length() != right.length() || !left.isLong()) return left == right;
        return &remember(left) == &remember(right);
    }

    /// What a long URI is known as, or null. O(1) for one that names share, O(length)
    /// for the first time and for one that stands alone, which is not remembered.
    const Known* find(const QeCString& uri);

    /// Makes a long URI known; it may be already. O(1) where it stands as before, else O(length).
    const Known& remember(const QeCString& uri);

private:
    struct Place {
        QeCString uri;
        const Known* known = nullptr;
    };

    // No document can choose texts that fall together.
    struct Hash {
        std::size_t operator()(std::string_view text) const noexcept;
    };

    const Known* findPlace(const QeCString& uri) const;
    const Known* findText(const QeCString& uri) const;
    void keepPlace(const QeCString& uri, const Known& known);

    std::unordered_map<const char*, Place> places;            // of all that were seen
    std::unordered_map<std::string_view, Known, Hash> texts;  // each once; the keys view what they are known as
};

}  // namespace tessit
