#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string_view>

#include <corvel/c_string.h>

/// Keeps each of a number of texts once, for strings that are copied and compared
/// again and again.
///
/// Copies of a string from the pool share its bytes: a copy costs O(1) in time and
/// memory, whatever the length, and so does comparing two strings of one pool for
/// equality. They stay good after the pool is gone, and different threads may have
/// them; the pool itself is for one thread at a time.
class TESSIT_API QeTextPool {
public:
    QeTextPool() noexcept;
    QeTextPool(const QeTextPool&) = delete;
    QeTextPool& operator=(const QeTextPool&) = delete;
    ~QeTextPool();

    /// The pool's own string of that text, which is copied when it is new. Texts
    /// that fit into a string without a block are no gain here. The reference lives
    /// as long as the pool. O(length * log of the texts kept); strong guarantee.
    const QeCString& keep(std::string_view text);

private:
    friend class QeCString;

    struct Header;

    static Header& headerOf(const char* bytes) noexcept;
    static void retain(const char* bytes) noexcept;
    static void release(char* bytes) noexcept;
    static bool fromOnePool(const char* left, const char* right) noexcept;
    QeCString makePooled(std::string_view text) const;

    std::uint64_t number;  // no other pool has or had it
    std::set<QeCString, std::less<>> texts;
};
