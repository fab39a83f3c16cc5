#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include <tessit/utils/xml_utils.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

struct Pair {
    const char* left;
    const char* right;
};

constexpr Pair Equal[] = {
    {"<a x='1'>t</a>", "<a x='1'>t</a>"},
    {"<a x='1'>t</a>", "<?xml version='1.0' standalone='yes'?><!DOCTYPE a><a x=\"1\">t</a>\n"},
    {"<a>t<b/></a>", "<a><?pi?>t<!-- c --><b/></a>"},
    {"<a x='1' y='2'/>", "<a y='2' x='1'/>"},
    {"<a p:x='1' q:y='2'/>", "<a q:y='2' p:x='1'/>"},
    {"<a>&lt;&#65;é\n</a>", "<a><![CDATA[<A]]>&#xE9;\r\n</a>"},  // how a character is written
    {"<p:a xmlns:p='u'><p:b/></p:a>", "<p:a xmlns:p='u'><b xmlns='u'></b></p:a>"},
    {"<p:a/>", "<q:a/>"},                  // unbound prefixes are in no namespace
    {"<a xmlns:p='u'/>", "<a p='u'/>"},    // a declaration is an attribute
    {"<r><a></r></a>", "<r><a></r></a>"},  // end tags are held against each other, not against start tags

    // Blank text without a counterpart.
    {"<r>\n<b/></r>", "<r><b/></r>"},
    {"<r> <b></b></r>", "<r><b></b></r>"},
    {"<r> <b>t</b> <c/> </r>", "<r><b>t</b><c/></r>"},
    {"<r> </r>", "<r></r>"},
    {"<r><![CDATA[]]></r>", "<r></r>"},
    {"<r><b> </b></r>", "<r>\n<b></b></r>"},  // in different places

    // An empty-element tag and its long form.
    {"<a/>", "<a></a>"},
    {"<a/>", "<a>\n  </a>"},
    {"<r><b/></r>", "<r> <b></b></r>"},
    {"<r><b/></r>", "<r> <b> </b></r>"},
    {"<r><a/></r>", "<r><b></b></r>"},
    {"<r><a x='1'/></r>", "<r><a x='2'></a></r>"},
    {"<r><a/><b>t</b></r>", "<r><a></a><b>t</b></r>"},

    // Text behind an end tag, where both have some.
    {"<r><b></b>x</r>", "<r><b></b>y</r>"},
    {"<r><b></b>x</r>", "<r><b></b> </r>"},
    {"<r><b></b><c/>x</r>", "<r><b></b><c></c>y</r>"},  // passing over an empty element changes nothing in that
    {"<a/>x<b/>", "<a></a>y<b/>"},                      // nor does it begin anything
};

constexpr Pair Different[] = {
    {"<a/>", "<b/>"},
    {"<a></a>", "<b></b>"},
    {"<a></a>", "<a></b>"},
    {"<p:a xmlns:p='u'/>", "<q:a xmlns:q='u'/>"},  // the declarations are attributes with different names
    {"<p:a xmlns:p='u'/>", "<p:a xmlns:p='v'/>"},
    {"<r xmlns:p='u' xmlns:q='v'><p:a/></r>", "<r xmlns:p='u' xmlns:q='v'><q:a/></r>"},
    {"<a x='1'/>", "<a x='2'/>"},
    {"<a x='1'/>", "<a/>"},
    {"<a x='1'/>", "<a y='1'/>"},
    {"<a x=' 1'/>", "<a x='1'/>"},
    {"<a>t</a>", "<a> t</a>"},
    {"<a>t</a>", "<a/>"},
    {"<a>t</a>", "<a></a>"},
    {"<a>t</a>", "<a><b/></a>"},
    {"<a><b>t</b></a>", "<a><b/></a>"},
    {"<r><b></b></r>", "<r><b><c/></b></r>"},
    {"<r> <b/></r>", "<r>\n<b/></r>"},    // both have text behind the start tag, and it differs
    {"<r>&#13;<b/></r>", "<r><b/></r>"},  // a carriage return is not blank
    {"<r><b/>x</r>", "<r><b/></r>"},
    {"<r><b/>x</r>", "<r><b/>y</r>"},  // an empty-element tag is a start
    {"<r><b></b>x</r>", "<r><b></b></r>"},
    {"<r><b></b>x</r>", "<r><b></b><c/></r>"},
    {"<r> <b/></r>", "<r><b></b></r>"},  // blank text against a start tag must have that start tag behind it
    {"<r> <r/></r>", "<r><r></r>"},
    {"<r/>", "<r/><r/>"},
    {"<r></r>", "<r></r></r>"},
    {"<r><b>", "<r><b></b></r>"},
};

std::string describe(const Pair& pair) {
    return std::string(pair.left) + " | " + pair.right;
}

bool compare(const std::string& left, const std::string& right) {
    return QeXmlUtils::compareXml(QeCString(left), QeCString(right));
}

// What comparing raises, as `!line:column message`; empty when nothing.
std::string errorOf(const char* left, const char* right) {
    try {
        QeXmlUtils::compareXml(left, right);
        return "";
    } catch (const QeXmlParseError& error) {
        return tessit::test::describe(error);
    }
}

}  // namespace

TEST(CompareXml, ToleratesFormattingInEitherOrder) {
    for (const Pair& pair : Equal) {
        EXPECT_TRUE(QeXmlUtils::compareXml(pair.left, pair.right)) << describe(pair);
        EXPECT_TRUE(QeXmlUtils::compareXml(pair.right, pair.left)) << describe(pair) << " (exchanged)";
    }
}

TEST(CompareXml, TellsDifferencesInEitherOrder) {
    for (const Pair& pair : Different) {
        EXPECT_FALSE(QeXmlUtils::compareXml(pair.left, pair.right)) << describe(pair);
        EXPECT_FALSE(QeXmlUtils::compareXml(pair.right, pair.left)) << describe(pair) << " (exchanged)";
    }
}

// Documents that were cut off anywhere: an error or "different", never a stray read.
TEST(CompareXml, NeverTakesTheBeginningOfADocumentForTheWhole) {
    for (const Pair& pair : Equal) {
        const std::string_view whole(pair.left);
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const QeCString beginning(whole.substr(0, length));
            try {
                EXPECT_FALSE(QeXmlUtils::compareXml(beginning, pair.right)) << beginning;
                EXPECT_FALSE(QeXmlUtils::compareXml(pair.right, beginning)) << beginning;
            } catch (const QeXmlParseError& error) {
                EXPECT_GE(error.getLineNumber(), 1u);
            }
        }
    }
}

TEST(CompareXml, PassesOnWhatTheReadersRaise) {
    struct Case {
        const char* refused;
        const char* other;
        const char* error;
    };
    constexpr Case Cases[] = {
        {"", "<a/>", "!1:1 Premature EOF"},
        {"text", "<a/>", "!1:2 First non-ws character in document wasn't '<'"},
        {"<a>\n<b x></a>", "<a>\n<b/></a>", "!2:6 Invalid character in attribute definition"},
        {"<a><b>", "<a><b/></a>", "!1:7 Premature EOF"},          // in search of the end of <b>
        {"<a> ", "<a></a>", "!1:5 Premature EOF"},                // in text
        {"<a/><!-- end -->", "<a/>", ""},                         // different before it is read
        {"<a/><!-- end -->", "<a/><b/>", "!1:17 Premature EOF"},  // nothing but whitespace may follow the root
    };
    for (const Case& row : Cases) {
        EXPECT_EQ(errorOf(row.refused, row.other), row.error) << row.refused;
        EXPECT_EQ(errorOf(row.other, row.refused), row.error) << row.refused << " (exchanged)";
    }
    EXPECT_EQ(errorOf("<a", "x"), "!1:1 Premature EOF");  // the first document is opened first
}

// Anything quadratic or recursive in these would take minutes, or the stack.
TEST(CompareXml, ComparesLargeDocuments) {
    constexpr std::size_t Count = 100'000;
    std::string ascending, descending;
    for (std::size_t i = 0; i < Count; ++i) {
        ascending += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
        descending += " a" + std::to_string(Count - 1 - i) + "='" + std::to_string(Count - 1 - i) + "'";
    }
    EXPECT_TRUE(compare("<r" + ascending + "/>", "<r" + descending + "/>"));
    EXPECT_FALSE(compare("<r" + ascending + "/>", "<r" + descending + " b=''/>"));
    const std::string nested = repeat("<a>", Count) + repeat("</a>", Count);
    EXPECT_TRUE(compare(nested, nested));
    EXPECT_TRUE(compare(nested, repeat("<a>\n", Count) + repeat("</a>\t", Count)));
    for (const char* part : {"<b/> ", "<b></b> ", "<b> </b>", "<!-- --> ", "<?p?><b/>", "<b/>&#9;"})
        EXPECT_TRUE(compare("<r>x<b/>" + repeat(part, Count) + "</r>", "<r>x<b/>" + repeat(part, Count) + "</r>"));
    const std::string uri(50 * Count, 'u');
    const std::string underOneUri = "<r xmlns='" + uri + "' xmlns:p='" + uri + "'>" + repeat("<b/><p:b/>", Count);
    EXPECT_TRUE(compare(underOneUri, underOneUri));
    EXPECT_TRUE(compare("<r><b></b>" + repeat(" ", 10 * Count) + "<b/></r>", "<r><b></b><b/></r>"));
}

// Names share the storage of a URI that is long enough; what they are taken for must not depend on it.
TEST(CompareXml, TellsLongUrisApart) {
    const std::string u(1000, 'u'), v = u.substr(1) + 'v';
    const auto document = [](const std::string& first, const std::string& second, const std::string& inner) {
        return "<r xmlns:p='" + first + "' xmlns:q='" + second + "'><p:a/><q:a p:x=''/>" +
               repeat("<b xmlns='" + inner + "'><c/></b><p:c q:x=''></p:c>", 3) + "</r>";
    };
    EXPECT_TRUE(compare(document(u, v, v), document(u, v, v)));
    EXPECT_TRUE(compare(document(u, u, u), document(u, u, u)));
    EXPECT_FALSE(compare(document(u, v, v), document(u, v, u)));
    EXPECT_FALSE(compare(document(u, v, v), document(u, u, v)));
    const std::string declarations = "<r xmlns:p='" + u + "' xmlns:q='" + v + "' xmlns:s='" + u + "'>";
    const auto wrap = [&](const std::string& content) { return declarations + content + "</r>"; };
    EXPECT_TRUE(compare(wrap("<p:a/><q:a/><s:a/><p:a p:x=''/>"), wrap("<s:a/><q:a/><p:a/><s:a s:x=''/>")));
    EXPECT_FALSE(compare(wrap("<p:a/><s:a/><q:a/>"), wrap("<s:a/><p:a/><p:a/>")));
    EXPECT_FALSE(compare(wrap("<p:a/><p:a p:x=''/>"), wrap("<s:a/><p:a q:x=''/>")));
    std::string left = "<r>", right = "<r>";
    for (int i = 100; i < 200; ++i) {  // one after the other in the same storage
        const std::string uri = u + std::to_string(i), other = v + std::to_string(i);
        const std::string tag = "<b xmlns:p='" + uri + "' xmlns:q='" + other + "' xmlns:s='" + uri + "'>";
        left += tag + "<p:c/></b>";
        right += tag + "<s:c/></b>";
    }
    EXPECT_TRUE(compare(left + "</r>", right + "</r>"));
}

TEST(CompareAttributeSet, LooksAtNamesAndValuesButNotAtPrefixes) {
    QeXmlAttributeSet left, right;
    EXPECT_TRUE(QeXmlUtils::compareAttributeSet(left, right));
    left.add(QeXmlAttribute("b", "1", QeXmlNamespace("p", "u")));
    EXPECT_FALSE(QeXmlUtils::compareAttributeSet(left, right));
    EXPECT_FALSE(QeXmlUtils::compareAttributeSet(right, left));
    left.add(QeXmlAttribute("a", "2", QeXmlNamespace()));
    right.add(QeXmlAttribute("a", "2", QeXmlNamespace()));
    right.add(QeXmlAttribute("b", "1", QeXmlNamespace("q", "u")));
    EXPECT_TRUE(QeXmlUtils::compareAttributeSet(left, right));
    right.find(QeXmlName("a"))->setValue("3");
    EXPECT_FALSE(QeXmlUtils::compareAttributeSet(left, right));
}

// In the reader's order, names with one local name stand by the prefixes that were written.
TEST(CompareAttributeSet, FollowsTheReadersOrder) {
    const char* const left = "<a xmlns:p='u' xmlns:q='v' p:x='1' q:x='2'/>";
    EXPECT_TRUE(QeXmlUtils::compareXml(left, "<a q:x='2' p:x='1' xmlns:q='v' xmlns:p='u'/>"));
    QeXmlReader inOrder(QeCString("<a p:x='1' q:x='2'/>"));
    QeXmlReader exchanged(QeCString("<a q:x='1' p:x='2'/>"));
    for (QeXmlReader* reader : {&inOrder, &exchanged}) {
        reader->addNamespace(QeXmlNamespace("p", reader == &inOrder ? "u" : "v"));
        reader->addNamespace(QeXmlNamespace("q", reader == &inOrder ? "v" : "u"));
        reader->readElementStart();
    }
    EXPECT_FALSE(QeXmlUtils::compareAttributeSet(inOrder.getLastAttributes(), exchanged.getLastAttributes()));
}
