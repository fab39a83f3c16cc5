// Allocations: any one of them may fail, and reading on and on makes none.

#include <gtest/gtest.h>

#include "support/documents.h"
#include "support/failing_allocator.h"

using namespace tessit::test;

namespace {

const std::string Long(100, 'l');  // more than a string holds in place

// Declarations of `count` prefixes, more than are looked up one by one when there are twenty.
std::string declarations(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += " xmlns:prefix" + std::to_string(i) + "='" + Long + std::to_string(i) + "'";
    return text;
}

// Goes through all that allocates: conversions, references, many bindings, a tag that is looked at and one that
// is written anew, and an element whose text is converted half-way.
const std::string EverythingThatAllocates =
    "<?xml version='1.0' encoding='windows-1252' standalone='yes'?><r" + declarations(20) + ">" + Long + "&lt;" + Long +
    "<prefix3:a" + declarations(18) + " x='" + Long + "&gt;' " + Long + "='1' y=''/>" + "<b y='2' x='" + Long + "'>" +
    Long + "<c/></b><d>\xE9" + Long + "<?xml version='1.0' encoding='ISO-8859-1'?>" + Long + "\xE9</d></r>";

void readEverything(QeXmlReader& reader) {
    reader.readElementStart("r");
    reader.addNamespace(QeXmlNamespace(QeCString(Long), QeCString(Long)));
    EXPECT_TRUE(reader.isElementNext("prefix3:a"));
    reader.readElementStart("prefix3:a");
    reader.readElementEnd("prefix3:a");
    EXPECT_TRUE(reader.isElementNext("b"));
    reader.readElement("b");
    EXPECT_FALSE(reader.readElement(QeXmlReader::NullName).empty());
    try {
        reader.readElementEnd(QeCString(Long));
        ADD_FAILURE() << "another name was expected";
    } catch (const QeXmlParseError&) {
    }
}

// What is left after a failure can be looked at, read on, whatever it gives, and destroyed.
void readOn(QeXmlReader& reader) {
    describeNode(reader);
    for (const QeXmlAttribute& attribute : reader.getLastAttributes())
        EXPECT_TRUE(reader.getLastAttributes().contains(attribute)) << describe(attribute.getName());
    try {
        while (!reader.eof())
            reader.readNextNode();
    } catch (const QeXmlParseError&) {
    }
}

}  // namespace

TEST(XmlReader, SurvivesAnyFailingAllocation) {
    const Document document(EverythingThatAllocates);
    for (const Source source : Sources)
        forEachFailingAllocation([&](Attempt& attempt) {
            std::unique_ptr<QeXmlReader> reader;
            attempt([&] {
                reader = document.open(source);
                readEverything(*reader);
            });
            if (reader != nullptr) readOn(*reader);
        });
}

// Attributes are sorted by prefix, which need not be the order by URI that a lookup among many would rely on.
TEST(XmlReader, FindsTheAttributesOfATagThatFailed) {
    std::string inOrder, notInOrder;
    for (char local = 'a'; local <= 'z'; ++local) {
        inOrder += std::string(" ") + local + "=''";
        notInOrder += std::string(" p:") + local + "='" + Long + "' q:" + local + "='" + Long + "'";
    }
    const Document document("<r xmlns:p='v' xmlns:q='u'><a" + inOrder + "/><b" + notInOrder + "/></r>");
    forEachFailingAllocation([&](Attempt& attempt) {
        const auto reader = document.open(Source::Span);
        reader->readElementStart("r");
        reader->readElementStart("a");
        reader->readElementEnd("a");
        attempt([&] { reader->readElementStart("b"); });
        readOn(*reader);
    });
}

// A binding that could not be added has changed nothing: not even what was resolved through its scope before.
TEST(XmlReader, KeepsItsBindingsWhenOneCannotBeAdded) {
    const Document document("<r xmlns:p='u'><p:a/><a/><p:b/></r>");
    const QeXmlNamespace added("q", QeCString(Long));
    forEachFailingAllocation([&](Attempt& attempt) {
        const auto reader = document.open(Source::Span);
        reader->readElementStart("r");
        reader->readElementStart("p:a");
        reader->readElementEnd("p:a");
        const bool done = attempt([&] { reader->addNamespace(added); });
        EXPECT_EQ(reader->getURIForPrefix("q"), done ? Long : "");
        reader->readElementStart("a");
        reader->readElementEnd("a");
        reader->readElementStart("p:b");
        EXPECT_EQ(describeNode(*reader), "/{u}p:b");
    });
}

namespace {

std::size_t allocationsFor(const std::string& root, std::string_view record, std::size_t count) {
    const Document document("<r" + root + ">" + repeat(record, count) + "</r>");
    return countAllocations([&] {
        const auto reader = document.open(Source::Span);
        while (!reader->eof()) {
            reader->readNextNode();
            if (reader->getLastNodeType() == QeXmlReader::ElementStart) reader->isElementNext("record");
        }
    });
}

TEST(Allocations, LongUrisOfElementsThatEndedAreNotKept) {
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += "<p:e xmlns:p='" + std::string(300, 'u') + std::to_string(1000 + i) + "'/>";
    QeXmlReader reader(QeCString(std::string_view("<r>" + text + "</r>")));
    reader.readElementStart();
    const auto readHalf = [&] {
        for (int i = 0; i < 100; ++i) {
            reader.readElementStart("p:e");
            reader.readElementEnd("p:e");
        }
    };
    readHalf();
    EXPECT_EQ(countAllocations(readHalf), 0u);
}

}  // namespace

TEST(XmlReader, AllocatesNothingPerNode) {
    const std::string cases[][2] = {
        // the root's attributes, and what is repeated
        {"", "<record>text</record>\n"},
        {"", "<record x='1' y='" + Long + "&amp;' " + Long + "=''>" + Long + "&lt;<![CDATA[" + Long + "]]></record>"},
        {"", "<record" + repeat(" :x='1' y='2'", 20) + "/>"},
        {" xmlns='" + Long + "'", "<record><a/><b xmlns='' xmlns:p='" + Long + "'><p:c/></b></record>"},
        {declarations(20), "<record><prefix7:a prefix8:b='1'/></record>"},
    };
    for (const auto& [root, record] : cases)
        EXPECT_EQ(allocationsFor(root, record, 50), allocationsFor(root, record, 100)) << record;
}
