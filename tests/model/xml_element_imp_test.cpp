#include <gtest/gtest.h>
#include <string>

#include <tessit/model/xml_element_imp.h>

namespace {

using Base = QeXmlElementImp;

const QeXmlName X("x");
const QeXmlNamespace NsU("a", "u"), NsV("p", "v");

// Counts the calls that the base makes of what it could have overridden, which are those of an end.
class Overriding : public Base {
public:
    QeXmlName& getName() override { return ++asked, Base::getName(); }
    const QeXmlName& getName() const override { return ++asked, Base::getName(); }
    QeXmlAttribute* attributesEnd() override { return ++asked, end == nullptr ? Base::attributesEnd() : end; }
    QeXmlAttributeSet& getAttributes() override { return ++asked, Base::getAttributes(); }
    const QeXmlAttributeSet& getAttributes() const override { return ++asked, Base::getAttributes(); }
    using Base::attributesEnd;

    mutable int asked = 0;
    QeXmlAttribute* end = nullptr;
};

// Named a:item in u, with attributes a (b=2, p:x=3 in v, x=1) and a declaration of the prefix p.
Overriding makeElement() {
    Overriding element;
    element.setName(QeXmlName("item", NsU));
    for (const auto& [name, value] : {std::pair(X, "1"), std::pair(QeXmlName("b"), "2"), {QeXmlName("x", NsV), "3"}})
        element.addAttribute(name, value);
    element.addNamespaceAttribute(NsV);
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
    {[](Overriding& e) { e.removeNamespaceAttribute("p"); }, "a:item{u} b=2 x=1 p:x=3"},
    {[](Overriding& e) { e.removeNamespaceAttribute(NsV); }, "a:item{u} b=2 x=1 p:x=3"},
    {[](Overriding& e) { e.setDefaultNamespaceAttribute("d"); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3 xmlns=d"},
    {[](Overriding& e) { e.setDefaultNamespaceAttribute(NsU); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3 xmlns=u"},
    {[](Overriding& e) { e.unsetDefaultNamespaceAttribute(); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3 xmlns="},
    {[](Overriding& e) { e.addAttribute(QeXmlAttribute("b", "4", {})); }, "a:item{u} b=4 xmlns:p=v x=1 p:x=3"},
    {[](Overriding& e) { e.removeAttribute(QeXmlAttribute("x", "", {})); }, "a:item{u} b=2 xmlns:p=v p:x=3"},
    {[](Overriding& e) { e.removeAttribute(QeXmlName("x", NsV)); }, "a:item{u} b=2 xmlns:p=v x=1"},
    {[](Overriding& e) { e.setAttributes(QeXmlAttributeSet()); }, "a:item{u}"},
    {[](Overriding& e) { e.clearAttributes(); }, "a:item{u}"},
    {[](Overriding& e) { e.Base::getAttributes().clear(); }, "a:item{u}"},
    // Only removal by position asks, for the end: an override's is honoured, and the attributes' own is safe as well.
    {[](Overriding& e) { e.removeAttribute(e.attributesBegin()); }, "a:item{u} xmlns:p=v x=1 p:x=3", 1},
    {[](Overriding& e) { e.removeAttribute(e.Base::attributesEnd()); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3", 2},
    {[](Overriding& e) { e.removeAttribute(e.end = e.attributesBegin()); }, "a:item{u} b=2 xmlns:p=v x=1 p:x=3", 2},
    {[](Overriding& e) {
         e.end = e.attributesBegin();
         e.removeAttribute(e.Base::attributesEnd());
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

TEST(XmlElementImp, Finds) {
    Overriding element = makeElement();
    const Overriding& constant = element;
    const QeXmlAttribute *const begin = constant.attributesBegin(), *const end = constant.attributesEnd();
    const QeXmlAttribute x("x", "other", {});
    EXPECT_TRUE(element.findAttribute(x) == begin + 2 && constant.findAttribute(x) == begin + 2);  // whatever the value
    EXPECT_TRUE(element.findAttribute(X) == begin + 2 && constant.findAttribute(QeXmlName("absent")) == end);
    EXPECT_TRUE(constant.hasAttribute(x) && constant.hasAttribute(X) && !constant.hasAttribute(QeXmlName("x", NsU)));
    for (const QeXmlNamespace& ns : {QeXmlNamespace("p", "other"), QeXmlNamespace("q", "v")}) {
        const QeXmlAttribute* const found = ns.getPrefix() == "p" ? begin + 1 : end;
        EXPECT_TRUE(element.findNamespaceAttribute(ns) == found && constant.findNamespaceAttribute(ns) == found);
        EXPECT_EQ(element.findNamespaceAttribute(ns.getPrefix()), found);
        EXPECT_EQ(constant.findNamespaceAttribute(ns.getPrefix()), found);
    }
    EXPECT_EQ(element.getUniqueName(), "u::item");
    EXPECT_EQ(element.attributeCount(), 4u);
    EXPECT_EQ(element.removeAttribute(element.attributesBegin()), begin);
    EXPECT_EQ(element.getDefaultNamespaceAttribute(), "");
    element.setDefaultNamespaceAttribute("d");
    EXPECT_EQ(element.getDefaultNamespaceAttribute(), "d");
    EXPECT_EQ(element.asked, 1);
}

}  // namespace
