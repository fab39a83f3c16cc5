// The index of a namespace stack that holds many bindings gives what a search through its scopes gives.

#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <corvel/keyed_hash.h>
#include <tessit/model/xml_namespace_stack.h>
#include <tessit/reader/xml_reader.h>

namespace {

QeCString text(const char* front, unsigned number) {
    return QeCString(front) + std::to_string(number);
}

// Searches as the stack is described: scopes from the innermost, bindings in the order of adding.
struct PlainStack {
    std::vector<std::vector<QeXmlNamespace>> scopes;

    template <typename Key, typename Result>
    QeCString find(Key key, Result result, const QeCString& wanted) const {
        for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope)
            for (const QeXmlNamespace& ns : *scope)
                if ((ns.*key)() == wanted) return (ns.*result)();
        return "";
    }
};

void expectSameLookups(const QeXmlNamespaceStack& stack, const PlainStack& plain, unsigned names) {
    for (unsigned i = 0; i < names; ++i) {
        EXPECT_EQ(stack.getURIForPrefix(text("p", i)),
                  plain.find(&QeXmlNamespace::getPrefix, &QeXmlNamespace::getURI, text("p", i)));
        EXPECT_EQ(stack.getPrefixForURI(text("u", i)),
                  plain.find(&QeXmlNamespace::getURI, &QeXmlNamespace::getPrefix, text("u", i)));
    }
}

TEST(NamespaceIndex, AgreesWithASearchThroughTheScopes) {
    constexpr unsigned Names = 12;  // few, so that scopes hold and hide the same ones
    std::mt19937 generator(7);
    const auto random = [&] { return static_cast<unsigned>(generator()); };
    QeXmlNamespaceStack stack;
    PlainStack plain;
    for (int step = 0; step < 3000; ++step) {
        const bool grows = step % 600 < 400;  // to some hundred bindings, and back below the threshold
        const unsigned choice = random() % 10;
        if (choice < 2) {
            stack.pushScope();
            plain.scopes.emplace_back();
        } else if (choice < (grows ? 8u : 4u) && !plain.scopes.empty()) {
            const QeXmlNamespace ns(text("p", random() % Names), text("u", random() % Names));
            stack.addNamespace(ns);
            plain.scopes.back().push_back(ns);
        } else {
            stack.popScope();
            if (!plain.scopes.empty()) plain.scopes.pop_back();
        }
        if (step % 7 == 0) expectSameLookups(stack, plain, Names);
        if (step % 500 == 0) expectSameLookups(QeXmlNamespaceStack(stack), plain, Names);
        if (testing::Test::HasFailure()) FAIL() << "step " << step;
    }
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
