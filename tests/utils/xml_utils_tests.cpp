#include <gtest/gtest.h>
#include <string_view>

#include <tessit/utils/xml_utils.h>

namespace {

TEST(XmlUtils, StripsTheEndsAskedFor) {
    constexpr struct {
        const char *text, *leading, *trailing, *both;
    } Rows[] = {
        {" \t\n", "", "", ""},
        {" a b ", "a b ", " a b", "a b"},
        {"\ra\r", "\ra\r", "\ra\r", "\ra\r"},
        {"\n\xC2\xA0\t", "\xC2\xA0\t", "\n\xC2\xA0", "\xC2\xA0"},  // a no-break space is text
    };
    for (const auto& [text, leading, trailing, both] : Rows) {
        const char* const expected[] = {text, leading, trailing, both};
        for (int type = 0; type < 8; ++type)  // the third bit means nothing
            EXPECT_EQ(QeXmlUtils::stripWhiteSpaceAndNewlines(text, static_cast<QeCString::stripType>(type)),
                      expected[type % 4])
                << '"' << text << "\", type " << type;
    }
}

TEST(XmlUtils, SplitsNamesAtTheirFirstColon) {
    constexpr struct {
        const char *qname, *prefix, *splitPrefix, *localName;
    } Rows[] = {
        {"a:b:c", "a", "a", "b:c"},
        {":x", "", "", "x"},
        {"x:", "x", "x", ""},
        {"abc", "", "old", "abc"},  // the caller's prefix stays
    };
    for (const auto& [qname, expectedPrefix, splitPrefix, expectedLocalName] : Rows) {
        SCOPED_TRACE(qname);
        QeCString prefix("old"), localName("old"), whole(qname), both(qname);
        EXPECT_EQ(QeXmlUtils::getPrefix(qname), expectedPrefix);
        QeXmlUtils::getPrefixAndLocalName(both, prefix, both);  // arguments that are the same object
        EXPECT_EQ(prefix, splitPrefix);
        EXPECT_EQ(both, expectedLocalName);
        QeXmlUtils::getPrefixAndLocalName(whole, whole, localName);
        EXPECT_EQ(whole, splitPrefix == std::string_view("old") ? qname : splitPrefix);
        EXPECT_EQ(localName, expectedLocalName);
    }
}

const QeXmlName Plain("n");
const QeXmlName Prefixed("n", QeXmlNamespace("p", "U"));
const QeXmlName Default("n", QeXmlNamespace("", "U"));

TEST(XmlUtils, ChangesTheNameOfAnElement) {
    const struct {
        const QeXmlName& name;
        const char *xml, *expected;
    } rows[] = {
        // What has no start tag, content and end tag stays.
        {Plain, "", ""},
        {Plain, " <a>t</a>", " <a>t</a>"},
        {Plain, "<a>", "<a>"},
        {Plain, "<", "<"},
        {Plain, "<a<b>", "<a<b>"},  // the last tag opens before the first one ends
        // Attributes and content stay byte for byte; what follows the last tag goes.
        {Plain, "<old  a = '1'\tb=\"2\" >x<b/>y\n</old >\n rest", "<n  a = '1'\tb=\"2\" >x<b/>y\n</n>\n"},
        {Plain, "<old\ta=\"1\" b=\"2\">t</old>", "<n b=\"2\">t</n>\n"},  // only a space ends the old name
        {Plain, "<><", "<n></n>\n"},
        // A declaration is added unless the URI is declared already, under whatever prefix.
        {Prefixed, "<old a=\"1\">t</old>", "<p:n xmlns:p=\"U\"  a=\"1\">t</p:n>\n"},
        {Prefixed, "<old a=\"1\" \n\t xmlns:q=\"U\">t</old>", "<p:n a=\"1\" \n\t xmlns:q=\"U\">t</p:n>\n"},
        {Prefixed, "<old xmlns:q=\"UU\">t</old>", "<p:n xmlns:p=\"U\"  xmlns:q=\"UU\">t</p:n>\n"},
        {Prefixed, "<old xmlnt:q=\"U\">t</old>", "<p:n xmlns:p=\"U\"  xmlnt:q=\"U\">t</p:n>\n"},
        {Prefixed, "<old xmlns=\"U\">t</old>", "<p:n xmlns:p=\"U\"  xmlns=\"U\">t</p:n>\n"},
        {Prefixed, "<old xmlns:q=\">t</old>", "<p:n xmlns:p=\"U\"  xmlns:q=\">t</p:n>\n"},
        {Prefixed, "<old xmlns:q>t</old>", "<p:n xmlns:p=\"U\"  xmlns:q>t</p:n>\n"},
        {Prefixed, "<xmlns:q=\"U\">t</x>", "<p:n xmlns:p=\"U\" >t</p:n>\n"},  // that is the name
        // A name without a prefix takes the default declaration, which a tag can have only once.
        {Default, "<old>t</old>", "<n xmlns=\"U\" >t</n>\n"},
        {Default, "<old a=\"1\" xmlns=\"V\">t</old>", "<n a=\"1\" xmlns=\"U\">t</n>\n"},
        {Default, "<old a='xmlns=\"V\"'\n\rxmlns\t= 'V'\n>t</old>", "<n a='xmlns=\"V\"'\n\rxmlns\t= \"U\"\n>t</n>\n"},
        {Default, "<old\nxmlns=\"V\" b=\"1\">t</old>", "<n xmlns=\"U\"  b=\"1\">t</n>\n"},  // goes with the old name
        {Default, "<old\nxmlns=\"U\">t</old>", "<n xmlns=\"U\" >t</n>\n"},
        {Default, "<old xmlns='U'\n>t</old>", "<n xmlns='U'\n>t</n>\n"},  // that is the one
        {Default, "<old xmlns=\"V\" xmlns:q=\"U\">t</old>", "<n xmlns=\"U\" xmlns:q=\"U\">t</n>\n"},
        {Default, "<old xmlns:q=\"U\">t</old>", "<n xmlns:q=\"U\">t</n>\n"},
        {Default, "<old a=\"xmlns='V'\" b=\"xmlns='V\">t</old>",
         "<n xmlns=\"U\"  a=\"xmlns='V'\" b=\"xmlns='V\">t</n>\n"},
        {Default, "<old xmlns='V>t</old>", "<n xmlns=\"U\"  xmlns='V>t</n>\n"},
        {Plain, "<old xmlns=\"V\">t</old>", "<n xmlns=\"V\">t</n>\n"},
        {Default, "<old xmlnsx=\"U\">t</old>", "<n xmlns=\"U\"  xmlnsx=\"U\">t</n>\n"},
    };
    for (const auto& [name, xml, expected] : rows)
        EXPECT_EQ(QeXmlUtils::changeName(name, xml), expected) << name.getQualifiedName() << ' ' << xml;
}

}  // namespace
