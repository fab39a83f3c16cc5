#pragma once

#include <atomic>
#include <cstddef>
#include <new>
#include <string_view>

#include <corvel/string_access.h>

/// Texts that several strings share, which are not copied where one is made like another.
///
/// A document can use a URI in each of its tags: the names that are in it share it
/// with the binding. A shared text is only read. Its block has a count of its owners in
/// front, and the hash of a long one from when it is asked for, so that two that
/// differ are mostly told apart in O(1).
///
/// Long ones may be shared in whatever threads: their count is atomic. The others must
/// not leave the object that shares them, and are cheaper.
namespace corvel {

class SharedText {
public:
    /// Texts of so many bytes and more are long.
    static constexpr std::size_t LongLength = 256;

    static bool isLong(std::string_view text) noexcept { return text.size() >= LongLength; }

    /// Gives `text` these bytes, to be shared: in the storage that it has, where that is
    /// large enough and no other string has it. What fits into the object is not
    /// shared. Strong guarantee. O(bytes).
    static void assign(QeCString& text, std::string_view bytes);

    /// Makes `text` equal to `other`: if that is a shared text, in O(1), by joining it.
    static void share(QeCString& text, const QeCString& other) {
        if (text.data() == other.data()) return;
        if (!StringAccess::isShared(other)) {
            text = other;
        } else {
            join(other);
            StringAccess::takeOver(text, other);
        }
    }

    /// Empties `text`, whether shared or not.
    static void clear(QeCString& text) noexcept {
        if (StringAccess::isShared(text)) {
            text = QeCString();
        } else {
            text.clear();
        }
    }

    /// The hash of a text with the key of this process; of a shared and long one, kept.
    static std::size_t hashOf(const QeCString& text) noexcept;
    static std::size_t hashOf(std::string_view text) noexcept;

    /// Whether two texts are both shared and long, and have different hashes.
    static bool areKnownToDiffer(const QeCString& left, const QeCString& right) noexcept;

    /// Gives up a string's part of its block, which goes with the last owner.
    static void leave(const QeCString& text) noexcept {
        if (isLastToLeave(text)) ::operator delete(&headerOf(text));
    }

private:
    struct Header {
        alignas(StringAccess::UnitSize) std::size_t owners;
        std::size_t hash;
    };
    static constexpr std::size_t HashNotKnown = 0;

    static Header& headerOf(const QeCString& text) noexcept {
        return *std::launder(reinterpret_cast<Header*>(const_cast<char*>(text.data()) - sizeof(Header)));
    }

    // The block says whether it may be in several threads: its text can change while it has one owner.
    static bool isCountAtomic(const QeCString& text) noexcept { return text.capacity() >= LongLength; }

    static void join(const QeCString& text) noexcept {
        std::size_t& owners = headerOf(text).owners;
        if (isCountAtomic(text)) {
            std::atomic_ref(owners).fetch_add(1, std::memory_order_relaxed);
        } else {
            ++owners;
        }
    }

    // Nobody joins meanwhile: only an owner could.
    static bool isSoleOwner(const QeCString& text) noexcept {
        return std::atomic_ref(headerOf(text).owners).load(std::memory_order_acquire) == 1;
    }

    static bool isLastToLeave(const QeCString& text) noexcept {
        if (isSoleOwner(text)) return true;
        std::size_t& owners = headerOf(text).owners;
        if (!isCountAtomic(text)) return --owners == 0;
        return std::atomic_ref(owners).fetch_sub(1, std::memory_order_acq_rel) == 1;
    }

    static bool keepsHash(const QeCString& text) noexcept { return StringAccess::isShared(text) && isLong(text); }
};

}  // namespace corvel
