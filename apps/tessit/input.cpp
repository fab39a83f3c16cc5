#include "input.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <memory>
#include <span>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

// A file that is closed again, unless it is standard input.
class OpenFile {
public:
    explicit OpenFile(const std::string& name)
        : descriptor(name == StandardInput ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
        if (descriptor < 0) throw InputError{errno};
        whole = sizeNow();
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor != STDIN_FILENO) close(descriptor);
    }

    // How many bytes are to come; a guess, and 0 for what has no size.
    std::size_t expected() const {
        const off_t place = whole == 0 ? 0 : lseek(descriptor, 0, SEEK_CUR);
        return static_cast<std::size_t>(std::max<off_t>(whole - place, 0));
    }

    // Whether it ended before all came that it had. Others of the system's own say that they have more than comes.
    bool wasCut() const { return expected() != 0 && sizeNow() < whole; }

    // Reads up to `length` bytes; 0 at the end of the file.
    std::size_t readSome(void* bytes, std::size_t length) const {
        for (;;) {
            const ssize_t count = read(descriptor, bytes, length);
            if (count >= 0) return static_cast<std::size_t>(count);
            if (errno != EINTR) throw InputError{errno};
        }
    }

private:
    off_t sizeNow() const {
        struct stat properties;
        return fstat(descriptor, &properties) == 0 && S_ISREG(properties.st_mode) ? properties.st_size : 0;
    }

    int descriptor;
    off_t whole = 0;  // its size when it was opened
};

}  // namespace

std::string_view displayName(std::string_view file) {
    return file == StandardInput ? "<stdin>" : file.empty() ? "''" : file;
}

QeXmlInput openInput(const std::string& file) {
    if (file == StandardInput) return QeXmlInput::descriptor(STDIN_FILENO, QeCString(displayName(file)));
    return QeXmlInput::file(file);
}

// An input does not tell what is read of it: so the file is read here, where there is somebody to tell.
QeXmlInput openInput(const std::string& name, Progress& progress) {
    if (!progress.isShown()) return openInput(name);
    const auto file = std::make_shared<OpenFile>(name);  // functions are copied
    progress.begin(displayName(name), file->expected());
    return QeXmlInput::callback([file, name, &progress](std::span<char> room) {
        const std::size_t count = file->readSome(room.data(), room.size());
        if (count == 0 && file->wasCut())
            throw QeXmlInputError(QeCString(name), std::make_error_code(std::errc::io_error),
                                  "it became shorter while it was read");
        progress.count(count);
        return count;
    });
}

std::vector<unsigned char> readInput(const std::string& name, Progress* progress) {
    constexpr std::size_t LeastRoom = 65'536;
    const OpenFile file(name);
    if (progress != nullptr) progress->begin(displayName(name), file.expected());
    std::vector<unsigned char> bytes(std::max(file.expected() + 1, LeastRoom));  // one more, to see the end
    std::size_t length = 0;
    while (const std::size_t count = file.readSome(bytes.data() + length, bytes.size() - length)) {
        length += count;
        if (progress != nullptr) progress->count(count);
        if (length == bytes.size()) bytes.resize(2 * length);
    }
    bytes.resize(length);
    return bytes;
}
