#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>
#include <voxal/piece_converter.h>

#include <tessit/reader/byte_source.h>
#include <tessit/rules/text_pieces.h>

namespace tessit {

/// The part of a document's text, in UTF-8, that is in memory: bytes are read from a source behind it, converted, and
/// let go in front. Grows to twice its size when what is kept fills more than half of it, and once when there turns out
/// to be much to read. Knows nothing of XML.
class Window {
public:
    explicit Window(std::unique_ptr<ByteSource> from);

    /// Begins with another source, in the room that there is.
    void reset(std::unique_ptr<ByteSource> from) noexcept;

    /// The text that is there.
    std::string_view text() const noexcept { return {room.get(), last}; }

    /// Whether nothing will come behind it.
    bool hasEnded() const noexcept { return ended; }

    /// Whether the text has to be moved before more of it can be read.
    bool isFull() const noexcept { return size - filled < size / 4; }

    /// Moves what stands from that place of the text on to the front of the room, or to larger room.
    void moveFrom(std::size_t place);

    /// Reads at least one byte of text more, and moves nothing. False at the end. The source's exceptions pass.
    bool read();

    /// Converts the text from a place on, and all that comes behind it. What is in front goes.
    void convertFrom(std::size_t place, voxal::PieceConverter&& converter);

    /// The same by the conforming rules, which bound the text: nothing was converted yet.
    void convertFrom(std::size_t place, DecodedText& decided);

    std::uint64_t bytesRead() const noexcept { return taken; }
    std::optional<std::uint64_t> sourceSize() const noexcept { return source->size(); }

    /// How many bytes conversions have made, but for those of conforming text.
    std::uint64_t bytesConverted() const noexcept { return converted; }

private:
    std::size_t readBytes(char* to, std::size_t most);
    bool readAsItIs();
    bool readConverted();
    void convert(bool isLast);
    void checkAnew(std::string_view rest);
    bool takeWaiting();
    bool takeFilled(bool isLast);
    bool isConverted() const noexcept { return !converters.empty() || (strict && !strict->isAsItIs()); }

    std::unique_ptr<ByteSource> source;
    std::size_t size;
    std::unique_ptr<char[]> room;
    std::size_t last = 0;    // behind the text
    std::size_t filled = 0;  // behind what is read of a character that is not whole
    bool ended = false;
    bool sourceEnded = false;
    std::uint64_t taken = 0, converted = 0;

    std::vector<voxal::PieceConverter> converters;  // each takes what the one in front makes
    std::optional<TextPieces> strict;
    std::unique_ptr<char[]> raw;  // where bytes are read that are converted
    QeCString piece, made;        // what is converted, and what a converter made of it
    QeCString waiting;            // what was converted, and for which there is no room yet
    std::size_t waitingFrom = 0;
};

}  // namespace tessit
