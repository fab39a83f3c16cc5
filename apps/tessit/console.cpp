#include "console.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace {

constexpr std::size_t BufferSize = 65'536;

// Writes all the bytes, or returns false with the reason in `errno`.
bool writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) return false;
        if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

}  // namespace

Console::Console() {
    pending.reserve(BufferSize);
}

void Console::append(const char* bytes, std::size_t length) {
    if (length > BufferSize - pending.size()) flush();
    if (length <= BufferSize) {
        pending.append(bytes, length);
    } else if (!writeAll(STDOUT_FILENO, {bytes, length})) {
        throw WriteError{errno};
    }
}

void Console::flush() {
    const bool written = writeAll(STDOUT_FILENO, pending);
    pending.clear();
    if (!written) throw WriteError{errno};
}

void Console::finish() {
    flush();
    if (close(STDOUT_FILENO) != 0) throw WriteError{errno};
}

bool Console::canShowBar() const {
    const bool isFree = !hasResults || isatty(STDOUT_FILENO) == 0;
    return !silent && !json && isFree && isatty(STDERR_FILENO) != 0;
}

void Console::showBar(std::string_view text) {
    std::string line(1, '\r');
    line.append(text).append("\033[K");
    const std::lock_guard lock(standardError);
    hasBar = writeAll(STDERR_FILENO, line);
}

void Console::eraseBar() {
    const std::lock_guard lock(standardError);
    eraseShownBar();
}

void Console::eraseShownBar() {
    if (std::exchange(hasBar, false)) writeAll(STDERR_FILENO, "\r\033[K");
}

void Console::complain(std::string_view file, const QeXmlParseError& error, ExitStatus meaning) {
    conclude(meaning);  // also when the output cannot be written any more
    flush();
    print(
        {.severity = "error", .file = file, .message = error.what(), .position = error.getPosition(), .error = &error});
}

void Console::complain(std::string_view where, std::string_view message, ExitStatus meaning) {
    conclude(meaning);
    flush();
    complainOnly(where, message, meaning);
}

void Console::complainOnly(std::string_view where, std::string_view message, ExitStatus meaning) {
    conclude(meaning);
    print({.severity = "error", .file = where, .message = message});
}

void Console::note(const QeXmlPlace& place, std::string_view message) {
    flush();
    print({.severity = "note", .file = place.sourceFile, .message = message, .position = place.position});
}

// A complaint that cannot be written is still told by the exit status.
void Console::print(const Report& report) {
    const std::lock_guard lock(standardError);
    eraseShownBar();
    if (!silent) writeAll(STDERR_FILENO, json ? asJson(report) : asText(report));
}
