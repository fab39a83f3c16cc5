// The scans and copies that look at blocks, held against one byte after the other: for each length that takes
// another way, and each place of the byte that is looked for.

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include <corvel/byte_scan.h>

namespace {

constexpr std::size_t Window = 32;

// No two neighbours are the same, and none is a bar.
std::string plain(std::size_t length) {
    std::string text;
    for (std::size_t i = 0; i < length; ++i)
        text += static_cast<char>('a' + i % 23);
    return text;
}

void expectFinds(const std::string& text, std::size_t length) {
    const char *const begin = text.data(), *const end = begin + length;
    const std::size_t place = std::min(text.find('|'), length);
    EXPECT_EQ(corvel::findAny(begin, end, '|', '\0') - begin, static_cast<std::ptrdiff_t>(place));
    EXPECT_EQ(corvel::findAnyFar(begin, end, '|', '\0') - begin, static_cast<std::ptrdiff_t>(place));
    EXPECT_EQ(corvel::findIn32(begin, '|', '\0'), std::min(text.find('|'), Window));
    EXPECT_TRUE(length >= 24 || corvel::areNone(begin, length, '|', '\0') == (place == length));
    for (std::size_t size = 1; size <= 3; ++size) {
        std::string some = text.substr(text.find('|'), size);
        const std::size_t found = std::min(std::string_view(begin, length).find(some), length);
        EXPECT_EQ(corvel::findText(begin, end, some) - begin, static_cast<std::ptrdiff_t>(found));
        some[size / 2] = '-';
        EXPECT_EQ(corvel::findText(begin, end, some), end);
    }
    std::string copy(length + 1, '-');
    const char* from = begin;
    char* to = copy.data();
    corvel::copyUntilAny(from, end, to, '|', '\0');
    EXPECT_EQ(from - begin, static_cast<std::ptrdiff_t>(place));
    EXPECT_EQ(copy.substr(0, place) + "-", text.substr(0, place) + copy[length]);  // nothing behind the end
}

TEST(ByteScan, FindsCopiesAndComparesEachByte) {
    for (std::size_t length = 0; length <= 70; ++length)
        for (std::size_t place = 0; place <= length; ++place) {
            SCOPED_TRACE(testing::Message() << place << " of " << length);
            std::string text = plain(length + Window), other = text;
            other[place] = '|';
            expectFinds(other, length);
            EXPECT_EQ(corvel::sameBytes(text.data(), other.data(), length), place == length);
            std::string copy(length + 1, '-');
            corvel::copyBytes(copy.data(), text.data(), length);
            EXPECT_EQ(copy, text.substr(0, length) + "-");
            const auto first = [&](const char* readableEnd) {
                return corvel::firstBytes({text.data(), place}, readableEnd);
            };
            EXPECT_EQ(first(text.data() + place), first(text.data() + text.size()));
            EXPECT_EQ(
                first(text.data() + text.size()) == corvel::firstBytes({text.data(), length}, text.data() + length),
                place >= std::min<std::size_t>(length, 8));
        }
}

}  // namespace
