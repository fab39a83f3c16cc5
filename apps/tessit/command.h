#pragma once

#include <functional>

namespace CLI {
class App;
}

class Console;

/// A subcommand of the tool: its arguments on the command line, and what it does
/// once they were parsed.
struct Command {
    CLI::App* arguments;
    std::function<void(Console&)> run;
};

// Each declares its arguments on the tool's command line. A new subcommand is a
// source of its own, a line here, and its name in main's list.
Command addCheck(CLI::App& tool);
Command addEvents(CLI::App& tool);
Command addSame(CLI::App& tool);
