// What is counted by blocks, held against one byte after the other.

#include <gtest/gtest.h>
#include <random>
#include <support/documents.h>
#include <vector>

#include <tessit/rules/counted_bytes.h>
#include <tessit/rules/text_places.h>

using tessit::LineEnds;

namespace {

struct Counts {
    std::uint64_t lines = 0, continuations = 0, pastPlane = 0;
    std::size_t lineBegin = 0;

    bool operator==(const Counts&) const = default;
};

void PrintTo(const Counts& counts, std::ostream* out) {
    *out << counts.lines << " lines, the last at " << counts.lineBegin << ", " << counts.continuations << ", "
         << counts.pastPlane;
}

Counts expected(std::string_view text, LineEnds ends) {
    Counts counts;
    for (std::size_t at = 0; at != text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const bool isReturn = ends == LineEnds::All && byte == '\r';
        counts.lines += byte == '\n' || (isReturn && (at + 1 == text.size() || text[at + 1] != '\n'));
        counts.continuations += byte >= 0x80 && byte <= 0xBF;
        counts.pastPlane += byte >= 0xF0;
        if (byte == '\n' || isReturn) counts.lineBegin = at + 1;
    }
    return counts;
}

// At the end of a heap block, so that a stray read is noticed, and at any place within a line of the cache.
Counts counted(std::string_view text, LineEnds ends, bool mayUseWideBlocks) {
    std::vector<char> bytes(text.size() % 64);
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.shrink_to_fit();
    const char *const end = bytes.data() + bytes.size(), *const begin = end - text.size();
    const tessit::ByteCounts found = tessit::countBytes(begin, end);
    return {tessit::countLineEnds(begin, end, ends, mayUseWideBlocks), found.continuations, found.pastPlane,
            static_cast<std::size_t>(tessit::findLineBegin(begin, end, ends) - begin)};
}

void expectCounts(std::string_view text) {
    for (const LineEnds ends : {LineEnds::LineFeed, LineEnds::All})
        for (const bool mayUseWideBlocks : {true, false})
            EXPECT_EQ(counted(text, ends, mayUseWideBlocks), expected(text, ends)) << testing::PrintToString(text);
}

}  // namespace

TEST(CountedBytes, AreThoseOfEachByte) {
    const char* const Parts[] = {
        "\n", "\r", "\r\n", "x", "text of a line", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"};
    std::mt19937 random(1);
    for (std::size_t length = 0; length < 1'500; length += length < 300 ? 1 : 7) {
        std::string text;
        while (text.size() < length)
            text += Parts[random() % std::size(Parts)];
        expectCounts(text);
    }
}

// More than a byte counts, with one more or less for what is no block.
TEST(CountedBytes, AreManyInARow) {
    for (const char* const same : {"\n", "\r", "\xBF", "\xF0"})
        for (const std::size_t length : {20'031u, 20'032u, 20'033u})
            expectCounts(tessit::test::repeat(same, length));
}

// As where a window had no memory to move, after it was counted up to where it would have begun.
TEST(CountedBytes, AreRightInFrontOfWhatWasLeft) {
    const std::string text = tessit::test::repeat("x\n", 10'000);
    const char* const begin = text.data();
    tessit::TextPlaces places;
    places.begin(text, LineEnds::LineFeed);
    for (const std::size_t offset : {10'001u, 5'000u, 10'003u, 9'000u}) {
        places.leave(begin + 10'000);
        const QeXmlPosition position = places.at(begin + offset);
        EXPECT_EQ(position.line, offset / 2 + 1);
        EXPECT_EQ(position.column, offset % 2 + 1);
    }
}
