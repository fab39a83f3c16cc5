#include "run.h"

#include <span>

#include <tessit/tessit.h>

#include "canonical_form.h"

namespace {

namespace fs = std::filesystem;

// Reads every file that an identifier names. The suite is trusted.
class FileResolver : public QeXmlResolver {
public:
    bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) override {
        const fs::path file =
            fs::path(std::string_view(id.getBase())).parent_path() / std::string_view(id.getSystemId());
        if (!fs::is_regular_file(file)) return false;
        entity.setBytes(QeCString(contentOf(file)));
        entity.setName(file.c_str());
        return true;
    }
};

QeXmlReaderOptions optionsFor(Way way, const fs::path& file, QeXmlResolver& resolver) {
    return {.rules = way == Lenient ? QeXmlRules::Lenient : QeXmlRules::Conforming,
            .sourceName = file.c_str(),
            .namespaces = way != WithoutNamespaces,
            .nodes = QeXmlNodes::Instructions,
            .resolver = way == Lenient || way == Conforming ? nullptr : &resolver};
}

// The place without the suite's folder, and the message.
std::string describe(const QeXmlParseError& error, const fs::path& suite) {
    const fs::path source = fs::path(std::string_view(error.getSourceFile())).lexically_relative(suite);
    return source.string() + ':' + std::to_string(error.getLineNumber()) + ':' +
           std::to_string(error.getColumnNumber()) + ": " + error.what();
}

// A lenient reader delivers no instructions; and what stands outside is missing where it was not read.
bool isComparable(Way way, const Test& test) {
    return !test.output.empty() && way != Lenient && (way != Conforming || test.entities == "none");
}

Outcome read(const fs::path& suite, const Test& test, Way way) {
    FileResolver resolver;
    const fs::path file = suite / test.document;
    const std::string bytes = contentOf(file);
    try {
        QeXmlReader reader(QeCString(bytes), optionsFor(way, file, resolver));
        const std::string form = readCanonicalForm(reader);
        const bool isRight = !isComparable(way, test) || form == contentOf(suite / test.output);
        return {.isAccepted = true, .hasRightOutput = isRight, .fault = {}};
    } catch (const QeXmlParseError& error) {
        return {.isAccepted = false, .hasRightOutput = true, .fault = describe(error, suite)};
    }
}

}  // namespace

std::vector<Result> run(const fs::path& suite, std::vector<Test> tests) {
    std::vector<Result> results;
    for (Test& test : tests) {
        Result& result = results.emplace_back(Result{std::move(test), {}});
        for (const Way way : Ways)
            result.outcomes[way] = read(suite, result.test, way);
    }
    return results;
}
