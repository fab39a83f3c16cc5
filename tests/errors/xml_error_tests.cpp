#include <cstdint>
#include <exception>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>

#include <tessit/errors/catalog.h>
#include <tessit/errors/xml_error.h>

namespace {

// Whether what `raise` throws meets a handler for `Caught`, and has the text there.
template <typename Caught, typename Raise>
bool isCaughtAs(const Raise& raise, const std::string& text) {
    try {
        raise();
    } catch (const Caught& caught) {
        if constexpr (std::is_base_of_v<Qexmsg, Caught>)
            return caught.why() == text;
        else
            return caught.what() == text;
    } catch (...) {
    }
    return false;
}

template <typename Error>
Error make(const QeCString& text) {
    if constexpr (std::is_same_v<Error, QeXmlParseError>)
        return Error(text, "file", 3, 7);
    else
        return Error(text);
}

template <typename Error>
Error make(const QeMessage& message) {
    if constexpr (std::is_same_v<Error, QeXmlParseError>)
        return Error(message, "file", 3, 7);
    else
        return Error(message);
}

template <typename Error, typename... Caught>
struct Case {
    using Thrown = Error;
    static void expectCaught() {
        for (const char* text : {"", "m", "a message that takes a block of its own"}) {
            const Error error = make<Error>(QeCString(text));
            const auto raise = [&] { QeThrow(error); };
            EXPECT_TRUE((isCaughtAs<Caught>(raise, text) && ...)) << text;
        }
        const QeMessage message(qetessit_PARSING_ERROR());
        const auto raise = [&] { throw make<Error>(message); };
        EXPECT_TRUE((isCaughtAs<Caught>(raise, qetessit_PARSING_ERROR()->text) && ...));
    }
};

template <typename>
struct XmlError : testing::Test {};

using Cases = testing::Types<
    Case<QeXmlError, QeXmlError, Qexmsg>,
    Case<QeXmlBadArgError, QeXmlBadArgError, QeXmlError, Qexmsg, std::invalid_argument, std::logic_error,
         std::exception>,
    Case<QeXmlBoundsError, QeXmlBoundsError, QeXmlError, Qexmsg, std::out_of_range, std::logic_error, std::exception>,
    Case<QeXmlDomainError, QeXmlDomainError, QeXmlError, Qexmsg, std::domain_error, std::logic_error, std::exception>,
    Case<QeXmlInternalError, QeXmlInternalError, QeXmlError, Qexmsg, std::logic_error, std::exception>,
    Case<QeXmlLengthError, QeXmlLengthError, QeXmlError, Qexmsg, std::length_error, std::logic_error, std::exception>,
    Case<QeXmlRangeError, QeXmlRangeError, QeXmlError, Qexmsg, std::range_error, std::runtime_error, std::exception>,
    Case<QeXmlSchemaError, QeXmlSchemaError, QeXmlError, Qexmsg, std::logic_error, std::exception>,
    Case<QeXmlParseError, QeXmlParseError, QeXmlDomainError, QeXmlError, Qexmsg, std::domain_error, std::logic_error,
         std::exception>>;
TYPED_TEST_SUITE(XmlError, Cases);

TYPED_TEST(XmlError, IsCaughtAsEachOfItsBases) {
    TypeParam::expectCaught();
}

TYPED_TEST(XmlError, IsAssignedWithBothItsTexts) {
    using Error = typename TypeParam::Thrown;
    Error error = make<Error>(QeCString("old"));
    error = make<Error>(QeCString("new"));
    EXPECT_STREQ(error.why(), "new");
    if constexpr (std::is_base_of_v<std::exception, Error>) {
        EXPECT_STREQ(error.what(), "new");
    }
}

// The argument's static type decides: what a derived class adds is not in the copy.
TYPED_TEST(XmlError, IsThrownAsItsStaticType) {
    const typename TypeParam::Thrown error = make<typename TypeParam::Thrown>(QeCString("m"));
    const QeXmlError& base = error;
    const auto expectExactly = [](const auto& raise, const std::type_info& expected) {
        try {
            raise();
        } catch (const Qexmsg& caught) {
            EXPECT_TRUE(typeid(caught) == expected) << typeid(caught).name();
        }
    };
    expectExactly([&] { QeThrow(error); }, typeid(error));
    expectExactly([&] { QeThrow(base); }, typeid(QeXmlError));
    expectExactly([&] { error.raise(); }, typeid(Qexmsg));
}

TEST(XmlParseError, CarriesItsPositionBesideTheText) {
    try {
        QeThrow(QeXmlParseError("m", "f", 3, 7));
    } catch (QeXmlParseError& caught) {
        EXPECT_STREQ(caught.why(), "m");
        EXPECT_EQ(caught.getSourceFile(), "f");
        EXPECT_EQ(caught.getLineNumber(), 3u);
        EXPECT_EQ(caught.getColumnNumber(), 7u);
        caught = QeXmlParseError("n", "g", 4, 8);
        EXPECT_EQ(caught.getSourceFile(), "g");
        EXPECT_EQ(caught.getLineNumber(), 4u);
        EXPECT_EQ(caught.getColumnNumber(), 8u);
    }
}

TEST(Catalog, HasThreeConstantEntriesInARow) {
    using Entry = const QeCatMsg* (*)() noexcept;
    constexpr Entry Entries[] = {qetessit_BOUNDED_ARRAY, qetessit_PARSING_ERROR, qetessit_INVALID_DATETIME_FORMAT};
    std::int32_t number = 0x7101;
    for (const Entry entry : Entries) {
        EXPECT_EQ(entry(), entry());
        EXPECT_EQ(entry()->domain, qetessit_BOUNDED_ARRAY()->domain);
        EXPECT_EQ(entry()->number, number++);
    }
    EXPECT_STREQ(qetessit_BOUNDED_ARRAY()->domain, "tessit_");
    EXPECT_STREQ(QeMessage(nullptr).getText(), "");
}

}  // namespace
