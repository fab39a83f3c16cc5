#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <span>

#include <corvel/c_string.h>
#include <tessit/errors/xml_input_error.h>

namespace tessit {
class ByteSource;
}

/// Where a document comes from. Made by one of the functions below, and handed to who reads it, once: what is handed on
/// a second time throws `QeXmlInputError`.
///
/// Files, streams and callbacks are read **through a window**: memory is 64 KiB, 256 KiB once as much was read, or the
/// largest node and what stands around it, however long the document; the open elements come on top. A tag is delivered
/// when its last byte is there, a text when the next tag begins: nothing waits for more than that, so that two programs
/// can talk over a socket. What has been asked for may come in any pieces, a byte at a time: reading stays O(bytes).
///
/// An input that cannot be read throws `QeXmlInputError` from the call that needed it, and from each later one that
/// needs more; what the callback or the stream's buffer throws passes through, and again later, but for a buffer's
/// `std::ios_base::failure`, which becomes one.
class QeXmlInput {
public:
    /// Fills the front of a buffer, of at least one byte, and returns how many bytes it put there: 0 is the end, any
    /// other number is taken at once. It waits until there is something. It must not use the reader that it fills for:
    /// calls that read on or reset that throw `QeXmlInputError`.
    using Callback = std::function<std::size_t(std::span<char>)>;

    /// Bytes that stay where they are, alive and unchanged as long as they are read.
    TESSIT_API static QeXmlInput bytes(std::span<const unsigned char> document);

    /// A copy of the text, which the input owns. O(1) for one that is moved in.
    TESSIT_API static QeXmlInput copy(QeCString document);

    /// A stream, which must live as long as it is read; a stream that has failed already is an error. It is read to its
    /// end, or as far as was needed and its buffer had. One that is tied to the C streams is slow: it gives a byte at
    /// a time.
    TESSIT_API static QeXmlInput stream(std::istream& in);

    TESSIT_API static QeXmlInput callback(Callback fill);

    /// A file of any kind: a pipe or a device, too. It is opened here: throws `QeXmlInputError` where that cannot be,
    /// and for a folder. A file that ends before it has as many bytes as it had when it was opened is an error.
    TESSIT_API static QeXmlInput file(const std::filesystem::path& path);

    /// An open file, by its descriptor, which stays open and must do so as long as it is read. `name` is for messages.
    /// One that does not wait for more bytes is an error where there are none yet.
    TESSIT_API static QeXmlInput descriptor(int number, const QeCString& name);

    /// A file that is mapped into memory, and read in place. **Only for files that nobody changes meanwhile**: one that
    /// is cut short ends the program by a signal, and of one that is written to, what was checked is not what is
    /// delivered. Where files cannot be mapped, it is read into memory. Throws `QeXmlInputError` as `file` does, and
    /// for what cannot be mapped, such as a pipe or a device.
    TESSIT_API static QeXmlInput mapped(const std::filesystem::path& path);

    TESSIT_API QeXmlInput(QeXmlInput&&) noexcept;
    TESSIT_API QeXmlInput& operator=(QeXmlInput&&) noexcept;
    TESSIT_API ~QeXmlInput();

    /// How many bytes there are, where that is known: not of streams, callbacks and pipes.
    TESSIT_API std::optional<std::uint64_t> getSize() const noexcept;

private:
    friend class QeXmlReader;
    explicit QeXmlInput(std::unique_ptr<tessit::ByteSource> from) noexcept;

    std::unique_ptr<tessit::ByteSource> source;
};
