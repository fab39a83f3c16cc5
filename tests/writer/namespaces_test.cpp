// Which declarations the writer adds, and where.

#include <gtest/gtest.h>
#include <string>
#include <writer/logging_writer.h>
#include <writer/writing.h>

#include <tessit/writer/xml_writer.h>

namespace {

struct NamespaceCase {
    const char* reason;
    void (*write)(QeXmlWriter&);
    const char* output;
};

const NamespaceCase Namespaces[] = {
    {"child in force, sibling declared again",
     [](QeXmlWriter& w) {
         start(w, {"e", NsU});
         empty(w, {"f", NsU});
         w.writeElementEnd({"e", NsU});
         empty(w, {"g", NsU});
     },
     "<p:e xmlns:p=\"u\"><p:f/></p:e><p:g xmlns:p=\"u\"/>"},
    {"an empty element closes its scope",
     [](QeXmlWriter& w) {
         empty(w, {"e", NsU});
         empty(w, {"f", NsU});
     },
     "<p:e xmlns:p=\"u\"/><p:f xmlns:p=\"u\"/>"},
    {"default namespace, its child, and a child in another",
     [](QeXmlWriter& w) {
         start(w, {"e", DefaultU});
         start(w, {"f", DefaultU});
         start(w, {"g", {"", "v"}});
         empty(w, {"h", DefaultU});
     },
     "<e xmlns=\"u\"><f><g xmlns=\"v\"><h xmlns=\"u\"/>"},
    {"a URI bound as default only is declared for a prefix",
     [](QeXmlWriter& w) {
         start(w, {"e", DefaultU});
         empty(w, {"f", NsU});
     },
     "<e xmlns=\"u\"><p:f xmlns:p=\"u\"/>"},
    {"also where a prefix is bound to it further out",
     [](QeXmlWriter& w) {
         start(w, {"e", NsU});
         start(w, {"f", DefaultU});
         empty(w, {"g", NsU});
     },
     "<p:e xmlns:p=\"u\"><f xmlns=\"u\"><p:g xmlns:p=\"u\"/>"},
    {"a prefix that is hidden counts as bound",
     [](QeXmlWriter& w) {
         start(w, {"e", NsU});
         start(w, {"f", {"p", "v"}});
         empty(w, {"g", NsU});
     },
     "<p:e xmlns:p=\"u\"><p:f xmlns:p=\"v\"><p:g/>"},
    {"the end of a default namespace is noticed when the writer is told",
     [](QeXmlWriter& w) {
         QeXmlAttributeSet set;
         set.unsetDefaultNamespaceAttribute();
         start(w, {"e", DefaultU});
         start(w, {"f"}, set);
         empty(w, {"g", DefaultU});
         w.addNamespace(QeXmlNamespace::getEmptyNamespace());
         empty(w, {"h", DefaultU});
     },
     "<e xmlns=\"u\"><f xmlns=\"\"><g/><h xmlns=\"u\"/>"},
    {"a URI bound to a prefix is declared as default",
     [](QeXmlWriter& w) {
         start(w, {"e", NsU});
         empty(w, {"f", DefaultU});
     },
     "<p:e xmlns:p=\"u\"><f xmlns=\"u\"/>"},
    {"a URI bound to another prefix counts as declared",
     [](QeXmlWriter& w) {
         start(w, {"e", NsU});
         empty(w, {"f", {"q", "u"}});
     },
     "<p:e xmlns:p=\"u\"><q:f/>"},
    {"a declaration in the set is written whatever is in force",
     [](QeXmlWriter& w) {
         start(w, {"e", NsU});
         empty(w, {"f", {"q", "u"}}, declaring({{"q", "u"}}));
     },
     "<p:e xmlns:p=\"u\"><q:f xmlns:q=\"u\"/>"},
    {"and is not written twice",
     [](QeXmlWriter& w) {
         start(w, {"e", NsU}, declaring({NsU, {"q", "v"}}));
         empty(w, {"f", {"q", "v"}});
     },
     "<p:e xmlns:p=\"u\" xmlns:q=\"v\"><q:f/>"},
    {"a prefix bound anew within",
     [](QeXmlWriter& w) {
         start(w, {"e", NsU});
         empty(w, {"f", {"p", "v"}});
         empty(w, {"g", NsU});
     },
     "<p:e xmlns:p=\"u\"><p:f xmlns:p=\"v\"/><p:g/>"},
    {"no namespace is not declared, even inside a default one",
     [](QeXmlWriter& w) {
         start(w, {"e", DefaultU});
         empty(w, {"f"});
         empty(w, {"g", {"p", ""}});
     },
     "<e xmlns=\"u\"><f/><p:g/>"},
    {"the namespace of an attribute, in the order of local names",
     [](QeXmlWriter& w) {
         empty(w, {"e"}, attributes({{"a", "1", {"m", "u"}}, {"z", "2", {"b", "v"}}, {"y", "3", {"m", "u"}}}));
     },
     "<e m:a=\"1\" xmlns:b=\"v\" xmlns:m=\"u\" m:y=\"3\" b:z=\"2\"/>"},
    {"an attribute in a namespace is no declaration, whatever its name and value",
     [](QeXmlWriter& w) {
         empty(w, {"e", NsU}, attributes({{"p", "u", {"q", "v"}}}));
     },
     "<p:e xmlns:p=\"u\" q:p=\"u\" xmlns:q=\"v\"/>"},
    {"two prefixes for one URI in a tag: the first one is declared",
     [](QeXmlWriter& w) {
         empty(w, {"e", NsU}, attributes({{"a", "1", {"q", "u"}}}));
     },
     "<p:e q:a=\"1\" xmlns:p=\"u\"/>"},
    {"one prefix for two URIs in a tag: the last one is declared",
     [](QeXmlWriter& w) {
         empty(w, {"e", NsU}, attributes({{"a", "1", {"p", "v"}}}));
     },
     "<p:e p:a=\"1\" xmlns:p=\"v\"/>"},
    {"an attribute without a prefix in a namespace declares the default",
     [](QeXmlWriter& w) {
         empty(w, {"e"}, attributes({{"a", "1", DefaultU}}));
     },
     "<e xmlns=\"u\" a=\"1\"/>"},
    {"the default declaration of the set stands beside the writer's own",
     [](QeXmlWriter& w) {
         QeXmlAttributeSet set;
         set.setDefaultNamespaceAttribute("u");
         empty(w, {"e", DefaultU}, set);
         empty(w, {"f"}, set);
     },
     "<e xmlns=\"u\" xmlns=\"u\"/><f xmlns=\"u\"/>"},
    {"a plain attribute binds its name to its value",
     [](QeXmlWriter& w) {
         start(w, {"e"}, attributes({{"target", "u", {}}}));
         empty(w, {"f", NsU});
         w.writeElementEnd({"e"});
         empty(w, {"g", NsU});
     },
     "<e target=\"u\"><p:f/></e><p:g xmlns:p=\"u\"/>"},
    {"but not when the value is bound already",
     [](QeXmlWriter& w) {
         start(w, {"e"}, attributes({{"a", "v", {}}, {"b", "v", {}}}));
         start(w, {"f", {"b", "w"}});
         empty(w, {"g", {"q", "v"}});
     },
     "<e a=\"v\" b=\"v\"><b:f xmlns:b=\"w\"><q:g/>"},
    {"a plain attribute gives way to a prefix of its name",
     [](QeXmlWriter& w) {
         empty(w, {"e"}, attributes({{"p", "1", {}}, {"x", "2", NsU}}));
     },
     "<e p=\"u\" p:x=\"2\"/>"},
    {"unless its own binding comes later",
     [](QeXmlWriter& w) {
         empty(w, {"e", NsU}, attributes({{"p", "1", {}}}));
     },
     "<p:e p=\"1\"/>"},
    {"a plain attribute with an empty value binds nothing",
     [](QeXmlWriter& w) {
         empty(w, {"e", NsU}, attributes({{"p", "", {}}}));
     },
     "<p:e p=\"u\"/>"},
    {"a plain attribute without a name binds the default",
     [](QeXmlWriter& w) {
         start(w, {"e"}, declaring({DefaultU}));
         empty(w, {"f", DefaultU});
     },
     "<e xmlns=\"u\"><f/>"},
    {"bound before the first element: never declared",
     [](QeXmlWriter& w) {
         w.addNamespace(NsU);
         w.addNamespace({"", "v"});
         start(w, {"e", NsU});
         w.writeElementEnd({"e", NsU});
         empty(w, {"f", {"", "v"}});
     },
     "<p:e></p:e><f/>"},
    {"bound in an element: until it ends",
     [](QeXmlWriter& w) {
         start(w, {"e"});
         w.addNamespace(NsU);
         empty(w, {"f", NsU});
         w.writeElementEnd({"e"});
         empty(w, {"g", NsU});
     },
     "<e><p:f/></e><p:g xmlns:p=\"u\"/>"},
    {"more ends than starts: the document's bindings stay",
     [](QeXmlWriter& w) {
         w.addNamespace(NsU);
         start(w, {"e"});
         for (int i = 0; i < 3; ++i)
             w.writeElementEnd({"e"});
         w.addNamespace({"q", "v"});
         start(w, {"f", NsU});
         empty(w, {"g", {"q", "v"}});
     },
     "<e></e></e></e><p:f><q:g/>"},
};

TEST(XmlWriter, DeclaresNamespacesByTheseRules) {
    for (const auto& [reason, write, output] : Namespaces) {
        SCOPED_TRACE(reason);
        LoggingWriter writer;
        write(writer);
        EXPECT_EQ(writer.output, output);
    }
}

// Sets that were put out of order through pointers, or that hold a name twice.
TEST(XmlWriter, WritesSetsThatLostTheirOrder) {
    for (const int padding : {0, 20}) {
        QeXmlAttributeSet set = attributes({{"a", "1", {}}, {"m", "2", {}}, {"n", "3", {"p", "u"}}});
        for (int i = 0; i < padding; ++i)
            set.add(QeXmlName(QeCString("x") + std::to_string(100 + i)), "");
        set.begin()->getName().setLocalName("z");
        QeCString tail;
        for (int i = 0; i < padding; ++i)
            tail += QeCString(" x") + std::to_string(100 + i) + "=\"\"";

        LoggingWriter writer;
        empty(writer, {"e"}, set);
        EXPECT_EQ(writer.output, "<e z=\"1\" m=\"2\" p:n=\"3\" xmlns:p=\"u\"" + tail + "/>");
        EXPECT_EQ(set.size(), 3u + static_cast<unsigned>(padding)) << "the caller's set stays as it was";

        set.begin()->getName().setLocalName("m");  // twice: the first one stands for both
        writer.output.clear();
        start(writer, {"e"}, set);
        empty(writer, {"f", {"m", "v"}}, set);
        EXPECT_EQ(writer.output, "<e m=\"2\" m=\"2\" p:n=\"3\" xmlns:p=\"u\"" + tail + ">" +  //
                                     "<m:f m=\"v\" m=\"2\" p:n=\"3\"" + tail + "/>");
    }
}

TEST(XmlWriter, WritesANameThatIsThereTwiceWithItsLastValue) {
    QeXmlAttributeSet set = attributes({{"a", "1", {}}, {"m", "2", {}}});
    set.begin()->getName().setLocalName("m");
    LoggingWriter writer;
    empty(writer, {"e"}, set);
    EXPECT_EQ(writer.output, "<e m=\"2\" m=\"2\"/>");
}

TEST(XmlWriter, FindsDeclarationsInLargeSets) {
    QeXmlAttributeSet set;
    QeCString expected = "<p7:e";
    for (int i = 0; i < 40; ++i)
        set.addNamespaceAttribute({QeCString("p") + std::to_string(10 + i), QeCString("u") + std::to_string(i)});
    for (int i = 0; i < 40; ++i)
        expected += QeCString(" xmlns:p") + std::to_string(10 + i) + "=\"u" + std::to_string(i) + "\"";
    LoggingWriter writer;
    empty(writer, {"e", {"p7", "w"}}, set);
    EXPECT_EQ(writer.output, expected + " xmlns:p7=\"w\"/>");
}

}  // namespace
