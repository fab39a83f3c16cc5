#include <gtest/gtest.h>
#include <string>
#include <vector>

#include <tessit/model/xml_element_imp.h>

namespace {

class Element : public QeXmlElementImp {
public:
    Element() = default;
    explicit Element(const QeXmlName& name) : QeXmlElementImp(name) {}
};

const QeXmlNamespace NsU("a", "u");
const QeXmlNamespace NsV("p", "v");

Element withAttributes(std::initializer_list<const char*> names) {
    Element element;
    for (const char* name : names)
        element.addAttribute(QeXmlName(name), name);
    return element;
}

std::string list(const QeXmlElementImp& element) {
    std::string text;
    for (const QeXmlAttribute* at = element.attributesBegin(); at != element.attributesEnd(); ++at)
        text.append(at->getName().asString()).append("=").append(at->getValue()).append(" ");
    return text;
}

TEST(XmlElementImp, NamesItself) {
    Element element(QeXmlName("item", NsU));
    EXPECT_EQ(element.attributeCount(), 0u);
    EXPECT_EQ(element.getQualifiedName(), "a:item");
    EXPECT_EQ(element.getUniqueName(), "u::item");
    element.setLocalName("entry");
    EXPECT_EQ(element.getQualifiedName(), "a:entry");
    EXPECT_EQ(element.getUniqueName(), "u::entry");
    element.setName(QeXmlName("other"));
    EXPECT_EQ(element.getUniqueName(), "other");
    element.getName().setLocalName("through");
    EXPECT_EQ(element.getLocalName(), "through");
}

TEST(XmlElementImp, KeepsNamespaceAndDeclarationsApart) {
    Element element(QeXmlName("item", NsU));
    element.setNamespace(NsV);
    EXPECT_EQ(list(element), "");
    element.setAndAddNamespace(NsV);
    EXPECT_EQ(list(element), "xmlns:p=v ");
    element.unsetNamespace();
    EXPECT_EQ(element.getQualifiedName(), "item");
    EXPECT_EQ(element.getNamespace().getURI(), "");
    EXPECT_EQ(list(element), "xmlns:p=v ");
    element.addNamespaceAttribute(NsU);
    const Element& constant = element;
    for (const QeXmlNamespace& ns : {QeXmlNamespace("a", "other"), QeXmlNamespace("b", "")}) {
        const QeXmlAttribute* const found = ns.getPrefix() == "a" ? element.attributesBegin() : element.attributesEnd();
        EXPECT_EQ(element.findNamespaceAttribute(ns), found);
        EXPECT_EQ(constant.findNamespaceAttribute(ns), found);
        EXPECT_EQ(constant.findNamespaceAttribute(ns.getPrefix()), found);
        EXPECT_EQ(constant.getAttributes().findNamespaceAttribute(ns), found);
    }
    element.removeNamespaceAttribute(QeXmlNamespace("p", ""));
    EXPECT_EQ(list(element), "xmlns:a=u ");
    element.removeNamespaceAttribute("a");
    EXPECT_EQ(element.findNamespaceAttribute("a"), element.attributesEnd());
}

// The name of an attribute of the element itself moves when the declaration is added.
TEST(XmlElementImp, TakesANamespaceOfItsOwn) {
    Element element;
    for (const char* name : {"w", "x", "y", "z"})
        element.addAttribute(QeXmlName(name, NsV), name);
    element.setAndAddNamespace(element.attributesBegin()->getName().getNamespace());
    EXPECT_EQ(list(element), "xmlns:p=v p:w=w p:x=x p:y=y p:z=z ");
    EXPECT_EQ(element.getNamespace().infoString(), NsV.infoString());
}

TEST(XmlElementImp, DeclaresADefaultNamespace) {
    Element element;
    EXPECT_EQ(element.getDefaultNamespaceAttribute(), "");
    element.setDefaultNamespaceAttribute("u");
    EXPECT_EQ(element.getDefaultNamespaceAttribute(), "u");
    element.setDefaultNamespaceAttribute(NsV);
    EXPECT_EQ(list(element), "xmlns=v ");
    element.unsetDefaultNamespaceAttribute();
    EXPECT_EQ(element.getDefaultNamespaceAttribute(), "");
    EXPECT_EQ(list(element), "xmlns= ");
}

TEST(XmlElementImp, RemovesByPosition) {
    Element element = withAttributes({"c", "a", "b"});
    QeXmlAttribute* first = element.attributesBegin();
    EXPECT_EQ(element.removeAttribute(first), first);
    EXPECT_EQ(list(element), "b=b c=c ");
    const QeXmlAttribute* behindLast = element.removeAttribute(first + 1);
    EXPECT_EQ(behindLast, element.attributesEnd());
    EXPECT_EQ(element.removeAttribute(element.attributesEnd()), element.attributesEnd());
    EXPECT_EQ(list(element), "b=b ");
    EXPECT_EQ(element.removeAttribute(nullptr), element.attributesEnd());
    EXPECT_EQ(list(element), "b=b ");
}

TEST(XmlElementImp, FindsByNameWhateverTheValue) {
    Element element = withAttributes({"x", "y"});
    const Element& constant = element;
    const QeXmlAttribute other("x", "other", QeXmlNamespace());
    EXPECT_TRUE(element.hasAttribute(other));
    EXPECT_TRUE(element.hasAttribute(QeXmlName("x")));
    EXPECT_FALSE(element.hasAttribute(QeXmlName("x", NsU)));
    EXPECT_EQ(element.findAttribute(other), element.attributesBegin());
    EXPECT_EQ(constant.findAttribute(other), constant.attributesBegin());
    EXPECT_EQ(constant.findAttribute(QeXmlName("absent")), constant.attributesEnd());
    EXPECT_EQ(element.findAttribute(QeXmlName("absent")), element.attributesEnd());
    element.removeAttribute(QeXmlName("absent"));
    element.removeAttribute(other);
    EXPECT_EQ(list(element), "y=y ");
    element.removeAttribute(QeXmlName("y"));
    EXPECT_EQ(element.attributesBegin(), element.attributesEnd());
}

TEST(XmlElementImp, CopiesAndReplacesItsAttributes) {
    Element element = withAttributes({"x"});
    Element copy(element);
    element.clearAttributes();
    EXPECT_EQ(element.attributeCount(), 0u);
    EXPECT_EQ(element.attributesBegin(), element.attributesEnd());
    element.setAttributes(copy.getAttributes());
    copy.getAttributes().clear();
    EXPECT_EQ(list(element), "x=x ");
    copy = element;
    EXPECT_EQ(list(copy), "x=x ");
}

// Overrides everything that the base could ask, and notes what it is asked.
class Noting : public QeXmlElementImp {
public:
    void setName(const QeXmlName& name) override { note("setName"), QeXmlElementImp::setName(name); }
    QeXmlName& getName() override { return note("getName"), QeXmlElementImp::getName(); }
    const QeXmlName& getName() const override { return note("getName const"), QeXmlElementImp::getName(); }
    void addNamespaceAttribute(const QeXmlNamespace&) override { note("addNamespaceAttribute"); }
    QeXmlAttribute* findNamespaceAttribute(const QeCString& prefix) override {
        return note("findNamespaceAttribute"), QeXmlElementImp::findNamespaceAttribute(prefix);
    }
    void removeNamespaceAttribute(const QeCString&) override { note("removeNamespaceAttribute"); }
    void setDefaultNamespaceAttribute(const QeCString&) override { note("setDefaultNamespaceAttribute"); }
    void addAttribute(const QeXmlName&, const QeCString&) override { note("addAttribute"); }
    void removeAttribute(const QeXmlName&) override { note("removeAttribute"); }
    QeXmlAttribute* findAttribute(const QeXmlName& name) override {
        return note("findAttribute"), QeXmlElementImp::findAttribute(name);
    }
    const QeXmlAttribute* findAttribute(const QeXmlName& name) const override {
        return note("findAttribute const"), QeXmlElementImp::findAttribute(name);
    }
    QeXmlAttribute* attributesEnd() override { return note("attributesEnd"), end(); }
    const QeXmlAttribute* attributesEnd() const override { return note("attributesEnd const"), end(); }
    void clearAttributes() override { note("clearAttributes"); }
    QeXmlAttributeSet& getAttributes() override { return note("getAttributes"), QeXmlElementImp::getAttributes(); }

    using QeXmlElementImp::addAttribute;
    using QeXmlElementImp::findAttribute;
    using QeXmlElementImp::findNamespaceAttribute;
    using QeXmlElementImp::getAttributes;
    using QeXmlElementImp::removeAttribute;
    using QeXmlElementImp::removeNamespaceAttribute;
    using QeXmlElementImp::setDefaultNamespaceAttribute;

    QeXmlAttribute* end() const { return const_cast<Noting*>(this)->QeXmlElementImp::attributesEnd(); }
    std::string notes() { return std::exchange(noted, {}); }
    QeXmlAttribute* endToReturn = nullptr;

private:
    void note(const char* what) const { noted.append(what).append(" "); }
    mutable std::string noted;
};

TEST(XmlElementImp, AsksItsSlotsForTheEndOnly) {
    Noting element;
    element.setLocalName("e");
    element.setNamespace(NsU);
    element.setAndAddNamespace(NsV);
    element.unsetNamespace();
    element.getQualifiedName();
    element.getUniqueName();
    element.setAttributes(QeXmlAttributeSet());
    element.addAttribute(QeXmlAttribute("a", "1", QeXmlNamespace()));
    element.addAttribute(QeXmlAttribute("b", "1", QeXmlNamespace()));
    element.findAttribute(QeXmlAttribute("a", "1", QeXmlNamespace()));
    element.hasAttribute(QeXmlName("a"));
    element.hasAttribute(QeXmlAttribute("a", "1", QeXmlNamespace()));
    element.findNamespaceAttribute(NsV);
    element.removeNamespaceAttribute(NsV);
    element.setDefaultNamespaceAttribute(NsV);
    element.unsetDefaultNamespaceAttribute();
    element.removeAttribute(QeXmlAttribute("absent", "", QeXmlNamespace()));
    element.attributeCount();
    EXPECT_EQ(element.notes(), "");

    element.removeAttribute(element.attributesBegin());
    EXPECT_EQ(element.notes(), "attributesEnd ");
    EXPECT_EQ(element.removeAttribute(element.end()), element.end());
    EXPECT_EQ(element.notes(), "attributesEnd attributesEnd ");
}

// An override's end is honoured, and the attributes' own end is safe all the same.
TEST(XmlElementImp, HonoursAnotherEnd) {
    class Short : public Element {
    public:
        Short() {
            for (const char* name : {"a", "b", "c"})
                addAttribute(QeXmlName(name), "");
        }
        QeXmlAttribute* attributesEnd() override { return attributesBegin() + 1; }
        using Element::attributesEnd;
    };
    Short element;
    QeXmlAttribute* const begin = element.attributesBegin();
    EXPECT_EQ(element.removeAttribute(begin + 1), begin + 1);
    EXPECT_EQ(element.attributeCount(), 3u) << "the override's end removes nothing";
    EXPECT_EQ(element.removeAttribute(begin + 3), begin + 3);
    EXPECT_EQ(element.attributeCount(), 3u) << "nor does the attributes' own";
    EXPECT_EQ(element.removeAttribute(begin), begin);
    EXPECT_EQ(element.attributeCount(), 2u);
}

}  // namespace
