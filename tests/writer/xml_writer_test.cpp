#include <algorithm>
#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <writer/logging_writer.h>
#include <writer/writing.h>

#include <tessit/writer/xml_writer.h>

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

// A class that overrides the slots of a string writer sees all of them, and so does its copy.
TEST(XmlWriter, MakesTheseSinkCalls) {
    for (const auto& [reason, script, calls] : Scripts) {
        LoggingWriter writer;
        run(writer, script);
        EXPECT_EQ(writer.calls, calls) << reason;
        Logging<QeXmlStringWriter> derived, copy(derived);
        run(derived, script);
        run(copy = Logging<QeXmlStringWriter>(), script);
        EXPECT_EQ(derived.calls, calls) << reason;
        EXPECT_EQ(copy.calls, calls) << reason;
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

// The same without a slot for bytes: they go the way that the base sends them.
class StringsOnlyWriter : public LoggingWriter {
public:
    void writeToSink(const char* bytes, unsigned length) override { QeXmlWriter::writeToSink(bytes, length); }
    using LoggingWriter::writeToSink;
};

TEST(XmlWriter, PassesBytesOnAsAStringWhereTheSinkTakesNone) {
    for (const std::size_t length : {std::size_t{0}, std::size_t{5}, std::size_t{1024}, std::size_t{1025}}) {
        StringsOnlyWriter writer;
        const QeCString text(std::string_view(std::string(length, 'x')));
        writer.write(text, true);
        writer.write("y", true);
        EXPECT_EQ(writer.calls, QeCString("|s:") + std::string(length, 'x') + "|s:y");
    }
}

TEST(XmlWriter, KeepsIndentationWithinItsBounds) {
    constexpr struct {
        int indent, size, decremented, incremented;  // by one step each
    } Steps[] = {{5, 3, 2, 8}, {1, 2, 0, 3}, {-1, 2, 0, 2}, {4, -7, 4, 4}, {2, INT_MAX, 0, INT_MAX}};
    for (const auto& [indent, size, decremented, incremented] : Steps) {
        LoggingWriter writer;
        EXPECT_EQ(writer.setSizeOfIndent(size), 2);
        EXPECT_EQ(writer.getSizeOfIndent(), std::max(size, 0));
        writer.setCurrentIndent(indent);
        writer.decrementIndent();
        EXPECT_EQ(writer.getCurrentIndent(), decremented);
        writer.setCurrentIndent(indent);
        writer.incrementIndent();
        EXPECT_EQ(writer.getCurrentIndent(), incremented);
    }
}

// Each call of the sink fails once. Whatever was cut short can be done again, of a simple element all but the line
// feed, which comes last; and it leaves the same bindings as if nothing had happened.
TEST(XmlWriter, CountsACallThatFailsAsNotMade) {
    constexpr struct {
        const char *before, *script;
        const char* after;  // a child in namespace u, the end of its parent, and a sibling of that
    } Failures[] = {
        {"|", "+{u}p:e[a=1]", "<p:f/></p:e><p:g xmlns:p=\"u\"/>"},
        {"|", "/{u}p:e[a=1]", "<p:f xmlns:p=\"u\"/></p:e><p:g xmlns:p=\"u\"/>"},
        {"|", "*{u}p:e=text", "<p:f xmlns:p=\"u\"/></p:e><p:g xmlns:p=\"u\"/>"},
        {"+{u}p:e +{v}q:e", "-{v}q:e", "<p:f/></p:e><p:g xmlns:p=\"u\"/>"},
    };
    for (const auto& [before, script, after] : Failures) {
        bool failed = true;
        for (int good = 0; failed; ++good) {
            SCOPED_TRACE(testing::Message() << script << " fails at call " << good);
            LoggingWriter writer;
            run(writer, before);
            writer.callsUntilFailure = good;
            try {
                run(writer, script);
                failed = false;
            } catch (const std::runtime_error&) {
                run(writer, script);
            }
            writer.callsUntilFailure = -1;
            writer.output.clear();
            run(writer, "/{u}p:f -{u}p:e /{u}p:g");
            EXPECT_EQ(writer.output.substr(writer.output.find('<')), after);
        }
    }
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
