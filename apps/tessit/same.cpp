// tessit same: whether two documents say the same thing.

#include <CLI/CLI.hpp>
#include <memory>
#include <span>

#include <tessit/tessit.h>

#include "attempt.h"
#include "command.h"
#include "console.h"
#include "document_walk.h"
#include "escape.h"
#include "input.h"

namespace {

struct Options {
    std::string first;
    std::string second;
};

// The file's document, read to its end: a comparison stops at the first difference
// and does not look whether tags pair up.
QeCString readDocument(const std::string& file) {
    const std::vector<unsigned char> bytes = readInput(file);
    QeXmlReader reader{std::span(bytes), {.sourceName = QeCString(displayName(file))}};
    for (DocumentWalk walk(reader); walk.next();)
        ;
    return QeCString(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

void compareFiles(Console& console, const Options& options) {
    if (options.first == StandardInput && options.second == StandardInput)
        return console.complain(displayName(StandardInput), "It can be read only once", ExitStatus::Failed);
    QeCString first, second;
    const auto read = [&](const std::string& file, QeCString& document) {
        return attempt(console, file, ExitStatus::Failed, [&] { document = readDocument(file); });
    };
    const bool firstIsGood = read(options.first, first);  // complains about both
    if (!read(options.second, second) || !firstIsGood || QeXmlUtils::compareXml(first, second)) return;
    console.append(escaped(displayName(options.first)) + " and " + escaped(displayName(options.second)) + " differ\n");
    console.conclude(ExitStatus::Different);
}

}  // namespace

Command addSame(CLI::App& tool) {
    CLI::App* arguments = tool.add_subcommand("same", "Tell whether two documents say the same thing");
    auto options = std::make_shared<Options>();
    arguments->add_option("A", options->first, "A document; \"-\" is standard input")->required()->type_name("");
    arguments->add_option("B", options->second, "Another; one of the two can be \"-\"")->required()->type_name("");
    arguments->footer(
        "Exit status: 0 when they say the same, 1 when they differ,\n"
        "2 when one was refused, for wrong usage or a file that cannot be read.");
    return {arguments, [options](Console& console) { compareFiles(console, *options); }};
}
