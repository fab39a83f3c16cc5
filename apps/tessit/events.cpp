// tessit events: one line for each node of the documents.

#include <CLI/CLI.hpp>
#include <memory>

#include <tessit/tessit.h>

#include "attempt.h"
#include "beside_resolver.h"
#include "command.h"
#include "console.h"
#include "document_walk.h"
#include "escape.h"
#include "input.h"
#include "limit_options.h"
#include "progress.h"

namespace {

struct Options {
    std::vector<std::string> files;
    bool rawReferences = false;
    bool conforming = false;
    bool external = false;
    QeXmlLimits limits;
};

// Prints nodes, each line behind the same prefix.
class EventPrinter {
public:
    EventPrinter(Console& target, std::string_view linePrefix) : console(target), prefix(linePrefix) {}

    void printDocument(const QeXmlReader& reader) {
        console.append(prefix);
        console.append("document");
        printField("encoding", reader.getEncoding());
        printField("version", reader.getVersion());
        printField("standalone", reader.getStandalone());
        console.append('\n');
    }

    void printNode(const QeXmlReader& reader) {
        switch (reader.getLastNodeType()) {
            case QeXmlReader::ElementStart:
                return printTag("start", reader.getLastName(), reader.getLastAttributes());
            case QeXmlReader::EmptyElement:
                return printTag("empty", reader.getLastName(), reader.getLastAttributes());
            case QeXmlReader::ElementEnd:
                return printTag("end", reader.getLastName(), {});
            case QeXmlReader::Content:
                return printQuotedLine("text", reader.getLastContent());
            case QeXmlReader::Comment:
                return printQuotedLine("comment", reader.getLastContent());
            case QeXmlReader::Instruction:
                return printInstruction(reader.getLastTarget(), reader.getLastContent());
            case QeXmlReader::EntityReference:
                return printReference(reader.getLastTarget());
            case QeXmlReader::DocumentType:
                return printDocumentType(reader.getDocumentType());
            case QeXmlReader::CDATASection:  // not asked for
            case QeXmlReader::NoNode:
                break;
        }
    }

private:
    void printTag(std::string_view kind, const QeXmlName& name, const QeXmlAttributeSet& attributes) {
        console.append(prefix);
        console.append(kind);
        console.append(' ');
        printQualifiedName(name);
        console.append(' ');
        printBraced(name.getNamespace().getURI());
        for (const QeXmlAttribute& attribute : attributes)
            printAttribute(attribute);
        console.append('\n');
    }

    void printAttribute(const QeXmlAttribute& attribute) {
        const QeXmlNamespace& ns = attribute.getName().getNamespace();
        console.append(' ');
        printQualifiedName(attribute.getName());
        if (!ns.getURI().empty()) printBraced(ns.getURI());
        console.append('=');
        printQuoted(attribute.getValue());
    }

    void printQuotedLine(std::string_view kind, std::string_view text) {
        console.append(prefix);
        console.append(kind);
        console.append(' ');
        printQuoted(text);
        console.append('\n');
    }

    void printInstruction(std::string_view target, std::string_view data) {
        printNamed("instruction", target);
        console.append(' ');
        printQuoted(data);
        console.append('\n');
    }

    void printReference(std::string_view name) {
        printNamed("reference", name);
        console.append('\n');
    }

    void printDocumentType(const QeXmlDocumentType& declaration) {
        printNamed("doctype", declaration.name);
        console.append(' ');
        printQuoted(declaration.publicId);
        console.append(' ');
        printQuoted(declaration.systemId);
        console.append('\n');
    }

    void printNamed(std::string_view kind, std::string_view name) {
        console.append(prefix);
        console.append(kind);
        console.append(' ');
        appendEscaped<Within::Line>(console, name);
    }

    void printField(std::string_view name, std::string_view value) {
        console.append(' ');
        console.append(name);
        console.append('=');
        printQuoted(value);
    }

    void printQualifiedName(const QeXmlName& name) {
        const QeCString& nsPrefix = name.getNamespace().getPrefix();
        if (!nsPrefix.empty()) {
            appendEscaped<Within::Line>(console, nsPrefix);
            console.append(':');
        }
        appendEscaped<Within::Line>(console, name.getLocalName());
    }

    void printQuoted(std::string_view text) {
        console.append('"');
        appendEscaped<Within::Quotes>(console, text);
        console.append('"');
    }

    void printBraced(std::string_view uri) {
        console.append('{');
        appendEscaped<Within::Braces>(console, uri);
        console.append('}');
    }

    Console& console;
    std::string_view prefix;
};

constexpr QeXmlNodes DeliveredNodes =
    QeXmlNodes::Comments | QeXmlNodes::Instructions | QeXmlNodes::References | QeXmlNodes::DocumentType;

void printEvents(Console& console, Progress& progress, const std::string& file, std::string_view prefix,
                 const Options& options) {
    BesideResolver resolver(console, file);
    QeXmlReader reader{openInput(file, progress),
                       {.rules = options.conforming ? QeXmlRules::Conforming : QeXmlRules::Lenient,
                        .sourceName = QeCString(displayName(file)),
                        .nodes = DeliveredNodes,
                        .resolver = options.external ? &resolver : nullptr,
                        .limits = options.limits}};
    reader.setExpandAttributeReference(!options.rawReferences);
    EventPrinter printer(console, prefix);
    printer.printDocument(reader);
    for (DocumentWalk walk(reader); walk.next();)
        printer.printNode(reader);
}

void readFile(Console& console, Progress& progress, const std::string& file, const Options& options) {
    const std::string prefix = options.files.size() > 1 ? escaped(displayName(file)) + ": " : "";
    attempt(console, file, ExitStatus::Refused, [&] { printEvents(console, progress, file, prefix, options); });
}

}  // namespace

Command addEvents(CLI::App& tool) {
    CLI::App* arguments = tool.add_subcommand("events", "Print one line for each node of the documents");
    auto options = std::make_shared<Options>();
    arguments->add_flag("--raw-references", options->rawReferences,
                        "Leave references in attribute values as they are written");
    CLI::Option* conforming =
        arguments->add_flag("--conforming", options->conforming, "Refuse what is not well-formed; print more nodes");
    arguments->add_flag("--external", options->external, "Read external entities in the document's folder")
        ->needs(conforming);
    addLimits(*arguments, options->limits);
    arguments->add_option("FILE", options->files, "Documents to read; none, or \"-\", is standard input")
        ->type_name("");
    return {arguments, [options](Console& console) {
                if (options->files.empty()) options->files.emplace_back(StandardInput);
                console.expectResults();
                Progress progress(console);
                for (const std::string& file : options->files)
                    readFile(console, progress, file, *options);
            }};
}
