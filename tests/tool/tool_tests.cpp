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
#include <utility>

#include <tessit/version.h>

namespace {

std::string contentOf(const char* file) {
    return (std::ostringstream() << std::ifstream(file).rdbuf()).str();
}

void writeFile(const char* file, std::string_view content) {
    std::ofstream(file) << content;
}

std::string repeat(std::string_view text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

// Documents that name others.
void writeLinkedFiles() {
    writeFile("away", "<!DOCTYPE a SYSTEM 'http://away'><a>&b;</a>");
    std::filesystem::create_directories("nested/types");
    writeFile("nested/doc", "<!DOCTYPE a SYSTEM 'types/dtd'>\n<a>&e;</a>");
    writeFile("nested/types/dtd", "<!ENTITY e SYSTEM 'entity'>");
    writeFile("nested/types/entity", "\n<");
}

class Tool : public testing::Test {
protected:
    Tool() {
        setenv("SOURCES", TESSIT_TOOL_SOURCES, 1);
        std::filesystem::create_directory(folder);
        std::filesystem::current_path(folder);
    }
    ~Tool() override {
        std::filesystem::current_path(folder.parent_path());
        std::filesystem::remove_all(folder);
    }

    // Without what is told of an error in lines of its own: its line, path, second place and hint.
    static std::string errorsAlone(const std::string& text) {
        std::string rest;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            const bool isMore = line.starts_with("  ") || line.starts_with("path: ") || line.starts_with("hint: ");
            const bool isPlace =
                line.find(": note: ") != std::string::npos && line.find("\" was not read: ") == std::string::npos;
            if (!isMore && !isPlace) rest += line + '\n';
        }
        return rest;
    }

    static void expect(const std::string& command, std::string_view input, const std::string& output,
                       const std::string& errors, int status) {
        SCOPED_TRACE(command + " with " + std::string(input));
        EXPECT_EQ(run(command, input), status);
        EXPECT_EQ(errorsAlone(contentOf("output")), output);
        EXPECT_EQ(errorsAlone(contentOf("errors")), errors);
    }

    // Runs a shell command in which `tessit` is the tool; `input` is its standard input. Returns its status.
    static int run(const std::string& command, std::string_view input) {
        writeFile("input", input);
        const std::string line = "tessit() { '" TESSIT_TOOL "' \"$@\"; }; { " + command + "; } <input >output 2>errors";
        const int result = std::system(line.c_str());
        return WIFEXITED(result) ? WEXITSTATUS(result) : -1;
    }

    // The same with all three of its files a terminal of its own, which `output` shows.
    static int runOnATerminal(const std::string& command) {
        writeFile("run", "tessit() { '" TESSIT_TOOL "' \"$@\"; }; " + command);
        return run("script -qfec 'bash -c \"$(cat run)\"' /dev/null", "");
    }

private:
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("tessit-tool-" + std::to_string(getpid()));
};

const std::string Utf8 = "document encoding=\"UTF-8\" version=\"\" standalone=\"\"\n";
const std::string See = " (see tessit --help)\n";
const std::string GoodLines = Utf8 + "empty good {}\n";

const struct {
    std::string document;
    std::string lines;   // behind the first
    std::string errors;  // behind the name of the file; without any, the document is read
} Documents[] = {
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
    {"<a x='\u061B\u061C\u061D'>\u200D\u200E\u200F\u2010 \u202A\u202E\u202F \u2065\u2066\u2069\u206A</a>",  // directions
     "start a {} x=\"\u061B\\xD8\\x9C\u061D\"\ntext \"\u200D\\xE2\\x80\\x8E\\xE2\\x80\\x8F\u2010 "
     "\\xE2\\x80\\xAA\\xE2\\x80\\xAE\u202F \u2065\\xE2\\x81\\xA6\\xE2\\x81\\xA9\u206A\"\nend a {}\n",
     ""},
    {"<a x='&amp;&unknown;'>&amp;</a>", "start a {} x=\"&&unknown;\"\ntext \"&\"\nend a {}\n", ""},
    {"<a>\n <b></a>", "start a {}\ntext \"\\n \"\nstart b {}\n", ":2:9: error: Unmatched start tag for a\n"},
    {"<a xmlns='u'></a><p:a/></p:a>", "start a {u} xmlns=\"u\"\nend a {u}\nempty p:a {}\n",
     ":1:30: error: Unmatched start tag for p:a\n"},
    {"<r xmlns:p='u' xmlns:q='v'><p:a></q:a></r>", "start r {} xmlns:p=\"u\" xmlns:q=\"v\"\nstart p:a {u}\n",
     ":1:39: error: Unmatched start tag for q:a\n"},
    {"<a><p:b>", "start a {}\nstart p:b {}\n", ":1:9: error: Missing end tag for p:b\n"},
};

// A terminal of its own, and a document that goes on until it is said how far it is, or that many times: one long text.
TEST_F(Tool, ShowsOnATerminalHowFarItIs) {
    const auto show = [&](const std::string& command, const std::string& times, int status = 1) {
        const std::string more = "grep -q MB output && break; printf 'x%.0s' {1..300}; sleep 0.05;";
        const std::string document = "for i in {1.." + times + "}; do " + more + " done";
        EXPECT_EQ(runOnATerminal("{ echo '<a>'; " + document + "; echo '</a></a>'; } | " + command), status);
        return contentOf("output");
    };
    writeFile("good", "<good/>");
    for (const auto& [command, status] : {std::pair("tessit check -", 1), std::pair("tessit check --record -", 1),
                                          std::pair("tessit same - good", 2)}) {
        SCOPED_TRACE(command);
        const std::string shown = show(command, "600", status);
        EXPECT_EQ(shown.find("\r<stdin>: 0 MB\x1B[K"), 0u);
        EXPECT_NE(shown.find("\r\x1B[K<stdin>:2:"), std::string::npos);
    }
    EXPECT_EQ(show("tessit check - --json", "30").find("MB"), std::string::npos);
}

// Where progress can be shown, inputs are read in another way. One is cut short while the tool waits for its output to
// be taken.
TEST_F(Tool, TellsOnATerminalWhatIsWrongWithAnInput) {
    writeFile("tags", "<a>" + repeat("<b/>", 100'000) + "</a>");
    runOnATerminal(
        "tessit check none .; tessit check - <&-; tessit check - <.; mkfifo pipe;"
        "{ read -r; truncate -s -1 tags; cat; } <pipe >taken & tessit events tags >pipe");
    const std::string shown = contentOf("output");
    for (const char* const line : {"none: error: No such file or directory\r\n", ".: error: Is a directory\r\n",
                                   "<stdin>: error: Bad file descriptor\r\n", "<stdin>: error: Is a directory\r\n",
                                   "tags: error: it became shorter while it was read\r\n"})
        EXPECT_NE(shown.find(line), std::string::npos) << line << "in\n" << shown;
}

TEST_F(Tool, PrintsOneLineForEachNodeAndTellsWhereADocumentIsRefused) {
    for (const auto& [document, lines, errors] : Documents)
        expect("tessit events", document, Utf8 + lines, errors.empty() ? "" : "<stdin>" + errors, !errors.empty());
}

const struct {
    std::string document;
    std::string lines;   // behind the first
    std::string errors;  // behind the name of the file
} ConformingDocuments[] = {
    {"<!DOCTYPE a PUBLIC 'p  q' 's\"' []><!--x\"\n--><?t  d\"?><?u?><a>1<!--2-->3<![CDATA[<]]></a><!---->",
     "doctype a \"p q\" \"s\\\"\"\ncomment \"x\\\"\\n\"\ninstruction t \"d\\\"\"\ninstruction u \"\"\nstart a {}\n"
     "text \"1\"\ncomment \"2\"\ntext \"3<\"\nend a {}\ncomment \"\"\n",
     ""},
    {"<!DOCTYPE a SYSTEM 's'><a b='&c;'>&d;<e/></a>",
     "doctype a \"\" \"s\"\nstart a {} b=\"&c;\"\nreference d\nempty e {}\nend a {}\n", ""},
    {"<!DOCTYPE a><a/><?t?><b/>", "doctype a \"\" \"\"\nempty a {}\ninstruction t \"\"\n",
     ":1:22: error: a second root element\n"},
};

TEST_F(Tool, PrintsMoreNodesOfConformingDocuments) {
    for (const auto& [document, lines, errors] : ConformingDocuments)
        expect("tessit events --conforming", document, Utf8 + lines, errors.empty() ? "" : "<stdin>" + errors,
               !errors.empty());
}

constexpr const char* Unread = "reference e";
constexpr const char* LeadsOut = "it is not in the document's folder";

const struct {
    const char* systemId;
    const char* node;
    std::string reason = {};
} ExternalEntities[] = {
    {"text", "text \"TEXT\""},
    {"./deeper/../text", "text \"TEXT\""},
    {"a%20b", "text \"SPACE\""},
    {"linkIn", "text \"TEXT\""},
    {"none", Unread, "No such file or directory"},
    {"text%00", Unread, "No such file or directory"},
    {"deeper", Unread, "it is not a file"},
    {"pipe", Unread, "it is not a file"},
    {"../outside", Unread, LeadsOut},
    {"../inside/text", Unread, LeadsOut},  // out and in again: that would tell what the folder is called
    {"deeper/%2e%2E%2f../outside", Unread, LeadsOut},
    {"linkOut", Unread, LeadsOut},
    {"folderOut/outside", Unread, LeadsOut},
    {"%2Fdev/null", Unread, LeadsOut},
    {"file:text", Unread, LeadsOut},
};

TEST_F(Tool, ReadsExternalEntitiesBesideTheDocumentAlone) {
    const std::string lines = Utf8 + "doctype a \"\" \"\"\nstart a {}\n";
    std::system(
        "mkdir -p inside/deeper; mkfifo inside/pipe; printf OUT >outside; printf TEXT >inside/text;"
        "printf SPACE >'inside/a b'; ln -s text inside/linkIn; ln -s ../outside inside/linkOut;"
        "ln -s .. inside/folderOut");
    for (const auto& [systemId, node, reason] : ExternalEntities) {
        std::string document = "<!DOCTYPE a [<!ENTITY e SYSTEM '", note;
        document.append(systemId).append("'>]><a>&e;</a>");
        if (!reason.empty())
            note.append("inside/doc:1:25: note: \"").append(systemId).append("\" was not read: ") += reason + '\n';
        writeFile("inside/doc", document);
        expect("tessit events --conforming --external inside/doc", "", lines + node + "\nend a {}\n", note, 0);
    }
}

constexpr std::string_view Wide = "\u65E5";
const std::string Long = repeat(Wide, 100);

const struct {
    const char* command;
    std::string document;
    std::string errors;
} ShownErrors[] = {
    {"tessit check -", "<a>\n\t<b x='\u65E5\u672Ce\u0301'>\t<c>\n</a>",
     "<stdin>:3:3: error: an end tag that does not close the innermost element: </a> closes <c>, which was opened at "
     "2:20\n"
     "  3 | </a>\n"
     "    |   ^\n"
     "path: /a/b/c\n"
     "<stdin>:2:20: note: it was opened here\n"
     "  2 | \t<b x='\u65E5\u672Ce\u0301'>\t<c>\n"
     "    | \t             \t^\n"},
    {"tessit events - >nodes", "<a>\u202E\x1B\xFF</b>",
     "<stdin>:1:13: error: Unmatched start tag for b\n"
     "  1 | <a>\\xE2\\x80\\xAE\\x1B\\xFF</b>\n"
     "    |                            ^\n"
     "path: /a\n"
     "<stdin>:1:1: note: this element is open\n"
     "  1 | <a>\\xE2\\x80\\xAE\\x1B\\xFF</b>\n"
     "    | ^\n"},
    {"tessit check -", "order.xml",
     "<stdin>:1:1: error: text outside the root element\n"
     "  1 | order.xml\n"
     "    | ^\n"
     "hint: is this a file's name? A reader takes the document itself\n"},
    {"tessit check -", "<a" + Long + " 1" + Long + "/>",  // as wide as a terminal, the place in the middle
     "<stdin>:1:304: error: a name was expected, found '1'\n"
     "  1 | ..." +
         repeat(Wide, 17) + " 1" + repeat(Wide, 18) +
         "...\n"
         "    |    " +
         repeat(" ", 35) + "^\n"},
    {"tessit check -", "<a" + Long + " 1>",  // and more of one side where there is less of the other
     "<stdin>:1:304: error: a name was expected, found '1'\n"
     "  1 | ..." +
         repeat(Wide, 34) +
         " 1>\n"
         "    |    " +
         repeat(" ", 69) + "^\n"},
    {"cd nested && tessit check --external doc", "",
     "types/entity:2:2: error: markup that begins and ends in different entities\n"
     "  2 | <\n"
     "    |  ^\n"
     "path: /a\n"
     "doc:2:4: note: the entity was referred to here\n"
     "  2 | <a>&e;</a>\n"
     "    |    ^\n"},
    {"tessit check --json --external - away", "\xEF\xBB\xBF<a>\n\u00E4<b \u202E></a>",
     R"({"severity":"error","file":"<stdin>","line":2,"column":6,"characterColumn":5,"offset":12,"inputOffset":12,)"
     R"("rule":"name","limit":null,"message":"a name was expected, found '\u202E'","path":"/a","note":null,"hint":null})"
     "\n"
     R"({"severity":"note","file":"away","line":1,"column":13,"characterColumn":13,"offset":12,"inputOffset":12,)"
     R"("rule":null,"limit":null,"message":"\"http://away\" was not read: it is not in the document's folder","path":null,)"
     R"("note":null,"hint":null})"
     "\n"},
    {"bad=$(printf '\\377\\n\"\\\\\\001\\303\\244'); cat >\"$bad\"; tessit same --json none \"$bad\"", "<a></b>",
     R"({"severity":"error","file":"none","line":null,"column":null,"characterColumn":null,"offset":null,)"
     R"("inputOffset":null,"rule":null,"limit":null,"message":"No such file or directory","path":null,"note":null,"hint":null})"
     "\n"
     "{\"severity\":\"error\",\"file\":\"\uFFFD\\n\\\"\\\\\\u0001\u00E4\","
     R"("line":1,"column":8,"characterColumn":8,"offset":7,"inputOffset":7,"rule":null,"limit":null,)"
     R"("message":"Unmatched start tag for b","path":"/a","note":{"message":"this element is open",)"
     "\"file\":\"\uFFFD\\n\\\"\\\\\\u0001\u00E4\",\"line\":1,\"column\":1},\"hint\":null}\n"},
    {"tessit check --json -", "order.xml",
     R"({"severity":"error","file":"<stdin>","line":1,"column":1,"characterColumn":1,"offset":0,"inputOffset":0,)"
     R"("rule":"text-outside-root","limit":null,"message":"text outside the root element","path":null,"note":null,)"
     R"("hint":"is this a file's name? A reader takes the document itself"})"
     "\n"},
    {"tessit check --json --quiet -", "<a>", ""},
    {"tessit check --json --limits strangers,depth=1 -", "<a><b/></a>",
     R"({"severity":"error","file":"<stdin>","line":1,"column":4,"characterColumn":4,"offset":3,"inputOffset":3,)"
     R"("rule":null,"limit":"depth","message":"more than 1 elements within each other","path":"/a","note":null,"hint":null})"
     "\n"},
    {"tessit check --record -", "<a b=1>\x01&x;</a>",
     "<stdin>:1:6: error: an attribute, '>' or '/>' was expected, found '1'\n  1 | <a b=1>\\x01&x;</a>\n    |      ^\n"
     "<stdin>:1:7: error: invalid character in attribute definition\n  1 | <a b=1>\\x01&x;</a>\n    |       ^\n"
     "<stdin>:1:8: error: a character that XML does not allow: U+0001\n  1 | <a b=1>\\x01&x;</a>\n    |        ^\n"
     "path: /a\n"
     "<stdin>:1:9: error: an entity that is not declared: x\n  1 | <a b=1>\\x01&x;</a>\n    |            ^\n"
     "path: /a\n"},
};

TEST_F(Tool, ShowsTheLineOfAnError) {
    writeLinkedFiles();
    for (const auto& [command, document, errors] : ShownErrors) {
        run(command, document);
        EXPECT_EQ(contentOf("errors"), errors);
    }
}

const struct {
    const char* command;
    std::string output = {}, errors = {};
    int status = 0;
} Commands[] = {
    {"tessit events latin", "document encoding=\"ISO-8859-1\" version=\"1.0\" standalone=\"no\"\nempty \u00E9 {}\n"},
    {"tessit events --raw-references references", Utf8 + "start a {} x=\"&amp;&#65;\"\ntext \"&\"\nend a {}\n"},
    {"tessit events unknown", "",
     "unknown:1:36: error: Couldn't transcode from input encoding '\\x1B[2J': it is not the name of an encoding\n", 1},
    {"tessit events good -", "good: " + Utf8 + "good: empty good {}\n<stdin>: " + Utf8 + "<stdin>: empty input {}\n"},
    {"cp good - && tessit events ./-; cp good ./--help && tessit events -- --help", GoodLines + GoodLines},
    {"cp good ++ && tessit events ++; cp good '[]' && tessit events '[]'", GoodLines + GoodLines},
    {"tessit same ++ '[a,b]'", "", "./[a,b]: error: No such file or directory\n", 2},
    {"cp good 'a\nb' && tessit events 'a\nb' 'no\nne' 2>&1",
     "a\\nb: " + Utf8 + "a\\nb: empty good {}\nno\\nne: error: No such file or directory\n", "", 2},
    {"tessit events bad . bad good 2>&1",  // in the order in which it happened, with the worst status
     "bad: " + Utf8 + "bad: start bad {}\nbad:1:6: error: Missing end tag for bad\n.: error: Is a directory\nbad: " +
         Utf8 + "bad: start bad {}\nbad:1:6: error: Missing end tag for bad\ngood: " + Utf8 + "good: empty good {}\n",
     "", 2},
    {"file=/dev/shm/tessit-$$; truncate -s 9223372036854775807 $file && ln -s $file huge &&"
     "tessit events huge good 2>&1 | cut -d: -f1; rm $file",
     "huge\ngood\ngood\n"},
    {"tessit events <&-", "", "<stdin>: error: Bad file descriptor\n", 2},
    {"tessit --version", "tessit " TESSIT_VERSION_STRING "\n"},
    {"tessit", "", "tessit: error: A subcommand is required" + See, 2},
    {"tessit nothing", "", "tessit: error: The following argument was not expected: nothing" + See, 2},
    {"tessit events good >/dev/full", "", "standard output: error: No space left on device\n", 2},
    {"tessit events good >&-", "", "standard output: error: Bad file descriptor\n", 2},
    {"tessit events bad 2>&-", Utf8 + "start bad {}\n", "", 1},
    {"tessit --help | grep -o 'Exit status'; tessit same --help | grep -o 'they differ'", "Exit status\nthey differ\n"},

    {"tessit check good latin input - && tessit check good && cd / && tessit check \"$OLDPWD/good\""},
    {"tessit check bad none good - bad 2>&1 <bad",
     "bad:1:6: error: the document ends before it is complete\nnone: error: No such file or directory\n"
     "<stdin>:1:6: error: the document ends before it is complete\n"
     "bad:1:6: error: the document ends before it is complete\n",
     "", 2},
    {"tessit check good bad 2>/dev/null", "", "", 1},
    {"tessit check --quiet bad good", "", "", 1},
    {"tessit check --quiet none --external away", "", "", 2},
    {"tessit check", "", "tessit: error: FILE is required" + See, 2},
    {"tessit check --record good bad; (echo '<a>'; yes '&x;' | head -1200) | tessit check --record - 2>&1 | grep "
     "error: | "
     "tail -n 2",
     "<stdin>:1001:1: error: an entity that is not declared: x\n<stdin>: error: and 202 more\n",
     "bad:1:6: error: the document ends before it is complete\n"},
    {"tessit events --limits depth=0 good; tessit same --limits name=3 good like", Utf8,
     "good:1:1: error: more than 0 elements within each other\ngood:1:2: error: more than 3 bytes in a name\n"
     "like:2:2: error: more than 3 bytes in a name\n",
     2},
    {"tessit check --limits none=1 good; tessit check --limits depth= good;"
     "tessit check --limits strangers,depth=18446744073709551616 good",
     "",
     "tessit: error: --limits: none=1: there is no such limit" + See +
         "tessit: error: --limits: depth=: a number below 2^64 was expected behind '='" + See +
         "tessit: error: --limits: depth=18446744073709551616: a number below 2^64 was expected behind '='" + See,
     2},
    {"tessit events --external good", "", "tessit: error: --external requires --conforming" + See, 2},
    // The base is where the declaration stands; faults are told of the entity that has them, notes do not count.
    {"tessit check nested/doc && tessit check --external away && tessit check --external - <nested/doc", "",
     "away:1:13: note: \"http://away\" was not read: it is not in the document's folder\n"
     "<stdin>:1:13: note: \"types/dtd\" was not read: nothing stands beside standard input\n"},
    {R"(echo "<!DOCTYPE a SYSTEM '$PWD/good'><a/>" >absolute; tessit check --external absolute 2>&1 | cut -d'"' -f3)",
     " was not read: it is not in the document's folder\n"},
    {"cd nested && tessit check --external doc", "",
     "types/entity:2:2: error: markup that begins and ends in different entities\n", 1},

    {"tessit same good like && tessit same good good && tessit same - ./input"},  // only standard input is read once
    {"tessit same good -", "good and <stdin> differ\n", "", 1},
    {"cp good 'a\nb' && tessit same 'a\nb' input", "a\\nb and input differ\n", "", 1},
    {"tessit same bad none", "", "bad:1:6: error: Missing end tag for bad\nnone: error: No such file or directory\n",
     2},
    {"tessit same - -", "", "<stdin>: error: It can be read only once\n", 2},
    {"tessit same good", "", "tessit: error: B is required" + See, 2},

    // More than a buffer or a pipe holds, in many nodes and in one; a reader that has seen enough ends it in silence,
    // whether the signal for that is ignored or not.
    {"tessit events large >whole && cat large | tessit events | cmp - whole && grep -c ^text whole && "
     "tail -n 4 whole | cut -c1-12,300006-",
     "20001\ntext \"19999\"\nend i {}\ntext \"xxxxxxx\"\nend r {}\n"},
    {"{ tessit events large; echo $? >&2; } | head -n 1", Utf8, "0\n"},
    {"trap '' PIPE; { tessit events large; echo $? >&2; } | head -n 1", Utf8, "0\n"},

    {"bash completing ''; bash completing events -; bash completing same --h; bash completing events good li",
     "check events same --help --version\n--conforming --external --raw-references --limits --json "
     "--help\n--help\nlike\n"},
    // The manual and the completions have each subcommand and option that the tool's help names.
    {R"(tessit --help >help
        for command in $(grep -oE '^  [a-z]+' help); do tessit $command --help >>help; done
        for name in $(grep -oE -e '--[a-z-]+' -e '^  [a-z]+' help | LC_ALL=C sort -u); do
            for file in "$SOURCES"/tessit.1 "$SOURCES"/completions/*; do
                tr -d '\\' <"$file" | grep -qe "${name#--}" || echo "$file lacks $name"
            done
            echo $name
        done)",
     "check\nevents\nsame\n--conforming\n--external\n--help\n--json\n--limits\n--quiet\n--raw-references\n--record\n--"
     "version\n"},
};

TEST_F(Tool, AnswersEachCommandLine) {
    writeFile("good", "<good/>");
    writeFile("like", "<?xml version='1.0'?>\n<good>\n</good>");
    writeFile("bad", "<bad>");
    writeFile("references", "<a x='&amp;&#65;'>&amp;</a>");
    writeLinkedFiles();
    writeFile("latin", "<?xml version='1.0' encoding='ISO-8859-1' standalone='no'?><\xE9/>");
    writeFile("unknown", "<?xml version='1.0' encoding='\x1B[2J'?><a/>");
    std::string large = "<r>";
    for (int i = 0; i < 20'000; ++i)
        large += "<i>" + std::to_string(i) + "</i>";
    writeFile("large", large + std::string(300'000, 'x') + "</r>");
    writeFile("completing",
              ". $SOURCES/completions/tessit.bash; COMP_WORDS=(tessit \"$@\") COMP_CWORD=$#\n"
              "_tessit tessit \"${@: -1}\"; echo \"${COMPREPLY[@]}\"");
    for (const auto& [command, output, errors, status] : Commands)
        expect(command, "<input/>", output, errors, status);
}

}  // namespace
