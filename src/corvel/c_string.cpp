#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <istream>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <corvel/c_string.h>
#include <corvel/compiler.h>
#include <corvel/exmsg.h>
#include <corvel/keyed_hash.h>
#include <corvel/shared_text.h>

namespace {

// Blocks of a megabyte and more come from malloc, which can make them grow where they
// stand, or by moving pages instead of bytes: to write 10 MB takes 27 ms, and 106 with
// blocks from elsewhere.
constexpr std::uint32_t LargeUnits = 1024 * 1024 / 16;

// What malloc and its like have returned.
char* allocated(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return static_cast<char*>(block);
}

// Where the part, which is not empty, begins in the text. Linear, unlike the search of string_view, which compares
// the part at each place.
#if defined(TESSIT_HAS_MEMMEM)

std::size_t placeOf(std::string_view part, std::string_view text) noexcept {
    const void* const found = memmem(text.data(), text.size(), part.data(), part.size());
    return found == nullptr ? text.npos : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

#else

// No byte of the text is looked at twice: where one does not fit, the longest beginning of the part that is left, the
// border of what was matched, is known.
std::size_t placeOf(std::string_view part, std::string_view text) noexcept try {
    std::vector<std::size_t> borders(part.size());
    const auto matchedAfter = [&](std::size_t matched, char next) {
        while (matched != 0 && part[matched] != next)
            matched = borders[matched - 1];
        return part[matched] == next ? matched + 1 : 0;
    };
    for (std::size_t i = 1; i < part.size(); ++i)
        borders[i] = matchedAfter(borders[i - 1], part[i]);
    std::size_t matched = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        matched = matchedAfter(matched, text[i]);
        if (matched == part.size()) return i + 1 - matched;
    }
    return text.npos;
} catch (const std::bad_alloc&) {
    return text.find(part);  // slower, and needs no memory
}

#endif

}  // namespace

// The size of a block for `length` bytes and their terminator.
std::uint32_t QeCString::unitsFor(std::size_t length) {
    if (length > MaxLength) throw std::length_error("QeCString: text too long");
    return static_cast<std::uint32_t>(length / UnitSize + 1);
}

char* QeCString::newBlock(std::uint32_t units) {
    const std::size_t size = UnitSize * units;
    return allocated(units >= LargeUnits ? std::malloc(size) : ::operator new(size));
}

void QeCString::growLargeBlock(std::uint32_t units) {
    setBlock(allocated(std::realloc(heapData(), UnitSize * units)), units);
}

void QeCString::adoptBlock(char* data, std::size_t length, std::uint32_t units) noexcept {
    releaseBlock();
    setBlock(data, units);
    raw[TagIndex] = HeapTag;
    setLength(length);
}

void QeCString::setBlock(char* data, std::uint32_t units) noexcept {
    std::memcpy(raw + offsetof(Block, data), &data, sizeof data);
    std::memcpy(raw + offsetof(Block, units), &units, sizeof units);
}

void QeCString::freeBlock() noexcept {
    if (isShared()) {
        corvel::SharedText::leave(*this);
    } else if (heapUnits() >= LargeUnits) {
        std::free(heapData());
    } else {
        ::operator delete(heapData());
    }
}

void QeCString::assignSlowly(const char* bytes, std::size_t length) {
    if (isShared()) {
        *this = QeCString(bytes, length);
        return;
    }
    if (length <= capacity()) {
        if (length != 0) std::memmove(mutableData(), bytes, length);
        setLength(length);
        return;
    }
    const std::uint32_t units = unitsFor(length);
    char* data = newBlock(units);
    std::memcpy(data, bytes, length);  // before the old block goes: `bytes` may lie in it
    adoptBlock(data, length, units);
}

char* QeCString::resizeForOverwrite(std::size_t newLength) {
    if (newLength > capacity()) grow(newLength);
    setLength(newLength);
    return mutableData();
}

void QeCString::reserve(std::size_t wanted) {
    if (wanted <= capacity()) return;
    const std::uint32_t units = unitsFor(wanted);
    if (!isInline() && heapUnits() >= LargeUnits) return growLargeBlock(units);
    const std::size_t oldLength = length();
    char* block = newBlock(units);
    std::memcpy(block, data(), oldLength);
    adoptBlock(block, oldLength, units);
}

// Room for at least `wanted` bytes in all, and so much that growing on costs amortised O(1) a byte.
void QeCString::grow(std::size_t wanted) {
    reserve(std::max(wanted, std::min(2 * length(), MaxLength)));
}

void QeCString::makeRoomBehind(std::size_t size) {
    const std::size_t wanted = size <= MaxLength ? length() + size : npos;
    if (wanted > capacity()) grow(wanted);
}

// Bytes of the text itself move with it.
void QeCString::appendSlowly(const char* bytes, std::size_t count) {
    const std::less<const char*> before;
    const bool isOwn = !before(bytes, begin()) && before(bytes, end());
    const std::size_t place = isOwn ? static_cast<std::size_t>(bytes - data()) : 0;
    const std::size_t oldLength = length();
    makeRoomBehind(count);
    if (count != 0) std::memmove(mutableData() + oldLength, isOwn ? data() + place : bytes, count);
    setLength(oldLength + count);
}

bool QeCString::sameLongMiddle(const char* bytes, std::size_t count, const QeCString* other) const noexcept {
    if (data() == bytes || (other != nullptr && corvel::SharedText::areKnownToDiffer(*this, *other)))
        return data() == bytes;
    return std::memcmp(data() + 16, bytes + 16, count - 32) == 0;
}

std::size_t std::hash<QeCString>::operator()(const QeCString& text) const noexcept {
    return corvel::SharedText::hashOf(text);
}

QeCString QeCString::concatenate(std::string_view left, std::string_view right) {
    QeCString result;
    result.reserve(left.size() + right.size());
    result.append(left);
    result.append(right);
    return result;
}

std::size_t QeCString::find(char byte, std::size_t from) const noexcept {
    return std::string_view(*this).find(byte, from);
}

std::size_t QeCString::find(std::string_view text, std::size_t from) const noexcept {
    if (from > length()) return npos;
    if (text.empty()) return from;
    const std::size_t found = placeOf(text, std::string_view(*this).substr(from));
    return found == npos ? npos : from + found;
}

std::size_t QeCString::findFirstOf(std::string_view set, std::size_t from) const noexcept {
    return std::string_view(*this).find_first_of(set, from);
}

void QeCString::toUpper() {
    char* bytes = mutableData();
    for (std::size_t i = 0, count = length(); i < count; ++i)
        if (bytes[i] >= 'a' && bytes[i] <= 'z') bytes[i] = static_cast<char>(bytes[i] - 'a' + 'A');
}

// Reads the stream's buffer itself: extraction through the stream would set its
// failure state at the end, which a stream may be told to throw for.
void QeCString::readFile(std::istream& in) {
    QeCString text;
    const std::istream::sentry readable(in, true);
    if (readable) {
        char chunk[16 * 1024];
        for (;;) {
            const std::streamsize count = in.rdbuf()->sgetn(chunk, sizeof chunk);
            if (count <= 0) break;
            text.append(chunk, static_cast<std::size_t>(count));
        }
    }
    *this = std::move(text);
    if (readable) in.setstate(std::ios::eofbit);
}

std::ostream& operator<<(std::ostream& out, const QeCString& text) {
    return out << std::string_view(text);
}

void QeCString::raiseIndex(std::size_t index) const {
    throw QeBoundsError(QeCString(std::string_view("Index " + std::to_string(index) + " is outside a string of " +
                                                   std::to_string(length()) + " bytes")));
}
