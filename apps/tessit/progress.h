#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "console.h"

/// How far a command has read its document, in a line on standard error: only where that can be shown, and once the
/// command takes longer than a second. The line goes with this.
///
/// A thread shows it: between two reads, a document may be judged for seconds, or a pipe be waited for.
class Progress {
public:
    explicit Progress(Console& target);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

    /// Whether it is of use to tell what is read.
    bool isShown() const { return shows.joinable(); }

    /// From now on it is this document that is read; its size in bytes, where that is known.
    void begin(std::string_view file, std::optional<std::uint64_t> bytes);
    void count(std::size_t bytes);

private:
    void show();
    std::string bar() const;

    Console& console;
    std::mutex mutex;  // of what follows, but for the thread
    std::condition_variable ends;
    bool hasEnded = false;
    std::string name;
    std::optional<std::uint64_t> size;
    std::uint64_t read = 0;
    std::thread shows;
};
