// Where documents come from, and what happens when they do not.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>
#include <streambuf>
#include <sys/stat.h>
#include <thread>

#include <tessit/errors/xml_limits.h>
#include <tessit/reader/xml_record.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

namespace fs = std::filesystem;

class Folder {
public:
    Folder() : path(fs::temp_directory_path() / ("tessit-input-" + std::to_string(::getpid()))) {
        fs::create_directory(path);
    }
    ~Folder() { fs::remove_all(path); }

    fs::path write(const char* name, std::string_view text) const {
        std::ofstream(path / name, std::ios::binary) << text;
        return path / name;
    }

    const fs::path path;
};

std::string readAll(QeXmlReader& reader) {
    std::string nodes;
    while (!reader.eof()) {
        reader.readNextNode();
        nodes += describeNode(reader) + " ";
    }
    return nodes;
}

// What is read, or what is wrong with the input.
template <typename MakeInput>
std::string read(const MakeInput& makeInput, QeXmlRules rules = QeXmlRules::Lenient) {
    try {
        QeXmlReader reader(makeInput(), {.rules = rules});
        return readAll(reader);
    } catch (const QeXmlInputError& error) {
        EXPECT_STREQ(error.what(), error.why());
        return error.why();
    }
}

const std::string Text = "<a>" + repeat("<b c='d'>e</b>\n", 10'000) + "</a>";

// A stream's buffer that gives some bytes, and then fails.
class FailingBuffer : public std::streambuf {
public:
    explicit FailingBuffer(std::string_view bytes) : text(bytes) {
        setg(text.data(), text.data(), text.data() + text.size());
    }

protected:
    int_type underflow() override {
        throw std::ios_base::failure("broken", std::make_error_code(std::errc::timed_out));
    }

private:
    std::string text;
};

// One that gives some bytes, and then says by its state alone that it fails.
class SilentlyFailingBuffer : public std::stringbuf {
public:
    SilentlyFailingBuffer(const char* bytes, std::istream& stream) : std::stringbuf(bytes), in(stream) {
        in.rdbuf(this);
    }

protected:
    int_type underflow() override {
        const int_type next = std::stringbuf::underflow();
        if (traits_type::eq_int_type(next, traits_type::eof())) in.setstate(std::ios::badbit);
        return next;
    }

private:
    std::istream& in;
};

}  // namespace

TEST(Input, IsReadFromEverywhere) {
    const Folder folder;
    const fs::path file = folder.write("a.xml", Text), pipe = folder.path / "pipe";
    const std::string nodes = read([] { return QeXmlInput::copy(QeCString(Text)); });
    const std::span<const unsigned char> bytes(reinterpret_cast<const unsigned char*>(Text.data()), Text.size());
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
        EXPECT_EQ(read([&] { return QeXmlInput::bytes(bytes); }, rules), nodes);
        EXPECT_EQ(read([&] { return QeXmlInput::file(file); }, rules), nodes);
        EXPECT_EQ(read([&] { return QeXmlInput::mapped(file); }, rules), nodes);
        std::ifstream in(file, std::ios::binary);
        EXPECT_EQ(read([&] { return QeXmlInput::stream(in); }, rules), nodes);
        ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
        std::thread writer([&] { folder.write("pipe", Text); });
        EXPECT_EQ(read([&] { return QeXmlInput::file(pipe); }, rules), nodes);
        writer.join();
        fs::remove(pipe);
    }
}

// The system has files of its own that say a size, and have fewer bytes.
TEST(Input, TakesAnEndWhereNothingWasCut) {
    constexpr const char* SaysAPage = "/sys/devices/system/cpu/online";
    if (!fs::exists(SaysAPage)) GTEST_SKIP() << "there is no " << SaysAPage;
    QeXmlRecord record;  // for which the document is read to its end at once
    EXPECT_THROW(QeXmlReader(QeXmlInput::file(SaysAPage), {.record = &record}), QeXmlParseError);
}

TEST(Input, SaysWhatCannotBeRead) {
    const Folder folder;
    const std::string missing = folder.path / "none.xml", directory = folder.path;
    EXPECT_EQ(read([&] { return QeXmlInput::file(missing); }), missing + ": No such file or directory");
    EXPECT_EQ(read([&] { return QeXmlInput::file(directory); }), directory + ": Is a directory");
    EXPECT_EQ(read([&] { return QeXmlInput::mapped(directory); }), directory + ": Is a directory");
    EXPECT_EQ(read([&] { return QeXmlInput::mapped("/dev/zero"); }), "/dev/zero: No such device");
    std::ifstream in(missing);
    EXPECT_EQ(read([&] { return QeXmlInput::stream(in); }), "the stream: it cannot be read");
    std::istringstream broken("<a/>");
    broken.setstate(std::ios::badbit | std::ios::eofbit);
    EXPECT_EQ(read([&] { return QeXmlInput::stream(broken); }), "the stream: it cannot be read");
    std::istringstream exhausted("<a/>");
    exhausted.setstate(std::ios::failbit | std::ios::eofbit);
    EXPECT_EQ(read([&] { return QeXmlInput::stream(exhausted); }), "the stream: it cannot be read");
    std::istream silent(nullptr);
    SilentlyFailingBuffer buffer("<a>x</a>", silent);
    EXPECT_EQ(read([&] { return QeXmlInput::stream(silent); }), "the stream: it cannot be read");
    QeXmlInput taken = QeXmlInput::copy("<a/>");
    EXPECT_EQ(read([&] { return std::move(taken); }), "/a ");
    EXPECT_EQ(read([&] { return std::move(taken); }), "the input: it was handed on before");
    EXPECT_EQ(read([&] { return QeXmlInput::callback([](std::span<char> room) { return room.size() + 1; }); }),
              "the callback: it says that it gave more bytes than there was room for");
    const std::string shorter = folder.write("shorter.xml", Text);
    EXPECT_EQ(read([&] {
                  QeXmlInput input = QeXmlInput::file(shorter);
                  fs::resize_file(shorter, 100'000);
                  return input;
              }),
              shorter + ": it became shorter while it was read");
}

// A window that has read on, and then fails, has text that the reader does not know of.
TEST(Input, ShowsNothingBehindAFault) {
    const std::string_view pieces[] = {"<r><a/>", "<b/><c>"};
    std::size_t next = 0;
    const auto fill = [&](std::span<char> room) {
        std::string piece(pieces[std::min<std::size_t>(next, 1)]);
        if (next++ != 0) piece += std::string(200, 'x');
        return piece.copy(room.data(), room.size());
    };
    QeXmlReader reader(QeXmlInput::callback(fill), {.limits = {.document = 100}});
    reader.readNextNode();
    reader.readNextNode();
    EXPECT_THROW(reader.readNextNode(), QeXmlLimitError);
    reader.setExpandAttributeReference(false);
    EXPECT_THROW(reader.readNextNode(), QeXmlLimitError);
}

// Nor is it asked of a reader whose document has not begun, or whose last conversion failed, what is whole there.
TEST(Input, StaysSafeBehindAResetThatFailed) {
    const Document small("<r/>");
    QeXmlReader reader(small.inPieces(1, 1));
    EXPECT_ANY_THROW(
        reader.reset(QeXmlInput::callback([](auto) -> std::size_t { throw std::runtime_error("fails"); })));
    reader.setExpandAttributeReference(false);
    EXPECT_ANY_THROW(reader.readNextNode());
    std::string declarations;
    for (bool fails = false; !fails;) {
        for (const char* const encoding : {"ISO-8859-1", "ISO-8859-2"})
            declarations += std::string("<?xml version='1.0' encoding='") + encoding + "'?>";
        const Document document(declarations + "<a>" + std::string(20'000, 'x') + "</a>");
        try {
            reader.reset(document.inPieces(30'000, 1));
        } catch (const QeXmlParseError&) {
            fails = true;
        }
    }
    EXPECT_ANY_THROW(reader.readNextNode());
}

// Whatever was read before stays read; each later call fails in the same way.
TEST(Input, FailsWhereverItIsRead) {
    constexpr std::string_view Xml = "<?xml version='1.0'?><a>b<c/><!--d--></a> ";
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming})
        for (std::size_t length = 0; length <= Xml.size(); ++length) {
            FailingBuffer buffer(Xml.substr(0, length));
            std::istream in(&buffer);
            std::string nodes;
            try {
                QeXmlReader reader(QeXmlInput::stream(in), {.rules = rules});
                const auto readNext = [&] {
                    if (reader.eof()) return false;
                    reader.readNextNode();
                    nodes += describeNode(reader);
                    return true;
                };
                EXPECT_THROW(while (readNext()), QeXmlInputError) << length;
                EXPECT_THROW(readNext(), QeXmlInputError) << length;
            } catch (const QeXmlInputError& error) {
                EXPECT_EQ(error.code(), std::errc::timed_out);
            }
            EXPECT_EQ(nodes, std::string_view("+a=b/c-a").substr(0, nodes.size()));
        }
}

TEST(Input, RefusesCallbacksThatUseTheirReader) {
    const Document document("<a><b/></a>");
    for (const bool resets : {false, true})
        for (const std::size_t usesIt : {0u, 1u}) {
            QeXmlReader reader(document.inPieces(0, 3));
            std::size_t calls = 0;
            EXPECT_THROW(
                {
                    readAll(reader);
                    reader.reset(QeXmlInput::callback([&, text = std::string("<a>x")](std::span<char> room) {
                        if (calls++ == usesIt) resets ? reader.reset(QeXmlInput::copy("<b/>")) : reader.readNextNode();
                        return text.copy(room.data(), room.size());
                    }));
                    readAll(reader);
                },
                QeXmlInputError);
        }
}

// Even where more is there as a whole than was asked for, and nothing comes of it for who waits.
TEST(Input, GoesOnWhereACallbackWasRefused) {
    constexpr std::string_view Front = "<!DOCTYPE r [<!ENTITY e '<i/>y'>]><r>&e;<!--c-->&e;<!--d-->", Rest = "<b/></r>";
    using Call = void (*)(QeXmlReader & reader);
    const Call calls[] = {[](QeXmlReader& reader) { reader.readNextNode(); },
                          [](QeXmlReader& reader) { reader.isElementNext("b"); },
                          [](QeXmlReader& reader) { reader.readElementStart("i"); },
                          [](QeXmlReader& reader) { reader.readElementEnd("i"); },
                          [](QeXmlReader& reader) { reader.readElement("i"); },
                          [](QeXmlReader& reader) { reader.readElementStart(QeXmlName("other")); },
                          [](QeXmlReader& reader) { reader.readElementStart(); },
                          [](QeXmlReader& reader) { reader.readElementValue(); }};
    const auto demand = [](QeXmlReader& reader) {
        reader.readElementStart("r");
        std::string read(reader.readElement("i"));
        reader.readElement("i");
        return read + reader.readElement("b").data();
    };
    for (const Call call : calls)
        for (const bool demands : {false, true}) {
            const auto read = [&](QeXmlReader& reader) { return demands ? demand(reader) : readAll(reader); };
            const QeXmlReaderOptions options{.rules = QeXmlRules::Conforming,
                                             .nodes = demands ? QeXmlNodes::TagsAndText : QeXmlNodes::All};
            QeXmlReader* inside = nullptr;
            std::size_t given = 0;
            QeXmlReader reader(QeXmlInput::callback([&](std::span<char> room) {
                                   if (given == 1) {
                                       EXPECT_THROW(call(*inside), QeXmlInputError);
                                       inside->eof(), inside->setExpandAttributeReference(false);
                                   }
                                   const std::string_view part[] = {Front, Rest, {}};
                                   return part[given++].copy(room.data(), room.size());
                               }),
                               options);
            inside = &reader;
            QeXmlReader inPlace(QeXmlInput::copy(QeCString(std::string(Front) + std::string(Rest))), options);
            EXPECT_EQ(read(reader), read(inPlace));
        }
}

// A value that holds no reference ends where one with a reference would go on.
TEST(Input, LetsACallbackSetWhatValuesAre) {
    const std::vector<std::string> parts{"<r>t", "<a x='&q'/>", "<b y=';'/></r>"};
    QeXmlReader* inside = nullptr;
    std::size_t calls = 0;
    QeXmlReader reader(QeXmlInput::callback([&](std::span<char> room) {
        if (calls == 1) inside->setExpandAttributeReference(false);
        return parts.at(calls++).copy(room.data(), room.size());
    }));
    inside = &reader;
    reader.readElementStart("r");
    EXPECT_EQ(reader.readElementStart("a").size(), 1u);
    EXPECT_EQ(calls, 2u);
}

// Behind the root, `eof` throws nothing: what it was refused is no fault of the document.
TEST(Input, GoesOnWhereACallbackAsksForTheEnd) {
    QeXmlReader* inside = nullptr;
    std::size_t given = 0;
    QeXmlReader reader(QeXmlInput::callback([&](std::span<char> room) {
                           if (inside != nullptr) inside->eof();
                           const std::string_view part[] = {"<r/>", " ", "<!---->", {}};
                           return part[given++].copy(room.data(), room.size());
                       }),
                       {.rules = QeXmlRules::Conforming, .nodes = QeXmlNodes::All});
    inside = &reader;
    EXPECT_EQ(readAll(reader), "/r # ");
}

// Each node comes with the byte that makes it whole.
TEST(Input, DeliversWhatIsThere) {
    constexpr std::string_view Xml = "<a>x<b y='>'/>z</a><!--c-->";
    constexpr std::size_t Whole[] = {3, 6, 14, 17, 19};
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
        std::size_t given = 0;
        QeXmlReader reader(QeXmlInput::callback([&](std::span<char> room) {
                               if (given == Xml.size()) return std::size_t{0};
                               room[0] = Xml[given++];
                               return std::size_t{1};
                           }),
                           {.rules = rules});
        for (const std::size_t whole : Whole) {
            reader.readNextNode();
            EXPECT_EQ(given, std::max<std::size_t>(whole, 4)) << describeNode(reader);  // four tell the encoding
            EXPECT_EQ(reader.getBytesRead(), given);
        }
    }
}

// One part a call, and then the end.
QeXmlInput inParts(const std::vector<std::string>& parts, std::size_t& calls) {
    return QeXmlInput::callback([&](std::span<char> room) {
        const std::size_t call = calls++;
        return call < parts.size() ? parts[call].copy(room.data(), room.size()) : 0;
    });
}

// In bounded memory: there may be any number of blanks.
TEST(Input, SaysWhereTheLastNodeStandsBehindTheRoot) {
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming})
        for (const std::size_t length : {1u, 49'152u, 300'000u})
            for (const std::size_t blanks : {0u, 40'000u, 5'000'000u}) {
                const std::string text = "<r>" + std::string(length, 'x') + "</r>" + std::string(blanks, '\n');
                std::size_t given = 0, largestRoom = 0;
                QeXmlReader reader(QeXmlInput::callback([&](std::span<char> room) {
                                       largestRoom = std::max(largestRoom, room.size());
                                       const std::size_t count = text.copy(room.data(), room.size(), given);
                                       return given += count, count;
                                   }),
                                   {.rules = rules});
                while (!reader.eof())
                    reader.readNextNode();
                const QeXmlSpan span = reader.getLastSpan();
                EXPECT_EQ(span.begin.offset, 3 + length);
                EXPECT_EQ(span.end.offset, 7 + length);
                EXPECT_EQ(span.end.column, 8 + length);
                EXPECT_EQ(reader.getLastOffset(), 3 + length);
                EXPECT_LE(largestRoom, 1'000'000u);
            }
}

// A text is delivered when what ends it is there, wherever it began.
TEST(Input, DeliversTextsBehindEntities) {
    const std::string front = "<!DOCTYPE r [<!ENTITY e '<i/>y'><!ENTITY p 't'><!ENTITY x SYSTEM 's'>]><r>";
    for (const char* text : {"yt<!--c-->", "&e;t<!--c-->", "&e;<!--c-->", "&e;t<![CDATA[x]]>", "&e;<b", "&e;t</",
                             "t&e;", "p<!--", "&p;<!--", "&p;<?", "&p;<b", "&p;t<![CDATA[", "t&x;", "&p;t&x;"}) {
        std::size_t calls = 0;
        std::vector<std::string> parts{front};
        for (const char byte : std::string_view(text))
            parts.emplace_back(1, byte);
        parts.emplace_back("></b>");
        QeXmlReader reader(inParts(parts, calls), {.rules = QeXmlRules::Conforming, .nodes = QeXmlNodes::All});
        do
            reader.readNextNode();
        while (reader.getLastNodeType() != QeXmlReader::Content);
        EXPECT_LE(calls, parts.size() - 1) << text;
    }
}

// The same where much is there, most of which is read before it is known to be whole.
TEST(Input, DeliversAllOfMuch) {
    constexpr std::size_t Count = 1000;
    const std::vector<std::string> parts{"<r>x", std::string(4096, 'x') + repeat("<b/>", Count) + "<b"};
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming})
        for (const bool demands : {false, true}) {
            std::size_t calls = 0;
            QeXmlReader reader(inParts(parts, calls), {.rules = rules});
            reader.readElementStart("r");
            reader.readElementValue();
            for (std::size_t i = 0; i != Count; ++i) {
                demands ? (void)reader.readElementStart("b") : reader.readNextNode();
                if (demands) reader.readElementEnd("b");
            }
            EXPECT_EQ(calls, parts.size());
            EXPECT_THROW(reader.readNextNode(), QeXmlParseError);
        }
}

// Where the last look at what is whole ended in a comment, whose bytes have gone since.
TEST(Input, LooksAnewBehindWhatWasNotLookedAt) {
    const std::string comment(50'000, 'c'), value(4096, 'x');
    const std::vector<std::string> parts{"<r><!-", "-" + comment + "--><a y='" + value + "'/>", "<b", "/></r>"};
    std::size_t calls = 0;
    QeXmlReader reader(inParts(parts, calls));
    EXPECT_EQ(readAll(reader), "+r /a[y=" + value + "] /b -r ");
}

// What was cut by the end of what can be read counts for nothing, and each later call fails, too.
TEST(Input, LosesTheLastNodeWhereItFailsInTheNext) {
    const std::string text(4096, 'x'), spaces(200, ' ');
    const struct {
        std::string row;
        QeXmlReader::NodeType left;
    } cases[] = {{"<a b='" + spaces + "'/", QeXmlReader::ElementEnd},  // the one that the empty-element tag had
                 {"</r" + spaces, QeXmlReader::NoNode},
                 {spaces, QeXmlReader::NoNode},
                 {"<![CDATA[" + spaces, QeXmlReader::NoNode}};
    for (const auto& [row, left] : cases) {
        std::size_t calls = 0;
        const std::vector<std::string> parts{"<r>x", text + "<a/>" + row};
        QeXmlReader reader(QeXmlInput::callback([&](std::span<char> room) {
            if (calls == parts.size()) throw std::runtime_error("it fails");
            return parts[calls++].copy(room.data(), room.size());
        }));
        reader.readElementStart("r");
        reader.readElementValue();
        reader.readNextNode();
        reader.readElementEnd();
        EXPECT_THROW(reader.readNextNode(), std::runtime_error);
        EXPECT_EQ(reader.getLastNodeType(), left) << row;
        EXPECT_THROW(reader.isElementNext("a"), std::runtime_error) << row;
        EXPECT_THROW(reader.readElementEnd("a"), std::runtime_error) << row;
        EXPECT_EQ(reader.getOpenElements().size(), 1u) << row;
    }
}

// What `read` says of each node of an input, or of what is wrong with it.
template <typename Read>
std::string nodesOf(QeXmlInput&& input, QeXmlRules rules, const Read& read) {
    std::string nodes;
    try {
        QeXmlReader reader(std::move(input), {.rules = rules});
        while (!reader.eof())
            nodes += read(reader) + " ";
        nodes += reader.getVersion();
    } catch (const QeXmlParseError& error) {
        nodes += describe(error);
    }
    return nodes;
}

// What turned out not to be whole has left no trace when it is read again.
TEST(Input, ReadsAgainWhatIsCut) {
    const std::string name(160, 'n'), text(160, 't'), spaces(160, ' '), accents = repeat("\xC3\xA9", 80);
    const std::string front = "<r>", much = std::string(4092, 'x') + "<b/>";
    for (const std::string& row : {
             "<p:a xmlns:p='u' x='1' y='" + text + "' z='2'><p:b/></p:a><p:c/>",
             "<p:a xmlns:p='u'>1</p:a" + spaces + "><p:c/>",
             "<" + name + "><" + name + "/></" + name + ">",
             "<" + accents + ">x</" + accents + ">",
             text + "<!--" + text + "-->" + text + "<?p " + text + "?>" + text,
             "<!--" + text + "--><?p " + text + "?><!--" + text + "--><a/>",
             "<![CDATA[" + text + "]]>&lt;" + text + "&" + name + ";",
             "<a x='" + spaces + "&lt;" + text + "'/>",
             "<?xml version='1.0" + spaces + "' standalone='yes'?>" + text,
             "<a " + spaces + "/x>",
             "</r" + spaces + "x>",
             "</r></r></r><b" + spaces + ">x</b><c/>",
         }) {
        const Document document(front + much + row + "</r>\n");
        const auto readNode = [](QeXmlReader& reader) {
            reader.readNextNode();
            return describeNode(reader);
        };
        const auto readText = [&](QeXmlReader& reader) {
            const std::string content(std::string_view(reader.readElementValue()));
            return reader.eof() ? content : content + " " + readNode(reader);
        };
        const auto expectTheSame = [&](QeXmlRules rules, const auto& read) {
            const std::string whole = nodesOf(document.inPlace(), rules, read);
            for (std::size_t cut = 0; cut != row.size() + 5; ++cut)
                ASSERT_EQ(nodesOf(document.inPieces(front.size() + 1, much.size() + cut), rules, read), whole)
                    << row << " cut at " << cut;
        };
        expectTheSame(QeXmlRules::Lenient, readNode);
        expectTheSame(QeXmlRules::Lenient, readText);
        expectTheSame(QeXmlRules::Conforming, readNode);
    }
}

TEST(Input, IsFollowedByOthers) {
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
        QeXmlReader reader(QeXmlInput::copy("<!DOCTYPE a [<!ENTITY e 'x'>]><p:a xmlns:p='u'>"), {.rules = rules});
        reader.setMatchTags(true);
        reader.readNextNode();
        for (const bool isInPieces : {true, false, true, true}) {
            const Document document(isInPieces ? "<?xml version='1.0'?>\n<a>1<b/></a>" : "<a>1<b/></a>");
            reader.reset(isInPieces ? document.inPieces(0, 1) : QeXmlInput::copy("<a>1<b/></a>"));
            EXPECT_EQ(readAll(reader), "+a =1 /b -a ");
            EXPECT_EQ(std::string_view(reader.getVersion()), isInPieces ? "1.0" : "");
        }
        reader.reset(QeXmlInput::copy("<a>&e;</b>"));
        EXPECT_THROW(readAll(reader), QeXmlParseError);
        reader.reset(QeXmlInput::copy("<a/>"));
        EXPECT_EQ(readAll(reader), "/a ");
        EXPECT_EQ(reader.getInputSize(), 4u);
        // where the last one ended, the next one goes on
        for (const std::string_view xml : {"<a/>", "<b>x</b>"}) {
            const Document document(xml);
            reader.reset(document.inPieces(0, xml.size()));
            EXPECT_EQ(readAll(reader), xml == "<a/>" ? "/a " : "+b =x -b ");
        }
    }
}
