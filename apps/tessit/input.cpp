#include "input.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A file that is closed again, unless it is standard input.
class OpenFile {
public:
    explicit OpenFile(const std::string& name)
        : descriptor(name == StandardInput ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {
        if (descriptor < 0) throw InputError{errno};
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor != STDIN_FILENO) close(descriptor);
    }

    // How many bytes to expect; a guess, and 0 for what has no size.
    std::size_t sizeHint() const {
        struct stat properties;
        if (fstat(descriptor, &properties) != 0 || !S_ISREG(properties.st_mode)) return 0;
        return static_cast<std::size_t>(properties.st_size);
    }

    // Reads up to `length` bytes; 0 at the end of the file.
    std::size_t readSome(unsigned char* bytes, std::size_t length) const {
        for (;;) {
            const ssize_t count = read(descriptor, bytes, length);
            if (count >= 0) return static_cast<std::size_t>(count);
            if (errno != EINTR) throw InputError{errno};
        }
    }

private:
    int descriptor;
};

}  // namespace

std::string_view displayName(std::string_view file) {
    return file == StandardInput ? "<stdin>" : file.empty() ? "''" : file;
}

QeXmlInput openInput(const std::string& file) {
    if (file == StandardInput) return QeXmlInput::descriptor(STDIN_FILENO, QeCString(displayName(file)));
    return QeXmlInput::file(file);
}

std::vector<unsigned char> readInput(const std::string& name) {
    constexpr std::size_t LeastRoom = 65'536;
    const OpenFile file(name);
    std::vector<unsigned char> bytes(std::max(file.sizeHint() + 1, LeastRoom));  // one more, to see the end
    std::size_t length = 0;
    while (const std::size_t count = file.readSome(bytes.data() + length, bytes.size() - length)) {
        length += count;
        if (length == bytes.size()) bytes.resize(2 * length);
    }
    bytes.resize(length);
    return bytes;
}
