// The index of a namespace stack that holds many bindings. That it finds what a search through the scopes finds is
// tested with the stack itself.

#include <cstdint>
#include <gtest/gtest.h>
#include <set>
#include <string>

#include <corvel/keyed_hash.h>
#include <tessit/model/xml_namespace_stack.h>
#include <tessit/reader/xml_reader.h>

namespace {

QeCString text(const char* front, unsigned number) {
    return QeCString(front) + std::to_string(number);
}

TEST(NamespaceIndex, SurvivesMovesAndManyBindings) {
    QeXmlNamespaceStack stack;
    for (unsigned i = 0; i < 1000; ++i) {
        if (i % 3 == 0) stack.pushScope();
        stack.addNamespace({text("p", i), text("u", i)});
    }
    QeXmlNamespaceStack moved(std::move(stack));
    QeXmlNamespaceStack assigned;
    assigned = std::move(moved);
    for (unsigned i = 0; i < 1000; ++i)
        EXPECT_EQ(assigned.getURIForPrefix(text("p", i)), text("u", i));
    for (unsigned i = 0; i < 330; ++i)
        assigned.popScope();
    EXPECT_EQ(assigned.getURIForPrefix("p11"), "u11");
    EXPECT_EQ(assigned.getPrefixForURI("u12"), "");
    moved.addNamespace({"p", "u"});  // a stack that was moved from is empty and can be used
    EXPECT_EQ(moved.getURIForPrefix("p"), "u");
    EXPECT_EQ(moved.getURIForPrefix("p1"), "");
}

// A name given as a string is resolved without the declarations of the tag in front.
TEST(NamespaceIndex, CanLookPastTheInnermostScope) {
    QeCString document("<root xmlns:p='outer'");
    for (unsigned i = 0; i < 30; ++i)
        document += text(" xmlns:p", i) + "='u'";
    document += "><p:child xmlns:p='inner'></p:child></root>";
    QeXmlReader reader(document);
    reader.readElementStart("root");
    EXPECT_FALSE(reader.isElementNext("p:child"));
    EXPECT_TRUE(reader.isElementNext(QeXmlName("child", QeXmlNamespace("", "inner"))));
}

// A key differs from every other one of its length, and from itself with zeros behind it, under any secret.
TEST(NamespaceIndex, HashesEveryByteAndTheLength) {
    std::set<std::uint64_t> hashes;
    for (const tessit::HashSecret& secret :
         {tessit::HashSecret{1, 2}, tessit::HashSecret{1, 3}, tessit::HashSecret{2, 2}})
        for (std::size_t length = 0; length < 40; ++length) {
            const std::string zeros(length, '\0');
            EXPECT_TRUE(hashes.insert(tessit::keyedHash(zeros, secret)).second) << length;
            for (std::size_t i = 0; i < length; ++i) {
                std::string key = zeros;
                key[i] = '\x80';
                EXPECT_TRUE(hashes.insert(tessit::keyedHash(key, secret)).second) << length << ", " << i;
            }
        }
}

}  // namespace
