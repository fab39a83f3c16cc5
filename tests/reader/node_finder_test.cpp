// Up to where the nodes of a text are whole, however the text comes.

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <tessit/reader/node_finder.h>

using tessit::NodeFinder;

namespace {

// One that a mark stands behind is found when the text comes up to the next mark: `|` stands behind the byte that
// makes a node whole.
struct Case {
    NodeFinder::Where where;
    bool isConforming;
    std::string_view text;
    bool expands = true;
    QeXmlNodes nodes = QeXmlNodes::TagsAndText;
};

constexpr auto Content = NodeFinder::Where::Content, Begin = NodeFinder::Where::Begin;
constexpr bool Lenient = false, Conforming = true;

constexpr Case Cases[] = {
    {Content, Lenient, "<a>|x<b|>|</c >|"},
    {Content, Lenient, "<a x='>' y = \"/>\" z=''/>|<"},
    {Content, Lenient, "<a x='<|"},  // an error, for sure
    {Content, Lenient, "<a <|"},
    {Content, Lenient, "<a x=1'>|"},
    {Content, Lenient, "</a x='>|"},            // quotes mean nothing there
    {Content, Lenient, "<a x='&lt;>&y'>;'>|"},  // a reference goes on to its semicolon
    {Content, Lenient, "<a x='&<b>;'>|"},
    {Content, Lenient, "<a x='&y'>|<b z=';'>|", false},
    {Content, Lenient, "<a x='&'>|&<b>;<c|>|", false},  // if they are left, only behind the tag
    {Content, Lenient, "x&y<b>;<c|>|"},
    {Content, Lenient, "x<!-- <a> - -> -->y<b|>|"},
    {Content, Lenient, "<!-- a --b|"},
    {Content, Lenient, "<!-b|"},
    {Content, Lenient, "<!b|"},
    {Content, Lenient, "<?p <a>? ?>|<![CDATA[<a>]]]>]]><b|>|"},
    {Content, Lenient, "<![CDATA |"},
    {Content, Lenient, "<?xml version='1.0' x='?>|' encoding='>'?><a|>|"},
    {Content, Lenient, "<?xml version <a>='"},
    {Content, Lenient, "<?xml 1234567|<a>|"},  // given up
    {Content, Lenient, "<\xC3\xA9>|<a\x80>bc|</|a>|"},
    {Content, Lenient, "<b\xA9\xC3<c|>|"},
    {Content, Lenient, "<b\xC3\xA9\xA9>cd|"},
    {Content, Lenient, "x\xEA<\x80|\x34>y|z<a|>|"},
    {Content, Conforming, "x&y|<b|>|"},
    {Content, Conforming, "x&y|&|"},  // an error, for sure
    {Content, Conforming, "x&e|ntity;|y&a;|&amp;&#38;y&ampe|re;|z<a| b='&c;'>|&quo<b|>|"},
    {Content, Conforming, "<a>|<!--c-->|&e;|<!--c-->|x<!--&c;-->y&d|;|"},
    {Content, Conforming, "x<!--c--><?p?><![CDATA[d]]>y<b|>|"},
    {Content, Conforming, "x<!--|c-->|<?p?>|<![CDATA[d]]>|y<b|>|", true, QeXmlNodes::All},
    {Content, Conforming, "<a>|<![CDATB|"},
    {Content, Conforming, "<!DOCTYPE|"},
};

NodeFinder finderFor(const Case& row) {
    NodeFinder finder(row.isConforming, row.nodes);
    finder.begin(0, row.where, row.expands);
    return finder;
}

TEST(NodeFinder, FindsWhatIsWholeByteByByte) {
    for (const Case& row : Cases) {
        SCOPED_TRACE(row.text);
        std::string text, marked;
        for (const char byte : row.text)
            if (byte != '|') text += byte;
        NodeFinder finder = finderFor(row);
        std::vector<std::size_t> whole{0};
        for (std::size_t length = 1; length <= text.size(); ++length) {
            finder.look(std::string_view(text).substr(0, length));
            whole.push_back(finder.nodesUpTo());
            marked += text[length - 1];
            if (whole[length] > whole[length - 1]) marked += '|';
        }
        EXPECT_EQ(marked, row.text);
        for (std::size_t length = 0; length <= text.size(); ++length) {
            NodeFinder inTwo = finderFor(row);
            inTwo.look(std::string_view(text).substr(0, length));
            EXPECT_EQ(inTwo.nodesUpTo(), whole[length]);
            inTwo.look(text);
            EXPECT_EQ(inTwo.nodesUpTo(), whole.back());
        }
    }
}

// What is looked at in blocks, at each place of a block.
TEST(NodeFinder, FindsTheSameInBlocks) {
    for (const std::string_view piece :
         {"&y<b>;", "&lt;&gt;&<b>;", "&a;&bc;<b>&d", "?&lt;!<!-- <b> -->", "<!-- <b> -->", "<?p <b> ?>",
          "<![CDATA[ ]<b>] ]]>", "<b x='&gt;'>", "<b x='!'><?p?>"})
        for (std::size_t front = 0; front != 80; ++front)
            for (const auto& [isConforming, expands] :
                 {std::pair(Lenient, true), {Lenient, false}, {Conforming, true}}) {
                const std::string text = std::string(front, 'x') + std::string(piece) + std::string(150, 'y');
                const Case row{Content, isConforming, text, expands};
                NodeFinder inOne = finderFor(row), byBytes = finderFor(row);
                inOne.look(text);
                for (std::size_t length = 1; length <= text.size(); ++length)
                    byBytes.look(std::string_view(text).substr(0, length));
                EXPECT_EQ(inOne.nodesUpTo(), byBytes.nodesUpTo()) << text;
                EXPECT_EQ(inOne.textsUpTo(), byBytes.textsUpTo()) << text;
            }
}

}  // namespace
