// Calls that nobody plans for: the reader's own members as arguments, every call in every state.

#include <gtest/gtest.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

const char* answer(bool yes) {
    return yes ? "yes" : "no";
}

struct OwnMemberCase {
    const char* rest;  // of the document, behind the start tag
    std::string (*call)(QeXmlReader&);
    const char* result;
};

constexpr OwnMemberCase OwnMembers[] = {
    {"a<a x='1'/>", [](QeXmlReader& in) { return describe(in.readElementStart(in.getLastContent())); }, "[x=1]"},
    {"a<a/>", [](QeXmlReader& in) { return std::string(answer(in.isElementNext(in.getLastContent()))); }, "yes"},
    {"a<a>text</a>", [](QeXmlReader& in) { return std::string(in.readElement(in.getLastContent()).data()); },
     "<a>text</a>"},
    {"<value x='1'/>",
     [](QeXmlReader& in) { return describe(in.readElementStart(in.getLastAttributes().begin()->getValue())); },
     "[x=1]"},
    {"<longer/>", [](QeXmlReader& in) { return std::string(answer(in.isElementNext(in.getLastName()))); }, "no"},
    {"<a-name-past-what-fits-in-place/>",
     [](QeXmlReader& in) { return describe(in.readElementStart(in.getLastName())); },
     "!1:50 Expected r, found a-name-past-what-fits-in-place"},
    {"</longer>", [](QeXmlReader& in) { return in.readElementEnd(in.getLastName()), std::string(); },
     "!1:26 Expected r, found longer"},
    {"<longer/>", [](QeXmlReader& in) { return std::string(in.readElement(in.getLastName()).data()); },
     "!1:26 Expected r, found longer"},
};

}  // namespace

// What the argument says at the call counts, though the scan writes over it.
TEST(XmlReader, TakesItsOwnMembersAsExpectedNames) {
    for (const auto& [rest, call, result] : OwnMembers) {
        SCOPED_TRACE(rest);
        const Document document("<r name='value'>" + std::string(rest));
        const auto reader = document.open(Source::Span);
        reader->readElementStart();
        reader->readElementValue();
        try {
            EXPECT_EQ(call(*reader), result);
        } catch (const QeXmlParseError& error) {
            EXPECT_EQ(describe(error), result);
        }
    }
}

// Lines are counted on from the last error; the cursor can also have gone back since, or to another buffer.
TEST(XmlReader, CountsLinesOverManyErrors) {
    const Document document("<a>\n\n<1\n<2\n<?xml version='1' encoding='latin1'?>\n  <3");
    const auto reader = document.open(Source::Span);
    std::string errors;
    while (!reader->eof())
        try {
            reader->readNextNode();
        } catch (const QeXmlParseError& error) {
            errors += describe(error).substr(0, 5);
            try {
                reader->err("here");
            } catch (const QeXmlParseError& again) {
                EXPECT_EQ(again.getColumnNumber(), error.getColumnNumber());
            }
        }
    EXPECT_EQ(errors, "!3:3 !4:3 !2:5 ");
}
