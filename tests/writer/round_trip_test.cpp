// What the writer wrote, read again, is what was written.

#include <gtest/gtest.h>
#include <sstream>
#include <string>

#include <tessit/reader/xml_reader.h>
#include <tessit/writer/xml_string_writer.h>

namespace {

QeCString writeElement(const QeCString& value, const QeCString& content) {
    QeXmlAttributeSet attributes;
    attributes.add(QeXmlName("a"), value);
    attributes.add(QeXmlName("b", QeXmlNamespace("p", "u")), value);
    QeXmlStringWriter writer;
    writer.writeElementStart(QeXmlName("e"), attributes, false);
    writer.write(content, true);
    writer.writeElementEnd(QeXmlName("e"));
    return writer.getString();
}

void expectReadBack(const QeCString& text) {
    const QeCString document = writeElement(text, text);
    QeXmlReader reader(document);
    const QeXmlAttributeSet& attributes = reader.readElementStart(QeXmlName("e"));
    EXPECT_EQ(attributes.find(QeXmlName("a"))->getValue(), text) << document;
    EXPECT_EQ(attributes.find(QeXmlName("b", QeXmlNamespace("q", "u")))->getValue(), text) << document;
    EXPECT_EQ(reader.readElementValue(), text) << document;
    reader.readElementEnd(QeXmlName("e"));
    EXPECT_TRUE(reader.eof());
}

TEST(RoundTrip, KeepsAwkwardTexts) {
    std::istringstream texts(
        "| |\n|\t \n|]]>|<![CDATA[x]]>|<!--x-->|<?x?>|&|&&|& amp;|&#13;|&nbsp;|&&amp|\"'|'\"'\"|<>|></|"
        "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80|a=\"b\" c='d'");
    for (std::string text; std::getline(texts, text, '|');)
        expectReadBack(QeCString(std::string_view(text)));
}

// Each special byte at each place around the blocks that are copied at once.
TEST(RoundTrip, KeepsSpecialBytesAtEveryPlace) {
    for (const char special : {'<', '>', '&', '"', '\''})
        for (std::size_t length = 1; length <= 50; ++length)
            for (std::size_t place = 0; place < length; ++place) {
                std::string text(length, 'x');
                text[place] = special;
                text[length - 1 - place] = special;
                expectReadBack(QeCString(std::string_view(text)));
            }
}

TEST(RoundTrip, KeepsLongTexts) {
    std::string text;
    for (int i = 0; text.size() < 70000; ++i) {
        text.append("run ").append(std::to_string(i)).append(1, " <>&'\""[i % 6]);
        for (const std::size_t length : {170u, 204u, 205u, 1023u, 1024u, 1025u})
            if (text.size() > length && text.size() < length + 16)
                expectReadBack(QeCString(std::string_view(text).substr(0, length)));
    }
    expectReadBack(QeCString(std::string_view(text)));
}

// Where text and values differ, on purpose.
TEST(RoundTrip, KeepsCarriageReturnsInTextAndReferencesInValues) {
    const QeCString document = writeElement("&lt;&amp;", "\r\n\r &lt;");
    QeXmlReader reader(document);
    EXPECT_EQ(reader.readElementStart("e").find(QeXmlName("a"))->getValue(), "<&");
    EXPECT_EQ(reader.readElementValue(), "\r\n\r &lt;");
}

}  // namespace
