// What stands in front of the root element, and the values of the XML declaration.

#include <gtest/gtest.h>

#include "support/documents.h"

using namespace tessit::test;

namespace {

struct PrologCase {
    const char* prolog;
    const char* values;  // version|encoding|standalone, a + behind what was declared; or the error
};

constexpr PrologCase Prologs[] = {
    {"", "|UTF-8|"},
    {"<?xml version='1.1' encoding='UTF-8' standalone='yes'?>", "1.1|UTF-8+|yes+"},
    {"<?xml version=\"1.0\" standalone=\"no\"?>", "1.0|UTF-8|no+"},
    {"<?xml version = \"1.0\" \t\r\n standalone = 'yes' encoding = 'utf-8' ?>",
     "1.0|utf-8+|yes+"},  // any order, name as given
    {"\r", "|UTF-8|"},
    {" \r\n\t<?xml version='1.0'?>", "1.0|UTF-8|"},
    {"<?xml version='1.0'>", "1.0|UTF-8|"},                       // no '?' needed
    {"<?xml version='1.0'?><?xml version='2'?>", "1.02|UTF-8|"},  // a second one appends
    {"<?xml version='1.0' standalone=''?>", "1.0|UTF-8|no+"},
    {"<?xml version='1.0' standalone='y'?>", "1.0|UTF-8|yes+"},
    {"<?xml version='1.0' standalone='true'?>", "1.0|UTF-8|no+"},
    {"<?xml-stylesheet version='9'?>", "|UTF-8|"},
    {"<?XML version='9'?>", "|UTF-8|"},  // another target
    {"<?pi a?\?>", "|UTF-8|"},
    {"<?pi > ? >?>", "|UTF-8|"},
    {"<!----><!-- <a> --><!-- - -x- -->", "|UTF-8|"},
    {"<!DOCTYPE a [<!ENTITY b \">\"> [ ] ]>", "|UTF-8|"},
    {"<?xml version='1.0'?><!-- c --><?pi?><!DOCTYPE a [ <!ELEMENT a ANY> ]>\n", "1.0|UTF-8|"},

    {"x<!-- c -->", "!1:2 First non-ws character in document wasn't '<'"},
    {"\n\n x", "!3:3 First non-ws character in document wasn't '<'"},
    {"<?xml encoding='UTF-8'?>", "!1:15 First non-ws character in document wasn't '<'"},  // the version must be first
    {"<?xml vers", "!1:15 First non-ws character in document wasn't '<'"},
    {"<?xml version='1.0", "!1:23 Premature EOF"},  // runs into the root element
    {"<?pi ", "!1:10 Premature EOF"},
    {"<?", "!1:4 Illegal starting character for name: <"},
    {"<? xml?>", "!1:4 Illegal starting character for name:  "},
    {"<!doctype a>", "!1:10 Unknown prolog tag"},
    {"<![CDATA[x]]>", "!1:4 Illegal starting character for name: ["},
    {"<!-x-->", "!1:5 Syntax error on comment"},
    {"<!-- -- -->", "!1:9 Invalid -- inside comment"},
    {"<!DOCTYPE a SYSTEM 'a>b'>", "!1:24 First non-ws character in document wasn't '<'"},  // quotes are not special
    {"<!DOCTYPE a ]>", "!1:19 Premature EOF"},
    {"<!DOCTYPE a [>", "!1:19 Premature EOF"},
};

std::string describeProlog(Source source, const std::string& prolog) {
    const Document document(prolog + "<a/>");
    try {
        const auto reader = document.open(source);
        EXPECT_EQ(reader->getLastNodeType(), QeXmlReader::NoNode);
        std::ostringstream values;
        values << reader->getVersion() << '|' << reader->getEncoding() << (reader->hasEncoding() ? "+" : "") << '|'
               << reader->getStandalone() << (reader->hasStandalone() ? "+" : "");
        reader->readElementStart("a");  // it stands on the root element
        return values.str();
    } catch (const QeXmlParseError& error) {
        return describe(error);
    }
}

}  // namespace

TEST(XmlReader, ReadsTheProlog) {
    for (const auto& [prolog, values] : Prologs)
        for (const Source source : Sources) {
            SCOPED_TRACE(prolog);
            EXPECT_EQ(describeProlog(source, prolog), values);
        }
}

TEST(XmlReader, RefusesADocumentWithoutRootElement) {
    for (const char* xml : {"", "<", "<a", "<a>", "\xEF\xBB\xBF"})
        for (const Source source : Sources)
            EXPECT_EQ(trace(Document(xml), source), "!1:1 Premature EOF") << xml;
    EXPECT_EQ(trace("<?xml version='1.0'?>\n<!-- only -->\n"), "!3:1 Premature EOF");
    EXPECT_EQ(trace("<?xml vers"), "!1:7 Premature EOF");  // nothing of a word cut off is taken
    EXPECT_EQ(trace("<?xml version='1.0' encod"), "!1:22 Premature EOF");
    EXPECT_EQ(trace("<?xml version='1.0' standalon"), "!1:22 Premature EOF");
    for (const unsigned length : {0u, 4u, 1000u})  // a null buffer has no bytes, whatever is said
        EXPECT_THROW(QeXmlReader(nullptr, length), QeXmlParseError) << length;
}
