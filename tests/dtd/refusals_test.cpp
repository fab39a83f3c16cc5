// What is refused in a document type declaration, and where.

#include <gtest/gtest.h>

#include "document_types.h"

using namespace tessit;
using namespace tessit::test;

namespace {

struct Refusal {
    Rule rule;
    const char* text;  // with a ^ in front of the place
};

constexpr Refusal InTheDocument[] = {
    {Rule::WhiteSpace, "^a"},
    {Rule::DocumentType, " ^"},
    {Rule::Colon, " a^:"},
    {Rule::Colon, " a:b^:c"},
    {Rule::Colon, " a^:1"},
    {Rule::DocumentType, " a ^system 'x'"},
    {Rule::WhiteSpace, " a SYSTEM^'x'"},
    {Rule::WhiteSpace, " a PUBLIC 'p'^'x'"},
    {Rule::Literal, " a PUBLIC 'p' ^"},  // only notations go without
    {Rule::Literal, " a PUBLIC 'p^\t' 's'"},
    {Rule::Literal, " a PUBLIC \"p^\xC3\xA4\" 's'"},
    {Rule::DocumentType, " a [] ^x"},
    {Rule::DocumentType, " a [^&b;]"},
    {Rule::DocumentType, " a [^<b>]"},
    {Rule::Markup, " a [^<!element b ANY>]"},
    {Rule::Markup, " a [\r\n\n  ^<!-x-->]"},
    {Rule::HyphensInComment, " a [<!-- ^-- -->]"},
    {Rule::XmlDeclarationPlace, " a [<?^xml version='1.0'?>]"},
    {Rule::Colon, " a [<?p^:q?>]"},
    {Rule::Colon, " a [%p^:q;]"},
    {Rule::Colon, " a [<!ENTITY e '&p^:q;'>]"},
    {Rule::ConditionalSection, " a [^<![INCLUDE[]]>]"},
    {Rule::DocumentType, " a []^]>"},

    {Rule::WhiteSpace, " a [<!ELEMENT^>]"},
    {Rule::WhiteSpace, " a [<!ELEMENT b^(c)>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b ^>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b ANY^B>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (^)>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (c,d^|e)>]"},
    {
        Rule::ElementDeclaration,
        " a [<!ELEMENT b ((c|d),e^|f)>]",
    },
    {Rule::ElementDeclaration, " a [<!ELEMENT b (c,(d|e)^|f)>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (c ^*)>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (c)*^*>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (c|^)>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (c^>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (^#CDATA)>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (c|^#PCDATA)*>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (#PCDATA|c)^>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (#PCDATA|c^*)*>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (#PCDATA^,c)*>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b (#PCDATA)^+>]"},
    {Rule::Colon, " a [<!ELEMENT b (c:^:d)>]"},
    {Rule::ElementDeclaration, " a [<!ELEMENT b EMPTY ^-- c -->]"},

    {Rule::WhiteSpace, " a [<!ATTLIST b c CDATA '1'^d CDATA '2'>]"},
    {Rule::AttributeListDeclaration, " a [<!ATTLIST b c ^NAME #IMPLIED>]"},
    {Rule::WhiteSpace, " a [<!ATTLIST b c CDATA^#IMPLIED>]"},
    {Rule::AttributeListDeclaration, " a [<!ATTLIST b c CDATA ^#implied>]"},
    {Rule::AttributeListDeclaration, " a [<!ATTLIST b c CDATA ^>]"},
    {Rule::WhiteSpace, " a [<!ATTLIST b c CDATA #FIXED^'1'>]"},
    {Rule::AttributeListDeclaration, " a [<!ATTLIST b c (^) '1'>]"},
    {Rule::AttributeListDeclaration, " a [<!ATTLIST b c (d^,e) '1'>]"},
    {Rule::WhiteSpace, " a [<!ATTLIST b c NOTATION^(d) '1'>]"},
    {Rule::AttributeListDeclaration, " a [<!ATTLIST b c NOTATION (^1) '1'>]"},
    {Rule::Colon, " a [<!ATTLIST b c NOTATION (n^:m) '1'>]"},
    {Rule::LessThanInValue, " a [<!ATTLIST b c CDATA '1^<'>]"},
    {Rule::LessThanInValue, " a [<!ENTITY e '&#60;'><!ATTLIST b c CDATA '1^&e;'>]"},
    {Rule::UndeclaredEntity, " a [<!ATTLIST b c CDATA '^&e;'><!ENTITY e ''>]"},           // declared too late
    {Rule::UndeclaredEntity, " a [<!ATTLIST b c CDATA ''><!ATTLIST b c CDATA '^&e;'>]"},  // even if it does not count
    {Rule::ExternalEntityInValue, " a [<!ENTITY e SYSTEM ''><!ATTLIST b c CDATA '^&e;'>]"},
    {Rule::UnparsedEntity, " a [<!ENTITY e SYSTEM '' NDATA n><!ATTLIST b c CDATA '^&e;'>]"},
    {Rule::RecursiveEntity, " a [<!ENTITY e '&f;'><!ENTITY f '&e;'><!ATTLIST b c CDATA '^&e;'>]"},
    {Rule::Reference, " a [<!ATTLIST b c CDATA '&^ '>]"},
    {Rule::Reference, " a [<!ATTLIST b c CDATA '&amp^'>]"},
    {Rule::CharacterReference, " a [<!ATTLIST b c CDATA '^&#xD800;'>]"},
    {Rule::EntityNesting, " a [<!ENTITY e '&#38;amp'><!ATTLIST b c CDATA '^&e;;'>]"},

    {Rule::WhiteSpace, " a [<!ENTITY e^'x'>]"},
    {Rule::WhiteSpace, " a [<!ENTITY %^>]"},
    {Rule::ParameterEntity, " a [<!ENTITY ^%e 'x'>]"},
    {Rule::EntityDeclaration, " a [<!ENTITY e ^x>]"},
    {Rule::EntityDeclaration, " a [<!ENTITY e 'x' ^NDATA n>]"},
    {Rule::WhiteSpace, " a [<!ENTITY e SYSTEM 'x'^NDATA n>]"},
    {Rule::EntityDeclaration, " a [<!ENTITY % e SYSTEM 'x' ^NDATA n>]"},
    {Rule::Colon, " a [<!ENTITY e^:f 'x'>]"},
    {Rule::Colon, " a [<!ENTITY e SYSTEM 'x' NDATA n^:m>]"},
    {Rule::ParameterEntity, " a [<!ENTITY % p 'x'><!ENTITY e '1^%p;'>]"},
    {Rule::ParameterEntity, " a [<!ENTITY e '100^%'>]"},
    {Rule::Reference, " a [<!ENTITY e 'a &^& b'>]"},
    {Rule::CharacterReference, " a [<!ENTITY e '^&#0;'>]"},
    {Rule::NotationDeclaration, " a [<!NOTATION n ^'x'>]"},
    {Rule::Colon, " a [<!NOTATION n^:m SYSTEM 'x'>]"},

    {Rule::ParameterEntity, " a [<!ENTITY % p 'ANY'><!ELEMENT b ^%p;>]"},
    {Rule::ParameterEntity, " a [%^;]"},
    {Rule::ParameterEntity, " a [<!ENTITY % p ''>%p^ ;]"},
    {Rule::DeclarationNesting, " a [<!ENTITY % p '<!ELEMENT b '>^%p; ANY>]"},
    {Rule::DeclarationNesting, " a [<!ENTITY % p '<!-- '>^%p; -->]"},
    {Rule::RecursiveEntity, " a [<!ENTITY % p '&#37;q;'><!ENTITY % q '&#37;p;'>^%p;]"},
    {Rule::ParameterEntity, " a [<!ENTITY % q ''><!ENTITY % p '<!ENTITY e \"&#37;q;\">'>^%p;]"},
};

constexpr Refusal Outside[] = {
    // in the external subset
    {Rule::TextDeclaration, "<?xml version='1.0'^?>"},
    {Rule::XmlDeclarationPlace, " <?^xml encoding='UTF-8'?>"},
    {Rule::DocumentType, "\n<!ELEMENT a ANY>\n^a"},
    {Rule::DocumentType, "]^x"},
    {Rule::DeclarationNesting, "<!ELEMENT a ^"},
    {Rule::ConditionalSection, "<![^OTHER[]]>"},
    {Rule::ConditionalSection, "<![INCLUDE ^x[]]>"},
    {Rule::ConditionalSection, "^]]>"},
    {Rule::ConditionalSection, "<![INCLUDE[<![INCLUDE[]]>^"},
    {Rule::DeclarationNesting, "<![IGNORE[<![IGNORE[]]>^"},
    {Rule::ConditionalSection, "<!ENTITY % p '<![INCLUDE['>^%p;]]>"},
    {Rule::ConditionalSection, "<!ENTITY % p ']]>'><![INCLUDE[^%p;"},
    {Rule::DeclarationNesting, "<!ENTITY % p '<!ELEMENT b '>^%p;ANY>"},
    {Rule::ElementDeclaration, "<!ENTITY % p '(b)'><!ELEMENT a %p;^*>"},  // blanks stand around what it brings
    {Rule::ElementDeclaration, "<!ELEMENT a %p;^>"},
    {Rule::RecursiveEntity, "<!ENTITY % p '&#37;p;'><!ENTITY e '^%p;'>"},
    {Rule::DeclarationNesting, "<!ENTITY % p '&#38;'><!ENTITY e '^%p; '>"},
};

// The row without the mark, and "line:column" of it.
std::string takeMark(std::string& text) {
    const std::size_t mark = text.find('^');
    text.erase(mark, 1);
    unsigned line = 1, column = 1;
    for (std::size_t at = 0; at != mark; ++at, ++column)
        if (text[at] == '\n') ++line, column = 0;
    return std::to_string(line) + ":" + std::to_string(column);
}

// "line:column message" of what is refused.
template <typename Action>
std::string refusalOf(Action action) {
    try {
        action();
        return "nothing is refused";
    } catch (const QeXmlParseError& error) {
        return std::string(error.getSourceFile()) + ":" + std::to_string(error.getLineNumber()) + ":" +
               std::to_string(error.getColumnNumber()) + " " + error.what();
    }
}

void expectRefusal(const std::string& found, const char* file, const std::string& place, Rule rule) {
    const std::string expected = std::string(file) + ":" + place + " " + messageOf(rule);
    EXPECT_EQ(found.substr(0, expected.size()), expected) << found;
}

// Ten levels of ten references each: entities e0 to e10, or parameter entities.
std::string levels(const std::string& sign, const std::string& innermost) {
    const std::string declaration = sign == "&" ? "<!ENTITY e" : "<!ENTITY % e";
    std::string text = declaration + "0 '" + innermost + "'>";
    for (int level = 1; level <= 10; ++level) {
        text += declaration + std::to_string(level) + " '";
        for (int i = 0; i < 10; ++i)
            text += sign + "e" + std::to_string(level - 1) + ";";
        text += "'>";
    }
    return text;
}

}  // namespace

TEST(Declarations, RefusesWhatBreaksARule) {
    for (const auto& [rule, row] : InTheDocument) {
        SCOPED_TRACE(row);
        std::string text = row;
        const std::string place = takeMark(text);
        expectRefusal(refusalOf([&] { Document{text}; }), "doc", place, rule);
    }
}

TEST(Declarations, RefusesWhatBreaksARuleOutside) {
    for (const auto& [rule, row] : Outside) {
        SCOPED_TRACE(row);
        Files resolver;
        std::string& text = resolver.files["file"] = row;
        const std::string place = takeMark(text);
        expectRefusal(refusalOf([&] { Document(" a SYSTEM 'file'", {.resolver = &resolver}); }), "file", place, rule);
    }
}

TEST(Declarations, TellsWhereAFileWasReferredTo) {
    Files resolver;
    resolver.files["file"] = "<?xml encoding='UTF-8'?><!BAD>";
    try {
        Document("\n a [<!ENTITY % p SYSTEM 'file'> %p;]", {.resolver = &resolver});
        FAIL();
    } catch (const QeXmlParseError& error) {
        EXPECT_EQ(error.getColumnNumber(), 25u);
        ASSERT_NE(error.getNote(), nullptr);
        EXPECT_EQ(error.getNote()->place.position.line, 2u);
        EXPECT_EQ(error.getNote()->place.position.column, 33u);
    }
}

TEST(Declarations, SaysWhatWasFound) {
    EXPECT_EQ(refusalOf([] { Document(" a [<!ATTLIST b c CDATA '&undeclared;'>]"); }),
              "doc:1:26 an entity that is not declared: undeclared");
}

TEST(Declarations, BoundsWhatEntitiesBring) {
    const std::string expected = messageOf(Rule::EntityExpansion);
    for (const char* innermost : {"", "x"}) {  // whether the innermost one brings anything does not matter
        Document document(" a [" + levels("&", innermost) + "]", {.freeExpansion = 100000});
        EXPECT_EQ(refusalOf([&] { document.say("&e10;"); }), "value:1:1 " + expected);
        Files resolver;
        resolver.files["file"] = levels("&#37;", innermost) + "%e10;";
        EXPECT_EQ(refusalOf([&] {
                      Document(" a SYSTEM 'file'", {.resolver = &resolver, .freeExpansion = 100000});
                  }).substr(0, 5),
                  "file:");
    }
}

TEST(Declarations, CountsWhatEntitiesBring) {
    Document document(" a [<!ENTITY e '123456789'>]", {.expansionFactor = 2, .freeExpansion = 10});  // 29 bytes
    EXPECT_EQ(document.say("&e;&e;&e;&e;&e;"), "123456789123456789123456789123456789123456789");
    EXPECT_EQ(refusalOf([&] { document.say("123&e;"); }), std::string("value:1:4 ") + messageOf(Rule::EntityExpansion));
}

TEST(Declarations, BoundsTheDepthOfEntities) {
    const std::string type = " a [<!ENTITY c 'x'><!ENTITY b '&c;&c;'><!ENTITY a '&b;'>]";
    EXPECT_EQ(Document(type, {.entityDepth = 3}).say("&a;"), "xx");
    EXPECT_EQ(refusalOf([&] { Document(type, {.entityDepth = 2}).say("&a;"); }),
              std::string("value:1:1 ") + messageOf(Rule::EntityDepth) + ": c");
}
