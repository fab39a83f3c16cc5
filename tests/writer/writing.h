#pragma once

#include <initializer_list>

#include <tessit/writer/xml_writer.h>

/// Short forms of what the writer's tests write most.

inline const QeXmlNamespace NsU("p", "u");
inline const QeXmlNamespace DefaultU("", "u");

inline QeXmlAttributeSet attributes(std::initializer_list<QeXmlAttribute> list) {
    QeXmlAttributeSet set;
    for (const QeXmlAttribute& attribute : list)
        set.add(attribute);
    return set;
}

inline QeXmlAttributeSet declaring(std::initializer_list<QeXmlNamespace> list) {
    QeXmlAttributeSet set;
    for (const QeXmlNamespace& ns : list)
        set.addNamespaceAttribute(ns);
    return set;
}

inline void start(QeXmlWriter& writer, const QeXmlName& name, const QeXmlAttributeSet& set = {}) {
    writer.writeElementStart(name, set, false);
}

inline void empty(QeXmlWriter& writer, const QeXmlName& name, const QeXmlAttributeSet& set = {}) {
    writer.writeElementStart(name, set, true);
}
