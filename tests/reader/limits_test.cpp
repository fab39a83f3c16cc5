// Limits: what a document has passes exactly, and one less is refused, by every path through the code.

#include <gtest/gtest.h>

#include <tessit/reader/passed_options.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

enum class Modes { Both, Conforming, Lenient };

struct Case {
    std::uint64_t QeXmlLimits::*field;
    const char* name;
    std::string xml;
    std::uint64_t count;     // what the document has
    std::string_view place;  // where it has too much if one less is allowed
    Modes modes = Modes::Both;
};

const std::string Long(40, 'n'), LongText(5000, 't');

const Case Cases[] = {
    {&QeXmlLimits::depth, "depth", "<a><b/></a>", 2, "1:4"},
    {&QeXmlLimits::depth, "depth", "<a>\n<b>t</b></a>", 2, "2:1"},
    {&QeXmlLimits::depth, "depth", "<!DOCTYPE a [<!ENTITY e '<b><c/></b>'>]><a>&e;</a>", 3, "1:44", Modes::Conforming},
    {&QeXmlLimits::attributes, "attributes", "<a x='1' y='2' z='3'/>", 3, "1:16"},
    {&QeXmlLimits::attributes, "attributes", "<r><a x='1' y='2'/><a x='1' y='2'/><a x='1' y='2' z='3'/></r>", 3,
     "1:51"},
    {&QeXmlLimits::attributes, "attributes", "<!DOCTYPE a [<!ATTLIST a x CDATA '1' y CDATA '2'>]><a z='3'/>", 3, "1:52",
     Modes::Conforming},
    {&QeXmlLimits::bindings, "bindings", "<a xmlns='u' xmlns:p='v'><b xmlns:q='w'/><c/></a>", 3, "1:26"},
    {&QeXmlLimits::bindings, "bindings", "<a xmlns='u' xmlns:p='v'><b xmlns:q='w'></b></a>", 3, "1:26"},
    {&QeXmlLimits::name, "name", "<a><b:cd xmlns:b='u'/></a>", 7, "1:10"},
    {&QeXmlLimits::name, "name", "<a><bcd/></a>", 3, "1:5"},
    {&QeXmlLimits::name, "name", "<a><" + Long + "></" + Long + "></a>", 40, "1:5"},
    {&QeXmlLimits::name, "name", "<a><b " + Long + "='1'/></a>", 40, "1:7"},
    {&QeXmlLimits::name, "name", "<a><b \xC3\xA9" + Long + "='1'/></a>", 42, "1:7"},
    {&QeXmlLimits::name, "name", "<a><?bcd e?></a>", 3, "1:6"},
    {&QeXmlLimits::name, "name", "<?bcd e?><a/>", 3, "1:3"},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<?bcd e?>]><a/>", 3, "1:16", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<a></" + Long + ">", 40, "1:6", Modes::Lenient},
    {&QeXmlLimits::name, "name", "<!DOCTYPE abc><a/>", 3, "1:11", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ELEMENT bcd (e|f)>]><a/>", 3, "1:24", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ELEMENT b (c|def)>]><a/>", 3, "1:29", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ELEMENT b (#PCDATA|cde)*>]><a/>", 3, "1:35", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ATTLIST b cde CDATA #IMPLIED>]><a/>", 3, "1:26", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ATTLIST b c (d|efg) 'd'>]><a/>", 3, "1:31", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ATTLIST b c NOTATION (def) 'd'>]><a/>", 3, "1:38", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ENTITY bcd ''>]><a/>", 3, "1:23", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ENTITY % bcd ''>]><a/>", 3, "1:25", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ENTITY b SYSTEM '' NDATA cde>]><a/>", 3, "1:41", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!NOTATION bcd SYSTEM ''>]><a/>", 3, "1:25", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [%bcd;]><a/>", 3, "1:15", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a [<!ENTITY b '&amp;&cde;'>]><a/>", 3, "1:32", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a SYSTEM 'b'><a>&quot;&cde;</a>", 3, "1:34", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE a SYSTEM 'b'><a b='&quot;&cde;'/>", 3, "1:37", Modes::Conforming},
    {&QeXmlLimits::name, "name", "<!DOCTYPE abcd [<!ELEMENT abcd ANY>]><abc>&abcd;</abc>", 3, "1:39", Modes::Lenient},
    {&QeXmlLimits::value, "value", "<a x='123'/>", 3, "1:7"},
    {&QeXmlLimits::value, "value", "<a x='" + LongText + "'/>", 5000, "1:7"},
    {&QeXmlLimits::value, "value", "<a x='1&lt;&#233;'/>", 4, "1:7"},
    {&QeXmlLimits::value, "value", "<r>" + repeat("<a x='1' y='2'/>", 3) + "<a x='1' y='2" + Long + "'/></r>", 41,
     "1:64"},
    {&QeXmlLimits::value, "value", "<!DOCTYPE a [<!ENTITY e '123'><!ENTITY f '&e;&e;'>]><a x='&f;4'/>", 7, "1:59",
     Modes::Conforming},
    {&QeXmlLimits::value, "value", "<a x='12345&amp;' x='1'/>", 6, "1:7", Modes::Lenient},
    {&QeXmlLimits::value, "value", "<a x='" + LongText + "&amp;" + LongText + "'/>", 10'001, "1:7"},
    {&QeXmlLimits::text, "text", "<a>123</a>", 3, "1:4"},
    {&QeXmlLimits::text, "text", "<a>" + LongText + "</a>", 5000, "1:4"},
    {&QeXmlLimits::text, "text", "<a>" + LongText + "&lt;" + LongText + "&#233;</a>", 10'003, "1:4"},
    {&QeXmlLimits::text, "text", "<a>" + LongText + "\r\n" + LongText + "</a>", 10'001, "1:4"},
    {&QeXmlLimits::text, "text", "<a>1<![CDATA[" + Long + "]]>2<!--" + Long + "-->3</a>", 43, "1:4"},
    {&QeXmlLimits::text, "text", "<!DOCTYPE a [<!ENTITY e '12'><!ENTITY f '<b/>&e;'>]><a>&f;&e;</a>", 4, "1:56",
     Modes::Conforming},
    {&QeXmlLimits::node, "node", "<a><b   x='1' \n/></a>", 14, "1:4"},
    {&QeXmlLimits::node, "node", "<a>123456789012345&lt;</a>", 19, "1:4"},
    {&QeXmlLimits::node, "node", "<a><!--1234--><b/></a>", 11, "1:4"},
    {&QeXmlLimits::node, "node", "<a>1<!--234-->5</a>", 12, "1:4"},
    {&QeXmlLimits::node, "node", "<?xml version='1.0'?><a/>", 21, "1:1"},
    {&QeXmlLimits::node, "node", "<?pi and data?><!--1--><a/>", 15, "1:1"},
    {&QeXmlLimits::node, "node", "<a></a>\n<!--1234-->", 11, "2:1", Modes::Conforming},
    {&QeXmlLimits::node, "node", "<a><?pi and data?></a>", 15, "1:4"},
    {&QeXmlLimits::node, "node", "<!DOCTYPE a [<!ELEMENT a ANY>]><a/>", 31, "1:1"},
    {&QeXmlLimits::node, "node", "<!DOCTYPE a [<!ENTITY e 't<b/>'>]><a>" + repeat(Long + "&e;", 3) + "</a>", 44, "1:38",
     Modes::Conforming},
    {&QeXmlLimits::node, "node", "<!DOCTYPE a [<!ENTITY e ''>]><a>" + repeat("&e;", 30) + "<b/></a>", 90, "1:33",
     Modes::Conforming},
    {&QeXmlLimits::node, "node",
     "<!DOCTYPE a [<!ENTITY e '<b/>t'><!ENTITY f '<b/>'>]><a>&e;<!--" + Long + "-->2222&f;</a>", 55, "1:56",
     Modes::Conforming},
    {&QeXmlLimits::document, "document", "<a>1</a>", 8, "1:1"},
    {&QeXmlLimits::entityDepth, "entityDepth",
     "<!DOCTYPE a [<!ENTITY d '1'><!ENTITY e '&d;'><!ENTITY f '&e;'>]><a>&f;</a>", 3, "1:68", Modes::Conforming},
    {&QeXmlLimits::entityDepth, "entityDepth",
     "<!DOCTYPE a [<!ENTITY d '1'><!ENTITY e '&d;'><!ENTITY f '&e;'>]><a x='&f;'/>", 3, "1:71", Modes::Conforming},
    {&QeXmlLimits::replacementText, "replacementText", "<!DOCTYPE a [<!ENTITY e '123'>]><a>&e;&e;</a>", 8, "1:39",
     Modes::Conforming},
    {&QeXmlLimits::replacementText, "replacementText", "<!DOCTYPE a [<!ATTLIST a b CDATA '123'>]><a/>", 4, "1:44",
     Modes::Conforming},
    {&QeXmlLimits::declarations, "declarations", "<!DOCTYPE a [<!ENTITY e ''><!ELEMENT a ANY>\n<!ATTLIST a>]><a/>", 3,
     "2:1", Modes::Conforming},
};

enum class Way { Nodes, LookingAhead, Values, Markup };

void readSome(QeXmlReader& reader, Way way) {
    if (way == Way::LookingAhead) reader.isElementNext("none");
    if (way == Way::Values) reader.readElementValue();
    if (way == Way::Markup) reader.readElement(QeXmlReader::NullName);
    if (!reader.eof()) reader.readNextNode();
}

// All of a document; or which limit was exceeded, its value, and where.
std::string read(const Case& row, std::uint64_t most, QeXmlRules rules, Way way, Source source,
                 Encoding encoding = Encoding::Utf8) {
    QeXmlLimits limits;
    limits.*row.field = most;
    const Document document(encode(row.xml, encoding));
    try {
        const auto reader = document.open(source, QeXmlReaderOptions{.rules = rules, .limits = limits});
        while (!reader->eof())
            readSome(*reader, way);
    } catch (const QeXmlLimitError& error) {
        EXPECT_EQ(std::string_view(error.getLimit()), row.name);
        EXPECT_EQ(error.getValue(), most);
        EXPECT_EQ(std::string(error.why()).substr(0, 10), "more than ");
        return std::to_string(error.getPosition().line) + ':' + std::to_string(error.getPosition().column);
    } catch (const QeXmlParseError& error) {
        return error.why();
    }
    return "passes";
}

}  // namespace

TEST(Limits, AreExact) {
    for (const Case& row : Cases) {
        for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
            if (row.modes == (rules == QeXmlRules::Lenient ? Modes::Conforming : Modes::Lenient)) continue;
            for (const Way way : {Way::Nodes, Way::LookingAhead, Way::Values, Way::Markup}) {
                if (way != Way::Nodes && rules == QeXmlRules::Conforming && row.place == "2:1") continue;
                for (const Source source : {Source::Span, Source::ByteByByte}) {
                    const std::string name = std::string(row.name) + ' ' + row.xml +
                                             std::to_string(static_cast<int>(way)) +
                                             (isInPieces(source) ? " in pieces" : "");
                    const std::string atLimit = read(row, row.count, rules, way, source);
                    EXPECT_TRUE(atLimit == "passes" || (way != Way::Nodes && atLimit == "Premature EOF"))
                        << atLimit << ' ' << name;
                    const bool isLate = row.field == &QeXmlLimits::document && isInPieces(source);  // what fits is read
                    EXPECT_EQ(read(row, row.count - 1, rules, way, source), isLate ? "1:4" : row.place) << name;
                }
            }
        }
    }
}

// Bytes are those of the text as UTF-8, but for those of the whole document.
TEST(Limits, AreThoseOfTheTextInAnyEncoding) {
    for (const Case& row : Cases) {
        if (row.field == &QeXmlLimits::document) continue;
        const QeXmlRules rules = row.modes == Modes::Conforming ? QeXmlRules::Conforming : QeXmlRules::Lenient;
        for (const Source source : {Source::Span, Source::ByteByByte}) {
            EXPECT_EQ(read(row, row.count, rules, Way::Nodes, source, Encoding::Utf16LE), "passes") << row.xml;
            EXPECT_EQ(read(row, row.count - 1, rules, Way::Nodes, source, Encoding::Utf16LE), row.place) << row.xml;
        }
    }
}

// Before anything is delivered, if the first bytes are too many.
TEST(Limits, HoldForWhatIsReadFirst) {
    const Document document("<a>" + repeat("<b/>", 1000) + "</a>");
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming})
        EXPECT_THROW(QeXmlReader(document.inPieces(0, 10'000), {.rules = rules, .limits = {.document = 1000}}),
                     QeXmlLimitError);
}

// One by one, however many stand next to each other, and where the call reads them that they are for.
TEST(Limits, HoldForNodesBesidesTagsAndText) {
    const struct {
        std::string xml;
        QeXmlNodes nodes;
        std::uint64_t most;
        std::string_view read;
    } rows[] = {
        {"<!DOCTYPE r SYSTEM 's'><r>" + repeat("t&e;", 40'000) + "</r>", QeXmlNodes::References, 23, "80002 nodes"},
        {"<!DOCTYPE r [<!ENTITY e 't'>]><r>" + repeat("&e;", 40'000) + "</r>", QeXmlNodes::TagsAndText, 120'000,
         "3 nodes"},
        {"<!DOCTYPE r SYSTEM 's'><r>&e;<a x='" + Long + "'/></r>", QeXmlNodes::TagsAndText, 30,
         "2 nodes, refused at 1:30 in /r"},
        {"<!DOCTYPE r SYSTEM 's'><r>&e;<!--" + Long + "--></r>", QeXmlNodes::All, 30, "3 nodes, refused at 1:30 in /r"},
        {"<r>" + repeat("t<!--c--><?pi?>", 20) + "</r>", QeXmlNodes::All, 8, "62 nodes"},
        {"<r>" + repeat("<!--c-->", 20) + "</r>", QeXmlNodes::TagsAndText, 8, "2 nodes"},
        {"<r>t<!--" + Long + "--></r>", QeXmlNodes::TagsAndText, 20, "1 nodes, refused at 1:4 in /r"},
        {"<r>t<!--" + Long + "--></r>", QeXmlNodes::All, 20, "2 nodes, refused at 1:5 in /r"},
        {"<!--" + Long + "--><r/>", QeXmlNodes::All, 20, "0 nodes, refused at 1:1 in "},
        {"<?" + Long + "?><r/>", QeXmlNodes::All, 20, "0 nodes, refused at 1:1 in "},
        {"<?xmp " + Long + "?><r/>", QeXmlNodes::All, 20, "0 nodes, refused at 1:1 in "},
        {"<!DOCTYPE " + Long + "><r/>", QeXmlNodes::All, 20, "0 nodes, refused at 1:1 in "},
        {"<r><a x='" + Long + "'/></r>", QeXmlNodes::All, 20, "1 nodes, refused at 1:4 in /r"},
    };
    for (const auto& [xml, nodes, most, expected] : rows)
        for (const Source source : {Source::Span, Source::ByteByByte}) {
            const Document document(xml);
            const QeXmlReaderOptions options{.rules = QeXmlRules::Conforming, .nodes = nodes, .limits = {.node = most}};
            const auto reader = document.open(source, options);
            std::size_t count = 0;
            std::string read;
            try {
                for (; !reader->eof(); ++count)
                    reader->readNextNode();
            } catch (const QeXmlLimitError& error) {
                const QeXmlPosition place = error.getPosition();
                read = ", refused at " + std::to_string(place.line) + ':' + std::to_string(place.column) + " in " +
                       std::string(error.getPath());
            }
            EXPECT_EQ(std::to_string(count) + " nodes" + read, expected) << xml.substr(0, 100);
        }
}

// The elements in front of what was too much, whether its beginning is still there or not.
TEST(Limits, HavePathsThroughWindows) {
    constexpr std::size_t Front = 50'000;
    const struct {
        const char* xml;
        QeXmlLimits limits;
        const char* last;
    } rows[] = {{"<r><a></a></r>", {.depth = 1}, "r"},
                {"<r><a longname=''></a></r>", {.name = 5}, "r"},
                {"<r><a x='long'/></r>", {.value = 2}, "r"},
                {"<r><a>text</a></r>", {.text = 3}, "a"}};
    for (const auto& [xml, limits, last] : rows)
        for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
            const Document document("<!--" + std::string(Front, 'x') + "-->" + xml + std::string(100, ' '));
            const auto pathOf = [&](QeXmlReader& reader) {
                try {
                    while (!reader.eof())
                        reader.readNextNode();
                } catch (const QeXmlParseError& error) {
                    return std::string(error.getPath());
                }
                return std::string("no error");
            };
            QeXmlReader reader(document.inPieces(Front + 7, 7), {.rules = rules, .limits = limits});
            EXPECT_TRUE(pathOf(reader).ends_with(std::string("/") + last)) << xml;
        }
}

// Even of what has to be read to know the encoding.
TEST(Limits, HoldForADeclarationWithoutAnEnd) {
    for (std::uint64_t QeXmlLimits::*const field : {&QeXmlLimits::document, &QeXmlLimits::node}) {
        QeXmlReaderOptions options{.rules = QeXmlRules::Conforming};
        options.limits.*field = 100'000;
        std::size_t given = 0;
        const auto fill = [&](std::span<char> room) {
            std::fill(room.begin(), room.end(), ' ');
            if (given == 0) std::string_view("<?xml").copy(room.data(), room.size());
            return given += room.size(), given < 10'000'000 ? room.size() : 0;
        };
        EXPECT_THROW(QeXmlReader(QeXmlInput::callback(fill), options), QeXmlLimitError);
        EXPECT_LT(given, 1'000'000u);
    }
}

// What is delivered counts: of a value as written a line end is one blank, and what its references stand for is
// nothing.
TEST(Limits, OfValuesAsWritten) {
    const Document document("<!DOCTYPE a [<!ENTITY e '0123456789'>]><a x='a\r\n&e;'/>");
    for (const std::uint64_t most : {5u, 4u}) {
        QeXmlLimits limits;
        limits.value = most;
        const auto reader =
            document.open(Source::Span, QeXmlReaderOptions{.rules = QeXmlRules::Conforming, .limits = limits});
        reader->setExpandAttributeReference(false);
        if (most == 5) {
            EXPECT_NO_THROW(reader->readElementStart());
        } else {
            EXPECT_THROW(reader->readElementStart(), QeXmlLimitError);
        }
    }
}

// A program that was built with fewer options has the defaults for the others.
TEST(Limits, OfProgramsThatDoNotKnowThem) {
    QeXmlReaderOptions options{.rules = QeXmlRules::Conforming, .sourceName = "doc", .entityDepth = 3};
    options.limits.depth = 1;
    EXPECT_EQ(tessit::withDefaults({options}).limits.depth, 1u);
    const QeXmlReaderOptions known = tessit::withDefaults({options, tessit::SizeWithoutLimits});
    EXPECT_EQ(known.limits.depth, QeXmlLimits::None);
    EXPECT_EQ(known.rules, QeXmlRules::Conforming);
    EXPECT_EQ(known.sourceName, "doc");
    EXPECT_EQ(known.entityDepth, 3u);
}
