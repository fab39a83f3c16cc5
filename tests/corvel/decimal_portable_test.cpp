#include <gtest/gtest.h>
#include <limits>
#include <support/messages.h>

#include <corvel/decimal_portable.h>
#include <corvel/value_error.h>

namespace {

using Number = QeDecimalPortable;

TEST(QeDecimalPortable, WritesNumbersWithoutExponent) {
    const struct {
        Number number;
        const char* text;
    } cases[] = {
        {Number("0"), "0"},
        {Number("1.50"), "1.50"},
        {Number("+0012"), "12"},
        {Number("-.5"), "-0.5"},
        {Number("5."), "5"},
        {Number("-00.00"), "0.00"},  // zero has no sign
        {Number("-0.01"), "-0.01"},
        {Number("123456789012345678901234567890.123456789012345678901234567890"),
         "123456789012345678901234567890.123456789012345678901234567890"},
        {Number(), "0"},
        {Number(-5), "-5"},
        {Number(std::numeric_limits<long long>::min()), "-9223372036854775808"},
        {Number(std::numeric_limits<unsigned long long>::max()), "18446744073709551615"},
        {Number(0.1), "0.1"},
        {Number(-0.0), "0"},
        {Number(1e21), "1000000000000000000000"},
        {Number(-1.5e-7), "-0.00000015"},
    };
    for (const auto& [number, text] : cases)
        EXPECT_EQ(number.asString(), text);
    EXPECT_EQ(QeDecimalPortable(std::numeric_limits<double>::max()).asString().length(), 309U);
    EXPECT_EQ(QeDecimalPortable(-std::numeric_limits<double>::denorm_min()).asString().length(), 327U);
}

TEST(QeDecimalPortable, RefusesOtherTexts) {
    for (const char* text : {"", "-", ".", "+-1", "1e5", " 1", "1 ", "1,5", "1.2.3", "INF", "0x1"})
        EXPECT_EQ(messageOf<QeValueError>([&] { QeDecimalPortable{text}; }),
                  "Expected a decimal number, found \"" + std::string(text) + '"');
    EXPECT_THROW(QeDecimalPortable(QeCString("1\0", 2)), QeValueError);
    for (double value : {std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()})
        EXPECT_THROW(QeDecimalPortable{value}, QeValueError);
}

}  // namespace
