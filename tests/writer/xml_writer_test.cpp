#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <writer/logging_writer.h>
#include <writer/writing.h>

#include <tessit/writer/xml_writer.h>

namespace {

struct CallCase {
    const char* reason;
    void (*write)(QeXmlWriter&);
    const char* calls;  // c: byte, b: bytes, s: string
};

const CallCase Calls[] = {
    {"a tag is one string", [](QeXmlWriter& w) { run(w, "+{u}p:e[xmlns:p=u]"); }, "|s:<p:e|b: xmlns:p=\"u\"|s:>"},
    {"attributes come in the set's order", [](QeXmlWriter& w) { run(w, "/e[b=2,a=1]"); },
     "|s:<e|b: a=\"1\"|b: b=\"2\"|s:/>"},
    {"an end tag is one string", [](QeXmlWriter& w) { run(w, "-{u}p:e"); }, "|s:</p:e>"},
    {"escaped text is one call", [](QeXmlWriter& w) { w.write("a<b & c>d\r", true); }, "|b:a&lt;b &amp; c&gt;d&#xD;"},
    {"so is text with nothing to escape", [](QeXmlWriter& w) { w.write("\"it's\"\t\n\xC3\xA9", true); },
     "|b:\"it's\"\t\n\xC3\xA9"},
    {"and so is no text", [](QeXmlWriter& w) { w.write("", true); }, "|b:"},
    {"other text is passed on", [](QeXmlWriter& w) { w.write("<!--&-->", false); }, "|s:<!--&-->"},
    {"attribute by string", [](QeXmlWriter& w) { w.writeAttribute("p:a", "<", true); }, "|b: p:a=\"&lt;\""},
    {"attribute by name declares nothing", [](QeXmlWriter& w) { w.writeAttribute(nameOf("{u}p:a"), "v", true); },
     "|b: p:a=\"v\""},
    {"attribute not escaped", [](QeXmlWriter& w) { w.writeAttribute("a", "\"&", false); }, "|b: a=\"\"&\""},
    {"a line feed is a byte, and nothing is indented by 0",
     [](QeXmlWriter& w) {
         w.writeNewLine();
         w.write("x", false);
     },
     "|c:\n|s:x"},
    {"indentation is bytes, and written once",
     [](QeXmlWriter& w) {
         w.setCurrentIndent(2);
         w.write("x", true);
         w.writeNewLine();
         w.writeIndentChars();
         w.writeIndentChars();
         w.write("y", true);
     },
     "|b:x|c:\n|c: |c: |b:y"},
    {"indentation comes before text, attribute and tag alike",
     [](QeXmlWriter& w) {
         w.setCurrentIndent(1);
         w.writeNewLine();
         w.writeAttribute("a", "1", true);
         w.writeNewLine();
         w.write("t", false);
         w.writeNewLine();
         run(w, "/e[a=1]");
         w.writeNewLine();
         run(w, "-e");
     },
     "|c:\n|c: |b: a=\"1\"|c:\n|c: |s:t|c:\n|c: |s:<e|b: a=\"1\"|s:/>|c:\n|c: |s:</e>"},
    {"a simple element", [](QeXmlWriter& w) { w.writeSimpleElement("e", "a<b", "", false); },
     "|s:<e|s:>|b:a&lt;b|s:</e>|c:\n"},
    {"a simple element without content", [](QeXmlWriter& w) { w.writeSimpleElement("flag", "", "", false); },
     "|s:<flag|s:/>|c:\n"},
    {"a simple element inside another, and behind it",
     [](QeXmlWriter& w) {
         run(w, "+{u}p:e");
         w.writeSimpleElement(nameOf("{u}p:f"), "1", "", false);
         w.writeSimpleElement(nameOf("{u}p:g"), "", "", false);
         run(w, "/{u}p:h");
     },
     "|s:<p:e|b: xmlns:p=\"u\"|s:>|s:<p:f|s:>|b:1|s:</p:f>|c:\n|s:<p:g|s:/>|c:\n|s:<p:h|s:/>"},
    {"a simple element with a name that looks qualified",
     [](QeXmlWriter& w) { w.writeSimpleElement("q:e", "1", "", false); }, "|s:<q:e|s:>|b:1|s:</q:e>|c:\n"},
    {"a simple element with its type",
     [](QeXmlWriter& w) { w.writeSimpleElement(QeXmlName("count"), "5", "xsd:int", true); },
     "|s:<count|b: xsi:type=\"xsd:int\"|b: xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"|s:>|b:5|s:</count>"
     "|c:\n"},
};

TEST(XmlWriter, MakesTheseSinkCalls) {
    for (const auto& [reason, write, calls] : Calls) {
        SCOPED_TRACE(reason);
        LoggingWriter writer;
        write(writer);
        EXPECT_EQ(writer.calls, calls);
    }
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

struct EscapeCase {
    const char* value;
    const char* written;
};

constexpr EscapeCase Values[] = {
    {"a\"b'c<d>e&f", "a&quot;b&apos;c&lt;d&gt;e&amp;f"},
    {"x&amp;y", "x&amp;y"},
    {"&lt;&gt;&quot;&apos;&amp;", "&lt;&gt;&quot;&apos;&amp;"},
    {"x&amp", "x&amp;amp"},                                      // not complete
    {"&AMP;&nbsp;&#10;&", "&amp;AMP;&amp;nbsp;&amp;#10;&amp;"},  // not one of the five
    {"&amp;amp;", "&amp;amp;"},
    {"&&lt;", "&amp;&lt;"},
    {"\r\n\t", "\r\n\t"},
    {"", ""},
};

TEST(XmlWriter, EscapesValuesButNotTwice) {
    for (const auto& [value, written] : Values) {
        LoggingWriter writer;
        writer.writeAttribute("a", value, true);
        EXPECT_EQ(writer.output, QeCString(" a=\"") + written + "\"");
    }
}

TEST(XmlWriter, EscapesEveryAmpersandInText) {
    LoggingWriter writer;
    writer.write("x&amp;y &lt; say \"hi\" & bye\r", true);
    EXPECT_EQ(writer.output, "x&amp;amp;y &amp;lt; say \"hi\" &amp; bye&#xD;");
}

TEST(XmlWriter, WritesLongValuesInOneCall) {
    for (const std::size_t length : {170u, 171u, 204u, 205u, 1018u, 1019u, 1024u, 5000u}) {
        const std::string quotes(length, '"');
        std::string escaped;
        for (std::size_t i = 0; i < length; ++i)
            escaped += "&quot;";
        LoggingWriter writer;
        writer.writeAttribute("a", QeCString(std::string_view(quotes)), true);
        writer.writeAttribute("a", QeCString(std::string_view(quotes)), false);
        writer.write(QeCString(std::string_view(quotes + "&")), true);
        EXPECT_EQ(writer.calls, QeCString("|b: a=\"") + escaped + "\"|b: a=\"" + quotes + "\"|b:" + quotes + "&amp;");
    }
}

TEST(XmlWriter, KeepsIndentationWithinItsBounds) {
    LoggingWriter writer;
    EXPECT_EQ(writer.getCurrentIndent(), 0);
    EXPECT_EQ(writer.getSizeOfIndent(), 2);
    writer.setCurrentIndent(1);
    writer.decrementIndent();
    EXPECT_EQ(writer.getCurrentIndent(), 0);
    writer.incrementIndent();
    EXPECT_EQ(writer.setSizeOfIndent(3), 2);
    writer.incrementIndent();
    EXPECT_EQ(writer.getCurrentIndent(), 5);
    writer.decrementIndent();
    EXPECT_EQ(writer.getCurrentIndent(), 2);
    EXPECT_EQ(writer.setSizeOfIndent(-7), 3);
    EXPECT_EQ(writer.getSizeOfIndent(), 0);
    writer.setCurrentIndent(-1);
    EXPECT_EQ(writer.getCurrentIndent(), 0);
    writer.setSizeOfIndent(INT_MAX);
    writer.incrementIndent();
    writer.incrementIndent();
    EXPECT_EQ(writer.getCurrentIndent(), INT_MAX);
    writer.decrementIndent();
    EXPECT_EQ(writer.getCurrentIndent(), 0);
}

TEST(XmlWriter, CopiesShareNothing) {
    LoggingWriter original;
    original.setCurrentIndent(1);
    original.setSizeOfIndent(4);
    run(original, "+{u}p:e");
    original.writeNewLine();

    LoggingWriter copy(original), assigned;
    assigned = original;
    run(original, "-{u}p:e");
    for (LoggingWriter* writer : {&copy, &assigned}) {
        writer->calls.clear();
        EXPECT_EQ(writer->getSizeOfIndent(), 4);
        run(*writer, "/{u}p:f");
        EXPECT_EQ(writer->calls, "|c: |s:<p:f|s:/>");
    }
    original.output.clear();
    run(original, "/{u}p:g");
    EXPECT_EQ(original.output, "<p:g xmlns:p=\"u\"/>");

    run(original, "+{v}q:e +{v}q:f");
    original = assigned;
    run(original, "/{v}q:g");
    EXPECT_TRUE(original.output.ends_with("<q:g xmlns:q=\"v\"/>")) << "what was bound before";
}

// Each call of the sink fails once. Whatever was cut short can be done again, and
// leaves the same bindings as if nothing had happened.
TEST(XmlWriter, CountsACallThatFailsAsNotMade) {
    struct FailureCase {
        const char* reason;
        void (*write)(QeXmlWriter&);
        const char* after;  // the start of a child in namespace u, then of its parent's sibling
    };
    constexpr FailureCase Failures[] = {
        {"start", [](QeXmlWriter& w) { run(w, "+{u}p:e[a=1]"); }, "<p:f/></p:e><p:g xmlns:p=\"u\"/>"},
        {"empty", [](QeXmlWriter& w) { run(w, "/{u}p:e[a=1]"); }, "<p:f xmlns:p=\"u\"/></p:e><p:g xmlns:p=\"u\"/>"},
        {"simple", [](QeXmlWriter& w) { w.writeSimpleElement(nameOf("{u}p:e"), "text", "t", true); },
         "<p:f xmlns:p=\"u\"/></p:e><p:g xmlns:p=\"u\"/>"},
    };
    for (const auto& [reason, write, after] : Failures) {
        for (int good = 0;; ++good) {
            SCOPED_TRACE(testing::Message() << reason << " fails at call " << good);
            LoggingWriter writer;
            writer.writeNewLine();
            writer.callsUntilFailure = good;
            bool failed = false;
            try {
                write(writer);
            } catch (const std::runtime_error&) {
                failed = true;
                writer.callsUntilFailure = -1;
                // All of it but the line feed of a simple element, which comes last.
                writer.output.clear();
                write(writer);
            }
            writer.callsUntilFailure = -1;
            writer.output.clear();
            run(writer, "/{u}p:f -{u}p:e /{u}p:g");
            EXPECT_EQ(writer.output.substr(writer.output.find('<')), after);
            if (!failed) break;
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
    writer.setCurrentIndent(3);
    writer.writeNewLine();
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

TEST(XmlWriter, OffersTheseConstants) {
    using Writer = QeXmlWriter;
    EXPECT_EQ(Writer::StartTag + "," + Writer::EndTag + "," + Writer::StartEndTag + "," + Writer::UnpairedTag + "," +
                  Writer::EqualToAndQuotes + "," + Writer::Quotes + "," + Writer::MarkupLt + "," + Writer::MarkupGt +
                  "," + Writer::MarkupAmpersand + "," + Writer::MarkupQuotes + "," + Writer::MarkupApos + "," +
                  Writer::MarkupCR + "," + Writer::XmlNamespaceTag + "," + Writer::TrueValue + "," +
                  Writer::FalseValue + "," + Writer::Blank + "," + Writer::WhiteSpace + "," + Writer::Colon + "," +
                  Writer::Newline,
              "<,>,</,/>,=\",\",&lt;,&gt;,&amp;,&quot;,&apos;,&#xD;,xmlns,1,0, , ,:,\n");
}

}  // namespace
