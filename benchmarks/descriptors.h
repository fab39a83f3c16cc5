#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <reader.h>
#include <string_view>
#include <thread>
#include <unistd.h>

/// Documents as bytes that a system call hands over.
namespace tessit::benchmarks {

/// A file that is in the page cache.
class CachedFile {
public:
    CachedFile() : file(std::tmpfile()) {
        if (file == nullptr) std::abort();
    }

    /// Writes the document over the last one, as near in the caches then as one in memory that was just made.
    void write(std::string_view document) {
        if (ftruncate(open(), static_cast<off_t>(document.size())) != 0) std::abort();
        while (!document.empty()) {
            const ssize_t count = ::write(descriptor(), document.data(), document.size());
            if (count <= 0) std::abort();
            document.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    /// At its beginning.
    int open() {
        lseek(descriptor(), 0, SEEK_SET);
        return descriptor();
    }

    static CachedFile& ofDocument() {
        static CachedFile file;
        return file;
    }

private:
    struct Close {
        void operator()(std::FILE* open) const { std::fclose(open); }
    };

    int descriptor() const { return fileno(file.get()); }

    std::unique_ptr<std::FILE, Close> file;
};

/// For the `makeReady` of readers of a file.
inline void writeFile(const Document& document) {
    CachedFile::ofDocument().write(document.view());
}

/// What `read` makes of the descriptor.
template <typename Read>
Tally readFile(const Read& read) {
    return read(CachedFile::ofDocument().open());
}

/// The same for a pipe, which another thread writes the document to.
template <typename Read>
Tally readPipe(const Document& document, const Read& read) {
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    std::thread writer([text = document.view(), to = ends[1]] {
        for (std::string_view rest = text; !rest.empty();) {
            const ssize_t count = write(to, rest.data(), rest.size());
            if (count <= 0) std::abort();
            rest.remove_prefix(static_cast<std::size_t>(count));
        }
        close(to);
    });
    const Tally tally = read(ends[0]);
    writer.join();
    close(ends[0]);
    return tally;
}

}  // namespace tessit::benchmarks
