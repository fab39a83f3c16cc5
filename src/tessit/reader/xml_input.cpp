// Kinds of input, as a program names them. Those that are files are opened in file_source.cpp.

#include <algorithm>
#include <ios>
#include <istream>
#include <streambuf>
#include <utility>

#include <tessit/reader/byte_source.h>
#include <tessit/reader/xml_input.h>

namespace {

using tessit::ByteSource;

class InPlace : public ByteSource {
public:
    explicit InPlace(std::string_view document) noexcept : bytes(document) {}
    std::optional<std::string_view> whole() const noexcept override { return bytes; }
    std::size_t read(std::span<char> /*unused*/) override { return 0; }
    std::optional<std::uint64_t> size() const noexcept override { return bytes.size(); }

private:
    std::string_view bytes;
};

class Copy : public ByteSource {
public:
    explicit Copy(QeCString&& document) noexcept : text(std::move(document)) {}
    std::optional<std::string_view> whole() const noexcept override { return text; }
    std::size_t read(std::span<char> /*unused*/) override { return 0; }
    std::optional<std::uint64_t> size() const noexcept override { return text.length(); }

private:
    QeCString text;
};

class Stream : public ByteSource {
public:
    explicit Stream(std::istream& from) noexcept : in(from) {}

    // The stream's own functions wait until all is there that was asked for; its buffer tells what is. One that fails
    // may say so by its stream alone.
    std::size_t read(std::span<char> room) override {
        requireSound();
        const std::size_t count = readSound(room);
        if (count == 0) requireSound();
        return count;
    }

private:
    void requireSound() const {
        if (in.fail() || in.rdbuf() == nullptr) raise(std::make_error_code(std::errc::io_error));
    }

    std::size_t readSound(std::span<char> room) {
        try {
            return readFrom(*in.rdbuf(), room);
        } catch (const std::ios_base::failure& failure) {
            raise(failure.code());
        }
    }

    static std::size_t readFrom(std::streambuf& buffer, std::span<char> room) {
        using Traits = std::streambuf::traits_type;
        if (Traits::eq_int_type(buffer.sgetc(), Traits::eof())) return 0;
        const std::streamsize ready = std::max<std::streamsize>(buffer.in_avail(), 1);
        const std::streamsize count = std::min(ready, static_cast<std::streamsize>(room.size()));
        return static_cast<std::size_t>(std::max<std::streamsize>(buffer.sgetn(room.data(), count), 0));
    }

    [[noreturn]] static void raise(std::error_code reason) {
        throw QeXmlInputError("the stream", reason, "it cannot be read");
    }

    std::istream& in;
};

class Called : public ByteSource {
public:
    explicit Called(QeXmlInput::Callback&& callback) noexcept : fill(std::move(callback)) {}

    std::size_t read(std::span<char> room) override {
        const std::size_t count = fill(room);
        if (count <= room.size()) return count;
        throw QeXmlInputError("the callback", std::make_error_code(std::errc::value_too_large),
                              "it says that it gave more bytes than there was room for");
    }

private:
    QeXmlInput::Callback fill;
};

}  // namespace

QeXmlInput::QeXmlInput(std::unique_ptr<ByteSource> from) noexcept : source(std::move(from)) {}
QeXmlInput::QeXmlInput(QeXmlInput&&) noexcept = default;
QeXmlInput& QeXmlInput::operator=(QeXmlInput&&) noexcept = default;
QeXmlInput::~QeXmlInput() = default;

QeXmlInput QeXmlInput::bytes(std::span<const unsigned char> document) {
    const std::string_view text(reinterpret_cast<const char*>(document.data()), document.size());
    return QeXmlInput(std::make_unique<InPlace>(text));
}

QeXmlInput QeXmlInput::copy(QeCString document) {
    return QeXmlInput(std::make_unique<Copy>(std::move(document)));
}

QeXmlInput QeXmlInput::stream(std::istream& in) {
    return QeXmlInput(std::make_unique<Stream>(in));
}

QeXmlInput QeXmlInput::callback(Callback fill) {
    return QeXmlInput(std::make_unique<Called>(std::move(fill)));
}

QeXmlInput QeXmlInput::file(const std::filesystem::path& path) {
    return QeXmlInput(tessit::openFile(path));
}

QeXmlInput QeXmlInput::descriptor(int number, const QeCString& name) {
    return QeXmlInput(tessit::openDescriptor(number, name));
}

QeXmlInput QeXmlInput::mapped(const std::filesystem::path& path) {
    return QeXmlInput(tessit::mapFile(path));
}

std::optional<std::uint64_t> QeXmlInput::getSize() const noexcept {
    return source == nullptr ? std::nullopt : source->size();
}
