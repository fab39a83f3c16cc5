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
    /// At its beginning. Written when another document comes.
    int open(std::string_view document) {
        if (document.data() != written.data() || document.size() != written.size()) {
            file.reset(std::tmpfile());
            std::fwrite(document.data(), 1, document.size(), file.get());
            std::fflush(file.get());
            written = document;
        }
        lseek(fileno(file.get()), 0, SEEK_SET);
        return fileno(file.get());
    }

private:
    struct Close {
        void operator()(std::FILE* open) const { std::fclose(open); }
    };
    std::unique_ptr<std::FILE, Close> file;
    std::string_view written;
};

/// What `read` makes of the descriptor.
template <typename Read>
Tally readFile(const Document& document, const Read& read) {
    static CachedFile file;
    return read(file.open(document.view()));
}

/// The same for a pipe, which another thread writes to.
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
