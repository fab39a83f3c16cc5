// What document type declarations say.

#include <gtest/gtest.h>

#include "document_types.h"

using namespace tessit;
using namespace tessit::test;

namespace {

struct Saying {
    const char* subset;
    const char* asked;
    const char* answer;  // null where it is refused
};

constexpr Saying Sayings[] = {
    {"", "a\tb\nc\r\nd\re  ", "a b c d e  "},
    {"", "&#10;&#xD;&#x9;&lt;&amp;&gt;&apos;&quot;&#xE4;&#x20ac;&#x10FFFF;",
     "\n\r\t<&>'\"\xC3\xA4\xE2\x82\xAC\xF4\x8F\xBF\xBF"},
    {"<!ENTITY e '&#60;'><!ENTITY f '&e;&none;'>", "", ""},  // what nobody refers to is not judged
    {"<!ENTITY e '&#38;#60;&amp;lt;&#38;amp;'>", "&e;", "<&lt;&"},
    {"<!ENTITY e 'first'><!ENTITY e 'second'>", "&e;", "first"},
    {"<!ENTITY % e 'parameter'><!ENTITY e 'general'>", "&e;", "general"},
    {"<!ENTITY e '1&f;3'><!ENTITY f '&g;2&g;'><!ENTITY g ''>", "0&e;4&e;", "01234123"},
    {"<!ENTITY e 'a\r\nb\rc&#13;&#10;d'>", "&e;", "a b c  d"},   // two characters that are no line end
    {"<!ENTITY e '&amp;a\r\nb&#13;&#10;d'>", "&e;", "&a b  d"},  // the same where it is not plain
    {"<!ENTITY e '&#38;#10;'>", "&e;", "\n"},
    {"<!ENTITY e \"'%quot;\">", "", nullptr},
    {"<!ENTITY e \"'&#34;\">", "&e;", "'\""},
    {"<!ENTITY lt '<b>'><!ENTITY gt SYSTEM ''>", "&lt;&gt;", "<>"},  // mean the same, whatever is declared
    {"<!ENTITY % p '<!ENTITY e \"1\">'>%p;<!ENTITY e '2'>", "&e;", "1"},
    {"<!ENTITY % q '<!ENTITY e \"1\">'><!ENTITY % p '<!-- %q; -->&#37;q;<?p %q;?>'>", "", nullptr},
    {"<!ENTITY % q '<!ENTITY e \"1\">'><!ENTITY % p '<!-- q -->&#37;q; &#37;q;'>%p;", "&e;", "1"},
    {"<!ENTITY % p SYSTEM 'none'><!ENTITY e '1'>%p;<!ENTITY f '2'>", "&e;&f;&g;", "1{&f;}{&g;}"},
    {"%none;<!ENTITY f '2'>", " &f; &nbsp;&nbsp;", " {&f;} \xC2\xA0\xC2\xA0"},
    {"%none;<!ENTITY nbsp '[&f;]'>", "&nbsp;", "\xC2\xA0"},
    {"<!ENTITY nbsp '[&f;]'>%none;", "&nbsp;&tag;", "[{&f;}]<b>&amp; "},

    {"<!ELEMENT a ((b?,c*)+|(d,(e|f)),g)>", "<a>", nullptr},  // two ways to connect
    {"<!ELEMENT a ( ( b ? , c ) ) >", "<a>", nullptr},
    {"<!ELEMENT a ((b?,c*)+|(d,(e|f))*|g)><!ELEMENT b EMPTY><!ELEMENT c ( #PCDATA | d | e )* >", "<a>", "none"},
    {"<!ELEMENT a (((((b)))))><!ELEMENT c (#PCDATA)><!ELEMENT d (#PCDATA)*><!ELEMENT e ANY >", "<a>", "none"},
    {"<!NOTATION n PUBLIC 'p'><!NOTATION m PUBLIC 'p' 's' ><!NOTATION o SYSTEM ''>", "<a>", "none"},
    {"<!ATTLIST a>", "<a>", ""},
    {"<!ATTLIST a b CDATA #REQUIRED c CDATA ' 1 '\n d CDATA #FIXED '2' >", "<a>", "b c= 1  d=2"},
    {"<!ATTLIST a b CDATA '1'><!ATTLIST c b CDATA '2'><!ATTLIST a b NMTOKEN '3' d ID #IMPLIED>", "<a>", "b=1 ~d"},
    {"<!ATTLIST a b (1|-x| :y ) ' 1  2 ' c NOTATION (n) #IMPLIED d IDREFS '&#32;&#10; 3'>", "<a>", "~b=1 2 ~c ~d=\n 3"},
    {"<!ENTITY e ' 1 '><!ATTLIST a b NMTOKENS ' &e; &e;' c CDATA '&e;'>", "<a>", "~b=1 1 c= 1 "},
    {"%none;<!ATTLIST a b CDATA ''>", "<a>", "none"},
    {"<!ATTLIST a b CDATA '&late;'><!ENTITY % p ''>%p;", "<a>", "b={&late;}"},  // a matter of validity, from anywhere
    {"<!ATTLIST x:a xmlns:x CDATA 'u'>", "<x:a>", "xmlns:x=u"},
};

constexpr QeXmlNamedEntity Named[] = {{"nbsp", "\xC2\xA0"}, {"tag", "<b>&amp;\n"}, {"nbsp", "second"}};

struct External {
    const char* subset;  // of the document; "file" is the external one
    const char* file;
    const char* asked;
    const char* answer;
};

constexpr External Outside[] = {
    {"<!ENTITY e '1'>", "<!ENTITY e '2'><!ENTITY f '3'>", "&e;&f;", "13"},  // what is in the document goes first
    {"", "<!ENTITY % p '1&#37;q;'><!ENTITY % q \"2'\"><!ENTITY e '%p;%p;'>", "&e;", "12'12'"},
    {"", "<!ENTITY % t 'CDATA &#34;1&#34;'><!ENTITY % n 'b'><!ATTLIST a %n; %t;>", "<a>", "b=1"},
    {"",
     "<!ENTITY % m '(#PCDATA'><!ELEMENT a %m;)><!ENTITY % end '>'><!ELEMENT b EMPTY %end;<!ATTLIST a b ID #IMPLIED>",
     "<a>", "~b"},
    {"", "<!ENTITY % draft 'IGNORE'><![%draft;[<!ENTITY e '<![x]]>'>]]><![ INCLUDE [<!ENTITY e '2'><![INCLUDE[]]>]]>",
     "&e;", "2"},
    {"", "<!ENTITY % s 'INCLUDE['><![%s; <!ENTITY e '1'> ]]>", "&e;", "1"},
    {"", "<!ENTITY % s 'IGNORE['><![%s; <!ENTITY e '1'> ]]><!ENTITY e '2'>", "&e;", "2"},
    {"<!ENTITY % draft 'INCLUDE'>", "<!ENTITY % draft 'IGNORE'><![%draft;[<!ENTITY e '1'>]]><!ENTITY e '2'>", "&e;",
     "1"},
    {"<!ATTLIST a b IDREFS '  &late;  1 &late; '>", "<!ENTITY late 'x'>", "<a>", "~b={&late;} 1 {&late;}"},
    {"", "<!ATTLIST a b CDATA '&none;'>", "<a>", "b={&none;}"},
    {"", "<!ENTITY % p SYSTEM 'none'><!ENTITY e '1'><!ENTITY f '%p;'><!ENTITY g ''>", "&e;&f;&g;", "1{&f;}{&g;}"},
    {"", "<!ENTITY e '1'><!ENTITY % p SYSTEM 'none'><!ELEMENT a %p;><!ENTITY f <", "&e;&f;",
     "1{&f;}"},  // what follows cannot be told
    {"<!ENTITY % p SYSTEM 'more'>%p;<!ENTITY f '&e;!'>", "", "&f;", "more!"},
};

}  // namespace

TEST(Declarations, SayWhatIsMeant) {
    for (const auto& [subset, asked, answer] : Sayings)
        for (const bool namespaces : {true, false}) {
            SCOPED_TRACE(subset);
            const std::string type = " a [" + std::string(subset) + "]";
            const DeclarationSettings settings{.namespaces = namespaces, .named = Named};
            if (answer == nullptr)
                EXPECT_THROW(Document(type, settings), QeXmlParseError);
            else
                EXPECT_EQ(Document(type, settings).say(asked), answer);
        }
}

TEST(Declarations, AreWhole) {
    for (const auto& [subset, asked, answer] : Sayings)
        for (std::string text = " a PUBLIC 'p' 's' [" + std::string(subset) + "] "; !text.empty(); text.pop_back()) {
            SCOPED_TRACE(text);
            Source source;
            source.text = text;
            const DeclarationSettings settings;
            Declarations declarations(settings);
            StrictScanner scanner(source, source.begin());
            QeXmlDocumentType type;
            EXPECT_THROW(declarations.readDocumentType(scanner, type), QeXmlParseError);
        }
}

TEST(Declarations, ReadWhatIsOutside) {
    for (const auto& [subset, file, asked, answer] : Outside) {
        SCOPED_TRACE(file);
        Files resolver;
        resolver.files = {{"file", file}, {"more", "<?xml encoding='UTF-8'?><!ENTITY % m 'more'><!ENTITY e '%m;'>"}};
        Document document(" a SYSTEM 'file' [" + std::string(subset) + "]", {.resolver = &resolver});
        EXPECT_EQ(document.say(asked), answer);
    }
}

// A standalone document declares what it refers to; what is not read cannot matter.
TEST(Declarations, OfAStandaloneDocument) {
    Files resolver;
    resolver.files["file"] = "<!ENTITY e '1'><!ATTLIST a b CDATA '&e;&none;'>";
    Document document(" a [<!ENTITY % p SYSTEM 'file'>%p;<!ENTITY % q SYSTEM 'none'>%q;<!ENTITY f '2'>]",
                      {.resolver = &resolver}, true);
    EXPECT_EQ(document.say("&f;"), "2");
    EXPECT_EQ(document.say("<a>"), "b=1{&none;}");
    EXPECT_FALSE(document.get().mayLackDeclarations());
    EXPECT_THROW(document.say("&e;"), QeXmlParseError);
    EXPECT_THROW(document.say("&none;"), QeXmlParseError);
    EXPECT_THROW(Document(" a [%none;]", {}, true), QeXmlParseError);
}

TEST(Declarations, TokenizeTheRestOfAText) {
    QeCString text(" &x;  &y; ");
    std::vector<LeftReference> left{{1, 3}, {6, 3}};
    Declarations::tokenize(text, 4, &left);
    EXPECT_EQ(text, " &x;&y;");
    EXPECT_EQ(left[0].offset, 1u);
    EXPECT_EQ(left[1].offset, 4u);
}

TEST(Declarations, AskTheResolverOnce) {
    Files resolver;
    resolver.files = {
        {"sub/file", "<!ENTITY % p SYSTEM 'part'>%p;%p;<!ENTITY e SYSTEM 'e'>"}, {"part", " "}, {"e", "text"}};
    Document document(" a PUBLIC ' a\n b ' 'sub/file' [<!ENTITY f PUBLIC 'p' 'f'>]", {.resolver = &resolver});
    Source where;
    where.text = "&e;";
    for (int time = 0; time != 2; ++time)
        for (const char* name : {"e", "f"}) {
            Entity& entity = *document.get().resolve(where, where.begin(), name);
            const Source* const text = document.get().open(entity, where, where.begin());
            ASSERT_EQ(text != nullptr, *name == 'e');
            if (text == nullptr) continue;
            EXPECT_EQ(text->text, "text");
            EXPECT_EQ(text->name, "e");
            document.get().close(entity);
        }
    EXPECT_EQ(resolver.asked, "a b|sub/file|doc |part|sub/file |e|sub/file p|f|doc ");
    EXPECT_TRUE(document.get().mayLackDeclarations());  // a reference to an undeclared entity is a matter of validity
}

TEST(Declarations, OfTheDocumentType) {
    const Document document(" x:a\tPUBLIC '\n-//A//B  C ' \"it's\" [ <!-- ] --> ] ");
    EXPECT_EQ(document.type().name, "x:a");
    EXPECT_EQ(document.type().publicId, "-//A//B C");
    EXPECT_EQ(document.type().systemId, "it's");
    EXPECT_EQ(document.type().internalSubset, " <!-- ] --> ");
    std::string notations;
    const Document picture(" a [<!NOTATION n PUBLIC ' p '><!NOTATION m SYSTEM 's'><!ENTITY e SYSTEM 'f' NDATA n>]");
    for (const auto& [name, publicId, systemId] : picture.type().notations)
        notations += std::string(std::string_view(name + "|" + publicId + "|" + systemId + " "));
    for (const auto& [name, publicId, systemId, notation] : picture.type().unparsedEntities)
        notations += std::string(std::string_view(name + "|" + publicId + "|" + systemId + "|" + notation));
    EXPECT_EQ(notations, "n|p| m||s e||f|n");
    EXPECT_TRUE(Document(" a SYSTEM ''").get().mayLackDeclarations());
    EXPECT_FALSE(Document(" a []").get().mayLackDeclarations());
}

TEST(Declarations, FindsEachOfMany) {
    std::string subset, literal, values;
    for (int number = 0; number != 300; ++number) {
        const std::string text = std::to_string(number);
        subset += "<!ENTITY e" + text + " '" + text + ",'><!ATTLIST a b" + text + " CDATA #IMPLIED>";
        literal += "&e" + text + ";";
        values += text + ",";
    }
    Document document(" a [" + subset + "]");
    EXPECT_EQ(document.say(literal), values);
    EXPECT_EQ(document.say("<a>").size(), values.size() + 300 - 1);  // each is found by its name
}
