// tessit check: whether documents are well-formed.

#include <CLI/CLI.hpp>
#include <memory>

#include <tessit/tessit.h>

#include "attempt.h"
#include "beside_resolver.h"
#include "command.h"
#include "console.h"
#include "input.h"
#include "limit_options.h"
#include "progress.h"

namespace {

struct Options {
    std::vector<std::string> files;
    bool quiet = false;
    bool external = false;
    bool record = false;
    QeXmlLimits limits;
};

void readToItsEnd(Progress& progress, const std::string& file, const QeXmlReaderOptions& options) {
    QeXmlReader reader{openInput(file, progress), options};
    while (!reader.eof())
        reader.readNextNode();
}

void checkFile(Console& console, Progress& progress, const std::string& file, const Options& options) {
    BesideResolver resolver(console, file);
    readToItsEnd(progress, file,
                 {.rules = QeXmlRules::Conforming,
                  .sourceName = QeCString(displayName(file)),
                  .resolver = options.external ? &resolver : nullptr,
                  .limits = options.limits});
}

// All that a lenient reader forgives, and what it refuses.
void recordFile(Console& console, Progress& progress, const std::string& file, const Options& options) {
    const QeCString name(displayName(file));
    QeXmlRecord record;
    try {
        readToItsEnd(progress, file, {.sourceName = name, .limits = options.limits, .record = &record});
    } catch (const QeXmlParseError&) {  // it is recorded
    }
    for (const QeXmlParseError& entry : record.getEntries())
        console.complain(name, entry, ExitStatus::Refused);
    const std::uint64_t others = record.getCount() - record.getEntries().size();
    if (others != 0) console.complain(name, "and " + std::to_string(others) + " more", ExitStatus::Refused);
}

void checkFiles(Console& console, const Options& options) {
    if (options.quiet) console.silence();
    Progress progress(console);
    for (const std::string& file : options.files)
        attempt(console, file, ExitStatus::Refused,
                [&] { (options.record ? recordFile : checkFile)(console, progress, file, options); });
}

}  // namespace

Command addCheck(CLI::App& tool) {
    CLI::App* arguments = tool.add_subcommand("check", "Tell whether documents are well-formed");
    auto options = std::make_shared<Options>();
    arguments->add_flag("--quiet", options->quiet, "Print nothing: the exit status tells");
    CLI::Option* external =
        arguments->add_flag("--external", options->external, "Read external entities in the document's folder");
    arguments
        ->add_flag("--record", options->record,
                   "Tell all that breaks a rule, as far as that can be told without declarations")
        ->excludes(external);
    addLimits(*arguments, options->limits);
    arguments->add_option("FILE", options->files, "Documents to check; \"-\" is standard input")
        ->required()
        ->type_name("");
    return {arguments, [options](Console& console) { checkFiles(console, *options); }};
}
