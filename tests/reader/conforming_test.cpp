// What a conforming reader delivers, and what it refuses: where, and in which words.

#include <gtest/gtest.h>
#include <map>

#include "support/documents.h"
#include "support/record.h"

using namespace tessit::test;

namespace {

const QeXmlReaderOptions Plain{.rules = QeXmlRules::Conforming};
const QeXmlReaderOptions AllNodes{.rules = QeXmlRules::Conforming, .nodes = QeXmlNodes::All};

// Reads on with every kind of call behind a fault: each raises it again.
void expectFaultToStay(QeXmlReader& reader, const std::string& fault) {
    const auto faultOf = [](auto call) {
        try {
            call();
        } catch (const QeXmlParseError& error) {
            return describe(error);
        }
        return std::string("nothing");
    };
    EXPECT_FALSE(reader.eof());
    EXPECT_EQ(faultOf([&] { reader.readNextNode(); }), fault);
    EXPECT_EQ(faultOf([&] { reader.readElementStart(); }), fault);
    EXPECT_EQ(faultOf([&] { reader.readElementValue(); }), fault);
    EXPECT_EQ(faultOf([&] { reader.readElementEnd(); }), fault);
}

// All that follows; an error ends it, and is put into `fault`.
std::string readOn(QeXmlReader& reader, std::string& fault) {
    std::string nodes;
    const auto add = [&](const std::string& node) { nodes += (nodes.empty() ? "" : " ") + node; };
    try {
        while (!reader.eof()) {
            reader.readNextNode();
            add(describeNode(reader));
        }
    } catch (const QeXmlParseError& error) {
        add(fault = describe(error));
    }
    return nodes;
}

// The same from the beginning; a fault stays, and nothing is behind the end.
std::string readOnce(const Document& document, Source source, const QeXmlReaderOptions& options) {
    std::unique_ptr<QeXmlReader> reader;
    try {
        reader = document.open(source, options);
    } catch (const QeXmlParseError& error) {
        return describe(error);
    }
    std::string fault;
    const std::string nodes = readOn(*reader, fault);
    if (!fault.empty()) {
        expectFaultToStay(*reader, fault);
    } else {
        EXPECT_THROW(reader->readNextNode(), QeXmlParseError);
        EXPECT_TRUE(reader->eof());
    }
    return nodes;
}

std::string read(const Document& document, Source source, const QeXmlReaderOptions& options) {
    return document.readEachWay(source, [&](const Document& each, Source way) { return readOnce(each, way, options); });
}

struct Case {
    std::string_view xml;
    std::string_view nodes;  // as `describeNode` has them
};

constexpr Case Accepted[] = {
    {"<a/>", "/a"},
    {"<a></a>", "+a -a"},
    {"<?xml version=\"1.0\"?><a/>", "/a"},
    {"<?xml version='1.7' encoding='utf-8' standalone='yes' ?>\n<a/>\n", "/a"},
    {"<!-- c --><?p d?><!DOCTYPE a><!-- - --><a/><!--x--><?p?>\r\n", "# c  ?p d !a # -  /a #x ?p "},
    {"<a x = '1'\n\ty=\"2\"></a\n>", "+a[x=1 y=2] -a"},
    {"<a>1\r\n2\r3<![CDATA[4\r\n5\r]]>6</a>", "+a =1\n2\n3 [4\n5\n =6 -a"},
    {"<a x='1\r\n2\r3\t4&#10;&#13;&#9;5'/>", "/a[x=1 2 3 4\n\r\t5]"},
    {"<a>a>b]]&gt;]] ></a>", "+a =a>b]]>]] > -a"},
    {"<a><![CDATA[<]]]]><![CDATA[>]]></a>", "+a [<]] [> -a"},
    {"<a>&lt;&amp;&gt;&quot;&apos;&#65;&#x1F600;</a>", "+a =<&>\"'A\xF0\x9F\x98\x80 -a"},
    {"<a:b xmlns:a='u' a:c='1' c='2'><a:b/></a:b>", "+{u}a:b[xmlns:a=u c=2 {u}a:c=1] /{u}a:b -{u}a:b"},
    {"<a xml:lang='en' xml:space='preserve' xmlns:xml='http://www.w3.org/XML/1998/namespace'/>",
     "/a[{http://www.w3.org/XML/1998/namespace}xml:lang=en {http://www.w3.org/XML/1998/namespace}xml:space=preserve "
     "xmlns:xml=http://www.w3.org/XML/1998/namespace]"},
    {"<a xmlns='u'><b xmlns=''/></a>", "+{u}a[xmlns=u] /b[xmlns=] -{u}a"},
    {"<\xC3\xA9:\xC3\xBC xmlns:\xC3\xA9='u'/>", "/{u}\xC3\xA9:\xC3\xBC[xmlns:\xC3\xA9=u]"},
    {"<a\xC2\xB7-.1 _='1'/>", "/a\xC2\xB7-.1[_=1]"},
    {"<\xF0\x90\x80\x80/>", "/\xF0\x90\x80\x80"},
    {"<a>t<!--c-->u<?p q?>v<![CDATA[w]]>x</a>", "+a =t #c =u ?p q =v [w =x -a"},
    {"<!DOCTYPE a [<!ENTITY e \"x<b>y</b>z\"><!ENTITY f \"1&e;2\">]><a>0&f;3</a>", "!a +a =01x +b =y -b =z23 -a"},
    {"<!DOCTYPE a [<!ENTITY e \"\">]><a>&e;</a>", "!a +a -a"},
    {"<!DOCTYPE a [<!ENTITY e \"x\">]><a b='1&e;2'>&e;&e;</a>", "!a +a[b=1x2] =xx -a"},
    {"<!DOCTYPE a [<!ENTITY e \"&#60;b/>&#38;lt;\">]><a>&e;</a>", "!a +a /b =< -a"},
    {"<!DOCTYPE a [<!ENTITY e \"<b>\">]><a/>", "!a /a"},
    {"<!DOCTYPE a [<!ATTLIST a x CDATA '1' y NMTOKENS ' p  q ' z ID #IMPLIED>]><a z=' i '/>", "!a /a[x=1 y=p q z=i]"},
    {"<!DOCTYPE a [<!ATTLIST a x CDATA '1' x CDATA '2'><!ATTLIST a y CDATA #FIXED '3'>]><a x='0'/>", "!a /a[x=0 y=3]"},
    {"<!DOCTYPE a [<!ATTLIST a xmlns CDATA 'u' xmlns:p CDATA 'v' p:q CDATA 'w'>]><a><p:b/></a>",
     "!a +{u}a[xmlns:p=v {v}p:q=w xmlns=u] /{v}p:b -{u}a"},
    {"<!DOCTYPE a SYSTEM 'x'><a b='&e;'>1&e;2</a>", "!a +a[b=&e;] =1 &e =2 -a"},
    {"<!DOCTYPE a PUBLIC ' p  q ' 'x' []><a/>", "!a /a"},
    {"<!DOCTYPE a [<!ENTITY % p SYSTEM 'p'>%p;<!ATTLIST a x CDATA '1'>]><a>&e;</a>", "!a +a &e -a"},
    {"<!DOCTYPE a [<!ENTITY % p \"<!ATTLIST a x CDATA '1'>\">%p;]><a/>", "!a /a[x=1]"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]><a>&e;</a>", "!a +a &e -a"},
    {"<!DOCTYPE a [<!ENTITY lt \"&#38;#60;\"><!ENTITY e \"&lt;\">]><a>&e;</a>", "!a +a =< -a"},
    {"<!DOCTYPE a [<?p d?><!ENTITY % e '<?q?>'>%e;]><!--c--><a/>", "!a ?p d ?q  #c /a"},
    {"<!DOCTYPE a [<!ENTITY % e ''>%e;]><a>&f;</a>", "!a +a &f -a"},     // a matter of validity
    {"<?xmlencoding =\"x-none\"?><a/>", "?xmlencoding =\"x-none\" /a"},  // an instruction, whose target is no "xml"
    {"<?xmlencoding =\"ISO-8859-1\"?><a>\xC3\xA9</a>", "?xmlencoding =\"ISO-8859-1\" +a =\xC3\xA9 -a"},
    {"<?xmlversion ='1' encoding='x-none'?><a/>", "?xmlversion ='1' encoding='x-none' /a"},
};

constexpr Case Refused[] = {
    {"<", "!1:2 the document ends before it is complete"},
    {"<a", "!1:3 the document ends before it is complete"},
    {"<a>", "+a !1:4 the document ends before it is complete"},
    {"</a>", "!1:1 an end tag that does not close the innermost element"},
    {"<a/><b/>", "/a !1:5 a second root element"},
    {"<a/>x", "/a !1:5 text outside the root element"},
    {"x<a/>", "!1:1 text outside the root element"},
    {"<a/><![CDATA[]]>", "/a !1:5 a CDATA section outside the root element"},
    {"<![CDATA[]]><a/>", "!1:1 a CDATA section outside the root element"},
    {" <?xml version='1.0'?><a/>", "!1:4 an XML declaration stands elsewhere than at the beginning: xml"},
    {"<a><?xml version='1.0'?></a>", "+a !1:6 an XML declaration stands elsewhere than at the beginning: xml"},
    {"<?xml?><a/>", "!1:3 an XML declaration is written wrong: xml"},
    {"<?xml encoding='utf-8'?><a/>", "!1:7 an XML declaration is written wrong"},
    {"<?xml version='2.0'?><a/>", "!1:16 an XML declaration is written wrong: 2.0"},
    {"<?xml version='1.0' standalone='maybe'?><a/>", "!1:33 an XML declaration is written wrong: maybe"},
    {"<?xml version='1.0' standalone='yes' encoding='utf-8'?><a/>", "!1:38 an XML declaration is written wrong"},
    {"<?xml version='1.0'encoding='utf-8'?><a/>", "!1:20 white space was expected, found 'e'"},
    {"<?xml version='1.0' encoding=' utf-8'?><a/>", "!1:31 an XML declaration is written wrong:  utf-8"},
    {"<?xml version='1.0' ><a/>", "!1:21 an XML declaration is written wrong"},
    {"<a><!-- -- --></a>", "+a !1:9 '--' in a comment"},
    {"<a><!-- ---></a>", "+a !1:9 '--' in a comment"},
    {"<a><!-- </a>", "+a !1:13 the document ends before it is complete"},
    {"<a><?XmL x?></a>", "+a !1:6 a processing instruction's target is wrong: XmL"},
    {"<a><?p:q x?></a>", "+a !1:7 a colon where namespaces allow none: p:q"},
    {"<a><?p+?></a>", "+a !1:7 a processing instruction's target is wrong: p"},
    {"<a><? p?></a>", "+a !1:6 a processing instruction's target is wrong"},
    {"<a><?p x</a>", "+a !1:13 the document ends before it is complete"},
    {"<1/>", "!1:2 a name was expected, found '1'"},
    {"<-a/>", "!1:2 a name was expected, found '-'"},
    {"<a-:b/>", "!1:2 a prefix that is not bound to a namespace: a-"},
    {"<a:/>", "!1:3 a colon where namespaces allow none: a:"},
    {"<:a/>", "!1:2 a colon where namespaces allow none: :a"},
    {"<a:b:c xmlns:a='u'/>", "!1:5 a colon where namespaces allow none: a:b:c"},
    {"<a:1 xmlns:a='u'/>", "!1:3 a colon where namespaces allow none: a:1"},
    {"<a x='1'y='2'/>", "!1:9 white space was expected, found 'y'"},
    {"<a x/>", "!1:5 an attribute, '>' or '/>' was expected: x"},
    {"<a x=1/>", "!1:6 an attribute, '>' or '/>' was expected, found '1'"},
    {"<a x='1/>", "!1:10 the document ends before it is complete"},
    {"<a x='<'/>", "!1:7 '<' in an attribute's value"},
    {"<a x='1' x='2'/>", "!1:10 an attribute stands twice in a tag: x"},
    {"<a xmlns:p='u' xmlns:q='u' p:x='1' q:x='2'/>", "!1:36 an attribute stands twice in a tag: q:x"},
    {"<a xmlns='u' xmlns='v'/>", "!1:14 an attribute stands twice in a tag: xmlns"},
    {"<a / >", "!1:5 an attribute, '>' or '/>' was expected, found white space"},
    {"<a></b>",
     "+a !1:6 an end tag that does not close the innermost element: </b> closes <a>, which was opened at 1:1"},
    {"<a></a x='1'>", "+a !1:8 an end tag that does not close the innermost element"},
    {"<p:b xmlns:p='u' xmlns:q='u'></q:b>",
     "+{u}p:b[xmlns:p=u xmlns:q=u] !1:32 an end tag that does not close the innermost element: </q:b> closes <p:b>, "
     "which was opened at 1:1"},
    {"<a>]]></a>", "+a !1:4 ']]>' in text"},
    {"<a><!ELEMENT></a>", "+a !1:4 '<!' that begins nothing that may stand here"},
    {"<a><!DOCTYPE a></a>", "+a !1:4 a document type declaration that may not stand here"},
    {"<!DOCTYPE a><!DOCTYPE a><a/>", "!1:13 a document type declaration that may not stand here"},
    {"<a/><!DOCTYPE a>", "/a !1:5 a document type declaration that may not stand here"},
    {"<a>&</a>", "+a !1:5 '&' that begins no reference"},
    {"<a>& </a>", "+a !1:5 '&' that begins no reference"},
    {"<a>&amp</a>", "+a !1:8 '&' that begins no reference"},
    {"<a>&;</a>", "+a !1:5 '&' that begins no reference"},
    {"<a>&#;</a>", "+a !1:6 '&' that begins no reference"},
    {"<a>&#x;</a>", "+a !1:7 '&' that begins no reference"},
    {"<a>&#xG;</a>", "+a !1:7 '&' that begins no reference"},
    {"<a>&#0;</a>", "+a !1:4 a reference to a character that XML does not allow: &#0;"},
    {"<a>&#xD800;</a>", "+a !1:4 a reference to a character that XML does not allow: &#xD800;"},
    {"<a>&#xFFFE;</a>", "+a !1:4 a reference to a character that XML does not allow: &#xFFFE;"},
    {"<a>&#1114112;</a>", "+a !1:4 a reference to a character that XML does not allow: &#1114112;"},
    {"<a>&#99999999999999999999;</a>",
     "+a !1:4 a reference to a character that XML does not allow: &#99999999999999999999;"},
    {"<a x='&b;'/>", "!1:7 an entity that is not declared: b"},
    {"<!DOCTYPE a SYSTEM ''><a>&b:c;</a>", "+a !1:28 a colon where namespaces allow none: b:c"},
    {"<!DOCTYPE a SYSTEM ''><a x='&b:c;'/>", "!1:31 a colon where namespaces allow none: b:c"},
    {"<a>&b;</a>", "+a !1:4 an entity that is not declared: b"},
    {"<a x='&'/>", "!1:8 '&' that begins no reference"},
    {"<p:a/>", "!1:2 a prefix that is not bound to a namespace: p"},
    {"<a p:x='1'/>", "!1:4 a prefix that is not bound to a namespace: p"},
    {"<a xmlns:p=''/>", "!1:4 a prefix that is declared to be in no namespace: p"},
    {"<a xmlns:xml='u'/>", "!1:4 the prefixes xml and xmlns are not declared otherwise: xmlns:xml"},
    {"<a xmlns:p='http://www.w3.org/XML/1998/namespace'/>",
     "!1:4 the namespaces of xml and xmlns have no other prefix: xmlns:p"},
    {"<a xmlns:xmlns='u'/>", "!1:4 the prefixes xml and xmlns are not declared otherwise: xmlns:xmlns"},
    {"<a xmlns='http://www.w3.org/2000/xmlns/'/>", "!1:4 the namespaces of xml and xmlns have no other prefix: xmlns"},
    {{"<\0?\0 begins like UTF-16 that declares itself", 44}, "!1:2 a character that XML does not allow: U+0000"},
    {"<a>\x01</a>", "+a !1:4 a character that XML does not allow: U+0001"},
    {"<a x='\x0B'/>", "!1:7 a character that XML does not allow: U+000B"},
    {"<a>\xEF\xBF\xBE</a>", "+a !1:4 a character that XML does not allow: U+FFFE"},
    {"<!DOCTYPE a [<!ENTITY e \"<b>\">]><a>&e;</a>",
     "+a +b !1:36 markup that begins and ends in different entities: b"},
    {"<!DOCTYPE a [<!ENTITY e \"</a><a>\">]><a>&e;</a>",
     "+a !1:40 markup that begins and ends in different entities: a"},
    {"<!DOCTYPE a [<!ENTITY e \"]]&#62;\">]><a>&e;</a>", "+a !1:40 ']]>' in text"},
    {"<!DOCTYPE a [<!ENTITY e \"&e;\">]><a>&e;</a>", "+a !1:36 an entity that refers to itself: e"},
    {"<!DOCTYPE a [<!ENTITY e \"&f;\"><!ENTITY f \"&e;\">]><a x='&e;'/>", "!1:56 an entity that refers to itself: e"},
    {"<!DOCTYPE a [<!ENTITY e \"&#60;\">]><a x='&e;'/>", "!1:41 '<' in an attribute's value"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]><a x='&e;'/>", "!1:44 a reference to an external entity in a value: e"},
    {"<!DOCTYPE a [<!ENTITY e SYSTEM 'e' NDATA n>]><a>&e;</a>", "+a !1:49 a reference to an unparsed entity: e"},
    {"<!DOCTYPE a [<!ENTITY e \"<!-- \">]><a>&e;--></a>", "+a !1:38 markup that begins and ends in different entities"},
    {"<!DOCTYPE a [<!ATTLIST a x CDATA '&e;'>]><a/>", "!1:35 an entity that is not declared: e"},
    {"<!DOCTYPE a [<!ATTLIST a p:x CDATA '1'>]><a/>", "!1:44 a prefix that is not bound to a namespace: p"},
    {"<!DOCTYPE a [<!ENTITY % p \"x\"><!ENTITY e \"%p;\">]><a/>",
     "!1:43 '%' that begins no reference to a parameter entity, or one that may not stand here"},
    {"<?xml version='1.0' standalone='yes'?><!DOCTYPE a SYSTEM 'x'><a>&e;</a>",
     "+a !1:65 an entity that is not declared: e"},
    {"<!DOCTYPE>", "!1:10 white space was expected, found '>'"},
    {"<!DOCTYPE a [<!ELEMENT a (b,c|d)>]><a/>", "!1:30 an element declaration is written wrong"},
    {"<!DOCTYPE a b><a/>", "!1:13 a document type declaration is written wrong"},
    {"<!doctype a><a/>", "!1:1 '<!' that begins nothing that may stand here"},
};

constexpr Case RefusedByNamespacesAlone[] = {
    {"<a:b:c/>", "/a:b:c"},
    {"<:/>", "/:"},
    {"<p:a q:x='1' xmlns:p=''></p:a>", "+p:a[q:x=1 xmlns:p=] -p:a"},
    {"<a><?p:q?></a>", "+a ?p:q  -a"},
    {"<!DOCTYPE a [<!ENTITY e:f 'x'><!NOTATION n:m SYSTEM ''>]><a x='&e:f;'>&e:f;</a>", "!a +a[x=x] =x -a"},
    {"<!DOCTYPE a [<!ENTITY % p:q ''><!ENTITY e '&g:h;'>%p:q;]><a/>", "!a /a"},
    {"<a xmlns:p='u' xmlns:q='u' p:x='1' q:x='2'/>", "/a[p:x=1 q:x=2 xmlns:p=u xmlns:q=u]"},
};

bool canBeConverted(std::string_view xml) {
    return isUtf8(xml) && xml.find("encoding=") == xml.npos;
}

void expectNodes(std::string_view xml, const QeXmlReaderOptions& options, std::string_view nodes) {
    for (const Source source : Sources)
        EXPECT_EQ(read(Document(xml), source, options), nodes) << xml;
    if (!canBeConverted(xml)) return;
    for (const Encoding encoding : Encodings)
        EXPECT_EQ(read(Document(encode(xml, encoding)), Source::Span, options), nodes) << xml;
}

}  // namespace

TEST(Conforming, DeliversWhatIsWellFormed) {
    for (const auto& [xml, nodes] : Accepted)
        expectNodes(xml, AllNodes, nodes);
}

TEST(Conforming, RefusesAtTheFirstFault) {
    for (const auto& [xml, nodes] : Refused)
        expectNodes(xml, Plain, nodes);
}

TEST(Conforming, AsksLessWithoutNamespaces) {
    for (const auto& [xml, nodes] : RefusedByNamespacesAlone) {
        EXPECT_NE(read(Document(xml), Source::Span, AllNodes).find("!1:"), std::string::npos) << xml;
        EXPECT_EQ(read(Document(xml), Source::Span,
                       {.rules = QeXmlRules::Conforming, .namespaces = false, .nodes = QeXmlNodes::All}),
                  nodes);
    }
}

TEST(Conforming, RefusesWhatIsCutShort) {
    for (const auto& [xml, nodes] : Accepted) {
        const std::size_t rootEnd = xml.rfind(xml.ends_with('\n') ? "/>" : ">");
        for (std::size_t length = 0; length <= rootEnd; ++length) {
            if (xml.substr(0, length).ends_with("a/>")) break;  // what follows is not needed
            EXPECT_NE(read(Document(xml.substr(0, length)), Source::Span, Plain).find('!'), std::string::npos)
                << xml.substr(0, length);
        }
    }
}

namespace {

// Also where the document is cut short at any byte.
void expectFaultInRecord(std::string_view xml) {
    for (std::size_t length = 0; length <= xml.size(); ++length)
        EXPECT_EQ(faultOfRecord(xml.substr(0, length)), "") << xml.substr(0, length);
    EXPECT_EQ(faultOfRecord(xml, false), "") << xml;
    const Encoding encoding = canBeConverted(xml) ? Encoding::Utf16LE : Encoding::Utf8;
    EXPECT_EQ(faultOfRecord(encode(xml, encoding)), "") << xml;
}

}  // namespace

TEST(Conforming, RecordsItsFirstFault) {
    for (const auto& rows : {std::span<const Case>(Accepted), std::span<const Case>(Refused),
                             std::span<const Case>(RefusedByNamespacesAlone)})
        for (const Case& row : rows)
            expectFaultInRecord(row.xml);
}

// References that are left as written mean the same, and are judged alike.
TEST(Conforming, ReadsReferencesThatStayAsWritten) {
    constexpr Case Cases[] = {
        {"<a xmlns:p='&#x75;' p:x='&lt;'/>", "/a[xmlns:p=&#x75; {u}p:x=&lt;]"},
        {"<!DOCTYPE a [<!ENTITY u 'u'><!ATTLIST a xmlns:p NMTOKEN ''>]><a xmlns:p=' &u; ' p:x='1'/>",
         "/a[xmlns:p=&u; {u}p:x=1]"},
        {"<a xmlns:xml='http:&#x2F;/www.w3.org/XML/1998/namespace'/>",
         "/a[xmlns:xml=http:&#x2F;/www.w3.org/XML/1998/namespace]"},
        {"<!DOCTYPE a [<!ENTITY u ''>]><a xmlns:p='&u;'/>", "!1:33 a prefix that is declared to be in no namespace: p"},
        {"<a xmlns:p='&#117;' xmlns:q='u' p:x='1' q:x='2'/>", "!1:41 an attribute stands twice in a tag: q:x"},
        {"<!DOCTYPE a [<!ENTITY e '<b x=\"\r\n&#13;&#10;&lt;\"/>'>]><a>&e;</a>", "+a /b[x=   &lt;] -a"},
        {"<!DOCTYPE a [<!ENTITY u 'u'><!ATTLIST a xmlns:p NMTOKEN ' &u; ' x CDATA '\t&#9;' y CDATA '\n'>]><a p:z=''/>",
         "/a[xmlns:p=&u; x= &#9; y=  {u}p:z=]"},
    };
    for (const auto& [xml, nodes] : Cases) {
        const Document document(xml);
        const auto reader = document.open(Source::Span, Plain);
        reader->setExpandAttributeReference(false);
        std::string fault;
        EXPECT_EQ(readOn(*reader, fault), nodes) << xml;
    }
}

// Nodes that were asked for do not get in the way of demands.
TEST(Conforming, DemandsPassOtherNodes) {
    const Document document(
        "<?p?><!--c--><!DOCTYPE a SYSTEM 's' [<?q?>]><a><!--1-->x<?p?>y<![CDATA[z]]>&e;<b "
        "x='&#34;&lt;&amp;&apos;&#10;'/><!--2--></a><!--3-->");
    const auto reader = document.open(Source::Span, AllNodes);
    reader->readElementStart("a");
    EXPECT_EQ(reader->getDocumentType().systemId, "s");
    EXPECT_TRUE(reader->isElementNext("b"));
    EXPECT_EQ(reader->getLastContent(), "xyz&e;");
    EXPECT_EQ(reader->readElement("b"), "<b x='&#34;&lt;&amp;&apos;&#10;'/>");  // as it stands, though looked at
    reader->readElementEnd();
    reader->readElementEnd("a");
    EXPECT_FALSE(reader->eof());
    reader->readNextNode();
    EXPECT_EQ(describeNode(*reader), "#3");
    EXPECT_TRUE(reader->eof());
}

namespace {

// Where the attributes of the last tag come from, and what was left in them.
std::string describeSources(const QeXmlReader& reader) {
    std::string attributes;
    for (const QeXmlAttribute& attribute : reader.getLastAttributes()) {
        attributes += describe(attribute.getName()) + (reader.isSpecified(attribute) ? "+" : "-");
        for (const auto& [offset, length] : reader.getLeftReferences(attribute))
            attributes += std::string(std::string_view(attribute.getValue()).substr(offset, length));
    }
    return attributes;
}

}  // namespace

TEST(Conforming, TellsWhatDeclarationsBrought) {
    const Document document(
        "<!DOCTYPE a PUBLIC ' p  q ' 's' [<!ENTITY e '<b>&f;</b>'><!ATTLIST a x CDATA '1' y CDATA '&u;2'>]>"
        "<a z=' &v; '>&e;<c><a z='&w;'><b z='1'/></a></c></a>");
    const auto reader = document.open(Source::Span, Plain);
    const QeXmlDocumentType& type = reader->getDocumentType();
    EXPECT_EQ(type.name + "|" + type.publicId + "|" + type.systemId, "a|p q|s");
    EXPECT_EQ(type.internalSubset, "<!ENTITY e '<b>&f;</b>'><!ATTLIST a x CDATA '1' y CDATA '&u;2'>");
    reader->readElementStart("a");
    EXPECT_EQ(describeSources(*reader), "x-y-&u;z+&v;");
    EXPECT_FALSE(reader->isInEntity());
    EXPECT_EQ(reader->readElement("b"), "&e;");  // as it stands in the document
    reader->readElementStart("c");
    EXPECT_EQ(reader->readElement("a"), "<a z='&w;'><b z='1'/></a>");
    EXPECT_EQ(describeSources(*reader), "x-y-&u;z+&w;");
    reader->readElementEnd("c");
    reader->readElementEnd("a");
    EXPECT_TRUE(reader->eof());
}

// Also of a tag that is read anew, since it was not the one that was expected.
TEST(Conforming, TellsEachReferenceThatIsLeftOnce) {
    const Document document("<!DOCTYPE r SYSTEM 's'><r><a x='&u;' y='1'/><a x='&u;' y='1'/><a x='&u;' z='1'/></r>");
    const auto reader = document.open(Source::Span, Plain);
    reader->readElementStart("r");
    for (const char* const expected : {"x+&u;y+", "x+&u;y+", "x+&u;z+"}) {
        reader->readElementStart("a");
        EXPECT_EQ(describeSources(*reader), expected);
        reader->readElementEnd("a");
    }
}

// The reference stands for each element that it brings, looked at before or not; behind it, all is as in the document.
TEST(Conforming, TakesElementsOfAnEntity) {
    const Document document("<!DOCTYPE a [<!ENTITY e '&f;<d/>'><!ENTITY f '<b>1</b><c/>'>]><a>&e;<g/>&f;</a>");
    const auto reader = document.open(Source::String, Plain);
    reader->readElementStart("a");
    EXPECT_EQ(reader->readElement("b"), "&e;");
    EXPECT_TRUE(reader->isElementNext("c"));
    EXPECT_EQ(reader->readElement("c"), "&e;");
    reader->readElementEnd("c");
    EXPECT_EQ(reader->readElement("d"), "&e;");
    reader->readElementEnd("d");
    EXPECT_EQ(reader->readElement("g"), "<g/>");
    reader->readElementEnd("g");
    EXPECT_TRUE(reader->isElementNext("b"));
    EXPECT_EQ(reader->readElement("b"), "&f;");
}

namespace {

// Has entities by their system identifiers.
class Shelf : public QeXmlResolver {
public:
    explicit Shelf(std::map<std::string, std::string> texts) : entities(std::move(texts)) {}

    bool resolve(const QeXmlExternalId& id, QeXmlExternalEntity& entity) override {
        const auto found = entities.find(std::string(std::string_view(id.getSystemId())));
        if (found == entities.end()) return false;
        entity.setBytes(QeCString(found->second));
        entity.setName(id.getBase() + "/" + id.getSystemId());
        return true;
    }

private:
    std::map<std::string, std::string> entities;
};

struct ExternalCase {
    std::map<std::string, std::string> entities;
    std::string_view xml, nodes;
};

const ExternalCase External[] = {
    {{{"s", "<!ATTLIST a x CDATA '1'>"}}, "<!DOCTYPE a SYSTEM 's'><a/>", "/a[x=1]"},
    {{{"e", encode("<b/>", Encoding::Utf16LE)}}, "<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]><a>&e;</a>", "+a /b -a"},
    {{{"e", "<?xml encoding='ISO-8859-1'?>\r\n\xE9"}},
     "<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]><a>&e;</a>",
     "+a =\n\xC3\xA9 -a"},
    {{{"e", "1\n<b>"}}, "<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]><a>\n&e;</a>", "+a =\n1\n +b doc/e:2:4 note doc:2:1"},
    {{{"e", "1\n\x01"}}, "<!DOCTYPE a [<!ENTITY e SYSTEM 'e'>]><a>&e;</a>", "+a doc/e:2:1 note doc:1:41"},
    {{{"s", "<!ENTITY f '<b>'>"}}, "<!DOCTYPE a SYSTEM 's'><a>\n&f;</a>", "+a =\n +b doc:2:1 note doc/s:1:10"},
};

std::string placeOf(const QeXmlParseError& error) {
    std::ostringstream text;
    text << error.getSourceFile() << ':' << error.getLineNumber() << ':' << error.getColumnNumber();
    if (const QeXmlNote* note = error.getNote())
        text << " note " << note->place.sourceFile << ':' << note->place.position.line << ':'
             << note->place.position.column;
    return text.str();
}

}  // namespace

TEST(Conforming, ReadsWhatAResolverHas) {
    for (const auto& [entities, xml, expected] : External) {
        Shelf shelf(entities);
        std::string nodes;
        try {
            const Document document(xml);
            const auto reader = document.open(
                Source::Span,
                QeXmlReaderOptions{.rules = QeXmlRules::Conforming, .sourceName = "doc", .resolver = &shelf});
            while (!reader->eof()) {
                reader->readNextNode();
                nodes += (nodes.empty() ? "" : " ") + describeNode(*reader);
            }
        } catch (const QeXmlParseError& error) {
            nodes += " " + placeOf(error);
        }
        EXPECT_EQ(nodes, std::string(expected)) << xml;
    }
}

// Every reference brings ten times what it has, and a default value stands in every tag.
TEST(Conforming, BoundsWhatEntitiesBring) {
    const auto bomb = [](std::string_view last, int levels) {
        std::string subset = "<!DOCTYPE a [<!ENTITY e0 '" + std::string(last) + "'>";
        for (int i = 1; i < levels; ++i)
            subset += "<!ENTITY e" + std::to_string(i) + " '" + repeat("&e" + std::to_string(i - 1) + ";", 10) + "'>";
        return subset;
    };
    const QeXmlReaderOptions small{.rules = QeXmlRules::Conforming, .expansionFactor = 2, .freeExpansion = 10'000};
    const std::string documents[] = {
        bomb("x", 10) + "]><a>&e9;</a>",
        bomb("", 10) + "]><a>&e9;</a>",
        bomb("x", 10) + "]><a x='&e9;'/>",
        bomb("x", 10) + "<!ATTLIST a x CDATA '&e9;'>]><a/>",
        "<!DOCTYPE a [<!ATTLIST b x CDATA '" + repeat("x", 100) + "'>]><a>" + repeat("<b/>", 200) + "</a>",
        "<!DOCTYPE a [<!ATTLIST b " + std::string(100, 'x') + " CDATA ''>]><a>" + repeat("<b/>", 200) + "</a>",
    };
    for (const std::string& document : documents) {
        EXPECT_NE(read(Document(document), Source::Span, small).find("entities bring more text than they may"),
                  std::string::npos);
    }
    EXPECT_EQ(read(Document(bomb("x", 3) + "]><a x='&e2;'/>"), Source::Span, small), "/a[x=" + repeat("x", 100) + "]");
    const QeXmlReaderOptions exact{.rules = QeXmlRules::Conforming, .expansionFactor = 0, .freeExpansion = 33};
    EXPECT_EQ(
        read(Document("<!DOCTYPE r [<!ENTITY e '0123456789'>]><r><a x='&e;' y=''/><a x='&e;' z=''/><a x='&e;'/></r>"),
             Source::Span, exact),
        "+r /a[x=0123456789 y=] /a[x=0123456789 z=] /a[x=0123456789] -r");  // 11 for each reference
    const QeXmlReaderOptions flat{.rules = QeXmlRules::Conforming, .entityDepth = 3};
    EXPECT_EQ(read(Document(bomb("x", 3) + "]><a>&e2;</a>"), Source::Span, flat), "+a =" + repeat("x", 100) + " -a");
    EXPECT_NE(read(Document(bomb("x", 4) + "]><a>&e3;</a>"), Source::Span, flat).find("nested deeper"),
              std::string::npos);
}

// Entities that a program names stand behind those of the document, and only where a declaration may be missing.
TEST(Conforming, KnowsEntitiesByName) {
    const QeXmlNamedEntity entities[] = {{"nbsp", "\xC2\xA0"}, {"lt2", "<"}};
    const QeXmlReaderOptions options{.rules = QeXmlRules::Conforming, .entities = entities};
    const auto of = [&](std::string_view xml) { return read(Document(xml), Source::Span, options); };
    EXPECT_EQ(of("<!DOCTYPE a SYSTEM 's'><a x='&nbsp;'>&nbsp;&lt2;</a>"), "+a[x=\xC2\xA0] =\xC2\xA0< -a");
    EXPECT_EQ(of("<!DOCTYPE a SYSTEM 's' [<!ENTITY nbsp '1'>]><a>&nbsp;</a>"), "+a =1 -a");
    EXPECT_EQ(of("<a>&nbsp;</a>"), "+a !1:4 an entity that is not declared: nbsp");
}

TEST(Conforming, TakesTheEncodingOfATransport) {
    const auto of = [](std::string_view bytes, const char* encoding) {
        return read(Document(bytes), Source::Span, {.rules = QeXmlRules::Conforming, .encoding = encoding});
    };
    EXPECT_EQ(of("<a>\xE9</a>", ""), "+a !1:4 bytes that mean nothing in the encoding: E9 in UTF-8");
    EXPECT_EQ(of("<a>\xE9</a>", "ISO-8859-1"), "+a =\xC3\xA9 -a");
    EXPECT_EQ(of("<?xml version='1.0' encoding='UTF-8'?><a>\xE9</a>", "ISO-8859-1"), "+a =\xC3\xA9 -a");
    EXPECT_EQ(of("\xEF\xBB\xBF<a/>", "UTF-16").substr(0, 5), "!1:1 ");
    // an order of bytes is told in whatever pieces they come
    const Document half(encode("<?xml version='1.0' encoding='UTF-16'?><a>", Encoding::Utf16LE) + "\x20\xD8" + "xx");
    for (const std::size_t piece : {1u, 1'000u})
        for (const bool isInPieces : {false, true}) {
            QeXmlReader reader(isInPieces ? half.inPieces(0, piece) : half.inPlace(),
                               {.rules = QeXmlRules::Conforming});
            std::string fault;
            readOn(reader, fault);
            EXPECT_NE(fault.find("20 D8 in UTF-16LE"), fault.npos) << fault;
        }
}

// Lenient readers know the name of the source, and nothing else of the options.
TEST(Conforming, IsNotWhatLenientReadersAre) {
    const auto reader =
        Document("<a>]]></b>").open(Source::String, QeXmlReaderOptions{.sourceName = "doc", .nodes = QeXmlNodes::All});
    reader->readElementStart("a");
    EXPECT_EQ(reader->readElementValue(), "]]>");
    try {
        reader->readElementEnd("c");
        ADD_FAILURE();
    } catch (const QeXmlParseError& error) {
        EXPECT_EQ(placeOf(error), "doc:1:11");
    }
}
