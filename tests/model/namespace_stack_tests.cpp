#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <tessit/model/xml_namespace_stack.h>

namespace {

// The documented order of lookups, on plain vectors.
struct Model {
    std::vector<std::vector<QeXmlNamespace>> scopes;

    void add(const QeXmlNamespace& ns) {
        if (scopes.empty()) scopes.emplace_back();
        scopes.back().push_back(ns);
    }
    template <typename Matches>
    const QeXmlNamespace* find(const Matches& matches) const {
        for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope)
            for (const QeXmlNamespace& ns : *scope)
                if (matches(ns)) return &ns;
        return nullptr;
    }
    QeCString getURIForPrefix(const QeCString& prefix) const {
        const QeXmlNamespace* found = find([&](const QeXmlNamespace& ns) { return ns.getPrefix() == prefix; });
        return found == nullptr ? QeCString() : found->getURI();
    }
    QeCString getPrefixForURI(const QeCString& uri) const {
        const QeXmlNamespace* found = find([&](const QeXmlNamespace& ns) { return ns.getURI() == uri; });
        return found == nullptr ? QeCString() : found->getPrefix();
    }
};

// Few enough to meet again in a scope and across scopes; the first is empty, the later ones take a block.
QeCString text(const char* start, int number) {
    return number == 0 ? QeCString()
                       : QeCString((start + std::string(static_cast<std::size_t>(number), '.') + "/").c_str());
}
constexpr int Texts = 40;

void expectSame(const QeXmlNamespaceStack& stack, const Model& model) {
    for (int i = 0; i <= Texts; ++i) {
        ASSERT_EQ(stack.getURIForPrefix(text("p", i)), model.getURIForPrefix(text("p", i))) << i;
        ASSERT_EQ(stack.getPrefixForURI(text("u", i)), model.getPrefixForURI(text("u", i))) << i;
    }
    const std::vector<QeXmlNamespace> none;
    const std::vector<QeXmlNamespace>& innermost = model.scopes.empty() ? none : model.scopes.back();
    ASSERT_TRUE(std::equal(stack.namespacesBegin(), stack.namespacesEnd(), innermost.begin(), innermost.end(),
                           [](const QeXmlNamespace& left, const QeXmlNamespace& right) {
                               return left.getPrefix() == right.getPrefix() && left.getURI() == right.getURI();
                           }));
}

// Grows and shrinks over and over, so that lookups are by scan and by index and change from one to the other.
TEST(XmlNamespaceStack, FindsInTheDocumentedOrderWhateverTheNumberOfBindings) {
    std::mt19937 random(1);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    QeXmlNamespaceStack stack, copy;
    Model model, copiedModel;
    for (int step = 0; step < 4000; ++step) {
        const bool grows = step % 400 < 250;
        const int action = below(10);
        if (action < 2) {
            stack.pushScope();
            model.scopes.emplace_back();
        } else if (action < (grows ? 3 : 7)) {
            stack.popScope();
            if (!model.scopes.empty()) model.scopes.pop_back();
        } else {
            const bool again = action == 9 && stack.namespacesBegin() != stack.namespacesEnd();
            const QeXmlNamespace fresh(text("p", below(Texts)), text("u", below(Texts)));
            const QeXmlNamespace& added = again ? *stack.namespacesBegin() : fresh;
            model.add(added);
            stack.addNamespace(added);
        }
        if (step % 50 == 0) {
            expectSame(copy, copiedModel);  // whatever happened to the original since
            stack = QeXmlNamespaceStack(std::move(stack));
            copy = stack;
            copiedModel = model;
        }
        expectSame(stack, model);
        if (testing::Test::HasFailure()) FAIL() << "in step " << step;
    }
}

// A lookup that visited the scopes, or scanned the bindings, would take hours here.
TEST(XmlNamespaceStack, AMillionScopesCostNoMoreThanTheyDeclare) {
    constexpr int Scopes = 1'000'000;
    QeXmlNamespaceStack stack;
    stack.addNamespace(QeXmlNamespace("p", "u"));
    const QeCString& uri = stack.getURIForPrefix("p");  // stays as its scope does, whatever comes and goes inside
    for (int i = 0; i < Scopes; ++i) {
        stack.pushScope();
        ASSERT_EQ(stack.getPrefixForURI("not bound"), "");
    }
    for (int i = 0; i < Scopes / 10; ++i) {
        const QeCString number(std::to_string(i).c_str());
        stack.pushScope();
        stack.addNamespace(QeXmlNamespace(number, number));
        ASSERT_EQ(&stack.getURIForPrefix("p"), &uri);
    }
    for (int i = 0; i < Scopes / 10 + Scopes; ++i)
        stack.popScope();
    EXPECT_EQ(&stack.getURIForPrefix("p"), &uri);
    EXPECT_EQ(uri, "u");
}

}  // namespace
