#include "progress.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <system_error>

#include "escape.h"

namespace {

constexpr std::chrono::milliseconds Delay(1000), Pause(100);
constexpr std::size_t MostOfName = 30, Width = 30;

}  // namespace

Progress::Progress(Console& target) : console(target) {
    if (!console.canShowBar()) return;
    try {
        shows = std::thread([this] { show(); });
    } catch (const std::system_error&) {  // there is no thread to be had, and the command goes without
    }
}

Progress::~Progress() {
    if (!isShown()) return;
    {
        const std::lock_guard lock(mutex);
        hasEnded = true;
        ends.notify_one();
    }
    shows.join();
    console.eraseBar();
}

void Progress::begin(std::string_view file, std::optional<std::uint64_t> bytes) {
    const std::lock_guard lock(mutex);
    name = escaped(file);
    if (name.size() > MostOfName) name.replace(0, name.size() - MostOfName, "...");
    size = bytes;
    read = 0;
}

void Progress::count(std::size_t bytes) {
    const std::lock_guard lock(mutex);
    read += bytes;
}

// Memory that does not suffice is told by who reads, and reading goes on while a terminal was stopped.
void Progress::show() try {
    std::unique_lock lock(mutex);
    for (auto pause = Delay; !ends.wait_for(lock, pause, [this] { return hasEnded; }); pause = Pause) {
        if (name.empty()) continue;
        const std::string line = bar();
        lock.unlock();
        console.showBar(line);
        lock.lock();
    }
} catch (const std::bad_alloc&) {
}

// Of an input whose size nobody knows, how much was read.
std::string Progress::bar() const {
    constexpr std::uint64_t Megabyte = 1'000'000;
    if (size.value_or(0) == 0) return name + ": " + std::to_string(read / Megabyte) + " MB";
    const double part = std::min(1.0, static_cast<double>(read) / static_cast<double>(*size));
    const auto filled = static_cast<std::size_t>(part * Width);
    return name + ": [" + std::string(filled, '#') + std::string(Width - filled, ' ') + "] " +
           std::to_string(static_cast<int>(part * 100)) + " %";
}
