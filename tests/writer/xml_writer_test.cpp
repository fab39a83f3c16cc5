#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <support/documents.h>
#include <writer/logging_writer.h>
#include <writer/writing.h>

#include <tessit/writer/xml_writer.h>

using tessit::test::repeat;

namespace {

struct CallCase {
    const char *reason, *script;
    const char* calls;  // c: byte, b: bytes, s: string
};

constexpr CallCase Scripts[] = {
    {"a tag is one string", "+{u}p:e[xmlns:p=u,a=1]", "|s:<p:e|b: a=\"1\"|b: xmlns:p=\"u\"|s:>"},
    {"escaped text is one call", "=a<b&c>d", "|b:a&lt;b&amp;c&gt;d"},
    {"so is text with nothing to escape", "=\"it's\xC3\xA9\"", "|b:\"it's\xC3\xA9\""},
    {"and so is no text", "=", "|b:"},
    {"nothing is indented by 0", "| =x", "|c:\n|b:x"},
    {"indentation is bytes, and written once", ">2 =x | =y =z", "|b:x|c:\n|c: |c: |b:y|b:z"},
    {"it comes before text, attribute and tag alike", ">1 | ~a | /e[a=1] | -e",
     "|c:\n|c: |b: a=\"1\"|c:\n|c: |s:<e|b: a=\"1\"|s:/>|c:\n|c: |s:</e>"},
    {"a simple element inside another, and behind it", "+{u}p:e *{u}p:f=1 *{u}p:g /{u}p:h",
     "|s:<p:e|b: xmlns:p=\"u\"|s:>|s:<p:f|s:>|b:1|s:</p:f>|c:\n|s:<p:g|s:/>|c:\n|s:<p:h|s:/>"},
};

TEST(XmlWriter, MakesTheseSinkCalls) {
    for (const auto& [reason, script, calls] : Scripts) {
        LoggingWriter writer;
        run(writer, script);
        EXPECT_EQ(writer.calls, calls) << reason;
    }
    LoggingWriter writer;
    writer.write("<!--&-->", false);
    writer.writeAttribute("p:a", "<", true);
    writer.writeAttribute(nameOf("{u}p:a"), "\"&", false);  // declares nothing
    EXPECT_EQ(writer.calls, "|s:<!--&-->|b: p:a=\"&lt;\"|b: p:a=\"\"&\"");
    writer.calls.clear();
    writer.setCurrentIndent(1);
    writer.writeNewLine();
    writer.writeIndentChars();
    writer.writeIndentChars();
    writer.writeSimpleElement("q:e", "", "xsd:int", true);  // a name that looks qualified
    EXPECT_EQ(writer.calls,
              "|c:\n|c: |s:<q:e|b: xsi:type=\"xsd:int\"|b: xmlns:xsi=\"http://www.w3.org/2001/"
              "XMLSchema-instance\"|s:/>|c:\n");
}

TEST(XmlWriter, PassesBytesOnAsAStringWhereTheSinkTakesNone) {
    for (const std::size_t length : {std::size_t{0}, std::size_t{5}, std::size_t{1024}, std::size_t{1025}}) {
        StringsOnlyWriter writer;
        const QeCString text(std::string_view(std::string(length, 'x')));
        writer.write(text, true);
        writer.write("y", true);
        EXPECT_EQ(writer.calls, QeCString("|s:") + std::string(length, 'x') + "|s:y");
    }
}

TEST(XmlWriter, EscapesValuesButNotTwice) {
    constexpr struct {
        const char *value, *written;
    } Values[] = {
        {"a\"b'c<d>e&f", "a&quot;b&apos;c&lt;d&gt;e&amp;f"},
        {"&lt;&gt;&quot;&apos;&amp;", "&lt;&gt;&quot;&apos;&amp;"},
        {"x&amp", "x&amp;amp"},                                      // not complete
        {"&AMP;&nbsp;&#10;&", "&amp;AMP;&amp;nbsp;&amp;#10;&amp;"},  // not one of the five
        {"&amp;amp;", "&amp;amp;"},
        {"&&lt;", "&amp;&lt;"},
        {"\r\n\t", "\r\n\t"},
    };
    for (const auto& [value, written] : Values) {
        LoggingWriter writer;
        writer.writeAttribute("a", value, true);
        EXPECT_EQ(writer.output, QeCString(" a=\"") + written + "\"");
    }
    LoggingWriter writer;
    writer.write("x&amp;y &lt; \t\n\"'&", true);  // in text, twice
    writer.write(" bye\r", true);
    EXPECT_EQ(writer.output, "x&amp;amp;y &amp;lt; \t\n\"'&amp; bye&#xD;");
}

TEST(XmlWriter, WritesLongValuesInOneCall) {
    for (const std::size_t length : {170u, 171u, 204u, 205u, 1018u, 1019u, 1024u, 5000u}) {
        const std::string quotes(length, '"'), escaped = repeat("&quot;", length);
        LoggingWriter writer;
        writer.writeAttribute("a", QeCString(quotes), true);
        writer.writeAttribute("a", QeCString(quotes), false);
        writer.write(QeCString(quotes + "&"), true);
        EXPECT_EQ(writer.calls, "|b: a=\"" + escaped + "\"|b: a=\"" + quotes + "\"|b:" + quotes + "&amp;");
    }
}

TEST(XmlWriter, KeepsIndentationWithinItsBounds) {
    LoggingWriter writer;
    writer.setCurrentIndent(1);
    writer.decrementIndent();
    EXPECT_EQ(writer.getCurrentIndent(), 0);
    writer.incrementIndent();
    EXPECT_EQ(writer.setSizeOfIndent(3), 2);
    writer.incrementIndent();
    EXPECT_EQ(writer.getCurrentIndent(), 5);
    EXPECT_EQ(writer.setSizeOfIndent(-7), 3);
    EXPECT_EQ(writer.getSizeOfIndent(), 0);
    writer.setCurrentIndent(-1);
    EXPECT_EQ(writer.getCurrentIndent(), 0);
    writer.setSizeOfIndent(INT_MAX);
    writer.incrementIndent();
    writer.incrementIndent();
    EXPECT_EQ(writer.getCurrentIndent(), INT_MAX);
}

// Each call of the sink fails once. Whatever was cut short can be done again, and
// leaves the same bindings as if nothing had happened.
TEST(XmlWriter, CountsACallThatFailsAsNotMade) {
    constexpr struct {
        const char* script;
        const char* after;  // the start of a child in namespace u, then of its parent's sibling
    } Failures[] = {
        {"+{u}p:e[a=1]", "<p:f/></p:e><p:g xmlns:p=\"u\"/>"},
        {"/{u}p:e[a=1]", "<p:f xmlns:p=\"u\"/></p:e><p:g xmlns:p=\"u\"/>"},
        {"*{u}p:e=text", "<p:f xmlns:p=\"u\"/></p:e><p:g xmlns:p=\"u\"/>"},
    };
    for (const auto& [script, after] : Failures) {
        bool failed = true;
        for (int good = 0; failed; ++good) {
            SCOPED_TRACE(testing::Message() << script << " fails at call " << good);
            LoggingWriter writer;
            writer.writeNewLine();
            writer.callsUntilFailure = good;
            try {
                run(writer, script);
                failed = false;
            } catch (const std::runtime_error&) {
                writer.callsUntilFailure = -1;
                run(writer, script);  // of a simple element all but the line feed, which comes last
            }
            writer.callsUntilFailure = -1;
            writer.output.clear();
            run(writer, "/{u}p:f -{u}p:e /{u}p:g");
            EXPECT_EQ(writer.output.substr(writer.output.find('<')), after);
        }
    }
}

TEST(XmlWriter, KeepsAnElementOpenWhoseEndFailed) {
    LoggingWriter writer;
    run(writer, "+{u}p:e");
    writer.callsUntilFailure = 0;
    EXPECT_THROW(run(writer, "-{u}p:e"), std::runtime_error);
    writer.output.clear();
    run(writer, "/{u}p:f -{u}p:e /{u}p:g");
    EXPECT_EQ(writer.output, "<p:f/></p:e><p:g xmlns:p=\"u\"/>");
}

TEST(XmlWriter, IndentsAgainWhatFailedWhileIndenting) {
    LoggingWriter writer;
    run(writer, ">3 |");
    writer.callsUntilFailure = 1;
    EXPECT_THROW(writer.write("x", false), std::runtime_error);
    writer.write("x", false);
    EXPECT_EQ(writer.output, "\n    x") << "one space went out before the failure";

    writer.callsUntilFailure = 0;
    EXPECT_THROW(writer.writeNewLine(), std::runtime_error);
    writer.write("y", false);
    EXPECT_EQ(writer.output, "\n    xy") << "no line was begun";
}

// A sink that writes through its own writer, as one that adds an element of its own would.
class NestingWriter : public LoggingWriter {
public:
    using LoggingWriter::writeToSink;
    void writeToSink(const char* bytes, unsigned length) override {
        if (depth++ == 0) {
            QeXmlAttributeSet set;
            set.add(QeXmlName("an-attribute-name-that-needs-the-heap", {"q", "another-uri-that-needs-the-heap"}), "1");
            writeElementStart({"an-element-name-that-needs-the-heap", {"r", "v"}}, set, true);
        }
        --depth;
        LoggingWriter::writeToSink(bytes, length);
    }

private:
    int depth = 0;
};

TEST(XmlWriter, MayBeCalledByItsSink) {
    NestingWriter writer;
    run(writer, "/{u}p:e[{w}m:a=a-value-of-more-than-23-bytes]");
    const QeCString nested =
        "<r:an-element-name-that-needs-the-heap q:an-attribute-name-that-needs-the-heap=\"1\" "
        "xmlns:q=\"another-uri-that-needs-the-heap\" xmlns:r=\"v\"/>";
    EXPECT_EQ(writer.output, "<p:e" + nested + " m:a=\"a-value-of-more-than-23-bytes\"" + nested + " xmlns:m=\"w\"" +
                                 nested + " xmlns:p=\"u\"/>");
}

}  // namespace
