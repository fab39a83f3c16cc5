// tessit same: whether two documents say the same thing.

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include <tessit/tessit.h>

#include "attempt.h"
#include "command.h"
#include "console.h"
#include "document_walk.h"
#include "escape.h"
#include "input.h"
#include "limit_options.h"
#include "progress.h"

namespace {

struct Options {
    std::string first;
    std::string second;
    QeXmlLimits limits;
};

// A document that is read twice: from its file, or from memory where that gives its bytes only once.
class Document {
public:
    Document(std::string name, Progress& progress) : file(std::move(name)) {
        std::error_code error;
        isFile = std::filesystem::is_regular_file(file, error) && file != StandardInput;
        if (!isFile) bytes = readInput(file, &progress);
    }

    // To its end: a comparison stops at the first difference and does not look whether tags pair up.
    void check(Progress& progress, const QeXmlLimits& limits) const {
        QeXmlReader reader{input(progress), {.sourceName = QeCString(displayName(file)), .limits = limits}};
        for (DocumentWalk walk(reader); walk.next();)
            ;
    }

    QeXmlInput input() const { return isFile ? openInput(file) : QeXmlInput::bytes(bytes); }
    QeXmlInput input(Progress& progress) const { return isFile ? openInput(file, progress) : input(); }

private:
    std::string file;
    bool isFile = false;
    std::vector<unsigned char> bytes;
};

void compareFiles(Console& console, const Options& options) {
    if (options.first == StandardInput && options.second == StandardInput)
        return console.complain(displayName(StandardInput), "It can be read only once", ExitStatus::Failed);
    Progress progress(console);
    std::optional<Document> first, second;
    const auto check = [&](const std::string& file, std::optional<Document>& document) {
        return attempt(console, file, ExitStatus::Failed,
                       [&] { document.emplace(file, progress).check(progress, options.limits); });
    };
    const bool firstIsGood = check(options.first, first);  // complains about both
    if (!check(options.second, second) || !firstIsGood) return;
    bool areSame = false;  // both go on side by side: the progress of one tells that of the comparison
    const bool wereRead = attempt(console, options.first, ExitStatus::Failed,
                                  [&] { areSame = QeXmlUtils::compareXml(first->input(progress), second->input()); });
    if (!wereRead || areSame) return;
    console.append(escaped(displayName(options.first)) + " and " + escaped(displayName(options.second)) + " differ\n");
    console.conclude(ExitStatus::Different);
}

}  // namespace

Command addSame(CLI::App& tool) {
    CLI::App* arguments = tool.add_subcommand("same", "Tell whether two documents say the same thing");
    auto options = std::make_shared<Options>();
    arguments->add_option("A", options->first, "A document; \"-\" is standard input")->required()->type_name("");
    arguments->add_option("B", options->second, "Another; one of the two can be \"-\"")->required()->type_name("");
    addLimits(*arguments, options->limits);
    arguments->footer(
        "Exit status: 0 when they say the same, 1 when they differ,\n"
        "2 when one was refused, for wrong usage or a file that cannot be read.");
    return {arguments, [options](Console& console) { compareFiles(console, *options); }};
}
