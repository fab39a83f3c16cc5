// Attribute sets and namespace stacks filled by hand: what n operations cost grows
// with n, give or take a logarithm. Adding attributes in any but ascending order
// moves those behind, and is no part of this.

#include <sstream>
#include <utility>
#include <vector>

#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_namespace_stack.h>
#include <tessit/utils/xml_utils.h>

#include "cost/growth.h"

using namespace tessit::test;

namespace {

using Texts = std::vector<QeCString>;

Texts ascending(std::size_t count) {
    Texts texts;
    for (std::size_t i = 0; i < count; ++i)
        texts.emplace_back(std::string_view(std::to_string(1'000'000 + i)));
    return texts;
}

Texts odd(std::size_t count) {
    Texts texts;
    std::istringstream numbers(numbered("# ", count));
    for (std::string number; numbers >> number;)
        texts.emplace_back(std::string_view(number));
    return texts;
}

Texts alike(std::size_t count) {
    return Texts(count, "p");
}

// Names that have all but the last bytes in common.
Texts longAndAlike(std::size_t count) {
    Texts texts;
    for (const QeCString& text : odd(count))
        texts.push_back(QeCString(std::string_view(std::string(200, 'x'))) + text);
    return texts;
}

void useSet(const Texts& names) {
    QeXmlAttributeSet set;
    for (const QeCString& name : names)
        set.add(name, name);
    const QeXmlAttributeSet& fixed = set;  // through which nothing gets out of order
    for (const QeCString& name : names)
        ASSERT_TRUE(fixed.contains(name) && fixed.findNamespaceAttribute(name) != fixed.end());
    for (const QeCString& name : names)
        set.add(name, "other");
    const QeXmlAttributeSet copy = set;
    ASSERT_EQ(set.compareTo(copy), 0);
    ASSERT_TRUE(QeXmlUtils::compareAttributeSet(set, copy));
    for (std::size_t left = names.size(); left-- > 0;)
        set.remove(names[left]);
    ASSERT_EQ(set.size(), 0u);
}

// None of these moves an attribute, though the set was out of order for a while.
void useSetThatWasOutOfOrder(const Texts& names) {
    QeXmlAttributeSet set;
    for (std::size_t i = 0; i < 20; ++i)
        set.add(names[i], "");
    set.begin()->setName(names[20]);
    set.remove(set.begin());
    for (std::size_t i = 20; i < names.size(); ++i)
        set.add(names[i], "");
    for (std::size_t i = 1; i < names.size(); ++i)
        ASSERT_TRUE(set.contains(names[i]) && std::as_const(set).findNamespaceAttribute(names[i])->getValue().empty());
    while (set.size() > 0)
        set.remove(set.end() - 1);
}

// Binds each text as a prefix to itself, a number of bindings to a scope.
template <std::size_t BindingsOfAScope>
QeXmlNamespaceStack stackOf(const Texts& texts) {
    QeXmlNamespaceStack stack;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i % BindingsOfAScope == 0) stack.pushScope();
        stack.addNamespace(QeXmlNamespace(texts[i], texts[i]));
    }
    return stack;
}

template <std::size_t BindingsOfAScope>
void lookUp(const Texts& texts) {
    const QeXmlNamespaceStack stack = stackOf<BindingsOfAScope>(texts);
    for (const QeCString& text : texts) {
        ASSERT_TRUE(stack.getURIForPrefix(text) == text && stack.getPrefixForURI(text) == text);
        ASSERT_TRUE(stack.getURIForPrefix("none").empty() && stack.getPrefixForURI("none").empty());
    }
}

// Opens and closes a scope over those that are there, each time with a lookup.
void popScopes(const Texts& texts) {
    QeXmlNamespaceStack stack = stackOf<2>(texts);
    for (const QeCString& text : texts) {
        stack.pushScope();
        stack.addNamespace(QeXmlNamespace(text, "other"));
        ASSERT_EQ(stack.getURIForPrefix(text), "other");
        stack.popScope();
    }
    for (std::size_t left = texts.size(); left > 0; --left)
        stack.popScope();
    ASSERT_EQ(stack.namespacesBegin(), stack.namespacesEnd());
}

void openManyScopes(const Texts& texts) {
    QeXmlNamespaceStack stack;
    stack.addNamespace(QeXmlNamespace("p", "u"));
    for (std::size_t i = 0; i < texts.size(); ++i) {
        stack.pushScope();
        ASSERT_EQ(stack.getURIForPrefix("p"), "u");
    }
}

const struct {
    const char* name;
    Texts (*texts)(std::size_t count);
    void (*use)(const Texts& texts);
} Cases[] = {
    {"UseSet", ascending, useSet},
    {"UseSetThatWasOutOfOrder", ascending, useSetThatWasOutOfOrder},
    {"LookUpBindingsOfOneScope", odd, lookUp<1'000'000>},
    {"LookUpBindingsOfManyScopes", odd, lookUp<1>},
    {"LookUpLongBindings", longAndAlike, lookUp<10>},
    {"LookUpOnePrefixBoundInEachScope", alike, lookUp<1>},
    {"LookUpOnePrefixBoundAgainAndAgain", alike, lookUp<1'000'000>},
    {"PopScopes", odd, popScopes},
    {"OpenManyScopes", alike, openManyScopes},
};

}  // namespace

TEST(Cost, OfTheModelGrowsWithTheNumber) {
    for (const auto& [name, texts, use] : Cases)
        expectLinearGrowth(name, 4'000, texts, use);
}
