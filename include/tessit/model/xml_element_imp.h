#pragma once

#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_name.h>

/// A base for an application's element classes: a name and the attributes.
///
/// Only derived classes can be created. They may replace any of the virtual
/// operations; the operations of the base work on its two members directly, so
/// that an override changes calls to that operation and no other. There is one
/// exception: `removeAttribute` by position asks `attributesEnd`. Who overrides
/// one overload of a name hides the others: bring them back with
/// `using QeXmlElementImp::findAttribute;`.
///
/// The element's namespace is that of its name; its declarations are among its
/// attributes, as `QeXmlAttributeSet` describes it. Setting the one does not
/// change the other. Positions and references stay valid until an attribute is
/// added or removed. What an operation costs and guarantees is said at the
/// operation of `QeXmlName` or `QeXmlAttributeSet` with its name. One thread at
/// a time.
class TESSIT_API QeXmlElementImp {
protected:
    /// An empty name, no attributes.
    QeXmlElementImp() = default;

    /// A copy of the name, no attributes.
    explicit QeXmlElementImp(const QeXmlName& name) : ownName(name) {}

    QeXmlElementImp(const QeXmlElementImp&) = default;
    QeXmlElementImp& operator=(const QeXmlElementImp&) = default;
    virtual ~QeXmlElementImp();

public:
    /// Replaces the whole name: local name, prefix and URI.
    virtual void setName(const QeXmlName& name);
    virtual QeXmlName& getName();
    virtual const QeXmlName& getName() const;

    /// Adds the declaration of the prefix of `ns`; the element's own namespace stays.
    virtual void addNamespaceAttribute(const QeXmlNamespace& ns);

    /// The first attribute in order whose local name is the prefix, whatever its
    /// namespace, or the attributes' end. Of a namespace only the prefix is looked at.
    virtual QeXmlAttribute* findNamespaceAttribute(const QeCString& prefix);
    virtual const QeXmlAttribute* findNamespaceAttribute(const QeCString& prefix) const;
    virtual QeXmlAttribute* findNamespaceAttribute(const QeXmlNamespace& ns);
    virtual const QeXmlAttribute* findNamespaceAttribute(const QeXmlNamespace& ns) const;

    /// Removes the declaration of the prefix, if any.
    virtual void removeNamespaceAttribute(const QeCString& prefix);
    virtual void removeNamespaceAttribute(const QeXmlNamespace& ns);

    /// Adds the default namespace declaration, or replaces its URI. Of a namespace only the URI is looked at.
    virtual void setDefaultNamespaceAttribute(const QeCString& uri);
    virtual void setDefaultNamespaceAttribute(const QeXmlNamespace& ns);

    /// Declares that no default namespace applies: the declaration is there, with an empty value.
    virtual void unsetDefaultNamespaceAttribute();

    /// The URI of the default namespace declaration, or the empty string.
    virtual const QeCString& getDefaultNamespaceAttribute() const;

    /// The first attribute, and one past the last, in the order of their names.
    virtual QeXmlAttribute* attributesBegin();
    virtual const QeXmlAttribute* attributesBegin() const;
    virtual const QeXmlAttribute* attributesEnd() const;
    virtual QeXmlAttribute* attributesEnd();

    /// The number of attributes, declarations included.
    virtual unsigned attributeCount() const;

    /// Removes all attributes, declarations included.
    virtual void clearAttributes();

    /// Adds an attribute. Where the name is there already, only its value is replaced.
    virtual void addAttribute(const QeXmlAttribute& attribute);
    virtual void addAttribute(const QeXmlName& name, const QeCString& value);

    /// Removes the attribute at `position` and returns where its successor now
    /// stands, which is `position` again. At `attributesEnd()`, which is called
    /// through its slot, and at a pointer that is none of the element's positions,
    /// removes nothing and returns the end.
    virtual QeXmlAttribute* removeAttribute(QeXmlAttribute* position);

    /// Removes the attribute with that name, if any; a value is not compared.
    virtual void removeAttribute(const QeXmlAttribute& attribute);
    virtual void removeAttribute(const QeXmlName& name);

    /// The attribute with that name, or the attributes' end; a value is not compared.
    virtual QeXmlAttribute* findAttribute(const QeXmlAttribute& attribute);
    virtual const QeXmlAttribute* findAttribute(const QeXmlAttribute& attribute) const;
    virtual QeXmlAttribute* findAttribute(const QeXmlName& name);
    virtual const QeXmlAttribute* findAttribute(const QeXmlName& name) const;

    /// Whether there is an attribute with that name; a value is not compared.
    virtual bool hasAttribute(const QeXmlAttribute& attribute) const;
    virtual bool hasAttribute(const QeXmlName& name) const;

    /// All attributes, for instance to be written.
    virtual QeXmlAttributeSet& getAttributes();
    virtual const QeXmlAttributeSet& getAttributes() const;

    /// Replaces all attributes by copies.
    void setAttributes(const QeXmlAttributeSet& attributes) { ownAttributes = attributes; }

    const QeCString& getLocalName() const noexcept { return ownName.getLocalName(); }

    /// Replaces the local name only.
    void setLocalName(const QeCString& localName) { ownName.setLocalName(localName); }

    /// `prefix:local`, or the local name when the prefix is empty.
    QeCString getQualifiedName() const { return ownName.getQualifiedName(); }

    /// `URI::local`, or the local name when the URI is empty.
    QeCString getUniqueName() const { return ownName.getUniqueName(); }

    const QeXmlNamespace& getNamespace() const noexcept { return ownName.getNamespace(); }
    QeXmlNamespace& getNamespace() noexcept { return ownName.getNamespace(); }

    /// Replaces prefix and URI of the name; declares nothing.
    void setNamespace(const QeXmlNamespace& ns) { ownName.setNamespace(ns); }

    /// Replaces prefix and URI of the name, and declares the prefix. Costs what both
    /// do; where the declaration throws, the name is changed already.
    void setAndAddNamespace(const QeXmlNamespace& ns);

    /// Takes the name out of its namespace; declarations stay.
    void unsetNamespace() { ownName.unsetNamespace(); }

private:
    // Names that no parameter of a derived class is likely to have.
    QeXmlName ownName;
    QeXmlAttributeSet ownAttributes;
};
