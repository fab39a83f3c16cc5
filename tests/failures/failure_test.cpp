// Whole operations in which memory runs out at any place, or a class of the
// application throws at any call: the exception arrives, nothing leaks, and what is
// left is as promised. The rooms' own tests do the same for single classes.

#include <functional>
#include <gtest/gtest.h>
#include <istream>
#include <stdexcept>
#include <streambuf>
#include <utility>

#include <corvel/value_error.h>
#include <tessit/model/xml_element_imp.h>
#include <tessit/sax/xml_sax_parser.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>
#include <tessit/writer/xml_string_writer.h>

#include "support/documents.h"
#include "support/failing_allocator.h"
#include "support/messages.h"

using namespace tessit::test;

namespace {

const QeCString Long(std::string_view(std::string(300, 'l')));  // past what a string, or a name, holds in place

// With references, a conversion, URIs that are shared and elements within them.
QeCString document(const char* text) {
    return "<?xml version='1.0' encoding='ISO-8859-1'?><r xmlns='" + Long + "' xmlns:p='" + Long + "1' a='" + Long +
           "&amp;'><p:a p:x='" + Long + "'>\xE9&lt;</p:a><b></b><c/><!-- -->" + text + Long + "</r>";
}

// Counts the events, and can be told to throw at one of them.
class Counter final : public QeXmlContentHandler {
public:
    explicit Counter(int failingCall = -1) : untilFailure(failingCall) {}

    void prolog(const QeXmlProlog&) override { count(); }
    void elementStart(const QeXmlName&, const QeXmlAttributeSet&) override { count(); }
    void elementEnd(const QeXmlName&) override { count(); }
    void content(const QeCString&) override { count(); }

    int events = 0;

private:
    void count() {
        if (untilFailure-- == 0) throw std::runtime_error("handler");
        ++events;
    }

    int untilFailure;
};

int countEvents(QeXmlSAXParser& parser, const QeCString& text) {
    Counter counter;
    parser.setContentHandler(&counter);
    parser.parse(text, "");
    return counter.events;
}

void writeAll(QeXmlWriter& writer) {
    const QeXmlNamespace p("p", Long), byDefault("", Long + "1");
    QeXmlAttributeSet attributes;
    attributes.add(QeXmlName("a", p), Long + "'");
    for (int i = 0; i < 20; ++i) {
        writer.writeElementStart(QeXmlName(Long, byDefault), attributes, false);
        writer.incrementIndent();
        writer.writeNewLine();
        writer.write(Long + "<", true);
        writer.writeSimpleElement(QeXmlName("s", p), Long, "t", true);
    }
    for (int i = 0; i < 20; ++i)
        writer.writeElementEnd(QeXmlName(Long, byDefault));
}

QeCString everything() {
    QeXmlStringWriter undisturbed;
    writeAll(undisturbed);
    return undisturbed.getString();
}

}  // namespace

TEST(Failures, OfMemoryEndAComparison) {
    const QeCString left = document("x"), right = document("x"), other = document("y");
    for (const bool equal : {true, false})
        forEachFailingAllocation([&](Attempt& attempt) {
            bool result = !equal;
            const bool done = attempt([&] { result = QeXmlUtils::compareXml(left, equal ? right : other); });
            EXPECT_EQ(result == equal, done);
        });
}

TEST(Failures, OfMemoryEndAParse) {
    const QeCString text = document("x");
    QeXmlSAXParser parser;
    const int expected = countEvents(parser, text);
    forEachFailingAllocation([&](Attempt& attempt) {
        int events = expected;
        attempt([&] { events = countEvents(parser, text); });
        EXPECT_EQ(events, expected);
        EXPECT_EQ(countEvents(parser, text), expected) << "parsed once more";
    });
}

TEST(Failures, OfAHandlerEndAParse) {
    const QeCString text = document("x");
    QeXmlSAXParser parser;
    const int expected = countEvents(parser, text);
    for (int failing = 0; failing < expected; ++failing) {
        const std::size_t blocksBefore = allocator::liveBlocks;
        Counter counter(failing);
        parser.setContentHandler(&counter);
        EXPECT_THROW(parser.parse(text, ""), std::runtime_error);
        EXPECT_EQ(counter.events, failing);
        EXPECT_EQ(allocator::liveBlocks, blocksBefore) << "blocks leaked";
        EXPECT_EQ(countEvents(parser, text), expected) << "parsed once more";
    }
}

// The exception is the stream buffer's own, and what was read until then goes.
TEST(Failures, OfAStreamEndTheMakingOfAReader) {
    struct Failing final : std::streambuf {
        int_type underflow() override {
            if (std::exchange(given, true)) throw std::runtime_error("stream");
            setg(text.data(), text.data(), text.data() + text.size());
            return traits_type::to_int_type(text[0]);
        }
        std::string text = "<r>" + std::string(100'000, 'x');
        bool given = false;
    } buffer;
    std::istream in(&buffer);
    const std::size_t blocksBefore = allocator::liveBlocks;
    EXPECT_THROW(QeXmlReader reader(in), std::runtime_error);
    EXPECT_EQ(allocator::liveBlocks, blocksBefore) << "blocks leaked";
}

// What went to the string stays, and nothing else does.
TEST(Failures, OfMemoryLeaveTheBeginningOfAText) {
    const QeCString expected = everything();
    forEachFailingAllocation([&](Attempt& attempt) {
        QeXmlStringWriter writer;
        const bool done = attempt([&] { writeAll(writer); });
        const QeCString written = writer.getString();
        EXPECT_TRUE(std::string_view(expected).starts_with(written));
        EXPECT_EQ(written == expected, done);
        EXPECT_EQ(writer.getLength(), written.length());
    });
}

// The slots of a string writer, replaced by ones that throw before they do anything.
TEST(Failures, OfAnOverrideLeaveTheBeginningOfAText) {
    class Failing final : public QeXmlStringWriter {
    public:
        void writeToSink(char byte) override { pass(), QeXmlStringWriter::writeToSink(byte); }
        void writeToSink(const char* bytes, unsigned length) override {
            pass(), QeXmlStringWriter::writeToSink(bytes, length);
        }
        void writeToSink(const QeCString& text) override { pass(), QeXmlStringWriter::writeToSink(text); }
        void flush() override { pass(), QeXmlStringWriter::flush(); }

        int untilFailure = 0;

    private:
        void pass() {
            if (untilFailure-- == 0) throw std::runtime_error("override");
        }
    };
    const QeCString expected = everything();
    bool failed = true;
    for (int calls = 0; failed; ++calls) {
        SCOPED_TRACE(testing::Message() << "fails behind " << calls << " calls");
        const std::size_t blocksBefore = allocator::liveBlocks;
        {
            Failing writer;
            writer.untilFailure = calls;
            try {
                writeAll(writer);
                failed = false;
            } catch (const std::runtime_error&) {
            }
            writer.untilFailure = -1;
            const QeCString written = writer.getString();
            EXPECT_TRUE(std::string_view(expected).starts_with(written));
            EXPECT_EQ(written == expected, !failed);
        }
        ASSERT_EQ(allocator::liveBlocks, blocksBefore) << "blocks leaked";
    }
}

TEST(Failures, OfMemoryLeaveAValidatorAsItWas) {
    using V = QeXmlValidator;
    using Check = void (*)(V & validator, const V& part);
    const Check checks[] = {
        [](V& validator, const V&) { validator.checkMinLength(Long, "1000"); },
        [](V& validator, const V&) { validator.checkMaxLength(Long, "1"); },
        [](V& validator, const V&) { validator.checkWhiteSpace(Long + "\t", "replace"); },
        [](V& validator, const V&) { validator.checkVectorBounds(1, 2, 3); },
        [](V& validator, const V&) { validator.checkPattern(Long, "^x"); },
        [](V& validator, const V& part) { validator.isValid(part); },
        [](V& validator, const V& part) { validator = part; },
    };
    QeXmlValidator part(Long);
    part.checkMinLength(Long, "1000");
    for (const Check check : checks)
        forEachFailingAllocation([&](Attempt& attempt) {
            QeXmlValidator validator(Long);
            const bool done = attempt([&] { check(validator, part); });
            EXPECT_EQ(validator.isValid(), !done);
            EXPECT_TRUE(done || validator.getErrors().empty());
            EXPECT_FALSE(validator.checkMaxLength("x", "0")) << "checked on";
        });
}

TEST(Failures, OfMemoryEndTheConversionOfAValue) {
    const QeDateTime instant(QeDate(1, 2, 2003), 4, 5, 6, 7, QeZone(90));
    using Conversion = std::function<void()>;
    const Conversion conversions[] = {
        [] { QeXmlUtils::changeName(QeXmlName("n", QeXmlNamespace("p", Long)), "<a>" + Long + "</a>"); },
        [] { QeXmlUtils::stripWhiteSpaceAndNewlines(" " + Long, QeCString::stripBoth); },
        [] { EXPECT_NE(messageOf<QeValueError>([] { QeXmlUtils::convertISODateStringToDateTime(Long); }), ""); },
        [] { EXPECT_NE(messageOf<QeValueError>([] { QeDecimalPortable number(Long); }), ""); },
        [] { QeXmlSchemaUtils::ConvertTypeToString(QeDecimalPortable(1e300), ""); },
        [] { QeDecimalPortable("0" + QeCString(std::string_view(std::string(100, '1')))); },
        [&] { QeXmlUtils::convertDateTimeToISOString(instant, "%c %c"); },
        [&] { instant.asString(QeDateTime::Iso8601, QeLocale::defaultLocale(), QeZone(90)); },
        [] { EXPECT_EQ(QeXmlDuration(1, 22, 333, 4444, 55555, 6.5).asString(), "P1Y22M333DT4444H55555M6.5S"); },
        [] { QeXmlSchemaError error("Bounds error in: " + Long); },
    };
    for (const Conversion& convert : conversions)
        forEachFailingAllocation([&](Attempt& attempt) { attempt(convert); });
}

// `removeAttribute` by position asks the end's slot.
TEST(Failures, OfAnOverrideLeaveAnElementAsItWas) {
    class Element final : public QeXmlElementImp {
    public:
        using QeXmlElementImp::attributesEnd;
        QeXmlAttribute* attributesEnd() override { throw std::runtime_error("override"); }
    } element;
    element.addAttribute(QeXmlName("a"), "1");
    EXPECT_THROW(element.removeAttribute(element.attributesBegin()), std::runtime_error);
    EXPECT_EQ(element.attributeCount(), 1u);
}

TEST(Failures, OfAnOverrideEndTheUseOfADuration) {
    class Duration final : public QeXmlDuration {
        QeCString asString() const override { throw std::runtime_error("override"); }
        int compareTo(const QeXmlDuration&) override { throw std::runtime_error("override"); }
    } duration;
    QeXmlDuration& used = duration;
    EXPECT_THROW(QeXmlSchemaUtils::ConvertTypeToString(used, ""), std::runtime_error);
    EXPECT_THROW(used.isEqual(QeXmlDuration()), std::runtime_error);
}
