// Streams as input: what they throw, what is left of them, and those that cannot be read.

#include <gtest/gtest.h>
#include <stdexcept>
#include <streambuf>

#include "support/documents.h"

using namespace tessit::test;

namespace {

// Gives one byte at a time and fails behind the last.
class FailingBuffer : public std::streambuf {
public:
    explicit FailingBuffer(std::string bytes) : text(std::move(bytes)) {}

protected:
    int underflow() override {
        if (given == text.size()) throw std::runtime_error("device");
        char* const next = text.data() + given++;
        setg(next, next, next + 1);
        return *next;
    }

private:
    std::string text;
    std::size_t given = 0;
};

}  // namespace

TEST(XmlReader, PassesOnWhatAStreamThrows) {
    FailingBuffer buffer("<?xml version='1.0'?><a/>");
    std::istream in(&buffer);
    EXPECT_THROW(QeXmlReader reader(in), std::runtime_error);
}

TEST(XmlReader, ReadsWhatIsLeftOfAStream) {
    std::istringstream in("skipped<a/>");
    in.exceptions(std::ios::failbit | std::ios::badbit);
    in.seekg(7);
    QeXmlReader reader(in);
    reader.readElementStart("a");
    EXPECT_TRUE(in.eof());
}

TEST(XmlReader, TakesAStreamThatCannotBeReadForEmpty) {
    std::istringstream failed("<a/>");
    failed.setstate(std::ios::failbit);
    std::istream unbuffered(nullptr);
    for (std::istream* in : {static_cast<std::istream*>(&failed), &unbuffered}) {
        try {
            QeXmlReader reader(*in);
            ADD_FAILURE();
        } catch (const QeXmlParseError& error) {
            EXPECT_EQ(describe(error), "!1:1 Premature EOF");
        }
    }
}
