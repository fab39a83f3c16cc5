// Depth is read without recursion.

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
