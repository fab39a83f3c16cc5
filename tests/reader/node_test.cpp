// The nodes that the scanner delivers, and the errors that it raises with their positions.

#include <algorithm>
#include <gtest/gtest.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

struct NodeCase {
    std::string_view xml;
    std::string_view nodes;  // + start, - end, / empty, = text, !line:column error
};

constexpr NodeCase Content[] = {
    {"<r>x<!-- c -->y<?pi z?>w</r>", "+r =xyw -r"},          // one text, whatever stands in it
    {"<r><!-- c -->y</r>", "+r =y -r"},                      // and in front of it
    {"<r><?pi?><![CDATA[y]]></r>", "+r =y -r"},              // a section is text
    {"<r>a<![CDATA[<b>&amp;]]>c</r>", "+r =a<b>&amp;c -r"},  // taken literally
    {"<r><![CDATA[]]]]]]></r>", "+r =]]]] -r"},
    {"<r><![CDATA[a]>b]]>]]></r>", "+r =a]>b]]> -r"},          // the first end counts; after it, ]]> is text
    {"<r><![CDATA[1\r\n2]]></r>", "+r =1\r\n2 -r"},            // line ends in sections stay
    {"<r>1\r\n2\r3\n4\r\r\n5</r>", "+r =1\n2\n3\n4\n\n5 -r"},  // others arrive as one line feed
    {"<r>\r</r>", "+r =\n -r"},
    {"<r>\r&#13;\r</r>", "+r =\n\r\n -r"},  // a referenced one is no line end
    {"<r>\r<![CDATA[\n]]></r>", "+r =\n\n -r"},
    {"<r>&lt;&gt;&amp;&apos;&quot;</r>", "+r =<>&'\" -r"},
    {"<r>&ltx;&Amp;&nbsp;&a<b;</r>", "+r =&ltx;&Amp;&nbsp;&a<b; -r"},  // unknown entities pass through
    {"<r>&#65;&#x41;&#x4a;&#xE9;&#8364;&#x1f600;</r>", "+r =AAJ\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80 -r"},
    {"<r>\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80&#x7F;&#x80;&#x7FF;&#x800;&#xFFFF;&#x10000;</r>",
     "+r =\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80"
     "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80 -r"},
    {"<r>&#0;&#x;</r>", {"+r =\0\0 -r", 9}},
    {"<r>&#4294967361;&#x100000041;</r>", "+r =AA -r"},  // wrap at 32 bits
    {"<r>&#xFFFFFFFF;</r>", "+r =\xF7\xBF\xBF\xBF -r"},  // only 21 bits can be written
    {"<r>a ]]> b</r>", "+r =a ]]> b -r"},
    {"<r>\t </r>", "+r =\t  -r"},  // blank text is text
};

constexpr NodeCase Tags[] = {
    {"<a></a>", "+a -a"},
    {"<a\r\n\t ></a\t\r\n >", "+a -a"},
    {"<a></ab>", "+a -ab"},
    {"<a></b>", "+a -b"},                    // the scanner does not match tags
    {"<a><a/>\n</a>\r\n ", "+a /a =\n -a"},  // blank text outside the root element is the end
    {"<\xC3\xA9\xC3\xBC/>", "/\xC3\xA9\xC3\xBC"},
    {"<a\xC2\x80/>", "/a\xC2\x80"},          // past the first character all but ASCII may follow
    {"<a\xED\xA0\x80/>", "/a\xED\xA0\x80"},  // a surrogate too
    {"<a\xF0\x9F\x98\x80:\xF4\x8F\xBF\xBF/>", "/a\xF0\x9F\x98\x80:\xF4\x8F\xBF\xBF"},
    {"<a\xDF\x80\xEF\xA4\x80/>", "/a\xDF\x80\xEF\xA4\x80"},
    {"<a z='1' y=\"2\" x = '3'/>", "/a[x=3 y=2 z=1]"},
    {"<a x='1'y='2'/>", "/a[x=1 y=2]"},  // no space needed between
    {"<a x='say \"hi\"' y=\"it's\"/>", "/a[x=say \"hi\" y=it's]"},
    {"<a x='1\r\n2\t3'/>", "/a[x=1\r\n2\t3]"},  // values are not normalised
    {"<a x='a&amp;b&unknown;&#x41;&#65;&#xe9;'/>", "/a[x=a&b&unknown;AA\xC3\xA9]"},
    {"<a x='>' y='/>'/>", "/a[x=> y=/>]"},
    {"<a x='1'><b/>t</a><a y='2'/>", "+a[x=1] /b =t -a /a[y=2]"},
};

// Every place that raises, with the position at which it stands; what is cut off is held against a rule below.
constexpr NodeCase Errors[] = {
    {"<r/>x", "/r !1:6 Premature EOF"},  // text ends at a tag only
    {"<r/><!-- c -->", "/r !1:15 Premature EOF"},
    {"<aaa\xC3", "!1:5 Premature EOF inside character"},  // stands on the character's first byte
    {"<aa\xE2\x82", "!1:4 Premature EOF inside character"},
    {"<aa\xF0\x9F\x98", "!1:4 Premature EOF inside character"},
    {"<aa\x80\x80\x80", "!1:4 Premature EOF inside character"},  // a lone continuation byte counts as four
    {"<r><a\xC3(/></r>", "+r !1:6 Malformed UTF-8 in name"},
    {"<r><\xC3(/></r>", "+r !1:5 Malformed UTF-8 in name"},
    {"<r><a\xFF\xFF\xFF\xFF/></r>", "+r !1:6 Malformed UTF-8 in name"},
    {"<r><a\xC1\xBF\xBF\xBF/></r>", "+r !1:6 Malformed UTF-8 in name"},
    {"<r><a\xE0\x80\x80/></r>", "+r !1:6 Malformed UTF-8 in name"},      // overlong
    {"<r><a\xF4\x90\x80\x80/></r>", "+r !1:6 Malformed UTF-8 in name"},  // past U+10FFFF
    {"<r>\n<!x", "+r !2:4 Invalid character sequence <!x"},              // in text: behind the byte
    {"<r><!x", "+r !1:6 Invalid character sequence <!x"},                // between nodes: on it
    {"<r>a<!-x", "+r !1:9 Syntax error on comment"},
    {"<r><!-- a -- b -->", "+r !1:14 Invalid -- inside comment"},
    {"<r><!---->", "+r !1:11 Premature EOF"},
    {"<r><!--->", "+r !1:10 Premature EOF"},  // not yet closed
    {"<r><![cdata[", "+r !1:12 '<![' wasn't followed by 'CDATA'"},
    {"<r><![CDATA [", "+r !1:13 '<![CDATA' wasn't followed by '['"},
    {"<r></r x>", "+r !1:9 Unexpected character x"},
    {"<r></ r>", "+r !1:7 Illegal starting character for name:  "},
    {"<r / >", "!1:6 Invalid '/' found in tag"},
    {"<1a/>", "!1:3 Illegal starting character for name: 1"},
    {"<r>\n<\xC3\x97/>", "+r =\n !2:4 Illegal starting character for name: \xC3\x97"},
    {"<r><\xED\xA0\x80/></r>", "+r !1:8 Illegal starting character for name: \xED\xA0\x80"},  // a surrogate
    {{"<r><\0/>", 7}, "+r !1:6 Illegal starting character for name: "},  // nothing is appended for U+0000
    {"<r a b='1'/>", "!1:7 Invalid character in attribute definition"},
    {"<r a='1' =''/>", "!1:11 Illegal starting character for name: ="},
    {"<r a=1/>", "!1:7 invalid character in attribute definition"},
    {"<r a='1>\n</r>", "!2:2 Syntax error: unterminated attribute value"},
    {"<r a='&lt;<'/>", "!1:12 Syntax error: unterminated attribute value"},
    // in a tag that looked like the ones in front of it
    {"<r><a x='1'/><a x='2'/><a xy'3'/></r>", "+r /a[x=1] /a[x=2] !1:30 Invalid character in attribute definition"},
    {"<r><a x='1'/><a x='2'/><a x='3<>'/></r>", "+r /a[x=1] /a[x=2] !1:32 Syntax error: unterminated attribute value"},
    {"<r><a x='1'/><a x='2'/><a x='3<>'/>text of more than a block</r>",
     "+r /a[x=1] /a[x=2] !1:32 Syntax error: unterminated attribute value"},
    {"<r>&#xg;</r>", "+r !1:9 invalid character in hexadecimal character reference."},
    {"<r>&#X41;</r>", "+r !1:10 invalid character in decimal character reference."},
    {"<r>&;</r>", "+r !1:6 Empty reference"},
    {"<r>&#;</r>", "+r !1:7 Empty character reference"},
};

constexpr NodeCase Unexpanded[] = {
    {"<a x='a&amp;b'/>", "/a[x=a&amp;b]"},
    {"<a x='a&'/>", "/a[x=a&]"},
    {"<a x='&;' y=\"'&quot;'\"/>", "/a[x=&; y='&quot;']"},
    {"<a x='&<'/>", "!1:9 Syntax error: unterminated attribute value"},
    {"<a>&amp;</a>", "+a =& -a"},  // the option is about attributes
};

void check(std::span<const NodeCase> cases, bool expandReferences) {
    for (const auto& [xml, nodes] : cases)
        for (const Source source : Sources)
            for (const Encoding encoding : Encodings) {
                if (encoding != Encoding::Utf8 && !isUtf8(xml)) continue;
                SCOPED_TRACE(std::string(xml) + ", source " + std::to_string(static_cast<int>(source)) + ", encoding " +
                             std::to_string(static_cast<int>(encoding)));
                EXPECT_EQ(trace(Document(encode(xml, encoding)), source, expandReferences), nodes);
            }
}

}  // namespace

TEST(XmlReader, DeliversContent) {
    check(Content, true);
}
TEST(XmlReader, DeliversTags) {
    check(Tags, true);
}
TEST(XmlReader, RaisesErrorsWhereItStands) {
    check(Errors, true);
}
TEST(XmlReader, LeavesReferencesInValues) {
    check(Unexpanded, false);
}

namespace {

// What a document that ends too early gives: an error behind its last byte, or on the first byte of a character.
bool isCutOff(std::string_view text, std::string_view nodes) {
    const std::size_t at = nodes.rfind('!');
    if (at == std::string_view::npos) return text.ends_with('>');  // it is whole
    if (nodes.ends_with("inside character")) return !isUtf8(text);
    const auto line = 1 + std::count(text.begin(), text.end(), '\n');
    const std::size_t column = text.size() - (text.rfind('\n') + 1) + 1;
    return text.size() < 4 ||
           nodes.substr(at) == "!" + std::to_string(line) + ":" + std::to_string(column) + " Premature EOF";
}

}  // namespace

// Nothing past the end is read, and the end is what is told unless an error stood before it.
TEST(XmlReader, EndsWhereADocumentIsCutOff) {
    for (const std::span<const NodeCase> cases :
         {std::span<const NodeCase>(Content), std::span<const NodeCase>(Tags), std::span<const NodeCase>(Errors)})
        for (const NodeCase& row : cases)
            for (std::size_t length = 0; length < row.xml.size(); ++length) {
                const std::string_view text = row.xml.substr(0, length);
                const std::string nodes = trace(text);
                EXPECT_TRUE(nodes == row.nodes || isCutOff(text, nodes)) << text << ": " << nodes;
            }
}

// Names and values of every length around the sizes that the scans and the strings work in.
TEST(XmlReader, DeliversEveryLength) {
    for (std::size_t length = 1; length <= 70; ++length) {
        const std::string part(length, 'n');
        const std::string xml = "<" + part + ":" + part + " " + part + "='" + part + "'>" + part + "&lt;" + part +
                                "</" + part + ":" + part + ">";
        const std::string name = part + ":" + part;
        EXPECT_EQ(trace(xml), "+" + name + "[" + part + "=" + part + "] =" + part + "<" + part + " -" + name);
    }
}
