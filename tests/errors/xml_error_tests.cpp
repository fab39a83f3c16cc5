#include <gtest/gtest.h>
#include <stdexcept>
#include <support/messages.h>
#include <type_traits>
#include <typeindex>

#include <tessit/errors/catalog.h>
#include <tessit/errors/xml_error.h>

namespace {

template <typename Operation>
std::type_index typeThrownBy(const Operation& operation) {
    try {
        operation();
    } catch (const Qexmsg& caught) {
        return typeid(caught);
    }
    return typeid(void);
}

// The static type decides what is thrown: what a derived class adds is not in the copy.
template <typename Error>
void expectThrows(const Error& error, const char* text) {
    SCOPED_TRACE(testing::Message() << typeid(Error).name() << ": " << text);
    const auto raise = [&] { QeThrow(error); };
    EXPECT_EQ(messageOf<Error>(raise), text);
    EXPECT_EQ(typeThrownBy(raise), typeid(Error));
    EXPECT_EQ(typeThrownBy([&] { QeThrow(static_cast<const QeXmlError&>(error)); }), typeid(QeXmlError));
    EXPECT_EQ(typeThrownBy([&] { error.raise(); }), typeid(Qexmsg));
}

template <typename Error, typename... Bases>
void expectBases() {
    static_assert((std::is_convertible_v<Error*, Bases*> && ... && std::is_convertible_v<Error*, QeXmlError*>));
    expectThrows(Error(QeCString()), "");
    expectThrows(Error(QeMessage(qetessit_BOUNDED_ARRAY())), "[BOUNDED_ARRAY][Array is bounded]");
    Error assigned("old");
    assigned = Error("a text that takes a block");
    expectThrows(assigned, "a text that takes a block");
}

TEST(XmlError, IsCaughtAsEachOfItsBases) {
    expectBases<QeXmlError>();
    expectBases<QeXmlBadArgError, std::invalid_argument>();
    expectBases<QeXmlBoundsError, std::out_of_range>();
    expectBases<QeXmlDomainError, std::domain_error>();
    expectBases<QeXmlInternalError, std::logic_error>();
    expectBases<QeXmlLengthError, std::length_error>();
    expectBases<QeXmlRangeError, std::range_error>();
    expectBases<QeXmlSchemaError, std::logic_error>();
    static_assert(std::is_convertible_v<QeXmlParseError*, QeXmlDomainError*>);
    expectThrows(QeXmlParseError("m", "f", 3, 7), "m");
}

TEST(XmlError, CarriesAPositionBesideTheText) {
    try {
        QeThrow(QeXmlParseError(QeMessage(qetessit_PARSING_ERROR()), "f", 3, 7));
    } catch (const QeXmlParseError& caught) {
        EXPECT_STREQ(caught.what(), "[PARSING_ERROR][A parse error occurred while parsing the XML document]");
        EXPECT_EQ(caught.getSourceFile(), "f");
        EXPECT_EQ(caught.getLineNumber(), 3u);
        EXPECT_EQ(caught.getColumnNumber(), 7u);
    }
    const QeXmlParseError far("m", {"f", {.line = std::uint64_t{1} << 32, .column = std::uint64_t{3} << 32}});
    EXPECT_EQ(far.getLineNumber(), 4294967295u) << "and not 0";
    EXPECT_EQ(far.getColumnNumber(), 4294967295u);
}

TEST(XmlError, CatalogEntriesAreConstantAndInARow) {
    int number = 0x7101;
    for (const auto entry : {qetessit_BOUNDED_ARRAY, qetessit_PARSING_ERROR, qetessit_INVALID_DATETIME_FORMAT}) {
        EXPECT_EQ(entry(), entry());
        EXPECT_EQ(entry()->number, number++);
        EXPECT_STREQ(entry()->domain, "tessit_");
    }
    EXPECT_STREQ(QeMessage(nullptr).getText(), "");
}

}  // namespace
