// The demanding calls, the look-ahead and raw elements. Each row is a script of calls over one document; what
// each call gave, or the error that ended the script, is compared as one text.

#include <gtest/gtest.h>

#include "support/calls.h"

using namespace tessit::test;

namespace {

struct PullCase {
    const char* xml;
    const char* calls;
    const char* results;
};

// What a call gave: yes or no, the text, or what the reader shows now.
std::string resultOf(QeXmlReader& reader, const std::string& call) {
    const Returned returned = perform(reader, call);
    const std::string text(std::string_view(returned.text));
    switch (call[0]) {
        case 'S':
            return call == "S" ? call : "S" + describe(reader.getLastAttributes());
        case 'N':
            return returned.yes ? "yes" : "no";
        case 'R':
            return "<<" + text + ">>" + reader.getLastContent().data();
        case 'V':
            return "'" + std::string(std::string_view(reader.getLastContent())) + "'";
        case 'F':
            return returned.yes ? "eof" : "more";
        case 'T':
            return describeNode(reader);
        case 'A':
            return describe(reader.getLastAttributes());
        case 'U':
            return "=" + text;
        case 'P':
            return text + "=";
        default:
            return call.substr(0, 1);
    }
}

std::string runOnce(const Document& document, Source source, const char* calls) {
    const auto reader = document.open(source);
    std::string results;
    std::istringstream script(calls);
    for (std::string call; script >> call;) {
        if (!results.empty()) results += " ";
        try {
            results += resultOf(*reader, call);
        } catch (const QeXmlParseError& error) {
            return results + describe(error);
        }
    }
    return results;
}

// In place, and through a window.
std::string run(const char* xml, const char* calls) {
    const Document document(xml);
    const auto runEach = [&](const Document& each, Source way) { return runOnce(each, way, calls); };
    const std::string results = runOnce(document, Source::Span, calls);
    if (std::string_view(xml).find("encoding=") != std::string_view::npos) return results;
    for (const Source source : {Source::ByteByByte, Source::InTwo, Source::Moved})
        if (const std::string other = document.readEachWay(source, runEach); other != results) return other;
    return results;
}

constexpr PullCase Demands[] = {
    {"<r><a x='1'/></r>", "S:r S:a E:a E:r F", "S S[x=1] E E eof"},
    {"<r><a x='1'></a></r>", "S:r S:a E:a E:r F", "S S[x=1] E E eof"},
    {"<r>t<!-- c --><?pi?><a>u</a>v</r>", "S:r S:a V E:a V E:r", "S S 'u' E 'v' E"},
    {"<a><b/></a>", "S V S E V E", "S '' S E '' E"},
    {"<a></a>", "S S", "S !1:8 Couldn't find start tag"},
    {"<a><b></b></a>", "S E", "S !1:7 Couldn't find end tag"},
    {"<a>\n<a/></a>", "S:b", "!1:4 Expected b, found a"},
    {"<a><b/></a>", "S:a S:b E:c", "S S !1:8 Expected c, found b"},
    {"<a></b>", "S:a E:a", "S !1:8 Expected a, found b"},
    {"<a/> \r\n", "F S F E F", "more S eof E eof"},
    {"<a> </a>", "S F V F E F", "S more ' ' more E eof"},
    {"<a/>x", "S F", "S more"},
    // A string means what it would mean in front of the tag; a name without URI what it means inside.
    {"<a xmlns='u'/>", "S:a E:a", "S[xmlns=u] E"},
    {"<a xmlns='u'></a>", "S:a E:a", "S[xmlns=u] E"},
    {"<p:a xmlns:p='u'><p:b xmlns:p='v'/></p:a>", "S:p:a S:p:b", "S[xmlns:p=u] !1:36 Expected p:b, found p:b"},
    {"<p:a xmlns:p='u'><p:b xmlns:p='v'></p:b></p:a>", "S:p:a S:p:b", "S[xmlns:p=u] !1:35 Expected p:b, found p:b"},
    {"<p:a xmlns:p='u'><q:b xmlns:q='u' xmlns:p='x'></q:b></p:a>", "S:p:a S:p:b E:q:b E:p:a",
     "S[xmlns:p=u] S[xmlns:p=x xmlns:q=u] E E"},
    {"<p:a xmlns:p='u'></p:a>", "S:{u}a E:{u}a", "S[xmlns:p=u] E"},
    {"<p:a xmlns:p='u'/>", "S:{v}a", "!1:19 Expected z:a, found p:a"},
    {"<p:a xmlns:p='u' xmlns:z='u'/>", "S:{}a", "S[xmlns:p=u xmlns:z=u]"},  // z is bound by the tag itself
    {"<z:a xmlns:z='u'></z:a>", "S:{}a E:{}a", "S[xmlns:z=u] !1:24 Expected z:a, found z:a"},  // ends match exactly
    {"<r xmlns:p='u'><s xmlns:p='v'><p:a></p:a></s></r>", "S S S:p:a E:p:a", "S S S E"},
    {"<a xmlns='u'><b xmlns=''/></a>", "S:a S:b", "S[xmlns=u] !1:27 Expected b, found b"},
    {"<r><a xmlns:z='u'/><b></b></r>", "S S:a E S:{}b", "S S[xmlns:z=u] E S"},  // not by what is closed
    {"<:a/>", "S::a E::b", "S !1:6 Expected b, found a"},
};

constexpr PullCase LookAhead[] = {
    {"<r><a/></r>", "S N:a N:a S:a E:a N:a E:r", "S yes yes S E no E"},
    {"<r><a></a></r>", "S N:b N:a S:a N:a E:a E:r", "S no yes S no E E"},
    {"<r>t<a/></r>", "S N:a V S", "S yes 't' !1:13 Couldn't find start tag"},  // the value takes the mark off
    {"<r><a/>t</r>", "S S:a N:c E:a V E", "S S no E 't' E"},  // an open empty element: nothing is scanned
    {"<r><a/></r>", "S S:a N:a E:a E:r", "S S yes E E"},      // and the answer is about itself
    {"<r><a/></r>", "S N:a E:a E:r", "S yes E E"},            // a pending empty element is its own end
    {"<r><a></a></r>", "S N:a E", "S yes !1:7 Couldn't find end tag"},
    {"<r></r>", "S N:a S", "S no !1:8 Couldn't find start tag"},
    {"<r>t<a/></r>", "S N:a T T", "S yes /a -r"},  // readNextNode delivers it too
    {"<p:list xmlns:p='u'><p:item xmlns:p='u'></p:item></p:list>",
     "S:p:list N:p:item S:p:item N:p:x E:p:item N:p:x E:p:list", "S[xmlns:p=u] yes S[xmlns:p=u] no E no E"},
    {"<p:r xmlns:p='u'><p:a xmlns:p='v'></p:a></p:r>", "S:p:r N:p:a S:{v}a", "S[xmlns:p=u] no S[xmlns:p=v]"},
    {"<r><p:a xmlns:p='u'/></r>", "S N:p:a S:p:a E:p:a E:r", "S yes S[xmlns:p=u] E E"},
    {"<r><a xmlns='u'><b/></a></r>", "S S:a N:b S:b E:b N:b E:a E:r", "S S[xmlns=u] yes S E no E E"},
};

constexpr PullCase Bindings[] = {
    {"<r xmlns='i' xmlns:p='j'><a xmlns:p='k'/><b xmlns:q='l'></b></r>",
     "U:p S:r U: P:j S:a U:p E:a S:b U:q E:b U:q E:r U:p",  // an empty-element tag has closed its scope
     "= S[xmlns:p=j xmlns=i] =i p= S[xmlns:p=k] =j E S[xmlns:q=l] =l E = E ="},
    {"<p:a><p:b/><p:c xmlns:p='own'/></p:a><p:d/>", "B:p=document T B:p=element T T T T",
     "B +{document}p:a B /{element}p:b /{own}p:c[xmlns:p=own] -{element}p:a /{document}p:d"},
    // a binding goes into the parent's scope, and leaves the closed element's own in force for its end
    {"<r><p:a xmlns:p='u'></p:a></r>", "S:r S:p:a N:b B:p=other E:p:a U:p", "S S[xmlns:p=u] no B E =other"},
};

// What the argument says at the call counts, though the scan writes over it.
constexpr PullCase OwnMembers[] = {
    {"<r>a<a x='1'/>", "S V S:$c", "S 'a' S[x=1]"},
    {"<r>a<a/>", "S V N:$c", "S 'a' yes"},
    {"<r>a<a>text</a>", "S V R:$c", "S 'a' <<<a>text</a>>>text"},
    {"<r name='value'><value x='1'/>", "S S:$v", "S S[x=1]"},
    {"<r><longer/>", "S N:$n", "S no"},
    {"<r><a-name-past-what-fits-in-place/>", "S S:$n", "S !1:37 Expected r, found a-name-past-what-fits-in-place"},
    {"<r></longer>", "S E:$n", "S !1:13 Expected r, found longer"},
    {"<r><longer/>", "S R:$n", "S !1:13 Expected r, found longer"},
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
    {"<r><a x='1'><b y='2'/></a><c x='1' z='3'/></r>", "S R:a A S:c",  // the start tag's attributes stay
     "S <<<a x='1'><b y='2'/></a>>><b y='2'/> [x=1] S[x=1 z=3]"},
    {"<r xmlns:p='u'><a p:x='1'><b p:y='2'/><b p:y='3'/></a><b p:y='4'/></r>", "S:r R:a S:b",  // and are not b's
     "S[xmlns:p=u] <<<a p:x='1'><b p:y='2'/><b p:y='3'/></a>>><b p:y='2'/><b p:y='3'/> S[{u}p:y=4]"},
    {"<r>t<a y='1' x=\"&lt;\"><c/></a></r>", "S N:a R:a E:r", "S yes <<<a x=\"<\" y=\"1\" ><c/></a>>><c/> E"},
    {"<r><p:a xmlns:p='u'/></r>", "S N:p:a R:p:a E", "S yes <<<p:a xmlns:p=\"u\" />>> E"},
    {"<a>&lt;\r\n<![CDATA[]]><!-- c --></a>", "R",
     "<<<a>&lt;\r\n<![CDATA[]]><!-- c --></a>>>&lt;\r\n<![CDATA[]]><!-- c -->"},
    {"<a><b/><!-- c --></a>", "R", "<<<a><b/><!-- c --></a>>><b/>"},  // up to where the scan of the end began
    {"<a><?p?></a>", "R", "<<<a><?p?></a>>>"},
    {"<a><b></a></b></a>", "R T", "<<<a><b></a>>><b> -b"},  // only names like its own count
    {"<p:a xmlns:p='u' xmlns:q='v'><q:a></q:a></p:a>", "R F",
     "<<<p:a xmlns:p='u' xmlns:q='v'><q:a></q:a></p:a>>><q:a></q:a> eof"},
    {"<p:a xmlns:p='u' xmlns:q='v'><q:a></p:a>", "R", "<<<p:a xmlns:p='u' xmlns:q='v'><q:a></p:a>>><q:a>"},
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
TEST(XmlReader, ShowsAndTakesBindings) {
    check(Bindings);
}
TEST(XmlReader, TakesItsOwnMembersAsExpectedNames) {
    check(OwnMembers);
}
TEST(XmlReader, ReadsRawElements) {
    check(RawElements);
}

// The length of a name takes one byte, or more.
TEST(XmlReader, NamesTheInnermostOpenElement) {
    for (const std::size_t length : {1u, 254u, 255u, 256u, 70'000u}) {
        const std::string name(length, 'n');
        const Document document("<r><" + name + "><x></x></" + name + "><" + name + "/></r>");
        const auto reader = document.open(Source::Span);
        reader->setMatchTags(true);
        for (const std::string& open :
             {std::string("r"), name, std::string("x"), name, std::string("r"), std::string("r"), std::string()}) {
            reader->readNextNode();
            EXPECT_TRUE(reader->getOpenElement() == std::string_view(open)) << length;
        }
    }
}

// Also where the call that raised has replaced the document first.
TEST(XmlReader, StandsWhereItHasRaised) {
    for (const char* xml :
         {"<a b='1' c=", "<a>&amp;\n&;", "<a><?p", "<a>&amp;<?xml version='1' encoding='ISO-8859-1'?>&;",
          "<a><?xml version='1' encoding='ISO-8859-1'?>\n<?p", "<a></a><?xml version='1' encoding='x'?>"}) {
        const Document document(std::string(xml) + std::string(100, ' '));
        const auto reader = document.open(Source::String);
        const auto raise = [&](const auto& read) {
            try {
                read();
            } catch (const QeXmlParseError& error) {
                return std::pair(error.getLineNumber(), error.getColumnNumber());
            }
            return std::pair(0u, 0u);
        };
        const auto raised = raise([&] {
            for (;;)
                reader->readNextNode();
        });
        EXPECT_EQ(raise([&] { reader->err("here"); }), raised) << xml;
        EXPECT_FALSE(reader->eof() && raised.first == 0) << xml;
    }
}

// Lines are counted on from the last error; the cursor can also have gone back since, or to another buffer.
TEST(XmlReader, CountsLinesOverManyErrors) {
    const Document document("<a>\n\n<1\n<2\n<?xml version='1' encoding='latin1'?>\n  <3");
    const auto reader = document.open(Source::Span);
    std::string errors;
    while (!reader->eof())
        try {
            reader->readNextNode();
        } catch (const QeXmlParseError& error) {
            errors += describe(error).substr(0, 5);
            try {
                reader->err("here");
            } catch (const QeXmlParseError& again) {
                EXPECT_EQ(again.getColumnNumber(), error.getColumnNumber());
            }
        }
    EXPECT_EQ(errors, "!3:3 !4:3 !2:5 ");
}
