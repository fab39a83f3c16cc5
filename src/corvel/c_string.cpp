#include <algorithm>
#include <istream>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>

#include <corvel/c_string.h>
#include <corvel/exmsg.h>

namespace {

// The number of 16-byte units for a text of `length` bytes and its terminator.
std::uint32_t unitsFor(std::size_t length, std::size_t unitSize) {
    const std::size_t units = length / unitSize + 1;
    if (units > UINT32_MAX) throw std::length_error("QeCString: text too long");
    return static_cast<std::uint32_t>(units);
}

}  // namespace

std::size_t QeCString::capacity() const noexcept {
    if (isInline()) return InlineCapacity;
    std::uint32_t units;
    std::memcpy(&units, raw + offsetof(Block, units), sizeof units);
    return units * UnitSize - 1;
}

void QeCString::setLength(std::size_t length) noexcept {
    if (isInline()) {
        raw[length] = '\0';
        setInlineLength(length);
    } else {
        heapData()[length] = '\0';
        setHeapLength(length);
    }
}

void QeCString::adoptBlock(char* data, std::size_t length, std::uint32_t units) noexcept {
    releaseBlock();
    std::memcpy(raw + offsetof(Block, data), &data, sizeof data);
    std::memcpy(raw + offsetof(Block, units), &units, sizeof units);
    raw[TagIndex] = HeapTag;
    setLength(length);
}

void QeCString::freeBlock() noexcept {
    ::operator delete(heapData());
}

void QeCString::assignSlowly(const char* bytes, std::size_t length) {
    if (length <= capacity()) {
        if (length != 0) std::memmove(mutableData(), bytes, length);
        setLength(length);
        return;
    }
    const std::uint32_t units = unitsFor(length, UnitSize);
    char* data = static_cast<char*>(::operator new(units* UnitSize));
    std::memcpy(data, bytes, length);  // before the old block goes: `bytes` may lie in it
    adoptBlock(data, length, units);
}

void QeCString::truncate(std::size_t newLength) noexcept {
    if (newLength < length()) setLength(newLength);
}

char* QeCString::resizeForOverwrite(std::size_t newLength) {
    reserve(newLength);
    setLength(newLength);
    return mutableData();
}

void QeCString::reserve(std::size_t wanted) {
    if (wanted <= capacity()) return;
    const std::size_t oldLength = length();
    const std::uint32_t units = unitsFor(wanted, UnitSize);
    char* block = static_cast<char*>(::operator new(units* UnitSize));
    std::memcpy(block, data(), oldLength);
    adoptBlock(block, oldLength, units);
}

void QeCString::append(const char* bytes, std::size_t count) {
    const std::size_t oldLength = length();
    if (count > npos - oldLength) throw std::length_error("QeCString: text too long");
    const std::size_t newLength = oldLength + count;
    if (newLength <= capacity()) {
        if (count != 0) std::memmove(mutableData() + oldLength, bytes, count);
        setLength(newLength);
        return;
    }
    constexpr std::size_t Longest = std::size_t{UINT32_MAX} * UnitSize - 1;
    const std::uint32_t units = unitsFor(std::max(newLength, std::min(2 * oldLength, Longest)), UnitSize);
    char* block = static_cast<char*>(::operator new(units* UnitSize));
    std::memcpy(block, data(), oldLength);
    std::memcpy(block + oldLength, bytes, count);
    adoptBlock(block, newLength, units);
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
    return std::string_view(*this).find(text, from);
}

std::size_t QeCString::findFirstOf(std::string_view set, std::size_t from) const noexcept {
    return std::string_view(*this).find_first_of(set, from);
}

std::string_view QeCString::substring(std::size_t position, std::size_t count) const noexcept {
    const std::string_view text(*this);
    return text.substr(std::min(position, text.size()), count);
}

void QeCString::toUpper() noexcept {
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
