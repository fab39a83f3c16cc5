// Which declarations the writer adds, and where.

#include <gtest/gtest.h>
#include <string>
#include <support/documents.h>
#include <writer/logging_writer.h>
#include <writer/writing.h>

#include <tessit/reader/xml_reader.h>
#include <tessit/writer/xml_string_writer.h>

using tessit::test::withLongURIs;

namespace {

struct NamespaceCase {
    const char *reason, *calls, *output;
};

constexpr NamespaceCase Namespaces[] = {
    {"child in force, sibling declared again", "+{u}p:e /{u}p:f -{u}p:e /{u}p:g",
     "<p:e xmlns:p=\"u\"><p:f/></p:e><p:g xmlns:p=\"u\"/>"},
    {"default namespace, its child, and a child in another", "+{u}e +{u}f +{v}g /{u}h",
     "<e xmlns=\"u\"><f><g xmlns=\"v\"><h xmlns=\"u\"/>"},
    {"a URI bound as default only is declared for a prefix", "+{u}e /{u}p:f", "<e xmlns=\"u\"><p:f xmlns:p=\"u\"/>"},
    {"a prefix that is hidden counts as bound", "+{u}p:e +{v}p:f /{u}p:g",
     "<p:e xmlns:p=\"u\"><p:f xmlns:p=\"v\"><p:g/>"},
    {"the end of a default namespace is noticed when the writer is told", "+{u}e +f[xmlns=] /{u}g @= /{u}h",
     "<e xmlns=\"u\"><f xmlns=\"\"><g/><h xmlns=\"u\"/>"},
    {"a URI bound to a prefix is declared as default", "+{u}p:e /{u}f", "<p:e xmlns:p=\"u\"><f xmlns=\"u\"/>"},
    {"a URI bound to another prefix counts as declared", "+{u}p:e /{u}q:f", "<p:e xmlns:p=\"u\"><q:f/>"},
    {"a declaration in the set is written whatever is in force", "+{u}p:e /{u}q:f[xmlns:q=u]",
     "<p:e xmlns:p=\"u\"><q:f xmlns:q=\"u\"/>"},
    {"and is not written twice", "+{u}p:e[xmlns:p=u,xmlns:q=v] /{v}q:f", "<p:e xmlns:p=\"u\" xmlns:q=\"v\"><q:f/>"},
    {"a prefix bound anew within", "+{u}p:e /{v}p:f /{u}p:g", "<p:e xmlns:p=\"u\"><p:f xmlns:p=\"v\"/><p:g/>"},
    {"no namespace is not declared, even inside a default one", "+{u}e /f /p:g", "<e xmlns=\"u\"><f/><p:g/>"},
    {"the namespace of an attribute, in the order of local names", "/e[{u}m:a=1,{v}b:z=2,{u}m:y=3]",
     "<e m:a=\"1\" xmlns:b=\"v\" xmlns:m=\"u\" m:y=\"3\" b:z=\"2\"/>"},
    {"an attribute in a namespace is no declaration, whatever its name and value", "+{v}q:e /{u}p:f[{v}q:p=u]",
     "<q:e xmlns:q=\"v\"><p:f xmlns:p=\"u\" q:p=\"u\"/>"},
    {"two prefixes for one URI in a tag: the first one is declared", "/{u}p:e[{u}q:a=1]",
     "<p:e q:a=\"1\" xmlns:p=\"u\"/>"},
    {"one prefix for two URIs in a tag: the last one is declared", "/{u}p:e[{v}p:a=1]",
     "<p:e p:a=\"1\" xmlns:p=\"v\"/>"},
    {"an attribute without a prefix in a namespace declares the default", "/e[{u}a=1]", "<e xmlns=\"u\" a=\"1\"/>"},
    {"the default declaration of the set stands beside the writer's own", "/{u}e[xmlns=u] /f[xmlns=u]",
     "<e xmlns=\"u\" xmlns=\"u\"/><f xmlns=\"u\"/>"},
    {"an unqualified attribute binds its name to its value", "+e[target=u] /{u}p:f -e /{u}p:g",
     "<e target=\"u\"><p:f/></e><p:g xmlns:p=\"u\"/>"},
    {"but not when the value is bound already", "+e[a=v,b=v] +{w}b:f /{v}q:g",
     "<e a=\"v\" b=\"v\"><b:f xmlns:b=\"w\"><q:g/>"},
    {"an unqualified attribute gives way to a prefix of its name", "/e[p=1,{u}p:x=2]", "<e p=\"u\" p:x=\"2\"/>"},
    {"unless its own binding comes later", "/{u}p:e[p=1]", "<p:e p=\"1\"/>"},
    {"an unqualified attribute with an empty value binds nothing", "/{u}p:e[p=]", "<p:e p=\"u\"/>"},
    {"an unqualified attribute without a name binds the default", "+e[xmlns:=u] /{u}f", "<e xmlns=\"u\"><f/>"},
    {"bound before the first element: never declared", "@p=u @=v +{u}p:e -{u}p:e /{v}f", "<p:e></p:e><f/>"},
    {"bound in an element: until it ends", "+e @p=u /{u}p:f -e /{u}p:g", "<e><p:f/></e><p:g xmlns:p=\"u\"/>"},
    {"bound as default in between: no longer declared", "+{u}p:e +{u}p:f @=u /{u}p:g",
     "<p:e xmlns:p=\"u\"><p:f><p:g xmlns:p=\"u\"/>"},
    {"names of other namespaces, back and forth",
     "@p=u +{v}q:e /{u}p:f /{v}q:f /{u}o:f -{v}q:e /{v}q:e /{v}o:e /{u}p:e",
     "<q:e xmlns:q=\"v\"><p:f/><q:f/><o:f/></q:e><q:e xmlns:q=\"v\"/><o:e xmlns:o=\"v\"/><p:e/>"},
    {"more ends than starts: the document's bindings stay", "@p=u +e -e -e -e @q=v +{u}p:f /{v}q:g",
     "<e></e></e></e><p:f><q:g/>"},
};

void expectOutput(const std::string& calls, const std::string& output, const char* reason) {
    LoggingWriter writer;
    run(writer, calls);
    EXPECT_EQ(writer.output, output) << reason;
    QeXmlStringWriter inPlace;  // has no slots that are called
    run(inPlace, calls);
    EXPECT_EQ(inPlace.getString(), output) << reason;
}

// Long ones are known by where they stand.
TEST(XmlWriter, DeclaresNamespacesByTheseRules) {
    for (const auto& [reason, calls, output] : Namespaces) {
        expectOutput(calls, output, reason);
        expectOutput(withLongURIs(calls), withLongURIs(output), reason);
    }
}

// Where local names are equal, the reader puts attributes in the order of their prefixes, whatever their URIs.
TEST(XmlWriter, DeclaresWhatASetOfTheReaderNeeds) {
    for (const std::size_t length : {1u, 300u}) {
        const std::string high(length, 'z'), low(length, 'a');
        QeXmlReader reader(QeCString(std::string_view("<r xmlns:b='" + high + "' xmlns:c='" + low +
                                                      "' xmlns:d='d'><e b:x='1' c:x='2' d:b='3' y=''/></r>")));
        reader.readElementStart();
        LoggingWriter writer;
        writer.writeElementStart(QeXmlName("e"), reader.readElementStart("e"), true);
        EXPECT_EQ(writer.output, "<e xmlns:b=\"" + high + "\" d:b=\"3\" xmlns:c=\"" + low +
                                     "\" xmlns:d=\"d\" b:x=\"1\" c:x=\"2\" y=\"\"/>");
    }
}

QeCString numbered(const char* front, int number, const char* behind = "") {
    return QeCString(front) + std::to_string(number) + behind;
}

// Sets that were put out of order through pointers, or that hold a name twice.
TEST(XmlWriter, WritesSetsThatLostTheirOrder) {
    for (const int padding : {0, 20}) {
        QeXmlAttributeSet set = attributesOf("a=1,m=2,{u}p:n=3");
        QeCString tail;
        for (int i = 100; i < 100 + padding; ++i) {
            set.add(QeXmlName(numbered("x", i)), "");
            tail += numbered(" x", i, "=\"\"");
        }
        set.begin()->getName().setLocalName("z");
        LoggingWriter writer;
        writer.writeElementStart({"e"}, set, true);
        EXPECT_EQ(writer.output, "<e z=\"1\" m=\"2\" p:n=\"3\" xmlns:p=\"u\"" + tail + "/>");
        EXPECT_EQ(set.size(), 3u + static_cast<unsigned>(padding)) << "the caller's set stays as it was";

        set.begin()->getName().setLocalName("m");  // twice: with its last value
        writer.output.clear();
        writer.writeElementStart({"e"}, set, false);
        writer.writeElementStart({"f", {"m", "v"}}, set, true);  // the first one stands for both
        EXPECT_EQ(writer.output, "<e m=\"2\" m=\"2\" p:n=\"3\" xmlns:p=\"u\"" + tail + ">" +  //
                                     "<m:f m=\"v\" m=\"2\" p:n=\"3\"" + tail + "/>");

        set.remove(nameOf("{u}p:n"));  // so that nothing is to be declared
        LoggingWriter another;
        another.writeElementStart({"e"}, set, true);
        EXPECT_EQ(another.output, "<e m=\"2\" m=\"2\"" + tail + "/>");
    }
}

}  // namespace
