#include <gtest/gtest.h>

#include <tessit/sax/xml_sax_parser.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

// Writes events down in the traces' form.
class Recorder : public QeXmlContentHandler {
public:
    virtual ~Recorder() = default;

    void elementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes) override {
        add("+" + describe(name) + describe(attributes));
    }
    void elementEnd(const QeXmlName& name) override { add("-" + describe(name)); }
    void content(const QeCString& text) override { add("=" + std::string(std::string_view(text))); }
    void prolog(const QeXmlProlog& prolog) override { add(std::string(std::string_view(prolog.asString()))); }

    void add(const std::string& event) { events += (events.empty() ? "" : " ") + event; }

    std::string events;
};

// In place, or through a window, byte by byte.
std::string parse(std::string_view xml, Source source = Source::String) {
    const Document document(xml);
    Recorder recorder;
    QeXmlSAXParser parser;
    parser.setContentHandler(&recorder);
    try {
        if (source == Source::ByteByByte)
            parser.parse(document.inPieces(0, 1));
        else
            parser.parse(QeCString(xml), "");
    } catch (const QeXmlParseError& error) {
        recorder.add(describe(error));
    }
    return recorder.events;
}

struct SaxCase {
    const char* xml;
    const char* events;
};

constexpr SaxCase Documents[] = {
    {"<?xml version=\"1.1\" encoding=\"ISO-8859-1\" standalone=\"yes\"?><a x=\"1\">t<b/></a>",
     "<?xml version=\"1.1\" encoding=\"ISO-8859-1\" standalone=\"yes\"?> +a[x=1] =t +b -b -a"},
    {"<?xml version='1.0' standalone='no'?><a/>", "<?xml version=\"1.0\" standalone=\"no\"?> +a -a"},
    {"<a>\n<b/>\n</a>\n", "+a =\n +b -b =\n -a"},
    {"<r xmlns:q='u'><p:a xmlns:p='u'></q:a></r>", "+r[xmlns:q=u] +{u}p:a[xmlns:p=u] -{u}q:a -r"},
    {"<r xmlns='u'><a xmlns='v'><b/></a><c></c></r>",
     "+{u}r[xmlns=u] +{v}a[xmlns=v] +{v}b -{v}b -{v}a +{u}c -{u}c -{u}r"},
    {"<a><!-- c --><?pi?></a>", "+a -a"},
    {"<a></b>", "+a !1:8 Unmatched start tag for b"},
    {"<a xmlns='u'><b xmlns='v'></b></a>", "+{u}a[xmlns=u] +{v}b[xmlns=v] -{v}b -{u}a"},
    {"<p:a xmlns:p='u'><p:b xmlns:p='v'></p:a>",
     "+{u}p:a[xmlns:p=u] +{v}p:b[xmlns:p=v] !1:41 Unmatched start tag for p:a"},
    {"<r xmlns:p='u'><p:a></a></r>", "+r[xmlns:p=u] +{u}p:a !1:25 Unmatched start tag for a"},
    {"<a xmlns:p='u' xmlns:q='v' xmlns:r='u'><p:b><q:b><c><p:d></r:d></c></q:b></r:b></a>",
     "+a[xmlns:p=u xmlns:q=v xmlns:r=u] +{u}p:b +{v}q:b +c +{u}p:d -{u}r:d -c -{v}q:b -{u}r:b -a"},
    {"<a xmlns:p='u' xmlns:q='v'><p:b><q:b></q:b></q:b></a>",
     "+a[xmlns:p=u xmlns:q=v] +{u}p:b +{v}q:b -{v}q:b !1:50 Unmatched start tag for q:b"},
    {"<a><b>", "+a +b"},  // open ends are no error
    {"<a></a></a>", "+a -a !1:12 Unmatched start tag for a"},
    {"</a>", "!1:5 Unmatched start tag for a"},
    // A declaration inside replaces the document, and with it the names of what is open.
    {"<a><p:b xmlns:p='u'><?xml version='1.0' encoding='ISO-8859-1'?><c/></p:b></a>",
     "+a +{u}p:b[xmlns:p=u] +c -c -{u}p:b -a"},
#if !defined(TESSIT_WITHOUT_ICU)
    {"<a><b></b><c><?xml version='1.0' encoding='ISO-8859-1'?></c><d><?xml version='1.0' "
     "encoding='ISO-8859-2'?></d></c>",
     "+a +b -b +c -c +d -d !1:11 Unmatched start tag for c"},
#endif
    {"<a/><!-- c -->", "+a -a !1:15 Premature EOF"},
    {"x<a/>", "!1:2 First non-ws character in document wasn't '<'"},
};

}  // namespace

TEST(XmlSAXParser, ReportsADocument) {
    const auto withoutPosition = [](const std::string& events) { return events.substr(0, events.find('!')); };
    for (const auto& [xml, events] : Documents) {
        EXPECT_EQ(parse(xml), events) << xml;
        const bool declaresInside = std::string_view(xml).find("<?xml ", 1) != std::string_view::npos;
        EXPECT_EQ(parse(xml, declaresInside ? Source::String : Source::ByteByByte), events) << xml;
        EXPECT_EQ(withoutPosition(parse(withLongURIs(xml))), withoutPosition(withLongURIs(events))) << xml;
    }
}

TEST(XmlSAXParser, ChecksADocumentWithoutHandler) {
    QeXmlSAXParser parser;
    EXPECT_EQ(parser.getContentHandler(), nullptr);
    EXPECT_NO_THROW(parser.parse("<a></a>", ""));
    EXPECT_THROW(parser.parse("<a></b>", ""), QeXmlParseError);
}

TEST(XmlSAXParser, LooksAtTheHandlerBeforeEachEvent) {
    struct Leaving : Recorder {
        explicit Leaving(QeXmlSAXParser& by) : parser(by) { parser.setContentHandler(this); }
        void elementStart(const QeXmlName& name, const QeXmlAttributeSet& attributes) override {
            Recorder::elementStart(name, attributes);
            parser.setContentHandler(nullptr);
        }
        QeXmlSAXParser& parser;
    };
    QeXmlSAXParser parser;
    for (const char* xml : {"<a/>", "<a>t<b/></a>"}) {
        Leaving handler(parser);
        parser.parse(xml, "");
        EXPECT_EQ(handler.events, "+a") << xml;
    }
}

namespace {

// Writes the other nodes down, too.
class LexicalRecorder final : public Recorder, public QeXmlLexicalHandler {
    void comment(const QeCString& text) override { addAll("#", text); }
    void instruction(const QeCString& target, const QeCString& data) override { addAll("?", target + " " + data); }
    void documentType(const QeXmlDocumentType& type) override { addAll("!", type.name + " " + type.systemId); }
    void cdataSection(const QeCString& text) override { addAll("[", text); }
    void entityReference(const QeCString& name) override { addAll("&", name); }

    void addAll(const char* kind, const QeCString& text) { add(kind + std::string(std::string_view(text))); }
};

std::string parseAll(std::string_view xml, QeXmlNodes nodes, bool hasLexicalHandler) {
    LexicalRecorder recorder;
    QeXmlSAXParser parser;
    parser.setContentHandler(&recorder);
    if (hasLexicalHandler) parser.setLexicalHandler(&recorder);
    try {
        parser.parse({reinterpret_cast<const unsigned char*>(xml.data()), xml.size()},
                     {.rules = QeXmlRules::Conforming, .nodes = nodes});
    } catch (const QeXmlParseError& error) {
        recorder.add(describe(error));
    }
    return recorder.events;
}

}  // namespace

TEST(XmlSAXParser, ReportsOtherNodesToTheirHandler) {
    constexpr std::string_view Document =
        "<?p d?><!DOCTYPE a SYSTEM 's'><a x='1'><!--c-->t<![CDATA[u]]>&e;</a><!--d-->";
    EXPECT_EQ(parseAll(Document, QeXmlNodes::All, true), "?p d !a s +a[x=1] #c =t [u &e -a #d");
    EXPECT_EQ(parseAll(Document, QeXmlNodes::All, false), "+a[x=1] =t =u =&e; -a");  // no text is lost
    EXPECT_EQ(parseAll(Document, QeXmlNodes::Comments, true), "+a[x=1] #c =tu&e; -a #d");
    EXPECT_EQ(
        parseAll("<a><b></a>", QeXmlNodes::TagsAndText, true),
        "+a +b !1:9 an end tag that does not close the innermost element: </a> closes <b>, which was opened at 1:4");
}
