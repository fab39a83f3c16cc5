#include "progress.h"

#include <algorithm>
#include <cstdint>

#include "escape.h"

namespace {

constexpr std::chrono::milliseconds Delay(1000), Pause(100);
constexpr std::size_t MostOfName = 30, Width = 30;

}  // namespace

Progress::Progress(Console& target, const QeXmlReader& source, std::string_view file)
    : console(target),
      reader(source),
      name(escaped(file)),
      isShown(console.canShowBar()),
      next(std::chrono::steady_clock::now() + Delay) {
    if (name.size() > MostOfName) name.replace(0, name.size() - MostOfName, "...");
}

void Progress::look() {
    const auto now = std::chrono::steady_clock::now();
    if (now < next) return;
    next = now + Pause;
    console.showBar(bar());
}

// Of an input whose size nobody knows, how much was read.
std::string Progress::bar() const {
    constexpr std::uint64_t Megabyte = 1'000'000;
    const std::uint64_t read = reader.getBytesRead();
    const std::uint64_t size = reader.getInputSize().value_or(0);
    if (size == 0) return name + ": " + std::to_string(read / Megabyte) + " MB";
    const double part = std::min(1.0, static_cast<double>(read) / static_cast<double>(size));
    const auto filled = static_cast<std::size_t>(part * Width);
    return name + ": [" + std::string(filled, '#') + std::string(Width - filled, ' ') + "] " +
           std::to_string(static_cast<int>(part * 100)) + " %";
}
