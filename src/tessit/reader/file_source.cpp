// Files, by what the system has for them.

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include <tessit/errors/xml_input_error.h>
#include <tessit/reader/byte_source.h>

#if (defined(__unix__) || defined(__APPLE__))

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tessit {

namespace {

[[noreturn]] void raise(const QeCString& name, int error) {
    throw QeXmlInputError(name, std::error_code(error, std::generic_category()));
}

QeCString nameOf(const std::filesystem::path& path) {
    return QeCString(path.native());
}

class Descriptor {
public:
    Descriptor(int openNumber, bool closes) noexcept : number(openNumber), isOwned(closes) {}
    explicit Descriptor(const std::filesystem::path& path)
        : Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY), true) {
        if (number < 0) raise(nameOf(path), errno);
    }
    Descriptor(Descriptor&& other) noexcept : number(std::exchange(other.number, -1)), isOwned(other.isOwned) {}
    Descriptor& operator=(Descriptor&&) = delete;
    ~Descriptor() {
        if (isOwned && number >= 0) close(number);
    }

    int get() const noexcept { return number; }

private:
    int number;
    bool isOwned;
};

struct stat propertiesOf(const Descriptor& file, const QeCString& name) {
    struct stat properties;
    if (fstat(file.get(), &properties) != 0) raise(name, errno);
    if (S_ISDIR(properties.st_mode)) raise(name, EISDIR);
    return properties;
}

class FileSource : public ByteSource {
public:
    FileSource(Descriptor&& openFile, QeCString&& fileName) : file(std::move(openFile)), name(std::move(fileName)) {
        const struct stat properties = propertiesOf(file, name);
        const off_t place = S_ISREG(properties.st_mode) ? lseek(file.get(), 0, SEEK_CUR) : -1;
        if (place < 0 || properties.st_size <= place) return;  // some of the system's own have no size, and bytes
        whole = properties.st_size;
        expected = static_cast<std::uint64_t>(whole - place);
    }

    std::size_t read(std::span<char> room) override {
        for (;;) {
            const ssize_t count = ::read(file.get(), room.data(), room.size());
            if (count > 0) return countRead(static_cast<std::size_t>(count));
            if (count == 0 && isAtEnd()) return 0;
            if (count < 0 && errno != EINTR) raise(name, errno);
        }
    }

    std::optional<std::uint64_t> size() const noexcept override { return expected; }

private:
    std::size_t countRead(std::size_t count) noexcept {
        bytesRead += count;
        saidSo = false;
        return count;
    }

    // Asked where nothing more was read. Others of the system's own have a size, and fewer bytes: they say so twice.
    bool isAtEnd() {
        if (bytesRead >= expected.value_or(0) || saidSo) return true;
        saidSo = propertiesOf(file, name).st_size >= whole;
        if (saidSo) return false;
        throw QeXmlInputError(name, std::make_error_code(std::errc::io_error), "it became shorter while it was read");
    }

    Descriptor file;
    QeCString name;
    off_t whole = 0;
    std::optional<std::uint64_t> expected;  // bytes from the place on, of a file that has a size
    std::uint64_t bytesRead = 0;
    bool saidSo = false;
};

class MappedFile : public ByteSource {
public:
    explicit MappedFile(const std::filesystem::path& path) {
        const QeCString name = nameOf(path);
        const Descriptor file(path);
        const struct stat properties = propertiesOf(file, name);
        if (!S_ISREG(properties.st_mode)) raise(name, ENODEV);  // what else can be mapped says that it is empty
        length = static_cast<std::size_t>(properties.st_size);
        address = mmap(nullptr, length == 0 ? 1 : length, PROT_READ, MAP_PRIVATE, file.get(), 0);
        if (address == MAP_FAILED) raise(name, errno);
        madvise(address, length, MADV_SEQUENTIAL);
    }
    ~MappedFile() override { munmap(address, length == 0 ? 1 : length); }

    std::optional<std::string_view> whole() const noexcept override {
        return std::string_view(static_cast<const char*>(address), length);
    }
    std::size_t read(std::span<char> /*unused*/) override { return 0; }
    std::optional<std::uint64_t> size() const noexcept override { return length; }

private:
    std::size_t length = 0;
    void* address = nullptr;
};

}  // namespace

std::unique_ptr<ByteSource> openFile(const std::filesystem::path& path) {
    return std::make_unique<FileSource>(Descriptor(path), nameOf(path));
}

std::unique_ptr<ByteSource> openDescriptor(int number, const QeCString& name) {
    return std::make_unique<FileSource>(Descriptor(number, false), QeCString(name));
}

std::unique_ptr<ByteSource> mapFile(const std::filesystem::path& path) {
    return std::make_unique<MappedFile>(path);
}

}  // namespace tessit

#else  // by the standard library alone

#include <fstream>

#include <corvel/c_string.h>

namespace tessit {

namespace {

[[noreturn]] void raise(const QeCString& name, std::errc error) {
    throw QeXmlInputError(name, std::make_error_code(error));
}

class FileSource : public ByteSource {
public:
    explicit FileSource(const std::filesystem::path& path) : name(path.string()) {
        std::error_code error;
        if (std::filesystem::is_directory(path, error)) raise(name, std::errc::is_a_directory);
        if (file.open(path, std::ios_base::in | std::ios_base::binary) == nullptr)
            raise(name,
                  std::filesystem::exists(path, error) ? std::errc::io_error : std::errc::no_such_file_or_directory);
        const auto length = std::filesystem::file_size(path, error);
        if (!error && length != 0 && std::filesystem::is_regular_file(path, error)) expected = length;
    }

    std::size_t read(std::span<char> room) override {
        const std::streamsize count = file.sgetn(room.data(), static_cast<std::streamsize>(room.size()));
        bytesRead += static_cast<std::uint64_t>(count);
        if (count == 0 && bytesRead < expected.value_or(0))
            throw QeXmlInputError(name, std::make_error_code(std::errc::io_error), "it ends before its size says so");
        return static_cast<std::size_t>(count);
    }

    std::optional<std::uint64_t> size() const noexcept override { return expected; }

private:
    QeCString name;
    std::filebuf file;
    std::optional<std::uint64_t> expected;  // bytes, of a file that has a size
    std::uint64_t bytesRead = 0;
};

class ReadFile : public ByteSource {
public:
    explicit ReadFile(const std::filesystem::path& path) {
        FileSource file(path);
        std::string piece(64 * 1024, '\0');
        while (const std::size_t count = file.read(piece))
            text.append(piece.data(), count);
    }
    std::optional<std::string_view> whole() const noexcept override { return text; }
    std::size_t read(std::span<char> /*unused*/) override { return 0; }
    std::optional<std::uint64_t> size() const noexcept override { return text.size(); }

private:
    std::string text;
};

}  // namespace

std::unique_ptr<ByteSource> openFile(const std::filesystem::path& path) {
    return std::make_unique<FileSource>(path);
}

// The standard library knows no descriptors.
std::unique_ptr<ByteSource> openDescriptor(int /*unused*/, const QeCString& name) {
    raise(name, std::errc::function_not_supported);
}

std::unique_ptr<ByteSource> mapFile(const std::filesystem::path& path) {
    return std::make_unique<ReadFile>(path);
}

}  // namespace tessit

#endif
