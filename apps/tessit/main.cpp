// The command line tool: finds the subcommand and turns what happens into an exit status.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <span>
#include <string>
#include <system_error>
#include <vector>

#include <tessit/version.h>

#include "command.h"
#include "console.h"

namespace {

constexpr std::string_view ToolName = "tessit";

// An argument as CLI11 is to read it. It takes "++" for the end of a subcommand's arguments, and brackets for a list of
// them; here they name a file, which is the same with its folder in front.
std::string literally(const std::string& argument) {
    const bool isList = argument.starts_with('[') && argument.ends_with(']');
    return isList || argument == "++" ? "./" + argument : argument;
}

void refuseUsage(Console& console, const std::string& reason) {
    console.complain(ToolName, reason + " (see tessit --help)", ExitStatus::Failed);
}

void runCommand(std::span<char*> words, Console& console) {
    CLI::App tool("Reads, checks and compares XML documents", std::string(ToolName));
    tool.set_version_flag("--version", std::string(ToolName) + " " + tessit::versionString());
    tool.footer(
        "Exit status: 0 when every document was read, 1 when one was refused,\n"
        "2 for wrong usage or a file that cannot be read or written;\n"
        "subcommands that answer a question have their own.");
    const Command commands[] = {addCheck(tool), addEvents(tool), addSame(tool)};
    bool json = false;
    for (const Command& command : commands)
        command.arguments->add_flag("--json", json, "Report errors as JSON, one object a line");
    tool.require_subcommand(0, 1);
    std::vector<std::string> arguments(words.size());
    std::transform(words.begin(), words.end(), arguments.rbegin(), literally);  // CLI11 takes them from the back
    try {
        tool.parse(std::move(arguments));
    } catch (const CLI::CallForVersion& version) {
        return console.append(std::string(version.what()) + '\n');
    } catch (const CLI::Success&) {  // --help
        return console.append(tool.help());
    } catch (const CLI::ParseError& error) {
        return refuseUsage(console, error.what());
    }
    if (json) console.speakJson();
    for (const Command& command : commands)
        if (command.arguments->parsed()) return command.run(console);
    refuseUsage(console, "A subcommand is required");
}

}  // namespace

int main(int argc, char** argv) {
    // A reader that closes the pipe has seen enough: that ends the tool without a
    // message, whether or not the one who started it ignores the signal.
    std::signal(SIGPIPE, SIG_IGN);
    Console console;
    try {
        runCommand({argv + 1, argv + std::max(argc, 1)}, console);
        console.finish();
    } catch (const WriteError& failure) {
        if (failure.error != EPIPE)
            console.complainOnly("standard output", std::generic_category().message(failure.error), ExitStatus::Failed);
    } catch (const std::exception& error) {  // not enough memory, above all
        console.complainOnly(ToolName, error.what(), ExitStatus::Failed);
    }
    return static_cast<int>(console.status());
}
