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

}  // namespace
