// All that a record has of a document, and what is said of documents that cannot be judged to their end. That it has
// the first fault of each table of conforming documents is tested with them.

#include "support/record.h"

#include <gtest/gtest.h>

using namespace tessit::test;

namespace {

struct Case {
    std::string_view xml;
    std::string_view entries;  // places and rules
};

const Case Cases[] = {
    {"<a/>", ""},
    {"<a b=1 c='1' c='<&x;'><p:d/>]]>&#0;</e>",
     "1:6 attribute, 1:7 not-read, 1:14 duplicate-attribute, 1:17 less-than-in-value, 1:18 undeclared-entity, "
     "1:24 unbound-prefix, 1:29 cdata-end-in-text, 1:32 character-reference, 1:38 end-tag"},
    // the second tag of an element is held against the first
    {"<r><a b='1' c='2'/><a b='1' b='2'/><a b='1'c='2'/><a b='1' c='<'/><a b='1' c='2'/></r>",
     "1:29 duplicate-attribute, 1:44 white-space, 1:63 less-than-in-value, 1:64 not-read"},
    {"<r><p:a xmlns:p='u' p:b=''/><p:a p:b=''/></r>", "1:30 unbound-prefix, 1:34 unbound-prefix"},
    {"<r><x xmlns:p='u'><p:a p:b=''/></x><p:a p:b=''/></r>", "1:37 unbound-prefix, 1:41 unbound-prefix"},
    {"<a xmlns:p='u'><a xmlns:p=''/></a>", "1:19 empty-prefix-declaration"},
    {"<a:b:c/>", "1:5 colon"},
    {"<<x", "1:1 not-read, 1:2 name, 1:2 second-root, 1:4 unfinished-document"},
    {"<r><a b='1' b='2'/><a b='1' b='2'/></r>", "1:13 duplicate-attribute, 1:29 duplicate-attribute"},
    {"<r xmlns:p='u'><p:a p:b=''/><b xmlns:p='v' xmlns:q='v'><p:a p:b='' q:b=''/></b></r>", "1:68 duplicate-attribute"},
    {"<a b='1'\r\n\r\n  b='2'/>", "3:3 duplicate-attribute"},
    {"<a>\x01<b c='\xC3'/></a>", "1:4 character, 1:11 malformed-encoding"},
    {"\xEF\xBB\xBF<a>\xFF&x;</a>", "1:4 malformed-encoding, 1:5 undeclared-entity"},
    {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9&x;</a>", "1:49 undeclared-entity"},
    {"<?xml version='1.0' encoding='ISO-8859-1'?><a>\x01&x;</a>", "1:47 character, 1:47 not-judged-further"},
    {"<?xml version='1.0' encoding='none'?><a>&x;</a>",
     "1:31 unknown-encoding, 1:31 not-judged-further, 1:36 not-read"},
    {"<a>&x;<?xml version='1.0'?>&x;</a>", "1:4 undeclared-entity, 1:9 xml-declaration-place, 1:9 not-judged-further"},
    {"<!DOCTYPE a [<!ENTITY e ']'>]><a>&x;&#0;<p:b/></a>", "1:1 document-type, 1:1 not-judged-further, 1:30 not-read"},
    {"<!DOCTYPE a [<!ENTITY e '<>'><!-- ' --><?p ' ?>]><a>&x;&#0;<p:b/></a>",
     "1:1 document-type, 1:56 character-reference"},
    {"<a/><b/>t<a>", "1:5 second-root, 1:9 text-outside-root, 1:10 second-root, 1:13 unfinished-document"},
    {"<a><b>", "1:7 unfinished-document"},
};

std::string describeAll(const QeXmlRecord& record) {
    std::string text;
    for (const QeXmlParseError& entry : record.getEntries())
        text += (text.empty() ? "" : ", ") + placeAndRule(entry);
    return text;
}

}  // namespace

TEST(Record, HasAllThatIsWrong) {
    for (const auto& [xml, entries] : Cases) {
        QeXmlRecord record;
        readInto(record, xml);
        EXPECT_EQ(describeAll(record), entries) << xml;
    }
}

namespace {

const struct {
    std::string_view xml;
    std::string entries;  // rules, paths and hints
} Surroundings[] = {
    {"<f><e/>< <e>]]></e><e>&#0; & <x a='1'a='2>'/></q></f><f>",
     "name /f| cdata-end-in-text /f/e[2]| character-reference /f/e[3]| reference /f/e[3]| white-space /f/e[3]| "
     "duplicate-attribute /f/e[3]| end-tag /f/e[3]| second-root are these several documents in a row? Each is one of "
     "its own| unfinished-document /f| "},
    {"<a/><b/><?xml version='1.0'?>",
     "second-root | xml-declaration-place are these several documents in a row? Each is one of its own| "
     "not-judged-further | "},
    {"<a><?xml version='1.0'?></a>", "xml-declaration-place /a| not-judged-further /a| "},
    {"\xEF\xBB\xBF\xEF\xBB\xBF<a>&#0;</a>",
     "text-outside-root a byte-order mark stands here a second time| character-reference /aa byte-order mark "
     "stands here a second time| "},
};

}  // namespace

// As a conforming reader would say it: that first faults have all of it is tested with the tables.
TEST(Record, SaysWhatIsAround) {
    for (const auto& [xml, entries] : Surroundings) {
        QeXmlRecord record;
        readInto(record, xml);
        std::string text;
        for (const QeXmlParseError& entry : record.getEntries())
            if (entry.getRule() != "not-read")
                text += std::string(entry.getRule()) + ' ' + std::string(entry.getPath()) +
                        std::string(entry.getHint()) + "| ";
        EXPECT_EQ(text, entries) << xml;
    }
}

// The words of one fault are not those of another.
TEST(Record, SaysWhatEndsTheDocument) {
    QeXmlRecord record;
    readInto(record, "<a>\x01<b/>");
    EXPECT_EQ(std::string_view(record.getEntries().back().why()), "the document ends before it is complete");
}

// Of any document, by any way into the reader, the first ones are kept, and all counted.
TEST(Record, KeepsTheFirst) {
    const Document document("<a>\n&x; &y; \x01 &z;</a>");
    QeXmlRecord record(2);
    for (const Source source : {Source::Span, Source::Stream, Source::String}) {
        const auto reader = document.open(source, QeXmlReaderOptions{.sourceName = "doc", .record = &record});
        EXPECT_EQ(describeAll(record), "2:1 undeclared-entity, 2:5 undeclared-entity");
        EXPECT_EQ(record.getCount(), 4u);
        EXPECT_EQ(record.getEntries()[0].getSourceFile(), "doc");
        EXPECT_EQ(record.getEntries()[0].getExcerpt().text, "&x; &y; \x01 &z;</a>");
    }
    std::istringstream in("<b>&x;</b>");
    QeXmlReader reader(QeXmlInput::stream(in), {.record = &record});
    EXPECT_EQ(describeAll(record), "1:4 undeclared-entity");
    reader.reset(QeXmlInput::copy("<b/>"));
    EXPECT_TRUE(record.empty());
    EXPECT_THROW(QeXmlReader(QeCString("<a/>"), {.record = &record}).readElementStart("b"), QeXmlParseError);
    EXPECT_TRUE(record.empty());  // that is no fault of the document
}
