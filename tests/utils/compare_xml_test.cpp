#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include <tessit/utils/xml_utils.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

struct Pair {
    const char *left, *right;
};

constexpr Pair Equal[] = {
    {"<a x='1' y='2'>&lt;&#65;é\n<b/></a>",  // how characters and attributes are written, and what else is there
     "<?xml version='1.0'?><!DOCTYPE a><a y=\"2\" x='1'><?pi?><![CDATA[<A]]>&#xE9;\r\n<!-- c --><b/></a>\n"},
    {"<a xmlns:p='u' xmlns:q='v' p:x='1' q:x='2'/>", "<a q:x='2' p:x='1' xmlns:q='v' xmlns:p='u'/>"},
    {"<p:a xmlns:p='u'><p:b/></p:a>", "<p:a xmlns:p='u'><b xmlns='u'></b></p:a>"},
    {"<r xmlns:p='u' xmlns:q='u'><p:a p:x=''/></r>", "<r xmlns:p='u' xmlns:q='u'><q:a q:x=''/></r>"},
    {"<p:a/>", "<q:a/>"},                  // unbound prefixes are in no namespace
    {"<a xmlns:p='u'/>", "<a p='u'/>"},    // a declaration is an attribute
    {"<r><a></r></a>", "<r><a></r></a>"},  // end tags are held against each other, not against start tags

    // Blank text without a counterpart.
    {"<r>\n<b/></r>", "<r><b/></r>"},
    {"<r> <b></b></r>", "<r><b></b></r>"},
    {"<r> <b>t</b> <c/> </r>", "<r><b>t</b><c/></r>"},
    {"<r> </r>", "<r></r>"},
    {"<r><b> </b></r>", "<r>\n<b></b></r>"},  // in different places

    // An empty-element tag and its long form.
    {"<a/>", "<a>\n  </a>"},
    {"<r><b/></r>", "<r> <b></b></r>"},
    {"<r><a x='1'/></r>", "<r><b x='2'></b></r>"},
    {"<r><a/><b>t</b></r>", "<r><a></a><b>t</b></r>"},

    // Text behind an end tag, where both have some.
    {"<r><b></b>x</r>", "<r><b></b>y</r>"},
    {"<r><b></b><c/>x</r>", "<r><b></b><c></c>y</r>"},  // passing over an empty element changes nothing in that
    {"<a/>x<b/>", "<a></a>y<b/>"},                      // nor does it begin anything
};

constexpr Pair Different[] = {
    {"<a></a>", "<b></a>"},
    {"<a></a>", "<a></b>"},
    {"<p:a xmlns:p='u'/>", "<q:a xmlns:q='u'/>"},  // the declarations are attributes with different names
    {"<r xmlns:p='u' xmlns:q='v'><p:a/></r>", "<r xmlns:p='u' xmlns:q='v'><q:a/></r>"},
    {"<r xmlns:p='u' xmlns:q='v'><a p:x=''/></r>", "<r xmlns:p='u' xmlns:q='v'><a q:x=''/></r>"},
    {"<r xmlns:p='u' xmlns:q='v'><p:a></p:a></r>", "<r xmlns:p='u' xmlns:q='v'><p:a></q:a></r>"},
    {"<a x='1'/>", "<a x='2'/>"},
    {"<a x='1'/>", "<a/>"},
    {"<a x='1'/>", "<a y='1'/>"},
    {"<a>t</a>", "<a> t</a>"},
    {"<a>t</a>", "<a/>"},
    {"<a>t</a>", "<a></a>"},
    {"<a>t</a>", "<a><b/></a>"},
    {"<r><b></b></r>", "<r><b><c/></b></r>"},
    {"<r> <b/></r>", "<r>\n<b/></r>"},    // both have text behind the start tag, and it differs
    {"<r>&#13;<b/></r>", "<r><b/></r>"},  // a carriage return is not blank
    {"<r><b/>x</r>", "<r><b/></r>"},
    {"<r><a></a><b/>x</r>", "<r><a></a><b/>y</r>"},  // an empty-element tag is a start
    {"<r><b></b>x</r>", "<r><b></b></r>"},
    {"<r> <b/></r>", "<r><b></b></r>"},  // blank text against a start tag must have that start tag behind it
    {"<r> <r/></r>", "<r><r></r>"},
    {"<r> <b x='1'></b></r>", "<r><b></b></r>"},
    {"<r><a/></r>", "<r><a><b></r>"},  // nothing but blank text stands in what is passed over
    {"<r/>", "<r/><r/>"},
    {"<r><b>", "<r><b></b></r>"},
};

bool compare(const std::string& left, const std::string& right) {
    const Document a(left), b(right);
    const bool areSame = QeXmlUtils::compareXml(QeCString(left), QeCString(right));
    EXPECT_EQ(QeXmlUtils::compareXml(a.inPieces(0, 1), b.inPlace()), areSame) << left << " | " << right;
    return areSame;
}

// What comparing raises, as `!line:column message`; empty when nothing.
std::string errorOf(const char* left, const char* right) {
    try {
        QeXmlUtils::compareXml(left, right);
        return "";
    } catch (const QeXmlParseError& error) {
        return describe(error);
    }
}

// Names share the storage of a URI that is long enough; what they are taken for must not depend on it.
void expectInEitherOrder(const Pair& pair, bool equal) {
    for (const bool longUris : {false, true}) {
        const std::string left = longUris ? withLongURIs(pair.left) : pair.left;
        const std::string right = longUris ? withLongURIs(pair.right) : pair.right;
        EXPECT_EQ(compare(left, right), equal) << left << " | " << right;
        EXPECT_EQ(compare(right, left), equal) << left << " | " << right << " (exchanged)";
    }
}

}  // namespace

TEST(CompareXml, ToleratesFormattingAndNothingElse) {
    for (const Pair& pair : Equal)
        expectInEitherOrder(pair, true);
    for (const Pair& pair : Different)
        expectInEitherOrder(pair, false);
}

TEST(CompareXml, PassesOnWhatTheReadersRaise) {
    constexpr struct {
        const char *refused, *other, *error;
    } Cases[] = {
        {"", "<a/>", "!1:1 Premature EOF"},
        {"<a>\n<b x></a>", "<a>\n<b/></a>", "!2:6 Invalid character in attribute definition"},
        {"<a><b>", "<a><b/></a>", "!1:7 Premature EOF"},          // in search of the end of <b>
        {"<a> ", "<a></a>", "!1:5 Premature EOF"},                // in text
        {"<a/><!-- end -->", "<a/>", ""},                         // different before it is read
        {"<a/><!-- end -->", "<a/><b/>", "!1:17 Premature EOF"},  // nothing but whitespace may follow the root
    };
    for (const auto& [refused, other, error] : Cases) {
        EXPECT_EQ(errorOf(refused, other), error) << refused;
        EXPECT_EQ(errorOf(other, refused), error) << refused << " (exchanged)";
    }
    EXPECT_EQ(errorOf("<a", "x"), "!1:1 Premature EOF");  // the first document is opened first
}

TEST(CompareXml, TellsLongUrisApartThatFollowOneAnother) {
    std::string left = "<r>", right = "<r>", other = "<r>";
    for (int i = 100; i < 200; ++i) {  // in the same storage, where nothing keeps it
        const std::string uri = std::string(1000, 'u') + std::to_string(i);
        const std::string tag = "<b xmlns:p='" + uri + "' xmlns:q='v" + uri.substr(1) + "' xmlns:s='" + uri + "'>";
        left += tag + "<p:c/></b>";
        right += tag + "<s:c/></b>";
        other += tag + (i < 199 ? "<s:c/></b>" : "<q:c/></b>");
    }
    EXPECT_TRUE(compare(left + "</r>", right + "</r>"));
    EXPECT_FALSE(compare(left + "</r>", other + "</r>"));
}

TEST(CompareAttributeSet, LooksAtNamesAndValuesButNotAtPrefixes) {
    constexpr struct {
        const char *left, *right;
        bool equal;
    } Cases[] = {
        {"p:b='1'", "", false},
        {"p:b='1'", "q:b='1'", false},
        {"a='2' p:b='1'", "same:b='1' a='2'", true},
        {"a='2' p:b='1'", "a='3' p:b='1'", false},
        {"p:x='1' q:x='2'", "same:x='1' q:x='2'", false},  // the reader orders equal local names by their prefixes
    };
    const auto read = [](const char* attributes) {
        QeXmlReader reader(QeCString("<r xmlns:p='u' xmlns:q='v' xmlns:same='u'><a ") + attributes + "/></r>");
        reader.readElementStart();
        reader.readElementStart();
        return reader.getLastAttributes();
    };
    for (const auto& [left, right, equal] : Cases) {
        EXPECT_EQ(QeXmlUtils::compareAttributeSet(read(left), read(right)), equal) << left << " | " << right;
        EXPECT_EQ(QeXmlUtils::compareAttributeSet(read(right), read(left)), equal) << right << " | " << left;
    }
}
