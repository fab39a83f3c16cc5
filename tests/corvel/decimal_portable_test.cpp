#include <gtest/gtest.h>
#include <limits>
#include <support/messages.h>

#include <corvel/decimal_portable.h>
#include <corvel/value_error.h>

namespace {

TEST(QeDecimalPortable, KeepsTheNumberOfAText) {
    const struct {
        const char* text;
        const char* number;
    } cases[] = {
        {"0", "0"},
        {"1.50", "1.50"},
        {"+0012", "12"},
        {"-.5", "-0.5"},
        {"5.", "5"},
        {"-00.00", "0.00"},  // zero has no sign
        {"-0.01", "-0.01"},
        {"123456789012345678901234567890.123456789012345678901234567890",
         "123456789012345678901234567890.123456789012345678901234567890"},
    };
    for (const auto& [text, number] : cases)
        EXPECT_EQ(QeDecimalPortable(text).asString(), number) << text;
}

TEST(QeDecimalPortable, RefusesOtherTexts) {
    for (const char* text : {"", "-", ".", "+-1", "1e5", " 1", "1 ", "1,5", "1.2.3", "INF", "0x1"})
        EXPECT_EQ(messageOf<QeValueError>([&] { QeDecimalPortable{text}; }),
                  "Expected a decimal number, found \"" + std::string(text) + '"');
    EXPECT_THROW(QeDecimalPortable(QeCString("1\0", 2)), QeValueError);
}

TEST(QeDecimalPortable, WritesNumbersWithoutExponent) {
    EXPECT_EQ(QeDecimalPortable().asString(), "0");
    EXPECT_EQ(QeDecimalPortable(-5).asString(), "-5");
    EXPECT_EQ(QeDecimalPortable(std::numeric_limits<long long>::min()).asString(), "-9223372036854775808");
    EXPECT_EQ(QeDecimalPortable(std::numeric_limits<unsigned long long>::max()).asString(), "18446744073709551615");
    EXPECT_EQ(QeDecimalPortable(0.1).asString(), "0.1");
    EXPECT_EQ(QeDecimalPortable(-0.0).asString(), "0");
    EXPECT_EQ(QeDecimalPortable(1e21).asString(), "1000000000000000000000");
    EXPECT_EQ(QeDecimalPortable(-1.5e-7).asString(), "-0.00000015");
    EXPECT_EQ(QeDecimalPortable(std::numeric_limits<double>::max()).asString().length(), 309U);
    EXPECT_EQ(QeDecimalPortable(-std::numeric_limits<double>::denorm_min()).asString().length(), 327U);
    for (double value : {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        EXPECT_THROW(QeDecimalPortable{value}, QeValueError);
}

}  // namespace
