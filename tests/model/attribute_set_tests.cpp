// What is found, added and removed, in whatever order, is held against a list by the set's fuzz target.

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include <tessit/model/xml_attribute_set.h>

namespace {

QeXmlName name(const char* local, const char* uri = "", const char* prefix = "") {
    return QeXmlName(local, QeXmlNamespace(prefix, uri));
}

TEST(XmlAttributeSet, ComparesByNamesInOrder) {
    const struct {
        std::vector<QeXmlName> left, right;
        int expected;
    } rows[] = {
        {{}, {}, 0},
        {{name("a", "u", "p")}, {name("a", "u", "q")}, 0},
        {{name("b"), name("a")}, {name("a"), name("c"), name("b")}, -1},  // a proper prefix
        {{name("a"), name("d")}, {name("a"), name("b"), name("c")}, 1},
        {{name("a", "u1", "q")}, {name("a", "u2", "p")}, -1},
        {{name("a", "u2")}, {name("b", "u1")}, -1},  // by local names first
    };
    for (const auto& [left, right, expected] : rows) {
        SCOPED_TRACE(&expected - &rows->expected);
        QeXmlAttributeSet one, other;
        for (const QeXmlName& each : left)
            one.add(each, "values are");
        for (const QeXmlName& each : right)
            other.add(each, "not compared");
        EXPECT_EQ(one.compareTo(other), expected);
        EXPECT_EQ(other.compareTo(one), -expected);
    }
}

TEST(XmlAttributeSet, DeclaresADefaultNamespace) {
    QeXmlAttributeSet set;
    EXPECT_EQ(&set.getDefaultNamespaceAttribute(), &QeXmlAttributeSet::EmptyString);
    set.add(name("xmlns", "u"), "no declaration");
    set.setDefaultNamespaceAttribute(QeXmlNamespace("any", "d"));
    EXPECT_EQ(set.getDefaultNamespaceAttribute(), "d");
    set.unsetDefaultNamespaceAttribute();
    EXPECT_EQ(set.getDefaultNamespaceAttribute(), "");
    EXPECT_EQ(set.size(), 2u);
    set.removeDefaultNamespaceAttribute();
    set.removeNamespaceAttribute("xmlns");  // what is left has a namespace
    EXPECT_EQ(set.remove(static_cast<QeXmlAttribute*>(nullptr)), set.end());
    EXPECT_EQ(set.size(), 1u);
}

}  // namespace
