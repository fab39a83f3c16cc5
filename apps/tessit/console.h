#pragma once

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

#include "report.h"

/// What the tool's exit status says. The worst of all that happened counts.
enum class ExitStatus {
    Good = 0,       ///< every document was read to its end, and the answer is yes where there is a question
    Refused = 1,    ///< a document was refused
    Different = 1,  ///< the documents differ
    Failed = 2      ///< wrong usage, or a file that could not be read or written
};

/// Standard output cannot take what was written to it.
struct WriteError {
    int error;  ///< as `errno` has it
};

/// Where results and complaints go, and what they make of the exit status.
class Console {
public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Appends to standard output, through a buffer. Throws `WriteError`.
    void append(const char* bytes, std::size_t length);
    void append(std::string_view text) { append(text.data(), text.size()); }
    void append(char byte) { append(&byte, 1); }

    /// Writes out what is buffered. Throws `WriteError`.
    void flush();

    /// Writes out what is buffered, and closes standard output: some errors show only then. Throws `WriteError`.
    void finish();

    /// Prints what is wrong with a document to standard error, behind the output so far. Throws `WriteError`.
    void complain(std::string_view file, const QeXmlParseError& error, ExitStatus meaning);

    /// The same for what has no position, such as a file that cannot be read.
    void complain(std::string_view where, std::string_view message, ExitStatus meaning);

    /// The same for when standard output itself is what fails: nothing is written to it.
    void complainOnly(std::string_view where, std::string_view message, ExitStatus meaning);

    /// Prints a note in the same way; the exit status stays. Throws `WriteError`.
    void note(const QeXmlPlace& place, std::string_view message);

    /// From now on prints neither complaints nor notes.
    void silence() { silent = true; }

    /// From now on prints complaints and notes as JSON.
    void speakJson() { json = true; }

    /// From now on, results come while documents are read.
    void expectResults() { hasResults = true; }

    /// Whether standard error is a terminal that has room for a line which comes and goes: not where messages are JSON
    /// or silent, or where the results go to a terminal, too.
    bool canShowBar() const;

    /// Shows one line on standard error, in the place of the one before. It is gone before a message comes. For any
    /// thread, other than the rest.
    void showBar(std::string_view text);
    void eraseBar();

    /// Makes the exit status at least this bad, without a complaint.
    void conclude(ExitStatus meaning) { worst = std::max(worst, meaning); }

    ExitStatus status() const { return worst; }

private:
    void print(const Report& report);
    void eraseShownBar();

    std::string pending;
    ExitStatus worst = ExitStatus::Good;
    bool silent = false;
    bool json = false;
    bool hasResults = false;
    std::mutex standardError;
    bool hasBar = false;
};
