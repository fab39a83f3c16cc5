// Runs the tool as a shell does, in a folder of its own.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

#include <tessit/version.h>

namespace {

using namespace std::string_literals;

std::string contentOf(const char* file) {
    std::ifstream in(file, std::ios::binary);
    return (std::ostringstream() << in.rdbuf()).str();
}

void writeFile(const char* file, std::string_view content) {
    std::ofstream(file, std::ios::binary) << content;
}

struct Outcome {
    std::string output;
    std::string errors;
    int status;
};

// Runs a shell command in which `tessit` is the tool; `input` is its standard input.
Outcome run(const std::string& command, std::string_view input = {}) {
    writeFile("input", input);
    const std::string line = R"(tessit() { "$TESSIT" "$@"; }; { )" + command + "; } <input >output 2>errors";
    const int result = std::system(line.c_str());
    return {contentOf("output"), contentOf("errors"), WIFEXITED(result) ? WEXITSTATUS(result) : -1};
}

class Tool : public testing::Test {
protected:
    Tool() {
        setenv("TESSIT", TESSIT_TOOL, 1);
        std::filesystem::create_directory(folder);
        std::filesystem::current_path(folder);
    }
    ~Tool() override {
        std::filesystem::current_path(folder.parent_path());
        std::filesystem::remove_all(folder);
    }

private:
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("tessit-tool-" + std::to_string(getpid()));
};

const std::string Utf8 = "document encoding=\"UTF-8\" version=\"\" standalone=\"\"\n";
const std::string See = " (see tessit --help)\n";

struct DocumentCase {
    std::string document;
    std::string lines;   // behind the first
    std::string errors;  // behind the name of the file; without any, the document is read
};

const DocumentCase Documents[] = {
    {"<p:a xmlns:p='u' z='1' p:y='2' y='3'><b xmlns='v'/></p:a>\n",
     "start p:a {u} xmlns:p=\"u\" y=\"3\" p:y{u}=\"2\" z=\"1\"\nempty b {v} xmlns=\"v\"\nend p:a {u}\n", ""},
    {"<r xmlns:q='u'><p:a xmlns:p='u'></q:a></r>",  // prefixes do not tell names apart
     "start r {} xmlns:q=\"u\"\nstart p:a {u} xmlns:p=\"u\"\nend q:a {u}\nend r {}\n", ""},
    {"<a>\\ \" \t&#13;&#0;&#x7f;&#27;[0m</a>", "start a {}\ntext \"\\\\ \\\" \\t\\r\\x00\\x7F\\x1B[0m\"\nend a {}\n",
     ""},
    {"<a xmlns='u} {\"' x='\"} \n'/>", "empty a {u\\x7D\\x20{\"} x=\"\\\"} \\n\" xmlns=\"u} {\\\"\"\n", ""},
    {"<\u00FC>\u00E4\u20AC\U0001F600</\u00FC>", "start \u00FC {}\ntext \"\u00E4\u20AC\U0001F600\"\nend \u00FC {}\n",
     ""},
    {"<a>\x80 \xC3( \xE0\x80\x80 \xED\xA0\x80 \xF4\x90\x80\x80 \xF5 \xC3</a>",  // not UTF-8, in each way
     "start a {}\ntext \"\\x80 \\xC3( \\xE0\\x80\\x80 \\xED\\xA0\\x80 \\xF4\\x90\\x80\\x80 \\xF5 \\xC3\"\nend a {}\n",
     ""},
    {"<a>\u0085\u009B \u2028 \u2029</a>",  // what some readers and terminals take for line ends or commands
     "start a {}\ntext \"\\xC2\\x85\\xC2\\x9B \\xE2\\x80\\xA8 \\xE2\\x80\\xA9\"\nend a {}\n", ""},
    {"<a x='&amp;&unknown;'>&amp;</a>", "start a {} x=\"&&unknown;\"\ntext \"&\"\nend a {}\n", ""},
    {"<a>\n <b></a>", "start a {}\ntext \"\\n \"\nstart b {}\n", ":2:9: error: Unmatched start tag for a\n"},
    {"<a xmlns='u'></a><p:a/></p:a>", "start a {u} xmlns=\"u\"\nend a {u}\nempty p:a {}\n",
     ":1:30: error: Unmatched start tag for p:a\n"},
    {"<r xmlns:p='u' xmlns:q='v'><p:a></q:a></r>", "start r {} xmlns:p=\"u\" xmlns:q=\"v\"\nstart p:a {u}\n",
     ":1:39: error: Unmatched start tag for q:a\n"},
    {"<a><p:b>", "start a {}\nstart p:b {}\n", ":1:9: error: Missing end tag for p:b\n"},
};

TEST_F(Tool, PrintsOneLineForEachNodeAndTellsWhereADocumentIsRefused) {
    for (const auto& [document, lines, errors] : Documents) {
        SCOPED_TRACE(document);
        const Outcome outcome = run("tessit events", document);
        EXPECT_EQ(outcome.output, Utf8 + lines);
        EXPECT_EQ(outcome.errors, errors.empty() ? "" : "<stdin>" + errors);
        EXPECT_EQ(outcome.status, errors.empty() ? 0 : 1);
    }
}

const struct {
    const char* command;
    std::string output, errors;
    int status;
} Commands[] = {
    {"tessit events latin", "document encoding=\"ISO-8859-1\" version=\"1.0\" standalone=\"no\"\nempty \u00E9 {}\n", "",
     0},
    {"tessit events --raw-references references", Utf8 + "start a {} x=\"&amp;&#65;\"\ntext \"&\"\nend a {}\n", "", 0},
    {"tessit events unknown", "",
     "unknown:1:36: error: Couldn't transcode from input encoding '\\x1B[2J': it is not the name of an encoding\n", 1},
    {"tessit events good -", "good: " + Utf8 + "good: empty good {}\n<stdin>: " + Utf8 + "<stdin>: empty input {}\n",
     "", 0},
    {"cp good - && tessit events ./-", Utf8 + "empty good {}\n", "", 0},
    {"cp good ./--help && tessit events -- --help", Utf8 + "empty good {}\n", "", 0},
    {"cp good 'a\nb' && tessit events 'a\nb' 'no\nne' 2>&1",
     "a\\nb: " + Utf8 + "a\\nb: empty good {}\nno\\nne: error: No such file or directory\n", "", 2},
    {"tessit events . good", "good: " + Utf8 + "good: empty good {}\n", ".: error: Is a directory\n", 2},
    {"tessit events bad good 2>&1",  // in the order in which it happened
     "bad: " + Utf8 + "bad: start bad {}\nbad:1:6: error: Missing end tag for bad\n" + "good: " + Utf8 +
         "good: empty good {}\n",
     "", 1},
    {"tessit events bad none >/dev/null", "",
     "bad:1:6: error: Missing end tag for bad\nnone: error: No such file or directory\n", 2},
    {"tessit events none bad 2>/dev/null", "bad: " + Utf8 + "bad: start bad {}\n", "", 2},
    {"tessit events <&-", "", "<stdin>: error: Bad file descriptor\n", 2},
    {"tessit --version", "tessit " TESSIT_VERSION_STRING "\n", "", 0},
    {"tessit", "", "tessit: error: A subcommand is required" + See, 2},
    {"tessit nothing", "", "tessit: error: The following argument was not expected: nothing" + See, 2},
    {"tessit events good >/dev/full", "", "standard output: error: No space left on device\n", 2},
    {"tessit events good >&-", "", "standard output: error: Bad file descriptor\n", 2},
    {"tessit events bad 2>&-", Utf8 + "start bad {}\n", "", 1},
    {"tessit --help | grep -o 'Exit status'; tessit same --help | grep -o 'they differ'", "Exit status\nthey differ\n",
     "", 0},

    {"tessit same good like", "", "", 0},
    {"tessit same good good", "", "", 0},  // only standard input cannot be read twice
    {"tessit same good -", "good and <stdin> differ\n", "", 1},
    {"tessit same - good", "<stdin> and good differ\n", "", 1},
    {"tessit same - ./input", "", "", 0},
    {"cp good 'a\nb' && tessit same 'a\nb' input", "a\\nb and input differ\n", "", 1},
    {"tessit same good bad", "", "bad:1:6: error: Missing end tag for bad\n", 2},
    {"tessit same bad none", "", "bad:1:6: error: Missing end tag for bad\nnone: error: No such file or directory\n",
     2},
    {"tessit same - -", "", "<stdin>: error: It can be read only once\n", 2},
    {"tessit same good", "", "tessit: error: B is required" + See, 2},
};

TEST_F(Tool, AnswersEachCommandLine) {
    writeFile("good", "<good/>");
    writeFile("like", "<?xml version='1.0'?>\n<good>\n</good>");
    writeFile("bad", "<bad>");
    writeFile("references", "<a x='&amp;&#65;'>&amp;</a>");
    writeFile("latin", "<?xml version='1.0' encoding='ISO-8859-1' standalone='no'?><\xE9/>");
    writeFile("unknown", "<?xml version='1.0' encoding='\x1B[2J'?><a/>");
    for (const auto& [command, output, errors, status] : Commands) {
        SCOPED_TRACE(command);
        const Outcome outcome = run(command, "<input/>");
        EXPECT_EQ(outcome.output, output);
        EXPECT_EQ(outcome.errors, errors);
        EXPECT_EQ(outcome.status, status);
    }
}

TEST_F(Tool, HasNothingThatItsManualAndCompletionsLack) {
    // The subcommands, and the options of all of them, that the tool's help names.
    const std::string names = run(R"({ tessit --help
          for command in $(tessit --help | grep -oE '^  [a-z]+'); do tessit $command --help; done
        } | grep -oE -e '--[a-z-]+' -e '^  [a-z]+' | sed 's/^[ -]*//' | sort -u)")
                                  .output;
    EXPECT_TRUE(names.find("raw-references\nsame\n") != std::string::npos) << names;
    for (const char* file : {"tessit.1", "completions/tessit.bash", "completions/_tessit", "completions/tessit.fish"}) {
        std::string text = contentOf((TESSIT_TOOL_SOURCES "/"s + file).c_str());
        std::erase(text, '\\');  // hyphens of a manual page are escaped
        std::istringstream in(names);
        for (std::string name; in >> name;)
            EXPECT_NE(text.find(name), std::string::npos) << file << " lacks " << name;
    }
}

const struct {
    std::string words;  // behind the tool's name
    std::string candidates;
} Completions[] = {
    {"\"\"", "events same --help --version\n"},
    {"events -", "--raw-references --help\n"},
    {"same --h", "--help\n"},
    {"events good li", "like\n"},  // a file
};

TEST_F(Tool, IsCompletedByBash) {
    writeFile("like", "");
    writeFile("completing", ". " TESSIT_TOOL_SOURCES
                            "/completions/tessit.bash\n"
                            "complete() { COMP_WORDS=(tessit \"$@\") COMP_CWORD=$#; _tessit tessit \"${@: -1}\"; }\n");
    for (const auto& [words, candidates] : Completions) {
        const Outcome outcome = run("bash -c '. ./completing; complete " + words + "; echo \"${COMPREPLY[@]}\"'");
        EXPECT_EQ(outcome.output, candidates) << words;
        EXPECT_EQ(outcome.errors, "") << words;
    }
}

// Larger than any buffer or pipe, in many nodes and in one.
std::string largeDocument() {
    std::string document = "<r>";
    for (int i = 0; i < 20'000; ++i)
        document += "<i>" + std::to_string(i) + "</i>";
    return document + std::string(300'000, 'x') + "</r>";
}

TEST_F(Tool, ReadsAndWritesMoreThanABuffer) {
    writeFile("large", largeDocument());
    const Outcome fromFile = run("tessit events large");
    const Outcome fromPipe = run("cat large | tessit events");
    EXPECT_TRUE(fromFile.output == fromPipe.output);
    EXPECT_TRUE(fromFile.output.ends_with(std::string(300'000, 'x') + "\"\nend r {}\n"));
    EXPECT_NE(fromFile.output.find("\ntext \"19999\"\nend i {}\ntext"), std::string::npos);
}

TEST_F(Tool, IsQuietWhenItsReaderHasSeenEnough) {
    writeFile("large", largeDocument());
    for (const std::string signal : {"-", "''"}) {  // the signal's default, and ignored
        SCOPED_TRACE(signal);
        const Outcome outcome = run("trap " + signal + " PIPE; { tessit events large; echo $? >status; } | head -n 1");
        EXPECT_EQ(outcome.output, Utf8);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(contentOf("status"), "0\n");
    }
}

}  // namespace
