#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include <tessit/model/xml_name.h>
#include <tessit/model/xml_namespace.h>
#include <tessit/model/xml_prolog.h>

namespace {

constexpr char Xsi[] = "http://www.w3.org/2001/XMLSchema-instance";
constexpr char Xsd[] = "http://www.w3.org/2001/XMLSchema";

TEST(XmlNamespace, IsRecognisedByURI) {
    constexpr struct {
        const char* uri;
        const char* matches;
    } Rows[] = {
        {"", "xmlns"},
        {Xsi, "xsi"},
        {"http://www.w3.org/1999/XMLSchema-instance", "xsi"},
        {Xsd, "xsd"},
        {"http://www.w3.org/1999/XMLSchema", "xsd"},
        {"http://www.w3.org/2000/xmlns/", ""},
    };
    for (const auto& [uri, matches] : Rows) {
        const QeXmlNamespace ns("p", uri);
        const std::string found = std::string(QeXmlNamespace::matchXmlns(ns) ? "xmlns" : "") +
                                  (QeXmlNamespace::matchXsi(ns) ? "xsi" : "") +
                                  (QeXmlNamespace::matchXsd(ns) ? "xsd" : "");
        EXPECT_EQ(found, matches) << uri;
    }
    EXPECT_EQ(QeXmlNamespace::getXmlns().infoString(), "\"xmlns\"-->\"\"");
    EXPECT_EQ(QeXmlNamespace::getXsi().infoString(), "\"xsi\"-->\"" + std::string(Xsi) + '"');
    EXPECT_EQ(QeXmlNamespace::getXsd().infoString(), "\"xsd\"-->\"" + std::string(Xsd) + '"');
    QeXmlNamespace::getXsi().setURI("changed");  // what the well-known ones hold now counts
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
    for (const auto& [local, prefix, uri, qualified, unique] : Rows) {
        const QeXmlName name(local, QeXmlNamespace(prefix, uri));
        EXPECT_EQ(name.getQualifiedName(), qualified);
        EXPECT_EQ(name.getUniqueName(), unique);
    }
}

// Copies share it: the last one of all threads' releases it, and none before.
TEST(XmlName, IsCopiedByManyThreadsWithItsLongUri) {
    const std::string half(150, 'u');
    const auto named = [](const std::string& uri) {
        return QeXmlName("n", QeXmlNamespace("p", QeCString(std::string_view(uri))));
    };
    const QeXmlName name = named(half + "1" + half), unlike = named(half + "2" + half);
    const auto copyOften = [&] {
        for (int i = 0; i < 20'000; ++i) {
            QeXmlName copy = name;
            QeXmlName other = copy;
            ASSERT_TRUE(other == name && other != QeXmlName(unlike));
            other.getNamespace().setURI("v");
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(copyOften);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(name, named(half + "1" + half));
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
    for (const auto& [setLeft, leftText] : Rows)
        for (const auto& [setRight, rightText] : Rows) {
            SCOPED_TRACE(testing::Message() << leftText << " and " << rightText);
            QeXmlProlog prolog, other;
            setLeft(prolog);
            setRight(other);
            EXPECT_EQ(prolog.asString(), leftText);
            EXPECT_EQ(::operator==(prolog, other), &leftText == &rightText);
            EXPECT_EQ(::operator!=(prolog, other), &leftText != &rightText);
            setRight(prolog);
            prolog.removeStandalone();
            prolog.removeCharacterEncoding();
            prolog.setVersion("1.0");
            EXPECT_EQ(prolog, QeXmlProlog());
        }
}

}  // namespace
