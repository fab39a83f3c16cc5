// Documents of each kind that someone could choose to hurt, read in each way and
// written again, and texts of values: four times the text takes about four times as
// long, whatever it is made of. Run by hand, the program prints what a part costs at
// both sizes.

#include <sstream>
#include <vector>

#include <corvel/value_error.h>
#include <tessit/reader/xml_record.h>
#include <tessit/sax/xml_sax_parser.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>
#include <tessit/writer/xml_string_writer.h>

#include "cost/growth.h"
#include "support/calls.h"

using namespace tessit::test;

namespace {

using Text = std::string;

// --- Ways to use a text.

/// A text as the argument of a template.
template <std::size_t Length>
struct Literal {
    constexpr Literal(const char (&text)[Length]) { std::copy_n(text, Length, bytes); }
    char bytes[Length];
};

std::span<const unsigned char> bytesOf(const Text& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

// Makes the calls over and over until the document or its bytes end, whatever is raised meanwhile. What stands in
// front of a bar is called once.
template <Literal script>
void calls(const Text& document) {
    std::istringstream in(script.bytes);
    const std::vector<Text> each{std::istream_iterator<Text>(in), {}};
    const auto begin = std::find(each.rbegin(), each.rend(), "|").base();
    QeXmlReader reader(bytesOf(document));
    for (auto call = each.begin(); !reader.eof(); ++call) {
        if (call == each.end()) call = begin;
        try {
            if (*call != "|") perform(reader, *call);
        } catch (const QeXmlParseError& error) {
            if (std::string_view(error.why()).starts_with("Premature EOF")) return;
        }
    }
}

// From a stream, up to the first error.
void walk(const Text& document) {
    std::istringstream in(document);
    try {
        for (QeXmlReader reader(in); !reader.eof();)
            reader.readNextNode();
    } catch (const QeXmlParseError&) {
    }
}

// Through a window, so many bytes a call, by both sets of rules.
template <std::size_t Length>
void walkPieces(const Text& text) {
    const Document document(text);
    for (const QeXmlRules rules : {QeXmlRules::Lenient, QeXmlRules::Conforming}) {
        try {
            for (QeXmlReader reader(document.inPieces(0, Length), {.rules = rules}); !reader.eof();)
                reader.readNextNode();
        } catch (const QeXmlParseError&) {
        }
    }
}

// Through a window, with another answer for references in each tag's values.
void walkInTurns(const Text& text) {
    const Document document(text);
    QeXmlReader reader(document.inPieces(0, text.size()));
    for (bool expands = false; !reader.eof(); expands = !expands) {
        reader.setExpandAttributeReference(expands);
        reader.readNextNode();
    }
}

// Through a window, and then many small documents with the same reader.
void walkAndReset(const Text& text) {
    const Document document(text), small("<r/>");
    QeXmlReader reader(document.inPieces(0, text.size()));
    while (!reader.eof())
        reader.readNextNode();
    for (std::size_t i = 0; i < text.size() / 16; ++i)
        reader.reset(small.inPieces(0, 4));
}

void walkWithOptions(const Text& document) {
    QeXmlReader reader(bytesOf(document));
    reader.setExpandAttributeReference(false);
    for (reader.setMatchTags(true); !reader.eof(); reader.readNextNode())
        ASSERT_LE(reader.getOpenElement().length(), 1u);
}

// By the conforming rules, to the end or the first fault, with all that can be asked of each node. What stands behind a
// form feed is what a resolver has.
void judge(const Text& text) {
    struct Outside final : QeXmlResolver {
        bool resolve(const QeXmlExternalId&, QeXmlExternalEntity& entity) override {
            return entity.setBytes(QeCString(bytes)), true;
        }
        std::string_view bytes;
    } outside;
    const std::size_t end = std::min(text.find('\f'), text.size());
    outside.bytes = std::string_view(text).substr(std::min(end + 1, text.size()));
    QeXmlResolver* const resolver = end == text.size() ? nullptr : &outside;
    try {
        QeXmlReader reader(bytesOf(text).first(end),
                           {.rules = QeXmlRules::Conforming, .nodes = QeXmlNodes::All, .resolver = resolver});
        while (!reader.eof()) {
            reader.readNextNode();
            if (reader.getLastNodeType() != QeXmlReader::ElementStart) continue;
            for (const QeXmlAttribute& attribute : reader.getLastAttributes())
                ASSERT_LE(reader.getLeftReferences(attribute).size(), reader.isSpecified(attribute) ? text.size() : 1);
        }
    } catch (const QeXmlParseError&) {
    }
}

// Records all that the conforming rules refuse.
void record(const Text& document) {
    QeXmlRecord record;
    QeXmlReader reader(bytesOf(document), {.record = &record});
    ASSERT_GT(record.getCount(), 0u);
}

// Finds fault with each node.
void complain(const Text& document) {
    QeXmlReader reader(bytesOf(document), {.rules = QeXmlRules::Conforming});
    for (; !reader.eof(); reader.readNextNode())
        ASSERT_THROW(reader.err("x"), QeXmlParseError);
}

// Keeps the name of each element, to demand its end by, and binds its namespace once more, over many of the same.
void keepNames(const Text& document) {
    QeXmlReader reader(bytesOf(document));
    QeXmlNamespaceStack stack;
    for (std::vector<QeXmlName> open; !reader.eof();) {
        reader.readNextNode();
        stack.pushScope();
        stack.addNamespace(reader.getLastName().getNamespace());
        const QeXmlReader::NodeType type = reader.getLastNodeType();
        if (type == QeXmlReader::ElementStart) open.push_back(reader.getLastName());
        if (type == QeXmlReader::EmptyElement) reader.readElementEnd(reader.getLastName());
        if (type != QeXmlReader::ElementEnd) continue;
        ASSERT_TRUE(open.back() == reader.getLastName() && !(open.back() < reader.getLastName()));
        open.pop_back();
    }
}

// Asks for an element like the first one, by a name with a URI of its own.
void askForTheFirst(const Text& document) {
    QeXmlReader reader(bytesOf(document));
    reader.readElementStart();
    reader.readElementStart();
    const QeXmlName& first = reader.getLastName();
    const QeXmlName own(first.getLocalName(), QeXmlNamespace("own", first.getNamespace().getURI()));
    for (reader.readElementEnd(); !reader.eof(); reader.readNextNode())
        ASSERT_FALSE(reader.isElementNext(own));
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

template <typename Writer>
void write(const Text& document) {
    QeXmlReader reader(bytesOf(document));
    Writer writer;
    writeRest(reader, writer);
}

// A writer of the application, whose bytes go through its slots.
struct Overriding final : QeXmlStringWriter {};

// The root's namespace is the default one, by a URI of the writer's own.
void writeContent(const Text& document) {
    QeXmlReader reader(bytesOf(document));
    reader.readElementStart();
    QeXmlStringWriter writer;
    writer.addNamespace(QeXmlNamespace("", reader.getLastName().getNamespace().getURI()));
    writeRest(reader, writer);
}

// One element in each namespace, which is bound by hand; then byte by byte.
void writeByHand(const Text& text) {
    QeXmlStringWriter writer;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const QeCString number(std::string_view(std::to_string(i)));
        writer.addNamespace(QeXmlNamespace(number, number));
        writer.writeSimpleElement(QeXmlName("e", QeXmlNamespace(number, number)), "", "t", true);
        ASSERT_GT(writer.getLength(), i);
    }
    for (const char byte : text) {
        writer.writeToSink(byte);
        writer.removeLastCharFromSink('-');
    }
}

// Whatever the text is meant to be, it is taken for anything.
void useAsValue(const Text& bytes) {
    const QeCString text{std::string_view(bytes)};
    const auto allowRefusal = [](const auto& operation) {
        try {
            operation();
        } catch (const QeValueError&) {
        }
    };
    text.find(QeCString(text.substring(text.length() / 2)) + "!");
    QeCString upper(text);
    upper.toUpper();
    upper.findFirstOf("!?");
    QeXmlDuration(text).asString();
    allowRefusal([&] { QeDecimalPortable number(text); });
    allowRefusal([&] { QeXmlUtils::convertISODateStringToDateTime(text); });
    QeXmlUtils::convertDateTimeToISOString(QeDateTime(), text);
    QeXmlUtils::stripWhiteSpaceAndNewlines(text, QeCString::stripBoth);
    QeCString prefix, local;
    QeXmlUtils::getPrefixAndLocalName(text, prefix, local);
    // the facets of a value, of which most fail with long messages, and results of one part after the other
    QeXmlValidator whole("whole");
    whole.checkMinLength(text, text);
    whole.checkMaxLength(text, "0");
    whole.checkWhiteSpace(text, "collapse");
    whole.checkWhiteSpace(text, "replace");
    whole.checkEnumeration(text, text);
#if !defined(TESSIT_WITHOUT_ICU)
    whole.checkPattern(text, "^(?:[a-z]|[0-9 ])*\\z");
#endif
    whole.checkEnumerations();
    whole.checkPatterns();
    for (std::size_t i = 0; i < text.length() / 16; ++i) {
        QeXmlValidator part("part");
        part.checkMinLength("", "1");
        whole.isValid(part);
    }
}

// --- The texts: what stands in braces stands there once for each part, and ^ for the sign of numbers itself.

constexpr char Children[] = "<r>{<a>t</a>}</r>";
constexpr char Nested[] = "{<a>}{</a>}", NestedDeclarations[] = "{<a xmlns:p#='u'>}{</a>}";
constexpr char UsingDeclarations[] = "<r xmlns:p='u'{ xmlns:p#='#'}>{<p#:a/><p:a p#:x=''/>}</r>";
constexpr char UsingDeclarationsAtOnce[] = "<r{ xmlns:p#='~'}><a{ p#:x='' x#='&lt;'}/></r>";

// URIs that are nearly half of the document, of which one differs in its last bytes.
constexpr char LongURIs[] =
    "<a xmlns='{uuuu}1' xmlns:p='{uuuu}2' xmlns:q='{uuuu}1'>{<a><p:a></p:a></a><q:a></q:a>}</a>";
constexpr char PrefixedLongURIs[] =
    "<r xmlns:p='{uuuu}1uuuuuuuuuuuuuuuuuuuu' xmlns:q='{uuuu}2uuuuuuuuuuuuuuuuuuuu'><q:a/>{<p:a p:a='' q:a=''/>}</r>";
const Text TagsOfManyLongURIs =
    "<r" + numbered(" xmlns:p#='{uu}#'", 20) + ">{<a" + numbered(" p#:a=''", 20) + "/>}</r>";
const Text TwentyDeclarationsEach = "<r>{<a" + numbered(" xmlns:p#='#'", 20) + "></a>}</r>";
// Each child makes of few bindings many, and of many few again.
const Text NineDeclarationsUnderLongURIs =
    "<r" + numbered(" xmlns:q#='{uuu}#'", 8) + ">{<c" + numbered(" xmlns:p#='#'", 9) + "></c>}</r>";

// In one namespace each, all of which are long.
const Text OneLocalName = "<r{ xmlns:p#='" + Text(300, 'u') + "#'}{ p#:a=''}/>";
// Entities as deep in one another as they may stand.
const Text Chain = "<!DOCTYPE r [<!ENTITY e0 '<a/>'>" + [] {
    Text declarations;
    for (int i = 1; i != 200; ++i)
        declarations += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
    return declarations;
}() + "]><r>{&e199;}</r>";
const Text TwentyDefaults = "<!DOCTYPE r [<!ATTLIST a" + numbered(" b# CDATA '#'", 20) + ">]><r>{<a/>}</r>";

constexpr std::size_t Few = 1'000, Many = 4'000, VeryMany = 100'000;

const struct {
    const char* name;
    std::size_t parts;  // of the smaller text
    Text pattern;
    void (*use)(const Text& text);
} Cases[] = {
    // so deep that recursion would take the stack
    {"WalkDepth", VeryMany, Nested, walk},
    {"CompareDepth", VeryMany, Nested, compareWithItself},
    {"DemandDepth", Many, Nested, calls<"N:a N:p:a N:{}a T">},
    {"DemandInVain", Many, Nested, calls<"S:none E:none">},
    {"DemandInVainBehindALongName", Many, "<r><a{bbbb}/>{<c/>}</r>", calls<"S | S:none E">},
    {"DemandInVainInALongName", Many, "<a{bbbb}>{<c/>}</a>", calls<"S | S:none E">},
    {"TakeMarkupOfDepth", Many, Nested, calls<"R">},
    {"TakeMarkupAtEachLevel", Many, "{<a><b>t</b>}", calls<"S:a R:b">},
    {"BindByHandAtEachLevel", Many, Nested, calls<"B:p=u U:p P:u T">},
    {"TakeValues", Many, Children, calls<"S | S:a V E:{}a">},

    {"WalkRepeatedAttributes", Many, "<r{ a=''}/>", walk},
    {"CompareAttributes", Few, "<r{ a#='#'}/>", compareWithItself},
    {"TakeMarkupUnderAWideTag", Few, "<r{ a#='#'}>{<a/>}</r>", calls<"S | N:a R">},
    {"WalkNarrowTagsBehindAWideOne", Few, "<r><a{ a#='#'}/>{<a a='1'/>}</r>", walk},

    {"DemandUnderDeclarations", Few, UsingDeclarations, calls<"N:a N:p:a N:{}a T">},
    {"DemandNestedDeclarations", Few, NestedDeclarations, calls<"N:a N:p:a N:{}a T">},
    {"DemandTwentyDeclarationsEach", Few / 20, TwentyDeclarationsEach, calls<"N:a N:p:a N:{}a T">},
    {"WriteUnderDeclarations", Few, UsingDeclarations, write<QeXmlStringWriter>},
    {"WriteUnderDeclarationsToSink", Few, UsingDeclarations, write<Overriding>},
    {"WriteContentUnderDeclarations", Few, UsingDeclarationsAtOnce, writeContent},

    {"DemandUnderLongURIs", Many, LongURIs, calls<"N:a N:p:a N:{}a T">},
    {"ParseUnderLongURIs", Many, LongURIs, parse},
    {"MatchTagsUnderALongURI", Many, "<r xmlns='{uuuu}'>{<a></a>}</r>", walkWithOptions},
    {"CompareUnderLongURIs", Many, LongURIs, compareWithItself},
    {"KeepNamesUnderLongURIs", Many, LongURIs, keepNames},
    {"AskForTheFirstUnderLongURIs", Many, PrefixedLongURIs, askForTheFirst},
    {"WriteUnderLongURIs", Many, PrefixedLongURIs, write<QeXmlStringWriter>},
    {"WriteUnderLongDefault", Many, "<r xmlns='{uuuu}'>{<a/>}</r>", writeContent},
    {"WalkNineDeclarationsUnderLongURIs", Few / 5, NineDeclarationsUnderLongURIs, walk},
    {"WalkAttributesWithLongURI", Few, "<a xmlns:p='{uuuuuuuuuuuuuuuu}'{ p:a#='#'}/>", walk},
    {"WriteTagsOfManyLongURIs", Few, TagsOfManyLongURIs, write<QeXmlStringWriter>},

    {"WalkOneLongReference", VeryMany, "<a>&#{6};</a>", walk},
    {"WalkReferencesAsWritten", VeryMany, "<a x='{&amp;}'/>", walkWithOptions},
    {"WalkOneLongPrefix", VeryMany, "<{n}:n/>", walk},
    {"GoOnAfterErrors", Many, "<a>{a text of forty bytes in front of an error<1}", calls<"T">},

    {"WalkBytesOfNodes", Many, Children, walkPieces<1>},
    {"WalkBytesOfDepth", Many, Nested, walkPieces<1>},
    {"WalkBytesOfALongText", VeryMany, "<a>{t&amp;}</a>", walkPieces<1>},
    {"WalkBytesOfALongName", VeryMany, "<{nnn}/>", walkPieces<1>},  // a megabyte
    {"WalkBytesOfATagAsLongAsTheDocument", Many, "<a{ a#='>'}/>", walkPieces<1>},
    {"WalkBytesOfALongValue", VeryMany, "<a x='{/>}'/>", walkPieces<1>},
    {"WalkBytesOfManyComments", Many, "<r>{<!--c-->}{t<!--c-->}{<?p?>}</r>", walkPieces<1>},
    {"WalkBytesOfALongComment", VeryMany, "<!--{- }--><r/>", walkPieces<1>},
    {"WalkBytesOfADocumentType", Many, "<!DOCTYPE r [{<!ENTITY e# ']>'><!--'-->}]><r/>", walkPieces<1>},
    {"WalkBytesOutsideOfTheRoot", Many, "{\r}<r/>{ \n<!---->}", walkPieces<1>},
    {"WalkBytesOfAnXmlDeclaration", VeryMany, "<?xml{ }version='1.0'?><r/>", walkPieces<1>},
    {"WalkBytesOfUtf16", Many, Text("\xFE\xFF") + Children, walkPieces<1>},
    {"WalkInTurnsBehindMuch", VeryMany / 4, "<r><a x='{vvvv}'/>{<b/>}</r>", walkInTurns},
    {"ResetBehindDepth", Many, "{<a>}{</a>}", walkAndReset},
    // What is long enough that it is read before it is known to be whole.
    {"WalkPiecesOfALongValue", VeryMany, "<r><a x='{/>}'/></r>", walkPieces<5000>},
    {"WalkPiecesOfALongText", VeryMany, "<r>{t&amp;<!---->}</r>", walkPieces<5000>},
    {"WalkPiecesOfLongNames", VeryMany, "<r><{nnn}></{nnn}></r>", walkPieces<5000>},

    {"WalkUtf16", VeryMany, Text("\xFE\xFF") + Children, walk},
#if !defined(TESSIT_WITHOUT_ICU)
    {"WalkISO2022", VeryMany, Text("<?xml version='1.0' encoding='ISO-2022-JP'?>") + Children, walk},
#endif
    {"WalkChangesOfEncoding", Few,
     "<a>{\xE9<?xml version='1' encoding='ISO-8859-1'?><?xml version='1' encoding='latin2'?>}</a>", walk},
    {"WalkChangesOfEncodingAtOnce", Few, "<a>\xE9<?xml version='1' {e       ='ISO-8859-1' e       ='latin2' }?></a>",
     walk},
    {"WalkOtherNamesOfTheEncoding", Few,
     "<a>{<?xml version='1' encoding='UTF-8'?><?xml version='1' encoding='utf-8'?>}</a>", walk},

    {"JudgeReferencesInText", VeryMany, "<!DOCTYPE r [<!ENTITY e 'x'>]><r>{&e;}</r>", judge},
    {"JudgeReferencesInAValue", VeryMany, "<!DOCTYPE r [<!ENTITY e '1\t2'>]><r x='{&e;}'/>", judge},
    {"JudgeMarkupFromEntities", Many, "<!DOCTYPE r [<!ENTITY e '<a>&f;</a>'><!ENTITY f '&lt;'>]><r>{&e;}</r>", judge},
    {"JudgeManyEntities", Many, "<!DOCTYPE r [{<!ENTITY e# '#'>}]><r x='{&e#;}'>{&e#;}</r>", judge},
    {"JudgeChainsOfEntities", Few / 10, Chain, judge},
    {"JudgeReferencesThatAreLeft", Many, "<!DOCTYPE r SYSTEM 's'><r x='{&e;}'{ y#='&e;'}>{&e;}</r>", judge},
    {"JudgeDefaultsThatAreLeft", Many, "<!DOCTYPE r SYSTEM 's' [<!ATTLIST r{ x# CDATA '&e;'}>]><r></r>", judge},
    {"JudgeDefaultsOfATag", Many, "<!DOCTYPE r [<!ATTLIST r{ x# CDATA '#'}>]><r></r>", judge},
    {"JudgeDefaultsOfManyTags", Many, TwentyDefaults, judge},
    {"JudgeTagsOfManyAttributes", Many, "<!DOCTYPE r [<!ATTLIST a{ x# CDATA ^IMPLIED}>]><r>{<a x#=''/>}</r>", judge},
    {"JudgeAttributesOfManyElements", Many, "<!DOCTYPE r [{<!ATTLIST a# x NMTOKEN ' 1 '>}]><r>{<a#/>}</r>", judge},
    {"JudgeAttributesDeclaredAgain", Many, "<!DOCTYPE r [{<!ATTLIST r x# ID ^IMPLIED x# CDATA '1'>}]><r/>", judge},
    {"JudgeEntitiesThatCollide", Few, "<!DOCTYPE r [{<!ENTITY `# '#'>}]><r x='{&`#;}'/>", judge},
    {"JudgeAttributesThatCollide", Few, "<!DOCTYPE r [{<!ATTLIST r `# ID ^IMPLIED>}]><r{ `#=''}/>", judge},
    {"JudgeElementsThatCollide", Few, "<!DOCTYPE r [{<!ATTLIST `# x CDATA ''>}]><r>{<`#/>}</r>", judge},
    {"JudgeParameterEntities", Many, "<!DOCTYPE r [{<!ENTITY % p# '<!ELEMENT a# ANY>'>}{%p#;}]><r/>", judge},
    {"JudgeNotations", Many, "<!DOCTYPE r [{<!NOTATION n# PUBLIC ' # '>}{<!ENTITY u# SYSTEM '' NDATA n#>}]><r/>",
     judge},
    {"JudgeContentModels", VeryMany, "<!DOCTYPE r [<!ELEMENT r {(}b{|(c,d)*)}>]><r/>", judge},
    {"JudgeIncludedSections", Many, "<!DOCTYPE r SYSTEM 's'><r/>\f{<![INCLUDE[}{]]>}", judge},
    {"JudgeIgnoredSections", Many, "<!DOCTYPE r SYSTEM 's'><r/>\f<![IGNORE[{<![}{]]>}]]>", judge},
    {"JudgeSectionsByEntity", Many, "<!DOCTYPE r SYSTEM 's'><r/>\f<!ENTITY % i 'INCLUDE'>{<![%i;[]]>}", judge},
    {"JudgeEntitiesInDeclarations", Many,
     "<!DOCTYPE r SYSTEM 's'><r/>\f<!ENTITY % p '(a|b)'>{<!ELEMENT e# %p;><!ENTITY f# '%p;'>}", judge},
    {"JudgeOneLocalName", Many, OneLocalName, judge},
    {"JudgeRepeatedAttributes", VeryMany, "<r{ a=''}/>", judge},
    {"JudgeDeclarationsOfNamespaces", Many, UsingDeclarationsAtOnce, judge},
    {"JudgeDepth", VeryMany, Nested, judge},
    {"ComplainOfEachNode", Many, "<!DOCTYPE r [<!ENTITY e '{<a/>}'>]><r>{<a/>}&e;</r>", complain},

    {"RecordFaultsOfText", Many, "<r>{&x; &]]>&#0;<!-- -- --><?xml?><!x>]\x01}", record},
    {"RecordFaultsOfTags", Many, "<r>{<a b=1c='<&x;'c='' p:d/e =></x>}<r/>", record},
    {"RecordFaultsOfATag", Many, "<r{ x#='' x#='' p#:y=''}/>", record},
    {"RecordFaultsBehindACharacter", Many, "<r>{&x;}\x01{</a>}", record},
    {"RecordTagsOfManyElements", Many, "<r>{<a# b#=''/><a c#='' d=''/>}<a b=''/>&x;</r>", record},

    {"ChangeNameOverContent", VeryMany, "<a>{<b/>}</a>", changeName},
    {"ChangeNameOverAttributes", Many, "<a{ x='1'}></a>", changeName},
    {"ChangeNameOverDeclarations", Few, "<r{ xmlns:p#='#'}></r>", changeName},

    {"WriteDepthToSink", Many, "{<p#:a xmlns:p#='#' x='&quot;'>&lt;}{</a>}", write<Overriding>},
    {"WriteLongTexts", VeryMany, "<a x='{&quot;}' y='{&amp;amp;}'>{&lt;x}</a>", write<QeXmlStringWriter>},
    {"WriteByHand", Few, "{-x}", writeByHand},
};

// Durations, decimals, dates, formats, blanks, a name, and words that match a pattern or do not.
const Text Values[] = {
    "P{1Y}", "P{00000001D}", "P{1}Y", "PT1.{1}S", "-{1}.5", "0{0}.0", "{1}-01-01", "2003-05-20T09:01:08.{1}Z",
    "{%c}",  "{%}",          "{ }",   "x{ }x",    "{:}",    "{1a }",  "{1a }-"};

// Each backquote and the number behind it is such a name.
Text withCollidingNames(const Text& text) {
    static const CollidingNames names;
    Text named;
    for (std::size_t at = 0; at != text.size();) {
        if (text[at] != '`') {
            named += text[at++];
            continue;
        }
        std::size_t digits = 0;
        named += names[std::stoul(text.substr(at + 1, 8), &digits)];
        at += 1 + digits;
    }
    return named;
}

Text makeText(const Text& pattern, std::size_t parts) {
    Text text = expand(pattern, parts);
    std::replace(text.begin(), text.end(), '^', '#');
    text = withCollidingNames(text);
    return text.starts_with("\xFE\xFF") ? encode(text.substr(2), Encoding::Utf16BE) : text;
}

// What runs are made of, and where they stand, instead of the @. Some of these are errors.
constexpr std::string_view Parts[] = {"]",   "?",  "-", "-x",      "&",       "&amp;",        "&#x41;",
                                      "&x;", "\r", ">", "<!---->", "<?x?>",   "<![CDATA[]]>", "a",
                                      ":",   "[]", " ", "]>",      "\xC3\xA9"};
constexpr std::string_view Frames[] = {"<r>@</r>", "<r><![CDATA[@]]></r>", "<r><?pi @?></r>",      "<r x='@'/>",
                                       "<r@/>",    "<r><!--@--></r>",      "<!DOCTYPE r [@]><r/>", "<r/>@"};

}  // namespace

TEST(Cost, OfTextsGrowsWithTheirLength) {
    for (const auto& [name, parts, pattern, use] : Cases)
        expectLinearGrowth(
            name, parts, [&](std::size_t count) { return makeText(pattern, count); }, use);
}

TEST(Cost, OfValuesGrowsWithTheirLength) {
    for (const Text& value : Values)
        expectLinearGrowth(
            value, VeryMany / 5, [&](std::size_t count) { return expand(value, count); }, useAsValue);
}

TEST(Cost, OfLongRunsGrowsWithTheirLength) {
    for (const std::string_view frame : Frames)
        for (const std::string_view part : Parts) {
            const auto document = [&](std::size_t count) {
                return Text(frame).replace(frame.find('@'), 1, repeat(part, count));
            };
            expectLinearGrowth("Walk " + Text(frame) + " " + Text(part), VeryMany / part.size(), document, walk);
            expectLinearGrowth("Judge " + Text(frame) + " " + Text(part), VeryMany / part.size(), document, judge);
        }
}
