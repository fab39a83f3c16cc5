
#include <gtest/gtest.h>

#include <tessit/model/xml_name.h>
#include <tessit/model/xml_namespace.h>
#include <tessit/model/xml_prolog.h>

namespace {

constexpr char Xsi2001[] = "http://www.w3.org/2001/XMLSchema-instance";
constexpr char Xsi1999[] = "http://www.w3.org/1999/XMLSchema-instance";
constexpr char Xsd2001[] = "http://www.w3.org/2001/XMLSchema";
constexpr char Xsd1999[] = "http://www.w3.org/1999/XMLSchema";

int sign(int number) {
    return (number > 0) - (number < 0);
}

TEST(XmlNamespace, IsItsURI) {
    constexpr struct {
        const char *left, *right;
        int expected;
    } Rows[] = {{"u", "u", 0}, {"", "u", -1}, {"ab", "abc", -1}, {"b", "abc", 1}, {"\xC3", "z", 1}};
    for (const auto& [left, right, expected] : Rows) {
        const QeXmlNamespace one("a", left), other("b", right);
        EXPECT_EQ(one.compareTo(other), expected) << left << " and " << right;
        EXPECT_EQ(other.compareTo(one), -expected) << left << " and " << right;
    }
    EXPECT_EQ(QeXmlNamespace("xsd", "u").infoString(), "\"xsd\"-->\"u\"");
    EXPECT_EQ(QeXmlNamespace().infoString(), "\"\"-->\"\"");
}

TEST(XmlNamespace, RecognisesTheWellKnownOnesByURI) {
    constexpr struct {
        const char* uri;
        bool xmlns, xsi, xsd;
    } Rows[] = {
        {"", true, false, false},      {Xsi2001, false, true, false},
        {Xsi1999, false, true, false}, {Xsd2001, false, false, true},
        {Xsd1999, false, false, true}, {"http://www.w3.org/2000/xmlns/", false, false, false},
    };
    for (const auto& row : Rows) {
        const QeXmlNamespace ns("p", row.uri);
        EXPECT_EQ(QeXmlNamespace::matchXmlns(ns), row.xmlns) << row.uri;
        EXPECT_EQ(QeXmlNamespace::matchXsi(ns), row.xsi) << row.uri;
        EXPECT_EQ(QeXmlNamespace::matchXsd(ns), row.xsd) << row.uri;
    }
    EXPECT_EQ(QeXmlNamespace::getXmlns().infoString(), "\"xmlns\"-->\"\"");
    EXPECT_EQ(QeXmlNamespace::getXsi().infoString(), QeXmlNamespace("xsi", Xsi2001).infoString());
    EXPECT_EQ(QeXmlNamespace::getXsd().infoString(), QeXmlNamespace("xsd", Xsd2001).infoString());
}

// The accessor gives one object, which applications may change.
template <typename Get, typename Match>
void expectFollowsChanges(Get get, Match match, const char* workingDraft) {
    const QeXmlNamespace before = get(), usual("p", before.getURI());
    get().setURI("changed");
    EXPECT_TRUE(match(QeXmlNamespace("p", "changed")) && match(QeXmlNamespace("p", workingDraft)));
    EXPECT_FALSE(match(usual));
    get() = before;
    EXPECT_TRUE(match(usual));
}

TEST(XmlNamespace, MatchesWhatTheWellKnownOnesHoldNow) {
    expectFollowsChanges(QeXmlNamespace::getXsi, QeXmlNamespace::matchXsi, Xsi1999);
    expectFollowsChanges(QeXmlNamespace::getXsd, QeXmlNamespace::matchXsd, Xsd1999);
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
        EXPECT_EQ(name.asString(), row.qualified);
        EXPECT_EQ(name.getUniqueName(), row.unique);
        name.unsetNamespace();
        EXPECT_EQ(name.getNamespace().infoString(), QeXmlNamespace().infoString());
        EXPECT_EQ(name.getUniqueName(), row.local);
    }
}

TEST(XmlName, OrdersByLocalNameThenURI) {
    const QeXmlName Ascending[] = {QeXmlName("a", QeXmlNamespace("z", "z")), QeXmlName("ab"),
                                   QeXmlName("ab", QeXmlNamespace("", "u")), QeXmlName("b"), QeXmlName("\xC3")};
    for (const QeXmlName& left : Ascending)
        for (const QeXmlName& right : Ascending) {
            SCOPED_TRACE((left.getUniqueName() + " and " + right.getUniqueName()).data());
            EXPECT_EQ(sign(left.compareTo(right)), (&left > &right) - (&left < &right));
            EXPECT_EQ(left == right, &left == &right);
            EXPECT_EQ(left != right, &left != &right);
            EXPECT_EQ(left < right, &left < &right);
        }
    EXPECT_TRUE(QeXmlName("a", QeXmlNamespace("p", "u")) == QeXmlName("a", QeXmlNamespace("q", "u")));
}

TEST(XmlProlog, PrintsWhatIsSet) {
    using Set = void (*)(QeXmlProlog&);
    constexpr struct {
        Set set;
        const char* text;
    } Rows[] = {
        {[](QeXmlProlog&) {}, "<?xml version=\"1.0\"?>"},
        {[](QeXmlProlog& prolog) { prolog.setVersion("1\"&"); }, "<?xml version=\"1\"&\"?>"},
        {[](QeXmlProlog& prolog) { prolog.setStandalone(false); }, "<?xml version=\"1.0\" standalone=\"no\"?>"},
        {[](QeXmlProlog& prolog) { prolog.setStandalone(true); }, "<?xml version=\"1.0\" standalone=\"yes\"?>"},
        {[](QeXmlProlog& prolog) { prolog.setCharacterEncoding(""); }, "<?xml version=\"1.0\" encoding=\"\"?>"},
        {[](QeXmlProlog& prolog) {
             prolog.setStandalone(true);
             prolog.setCharacterEncoding("UTF-8");
         },
         "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"},
    };
    for (const auto& left : Rows) {
        QeXmlProlog prolog;
        left.set(prolog);
        EXPECT_EQ(prolog.asString(), left.text);
        for (const auto& right : Rows) {
            QeXmlProlog other;
            right.set(other);
            EXPECT_EQ(::operator==(prolog, other), &left == &right) << left.text << right.text;
            EXPECT_EQ(::operator!=(prolog, other), &left != &right) << left.text << right.text;
        }
        prolog.removeStandalone();
        prolog.removeCharacterEncoding();
        prolog.setVersion("1.0");
        EXPECT_EQ(prolog, QeXmlProlog());
        EXPECT_FALSE(prolog.getStandalone());
        EXPECT_EQ(prolog.getCharacterEncoding(), "");
    }
}

}  // namespace
