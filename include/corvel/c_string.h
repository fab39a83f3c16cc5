#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <string_view>
#include <type_traits>

#include <tessit/export.h>

namespace corvel {
struct StringAccess;
}  // namespace corvel

/// An owned string of bytes: every name, URI, value and text of the library.
///
/// By convention it holds UTF-8, but nothing here looks inside: lengths and
/// positions count bytes, comparisons are byte for byte with bytes taken as
/// unsigned. NUL bytes are legal content, and `data()` is NUL-terminated all the
/// same. Up to 23 bytes live inside the object (24 bytes in all); longer texts
/// have a heap block, which assignment reuses. Blocks of a megabyte and more come
/// from malloc, so that they can grow where they stand.
///
/// Operations that store bytes throw `std::bad_alloc`, or `std::length_error`
/// past 64 GiB (2 GiB where pointers have 32 bits), and then leave the string as
/// it was. Arguments may point into the string itself. A NUL-terminated text that
/// is stored, appended or tested for equality may be a null pointer, which counts
/// as the empty text. One thread at a time.
///
/// Accessors, single bytes and moves are O(1). Copies, assignments, comparisons and
/// hashes are O(length); two strings of different lengths are found unequal in O(1).
class TESSIT_API QeCString {
public:
    /// Which ends of a text to strip: a set of two bits, of which any other bits are no part.
    enum stripType : int { stripNone = 0, stripLeading = 1, stripTrailing = 2, stripBoth = 3 };

    /// "Not found", and "up to the end" where a length is asked for.
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    /// The longest text that needs no heap block, in bytes.
    static constexpr std::size_t InlineCapacity = 23;

    constexpr QeCString() noexcept : raw{} { setInlineLength(0); }

    /// A copy of a NUL-terminated text. Texts of up to 23 bytes make a constant expression.
    constexpr QeCString(const char* text) : raw{} {
        setInlineLength(0);
        if (text == nullptr) return;
        const std::size_t length = std::char_traits<char>::length(text);
        if (std::is_constant_evaluated() && length <= InlineCapacity) {
            for (std::size_t i = 0; i < length; ++i)
                raw[i] = text[i];
            setInlineLength(length);
        } else {
            assign(text, length);  // no constant expression: a longer text needs a block
        }
    }

    /// A copy of `length` bytes at `bytes`, which may be null when `length` is 0.
    QeCString(const char* bytes, std::size_t length) : QeCString() { assign(bytes, length); }

    /// A copy of the viewed bytes.
    explicit QeCString(std::string_view text) : QeCString(text.data(), text.size()) {}

    QeCString(const QeCString& other) {
        if (other.isInline()) {
            std::memcpy(raw, other.raw, sizeof raw);
        } else {
            setInlineLength(0);
            assignSlowly(other.heapData(), other.heapLength());
        }
    }

    QeCString(QeCString&& other) noexcept {
        std::memcpy(raw, other.raw, sizeof raw);
        other.forgetBlock();
    }

    QeCString& operator=(const QeCString& other) {
        if (isInline() && other.isInline()) {
            copyInline(other);
        } else {
            assign(other.data(), other.length());
        }
        return *this;
    }

    QeCString& operator=(QeCString&& other) noexcept {
        if (this != &other) {
            releaseBlock();
            std::memcpy(raw, other.raw, sizeof raw);
            other.forgetBlock();
        }
        return *this;
    }

    QeCString& operator=(const char* text) {
        assign(text);
        return *this;
    }

    ~QeCString() { releaseBlock(); }

    /// The number of bytes, without the terminator.
    std::size_t length() const noexcept {
        return isInline() ? InlineCapacity - static_cast<unsigned char>(raw[TagIndex]) : heapLength();
    }

    bool empty() const noexcept { return length() == 0; }

    /// The bytes, followed by a NUL. Valid until the string is changed, moved or destroyed.
    const char* data() const noexcept { return isInline() ? raw : heapData(); }

    const char* begin() const noexcept { return data(); }
    const char* end() const noexcept { return data() + length(); }

    /// A view of the bytes, as long-lived as `data()`.
    operator std::string_view() const noexcept { return {data(), length()}; }

    /// The byte at `index`; throws `QeBoundsError` unless `index < length()`.
    char operator[](std::size_t index) const {
        if (index >= length()) raiseIndex(index);
        return data()[index];
    }

    /// The byte at `index`, to be changed; throws `QeBoundsError` unless `index < length()`.
    char& operator[](std::size_t index) {
        if (index >= length()) raiseIndex(index);
        return mutableData()[index];
    }

    /// Replaces the text. Keeps a heap block that is large enough. O(length).
    void assign(const char* bytes, std::size_t length) {
        if (length > InlineCapacity) return assignSlowly(bytes, length);
        if (isInline()) {
            copyShort(raw, bytes, length);
            raw[length] = '\0';
            setInlineLength(length);
        } else if (!isShared()) {
            copyShort(heapData(), bytes, length);
            setLength(length);
        } else {
            assignSlowly(bytes, length);
        }
    }

    void assign(std::string_view text) { assign(text.data(), text.size()); }
    void assign(const char* text) { assign(viewOf(text)); }

    /// Empties the text and keeps its storage. O(1).
    void clear() noexcept { truncate(0); }

    /// Shortens the text to `length` bytes; does nothing when it is not longer. O(1).
    void truncate(std::size_t newLength) noexcept {
        if (newLength < length()) setLength(newLength);
    }

    /// Makes the text `length` bytes long and returns them, to be written over:
    /// what is not kept of the old text is unspecified until then. Everything that
    /// `data()` says holds for the pointer. Growing step by step costs amortised
    /// O(1) a byte.
    char* resizeForOverwrite(std::size_t length);

    /// How many bytes the text can have before it needs another block.
    std::size_t capacity() const noexcept { return isInline() ? InlineCapacity : heapCapacity(); }

    /// Makes room for `length` bytes in all, so that growing up to them allocates
    /// nothing. O(length of the text) where it moves, else O(1).
    void reserve(std::size_t length);

    /// Appends bytes. Amortised O(bytes).
    void append(const char* bytes, std::size_t count) {
        const std::size_t oldLength = length();
        if (count > InlineCapacity || count > capacity() - oldLength) return appendSlowly(bytes, count);
        copyShort(mutableData() + oldLength, bytes, count);
        setLength(oldLength + count);
    }

    void append(std::string_view text) { append(text.data(), text.size()); }
    void append(const char* text) { append(viewOf(text)); }
    void append(char byte) { append(&byte, 1); }

    QeCString& operator+=(std::string_view text) {
        append(text);
        return *this;
    }

    QeCString& operator+=(const char* text) {
        append(text);
        return *this;
    }

    QeCString& operator+=(char byte) {
        append(byte);
        return *this;
    }

    /// Both texts, one behind the other. O(bytes of both).
    friend QeCString operator+(const QeCString& left, std::string_view right) { return concatenate(left, right); }
    friend QeCString operator+(const QeCString& left, const QeCString& right) { return concatenate(left, right); }
    friend QeCString operator+(const QeCString& left, const char* right) { return concatenate(left, viewOf(right)); }
    friend QeCString operator+(const char* left, const QeCString& right) { return concatenate(viewOf(left), right); }

    /// The position of the first `byte` at or after `from`, or `npos`. O(length).
    std::size_t find(char byte, std::size_t from = 0) const noexcept;

    /// The position of the first `text` at or after `from`, or `npos`. O(length).
    std::size_t find(std::string_view text, std::size_t from = 0) const noexcept;

    /// The position of the first byte at or after `from` that is one of `set`, or
    /// `npos`. O(length * length of `set`).
    std::size_t findFirstOf(std::string_view set, std::size_t from = 0) const noexcept;

    /// A view of up to `length` bytes from `position`; empty past the end. As long-lived as `data()`. O(1).
    std::string_view substring(std::size_t position, std::size_t count = npos) const noexcept {
        const std::size_t end = length();
        if (position > end) position = end;
        return {data() + position, count < end - position ? count : end - position};
    }

    /// Turns a to z into A to Z, whatever the locale; other bytes stay. O(length).
    void toUpper();

    /// Replaces the text by all that is left in `in`, byte for byte, and sets the
    /// stream's end-of-file state. A stream that cannot be read gives an empty
    /// text. What the stream's buffer throws passes through and leaves the text
    /// as it was. O(bytes read).
    void readFile(std::istream& in);

    /// A negative number, 0 or a positive number: bytes as unsigned, a proper prefix
    /// first. O(length of the shorter text).
    int compare(std::string_view other) const noexcept {
        const std::string_view text(*this);
        if (text.empty() || other.empty() || text[0] == other[0]) return text.compare(other);
        // Mostly known by the first byte.
        return static_cast<unsigned char>(text[0]) < static_cast<unsigned char>(other[0]) ? -1 : 1;
    }

    friend bool operator==(const QeCString& left, const QeCString& right) noexcept {
        return left.equals(right.data(), right.length(), &right);
    }
    friend bool operator==(const QeCString& left, std::string_view right) noexcept {
        return left.equals(right.data(), right.size());
    }
    friend bool operator==(const QeCString& left, const char* right) noexcept { return left == viewOf(right); }
    friend std::strong_ordering operator<=>(const QeCString& left, const QeCString& right) noexcept {
        return left.compare(right) <=> 0;
    }

    /// Writes the bytes, padded as the stream asks for. What the stream is told to
    /// throw passes through. O(length).
    friend TESSIT_API std::ostream& operator<<(std::ostream& out, const QeCString& text);

private:
    friend struct corvel::StringAccess;

    // The last byte tells the layouts apart. Up to 23: the text is in place and this
    // is the room left, so that a full string's tag is its terminator. HeapTag: the
    // first bytes are a Block. SharedTag: so they are, and other strings may have the
    // same block, which therefore is only read: to give such a string another text is
    // to leave the block. No function here makes such a string, and no user meets one
    // but as a constant.
    static constexpr std::size_t TagIndex = InlineCapacity;
    static constexpr char HeapTag = static_cast<char>(0x80), SharedTag = static_cast<char>(0x81);

    struct Block {
        char* data;
        std::size_t length;
        std::uint32_t units;  // of UnitSize bytes, the terminator's byte included
    };
    static constexpr std::size_t UnitSize = 16;
    static_assert(sizeof(Block) <= 24 && offsetof(Block, units) + sizeof(std::uint32_t) <= TagIndex);

    // The longest text whose block, terminator included, both `units` and a pointer difference can measure.
    static constexpr std::size_t MaxUnits = sizeof(std::size_t) > 4 ? UINT32_MAX : PTRDIFF_MAX / UnitSize;
    static constexpr std::size_t MaxLength = MaxUnits * UnitSize - 1;

    bool isShared() const noexcept { return raw[TagIndex] == SharedTag; }
    bool isInline() const noexcept { return static_cast<signed char>(raw[TagIndex]) >= 0; }

    constexpr void setInlineLength(std::size_t length) noexcept {
        raw[TagIndex] = static_cast<char>(InlineCapacity - length);
    }

    // The block's fields are read and written by memcpy, which compiles to plain
    // moves: the bytes are a char array, so that constants need no code to run.
    char* heapData() const noexcept {
        char* data;
        std::memcpy(&data, raw + offsetof(Block, data), sizeof data);
        return data;
    }
    std::size_t heapLength() const noexcept {
        std::size_t length;
        std::memcpy(&length, raw + offsetof(Block, length), sizeof length);
        return length;
    }
    std::uint32_t heapUnits() const noexcept {
        std::uint32_t units;
        std::memcpy(&units, raw + offsetof(Block, units), sizeof units);
        return units;
    }
    std::size_t heapCapacity() const noexcept { return heapUnits() * UnitSize - 1; }

    // `assign` where `Window` bytes can be read from `bytes` on, none of them the
    // string's own: texts that fit are moved as a whole, without a branch on their length.
    static constexpr std::size_t Window = 2 * UnitSize;  // no block is smaller
    void assignFromWindow(const char* bytes, std::size_t length) {
        if (length > InlineCapacity || !isInline()) return assignFromWindowSlowly(bytes, length);
        std::memcpy(raw, bytes, sizeof raw);
        raw[length] = '\0';
        setInlineLength(length);
    }
    void assignFromWindowSlowly(const char* bytes, std::size_t length) {
        if (length >= Window || isInline()) return assign(bytes, length);
        std::memcpy(heapData(), bytes, Window);
        heapData()[length] = '\0';
        setHeapLength(length);
    }

    void setHeapLength(std::size_t length) noexcept {
        std::memcpy(raw + offsetof(Block, length), &length, sizeof length);
    }

    // Where up to `size` more bytes can be written, which count once the length was set.
    char* roomBehind(std::size_t size) {
        if (size > capacity() - length()) makeRoomBehind(size);
        return mutableData() + length();
    }

    void setLength(std::size_t length) noexcept {
        if (isInline()) {
            raw[length] = '\0';
            setInlineLength(length);
        } else {
            heapData()[length] = '\0';
            setHeapLength(length);
        }
    }

    // A NUL-terminated text; a null pointer counts as empty.
    static std::string_view viewOf(const char* text) noexcept {
        return text == nullptr ? std::string_view() : std::string_view(text);
    }

    // Through registers, since the strings may be one, and compilers call a function for a move of 24 bytes.
    void copyInline(const QeCString& other) noexcept {
        struct {
            char bytes[sizeof raw];
        } copy;
        std::memcpy(&copy, other.raw, sizeof copy);
        std::memcpy(raw, &copy, sizeof copy);
    }

    char* mutableData() noexcept { return isInline() ? raw : heapData(); }

    void forgetBlock() noexcept {
        raw[0] = '\0';
        setInlineLength(0);
    }

    void releaseBlock() noexcept {
        if (!isInline()) freeBlock();
    }

    // Names and URIs of one length mostly differ in their last bytes.
    bool equals(const char* bytes, std::size_t count, const QeCString* other = nullptr) const noexcept {
        if (length() != count) return false;
        const char* const mine = data();
        if (count >= 16) return sameEnds<16>(mine, bytes, count) && (count <= 32 || sameMiddle(bytes, count, other));
        if (count >= 8) return sameEnds<8>(mine, bytes, count);
        if (count >= 4) return sameEnds<4>(mine, bytes, count);
        for (std::size_t i = 0; i < count; ++i)
            if (mine[i] != bytes[i]) return false;
        return true;
    }

    // Whether the last and the first Size bytes, which may overlap, are the same. The sizes are too small for calls.
    template <std::size_t Size>
    static bool sameEnds(const char* left, const char* right, std::size_t length) noexcept {
        return std::memcmp(left + length - Size, right + length - Size, Size) == 0 &&
               std::memcmp(left, right, Size) == 0;
    }

    // Whether all but the ends is the same in texts of more than 32 bytes, as URIs mostly are.
    bool sameMiddle(const char* bytes, std::size_t count, const QeCString* other) const noexcept {
        return count <= 64 ? sameEnds<16>(data() + 16, bytes + 16, count - 32) : sameLongMiddle(bytes, count, other);
    }
    bool sameLongMiddle(const char* bytes, std::size_t count, const QeCString* other) const noexcept;

    // Copies up to 23 bytes with a few fixed-size moves instead of a call. Each
    // branch loads everything before it stores, so the ranges may overlap.
    static void copyShort(char* to, const char* from, std::size_t length) noexcept {
        if (length >= 16) {
            moveEnds<16>(to, from, length);
        } else if (length >= 8) {
            moveEnds<8>(to, from, length);
        } else if (length >= 4) {
            moveEnds<4>(to, from, length);
        } else if (length > 0) {
            char first = from[0], middle = from[length / 2], last = from[length - 1];
            to[0] = first;
            to[length / 2] = middle;
            to[length - 1] = last;
        }
    }

    // The first and the last Size bytes, which together cover everything from Size to 2 * Size bytes.
    template <std::size_t Size>
    static void moveEnds(char* to, const char* from, std::size_t length) noexcept {
        struct Chunk {
            char bytes[Size];
        } head, tail;
        std::memcpy(&head, from, Size);
        std::memcpy(&tail, from + length - Size, Size);
        std::memcpy(to, &head, Size);
        std::memcpy(to + length - Size, &tail, Size);
    }

    TESSIT_NO_EXPORT static std::uint32_t unitsFor(std::size_t length);
    TESSIT_NO_EXPORT static char* newBlock(std::uint32_t units);
    static QeCString concatenate(std::string_view left, std::string_view right);

    void appendSlowly(const char* bytes, std::size_t count);
    void makeRoomBehind(std::size_t size);
    void assignSlowly(const char* bytes, std::size_t length);
    void freeBlock() noexcept;
    TESSIT_NO_EXPORT void growLargeBlock(std::uint32_t units);
    TESSIT_NO_EXPORT void grow(std::size_t wanted);
    TESSIT_NO_EXPORT void setBlock(char* data, std::uint32_t units) noexcept;
    TESSIT_NO_EXPORT void adoptBlock(char* data, std::size_t length, std::uint32_t units) noexcept;
    [[noreturn]] void raiseIndex(std::size_t index) const;

    alignas(std::size_t) char raw[InlineCapacity + 1];
};

static_assert(sizeof(QeCString) == 24);

/// With a key of the process's own, so that nobody who chooses texts can choose equal hashes. O(length).
template <>
struct std::hash<QeCString> {
    TESSIT_API std::size_t operator()(const QeCString& text) const noexcept;
};
