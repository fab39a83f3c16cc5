// The demanding calls, the look-ahead and raw elements. Each row is a script of calls over one document; what
// each call gave, or the error that ended the script, is compared as one text.

#include <gtest/gtest.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

struct PullCase {
    const char* xml;
    const char* calls;
    const char* results;
};

// S NAME, E NAME: demand a start or an end, by string (S and E alone: any); N NAME: is that next; R NAME: raw
// element (R alone: any), then the text it left behind; V: value; F: end of file; T: next node. A name in
// braces, {URI}local, is passed as a QeXmlName with the prefix "z".
std::string callOn(QeXmlReader& reader, const std::string& call) {
    const auto text = [](const QeCString& value) { return std::string(std::string_view(value)); };
    const std::string argument = call.size() > 1 ? call.substr(2) : "";
    const QeCString qname(argument);
    const bool any = call.size() == 1;
    const bool byName = argument.starts_with("{");
    const std::size_t close = byName ? argument.find('}') : 0;
    const QeXmlName name = byName ? QeXmlName(QeCString(argument.substr(close + 1)),
                                              QeXmlNamespace("z", QeCString(argument.substr(1, close - 1))))
                                  : QeXmlReader::NullName;
    switch (call[0]) {
        case 'S':
            if (!any) return "S" + describe(byName ? reader.readElementStart(name) : reader.readElementStart(qname));
            reader.readElementStart();
            return "S";
        case 'E':
            any ? reader.readElementEnd() : byName ? reader.readElementEnd(name) : reader.readElementEnd(qname);
            return "E";
        case 'N':
            return (byName ? reader.isElementNext(name) : reader.isElementNext(qname)) ? "yes" : "no";
        case 'R': {
            const QeCString markup = any || byName ? reader.readElement(name) : reader.readElement(qname);
            return "<<" + text(markup) + ">>" + text(reader.getLastContent());
        }
        case 'V':
            return "'" + text(reader.readElementValue()) + "'";
        case 'F':
            return reader.eof() ? "eof" : "more";
        default:
            reader.readNextNode();
            return describeNode(reader);
    }
}

std::string run(const char* xml, const char* calls) {
    const Document document(xml);
    const auto reader = document.open(Source::Span);
    std::string results;
    std::istringstream script(calls);
    for (std::string call; script >> call;) {
        if (!results.empty()) results += " ";
        try {
            results += callOn(*reader, call);
        } catch (const QeXmlParseError& error) {
            return results + describe(error);
        }
    }
    return results;
}

constexpr PullCase Demands[] = {
    {"<r><a x='1'/></r>", "S:r S:a E:a E:r F", "S S[x=1] E E eof"},
    {"<r><a x='1'></a></r>", "S:r S:a E:a E:r F", "S S[x=1] E E eof"},
    {"<r>t<!-- c --><?pi?><a>u</a>v</r>", "S:r S:a V E:a V E:r", "S S 'u' E 'v' E"},
    {"<a>text</a>", "S:a V E:a", "S 'text' E"},
    {"<a><b/></a>", "S V S E V E", "S '' S E '' E"},
    {"<a></a>", "S S", "S !1:8 Couldn't find start tag"},
    {"<a><b></b></a>", "S E", "S !1:7 Couldn't find end tag"},
    {"<a>\n<a/></a>", "S:b", "!1:4 Expected b, found a"},
    {"<q:b/>", "S:p:a", "!1:7 Expected p:a, found q:b"},
    {"<a><b/></a>", "S:a S:b E:c", "S S !1:8 Expected c, found b"},
    {"<a></b>", "S:a E:a", "S !1:8 Expected a, found b"},
    {"<aa>", "S:aa E:aa", "S !1:5 Premature EOF"},
    {"<a/> \r\n", "F S F E F", "more S eof E eof"},
    {"<a> </a>", "S F V F E F", "S more ' ' more E eof"},
    {"<a/>x", "S F", "S more"},
    // A string means what it would mean in front of the tag; a name without URI what it means inside.
    {"<a xmlns='u'/>", "S:a E:a", "S[xmlns=u] E"},
    {"<a xmlns='u'></a>", "S:a E:a", "S[xmlns=u] E"},
    {"<p:a xmlns:p='u'><p:b xmlns:p='v'/></p:a>", "S:p:a S:p:b", "S[xmlns:p=u] !1:36 Expected p:b, found p:b"},
    {"<p:a xmlns:p='u'><p:b xmlns:p='v'></p:b></p:a>", "S:p:a S:p:b", "S[xmlns:p=u] !1:35 Expected p:b, found p:b"},
    {"<p:a xmlns:p='u'><q:b xmlns:q='u'></q:b></p:a>", "S:p:a S:p:b E:p:b E:p:a", "S[xmlns:p=u] S[xmlns:q=u] E E"},
    {"<p:a xmlns:p='u'><q:b xmlns:q='u' xmlns:p='x'></q:b></p:a>", "S:p:a S:p:b E:q:b E:p:a",
     "S[xmlns:p=u] S[xmlns:p=x xmlns:q=u] E E"},
    {"<p:a xmlns:p='u'></p:a>", "S:{u}a E:{u}a", "S[xmlns:p=u] E"},
    {"<p:a xmlns:p='u'/>", "S:{v}a", "!1:19 Expected z:a, found p:a"},
    {"<p:a xmlns:p='u' xmlns:z='u'/>", "S:{}a", "S[xmlns:p=u xmlns:z=u]"},  // z is bound by the tag itself
    {"<z:a xmlns:z='u'></z:a>", "S:{}a E:{}a", "S[xmlns:z=u] !1:24 Expected z:a, found z:a"},  // ends match exactly
    {"<a xmlns='u'><b xmlns=''/></a>", "S:a S:b", "S[xmlns=u] !1:27 Expected b, found b"},
    {"<:a/>", "S::a E::b", "S !1:6 Expected b, found a"},
};

constexpr PullCase LookAhead[] = {
    {"<r><a/></r>", "S N:a N:a S:a E:a N:a E:r", "S yes yes S E no E"},
    {"<r><a></a></r>", "S N:b N:a S:a N:a E:a E:r", "S no yes S no E E"},
    {"<r></r>", "S N:a E:r F", "S no E eof"},
    {"<r>t<a/></r>", "S N:a V S", "S yes 't' !1:13 Couldn't find start tag"},  // the value takes the mark off
    {"<r><a/>t</r>", "S S:a N:c E:a V E", "S S no E 't' E"},  // an open empty element: nothing is scanned
    {"<r><a/></r>", "S S:a N:a E:a E:r", "S S yes E E"},      // and the answer is about itself
    {"<r><a/></r>", "S N:a E:a E:r", "S yes E E"},            // a pending empty element is its own end
    {"<r><a></a></r>", "S N:a E", "S yes !1:7 Couldn't find end tag"},
    {"<r></r>", "S N:a S", "S no !1:8 Couldn't find start tag"},
    {"<r>t<a/></r>", "S N:a T T", "S yes /a -r"},  // readNextNode delivers it too
    {"<list xmlns='u'><item/><item/></list>", "S:list N:item S:item E:item N:item S:item E:item N:item E:list",
     "S[xmlns=u] yes S E yes S E no E"},
    {"<p:list xmlns:p='u'><p:item xmlns:p='u'></p:item></p:list>",
     "S:p:list N:p:item S:p:item N:p:x E:p:item N:p:x E:p:list", "S[xmlns:p=u] yes S[xmlns:p=u] no E no E"},
    {"<p:r xmlns:p='u'><p:a xmlns:p='v'></p:a></p:r>", "S:p:r N:p:a S:{v}a", "S[xmlns:p=u] no S[xmlns:p=v]"},
    {"<r><p:a xmlns:p='u'/></r>", "S N:p:a S:p:a E:p:a E:r", "S yes S[xmlns:p=u] E E"},
    {"<r><a xmlns='u'><b/></a></r>", "S S:a N:b S:b E:b N:b E:a E:r", "S S[xmlns=u] yes S E no E E"},
};

constexpr PullCase RawElements[] = {
    {"<a><a>x</a><b/></a>", "R F", "<<<a><a>x</a><b/></a>>><a>x</a><b/> eof"},
    {"<r>t<a>1</a>u<a>2</a></r>", "S R:a R:a E:r", "S <<t<a>1</a>>>1 <<u<a>2</a>>>2 E"},
    {"<a/>", "R", "<<<a/>>>"},
    {"<a xmlns='u'/>", "R:", "<<<a xmlns='u'/>>>"},                       // the empty string asks for any, too
    {"<r xmlns='u'><a/></r>", "S R:", "S !1:18 Expected , found a"},      // but not where it has a namespace
    {"<r>\n<a x='1' /></r>", "S R:a R E", "S <<\n<a x='1' />>> <<>> E"},  // none next: empty, and the end stays
    {"<r>t</r>", "S R V E", "S <<>> '' !1:9 Premature EOF"},              // the value takes the mark off
    {"<r><a/></r>", "S N:a R:a E:a E:r",
     "S yes <<<a />>> E E"},  // a pending tag is written anew; its end is still to come
    {"<r>t<a y='1' x=\"&lt;\"><c/></a></r>", "S N:a R:a E:r", "S yes <<<a x=\"<\" y=\"1\" ><c/></a>>><c/> E"},
    {"<r><p:a xmlns:p='u'/></r>", "S N:p:a R:p:a E", "S yes <<<p:a xmlns:p=\"u\" />>> E"},
    {"<a>&lt;\r\n<![CDATA[]]><!-- c --></a>", "R",
     "<<<a>&lt;\r\n<![CDATA[]]><!-- c --></a>>>&lt;\r\n<![CDATA[]]><!-- c -->"},
    {"<a><b/><!-- c --></a>", "R", "<<<a><b/><!-- c --></a>>><b/>"},  // up to where the scan of the end began
    {"<a><b></a></b></a>", "R T", "<<<a><b></a>>><b> -b"},            // only names like its own count
    {"<p:a xmlns:p='u' xmlns:q='v'><q:a></q:a></p:a>", "R F",
     "<<<p:a xmlns:p='u' xmlns:q='v'><q:a></q:a></p:a>>><q:a></q:a> eof"},
    {"<p:a xmlns:p='u'></b><x xmlns:p='u'></p:a>", "R F",  // bound anew, after an end too many
     "<<<p:a xmlns:p='u'></b><x xmlns:p='u'></p:a>>></b><x xmlns:p='u'> eof"},
    {"<a x='1'><b/></a>", "R:b", "!1:10 Expected b, found a"},
    {"<r><p:a/></r>", "S R:p:", "S <<<p:a/>>>"},  // and so is a prefix that is not bound
    {"<a x='1'><b/>", "R:a", "!1:14 Premature EOF"},
    {"<a>\xC3\xA9<?xml version='1.0' encoding='ISO-8859-1'?>\xE9</a>", "R",
     "<<<a>\xC3\xA9<?xml version='1.0' encoding='ISO-8859-1'?>\xC3\xA9</a>>>\xC3\xA9<?xml version='1.0' "
     "encoding='ISO-8859-1'?>\xC3\xA9"},
};

void check(std::span<const PullCase> cases) {
    for (const auto& [xml, calls, results] : cases) {
        EXPECT_EQ(run(xml, calls), results) << xml << "\n" << calls;
        if (std::string_view(results).find('!') != std::string_view::npos) continue;  // columns differ
        EXPECT_EQ(run(withLongURIs(xml).c_str(), withLongURIs(calls).c_str()), withLongURIs(results)) << xml;
    }
}

}  // namespace

TEST(XmlReader, DemandsWhatIsExpected) {
    check(Demands);
}
TEST(XmlReader, LooksAheadByOneNode) {
    check(LookAhead);
}
TEST(XmlReader, ReadsRawElements) {
    check(RawElements);
}

TEST(XmlReader, KeepsTheStartTagsAttributesOverARawElement) {
    const Document document("<r><a x='1'><b y='2'/></a><c x='1' z='3'/></r>");
    const auto reader = document.open(Source::Span);
    reader->readElementStart("r");
    reader->readElement("a");
    EXPECT_EQ(reader->getLastNodeType(), QeXmlReader::ElementEnd);
    EXPECT_EQ(describe(reader->getLastAttributes()), "[x=1]");
    EXPECT_EQ(describe(reader->readElementStart("c")), "[x=1 z=3]");
}

// A binding of the caller's goes into the parent's scope and leaves the closed element's own in force for its end.
TEST(XmlReader, ResolvesAnEndAfterBindingANamespace) {
    const Document document("<r><p:a xmlns:p='u'></p:a></r>");
    const auto reader = document.open(Source::Span);
    reader->readElementStart("r");
    reader->readElementStart("p:a");
    EXPECT_FALSE(reader->isElementNext("b"));
    reader->addNamespace(QeXmlNamespace("p", "other"));
    reader->readElementEnd("p:a");
    EXPECT_EQ(reader->getURIForPrefix("p"), "other");
}

// What is called after an error is safe, whatever it gives.
TEST(XmlReader, SurvivesCallsAfterAnError) {
    for (const char* xml : {"<r a='1", "<r><a></a x>t</r>", "<r>&;</r>", "<r><a x='1' / ><b/></r>"}) {
        const Document document(xml);
        const auto reader = document.open(Source::Span);
        int errors = 0;
        for (int i = 0; i < 20; ++i)
            try {
                switch (i % 5) {
                    case 0:
                        reader->readElementStart("a");
                        break;
                    case 1:
                        reader->readElement("a");
                        break;
                    case 2:
                        reader->isElementNext("a");
                        break;
                    case 3:
                        reader->readElementEnd("a");
                        break;
                    default:
                        reader->readElementValue();
                }
            } catch (const QeXmlParseError&) {
                ++errors;
            }
        EXPECT_GT(errors, 0);
    }
}
