#include <gtest/gtest.h>

#include <tessit/model/xml_name.h>
#include <tessit/model/xml_namespace.h>
#include <tessit/model/xml_prolog.h>

namespace {

constexpr char Xsi[] = "http://www.w3.org/2001/XMLSchema-instance";
constexpr char Xsd[] = "http://www.w3.org/2001/XMLSchema";

TEST(XmlNamespace, IsRecognisedByURI) {
    constexpr struct {
        const char* uri;
        bool xmlns, xsi, xsd;
    } Rows[] = {
        {"", true, false, false},
        {Xsi, false, true, false},
        {"http://www.w3.org/1999/XMLSchema-instance", false, true, false},
        {Xsd, false, false, true},
        {"http://www.w3.org/1999/XMLSchema", false, false, true},
        {"http://www.w3.org/2000/xmlns/", false, false, false},
    };
    for (const auto& row : Rows) {
        const QeXmlNamespace ns("p", row.uri);
        EXPECT_EQ(QeXmlNamespace::matchXmlns(ns), row.xmlns) << row.uri;
        EXPECT_EQ(QeXmlNamespace::matchXsi(ns), row.xsi) << row.uri;
        EXPECT_EQ(QeXmlNamespace::matchXsd(ns), row.xsd) << row.uri;
    }
    EXPECT_EQ(QeXmlNamespace::getXmlns().infoString(), "\"xmlns\"-->\"\"");
    EXPECT_EQ(QeXmlNamespace::getXsi().infoString(), QeXmlNamespace("xsi", Xsi).infoString());
    EXPECT_EQ(QeXmlNamespace::getXsd().infoString(), QeXmlNamespace("xsd", Xsd).infoString());
}

TEST(XmlNamespace, MatchesWhatTheWellKnownOnesHoldNow) {
    QeXmlNamespace::getXsi().setURI("changed");
    EXPECT_TRUE(QeXmlNamespace::matchXsi(QeXmlNamespace("p", "changed")));
    EXPECT_FALSE(QeXmlNamespace::matchXsi(QeXmlNamespace("p", Xsi)));
    QeXmlNamespace::getXsi().setURI(Xsi);
}

TEST(XmlName, WritesItsNamespaceInFront) {
    constexpr struct {
        const char *local, *prefix, *uri, *qualified, *unique;
    } Rows[] = {
        {"item", "a", "u", "a:item", "u::item"},
        {"item", "", "u", "item", "u::item"},  // a default namespace
        {"item", "a", "", "a:item", "item"},   // a prefix that nothing is bound to
        {"p:x", "", "", "p:x", "p:x"},         // never split
    };
    for (const auto& row : Rows) {
        QeXmlName name(row.local, QeXmlNamespace(row.prefix, row.uri));
        EXPECT_EQ(name.getQualifiedName(), row.qualified);
        EXPECT_EQ(name.getUniqueName(), row.unique);
        name.unsetNamespace();
        EXPECT_EQ(name.getUniqueName(), row.local);
        EXPECT_EQ(name.asString(), row.local);
    }
}

TEST(XmlProlog, PrintsWhatIsSet) {
    constexpr struct {
        void (*set)(QeXmlProlog&);
        const char* text;
    } Rows[] = {
        {[](QeXmlProlog&) {}, R"(<?xml version="1.0"?>)"},
        {[](QeXmlProlog& prolog) { prolog.setVersion("1\"&"); }, R"(<?xml version="1"&"?>)"},
        {[](QeXmlProlog& prolog) { prolog.setStandalone(false); }, R"(<?xml version="1.0" standalone="no"?>)"},
        {[](QeXmlProlog& prolog) { prolog.setStandalone(true); }, R"(<?xml version="1.0" standalone="yes"?>)"},
        {[](QeXmlProlog& prolog) { prolog.setCharacterEncoding(""); }, R"(<?xml version="1.0" encoding=""?>)"},
        {[](QeXmlProlog& prolog) { prolog.setCharacterEncoding("X"); }, R"(<?xml version="1.0" encoding="X"?>)"},
    };
    for (const auto& left : Rows)
        for (const auto& right : Rows) {
            QeXmlProlog prolog, other;
            left.set(prolog);
            right.set(other);
            EXPECT_EQ(prolog.asString(), left.text);
            EXPECT_EQ(::operator==(prolog, other), &left == &right) << left.text << right.text;
            EXPECT_EQ(::operator!=(prolog, other), &left != &right) << left.text << right.text;
            right.set(prolog);
            prolog.removeStandalone();
            prolog.removeCharacterEncoding();
            prolog.setVersion("1.0");
            EXPECT_EQ(prolog, QeXmlProlog()) << left.text << right.text;
        }
}

}  // namespace
