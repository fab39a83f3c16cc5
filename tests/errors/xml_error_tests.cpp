#include <cstring>
#include <exception>
#include <gtest/gtest.h>
#include <stdexcept>
#include <type_traits>
#include <typeinfo>

#include <tessit/errors/catalog.h>
#include <tessit/errors/xml_error.h>

namespace {

// Whether all that says something says `text`.
template <typename Error>
bool says(const Error& error, const char* text) {
    bool same = true;
    if constexpr (std::is_base_of_v<Qexmsg, Error>) same = std::strcmp(error.why(), text) == 0;
    if constexpr (std::is_base_of_v<std::exception, Error>) same = same && std::strcmp(error.what(), text) == 0;
    return same;
}

// Whether what `raise` throws meets a handler for `Caught`, and has the text there.
template <typename Caught, typename Raise>
bool isCaughtAs(const Raise& raise, const char* text) {
    try {
        raise();
    } catch (const Caught& caught) {
        return says(caught, text);
    } catch (...) {
    }
    return false;
}

template <typename Raise>
void expectThrowsExactly(const std::type_info& expected, const Raise& raise) {
    try {
        raise();
    } catch (const Qexmsg& caught) {
        EXPECT_TRUE(typeid(caught) == expected) << typeid(caught).name();
    }
}

template <typename... Bases, typename Error>
void expectCaughtAs(Error error, const char* text) {
    SCOPED_TRACE(testing::Message() << typeid(Error).name() << ": " << text);
    const auto raise = [&] { QeThrow(error); };
    EXPECT_TRUE((isCaughtAs<Bases>(raise, text) && ... && isCaughtAs<Qexmsg>(raise, text)));
    // The static type decides: what a derived class adds is not in the copy.
    expectThrowsExactly(typeid(Error), raise);
    expectThrowsExactly(typeid(QeXmlError), [&] { QeThrow(static_cast<const QeXmlError&>(error)); });
    expectThrowsExactly(typeid(Qexmsg), [&] { error.raise(); });
}

template <typename Error, typename... Bases>
void expectBases() {
    const QeMessage message(qetessit_INVALID_DATETIME_FORMAT());
    expectCaughtAs<Error, QeXmlError, Bases...>(Error(QeCString()), "");
    expectCaughtAs<Error, QeXmlError, Bases...>(Error("a text that takes a block"), "a text that takes a block");
    expectCaughtAs<Error, QeXmlError, Bases...>(Error(message), message.getText());
    Error assigned("old");
    assigned = Error("new");
    expectCaughtAs<Error, QeXmlError, Bases...>(assigned, "new");
}

TEST(XmlError, IsCaughtAsEachOfItsBases) {
    using namespace std;
    expectBases<QeXmlError>();
    expectBases<QeXmlBadArgError, invalid_argument, logic_error, exception>();
    expectBases<QeXmlBoundsError, out_of_range, logic_error, exception>();
    expectBases<QeXmlDomainError, domain_error, logic_error, exception>();
    expectBases<QeXmlInternalError, logic_error, exception>();
    expectBases<QeXmlLengthError, length_error, logic_error, exception>();
    expectBases<QeXmlRangeError, range_error, runtime_error, exception>();
    expectBases<QeXmlSchemaError, logic_error, exception>();
    expectCaughtAs<QeXmlParseError, QeXmlDomainError, QeXmlError, domain_error, logic_error, exception>(
        QeXmlParseError("m", "f", 3, 7), "m");
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
}

TEST(XmlError, CatalogEntriesAreConstantAndInARow) {
    int number = 0x7101;
    for (const auto entry : {qetessit_BOUNDED_ARRAY, qetessit_PARSING_ERROR, qetessit_INVALID_DATETIME_FORMAT}) {
        EXPECT_EQ(entry(), entry());
        EXPECT_EQ(entry()->number, number++);
        EXPECT_STREQ(entry()->domain, "tessit_");
        EXPECT_EQ(entry()->domain, qetessit_BOUNDED_ARRAY()->domain);
    }
    EXPECT_STREQ(QeMessage(nullptr).getText(), "");
}

}  // namespace
