// Room for the part of a document that is being read, and how bytes come into it. Of XML, nothing is known here.

#include <algorithm>
#include <cstring>
#include <utility>

#include <tessit/reader/window.h>
#include <tessit/rules/decoded_text.h>

namespace tessit {

namespace {

constexpr std::size_t FirstSize = 64 * 1024;
constexpr std::size_t LongSize = 4 * FirstSize;  // where there is much to read, fewer and longer reads are quicker
constexpr std::size_t PieceSize = 16 * 1024;

}  // namespace

// A byte more than the room's size can be pointed behind.
Window::Window(std::unique_ptr<ByteSource> from)
    : source(std::move(from)), size(FirstSize), room(new char[FirstSize + 2]) {}

void Window::reset(std::unique_ptr<ByteSource> from) noexcept {
    source = std::move(from);
    last = filled = waitingFrom = 0;
    taken = converted = 0;
    ended = sourceEnded = false;
    converters.clear();
    strict.reset();
    waiting.clear();
}

void Window::moveFrom(std::size_t place) {
    const std::size_t kept = filled - place;
    const std::size_t least = taken < LongSize ? FirstSize : LongSize;
    const std::size_t wanted = std::max(least, kept > size / 2 ? 2 * size : size);
    if (wanted != size) {
        std::unique_ptr<char[]> larger(new char[wanted + 2]);
        std::memcpy(larger.get(), room.get() + place, kept);
        room = std::move(larger);
        size = wanted;
    } else {
        std::memmove(room.get(), room.get() + place, kept);
    }
    last -= place;
    filled = kept;
}

bool Window::read() {
    while (!ended) {
        if (isConverted() ? readConverted() : readAsItIs()) return true;
    }
    return false;
}

std::size_t Window::readBytes(char* to, std::size_t most) {
    const std::size_t count = sourceEnded ? 0 : source->read({to, most});
    sourceEnded = count == 0;
    taken += count;
    return count;
}

// Of what is to be converted, no more than a piece is there before that is known.
bool Window::readAsItIs() {
    const std::size_t most = taken == 0 ? PieceSize : size - filled;
    filled += readBytes(room.get() + filled, most);
    return takeFilled(sourceEnded);
}

bool Window::readConverted() {
    if (takeWaiting()) return true;
    if (sourceEnded) return takeFilled(true);
    if (raw == nullptr) raw = std::unique_ptr<char[]>(new char[PieceSize]);
    const std::size_t count = readBytes(raw.get(), PieceSize);
    piece.assign(raw.get(), count);
    convert(sourceEnded);
    return takeWaiting();
}

// The piece, and has what comes of it wait.
void Window::convert(bool isLast) {
    if (strict) {
        strict->convert(waiting, piece, isLast);
        sourceEnded = sourceEnded || strict->isMalformed();
        return;
    }
    for (voxal::PieceConverter& converter : converters) {
        made.clear();
        converter.append(made, piece, isLast);
        converted += made.length();
        std::swap(piece, made);
    }
    waiting += piece;
}

// As much as there is room for.
bool Window::takeWaiting() {
    const std::size_t count = std::min(waiting.length() - waitingFrom, size - filled);
    std::memcpy(room.get() + filled, waiting.data() + waitingFrom, count);
    filled += count;
    waitingFrom += count;
    if (waitingFrom == waiting.length()) {
        waiting.clear();
        waitingFrom = 0;
    }
    return count != 0 && takeFilled(false);
}

// Makes text of what is filled. Whether there is more of it.
bool Window::takeFilled(bool isLast) {
    const std::string_view fresh(room.get() + last, filled - last);
    const std::size_t sound = strict ? strict->check(fresh, isLast) : fresh.size();
    last += sound;
    ended = isLast || (strict && strict->hasEnded());
    return sound != 0;
}

void Window::convertFrom(std::size_t place, voxal::PieceConverter&& converter) {
    piece.assign(text().substr(place));
    piece += std::string_view(waiting).substr(waitingFrom);
    made.clear();
    converter.append(made, piece, sourceEnded);
    converters.push_back(std::move(converter));
    converted += made.length();  // from here on, nothing fails
    ended = false;
    last = filled = waitingFrom = 0;
    std::swap(waiting, made);
    takeWaiting();
}

void Window::convertFrom(std::size_t place, DecodedText& decided) {
    const std::string_view rest = text().substr(place);
    strict.emplace(decided);
    ended = false;
    if (strict->isAsItIs()) return checkAnew(rest);
    piece.assign(rest);
    last = filled = 0;
    convert(sourceEnded);
    takeWaiting();
}

// What is there already, as what was just read.
void Window::checkAnew(std::string_view rest) {
    std::memmove(room.get(), rest.data(), rest.size());
    last = 0;
    filled = rest.size();
    takeFilled(false);
}

}  // namespace tessit
