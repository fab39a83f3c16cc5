// The check of characters, block by block, held against one that goes byte by byte: at every
// place in a text, and behind characters of every length.

#include <gtest/gtest.h>
#include <support/documents.h>
#include <vector>

#include <tessit/rules/characters.h>
#include <tessit/rules/name_chars.h>

namespace {

// Short texts of all the bytes at which something changes.
std::vector<std::string> sequences(std::size_t length) {
    constexpr std::string_view Bytes(
        "\0\t\n\v\r\x1F "
        "<\x7F\x80\x8F\x90\x9F\xA0\xBD\xBE\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5"
        "\xFF",
        33);
    std::vector<std::string> all(1);
    for (std::size_t from = 0; length != 0; --length)
        for (const std::size_t end = all.size(); from != end; ++from)
            for (const char byte : Bytes)
                all.push_back(all[from] + byte);
    return all;
}

bool isAllowed(std::string_view text) {
    const std::optional<std::u32string> codes = tessit::test::decode(text);
    return codes && std::all_of(codes->begin(), codes->end(), tessit::isXmlCharacter);
}

// The longest sound front that ends with a character.
std::size_t soundLength(std::string_view text) {
    for (std::size_t at = 0;;) {
        std::size_t length = 1;
        while (length <= 4 && at + length <= text.size() && !isAllowed(text.substr(at, length)))
            ++length;
        if (length > 4 || at + length > text.size()) return at;
        at += length;
    }
}

// In a heap block of its size, so that a stray read is noticed.
std::size_t foundIn(std::string_view text) {
    const std::vector<char> bytes(text.begin(), text.end());
    const std::string_view copy(bytes.data(), bytes.size());
    const char* const found = tessit::findBadCharacter(copy);
    EXPECT_EQ(found, tessit::findBadCharacter(copy, false)) << testing::PrintToString(text);
    return static_cast<std::size_t>(found - copy.data());
}

std::string joined(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

}  // namespace

TEST(Characters, AreToldByEachSequence) {
    const std::string front = joined({"\xE2\x82\xAC", std::string(75, 'x')}), back(20, 'y');
    for (const char* lead : {"", "\xF0\x90", "\xF0\x8F", "\xF4\x8F", "\xF4\x90", "\xEF\xBF"})
        for (const std::string& tail : sequences(*lead == '\0' ? 3 : 2))
            for (const std::string& text : {joined({lead, tail}), joined({front, lead, tail, back})})
                ASSERT_EQ(foundIn(text), soundLength(text)) << testing::PrintToString(text);
}

TEST(Characters, AreToldAtEveryPlace) {
    const char* const Fills[] = {
        "x", "\n", "\xC3\xA9", "\xE0\xA4\x85", "\xED\x95\x9C", "\xEF\xBF\xBD", "\xF0\x9F\x98\x80"};
    const char* const Faults[] = {"\x01",         "\x80",         "\xC3", "\xE2\x82", "\xF0\x9F\x98",
                                  "\xED\xA0\x80", "\xEF\xBF\xBF", "\xFF", "\xC0\x80"};
    for (const std::string fill : Fills)
        for (std::size_t length = 0; length <= 150; ++length) {
            const std::string sound = std::string(length % 7, '-') + tessit::test::repeat(fill, length / fill.size());
            EXPECT_EQ(foundIn(sound), sound.size());
            for (const std::string fault : Faults)
                for (const std::string& back : {std::string(), std::string(20, 'y'), std::string(70, 'y')})
                    ASSERT_EQ(foundIn(joined({sound, fault, back})), sound.size())
                        << length << testing::PrintToString(fill + fault);
        }
}
