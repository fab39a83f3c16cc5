// Whole operations in which memory runs out at any place, or a class of the
// application throws at any call: the exception arrives, nothing leaks, and what is
// left is as promised. The rooms' own tests do the same for single classes.

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>

#include <corvel/value_error.h>
#include <tessit/model/xml_element_imp.h>
#include <tessit/sax/xml_sax_parser.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>
#include <tessit/writer/xml_string_writer.h>

#include "support/documents.h"
#include "support/failing_allocator.h"

using namespace tessit::test;

namespace {

const QeCString Long(std::string_view(std::string(300, 'l')));  // past what a string, or a name, holds in place

// With references, a conversion, URIs that are shared and elements within them.
QeCString document(const char* text) {
    return "<?xml version='1.0' encoding='ISO-8859-1'?><r xmlns='" + Long + "' xmlns:p='" + Long + "1' a='" + Long +
           "&amp;'><p:a p:x='" + Long + "'>\xE9&lt;</p:a><b></b><c/><!-- -->" + text + Long + "</r>";
}

// Runs the operation again and again, each time with the next of its calls failing,
// until it needs no more. `operation` throws std::runtime_error where it is told to.
template <typename Operation>
void forEachFailingCall(const Operation& operation) {
    for (int failing = 0;; ++failing) {
        SCOPED_TRACE(testing::Message() << "call " << failing << " fails");
        const std::size_t blocksBefore = allocator::liveBlocks;
        bool failed = false;
        try {
            operation(failing);
        } catch (const std::runtime_error&) {
            failed = true;
        }
        ASSERT_EQ(allocator::liveBlocks, blocksBefore) << "blocks leaked";
        if (testing::Test::HasFailure()) return;
        if (!failed) {
            EXPECT_GT(failing, 0) << "nothing was called";
            return;
        }
    }
}

// Counts the events, and can be told to throw at one of them.
class Counter final : public QeXmlContentHandler {
public:
    explicit Counter(int failingCall = -1) : untilFailure(failingCall) {}

    void elementStart(const QeXmlName&, const QeXmlAttributeSet&) override { count(); }
    void elementEnd(const QeXmlName&) override { count(); }
    void content(const QeCString&) override { count(); }
    void prolog(const QeXmlProlog&) override { count(); }

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
        Counter counter;
        parser.setContentHandler(&counter);
        const bool done = attempt([&] { parser.parse(text, ""); });
        EXPECT_TRUE(done ? counter.events == expected : counter.events <= expected);
        EXPECT_EQ(countEvents(parser, text), expected) << "parsed once more";
    });
}

TEST(Failures, OfAHandlerEndAParse) {
    const QeCString text = document("x");
    forEachFailingCall([&](int failing) {
        Counter counter(failing);
        QeXmlSAXParser parser;
        parser.setContentHandler(&counter);
        parser.parse(text, "");
    });
}

// What went to the string stays, and nothing else does.
TEST(Failures, OfMemoryLeaveTheBeginningOfAText) {
    QeXmlStringWriter undisturbed;
    writeAll(undisturbed);
    const QeCString expected = undisturbed.getString();
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
        explicit Failing(int failingCall) : untilFailure(failingCall) {}

        void writeToSink(char byte) override { pass(), QeXmlStringWriter::writeToSink(byte); }
        void writeToSink(const char* bytes, unsigned length) override {
            pass(), QeXmlStringWriter::writeToSink(bytes, length);
        }
        void writeToSink(const QeCString& text) override { pass(), QeXmlStringWriter::writeToSink(text); }
        void flush() override { pass(), QeXmlStringWriter::flush(); }

    private:
        void pass() {
            if (untilFailure-- == 0) throw std::runtime_error("override");
        }

        int untilFailure;
    };
    QeXmlStringWriter undisturbed;
    writeAll(undisturbed);
    const QeCString expected = undisturbed.getString();
    forEachFailingCall([&](int failing) {
        Failing writer(failing);
        try {
            writeAll(writer);
        } catch (const std::runtime_error&) {
            const QeCString written = writer.getString();  // the failure was the only one
            EXPECT_TRUE(std::string_view(expected).starts_with(written) && written.length() < expected.length());
            throw;
        }
        EXPECT_EQ(writer.getString(), expected);
    });
}

TEST(Failures, OfMemoryLeaveAValidatorAsItWas) {
    using Check = void (*)(QeXmlValidator & validator, const QeXmlValidator& part);
    const Check checks[] = {
        [](QeXmlValidator& validator, const QeXmlValidator&) { validator.checkMinLength(Long, "1000"); },
        [](QeXmlValidator& validator, const QeXmlValidator&) { validator.checkMaxLength(Long, "1"); },
        [](QeXmlValidator& validator, const QeXmlValidator&) { validator.checkWhiteSpace(Long + "\t", "replace"); },
        [](QeXmlValidator& validator, const QeXmlValidator&) { validator.checkVectorBounds(1, 2, 3); },
        [](QeXmlValidator& validator, const QeXmlValidator&) { validator.checkPattern(Long, "^x"); },
        [](QeXmlValidator& validator, const QeXmlValidator& part) { validator.isValid(part); },
        [](QeXmlValidator& validator, const QeXmlValidator& part) { validator = part; },
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

namespace {

template <typename Conversion>
void refuse(const Conversion& convert) {
    try {
        convert();
        ADD_FAILURE() << "this has no value";
    } catch (const QeValueError&) {
    }
}

}  // namespace

TEST(Failures, OfMemoryEndTheConversionOfAValue) {
    const QeDateTime instant(QeDate(1, 2, 2003), 4, 5, 6, 7, QeZone(90));
    using Conversion = std::function<void()>;
    const Conversion conversions[] = {
        [] { QeXmlUtils::changeName(QeXmlName("n", QeXmlNamespace("p", Long)), "<a>" + Long + "</a>"); },
        [] { QeXmlUtils::stripWhiteSpaceAndNewlines(" " + Long, QeCString::stripBoth); },
        [] { refuse([] { QeXmlUtils::convertISODateStringToDateTime(Long); }); },
        [] { refuse([] { QeDecimalPortable number(Long); }); },
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
