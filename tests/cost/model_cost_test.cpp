// Attribute sets and namespace stacks filled by hand: what n operations cost grows
// with n, give or take a logarithm. Adding attributes in any but ascending order
// moves those behind, and is no part of this.

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <unordered_set>
#include <utility>
#include <vector>

#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_namespace_stack.h>
#include <tessit/utils/xml_utils.h>

#include "cost/growth.h"

using namespace tessit::test;

namespace {

using Texts = std::vector<QeCString>;

// What `pattern` makes of so many numbers, in odd order.
Texts textsOf(const std::string& pattern, std::size_t count) {
    Texts texts;
    std::istringstream in(numbered(pattern + " ", count));
    for (std::string text; in >> text;)
        texts.emplace_back(std::string_view(text));
    return texts;
}

void keepInHashTables(Texts texts) {
    static const CollidingNames names;
    for (std::size_t number = 0; number != texts.size(); ++number)
        texts[number].assign(names[number]);
    const std::unordered_set<QeCString> strings(texts.begin(), texts.end());
    const std::unordered_set<QeXmlName> sameNames(texts.begin(), texts.end());
    ASSERT_TRUE(strings.size() == texts.size() && sameNames.size() == texts.size());
}

// Beyond the first few, none of these moves an attribute, though the set was out of order for a while.
void useSet(Texts names) {
    std::ranges::sort(names);
    QeXmlAttributeSet set;
    for (std::size_t i = 0; i < 20; ++i)
        set.add(names[i], names[i]);
    set.begin()->setName(names[20]);
    set.remove(set.begin());
    names.erase(names.begin());
    for (const QeCString& name : names)
        set.add(name, name);
    const QeXmlAttributeSet& fixed = set;  // through which nothing gets out of order
    for (const QeCString& name : names)
        ASSERT_TRUE(fixed.contains(name) && fixed.findNamespaceAttribute(name)->getValue() == name);
    for (const QeCString& name : names)
        set.add(name, "other");
    const QeXmlAttributeSet copy = set;
    ASSERT_EQ(set.compareTo(copy), 0);
    ASSERT_TRUE(QeXmlUtils::compareAttributeSet(set, copy));
    for (std::size_t left = names.size(); left-- > 0;)
        set.remove(names[left]);
    ASSERT_EQ(set.size(), 0u);
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
void lookUp(Texts texts) {
    const QeXmlNamespaceStack stack = stackOf<BindingsOfAScope>(texts);
    for (const QeCString& text : texts) {
        ASSERT_TRUE(stack.getURIForPrefix(text) == text && stack.getPrefixForURI(text) == text);
        ASSERT_TRUE(stack.getURIForPrefix("none").empty() && stack.getPrefixForURI("none").empty());
    }
}

// Opens two scopes over those that are there, each time, and closes one of them, between lookups.
void popScopes(Texts texts) {
    QeXmlNamespaceStack stack = stackOf<2>(texts);
    for (const QeCString& text : texts) {
        stack.pushScope();  // stays, and declares nothing
        stack.pushScope();
        stack.addNamespace(QeXmlNamespace(text, "other"));
        ASSERT_EQ(stack.getURIForPrefix(text), "other");
        stack.popScope();
        ASSERT_EQ(stack.getURIForPrefix(texts.front()), texts.front());
    }
    for (std::size_t left = 2 * texts.size(); left > 0; --left)
        stack.popScope();
    ASSERT_EQ(stack.namespacesBegin(), stack.namespacesEnd());
}

const struct {
    const char* name;
    std::string pattern;
    void (*use)(Texts texts);
} Cases[] = {
    {"UseSet", "#", useSet},
    {"LookUpBindingsOfOneScope", "#", lookUp<1'000'000>},
    {"LookUpBindingsOfManyScopes", "#", lookUp<1>},
    {"LookUpLongBindings", std::string(200, 'x') + "#", lookUp<10>},  // all but the last bytes in common
    {"LookUpOnePrefixBoundInEachScope", "p", lookUp<1>},
    {"LookUpOnePrefixBoundAgainAndAgain", "p", lookUp<1'000'000>},
    {"PopScopes", "#", popScopes},
    {"KeepInHashTables", "#", keepInHashTables},
};

}  // namespace

TEST(Cost, OfTheModelGrowsWithTheNumber) {
    for (const auto& [name, pattern, use] : Cases)
        expectLinearGrowth(
            name, 4'000, [&](std::size_t count) { return textsOf(pattern, count); }, use);
}
