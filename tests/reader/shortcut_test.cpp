// The reader takes short cuts: blocks of bytes at once, and tags that look like the
// last one of their name. What it reads must not show them.

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

#include <tessit/reader/name_scan.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

// Tags that differ in what the short cuts look at: names, their order and number, quotes, whitespace, references,
// declarations that change what the names mean. A # stands for a value.
// clang-format off
constexpr std::string_view Tags[] = {
    "<a/>", "<b></b>", "<p:a></p:a>", "<a x='#'/>", "<a x='#'></a>", "<a x=\"#\" />", "<a  x='#'/>", "<a x = '#'/>",
    "<a y='#'/>", "<a p:x='#'/>", "<a x='&lt;#'/>", "<a x='#' y='#'/>", "<a x='#'y='#'></a>", "<a x='#' y='#' />",
    "<a y='#' x='#'/>", "<a x='#' x='#'/>", "<a p:x='#' q:x='#'/>", "<a x='#' y='#' p:x='#'/>", "<p:a x='#'/>",
    "<a x='#' long-name-of-attribute='#'/>", "<a long-name-of-attribute='#' x='&other;#'/>", "<a xmlns='v'/>",
    "<a x='#' xmlns:p='v'></a>", "<p:a p:x='#' xmlns:p='v'/>", "<w xmlns:p='v'><p:a p:x='#'/></w>",
    "<w xmlns:p='v'><a x='#' p:x='#'></a></w>", "<b x='#' y='#'></b>", "<p:a x='#'\n></b>"};
// clang-format on

// One of the tags, with values of lengths around the size of a block.
std::string tagOf(std::mt19937& random) {
    std::string tag(Tags[random() % std::size(Tags)]);
    for (std::size_t at; (at = tag.find('#')) != std::string::npos;)
        tag.replace(at, 1, random() % 8 + random() % 3 * 14, 'v');
    return tag;
}

constexpr std::string_view Root = "<r xmlns:p='u' xmlns:q='u'>";

std::string readTags(QeXmlReader& reader) {
    std::string tags;
    for (reader.readNextNode(); !reader.eof();) {
        reader.readNextNode();
        const bool opens = reader.getLastNodeType() != QeXmlReader::ElementEnd;
        if (opens) tags += describe(reader.getLastName()) + describe(reader.getLastAttributes()) + "\n";
    }
    return tags;
}

std::string readAlone(const std::string& tag) {
    QeXmlReader reader(QeCString(std::string_view(std::string(Root) + tag)));
    return readTags(reader);
}

}  // namespace

TEST(XmlReader, ReadsATagAsIfItWereTheFirst) {
    std::mt19937 random(1);
    for (int document = 0; document < 300; ++document) {
        std::string xml(Root), expected;
        for (int i = 0; i < 30; ++i) {
            const std::string tag = tagOf(random);
            xml += tag;
            expected += readAlone(tag);
        }
        QeXmlReader reader((QeCString(std::string_view(xml))));
        ASSERT_EQ(readTags(reader), expected) << xml;
    }
}

// With each length of a text and of what stands behind it, up to more than two blocks.
TEST(XmlReader, ReadsTextsOfAnyLength) {
    constexpr const char* Endings[][2] = {
        {"", ""}, {"&lt;", "<"}, {"\r\n", "\n"}, {"\r", "\n"}, {"<![CDATA[<]]>", "<"}};
    for (std::size_t length = 0; length < 40; ++length)
        for (std::size_t behind = 0; behind < 40; ++behind)
            for (const auto& [markup, meaning] : Endings) {
                const std::string text(length, 't'), end = meaning + std::string(" -a");
                for (const char* line : {"\r\n", "\r"})
                    ASSERT_EQ(trace("<a>" + (line + text) + markup + "</a" + std::string(behind, ' ') + ">"),
                              "+a =\n" + text + end)
                        << behind;
            }
}

TEST(XmlReader, FindsTheEndOfANameInABlock) {
    using tessit::NameBlock;
    for (unsigned byte = 0; byte < 0x100; ++byte)
        for (std::size_t place = 0; place < std::size_t{NameBlock::Size}; ++place) {
            std::string block = "a:b:abcdefghijk>";
            block[place] = static_cast<char>(byte);
            const NameBlock found(block.data());
            const auto end = std::find_if(block.begin(), block.end(), [](char in) {
                const tessit::NameByte kind = tessit::nameByte(in);
                return kind == tessit::EndsName || kind == tessit::MultiByteName;
            });
            const bool isWhole = end != block.end() && tessit::nameByte(*end) == tessit::EndsName &&
                                 tessit::nameByte(block[0]) == tessit::StartsName;
            ASSERT_EQ(found.isWhole(), isWhole) << byte << ' ' << place;
            const std::string name(block.begin(), end);
            if (!isWhole) continue;
            EXPECT_EQ(found.length(), name.size());
            EXPECT_EQ(found.localStart(), name.find(':') + 1) << name;  // 0 without a colon
        }
}
