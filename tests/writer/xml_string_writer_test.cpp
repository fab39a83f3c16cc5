#include <climits>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>
#include <writer/writing.h>

#include <tessit/writer/xml_string_writer.h>

namespace {

// Counts what goes through its slots, and shows where the bytes are: what only a flush brings into the string was
// buffered.
class CountingWriter : public QeXmlStringWriter {
public:
    using QeXmlStringWriter::writeToSink;
    void writeToSink(const char* bytes, unsigned length) override {
        ++blocks;
        QeXmlStringWriter::writeToSink(bytes, length);
    }
    void flush() override {
        ++flushes;
        QeXmlStringWriter::flush();
    }

    int blocks = 0;
    int flushes = 0;
};

std::string text(QeXmlStringWriter& writer) {
    return std::string(writer.getString());
}

struct BoundaryCase {
    unsigned buffered;  // bytes in the buffer before
    unsigned length;    // of the block
    int flushes;        // that the block needs
};

constexpr BoundaryCase Boundaries[] = {
    {0, 1022, 0}, {0, 1023, 0},  // less than the free space
    {0, 1024, 1},                // exactly the free space: flushed first
    {0, 1025, 1}, {1, 1022, 0},   {1, 1023, 1}, {1, 1024, 1},
    {1023, 0, 0}, {1023, 1, 1},   {1024, 0, 1},  // a full buffer has no free space at all
    {1024, 1, 1}, {500, 2000, 1},
};

TEST(XmlStringWriter, BuffersBlocksUpToTheFreeSpace) {
    for (const auto& [buffered, length, flushes] : Boundaries) {
        SCOPED_TRACE(testing::Message() << length << " bytes behind " << buffered);
        CountingWriter writer;
        for (unsigned i = 0; i < buffered; ++i)
            writer.writeToSink('a');
        EXPECT_EQ(writer.flushes, 0);
        const std::string block(length, 'b');
        writer.writeToSink(block.data(), length);
        EXPECT_EQ(writer.flushes, flushes);
        writer.writeToSink('c');
        EXPECT_EQ(writer.flushes, flushes) << "a block that fills the buffer does not go into it";
        EXPECT_EQ(text(writer), std::string(buffered, 'a') + block + "c");
    }
    CountingWriter writer;
    for (int i = 0; i < 1025; ++i)
        writer.writeToSink('a');
    EXPECT_EQ(writer.flushes, 1) << "a full buffer has no place for one more byte";
}

TEST(XmlStringWriter, ReportsThroughTheSlotsAndHandsItsOutputOver) {
    CountingWriter writer;
    writer.writeToSink(QeCString("abc"));
    EXPECT_EQ(writer.blocks, 1);
    EXPECT_EQ(std::as_const(writer).getLength(), 3u);
    EXPECT_EQ(writer.getString() + writer.getString(), "abcabc");
    EXPECT_EQ(writer.flushes, 3);
    writer.writeToSink('d');
    EXPECT_EQ(std::move(writer).getString(), "abcd");
    EXPECT_EQ(writer.getString(), "");
    EXPECT_EQ(writer.flushes, 5);
}

// The reserved memory is never touched, so that it costs no more than its addresses;
// the address sanitizer, however, would keep books on all of it.
TEST(XmlStringWriter, SplitsWhatTheBytesSlotCannotCount) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "takes half a gigabyte of the sanitizer's own memory";
#endif
    if (sizeof(std::size_t) == sizeof(unsigned)) GTEST_SKIP() << "no text is as long here";
    class Lengths : public QeXmlStringWriter {
    public:
        using QeXmlStringWriter::writeToSink;
        void writeToSink(const char*, unsigned length) override { lengths.push_back(length); }
        std::vector<unsigned> lengths;
    };
    QeCString text;
    try {
        text.resizeForOverwrite(std::size_t{UINT_MAX} + 10);
    } catch (const std::bad_alloc&) {
        GTEST_SKIP() << "needs 4 GiB of address space";
    }
    Lengths writer;
    writer.write(text, false);
    writer.write("", false);
    EXPECT_EQ(writer.lengths, (std::vector<unsigned>{UINT_MAX, 10, 0}));
}

// Its escaped length, modulo 2 to the power of 32, is next to nothing.
TEST(XmlStringWriter, RefusesWhatCannotBeAddressedOnceItIsEscaped) {
    if (sizeof(std::size_t) > 4) GTEST_SKIP() << "whatever fits into memory can be counted here";
    class Sink : public QeXmlStringWriter {};
    QeXmlStringWriter writer;
    Sink sink;
    QeCString quotes;
    const std::size_t length = SIZE_MAX / 6 + 1;
    std::memset(quotes.resizeForOverwrite(length), '"', length);
    EXPECT_THROW(writer.writeAttribute("a", quotes, true), std::length_error);
    EXPECT_THROW(sink.writeAttribute("a", quotes, true), std::bad_alloc);
    EXPECT_EQ(text(writer) + text(sink), "");
}

// An override that does nothing would leave the buffer full, and the next byte without a place.
TEST(XmlStringWriter, SurvivesAFlushThatDoesNotFlush) {
    class Lazy : public QeXmlStringWriter {
    public:
        void flush() override {}
    };
    Lazy writer;
    for (int i = 0; i < 3000; ++i)
        writer.QeXmlStringWriter::writeToSink('a');
    writer.QeXmlStringWriter::writeToSink(std::string(1000, 'b').data(), 1000);
    writer.QeXmlStringWriter::flush();
    EXPECT_EQ(text(writer), std::string(3000, 'a') + std::string(1000, 'b'));
}

// From the buffer or from the string, one byte and only the one that is asked for.
TEST(XmlStringWriter, TakesTheLastByteBack) {
    QeXmlStringWriter writer;
    writer.removeLastCharFromSink('\n');  // there is none
    writer.write("xy\n", false);
    writer.writeNewLine();
    for (const char last : {'x', '\n', '\n', '\n'})
        writer.removeLastCharFromSink(last);
    EXPECT_EQ(text(writer), "xy");
    for (const char byte : {'y', 'y'})
        writer.writeToSink(byte);
    for (const char last : {'x', 'y'})
        writer.removeLastCharFromSink(last);
    EXPECT_EQ(text(writer), "xyy");
    for (const char last : {'y', 'y', 'y', 'x', 'x'})
        writer.removeLastCharFromSink(last);
    EXPECT_EQ(text(writer), "");
}

TEST(XmlStringWriter, CopiesShareNothing) {
    auto original = std::make_unique<QeXmlStringWriter>();
    original->setSizeOfIndent(4);
    run(*original, ">1 +{u}p:e |");
    original->writeToSink('b');  // stays in the buffer
    QeXmlStringWriter copy(*original), assigned;
    run(assigned, "+{v}q:replaced +{v}q:too");
    assigned = *original;
    const QeXmlStringWriter& itself = assigned;
    assigned = itself;
    run(*original, "-{u}p:e /{u}p:g");
    EXPECT_EQ(text(*original), "<p:e xmlns:p=\"u\">\nb </p:e><p:g xmlns:p=\"u\"/>");
    original.reset();
    for (QeXmlStringWriter* writer : {&copy, &assigned}) {
        EXPECT_EQ(writer->getSizeOfIndent(), 4);
        run(*writer, "/{v}q:d /{u}p:f");
        EXPECT_EQ(text(*writer), "<p:e xmlns:p=\"u\">\nb <q:d xmlns:q=\"v\"/><p:f/>");
    }
}

}  // namespace
