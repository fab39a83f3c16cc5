// What stands in the output for each byte, and that what is read again is what was written.

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <writer/logging_writer.h>

#include <tessit/reader/xml_reader.h>

namespace {

constexpr struct {
    char byte;
    const char *inText, *inValue;
} Specials[] = {
    {'<', "&lt;", "&lt;"}, {'>', "&gt;", "&gt;"}, {'&', "&amp;", "&amp;"}, {'"', "\"", "&quot;"},
    {'\'', "'", "&apos;"}, {'\r', "&#xD;", "\r"}, {'\n', "\n", "\n"},      {'\t', "\t", "\t"},
};

// One at each place around the blocks that are copied at once, in texts that are short, that need a buffer, and that
// are looked through first.
TEST(Escapes, AreWrittenAtEveryPlace) {
    for (const auto& [byte, inText, inValue] : Specials)
        for (const std::size_t front : {0u, 150u, 1000u})
            for (std::size_t length = 1; length <= 50; ++length)
                for (std::size_t place = 0; place < length; ++place) {
                    const std::string before(front + place, 'x'), behind(length - 1 - place, 'y');
                    const QeCString text(before + byte + behind);
                    LoggingWriter writer;
                    writer.write(text, true);
                    writer.writeAttribute("a", text, true);
                    ASSERT_EQ(writer.calls,
                              "|b:" + before + inText + behind + "|b: a=\"" + before + inValue + behind + '"');
                }
}

TEST(Escapes, AreNotWrittenTwiceInValues) {
    constexpr const char* Values[][2] = {
        {"a&lt;&gt;&quot;&apos;&amp;", "a&lt;&gt;&quot;&apos;&amp;"},
        {"x&amp", "x&amp;amp"},                                      // not complete
        {"&AMP;&nbsp;&#10;&", "&amp;AMP;&amp;nbsp;&amp;#10;&amp;"},  // not one of the five
        {"&amp;amp;&&lt;", "&amp;amp;&amp;&lt;"},
    };
    for (const auto& [value, written] : Values) {
        LoggingWriter writer;
        writer.writeAttribute("a", value, true);
        writer.write("&lt;", true);
        EXPECT_EQ(writer.output, QeCString(" a=\"") + written + "\"&amp;lt;");
    }
}

void expectReadBack(const QeCString& text) {
    const QeXmlName plain("a"), prefixed("b", QeXmlNamespace("p", "u"));
    QeXmlAttributeSet attributes;
    attributes.add(plain, text);
    attributes.add(prefixed, text);
    QeXmlStringWriter writer;
    writer.writeElementStart(QeXmlName("e"), attributes, false);
    writer.write(text, true);
    writer.writeElementEnd(QeXmlName("e"));
    QeXmlReader reader(writer.getString());
    const QeXmlAttributeSet& read = reader.readElementStart(QeXmlName("e"));
    EXPECT_EQ(read.find(plain)->getValue(), text);
    EXPECT_EQ(read.find(prefixed)->getValue(), text);
    EXPECT_EQ(reader.readElementValue(), text);
    reader.readElementEnd(QeXmlName("e"));
    EXPECT_TRUE(reader.eof());
}

TEST(RoundTrip, KeepsAwkwardTexts) {
    std::istringstream texts(
        "| |\n|\t \n|]]>|<![CDATA[x]]>|<!--x-->|<?x?>|&|&&|& amp;|&#13;|&nbsp;|&&amp|\"'|'\"'\"|<>|></|"
        "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80|a=\"b\" c='d'");
    std::string all;
    for (std::string text; std::getline(texts, text, '|'); all += text + "run")
        expectReadBack(QeCString(text));
    for (int i = 0; i < 500; ++i)
        all += "run " + std::to_string(i) + " <>&'\""[i % 6];
    expectReadBack(QeCString(all));
}

}  // namespace
