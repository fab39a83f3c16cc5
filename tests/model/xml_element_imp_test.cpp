#include <gtest/gtest.h>
#include <string>

#include <tessit/model/xml_element_imp.h>

namespace {

using Base = QeXmlElementImp;

const QeXmlName X("x");
const QeXmlNamespace NsU("a", "u"), NsV("p", "v");

// Counts the calls that the base makes of what it could have overridden. Its tests call the base's functions by name.
class Overriding : public Base {
public:
    void setName(const QeXmlName&) override { ++asked; }
    QeXmlName& getName() override { return ++asked, Base::getName(); }
    const QeXmlName& getName() const override { return ++asked, Base::getName(); }
    void addNamespaceAttribute(const QeXmlNamespace&) override { ++asked; }
    QeXmlAttribute* findNamespaceAttribute(const QeCString&) override { return ++asked, nullptr; }
    const QeXmlAttribute* findNamespaceAttribute(const QeCString&) const override { return ++asked, nullptr; }
    void removeNamespaceAttribute(const QeCString&) override { ++asked; }
    void setDefaultNamespaceAttribute(const QeCString&) override { ++asked; }
    void addAttribute(const QeXmlName&, const QeCString&) override { ++asked; }
    void removeAttribute(const QeXmlName&) override { ++asked; }
    QeXmlAttribute* findAttribute(const QeXmlName&) override { return ++asked, nullptr; }
    const QeXmlAttribute* findAttribute(const QeXmlName&) const override { return ++asked, nullptr; }
    QeXmlAttribute* attributesBegin() override { return ++asked, nullptr; }
    const QeXmlAttribute* attributesBegin() const override { return ++asked, nullptr; }
    QeXmlAttribute* attributesEnd() override { return ++asked, end == nullptr ? Base::attributesEnd() : end; }
    const QeXmlAttribute* attributesEnd() const override { return ++asked, nullptr; }
    void clearAttributes() override { ++asked; }
    QeXmlAttributeSet& getAttributes() override { return ++asked, Base::getAttributes(); }
    const QeXmlAttributeSet& getAttributes() const override { return ++asked, Base::getAttributes(); }

    using Base::addAttribute;
    using Base::findAttribute;
    using Base::findNamespaceAttribute;
    using Base::removeAttribute;
    using Base::removeNamespaceAttribute;
    using Base::setDefaultNamespaceAttribute;

    mutable int asked = 0;
    QeXmlAttribute* end = nullptr;
};

// Named a:item in u, with attributes a (b=2, p:x=3 in v, x=1) and a declaration of the prefix p.
Overriding makeElement() {
    Overriding element;
    element.Base::setName(QeXmlName("item", NsU));
    for (const auto& [name, value] : {std::pair(X, "1"), std::pair(QeXmlName("b"), "2"), {QeXmlName("x", NsV), "3"}})
        element.Base::addAttribute(name, value);
    element.Base::addNamespaceAttribute(NsV);
    return element;
}

std::string describe(const Base& element) {
    std::string text(std::string_view(element.getQualifiedName() + "{" + element.getNamespace().getURI() + "}"));
    for (const QeXmlAttribute& each : element.Base::getAttributes())
        text.append(" ").append(each.getName().asString()).append("=").append(each.getValue());
    return text;
}

struct ChangeCase {
    void (*change)(Overriding&);
    const char* result;
    int asks = 0;
};

constexpr ChangeCase Changes[] = {
    {[](Overriding&) {}, "a:item{u} b=2 xmlns:p=v x=1 p:x=3"},
    {[](Overriding& e) { e.setLocalName("n"); }, "a:n{u} b=2 xmlns:p=v x=1 p:x=3"},
    {[](Overriding& e) { e.setNamespace(NsV); }, "p:item{v} b=2 xmlns:p=v x=1 p:x=3"},
    {[](Overriding& e) { e.unsetNamespace(); }, "item{} b=2 xmlns:p=v x=1 p:x=3"},
    {[](Overriding& e) { e.setAndAddNamespace(NsU); }, "a:item{u} xmlns:a=u b=2 xmlns:p=v x=1 p:x=3"},
    // the namespace of an attribute of its own, which moves when the declaration is added
    {[](Overriding& e) { e.setAndAddNamespace((e.Base::attributesEnd() - 1)->getName().getNamespace()); },
     "p:item{v} b=2 xmlns:p=v x=1 p:x=3"},
    {[](Overriding& e) { e.Base::removeNamespaceAttribute("p"); }, "a:item{u} b=2 x=1 p:x=3"},
    {[](Overriding& e) { e.Base::removeNamespaceAttribute(NsV); }, "a:item{u} b=2 x=1 p:x=3"},
    {[](Overriding& e) { e.Base::setDefaultNamespaceAttribute("d"); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3 xmlns=d"},
    {[](Overriding& e) { e.Base::setDefaultNamespaceAttribute(NsU); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3 xmlns=u"},
    {[](Overriding& e) { e.unsetDefaultNamespaceAttribute(); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3 xmlns="},
    {[](Overriding& e) { e.Base::addAttribute(QeXmlAttribute("b", "4", {})); }, "a:item{u} b=4 xmlns:p=v x=1 p:x=3"},
    {[](Overriding& e) { e.Base::removeAttribute(QeXmlAttribute("x", "", {})); }, "a:item{u} b=2 xmlns:p=v p:x=3"},
    {[](Overriding& e) { e.Base::removeAttribute(QeXmlName("x", NsV)); }, "a:item{u} b=2 xmlns:p=v x=1"},
    {[](Overriding& e) { e.setAttributes(QeXmlAttributeSet()); }, "a:item{u}"},
    {[](Overriding& e) { e.Base::clearAttributes(); }, "a:item{u}"},
    {[](Overriding& e) { e.Base::getAttributes().clear(); }, "a:item{u}"},
    // Only removal by position asks, for the end: an override's is honoured, and the attributes' own is safe as well.
    {[](Overriding& e) { e.Base::removeAttribute(e.Base::attributesBegin()); }, "a:item{u} xmlns:p=v x=1 p:x=3", 1},
    {[](Overriding& e) { e.Base::removeAttribute(e.Base::attributesEnd()); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3", 2},
    {[](Overriding& e) { e.Base::removeAttribute(e.end = e.Base::attributesBegin()); },
     "a:item{u} b=2 xmlns:p=v x=1 p:x=3", 2},
    {[](Overriding& e) {
         e.end = e.Base::attributesBegin();
         e.Base::removeAttribute(e.Base::attributesEnd());
     },
     "a:item{u} b=2 xmlns:p=v x=1 p:x=3", 1},
};

TEST(XmlElementImp, ChangesWithoutAskingItsOverrides) {
    for (const auto& [change, result, asks] : Changes) {
        SCOPED_TRACE(&result - &Changes->result);
        Overriding element = makeElement();
        change(element);
        EXPECT_EQ(describe(element), result);
        EXPECT_EQ(element.asked, asks);
    }
}

TEST(XmlElementImp, FindsWithoutAskingItsOverrides) {
    Overriding element = makeElement();
    const Overriding& constant = element;
    const QeXmlAttribute *const begin = constant.Base::attributesBegin(), *const end = constant.Base::attributesEnd();
    const QeXmlAttribute x("x", "other", {});
    EXPECT_EQ(element.Base::findAttribute(x), begin + 2);  // whatever the value
    EXPECT_EQ(constant.Base::findAttribute(x), begin + 2);
    EXPECT_EQ(element.Base::findAttribute(X), begin + 2);
    EXPECT_EQ(constant.Base::findAttribute(QeXmlName("absent")), end);
    EXPECT_TRUE(constant.hasAttribute(x) && constant.hasAttribute(X) && !constant.hasAttribute(QeXmlName("x", NsU)));
    for (const QeXmlNamespace& ns : {QeXmlNamespace("p", "other"), QeXmlNamespace("q", "v")}) {
        const QeXmlAttribute* const found = ns.getPrefix() == "p" ? begin + 1 : end;
        EXPECT_EQ(element.Base::findNamespaceAttribute(ns), found);
        EXPECT_EQ(constant.Base::findNamespaceAttribute(ns), found);
        EXPECT_EQ(element.Base::findNamespaceAttribute(ns.getPrefix()), found);
        EXPECT_EQ(constant.Base::findNamespaceAttribute(ns.getPrefix()), found);
    }
    EXPECT_EQ(element.getUniqueName(), element.getNamespace().getURI() + "::" + element.getLocalName());
    EXPECT_EQ(element.attributeCount(), 4u);
    EXPECT_EQ(element.Base::removeAttribute(element.Base::attributesBegin()), begin);
    EXPECT_EQ(element.getDefaultNamespaceAttribute(), "");
    element.Base::setDefaultNamespaceAttribute("d");
    EXPECT_EQ(element.getDefaultNamespaceAttribute(), "d");
    EXPECT_EQ(element.asked, 1);
}

}  // namespace
