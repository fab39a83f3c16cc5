// The reader takes short cuts: blocks of bytes at once, and tags that look like the
// last one of their name. What it reads must not show them.

#include <gtest/gtest.h>
#include <random>

#include <tessit/reader/name_scan.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

std::string textOf(const QeCString& text) {
    return std::string(std::string_view(text));
}

// Tags that differ in what the short cuts look at: names, their order and number,
// quotes, whitespace, lengths of values around the size of a block, references,
// declarations that change what the names mean.
class TagMaker {
public:
    std::string next() {
        std::string tag = "<" + pick({"a", "b", "p:a"});
        for (unsigned i = below(4), count = i; i > 0; --i)
            tag += attribute(i == count ? " " : pick({" ", "\n ", ""}));
        tag += pick({"/>", " />", "></a>", "\n></b>"});
        return below(4) == 0 ? "<w xmlns:p='v'>" + tag + "</w>" : tag;
    }

private:
    std::string attribute(const std::string& space) {
        const std::string quote = pick({"'", "\""});
        const std::string equals = pick({"=", "=", "=", " = "});
        return space + name() + equals + quote + value() + quote;
    }

    std::string name() {
        return pick({"x", "x", "y", "y", "p:x", "q:x", "long-name-of-attribute", "xmlns:p", "xmlns"});
    }

    std::string value() {
        if (below(4) == 0) return pick({"u", "v", "&lt;", "a&amp;b", "&other;"});
        return std::string(std::size_t{below(8)} + pickNumber({0, 20, 28}), 'v');
    }

    unsigned below(unsigned limit) { return static_cast<unsigned>(random()) % limit; }
    std::string pick(std::initializer_list<const char*> choices) {
        return choices.begin()[below(static_cast<unsigned>(choices.size()))];
    }
    unsigned pickNumber(std::initializer_list<unsigned> choices) {
        return choices.begin()[below(static_cast<unsigned>(choices.size()))];
    }

    std::mt19937 random{1};
};

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
    TagMaker maker;
    for (int document = 0; document < 300; ++document) {
        std::string xml(Root), expected;
        for (int i = 0; i < 30; ++i) {
            const std::string tag = maker.next();
            xml += tag;
            expected += readAlone(tag);
        }
        QeXmlReader reader((QeCString(std::string_view(xml))));
        ASSERT_EQ(readTags(reader), expected) << xml;
    }
}

// With each length of a text and of what stands behind it, up to more than two blocks.
TEST(XmlReader, ReadsTextsOfAnyLength) {
    struct Ending {
        const char* markup;
        const char* text;
    };
    constexpr Ending Endings[] = {{"", ""}, {"&lt;", "<"}, {"\r\n", "\n"}, {"\r", "\n"}, {"<![CDATA[<]]>", "<"}};
    for (std::size_t length = 0; length < 40; ++length)
        for (std::size_t behind = 0; behind < 40; ++behind)
            for (const Ending& ending : Endings) {
                const std::string text(length, 't');
                const Document document("<a>\r\n" + text + ending.markup + "</a" + std::string(behind, ' ') + ">");
                const auto reader = document.open(Source::Span);
                reader->readElementStart("a");
                ASSERT_EQ(textOf(reader->readElementValue()), "\n" + text + ending.text) << length << ' ' << behind;
                reader->readElementEnd("a");
            }
}

TEST(XmlReader, FindsTheEndOfANameInABlock) {
    using tessit::NameBlock;
    for (unsigned byte = 0; byte < 0x100; ++byte)
        for (std::size_t place = 0; place < std::size_t{NameBlock::Size}; ++place) {
            std::string block = "a:b:abcdefghijkl";
            block[place] = static_cast<char>(byte);
            const NameBlock found(block.data());
            const auto end = std::find_if(block.begin(), block.end(), [](char in) {
                const tessit::NameByte kind = tessit::nameByte(in);
                return kind == tessit::EndsName || kind == tessit::MultiByteName;
            });
            const bool isPlain = end != block.end() && tessit::nameByte(*end) == tessit::EndsName &&
                                 tessit::nameByte(block[0]) == tessit::StartsName;
            ASSERT_EQ(found.isWhole(), isPlain) << byte << ' ' << place;
            if (!isPlain) continue;
            const std::string name(block.begin(), end);
            EXPECT_EQ(found.length(), name.size());
            EXPECT_EQ(found.localStart(), name.find(':') + 1) << name;  // 0 without a colon
        }
}
