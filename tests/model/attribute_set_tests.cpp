#include <algorithm>
#include <ctime>
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

// Local names of one length, long enough to cost something, in ascending order.
QeXmlName numbered(int number) {
    const std::string digits = std::to_string(1'000'000 + number);
    return QeXmlName(QeCString(("a-local-name-that-fills-a-block-" + digits).c_str()));
}

// The attributes as qualified name, URI and value: "p:x{u}=1 y=2".
std::string listing(const QeXmlAttributeSet& set) {
    std::string text;
    for (const QeXmlAttribute& attribute : set) {
        const QeXmlName& written = attribute.getName();
        if (!text.empty()) text += ' ';
        text += written.getQualifiedName().data();
        if (!written.getNamespace().getURI().empty())
            text += std::string("{") + written.getNamespace().getURI().data() + "}";
        text += std::string("=") + attribute.getValue().data();
    }
    return text;
}

TEST(XmlAttributeSet, KeepsItsOrderAndEachNameOnce) {
    QeXmlAttributeSet set;
    EXPECT_EQ(set.begin(), set.end());
    for (const char* local : {"b", "a", "c"})
        set.add(name(local), local);
    EXPECT_EQ(listing(set), "a=a b=b c=c");
    set.clear();
    set.add(name("x", "u2"), "1");
    set.add(name("x", "u1", "p"), "2");
    set.add(name("w", "u9"), "3");
    set.add(QeXmlAttribute("x", "4", QeXmlNamespace("q", "u1")));  // keeps the prefix p
    EXPECT_EQ(listing(set), "w{u9}=3 p:x{u1}=4 x{u2}=1");
}

TEST(XmlAttributeSet, ReplacesValuesByNameOnly) {
    QeXmlAttributeSet set;
    set.add(name("x", "u", "p"), "1");
    set.add(name("x", "u", "q"), "2");
    EXPECT_EQ(listing(set), "p:x{u}=2");
    set.addNamespaceAttribute(QeXmlNamespace("p", "u"));
    EXPECT_EQ(listing(set), "xmlns:p=u p:x{u}=2");
    set.add(name("p"), "v");  // the same entry: declarations have no URI of their own
    EXPECT_EQ(listing(set), "xmlns:p=v p:x{u}=2");
}

TEST(XmlAttributeSet, FindsDeclarations) {
    QeXmlAttributeSet set;
    EXPECT_EQ(set.findNamespaceAttribute("x"), set.end());
    EXPECT_EQ(&set.getDefaultNamespaceAttribute(), &QeXmlAttributeSet::EmptyString);
    set.add(name("x", "u", "a"), "1");
    EXPECT_EQ(set.findNamespaceAttribute("x"), set.begin());  // whatever its namespace
    set.addNamespaceAttribute(QeXmlNamespace("x", "v"));
    EXPECT_EQ(set.findNamespaceAttribute(QeXmlNamespace("x", "not looked at"))->getValue(), "v");
    set.setDefaultNamespaceAttribute(QeXmlNamespace("not looked at", "d"));
    EXPECT_EQ(set.getDefaultNamespaceAttribute(), "d");
    set.unsetDefaultNamespaceAttribute();
    EXPECT_EQ(listing(set), "xmlns:x=v a:x{u}=1 xmlns=");
    set.removeDefaultNamespaceAttribute();
    set.removeNamespaceAttribute(QeXmlNamespace("x", "not looked at"));
    set.removeNamespaceAttribute("x");  // what is left is no declaration
    EXPECT_EQ(listing(set), "a:x{u}=1");
}

TEST(XmlAttributeSet, RemovesAtPositions) {
    QeXmlAttributeSet set;
    EXPECT_EQ(set.remove(static_cast<QeXmlAttribute*>(nullptr)), set.end());
    for (const char* local : {"a", "b", "c", "d", "e"})
        set.add(name(local), "1");
    for (QeXmlAttribute* at = set.begin(); at != set.end();) {
        QeXmlAttribute* const here = at;
        const bool goes = std::string_view("ace").find(at->getName().getLocalName()) != std::string_view::npos;
        at = goes ? set.remove(at) : at + 1;
        EXPECT_EQ(at, goes ? here : here + 1);
    }
    EXPECT_EQ(set.remove(set.end()), set.end());
    EXPECT_EQ(listing(set), "b=1 d=1");
}

TEST(XmlAttributeSet, ComparesByNamesInOrder) {
    const auto setOf = [](const std::vector<QeXmlName>& names, const char* value) {
        QeXmlAttributeSet set;
        for (const QeXmlName& each : names)
            set.add(each, value);
        return set;
    };
    const struct {
        std::vector<QeXmlName> left, right;
        int expected;
    } rows[] = {
        {{}, {}, 0},
        {{name("a", "u", "p")}, {name("a", "u", "q")}, 0},
        {{}, {name("a")}, -1},
        {{name("a"), name("b")}, {name("b"), name("a"), name("c")}, -1},  // a proper prefix
        {{name("a"), name("d")}, {name("a"), name("b"), name("c")}, 1},
        {{name("a", "u1")}, {name("a", "u2")}, -1},
    };
    for (const auto& [left, right, expected] : rows) {
        const QeXmlAttributeSet one = setOf(left, "1"), other = setOf(right, "2");
        EXPECT_EQ(one.compareTo(other), expected) << listing(one) << " and " << listing(other);
        EXPECT_EQ(other.compareTo(one), -expected) << listing(one) << " and " << listing(other);
    }
}

// What the operations are documented to do, on a plain vector.
struct Model {
    std::vector<QeXmlAttribute> attributes;

    auto find(const QeXmlName& wanted) {
        return std::find_if(attributes.begin(), attributes.end(), [&](auto& each) { return each.getName() == wanted; });
    }
    void add(const QeXmlName& added, const QeCString& value) {
        if (const auto found = find(added); found != attributes.end()) return found->setValue(value);
        const auto sortsBefore = [](const QeXmlName& left, const QeXmlAttribute& right) {
            return left < right.getName();
        };
        attributes.emplace(std::upper_bound(attributes.begin(), attributes.end(), added, sortsBefore), added, value);
    }
    void remove(const QeXmlName& removed) {
        if (const auto found = find(removed); found != attributes.end()) attributes.erase(found);
    }
};

std::vector<QeXmlName> someNames() {
    std::vector<QeXmlName> names;
    for (const char* local : {"a", "ab", "b", "c", "d", "da", "e", "f", "g", "h", "i", "j", "xmlns"})
        for (const char* uri : {"", "u", "v"})
            names.push_back(name(local, uri));
    return names;
}

void expectSame(const QeXmlAttributeSet& set, Model& model) {
    ASSERT_TRUE(std::equal(set.begin(), set.end(), model.attributes.begin(), model.attributes.end(),
                           [](const QeXmlAttribute& left, const QeXmlAttribute& right) {
                               return left.getName() == right.getName() && left.getValue() == right.getValue();
                           }))
        << listing(set);
    for (const QeXmlName& each : someNames()) {
        ASSERT_EQ(set.find(each) - set.begin(), model.find(each) - model.attributes.begin());
        const auto found = std::find_if(set.begin(), set.end(), [&](const QeXmlAttribute& attribute) {
            return attribute.getName().getLocalName() == each.getLocalName();
        });
        ASSERT_EQ(set.findNamespaceAttribute(each.getLocalName()), found);
    }
}

// Renaming through a pointer breaks the order. It stays good until an attribute is added or removed.
TEST(XmlAttributeSet, BehavesLikeALinearScanWhateverTheOrder) {
    const std::vector<QeXmlName> names = someNames();
    std::mt19937 random(1);
    QeXmlAttributeSet set;
    Model model;
    QeXmlAttribute* held = nullptr;
    for (int step = 0; step < 5000; ++step) {
        const unsigned size = set.size();
        const QeXmlName& any = names[random() % names.size()];
        const QeCString fresh(std::to_string(step).c_str());
        const QeCString& value = step % 3 == 0 && size > 0 ? std::as_const(set).begin()->getValue() : fresh;
        const auto action = random() % 40;
        if (action < 5) {
            set.remove(any);
            model.remove(any);
        } else if (action < 7 && size > 0) {
            const std::size_t at = random() % size;
            set.remove(set.begin() + at);
            model.attributes.erase(model.attributes.begin() + static_cast<std::ptrdiff_t>(at));
        } else if (action == 7 && size > 0) {
            held = set.begin() + random() % size;
        } else if (action == 8 && held != nullptr) {
            model.attributes[static_cast<std::size_t>(held - std::as_const(set).begin())].setName(any);
            held->setName(any);
        } else if (step % 500 == 0) {
            set.clear();
            model.attributes.clear();
            held = nullptr;
        } else {
            model.add(any, value);
            set.add(any, value);
        }
        if (set.size() != size) held = nullptr;
        expectSame(set, model);
        if (testing::Test::HasFailure()) FAIL() << "in step " << step;
    }
}

// Processor time for `work` on n attributes, the least of three.
double cost(void (*work)(int), int n) {
    double least = 1e9;
    for (int run = 0; run < 3; ++run) {
        const std::clock_t start = std::clock();
        work(n);
        least = std::min(least, static_cast<double>(std::clock() - start));
    }
    return least;
}

QeXmlAttributeSet filled(int n) {
    QeXmlAttributeSet set;
    for (int i = 0; i < n; ++i)
        set.add(numbered(i), "");
    return set;
}

// None of these moves an attribute, so what they cost is comparisons.
TEST(XmlAttributeSet, NeverComparesQuadratically) {
    constexpr struct {
        const char* name;
        void (*work)(int);
    } Rows[] = {
        {"additions", [](int n) { filled(n); }},
        {"additions to a set that was broken",
         [](int n) {
             QeXmlAttributeSet set = filled(20);
             set.begin()->setName(numbered(n));
             set.remove(numbered(n));
             for (int i = 20; i < n; ++i)
                 set.add(numbered(i), "");
         }},
        {"lookups",
         [](int n) {
             const QeXmlAttributeSet set = filled(n);
             for (int i = 0; i < n; ++i)
                 EXPECT_TRUE(set.contains(numbered(i)) &&
                             set.findNamespaceAttribute(numbered(i).getLocalName()) != set.end());
         }},
        {"removals by name",
         [](int n) {
             QeXmlAttributeSet set = filled(n);
             for (int i = n; i-- > 0;)
                 set.remove(numbered(i));
         }},
        {"removals at positions",
         [](int n) {
             QeXmlAttributeSet set = filled(n);
             for (int i = n; i-- > 0;)
                 set.remove(set.end() - 1);
         }},
    };
    for (const auto& row : Rows)
        EXPECT_LT(cost(row.work, 8 * 2000), 24 * cost(row.work, 2000)) << row.name;  // quadratic: 64 times
}

}  // namespace
