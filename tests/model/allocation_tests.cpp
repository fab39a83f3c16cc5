#include <gtest/gtest.h>
#include <string>
#include <support/failing_allocator.h>
#include <utility>

#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_namespace_stack.h>

namespace {

// Too long to be kept in place: each copy is an allocation.
QeCString lengthy(const char* start, int number) {
    return QeCString((start + std::string(" that takes a block of its own, ") + std::to_string(number)).c_str());
}

QeXmlAttributeSet filledSet(int count) {
    QeXmlAttributeSet set;
    for (int i = count; i-- > 0;)
        set.add(QeXmlAttribute(lengthy("name", 10 + i), lengthy("value", i), QeXmlNamespace("p", lengthy("URI", i))));
    return set;
}

bool sameValues(const QeXmlAttributeSet& left, const QeXmlAttributeSet& right) {
    return left.compareTo(right) == 0 && std::equal(left.begin(), left.end(), right.begin(),
                                                    [](const QeXmlAttribute& one, const QeXmlAttribute& other) {
                                                        return one.getValue() == other.getValue();
                                                    });
}

TEST(ModelAllocation, FailureLeavesAnAttributeSetAsItWas) {
    const QeXmlAttribute added = *filledSet(50).begin();
    for (const int count : {0, 1, 4, 5, 20})  // with and without a spare slot
        forEachFailingAllocation([&](Attempt& attempt) {
            QeXmlAttributeSet set = filledSet(count), copy = filledSet(2);
            const QeXmlAttributeSet before(set), copyBefore(copy);
            const bool wasAdded = attempt([&] { set.add(added); });
            EXPECT_TRUE(wasAdded || sameValues(set, before));
            const bool wasCopied = attempt([&] { copy = set; });
            EXPECT_TRUE(sameValues(copy, wasCopied ? set : copyBefore));
        });
}

TEST(ModelAllocation, AnAttributeSetFillsItsOldStorage) {
    QeXmlAttributeSet set = filledSet(20);
    const QeXmlAttributeSet same(set);
    EXPECT_EQ(countAllocations([&] {
                  set.clear();
                  for (const QeXmlAttribute& attribute : same)
                      set.add(attribute);
              }),
              0u);
    EXPECT_TRUE(sameValues(set, same));
}

QeXmlNamespace binding(int number) {
    return QeXmlNamespace(lengthy("prefix", number), lengthy("URI", number));
}

// Two bindings to a scope.
QeXmlNamespaceStack filledStack(int count) {
    QeXmlNamespaceStack stack;
    for (int i = 0; i < count; ++i) {
        if (i % 2 == 0) stack.pushScope();
        stack.addNamespace(binding(i));
    }
    return stack;
}

void expectHolds(const QeXmlNamespaceStack& stack, int count) {
    for (int i = 0; i < count; ++i) {
        EXPECT_EQ(stack.getURIForPrefix(binding(i).getPrefix()), binding(i).getURI()) << i;
        EXPECT_EQ(stack.getPrefixForURI(binding(i).getURI()), binding(i).getPrefix()) << i;
    }
    EXPECT_EQ(&stack.getURIForPrefix(binding(count).getPrefix()), &QeXmlAttributeSet::EmptyString);
    EXPECT_EQ(&stack.getPrefixForURI(binding(count).getURI()), &QeXmlAttributeSet::EmptyString);
}

TEST(ModelAllocation, FailureLeavesANamespaceStackAsItWas) {
    for (const int count : {0, 1, 2, 3, 15, 16, 17, 40})  // an index is made for more than 16
        forEachFailingAllocation([&](Attempt& attempt) {
            QeXmlNamespaceStack stack = filledStack(count);
            if (count % 2 == 0) stack.pushScope();
            const auto* const begin = stack.namespacesBegin();
            const auto* const end = stack.namespacesEnd();
            const QeXmlNamespace added = binding(count);
            const bool wasAdded = attempt([&] { stack.addNamespace(added); });
            if (!wasAdded) {
                EXPECT_TRUE(stack.namespacesBegin() == begin && stack.namespacesEnd() == end);
                expectHolds(stack, count);
                stack.addNamespace(QeXmlNamespace("another", "in its place"));
            }
            expectHolds(stack, count + (wasAdded ? 1 : 0));
        });
}

// Also as a member of something that is assigned by default: a failure is no reason to end the program.
TEST(ModelAllocation, FailureLeavesTheTargetOfACopyAsItWas) {
    struct Context {
        QeXmlNamespaceStack stack;
    };
    const Context from{filledStack(30)};
    forEachFailingAllocation([&](Attempt& attempt) {
        Context to{filledStack(20)};
        const bool wasCopied = attempt([&] { to = from; });
        expectHolds(to.stack, wasCopied ? 30 : 20);
    });
}

}  // namespace
