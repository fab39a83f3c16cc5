// Runs the tool as a shell does, in a folder of its own.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <span>
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

// Runs a shell command in which $TESSIT is the tool; `input` is its standard input.
Outcome run(const std::string& command, std::string_view input = {}) {
    writeFile("input", input);
    const int result = std::system(("{ " + command + "; } <input >output 2>errors").c_str());
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

struct EventsCase {
    std::string document;
    std::string lines;  // behind the first, unless it is another
};

const EventsCase Read[] = {
    {"<p:a xmlns:p='u' z='1' p:y='2' y='3'><b xmlns='v'/></p:a>\n",
     "start p:a {u} xmlns:p=\"u\" y=\"3\" p:y{u}=\"2\" z=\"1\"\nempty b {v} xmlns=\"v\"\nend p:a {u}\n"},
    {"<r xmlns:q='u'><p:a xmlns:p='u'></q:a></r>",  // prefixes do not tell names apart
     "start r {} xmlns:q=\"u\"\nstart p:a {u} xmlns:p=\"u\"\nend q:a {u}\nend r {}\n"},
    {"<a>1<!-- c -->2<?p i?>\r\n<![CDATA[<&lt;]]></a>", "start a {}\ntext \"12\\n<&lt;\"\nend a {}\n"},
    {"<a>\\ \" \t&#13;&#0;&#x7f;&#27;[0m</a>", "start a {}\ntext \"\\\\ \\\" \\t\\r\\x00\\x7F\\x1B[0m\"\nend a {}\n"},
    {"<a x='\"} \n'/>", "empty a {} x=\"\\\"} \\n\"\n"},
    {"<a xmlns='u} {\"'/>", "empty a {u\\x7D\\x20{\"} xmlns=\"u} {\\\"\"\n"},
    {"<\u00FC>\u00E4\u20AC\U0001F600</\u00FC>", "start \u00FC {}\ntext \"\u00E4\u20AC\U0001F600\"\nend \u00FC {}\n"},
    {"<a>\x80 \xC3( \xE0\x80\x80 \xED\xA0\x80 \xF4\x90\x80\x80 \xF5 \xC3</a>",  // not UTF-8, in each way
     "start a {}\ntext \"\\x80 \\xC3( \\xE0\\x80\\x80 \\xED\\xA0\\x80 \\xF4\\x90\\x80\\x80 \\xF5 \\xC3\"\nend a {}\n"},
    {"<a>\u0085\u009B \u2028 \u2029</a>",  // what some readers and terminals take for line ends or commands
     "start a {}\ntext \"\\xC2\\x85\\xC2\\x9B \\xE2\\x80\\xA8 \\xE2\\x80\\xA9\"\nend a {}\n"},
    {"<a x='&amp;&unknown;'>&amp;</a>", "start a {} x=\"&&unknown;\"\ntext \"&\"\nend a {}\n"},
};

TEST_F(Tool, PrintsOneLineForEachNode) {
    for (const auto& [document, lines] : Read) {
        SCOPED_TRACE(document);
        const Outcome outcome = run("\"$TESSIT\" events", document);
        EXPECT_EQ(outcome.output, Utf8 + lines);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.status, 0);
    }
}

TEST_F(Tool, PrintsTheDeclarationFirst) {
    const Outcome outcome =
        run("\"$TESSIT\" events", "<?xml version='1.0' encoding='ISO-8859-1' standalone='no'?><a>\xE9</a>");
    EXPECT_EQ(outcome.output,
              "document encoding=\"ISO-8859-1\" version=\"1.0\" standalone=\"no\"\n"
              "start a {}\ntext \"\u00E9\"\nend a {}\n");
}

TEST_F(Tool, LeavesReferencesInValuesWhenAsked) {
    const Outcome outcome = run("\"$TESSIT\" events --raw-references", "<a x='&amp;&#65;'>&amp;</a>");
    EXPECT_EQ(outcome.output, Utf8 + "start a {} x=\"&amp;&#65;\"\ntext \"&\"\nend a {}\n");
}

struct RefusedCase {
    std::string document;
    std::string output;
    std::string errors;
};

const RefusedCase Refused[] = {
    {"<a>\n <b></a>", Utf8 + "start a {}\ntext \"\\n \"\nstart b {}\n",
     "<stdin>:2:9: error: Unmatched start tag for a\n"},
    {"<a xmlns='u'></a><p:a/></p:a>", Utf8 + "start a {u} xmlns=\"u\"\nend a {u}\nempty p:a {}\n",
     "<stdin>:1:30: error: Unmatched start tag for p:a\n"},
    {"<r xmlns:p='u' xmlns:q='v'><p:a></q:a></r>", Utf8 + "start r {} xmlns:p=\"u\" xmlns:q=\"v\"\nstart p:a {u}\n",
     "<stdin>:1:39: error: Unmatched start tag for q:a\n"},
    {"<a><p:b>", Utf8 + "start a {}\nstart p:b {}\n", "<stdin>:1:9: error: Missing end tag for p:b\n"},
    {"<a>text", Utf8 + "start a {}\n", "<stdin>:1:8: error: Premature EOF\n"},
    {"<?xml version='1.0' encoding='\x1B[2J'?><a/>", "",
     "<stdin>:1:36: error: Couldn't transcode from input encoding '\\x1B[2J': it is not the name of an encoding\n"},
    {"", "", "<stdin>:1:1: error: Premature EOF\n"},
};

TEST_F(Tool, TellsWhereADocumentIsRefused) {
    for (const auto& [document, output, errors] : Refused) {
        SCOPED_TRACE(document);
        const Outcome outcome = run("\"$TESSIT\" events", document);
        EXPECT_EQ(outcome.output, output);
        EXPECT_EQ(outcome.errors, errors);
        EXPECT_EQ(outcome.status, 1);
    }
}

struct CommandCase {
    const char* command;
    std::string output;
    std::string errors;
    int status;
};

const std::string See = " (see tessit --help)\n";

const CommandCase Commands[] = {
    {"\"$TESSIT\" events good -",
     "good: " + Utf8 + "good: empty good {}\n<stdin>: " + Utf8 + "<stdin>: empty input {}\n", "", 0},
    {"\"$TESSIT\" events -", Utf8 + "empty input {}\n", "", 0},
    {"cp good - && \"$TESSIT\" events ./-", Utf8 + "empty good {}\n", "", 0},
    {"cp good ./--help && \"$TESSIT\" events -- --help", Utf8 + "empty good {}\n", "", 0},
    {"cp good events && \"$TESSIT\" events events", Utf8 + "empty good {}\n", "", 0},
    {"cp good 'a\nb' && \"$TESSIT\" events 'a\nb' none 2>&1",
     "a\\nb: " + Utf8 + "a\\nb: empty good {}\nnone: error: No such file or directory\n", "", 2},
    {"\"$TESSIT\" events none good", "good: " + Utf8 + "good: empty good {}\n",
     "none: error: No such file or directory\n", 2},
    {"\"$TESSIT\" events . good", "good: " + Utf8 + "good: empty good {}\n", ".: error: Is a directory\n", 2},
    {"\"$TESSIT\" events bad good 2>&1",  // in the order in which it happened
     "bad: " + Utf8 +
         "bad: start bad {}\nbad:1:6: error: Missing end tag for bad\n"
         "good: " +
         Utf8 + "good: empty good {}\n",
     "", 1},
    {"\"$TESSIT\" events none bad >/dev/null", "",
     "none: error: No such file or directory\nbad:1:6: error: Missing end tag for bad\n", 2},
    {"\"$TESSIT\" events bad none >/dev/null", "",
     "bad:1:6: error: Missing end tag for bad\nnone: error: No such file or directory\n", 2},
    {"\"$TESSIT\" events <&-", "", "<stdin>: error: Bad file descriptor\n", 2},
    {"\"$TESSIT\" --version", "tessit " TESSIT_VERSION_STRING "\n", "", 0},
    {"\"$TESSIT\"", "", "tessit: error: A subcommand is required" + See, 2},
    {"\"$TESSIT\" nothing", "", "tessit: error: The following argument was not expected: nothing" + See, 2},
    {"\"$TESSIT\" events --nothing", "", "tessit: error: The following argument was not expected: --nothing" + See, 2},
    {"\"$TESSIT\" events good >/dev/full", "", "standard output: error: No space left on device\n", 2},
    {"\"$TESSIT\" --help >/dev/full", "", "standard output: error: No space left on device\n", 2},
    {"\"$TESSIT\" events good >&-", "", "standard output: error: Bad file descriptor\n", 2},
    {"\"$TESSIT\" events bad 2>&-", Utf8 + "start bad {}\n", "", 1},
};

const CommandCase Comparisons[] = {
    {"\"$TESSIT\" same good like", "", "", 0},
    {"\"$TESSIT\" same like good", "", "", 0},
    {"\"$TESSIT\" same good good", "", "", 0},
    {"\"$TESSIT\" same good -", "good and <stdin> differ\n", "", 1},
    {"\"$TESSIT\" same - good", "<stdin> and good differ\n", "", 1},
    {"\"$TESSIT\" same - ./input", "", "", 0},
    {"cp good 'a\nb' && \"$TESSIT\" same 'a\nb' input", "a\\nb and input differ\n", "", 1},
    {"\"$TESSIT\" same bad good", "", "bad:1:6: error: Missing end tag for bad\n", 2},
    {"\"$TESSIT\" same good bad", "", "bad:1:6: error: Missing end tag for bad\n", 2},
    {"\"$TESSIT\" same bad none", "",
     "bad:1:6: error: Missing end tag for bad\nnone: error: No such file or directory\n", 2},
    {"\"$TESSIT\" same good .", "", ".: error: Is a directory\n", 2},
    {"\"$TESSIT\" same - -", "", "<stdin>: error: It can be read only once\n", 2},
    {"\"$TESSIT\" same good", "", "tessit: error: B is required" + See, 2},
    {"\"$TESSIT\" same good like bad", "", "tessit: error: The following argument was not expected: bad" + See, 2},
    {"\"$TESSIT\" same good - >/dev/full", "", "standard output: error: No space left on device\n", 2},
};

void expectAnswers(std::span<const CommandCase> cases) {
    for (const auto& [command, output, errors, status] : cases) {
        SCOPED_TRACE(command);
        writeFile("good", "<good/>");
        writeFile("like", "<?xml version='1.0'?>\n<good>\n</good>");
        writeFile("bad", "<bad>");
        const Outcome outcome = run(command, "<input/>");
        EXPECT_EQ(outcome.output, output);
        EXPECT_EQ(outcome.errors, errors);
        EXPECT_EQ(outcome.status, status);
    }
}

TEST_F(Tool, AnswersEachCommandLine) {
    expectAnswers(Commands);
}

TEST_F(Tool, TellsWhetherDocumentsAreTheSame) {
    expectAnswers(Comparisons);
}

TEST_F(Tool, ExplainsItself) {
    const Outcome tool = run("\"$TESSIT\" --help");
    EXPECT_NE(tool.output.find("events"), std::string::npos);
    EXPECT_NE(tool.output.find("Exit status"), std::string::npos);
    const Outcome events = run("\"$TESSIT\" events --help");
    EXPECT_NE(events.output.find("--raw-references"), std::string::npos);
    const Outcome same = run("\"$TESSIT\" same --help");
    EXPECT_NE(same.output.find("1 when they differ"), std::string::npos);
    EXPECT_EQ(tool.status + events.status + same.status, 0);
}

constexpr char Letters[] = "abcdefghijklmnopqrstuvwxyz-";

// What follows `mark` in the text, wherever letters do.
std::set<std::string> namesBehind(const std::string& mark, const std::string& text) {
    std::set<std::string> names;
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos;) {
        at += mark.size();
        names.insert(text.substr(at, text.find_first_not_of(Letters, at) - at));
    }
    names.erase("");
    return names;
}

// The subcommands, and the options of all of them, that the tool's help names.
std::set<std::string> namedByHelp() {
    const std::string help = run("\"$TESSIT\" --help").output;
    std::set<std::string> names = namesBehind("--", help);
    for (const std::string& name : namesBehind("\n  ", help)) {
        if (name[0] == '-') continue;
        names.insert(name);
        names.merge(namesBehind("--", run("\"$TESSIT\" " + name + " --help").output));
    }
    return names;
}

TEST_F(Tool, HasNothingThatItsManualAndCompletionsLack) {
    const std::set<std::string> names = namedByHelp();
    EXPECT_TRUE(names.contains("same") && names.contains("raw-references") && names.contains("version"));
    for (const char* file : {"tessit.1", "completions/tessit.bash", "completions/_tessit", "completions/tessit.fish"}) {
        std::string text = contentOf((TESSIT_TOOL_SOURCES "/"s + file).c_str());
        std::erase(text, '\\');  // hyphens of a manual page are escaped
        for (const std::string& name : names)
            EXPECT_NE(text.find(name), std::string::npos) << file << " lacks " << name;
    }
}

struct CompletionCase {
    std::string words;  // behind the tool's name
    std::string candidates;
};

const CompletionCase Completions[] = {
    {"\"\"", "events same --help --version\n"},
    {"events -", "--raw-references --help\n"},
    {"same --h", "--help\n"},
    {"same li", "like\n"},  // a file
    {"events good l", "like\n"},
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
    const Outcome fromFile = run("\"$TESSIT\" events large");
    const Outcome fromPipe = run("cat large | \"$TESSIT\" events");
    EXPECT_TRUE(fromFile.output == fromPipe.output);
    EXPECT_TRUE(fromFile.output.ends_with(std::string(300'000, 'x') + "\"\nend r {}\n"));
    EXPECT_NE(fromFile.output.find("\ntext \"19999\"\nend i {}\ntext"), std::string::npos);
}

TEST_F(Tool, IsQuietWhenItsReaderHasSeenEnough) {
    writeFile("large", largeDocument());
    for (const std::string signal : {"-", "''"}) {  // the signal's default, and ignored
        SCOPED_TRACE(signal);
        const Outcome outcome =
            run("trap " + signal + " PIPE; { \"$TESSIT\" events large; echo $? >status; } | head -n 1");
        EXPECT_EQ(outcome.output, Utf8);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(contentOf("status"), "0\n");
    }
}

}  // namespace
