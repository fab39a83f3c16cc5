#pragma once

#include <map>
#include <string_view>
#include <unordered_map>

#include <corvel/shared_text.h>

namespace tessit {

/// Tells whether URIs of different documents are equal, and looks at each long one
/// only once.
///
/// The names that a reader hands out share a long URI with the binding that they
/// were resolved by, so that it is known again by where it stands. All that were
/// seen are kept: as long as they are shared, they neither move nor change.
class LongUris {
public:
    bool areEqual(const QeCString& left, const QeCString& right) {
        if (left.length() != right.length() || !corvel::SharedText::isLong(left)) return left == right;
        return firstEqual(left) == firstEqual(right);
    }

private:
    struct Known {
        QeCString uri;
        const char* firstEqual = nullptr;
    };

    // Where the first of all equal URIs stands. O(length) for one that is new, and
    // O(log of their number) comparisons: an ordered map, for which no document can
    // choose URIs that make it slow.
    const char* firstEqual(const QeCString& uri) {
        Known& entry = known[uri.data()];
        if (entry.firstEqual == nullptr) {  // it is new, or memory was missing the last time
            corvel::SharedText::share(entry.uri, uri);
            entry.firstEqual = firsts.try_emplace(uri, uri.data()).first->second;
        }
        return entry.firstEqual;
    }

    std::unordered_map<const char*, Known> known;
    std::map<std::string_view, const char*> firsts;
};

}  // namespace tessit
