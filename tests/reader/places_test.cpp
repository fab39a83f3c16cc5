// Where things stand: nodes and attributes against a model that counts, and what errors say besides their text.

#include <gtest/gtest.h>
#include <map>
#include <random>

#include "support/documents.h"

using namespace tessit::test;

namespace {

enum class Form { Utf8, Marked, Utf16LE, Utf16BE, Latin1, Cyrillic };
constexpr Form Forms[] = {Form::Utf8, Form::Marked, Form::Utf16LE, Form::Utf16BE, Form::Latin1, Form::Cyrillic};

// A document in that form, and the same text as UTF-8. Empty where it does not go.
struct Formed {
    std::string bytes, text;
    std::size_t markInText = 0;
};

Formed put(std::string_view body, Form form) {
    constexpr std::string_view Mark = "\xEF\xBB\xBF";
    const std::string text(body);
    if (form == Form::Utf8) return {text, text};
    if (form == Form::Marked) return {std::string(Mark) + text, std::string(Mark) + text, 3};
    if (form == Form::Utf16LE || form == Form::Utf16BE)
        return {encode(body, form == Form::Utf16LE ? Encoding::Utf16LE : Encoding::Utf16BE), std::string(Mark) + text,
                3};
    const bool isLatin = form == Form::Latin1;
    const std::string declaration =
        std::string("<?xml version='1.0' encoding='") + (isLatin ? "ISO-8859-1" : "windows-1251") + "'?>";
    std::string bytes = declaration;
    const std::u32string codes = decode(body).value();
    for (const char32_t code : codes) {
        if (code >= 0x80 && (isLatin ? code > 0xFF : code != 0x0416)) return {};
        bytes += static_cast<char>(code < 0x80 || isLatin ? code : 0xC6);
    }
    return {bytes, declaration + text};
}

QeXmlPosition model(const Formed& document, std::uint64_t offset, bool isConforming, bool isWide) {
    const std::string_view text = document.text;
    QeXmlPosition position;
    position.inputOffset = document.markInText == 0 ? 0 : isWide ? 2 : 3;
    for (std::size_t i = document.markInText; i < offset; ++i) {
        const bool begins = (text[i] & 0xC0) != 0x80;
        const bool isLast = text[i] == '\n' || (isConforming && text[i] == '\r' && text[i + 1] != '\n');
        position.column = isLast ? 1 : position.column + 1;
        position.characterColumn = isLast ? 1 : position.characterColumn + (begins ? 1 : 0);
        position.line += isLast ? 1 : 0;
        const bool isPastPlane = static_cast<unsigned char>(text[i]) >= 0xF0;
        const bool isOfBytes = document.bytes.size() == document.text.size();
        position.inputOffset += isOfBytes ? 1 : !begins ? 0 : !isWide ? 1 : isPastPlane ? 4 : 2;
    }
    position.offset = offset;
    return position;
}

class SpanChecker {
public:
    SpanChecker(const Formed& checkedDocument, bool conforming, bool wide)
        : document(checkedDocument), isConforming(conforming), isWide(wide) {}

    // The text that a span covers, each of its ends being what counting gives.
    std::string textOf(const QeXmlSpan& span) const {
        for (const QeXmlPosition& position : {span.begin, span.end}) {
            const QeXmlPosition expected = model(document, position.offset, isConforming, isWide);
            EXPECT_EQ(describe(position), describe(expected)) << document.text;
        }
        return document.text.substr(span.begin.offset, span.end.offset - span.begin.offset);
    }

private:
    static std::string describe(const QeXmlPosition& position) {
        std::ostringstream text;
        text << position.line << ':' << position.column << ':' << position.characterColumn << ' ' << position.offset
             << ' ' << position.inputOffset;
        return text.str();
    }

    const Formed& document;
    bool isConforming, isWide;
};

// All nodes as written, each with its attributes in the set's order, and the open elements.
std::string readSpans(QeXmlReader& reader, const SpanChecker& checker) {
    std::string all;
    while (!reader.eof()) {
        reader.readNextNode();
        const bool opens = reader.getLastNodeType() == QeXmlReader::ElementStart ||
                           reader.getLastNodeType() == QeXmlReader::EmptyElement;
        const QeXmlSpan span = reader.getLastSpan();
        all += checker.textOf(span);
        EXPECT_EQ(reader.getLastOffset(), span.begin.offset);
        EXPECT_EQ(reader.getPosition(span.begin.offset)->line, span.begin.line);
        const QeXmlAttributeSet& attributes = reader.getLastAttributes();
        for (auto attribute = attributes.begin(); opens && attribute != attributes.end(); ++attribute) {
            const auto spans = reader.getAttributeSpans(*attribute);
            all += spans ? " [" + checker.textOf(spans->name) + "=" + checker.textOf(spans->value) + "]" : " [none]";
        }
        for (const QeXmlOpenElement& element : reader.getOpenElements())
            all += " in " + std::string(element.name) + ' ' + checker.textOf(element.tag);
        all += " | ";
    }
    return all;
}

struct SpanCase {
    std::string_view body;
    QeXmlNodes nodes;
    std::string_view spans, lenientSpans = spans;
};

constexpr SpanCase Spans[] = {
    {"<a  y = '1\n2' x=\"\xC3\xA9&lt;\"\r\n>t&amp;\r\nu</a >", QeXmlNodes::All,
     "<a  y = '1\n2' x=\"\xC3\xA9&lt;\"\r\n> [x=\xC3\xA9&lt;] [y=1\n2] in a <a  y = '1\n2' x=\"\xC3\xA9&lt;\"\r\n> | "
     "t&amp;\r\nu in a <a  y = '1\n2' x=\"\xC3\xA9&lt;\"\r\n> | </a > | "},
    {"<r>\xD0\x96\r<a/>\r\r\n<b c='>'/></r>\n", QeXmlNodes::All,
     "<r> in r <r> | \xD0\x96\r in r <r> | <a/> in r <r> | \r\r\n in r <r> | <b c='>'/> [c=>] in r <r> | </r> | "},
    {"<r>\xF0\x9F\x98\x80<!--c--><?p q?><![CDATA[d]]></r>", QeXmlNodes::All,
     "<r> in r <r> | \xF0\x9F\x98\x80 in r <r> | <!--c--> in r <r> | <?p q?> in r <r> | <![CDATA[d]]> in r <r> | </r> "
     "| ",
     "<r> in r <r> | \xF0\x9F\x98\x80<!--c--><?p q?><![CDATA[d]]> in r <r> | </r> | "},
};

}  // namespace

TEST(Places, AreThoseOfAModelThatCounts) {
    for (const auto& [body, nodes, spans, lenientSpans] : Spans) {
        for (const Form form : Forms) {
            const Formed formed = put(body, form);
            if (formed.bytes.empty()) continue;
#if defined(TESSIT_WITHOUT_ICU)
            if (form == Form::Cyrillic) continue;
#endif
            const Document document(formed.bytes);
            for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
                const bool isConforming = rules == QeXmlRules::Conforming;
                const SpanChecker checker(formed, isConforming, form == Form::Utf16LE || form == Form::Utf16BE);
                for (const Source source : {Source::Span, Source::ByteByByte}) {
                    const auto reader = document.open(source, QeXmlReaderOptions{.rules = rules, .nodes = nodes});
                    EXPECT_EQ(readSpans(*reader, checker), isConforming ? spans : lenientSpans) << formed.text;
                }
            }
        }
    }
}

// Whatever is asked for in which order, over more than what is counted at once.
TEST(Places, AreFoundInAnyOrder) {
    std::string text = "<r";
    for (int i = 0; i < 300; ++i)
        text += (i % 7 == 0 ? "\n a" : " a") + std::to_string(i) + "='" + repeat("\xC3\xA9", 20) +
                std::to_string(i * i) + "'";
    const Formed formed{text + ">" + repeat("\n<e>", 300), text + ">" + repeat("\n<e>", 300)};
    const Document document(formed.bytes);
    const SpanChecker checker(formed, false, false);
    const auto reader = document.open(Source::Span);
    reader->readElementStart();
    for (const QeXmlAttribute& attribute : reader->getLastAttributes()) {
        const auto spans = reader->getAttributeSpans(attribute).value();
        EXPECT_EQ(checker.textOf(spans.value), attribute.getValue().data());
        EXPECT_EQ(checker.textOf(spans.name), attribute.getName().asString().data());
    }
    for (int i = 0; i < 300; ++i)
        reader->readElementStart();
    const std::vector<QeXmlOpenElement> elements = reader->getOpenElements();
    ASSERT_EQ(elements.size(), 301u);
    EXPECT_EQ(checker.textOf(elements[0].tag), text + ">");
    EXPECT_EQ(checker.textOf(elements[299].tag), "<e>");
    EXPECT_EQ(checker.textOf(reader->getLastSpan()), "<e>");
}

namespace {

// Has entities by their system identifiers.
class Shelf : public QeXmlResolver {
    bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) override {
        if (id.getSystemId() == "none") return false;
        entity.setBytes(id.getSystemId() == "bad" ? "1\n<c>&</c>" : "1\n<b x='2'/>");
        return true;
    }
};

struct EntitySpan {
    std::string_view xml;
    unsigned node;          // the number of the node to look at
    std::string_view span;  // of it, and of its first attribute
};

constexpr EntitySpan EntitySpans[] = {
    {"<!DOCTYPE a [<!ENTITY e '<b x=\"1\">t</b>'>]><a>&e;</a>", 1, "1:47-1:50 1:47-1:50"},
    {"<!DOCTYPE a [<!ENTITY e '<b x=\"1\">t</b>'>]><a>&e;</a>", 3, "1:47-1:50"},
    {"<!DOCTYPE a [<!ENTITY e '<b/>t'>]><a>&e;u</a>", 2, "1:38-1:42"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]><a>&e;u</a>", 2, "2:1-2:11 2:7-2:8"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'none'>]>\n<a>&e;</a>", 1, "2:4-2:7"},
    {"<!DOCTYPE a [<!ATTLIST a x CDATA '1'>]><a/>", 0, "1:40-1:44 none"},
    {"<!DOCTYPE a SYSTEM 'none' [<!ENTITY e ''>]><a>&e;&x;</a>", 1, "1:50-1:53"},
};

std::string textOf(const QeXmlSpan& span) {
    std::ostringstream text;
    text << span.begin.line << ':' << span.begin.column << '-' << span.end.line << ':' << span.end.column;
    return text.str();
}

}  // namespace

TEST(Places, OfWhatEntitiesBring) {
    for (const auto& [xml, node, expected] : EntitySpans) {
        Shelf shelf;
        const Document document(xml);
        const auto reader = document.open(
            Source::Span,
            QeXmlReaderOptions{.rules = QeXmlRules::Conforming, .nodes = QeXmlNodes::References, .resolver = &shelf});
        for (unsigned i = 0; i <= node; ++i)
            reader->readNextNode();
        std::string spans = textOf(reader->getLastSpan());
        if (const auto& attributes = reader->getLastAttributes();
            attributes.begin() != attributes.end() && reader->getLastNodeType() != QeXmlReader::ElementEnd) {
            const auto places = reader->getAttributeSpans(*attributes.begin());
            spans += " " + (places ? textOf(places->value) : "none");
        }
        EXPECT_EQ(spans, std::string(expected)) << xml;
    }
}

namespace {

std::string describeAll(const QeXmlParseError& error) {
    std::ostringstream text;
    const QeXmlPosition position = error.getPosition();
    text << position.line << ':' << position.column << ' ' << error.getRule() << ' ' << error.getPath();
    if (const QeXmlNote* note = error.getNote())
        text << " (" << note->text << ' ' << note->place.position.line << ':' << note->place.position.column << ')';
    if (!error.getHint().empty()) text << " hint: " << error.getHint().substring(0, 18);
    return text.str();
}

std::string errorOf(std::string_view xml, QeXmlRules rules, bool isWindow = false) {
    try {
        const Document document(xml);
        QeXmlReader reader(isWindow ? document.inPieces(0, 999) : document.inPlace(), {.rules = rules});
        reader.setMatchTags(true);
        while (!reader.eof())
            reader.readNextNode();
        reader.err("the end");
    } catch (const QeXmlParseError& error) {
        return describeAll(error);
    }
    return "none";
}

struct ErrorCase {
    std::string xml;
    std::string conforming, lenient;
};

const ErrorCase Errors[] = {
    {"<a><b></a>", "1:9 end-tag /a/b (it was opened here 1:4)", "1:11  /a/b (this element is open 1:4)"},
    {"<a></b>", "1:6 end-tag /a (it was opened here 1:1)", "1:8  /a (this element is open 1:1)"},
    {"<a>\n<b/><b><c>", "2:11 unfinished-document /a/b[2]/c (this element is not closed 2:8)",
     "2:11  /a/b[2]/c (this element is not closed 2:8)"},
    {"<f><e/><x/><e/><e><t>&</t></e></f>", "1:23 reference /f/e[3]/t",
     "1:35  /f/e[3]/t (this element is not closed 1:19)"},
    {"<a><b x='1'\n x='2'/></a>", "2:2 duplicate-attribute /a (the first of the two stands here 1:7)", "2:13  "},
    {"<a><!--<b>--><![CDATA[<b>]]><?p <b>?><b x='>' y=\"/>\"><1/></b></a>", "1:55 name /a/b", "1:56  /a/b"},
    {"<!DOCTYPE a [\n<!ENTITY e '&e;'>]><a>&e;</a>", "2:23 recursive-entity /a (the entity is declared here 2:10)",
     "2:30  "},
    {"<!DOCTYPE a [\n<!ENTITY e '<b>'>]><a>&e;</a>", "2:23 entity-nesting /a/b (the entity is declared here 2:10)",
     "2:30  "},
    {"<!DOCTYPE a [\n<!ENTITY e '<b><c>&#38;</c></b>'>]><a>&e;</a>",
     "2:39 reference /a/b/c (the entity is declared here 2:10)", "2:46  "},
    {"<!DOCTYPE a [\n<!ENTITY u SYSTEM 'u' NDATA n>]><a>&u;</a>",
     "2:36 unparsed-entity /a (the entity is declared here 2:10)", "2:43  "},
    {"<!DOCTYPE a [\n<!ENTITY u SYSTEM 'u'>]><a x='&u;'/>",
     "2:31 external-entity-in-value  (the entity is declared here 2:10)", "2:37  "},
    {"order/2026.xml", "1:1 text-outside-root  hint: is this a file's n", "1:2   hint: is this a file's n"},
    {"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", "1:1 text-outside-root  hint: a byte-order mark ",
     "1:2   hint: a byte-order mark "},
    {"<!DOCTYPE html>\n<html><br></html>", "2:13 end-tag /html/br (it was opened here 2:7) hint: this looks like HT",
     "2:18  /html/br (this element is open 2:7) hint: this looks like HT"},
    {"<log a='1'/>\n<log a='2'/>", "2:1 second-root  hint: are these several ", "2:13  "},
    {encode("\xEF\xBB\xBF<a/>", Encoding::Utf16LE), "1:1 text-outside-root  hint: a byte-order mark ",
     "1:2   hint: a byte-order mark "},
    {"<log/>\n<b/>", "2:1 second-root ", "2:5  "},
    {"<a/>\n<?xml version='1.0'?><b/>", "2:3 xml-declaration-place  hint: are these several ", "2:26  "},
    {"<a/><?xml version='1.0' encoding='none'?><b/>", "1:7 xml-declaration-place  hint: are these several ",
     "1:40   hint: are these several "},
    {"<r><?xml version='1.0'?></r>", "1:6 xml-declaration-place /r", "1:29  "},
    {"<a></a>\n<b/>", "2:1 second-root ", "2:5  "},
    {"<a></a>\n<!-- ", "2:6 unfinished-document ", "2:6  "},
    {"", "1:1 unfinished-document ", "1:1  "},
    {"order.xml\n", "1:1 text-outside-root  hint: is this a file's n", "1:2   hint: is this a file's n"},
    {"<?xml version='1.0'><a><b>", "1:20 xml-declaration ", "1:27  /a/b (this element is not closed 1:24)"},
};

}  // namespace

TEST(Places, ErrorsSayMoreThanTheirText) {
    for (const auto& [xml, conforming, lenient] : Errors)
        for (const bool isWindow : {false, true}) {
            EXPECT_EQ(errorOf(xml, QeXmlRules::Conforming, isWindow), conforming) << xml;
            EXPECT_EQ(errorOf(xml, QeXmlRules::Lenient, isWindow), lenient) << xml;
        }
}

namespace {

// The line, a caret in it where the place is, and dots where it goes on.
std::string textOf(const QeXmlExcerpt& excerpt) {
    std::string text = excerpt.isCutInFront ? "..." : "";
    text += excerpt.text.data();
    text.insert(text.size() - excerpt.text.length() + excerpt.offset, "^");
    return text + (excerpt.isCutBehind ? "..." : "");
}

std::string linesOf(std::string_view xml, QeXmlRules rules) {
    try {
        Shelf shelf;
        const Document document(xml);
        const auto reader = document.open(Source::Span, QeXmlReaderOptions{.rules = rules, .resolver = &shelf});
        reader->setMatchTags(true);
        while (!reader->eof())
            reader->readNextNode();
        reader->err("the end");
    } catch (const QeXmlParseError& error) {
        return textOf(error.getExcerpt()) + (error.getNote() ? " | " + textOf(error.getNote()->excerpt) : "");
    }
}

struct LineCase {
    std::string xml;
    std::string conforming, lenient;
};

const std::string Accents = repeat("\xC3\xA9", 100);
const std::string Cut = repeat("\xC3\xA9", 79);  // a byte more of the next one could be shown

const LineCase Lines[] = {
    {"<a>\n<b>\n</a>", "</^a> | ^<b>", "</a>^ | ^<b>"},
    {"<a>\r2&\r3</a>", "2&^", "<a>\r2&\r3</a>^ | ^<a>\r2&\r3</a>"},
    {"<a>\r\n<1/ \r\n", "<^1/ ", "<1^/ "},
    {"<a >\r\r\n&</a>", "&^</a>", "&</a>^ | ^<a >\r"},
    {"<a b='" + Accents + "' 1" + Accents + "'/>", "..." + Cut + "' ^1" + Cut + "...",
     "..." + Accents.substr(0, 156) + "' 1^" + Accents.substr(0, 160) + "..."},
    {"<a>\x01</a>", "<a>^\x01</a>", "<a>\x01</a>^"},
    {"<a>\xFF" + repeat("y", 200), "<a>^\xFF" + repeat("y", 159) + "...",
     "..." + repeat("y", 160) + "^ | ^<a>\xFF" + repeat("y", 156) + "..."},
    {"<?xml version='1.0' encoding='x'?>", "<?xml version='1.0' encoding='^x'?>",
     "<?xml version='1.0' encoding='x'^?>"},
    {"<a>\xC3\xA9<?xml version='1.0' encoding='ISO-8859-1'?>\xE9",
     "<a>\xC3\xA9<?^xml version='1.0' encoding='ISO-8859-1'?>\xE9", "...?>\xC3\xA9^"},
    {encode("<a>\n\xC3\xA9&</a>", Encoding::Utf16LE), "\xC3\xA9&^</a>", "\xC3\xA9&</a>^ | ^<a>"},
    {"<!DOCTYPE a [<!ENTITY e '&#60;'>\n]><a>&e;</a>", "]><a>^&e;</a> | <!DOCTYPE a [<!ENTITY ^e '&#60;'>",
     "]><a>&e;</a>^"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'bad'>]>\n<a>&e;</a>", "<c>&^</c> | <a>^&e;</a>", "<a>&e;</a>^"},
    {"<a/>\n", "^", "^"},
};

}  // namespace

TEST(Places, ErrorsShowTheirLines) {
    for (const auto& [xml, conforming, lenient] : Lines) {
        EXPECT_EQ(linesOf(xml, QeXmlRules::Conforming), conforming) << xml;
        EXPECT_EQ(linesOf(xml, QeXmlRules::Lenient), lenient) << xml;
    }
}

namespace {

// The path within elements whose names are so many times 'a', 'b', and so on; as such numbers again.
std::string pathWithin(const std::vector<std::size_t>& lengths) {
    std::string xml, path;
    for (std::size_t level = 0; level != lengths.size(); ++level)
        xml += '<' + std::string(lengths[level], static_cast<char>('a' + level)) + '>';
    const std::string error = errorOf(xml, QeXmlRules::Conforming);
    const std::size_t begin = error.find('/'), end = error.find(" (", begin);
    EXPECT_LE(end - begin, 1000u);
    for (std::size_t at = begin; at < end;) {
        const char byte = error[at];
        const std::size_t next = error.find_first_not_of(byte, at);
        path += byte;
        if (byte >= 'a') path += std::to_string(next - at);
        if (byte == '.') path += "..";
        at = next;
    }
    return path;
}

const struct {
    std::vector<std::size_t> lengths;
    std::string_view path;
} LongPaths[] = {
    {{249, 249, 249, 249}, "/a249/b249/c249/d249"},
    {{249, 249, 249, 250}, "/a249/.../d250"},
    {{999}, "/a999"},
    {{1000}, "/a996..."},
    {{1, 1200, 1}, "/a1/b992.../c1"},
    {{700, 700}, "/a494.../b494..."},
    {{2000, 2000, 1}, "/a494.../.../c1"},
    {{1, 2000, 2000}, "/a1/.../c494..."},
};

}  // namespace

// Names past the sixteenth have no number; the middle of what is longer than 1,000 bytes is left out.
TEST(Places, PathsAreBounded) {
    std::string names = "<r>";
    for (int i = 0; i < 17; ++i)
        names += "<n" + std::to_string(i) + "/>";
    EXPECT_EQ(
        errorOf(names + "<n15/><n15>", QeXmlRules::Conforming).substr(0, 45).find("/r/n15[3] ") != std::string::npos,
        true);
    EXPECT_NE(errorOf(names + "<n16/><n16>", QeXmlRules::Conforming).find("/r/n16 "), std::string::npos);
    const std::string deep = errorOf(repeat("<e><e/>", 2000), QeXmlRules::Lenient);
    EXPECT_NE(deep.find("/e/e[2]/e[2]"), std::string::npos) << deep;
    EXPECT_NE(deep.find("/e[2]/.../e/e"), std::string::npos) << deep;
    for (const auto& [lengths, path] : LongPaths)
        EXPECT_EQ(pathWithin(lengths), path);
    const std::string accents = errorOf("<x" + repeat("\xC3\xA9", 600) + ">", QeXmlRules::Conforming);
    EXPECT_NE(accents.find("/x" + repeat("\xC3\xA9", 497) + "... "), std::string::npos) << accents;
}

// A program that finds a fault later names its place; one that goes on behind errors is told where each was.
TEST(Places, OfErrorsThatAProgramRaises) {
    const Document document("<r>\r\n<a/>\n<b/><c/></r>");
    const auto reader = document.open(Source::Span, QeXmlReaderOptions{.sourceName = "doc"});
    reader->readElementStart();
    reader->readElementStart("a");
    const QeXmlPosition early = reader->getLastSpan().begin;
    reader->readElementEnd();
    const auto errorOfCall = [](auto call) {
        try {
            call();
        } catch (const QeXmlParseError& error) {
            return std::string(error.getSourceFile().data()) + ' ' + describeAll(error) + " " +
                   textOf(error.getExcerpt());
        }
        return std::string("none");
    };
    EXPECT_EQ(errorOfCall([&] { reader->readElementStart("x"); }), "doc 3:5  /r <b/>^<c/></r>");
    EXPECT_EQ(errorOfCall([&] { reader->err("late", early); }), "doc 2:1  /r ^<a/>");
    EXPECT_EQ(errorOfCall([&] { reader->err("", {.line = 1, .column = 5, .offset = 4}); }), "doc 1:5  /r <r>^");
    EXPECT_EQ(errorOfCall([&] { reader->err("", {.line = 1, .column = 6, .offset = 5}); }), "doc 1:6   ^");
    EXPECT_EQ(errorOfCall([&] { reader->readElementStart("x"); }), "doc 3:9  /r <b/><c/>^</r>");
    EXPECT_EQ(errorOfCall([&] { reader->err("now"); }), "doc 3:9  /r <b/><c/>^</r>");
}

// What a tag that could not be read has left does not count; nor do bytes that are gone.
TEST(Places, OfTheLastTagThatWasRead) {
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
        const Document document("<a x='1'><bcd");
        const auto reader = document.open(Source::Span, QeXmlReaderOptions{.rules = rules});
        reader->readElementStart();
        EXPECT_THROW(reader->readElementStart(), QeXmlParseError);
        const auto spans = reader->getAttributeSpans(*reader->getLastAttributes().begin());
        ASSERT_TRUE(spans);
        EXPECT_EQ(textOf(spans->value), "1:7-1:8");
    }
    QeXmlReader reader(QeCString("<r><a x='1'>e<?xml version='1.0' encoding='ISO-8859-1'?></a></r>"));
    reader.readElementStart("r");
    reader.readElement("a");
    EXPECT_FALSE(reader.getAttributeSpans(*reader.getLastAttributes().begin()));
}

// Errors in what came from outside say the reference, whoever raises them.
TEST(Places, OfErrorsInEntitiesFromOutside) {
    Shelf shelf;
    const Document document("<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]><a>&e;</a>");
    QeXmlReaderOptions options{.rules = QeXmlRules::Conforming, .resolver = &shelf};
    const auto noteOf = [&](auto call) {
        try {
            const auto reader = document.open(Source::Span, options);
            reader->readElementStart();
            reader->readElementStart();
            call(*reader);
        } catch (const QeXmlParseError& error) {
            return describeAll(error);
        }
        return std::string("none");
    };
    EXPECT_EQ(noteOf([](QeXmlReader& reader) { reader.err("x"); }), "2:11  /a (the entity was referred to here 1:41)");
    options.limits.depth = 1;
    EXPECT_EQ(noteOf([](QeXmlReader&) {}), "2:1  /a (the entity was referred to here 1:41)");
}

namespace {

std::string placesOf(const QeXmlSpan& span) {
    const auto place = [](const QeXmlPosition& position) {
        return std::to_string(position.line) + ':' + std::to_string(position.characterColumn) + '@' +
               std::to_string(position.inputOffset);
    };
    return place(span.begin) + '-' + place(span.end);
}

std::string openElementsOf(const QeXmlReader& reader) {
    std::string elements;
    for (const QeXmlOpenElement& element : reader.getOpenElements())
        elements += std::string(std::string_view(element.name)) + ' ' + placesOf(element.tag) + '\n';
    return elements;
}

// What is wrong with the next node, with the second place; nothing if it is there.
std::string readNext(QeXmlReader& reader) {
    try {
        reader.readNextNode();
        return "";
    } catch (const QeXmlParseError& error) {
        const std::string message = tessit::test::describe(error);
        const QeXmlNote* const note = error.getNote();
        return note == nullptr ? message : message + '\n' + placesOf({note->place.position, note->place.position});
    }
}

std::string pathOfLate(const QeXmlReader& reader, const QeXmlPosition& position) {
    try {
        reader.err("late", position);
    } catch (const QeXmlParseError& error) {
        return error.getPath().data();
    }
}

}  // namespace

// As in place, wherever the document's beginning is by now; but for the path of a place that has gone.
TEST(Places, OfOpenElementsWhoseTagsHaveLeftTheWindow) {
    const std::string front = "<r>\r\n<p\n a='\xC3\xA9'>" + repeat("<x>t</x>\n", 10'000) + "<b><c>";
    for (const char* const end : {"</d>", "</c></b></q>", "</c></b><d><e>", "<d", ""})
        for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
            const Document document(front + repeat("<y/>\n", 20'000) + "<z>t</z>" + end);
            QeXmlReader whole(document.inPlace(), {.rules = rules}),
                pieces(document.inPieces(0, 999), {.rules = rules});
            for (QeXmlReader* const reader : {&whole, &pieces})
                reader->setMatchTags(true);
            std::string error;
            QeXmlPosition inZ;
            for (int node = 0; error.empty(); ++node) {
                const bool asks = node % 997 == 0;
                ASSERT_EQ(asks ? openElementsOf(pieces) : "", asks ? openElementsOf(whole) : "") << node;
                error = readNext(whole);
                ASSERT_EQ(readNext(pieces), error);
                if (pieces.getLastNodeType() == QeXmlReader::ElementStart) inZ = pieces.getLastSpan().end;
            }
            EXPECT_NE(error.find('\n'), std::string::npos) << error;
            EXPECT_EQ(openElementsOf(pieces), openElementsOf(whole));
            const QeXmlPosition early{.line = 2, .column = 1, .offset = 5, .inputOffset = 5};
            EXPECT_EQ(pathOfLate(whole, early), "/r");
            EXPECT_EQ(pathOfLate(pieces, early), "");
            EXPECT_EQ(pathOfLate(pieces, inZ), "");
        }
}

namespace {

// Elements that open and close as it comes.
std::string tangledElements(std::size_t length) {
    std::mt19937 random(1);
    std::string xml = "<r>";
    std::vector<std::string> open;
    while (xml.size() < length || !open.empty()) {
        const bool opens = open.empty() || (xml.size() < length && open.size() < 40 && random() % 2 == 0);
        if (opens) open.emplace_back(1 + random() % 5, static_cast<char>('a' + random() % 26));
        xml += (opens ? "<" : "</") + open.back() + (random() % 3 == 0 ? "\n>" : ">\xC3\xA9");
        if (!opens) open.pop_back();
    }
    return xml + "</r>";
}

}  // namespace

// Those of levels whose tags have left before, too; and of more levels than are kept, what the window has.
TEST(Places, OfElementsThatOpenAgainAtLevelsThatHaveLeft) {
    const Document tangled(tangledElements(700'000));
    const std::string much(400'000, 'x');
    const Document deep(repeat("<a>", 1'100) + much + repeat("<b>", 5) + much + "<c>");
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
        QeXmlReader whole(tangled.inPlace(), {.rules = rules}), pieces(tangled.inPieces(0, 4096), {.rules = rules});
        for (int node = 0; !whole.eof(); ++node) {
            ASSERT_EQ(readNext(pieces), readNext(whole));
            const bool asks = node % 97 == 0;
            ASSERT_EQ(asks ? openElementsOf(pieces) : "", asks ? openElementsOf(whole) : "") << node;
        }
        pieces.reset(deep.inPieces(0, 4096));
        while (readNext(pieces).empty() && pieces.getLastName().getLocalName() != "c")
            ;
        const std::vector<QeXmlOpenElement> open = pieces.getOpenElements();
        ASSERT_EQ(open.size(), 1'025u);
        EXPECT_EQ(open.back().name, "c");
        EXPECT_EQ(open[1'023].tag.begin.offset, 3 * 1'023u);
    }
}

// By all that is told of it, an error is the same where a part ends in the midst of what it is about.
TEST(Places, OfErrorsAtTheEndOfWhatIsThere) {
    const std::string much(4096, 'x'), child = "<k>" + std::string(10'000, 'y') + "</k>", spaces(10'500, ' ');
    const struct {
        std::vector<std::string> parts;
        QeXmlLimits limits;
        const char* path;
    } cases[] = {
        {{"<r><s>", child, child, child, child, child, child, "<a>" + much + "</a" + spaces.substr(0, 300), spaces,
          spaces, "></s></r>"},
         {.node = 10'500},
         "/r/s/a"},
        {{"<r>", child, child, child, child, child, child, "<a><b></b></a></r>"}, {.depth = 2}, "/r/a"},
        {{"<r><b>x", much + "&;", "</b></r>"}, {}, "/r/b"},
        {{"<r><s>", child, child, child, child, child, child, child, "<a x></a></s></r>"}, {}, "/r/s"},
        {{"<r><b>x", much + "<!x", "></b></r>"}, {}, "/r/b"},
    };
    for (const auto& [parts, limits, path] : cases) {
        const auto errorOf = [&limits = limits](QeXmlInput input) {
            try {
                QeXmlReader reader(std::move(input), {.limits = limits});
                while (!reader.eof())
                    reader.readNextNode();
            } catch (const QeXmlParseError& error) {
                return std::string(error.why()) + ' ' + describeAll(error);
            }
            return std::string("none");
        };
        std::string whole;
        for (const std::string& part : parts)
            whole += part;
        const Document document(whole);
        std::size_t next = 0;
        const std::string inParts = errorOf(QeXmlInput::callback([&parts = parts, &next](std::span<char> room) {
            return next == parts.size() ? std::size_t{0} : parts[next++].copy(room.data(), room.size());
        }));
        EXPECT_EQ(inParts, errorOf(document.inPlace()));
        EXPECT_NE(inParts.find(std::string(" ") + path), std::string::npos) << inParts;
    }
}

// What an entity brought stands at its reference, wherever the window is by now: the text that begins in the entity,
// and the tag that it has.
TEST(Places, OfWhatEntitiesBroughtWhenTheWindowMoves) {
    const QeXmlReaderOptions options{.rules = QeXmlRules::Conforming, .nodes = QeXmlNodes::Comments};
    const std::string front = "<!DOCTYPE a [<!ENTITY e '<b x=\"1\"/>t'>]><a>";
    for (const std::size_t length : {std::size_t{100'000}, std::size_t{400'000}}) {
        const Document document(front + "&e;<!--c-->" + repeat("x", length) + "<c/></a>");
        QeXmlReader reader(document.inPieces(0, 4096), options);
        for (int node = 0; node != 3; ++node)
            reader.readNextNode();
        ASSERT_EQ(reader.getLastContent(), "t");
        EXPECT_EQ(reader.getLastOffset(), front.size());
        EXPECT_EQ(reader.getLastSpan().begin.offset, front.size());
        const auto spans = reader.getAttributeSpans(*std::as_const(reader).getLastAttributes().begin());
        EXPECT_TRUE(!spans || spans->name.begin.offset == front.size());
    }
}
