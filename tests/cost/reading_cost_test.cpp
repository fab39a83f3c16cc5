// Documents of each kind that someone could choose to hurt, read in each way, and
// written again: four times the document takes about four times as long, whatever
// it is made of. Run by hand, the program prints what a byte costs at both sizes.

#include <sstream>
#include <vector>

#include <tessit/sax/xml_sax_parser.h>
#include <tessit/utils/xml_utils.h>
#include <tessit/writer/xml_string_writer.h>

#include "cost/growth.h"
#include "support/documents.h"

using namespace tessit::test;

namespace {

using Text = std::string;

// --- Ways to read. An error ends each of them, and is no matter.

void walk(QeXmlReader& reader) {
    while (!reader.eof())
        reader.readNextNode();
}

void goOnAfterErrors(QeXmlReader& reader) {
    while (!reader.eof()) {
        try {
            reader.readNextNode();
        } catch (const QeXmlParseError&) {
        }
    }
}

void walkReferencesAsWritten(QeXmlReader& reader) {
    reader.setExpandAttributeReference(false);
    walk(reader);
}

// Each refusal takes the tag all the same.
void demandInVain(QeXmlReader& reader) {
    while (!reader.eof()) {
        EXPECT_THROW(reader.readElementStart("none"), QeXmlParseError);
        EXPECT_THROW(reader.readElementEnd("none"), QeXmlParseError);
    }
}

void bindByHand(QeXmlReader& reader) {
    for (int i = 0; !reader.eof(); ++i) {
        const QeCString text(std::string_view(std::to_string(i)));
        reader.addNamespace(QeXmlNamespace(text, text));
        ASSERT_EQ(reader.getPrefixForURI(text), text);
        ASSERT_EQ(reader.getURIForPrefix(text), text);
        reader.readNextNode();
    }
}

// Binds the namespace of each tag once more, over many of the same.
void bindAgain(QeXmlReader& reader) {
    for (QeXmlNamespaceStack stack; !reader.eof();) {
        reader.readNextNode();
        stack.pushScope();
        stack.addNamespace(reader.getLastName().getNamespace());
    }
}

// Holds names against each tag before it is taken.
void demand(QeXmlReader& reader) {
    const QeXmlName plain("a"), prefixed("a", QeXmlNamespace("p", ""));
    for (;;) {
        reader.isElementNext("a") || reader.isElementNext("p:a");
        reader.isElementNext(plain) || reader.isElementNext(prefixed);
        reader.readNextNode();
    }
}

void takeValues(QeXmlReader& reader) {
    reader.readElementStart();
    while (reader.isElementNext("a")) {
        reader.readElementStart("a");
        reader.readElementValue();
        reader.readElementEnd(QeXmlName("a"));
    }
}

// Keeps the name of each element, to demand its end by.
void keepNames(QeXmlReader& reader) {
    for (std::vector<QeXmlName> open; !reader.eof();) {
        reader.readNextNode();
        const QeXmlReader::NodeType type = reader.getLastNodeType();
        if (type == QeXmlReader::ElementStart) open.push_back(reader.getLastName());
        if (type == QeXmlReader::EmptyElement) reader.readElementEnd(reader.getLastName());
        if (type != QeXmlReader::ElementEnd) continue;
        ASSERT_TRUE(open.back() == reader.getLastName() && !(open.back() < reader.getLastName()));
        open.pop_back();
    }
}

// Asks for an element like the first one, by a name with a URI of its own.
void askForTheFirst(QeXmlReader& reader) {
    reader.readElementStart();
    reader.readElementStart();
    const QeXmlName& first = reader.getLastName();
    const QeXmlName own(first.getLocalName(), QeXmlNamespace("own", first.getNamespace().getURI()));
    reader.readElementEnd();
    while (!reader.eof()) {
        ASSERT_FALSE(reader.isElementNext(own));
        reader.readNextNode();
    }
}

class Sink final : public QeXmlWriter {
public:
    using QeXmlWriter::writeToSink;
    void writeToSink(char byte) override { bytes += byte; }
    void writeToSink(const QeCString& text) override { bytes += std::string_view(text); }
    void flush() override {}

private:
    Text bytes;
};

void writeRest(QeXmlReader& reader, QeXmlWriter& writer) {
    while (!reader.eof()) {
        reader.readNextNode();
        const QeXmlReader::NodeType type = reader.getLastNodeType();
        if (type == QeXmlReader::Content) writer.write(reader.getLastContent(), true);
        if (type == QeXmlReader::ElementEnd) writer.writeElementEnd(reader.getLastName());
        if (type == QeXmlReader::ElementStart || type == QeXmlReader::EmptyElement)
            writer.writeElementStart(reader.getLastName(), reader.getLastAttributes(),
                                     type == QeXmlReader::EmptyElement);
    }
}

template <typename Writer = QeXmlStringWriter>
void writeAgain(QeXmlReader& reader) {
    Writer writer;
    writeRest(reader, writer);
}

// The default namespace is the root's, as a URI of the writer's own.
void writeUnderOwnDefault(QeXmlReader& reader) {
    reader.readElementStart();
    QeXmlStringWriter writer;
    writer.addNamespace(QeXmlNamespace("", reader.getLastName().getNamespace().getURI()));
    writeRest(reader, writer);
}

void writeContentAgain(QeXmlReader& reader) {
    reader.readElementStart();
    writeAgain(reader);
}

void takeMarkup(QeXmlReader& reader) {
    reader.readElement(QeXmlReader::NullName);
}

void takeMarkupOfChildren(QeXmlReader& reader) {
    reader.readElementStart();
    do
        reader.isElementNext("a");
    while (!reader.readElement(QeXmlReader::NullName).empty());
}

void takeMarkupAtEachLevel(QeXmlReader& reader) {
    for (;;) {
        reader.readElementStart("a");
        reader.readElement("b");
    }
}

template <void (*read)(QeXmlReader&)>
void inPlace(const Text& document) {
    try {
        QeXmlReader reader(std::span(reinterpret_cast<const unsigned char*>(document.data()), document.size()));
        read(reader);
    } catch (const QeXmlParseError&) {
    }
}

void fromStream(const Text& document) {
    std::istringstream in(document);
    QeXmlReader reader(in);
    walk(reader);
}

void parse(const Text& document) {
    struct Handler final : QeXmlContentHandler {
        void elementStart(const QeXmlName&, const QeXmlAttributeSet&) override {}
        void elementEnd(const QeXmlName&) override {}
        void content(const QeCString&) override {}
    } handler;
    QeXmlSAXParser parser;
    parser.setContentHandler(&handler);
    parser.parse(QeCString(std::string_view(document)), "");
}

void compareWithItself(const Text& document) {
    const QeCString text{std::string_view(document)};
    ASSERT_TRUE(QeXmlUtils::compareXml(text, text));
}

void changeName(const Text& document) {
    QeXmlUtils::changeName(QeXmlName("n", QeXmlNamespace("p", "other")), QeCString(std::string_view(document)));
}

// --- Documents, by the number of their parts.

// `before`NUMBER='NUMBER' for each of so many numbers.
Text attributes(const Text& before, std::size_t count) {
    Text text;
    inOddOrder(count, [&](const Text& number) { text += before + number + "='" + number + "'"; });
    return text;
}

// One part over and over, with something else in front and behind.
template <Literal before, Literal part, Literal behind>
Text runOf(std::size_t parts) {
    return before.bytes + repeat(part.bytes, parts) + behind.bytes;
}

Text nested(std::size_t parts) {
    return repeat("<a>", parts) + repeat("</a>", parts);
}

Text nestedWithDeclarations(std::size_t parts) {
    Text text;
    for (std::size_t i = 0; i < parts; ++i)
        text += "<a xmlns:p" + std::to_string(i) + "='u'>";
    return text + repeat("</a>", parts);
}

Text withAttributes(std::size_t parts) {
    return "<r" + attributes(" a", parts) + "/>";
}

Text withDeclarations(std::size_t parts) {
    return "<r" + attributes(" xmlns:p", parts) + "></r>";
}

Text usingDeclarations(std::size_t parts) {
    Text text = "<r xmlns:p='u'" + attributes(" xmlns:p", parts) + ">";
    inOddOrder(parts, [&](const Text& number) { text += "<p" + number + ":a/><p:a p" + number + ":x=''/>"; });
    return text + "</r>";
}

// All in one tag, inside the one that declares the prefixes. Their URIs have another order.
Text usingDeclarationsAtOnce(std::size_t parts) {
    Text declarations, tag;
    inOddOrder(parts, [&](const Text& number) {
        declarations += " xmlns:p" + number + "='" + Text(number.rbegin(), number.rend()) + "'";
        tag += " p" + number + ":x=''";
    });
    return "<r" + declarations + "><a" + tag + "/></r>";
}

Text declaringTwentyEach(std::size_t parts) {
    return "<r>" + repeat("<a" + attributes(" xmlns:p", 20) + "></a>", parts / 20) + "</r>";
}

// Three URIs that are nearly half of the document, of which one differs in its last byte.
template <Literal part>
Text underLongURIs(std::size_t parts) {
    const Text uri(4 * parts, 'u');
    return "<a xmlns='" + uri + "1' xmlns:p='" + uri + "2' xmlns:q='" + uri + "1'>" + repeat(part.bytes, parts / 2) +
           "</a>";
}

// Two URIs that differ near their ends, each under a prefix: what a writer need not declare anew. The first element
// is in the second one.
template <Literal part>
Text underPrefixedLongURIs(std::size_t parts) {
    const Text front(4 * parts, 'u'), end(20, 'u');
    return "<r xmlns:p='" + front + "1" + end + "' xmlns:q='" + front + "2" + end + "'><q:a/>" +
           repeat(part.bytes, parts / 2) + "</r>";
}

Text underLongDefault(std::size_t parts) {
    return "<r xmlns='" + Text(4 * parts, 'u') + "'>" + repeat("<a/>", parts) + "</r>";
}

// Each child makes of few bindings many, and of many few again.
Text declaringNineUnderLongURIs(std::size_t parts) {
    Text root = "<r";
    for (char prefix = 'a'; prefix != 'i'; ++prefix)
        root += Text(" xmlns:") + prefix + "='" + Text(5 * parts, prefix) + "'";
    return root + ">" + repeat("<c" + attributes(" xmlns:p", 9) + "></c>", parts / 5) + "</r>";
}

Text attributesWithLongURI(std::size_t parts) {
    return "<a xmlns:p='" + Text(4 * parts, 'u') + "'" + attributes(" p:a", parts / 4) + "/>";
}

Text tagsOfManyLongURIs(std::size_t parts) {
    Text declarations, tag;
    for (int i = 100; i < 120; ++i) {
        const Text number = std::to_string(i);
        declarations += " xmlns:p" + number + "='" + Text(parts / 2, 'u') + number + "'";
        tag += " p" + number + ":a=''";
    }
    return "<r" + declarations + ">" + repeat("<a" + tag + "/>", parts / 20) + "</r>";
}

Text childrenOfAWideTag(std::size_t parts) {
    return "<r" + attributes(" a", parts) + ">" + repeat("<a/>", parts) + "</r>";
}

Text narrowTagsBehindAWideOne(std::size_t parts) {
    return "<r><a" + attributes(" a", parts) + "/>" + repeat("<a a='1'/>", parts) + "</r>";
}

template <Text (*document)(std::size_t parts)>
Text inUtf16(std::size_t parts) {
    Text text = "\xFE\xFF";
    for (const char byte : document(parts))
        text.append({'\0', byte});
    return text;
}

template <Literal encoding, Text (*document)(std::size_t parts)>
Text inEncoding(std::size_t parts) {
    return Text("<?xml version='1.0' encoding='") + encoding.bytes + "'?>" + document(parts);
}

constexpr auto Children = runOf<"<r>", "<a>t</a>", "</r>">;
constexpr auto LongURIs = underLongURIs<"<a><p:a></p:a></a><q:a></q:a>">;

constexpr std::size_t Few = 1'000, Many = 4'000, VeryMany = 100'000;

const struct {
    const char* name;
    std::size_t parts;  // of the smaller document
    Text (*document)(std::size_t parts);
    void (*use)(const Text& document);
} Cases[] = {
    {"WalkDepthFromStream", Many, nested, fromStream},
    {"ParseDepth", Many, nested, parse},
    {"DemandDepth", Many, nested, inPlace<demand>},
    {"TakeMarkupOfDepth", Many, nested, inPlace<takeMarkup>},
    {"TakeMarkupAtEachLevel", Many, runOf<"", "<a><b>t</b>", "">, inPlace<takeMarkupAtEachLevel>},

    {"DemandInVain", Many, nested, inPlace<demandInVain>},
    {"BindByHandAtEachLevel", Many, nested, inPlace<bindByHand>},

    {"WalkRepeatedAttributes", Many, runOf<"<r", " a=''", "/>">, inPlace<walk>},
    {"TakeMarkupUnderAWideTag", Few, childrenOfAWideTag, inPlace<takeMarkupOfChildren>},

    {"WalkNarrowTagsBehindAWideOne", Few, narrowTagsBehindAWideOne, inPlace<walk>},

    {"ParseUnderDeclarations", Few, usingDeclarations, parse},
    {"DemandUnderDeclarations", Few, usingDeclarations, inPlace<demand>},
    {"DemandNestedDeclarations", Few, nestedWithDeclarations, inPlace<demand>},
    {"DemandTwentyDeclarationsEach", Few, declaringTwentyEach, inPlace<demand>},

    {"WalkNineDeclarationsUnderLongURIs", Few, declaringNineUnderLongURIs, inPlace<walk>},
    {"DemandUnderLongURIs", Many, LongURIs, inPlace<demand>},
    {"TakeMarkupUnderLongURIs", Many, LongURIs, inPlace<takeMarkup>},
    {"TakeMarkupOfChildrenUnderLongURIs", Many, LongURIs, inPlace<takeMarkupOfChildren>},
    {"ParseUnderLongURIs", Many, LongURIs, parse},
    {"ParseChangingPrefixes", Many, underLongURIs<"<a></q:a><q:a></a>">, parse},
    {"CompareUnderLongURIs", Many, LongURIs, compareWithItself},
    {"KeepNamesUnderLongURIs", Many, LongURIs, inPlace<keepNames>},
    {"BindAgainUnderLongURIs", Many, LongURIs, inPlace<bindAgain>},
    {"WriteUnderLongURIs", Many, underPrefixedLongURIs<"<p:a/><q:a>t</q:a>">, inPlace<writeAgain<>>},
    {"WriteAttributesUnderLongURIs", Many, underPrefixedLongURIs<"<p:a p:a='' q:a=''/>">, inPlace<writeAgain<>>},
    {"WriteUnderLongDefault", Many, underLongDefault, inPlace<writeUnderOwnDefault>},
    {"WriteTagsOfManyLongURIs", Many, tagsOfManyLongURIs, inPlace<writeAgain<>>},
    {"AskForTheFirstUnderLongURIs", Many, underPrefixedLongURIs<"<p:a/>">, inPlace<askForTheFirst>},
    {"DemandUnusedLongURI", Many, underPrefixedLongURIs<"<q:a/>">, inPlace<demand>},
    {"WriteUnderDeclarations", Few, usingDeclarations, inPlace<writeAgain<>>},
    {"WriteUnderDeclarationsToSink", Few, usingDeclarations, inPlace<writeAgain<Sink>>},
    {"WriteToSink", Many, runOf<"<r>", "<a x='&quot;'>&lt;</a>", "</r>">, inPlace<writeAgain<Sink>>},
    {"WriteContentUnderDeclarations", Few, usingDeclarationsAtOnce, inPlace<writeContentAgain>},
    {"WalkAttributesWithLongURI", Many, attributesWithLongURI, inPlace<walk>},
    {"WalkTagsOfManyLongURIs", Many, tagsOfManyLongURIs, inPlace<walk>},

    {"WalkOneLongReference", VeryMany, runOf<"<a>&#", "6", ";</a>">, inPlace<walk>},
    {"WalkReferencesAsWritten", VeryMany, runOf<"<a x='", "&amp;", "'/>">, inPlace<walkReferencesAsWritten>},
    {"WalkOneLongPrefix", VeryMany, runOf<"<", "n", ":n/>">, inPlace<walk>},
    {"GoOnAfterErrors", Many, runOf<"<a>", "a text of forty bytes in front of an error<1", "">,
     inPlace<goOnAfterErrors>},

    {"WalkUtf16", VeryMany, inUtf16<Children>, fromStream},
    {"WalkGB18030", VeryMany, inEncoding<"GB18030", Children>, fromStream},
    {"WalkISO2022", VeryMany, inEncoding<"ISO-2022-JP", Children>, fromStream},
    {"WalkVersions", Many, runOf<"<a>", "<?xml version='1'?>", "</a>">, inPlace<walk>},
    {"WalkChangesOfEncoding", Few,
     runOf<"<a>", "\xE9<?xml version='1' encoding='ISO-8859-1'?><?xml version='1' encoding='latin2'?>", "</a>">,
     inPlace<walk>},
    {"WalkChangesOfEncodingAtOnce", Few,
     runOf<"<a>\xE9<?xml version='1' ", "e       ='ISO-8859-1' e       ='latin2' ", "?></a>">, inPlace<walk>},
    {"WalkOtherNamesOfTheEncoding", Few,
     runOf<"<a>", "<?xml version='1' encoding='UTF-8'?><?xml version='1' encoding='utf-8'?>", "</a>">, inPlace<walk>},

    {"TakeValues", Many, Children, inPlace<takeValues>},
    {"TakeMarkupOfChildren", Many, Children, inPlace<takeMarkupOfChildren>},
    {"Compare", Many, Children, compareWithItself},
    {"CompareAttributes", Few, withAttributes, compareWithItself},

    {"ChangeNameOverContent", VeryMany, runOf<"<a>", "<b/>", "</a>">, changeName},
    {"ChangeNameOverAttributes", Many, runOf<"<a", " x='1'", "></a>">, changeName},
    {"ChangeNameOverDeclarations", Few, withDeclarations, changeName},
};

// What runs are made of, and where they stand, instead of the @. Some of these are errors.
constexpr std::string_view Parts[] = {"]", "?",       "-",     "-x",           "&", "&amp;", "&#x41;", "&x;", "\r",
                                      ">", "<!---->", "<?x?>", "<![CDATA[]]>", "a", ":",     "[]",     " "};
constexpr std::string_view Frames[] = {"<r>@</r>", "<r><![CDATA[@]]></r>", "<r><?pi @?></r>",      "<r x='@'/>",
                                       "<r@/>",    "<r><!--@--></r>",      "<!DOCTYPE r [@]><r/>", "<r/>@"};

}  // namespace

TEST(Cost, OfReadingGrowsWithTheDocument) {
    for (const auto& [name, parts, document, use] : Cases)
        expectLinearGrowth(name, parts, document, use);
}

TEST(Cost, OfLongRunsGrowsWithTheirLength) {
    for (const std::string_view frame : Frames)
        for (const std::string_view part : Parts) {
            const auto document = [&](std::size_t count) {
                return Text(frame).replace(frame.find('@'), 1, repeat(part, count));
            };
            expectLinearGrowth("Walk " + Text(frame) + " " + Text(part), VeryMany / part.size(), document,
                               inPlace<walk>);
        }
}
