#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include <tessit/reader/xml_reader.h>

#include "console.h"

/// How far a document was read, in a line on standard error: only where that is a terminal, and once reading takes
/// longer than a second. The line goes with this.
class Progress {
public:
    Progress(Console& target, const QeXmlReader& source, std::string_view file);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { console.eraseBar(); }

    /// For after each node.
    void step() {
        if (isShown && ++nodes % NodesToALook == 0) look();
    }

private:
    static constexpr unsigned NodesToALook = 256;  // the clock is asked after so many

    void look();
    std::string bar() const;

    Console& console;
    const QeXmlReader& reader;
    std::string name;
    bool isShown;
    unsigned nodes = 0;
    std::chrono::steady_clock::time_point next;
};
