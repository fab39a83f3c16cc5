// What writing costs in allocations, and what is left when one of them fails.

#include <gtest/gtest.h>
#include <string>
#include <support/failing_allocator.h>
#include <writer/logging_writer.h>

#include <tessit/writer/xml_string_writer.h>

namespace {

// Its sink takes everything and keeps nothing.
class Discarding : public QeXmlWriter {
public:
    void writeToSink(char) override {}
    void writeToSink(const char*, unsigned) override {}
    void writeToSink(const QeCString&) override {}
    void flush() override {}
};

class DiscardingStrings : public Discarding {
public:
    using Discarding::writeToSink;
    void writeToSink(const char* bytes, unsigned length) override { QeXmlWriter::writeToSink(bytes, length); }
};

const QeXmlNamespace Long("long", "http://example.com/a/uri/of/more/than/23/bytes");
const QeXmlName Root("root-element-with-a-name-of-more-than-23-bytes", Long);
const QeXmlName Item("item", QeXmlNamespace("i", "http://example.com/declared/by/each/item"));
const QeCString ShortText("a text & <its> escapes");
const QeCString LongText(std::string_view(std::string(900, 'x')));
const QeCString LongValue(std::string_view(std::string(150, '"')));

QeXmlAttributeSet someAttributes() {
    QeXmlAttributeSet set;
    set.add(QeXmlName("id"), "a value of more than 23 bytes");
    set.add(QeXmlName("lang", QeXmlNamespace("l", "http://example.com/also/declared/by/each")), "de");
    set.add(QeXmlName("quotes"), LongValue);
    for (int i = 0; i < 30; ++i)
        set.add(QeXmlName(QeCString("name") + std::to_string(i)), QeCString("value") + std::to_string(i));
    set.begin();  // from now on it could be out of order
    return set;
}

void writeOrdinary(QeXmlWriter& writer, const QeXmlAttributeSet& attributes) {
    writer.writeElementStart(Root, attributes, false);
    writer.writeElementStart(Item, attributes, false);
    writer.incrementIndent();
    for (int i = 0; i < 10; ++i) {
        writer.writeNewLine();
        writer.writeElementStart(Item, attributes, false);
        writer.write(ShortText, true);
        writer.write(LongText, true);
        writer.writeElementEnd(Item);
        writer.writeSimpleElement(Item, ShortText, ShortText, true);
    }
    writer.decrementIndent();
    writer.writeElementEnd(Item);
    writer.writeElementEnd(Root);
}

TEST(Allocations, OrdinaryWritesMakeNoneOnceWarm) {
    const QeXmlAttributeSet attributes = someAttributes();
    Discarding bytes;
    DiscardingStrings strings;
    for (QeXmlWriter* writer : {static_cast<QeXmlWriter*>(&bytes), static_cast<QeXmlWriter*>(&strings)}) {
        for (int i = 0; i < 100; ++i)  // until each string that is reused has held the longest text
            writeOrdinary(*writer, attributes);
        EXPECT_EQ(countAllocations([&] { writeOrdinary(*writer, attributes); }), 0u);
    }
}

// What is long takes one buffer of just its size, and that only if there is something to escape.
TEST(Allocations, LongTextsTakeOneBuffer) {
    const QeCString plain(std::string_view(std::string(100000, 'x')));
    const QeCString special = plain + "&";
    Discarding writer;
    EXPECT_EQ(countAllocations([&] { writer.write(plain, true); }), 0u);
    EXPECT_EQ(countAllocations([&] { writer.write(special, true); }), 1u);
    EXPECT_EQ(countAllocations([&] { writer.writeAttribute("a", plain, true); }), 1u);
}

// An attribute goes through the buffer of 1,024 bytes as long as its worst case fits: a name and its value, six bytes
// each when escaped, and four around them.
TEST(Allocations, AnAttributeOf1024BytesMakesNone) {
    const QeCString fits(std::string(1019, 'v')), tooLong = fits + "v";
    Discarding writer;
    EXPECT_EQ(countAllocations([&] { writer.writeAttribute("a", fits, false); }), 0u);
    EXPECT_EQ(countAllocations([&] { writer.writeAttribute("a", tooLong, false); }), 1u);
}

// Whichever allocation fails, the call is as if it had not been made.
TEST(Allocations, FailingOnesLeaveTheWriterUsable) {
    const QeXmlAttributeSet attributes = someAttributes();
    std::string expected;
    forEachFailingAllocation([&](Attempt& attempt) {
        LoggingWriter writer;
        writer.calls.reserve(1 << 20);
        writer.output.reserve(1 << 20);
        const auto open = [&] { writer.writeElementStart(Root, attributes, false); };
        if (!attempt(open)) {
            writer.output.clear();
            open();
        }
        writer.writeElementStart(Item, attributes, true);
        writer.writeElementEnd(Root);
        writer.writeElementStart(Root, attributes, true);
        if (expected.empty()) expected = writer.output;  // of the first run, in which nothing fails
        EXPECT_EQ(writer.output, expected);
    });
}

TEST(Allocations, LongNamespacesMakeNoneOnceWarm) {
    const QeXmlName name("e", QeXmlNamespace("p", QeCString(std::string_view(std::string(300, 'u')))));
    QeXmlAttributeSet attributes;
    attributes.add(QeXmlName("alt"), name.getNamespace().getURI());
    Discarding writer;
    const auto writeOften = [&] {
        for (int i = 0; i < 10; ++i) {
            writer.writeElementStart(name, attributes, false);
            writer.writeElementStart(name, attributes, true);
            writer.writeElementEnd(name);
        }
    };
    writeOften();
    EXPECT_EQ(countAllocations(writeOften), 0u);
}

}  // namespace
