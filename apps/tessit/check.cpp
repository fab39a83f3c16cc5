// tessit check: whether documents are well-formed.

#include <CLI/CLI.hpp>
#include <memory>

#include <tessit/tessit.h>

#include "attempt.h"
#include "beside_resolver.h"
#include "command.h"
#include "console.h"
#include "input.h"
#include "progress.h"

namespace {

struct Options {
    std::vector<std::string> files;
    bool quiet = false;
    bool external = false;
};

void readToItsEnd(Console& console, const std::string& file, bool external) {
    BesideResolver resolver(console, file);
    QeXmlReader reader{openInput(file),
                       {.rules = QeXmlRules::Conforming,
                        .sourceName = QeCString(displayName(file)),
                        .resolver = external ? &resolver : nullptr}};
    for (Progress progress(console, reader, displayName(file)); !reader.eof(); progress.step())
        reader.readNextNode();
}

void checkFiles(Console& console, const Options& options) {
    if (options.quiet) console.silence();
    for (const std::string& file : options.files)
        attempt(console, file, ExitStatus::Refused, [&] { readToItsEnd(console, file, options.external); });
}

}  // namespace

Command addCheck(CLI::App& tool) {
    CLI::App* arguments = tool.add_subcommand("check", "Tell whether documents are well-formed");
    auto options = std::make_shared<Options>();
    arguments->add_flag("--quiet", options->quiet, "Print nothing: the exit status tells");
    arguments->add_flag("--external", options->external, "Read external entities in the document's folder");
    arguments->add_option("FILE", options->files, "Documents to check; \"-\" is standard input")
        ->required()
        ->type_name("");
    return {arguments, [options](Console& console) { checkFiles(console, *options); }};
}
