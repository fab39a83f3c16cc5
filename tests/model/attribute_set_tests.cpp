#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <tessit/model/xml_attribute_set.h>

namespace {

QeXmlName name(const char* local, const char* uri = "", const char* prefix = "") {
    return QeXmlName(local, QeXmlNamespace(prefix, uri));
}

// The attributes in order: "p:x{URI}=value y{}=value".
std::string listing(const QeXmlAttributeSet& set) {
    QeCString text;
    for (const QeXmlAttribute& attribute : set) {
        text += text.empty() ? "" : " ";
        text += attribute.getName().getQualifiedName() + "{" + attribute.getName().getNamespace().getURI() + "}=";
        text += attribute.getValue();
    }
    return text.data();
}

TEST(XmlAttributeSet, KeepsItsOrderAndEachNameOnce) {
    QeXmlAttributeSet set;
    EXPECT_EQ(set.begin(), set.end());
    set.add(name("x", "u2"), "1");
    set.add(name("x", "u1", "p"), "2");
    set.add(name("w", "u9"), "3");
    set.add(QeXmlAttribute("x", "4", QeXmlNamespace("q", "u1")));  // replaces the value only
    EXPECT_EQ(listing(set), "w{u9}=3 p:x{u1}=4 x{u2}=1");
    set.addNamespaceAttribute(QeXmlNamespace("x", "u"));
    EXPECT_EQ(listing(set), "w{u9}=3 xmlns:x{}=u p:x{u1}=4 x{u2}=1");
    set.add(name("x"), "v");  // the same entry: declarations have no URI of their own
    EXPECT_EQ(listing(set), "w{u9}=3 xmlns:x{}=v p:x{u1}=4 x{u2}=1");
}

TEST(XmlAttributeSet, FindsDeclarations) {
    QeXmlAttributeSet set;
    EXPECT_EQ(set.findNamespaceAttribute("x"), set.end());
    EXPECT_EQ(&set.getDefaultNamespaceAttribute(), &QeXmlAttributeSet::EmptyString);
    set.add(name("x", "u", "a"), "1");
    EXPECT_EQ(set.findNamespaceAttribute(QeXmlNamespace("x", "any")), set.begin());  // whatever its namespace
    set.addNamespaceAttribute(QeXmlNamespace("x", "v"));
    set.setDefaultNamespaceAttribute(QeXmlNamespace("any", "d"));
    EXPECT_EQ(set.findNamespaceAttribute("x")->getValue(), "v");
    EXPECT_EQ(set.getDefaultNamespaceAttribute(), "d");
    set.unsetDefaultNamespaceAttribute();
    EXPECT_EQ(listing(set), "xmlns:x{}=v a:x{u}=1 xmlns{}=");
    set.removeDefaultNamespaceAttribute();
    set.removeNamespaceAttribute(QeXmlNamespace("x", "any"));
    set.removeNamespaceAttribute("x");  // what is left is no declaration
    EXPECT_EQ(listing(set), "a:x{u}=1");
}

TEST(XmlAttributeSet, RemovesAtPositions) {
    QeXmlAttributeSet set;
    for (const char* local : {"a", "b", "c", "d", "e"})
        set.add(name(local), "1");
    for (QeXmlAttribute* at = set.begin(); at != set.end();) {
        QeXmlAttribute* const here = at;
        const bool goes = at->getName() != name("b") && at->getName() != name("d");
        at = goes ? set.remove(at) : at + 1;
        EXPECT_EQ(at, goes ? here : here + 1);
    }
    EXPECT_EQ(set.remove(set.end()), set.end());
    EXPECT_EQ(set.remove(static_cast<QeXmlAttribute*>(nullptr)), set.end());  // no position of the set
    EXPECT_EQ(listing(set), "b{}=1 d{}=1");
}

TEST(XmlAttributeSet, ComparesByNamesInOrder) {
    const struct {
        std::vector<QeXmlName> left, right;
        int expected;
    } rows[] = {
        {{}, {}, 0},
        {{name("a", "u", "p")}, {name("a", "u", "q")}, 0},
        {{name("a"), name("b"), name("c"), name("d")},
         {name("b"), name("a"), name("e"), name("d"), name("c")},
         -1},  // a proper prefix
        {{name("a"), name("d")}, {name("a"), name("b"), name("c")}, 1},
        {{name("a", "u1")}, {name("a", "u2")}, -1},
    };
    for (const auto& [left, right, expected] : rows) {
        QeXmlAttributeSet one, other;
        for (const QeXmlName& each : left)
            one.add(each, "values are");
        for (const QeXmlName& each : right)
            other.add(each, "not compared");
        EXPECT_EQ(one.compareTo(other), expected) << listing(one) << " and " << listing(other);
        EXPECT_EQ(other.compareTo(one), -expected) << listing(one) << " and " << listing(other);
    }
}

// What the operations are documented to do, on a plain vector.
struct Model {
    std::vector<QeXmlAttribute> attributes;

    std::ptrdiff_t find(const QeXmlName& wanted) const {
        return std::find_if(attributes.begin(), attributes.end(),
                            [&](auto& each) { return each.getName() == wanted; }) -
               attributes.begin();
    }
    bool contains(const QeXmlName& wanted) const { return find(wanted) != std::ssize(attributes); }
    void add(const QeXmlName& added, const QeCString& value) {
        if (contains(added)) return attributes[static_cast<std::size_t>(find(added))].setValue(value);
        const auto before = [](const QeXmlName& left, const QeXmlAttribute& right) { return left < right.getName(); };
        attributes.emplace(std::upper_bound(attributes.begin(), attributes.end(), added, before), added, value);
    }
    void removeAt(std::ptrdiff_t position) { attributes.erase(attributes.begin() + position); }
};

// A pointer stays good until an attribute is added or removed; renaming through it breaks the order.
TEST(XmlAttributeSet, BehavesLikeALinearScanWhateverTheOrder) {
    std::vector<QeXmlName> names;
    for (const char* local : {"a", "ab", "b", "c", "d", "da", "e", "f", "g", "h", "i", "j", "xmlns"})
        for (const char* uri : {"", "u", "v"})
            names.push_back(name(local, uri));
    std::mt19937 random(1);
    QeXmlAttributeSet set;
    const QeXmlAttributeSet& constant = set;
    Model model;
    QeXmlAttribute* held = nullptr;
    for (int step = 0; step < 5000; ++step) {
        const unsigned size = set.size();
        const QeXmlName& any = names[random() % names.size()];
        const auto position = static_cast<std::ptrdiff_t>(random() % std::max(size, 1u));
        const auto action = size == 0 ? 10 : random() % 40;
        if (action < 5) {
            if (model.contains(any)) model.removeAt(model.find(any));
            set.remove(any);
        } else if (action < 7) {
            model.removeAt(position);
            set.remove(set.begin() + position);
        } else if (action == 7) {
            held = set.begin() + position;
        } else if (action == 8 && held != nullptr) {
            model.attributes[static_cast<std::size_t>(held - constant.begin())].setName(any);
            held->setName(any);
        } else if (step % 500 == 499) {
            model.attributes.clear();
            set.clear();
        } else {
            const QeCString fresh(std::to_string(step).c_str());
            const QeCString& value = action % 3 == 0 ? constant.begin()->getValue() : fresh;
            model.add(any, value);
            set.add(any, value);
        }
        if (set.size() != size) held = nullptr;

        const auto same = [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
            return left.getName() == right.getName() && left.getValue() == right.getValue();
        };
        const std::vector<QeXmlAttribute>& all = model.attributes;
        ASSERT_TRUE(std::equal(constant.begin(), constant.end(), all.begin(), all.end(), same)) << "step " << step;
        for (const QeXmlName& each : names) {
            ASSERT_EQ(constant.find(each) - constant.begin(), model.find(each)) << "step " << step;
            const auto* first = std::find_if(constant.begin(), constant.end(), [&](const QeXmlAttribute& attribute) {
                return attribute.getName().getLocalName() == each.getLocalName();
            });
            ASSERT_EQ(constant.findNamespaceAttribute(each.getLocalName()), first) << "step " << step;
        }
    }
}

}  // namespace
