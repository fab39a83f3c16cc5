// What lookups find, whatever the number of bindings, is held against a model by the stack's fuzz target.

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

// It stays as its scope does, whatever comes and goes inside.
TEST(XmlNamespaceStack, LeavesABindingWhereItIs) {
    QeXmlNamespaceStack stack;
    stack.addNamespace(QeXmlNamespace("p", "u"));
    const QeCString& uri = stack.getURIForPrefix("p");
    for (unsigned i = 0; i < 1000; ++i) {
        stack.pushScope();
        stack.addNamespace(QeXmlNamespace(text("p", i), text("u", i)));
    }
    EXPECT_EQ(&stack.getURIForPrefix("p"), &uri);
    for (unsigned i = 0; i < 1000; ++i)
        stack.popScope();
    EXPECT_EQ(&stack.getURIForPrefix("p"), &uri);
    EXPECT_EQ(uri, "u");
}

// A name given as a string is resolved without the declarations of the tag in front.
TEST(XmlNamespaceStack, CanLookPastTheInnermostOfManyBindings) {
    QeCString document("<root xmlns:p='outer'");
    for (unsigned i = 0; i < 30; ++i)
        document += text(" xmlns:p", i) + "='u'";
    QeXmlReader reader(document + "><p:child xmlns:p='inner'></p:child></root>");
    reader.readElementStart("root");
    EXPECT_FALSE(reader.isElementNext("p:child"));
    EXPECT_TRUE(reader.isElementNext(QeXmlName("child", QeXmlNamespace("", "inner"))));
}

// A key differs from every other one of its length, and from itself with zeros behind it, under any secret.
TEST(KeyedHash, DependsOnEveryByteAndTheLength) {
    std::set<std::uint64_t> hashes;
    using corvel::HashSecret;
    for (const HashSecret& secret : {HashSecret{1, 2}, HashSecret{1, 3}, HashSecret{2, 2}})
        for (std::size_t length = 0; length < 40; ++length) {
            std::string key(length, '\0');
            EXPECT_TRUE(hashes.insert(corvel::keyedHash(key, secret)).second) << length;
            for (std::size_t i = 0; i < length; ++i) {
                key = std::string(length, '\0');
                key[i] = '\x80';
                EXPECT_TRUE(hashes.insert(corvel::keyedHash(key, secret)).second) << length << ", " << i;
            }
        }
}

}  // namespace
