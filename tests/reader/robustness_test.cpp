// Sizes: depth, attributes, declarations, and long runs of anything are read in linear time and without recursion.

#include <gtest/gtest.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

// Reads to the end, or to an error; gives the number of nodes read.
std::size_t countNodes(const std::string& xml) {
    const Document document(xml);
    std::size_t nodes = 0;
    try {
        const auto reader = document.open(Source::Span);
        for (; !reader->eof(); ++nodes)
            reader->readNextNode();
    } catch (const QeXmlParseError&) {
    }
    return nodes;
}

}  // namespace

TEST(XmlReader, ReadsAMillionNestedElements) {
    constexpr std::size_t Depth = 1'000'000;
    EXPECT_EQ(countNodes(repeat("<a>", Depth) + repeat("</a>", Depth)), 2 * Depth);
    EXPECT_EQ(countNodes(repeat("<a>", Depth)), Depth);
}

// Anything quadratic in these would take minutes.
TEST(XmlReader, ReadsLongRunsOfAnything) {
    constexpr std::size_t Count = 100'000;
    std::string attributes, declarations, prefixed;
    for (std::size_t i = 0; i < Count; ++i) {
        const std::string number = std::to_string(i * 7919 % Count);
        attributes += " a" + number + "='" + number + "'";
        declarations += " xmlns:p" + number + "='u" + number + "'";
        prefixed += "<p" + number + ":e/>";
    }
    EXPECT_EQ(countNodes("<r" + attributes + "/>"), 1u);
    EXPECT_EQ(countNodes("<r" + declarations + ">" + prefixed + "</r>"), Count + 2);
    EXPECT_EQ(countNodes("<r" + declarations + "/>"), 1u);
    EXPECT_EQ(countNodes(repeat("<a xmlns:p='u' xmlns='v'>", Count) + repeat("</a>", Count)), 2 * Count);
    for (const char* part :
         {"]", "?", "-", "&", "&amp;", "&#x41;", "&x;", "\r", "<!---->", "<?x?>", "<![CDATA[]]>", "a"})
        for (const char* frame : {"<r>#</r>", "<r><![CDATA[#]]></r>", "<r><?pi #?></r>", "<r x='#'/>", "<r#/>"}) {
            std::string xml(frame);
            xml.replace(xml.find('#'), 1, repeat(part, Count));
            EXPECT_LE(countNodes(xml), 3u);
        }
}

TEST(XmlReader, LooksAheadInDeepDocuments) {
    constexpr std::size_t Depth = 200'000;
    const Document document(repeat("<a xmlns:p='u'>", Depth) + repeat("</a>", Depth));
    const auto reader = document.open(Source::Span);
    std::size_t depth = 0;
    for (; reader->isElementNext("a"); ++depth)
        reader->readElementStart("a");
    EXPECT_EQ(depth, Depth);
    for (; depth > 0; --depth) {
        EXPECT_FALSE(reader->isElementNext("p:b"));
        reader->readElementEnd("a");
    }
    EXPECT_TRUE(reader->eof());
}
