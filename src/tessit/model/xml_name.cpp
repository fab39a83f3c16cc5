#include <tessit/model/xml_name.h>

namespace {

QeCString join(const QeCString& front, const char* separator, const QeCString& back) {
    return front.empty() ? back : front + separator + back;
}

}  // namespace

QeCString QeXmlName::getQualifiedName() const {
    return join(ns.getPrefix(), ":", localName);
}

QeCString QeXmlName::getUniqueName() const {
    return join(ns.getURI(), "::", localName);
}
